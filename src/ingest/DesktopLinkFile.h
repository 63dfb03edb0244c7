#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace mosswick {

// A web link kept as a file: a freedesktop desktop entry of type Link, which file managers and
// desktops open in the browser.
namespace DesktopLinkFile {

constexpr const char* kContentType = "application/x-desktop";

// "[Desktop Entry]", then Type=Link, Name=, URL= and Icon=text-html, one key a line, UTF-8.
// Nothing for a URL that is not valid.
QByteArray data(const QUrl& url, const QString& title);

// A string value as a desktop entry writes it: backslash, line breaks and tabs escaped, spaces at
// either end kept as "\s" (readers drop them otherwise), other control characters left out.
QString escaped(const QString& value);

}  // namespace DesktopLinkFile
}  // namespace mosswick
