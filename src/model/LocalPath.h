#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <filesystem>
#include <optional>

namespace mosswick {

// File names on Linux are bytes. QString cannot hold every byte sequence (invalid UTF-8 is
// replaced on decoding), so paths travel as std::filesystem::path and turn into URLs by
// percent-encoding their bytes, never through a QString.
namespace LocalPath {

// file:// URL of an absolute path; a folder's URL ends in "/" when `isDirectory` is true.
QUrl toUrl(const std::filesystem::path& path, bool isDirectory = false);
// The same as the bytes of a URI ("file:///a%20b"), for protocols that carry URIs as bytes; empty
// for a relative path.
QByteArray toUri(const std::filesystem::path& path, bool isDirectory = false);

// The path a file URL names, bytes intact; nothing for a non-file or relative URL.
std::optional<std::filesystem::path> fromUrl(const QUrl& url);

// The last component of a path, for display: invalid UTF-8 bytes read as U+FFFD.
QString displayName(const std::filesystem::path& path);

// The last component of a URL's path, bytes intact ("" for a URL with no path).
std::filesystem::path lastComponent(const QUrl& url);

// Something (file, folder, or a symbolic link, even a dangling one) is at the path.
bool exists(const std::filesystem::path& path);

// The raw bytes of a path, and back.
QByteArray bytes(const std::filesystem::path& path);
std::filesystem::path fromBytes(const QByteArray& bytes);

}  // namespace LocalPath
}  // namespace mosswick
