#include "ingest/DesktopLinkFile.h"

namespace mosswick::DesktopLinkFile {

QByteArray data(const QUrl& url, const QString& title) {
    if (!url.isValid() || url.isRelative()) return {};
    QByteArray entry = "[Desktop Entry]\nType=Link\n";
    entry += "Name=" + escaped(title).toUtf8() + "\n";
    // Fully encoded, so the value is plain ASCII without spaces or line breaks.
    entry += "URL=" + escaped(QString::fromLatin1(url.toEncoded())).toUtf8() + "\n";
    entry += "Icon=text-html\n";
    return entry;
}

QString escaped(const QString& value) {
    QString out;
    out.reserve(value.size() + 8);
    const qsizetype size = value.size();
    qsizetype first = 0;
    qsizetype last = size;
    while (first < size && value.at(first) == QLatin1Char(' ')) ++first;
    while (last > first && value.at(last - 1) == QLatin1Char(' ')) --last;
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char(' ') && (i < first || i >= last)) {
            out += QLatin1String("\\s");
        } else if (c == QLatin1Char('\\')) {
            out += QLatin1String("\\\\");
        } else if (c == QLatin1Char('\n')) {
            out += QLatin1String("\\n");
        } else if (c == QLatin1Char('\r')) {
            out += QLatin1String("\\r");
        } else if (c == QLatin1Char('\t')) {
            out += QLatin1String("\\t");
        } else if (c.unicode() < 0x20 || c.unicode() == 0x7F) {
            continue;
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace mosswick::DesktopLinkFile
