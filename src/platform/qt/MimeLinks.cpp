#include "platform/qt/MimeLinks.h"

#include <QStringDecoder>

namespace mosswick::MimeLinks {

namespace {

// Escapes what a URI may not hold as it is (blanks, controls, bytes past ASCII), leaving existing
// escapes and the characters that give a URI its structure alone.
QByteArray escapedLoosely(const QByteArray& text) {
    static const QByteArray kUnsafe = "\"<>\\^`{|}";
    QByteArray out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte >= 0x7F || kUnsafe.contains(c)) {
            out += '%';
            out += QByteArray::number(byte, 16).rightJustified(2, '0').toUpper();
        } else {
            out += c;
        }
    }
    return out;
}

std::optional<QUrl> absoluteUrl(const QByteArray& text) {
    const QByteArray trimmed = text.trimmed();
    if (trimmed.isEmpty()) return std::nullopt;
    const QUrl url = QUrl::fromEncoded(escapedLoosely(trimmed), QUrl::TolerantMode);
    if (!url.isValid() || url.isRelative()) return std::nullopt;
    return url;
}

std::vector<QUrl> lines(const QByteArray& data, qsizetype skipLines) {
    std::vector<QUrl> urls;
    QByteArray text = data;
    // Some sources end the list with a NUL.
    while (text.endsWith('\0')) text.chop(1);
    const QList<QByteArray> rows = text.split('\n');
    for (qsizetype i = skipLines; i < rows.size(); ++i) {
        const QByteArray& row = rows.at(i);
        if (row.startsWith('#')) continue;
        if (auto url = absoluteUrl(row)) urls.push_back(*url);
    }
    return urls;
}

bool looksLikeUtf16(const QByteArray& data) {
    if (data.size() < 2) return false;
    const auto first = static_cast<unsigned char>(data.at(0));
    const auto second = static_cast<unsigned char>(data.at(1));
    // A byte-order mark, or the zero half of an ASCII character (a URL starts with one).
    return (first == 0xFF && second == 0xFE) || (first == 0xFE && second == 0xFF) || first == 0 ||
           second == 0;
}

std::optional<Link> urlAndTitle(const QString& text) {
    QString body = text;
    while (body.endsWith(QChar(0))) body.chop(1);
    const qsizetype newline = body.indexOf(QLatin1Char('\n'));
    const QString first = newline < 0 ? body : body.left(newline);
    QString title = newline < 0 ? QString() : body.mid(newline + 1);
    // Only the title's own line.
    if (const qsizetype end = title.indexOf(QLatin1Char('\n')); end >= 0) title.truncate(end);
    if (title.endsWith(QLatin1Char('\r'))) title.chop(1);
    const auto url = absoluteUrl(first.toUtf8());
    if (!url) return std::nullopt;
    return Link{*url, title};
}

}  // namespace

std::vector<QUrl> uriList(const QByteArray& data) { return lines(data, 0); }

std::vector<QUrl> gnomeCopiedFiles(const QByteArray& data) { return lines(data, 1); }

std::optional<Link> mozUrl(const QByteArray& data) {
    if (!looksLikeUtf16(data)) return netscapeUrl(data);
    const auto first = static_cast<unsigned char>(data.at(0));
    const bool bigEndian = first == 0xFE || first == 0;
    QStringDecoder decoder(bigEndian ? QStringDecoder::Utf16BE : QStringDecoder::Utf16LE);
    QString text = decoder.decode(data);
    if (text.startsWith(QChar(0xFEFF))) text.remove(0, 1);
    return urlAndTitle(text);
}

std::optional<Link> netscapeUrl(const QByteArray& data) { return urlAndTitle(QString::fromUtf8(data)); }

}  // namespace mosswick::MimeLinks
