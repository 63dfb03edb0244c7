#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>
#include <vector>

namespace mosswick {

// The ways links travel in drags and on the clipboard on Linux desktops.
namespace MimeLinks {

struct Link {
    QUrl url;
    QString title;  // empty when none came with it
};

// text/uri-list: one URI a line (CR LF or LF), "#" lines are comments. Bytes a sloppy source
// left unescaped (spaces, non-ASCII) are escaped first, so a file name that is not UTF-8 keeps
// its bytes. Only absolute URLs are kept.
std::vector<QUrl> uriList(const QByteArray& data);

// x-special/gnome-copied-files: "copy" or "cut", then one URI a line.
std::vector<QUrl> gnomeCopiedFiles(const QByteArray& data);

// text/x-moz-url: "url\ntitle", in UTF-16 (as browsers send it) or UTF-8.
std::optional<Link> mozUrl(const QByteArray& data);

// _NETSCAPE_URL: "url\ntitle" in UTF-8.
std::optional<Link> netscapeUrl(const QByteArray& data);

}  // namespace MimeLinks
}  // namespace mosswick
