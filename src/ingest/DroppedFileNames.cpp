#include "ingest/DroppedFileNames.h"

#include <QMimeDatabase>
#include <QTextBoundaryFinder>

#include "model/ShelfItem.h"

namespace mosswick::DroppedFileNames {

namespace {

// The longest extension kept whole when a name has to be cut.
constexpr qsizetype kMaxKeptExtension = 16;
constexpr int kTextNameCharacters = 40;

bool isLineBreak(QChar c) {
    switch (c.unicode()) {
        case 0x000A:  // line feed
        case 0x000B:  // vertical tab
        case 0x000C:  // form feed
        case 0x000D:  // carriage return (a CR LF pair leaves an empty piece between, skipped)
        case 0x0085:  // next line
        case 0x2028:  // line separator
        case 0x2029:  // paragraph separator
            return true;
        default:
            return false;
    }
}

// The shared rule for names made from what the user dropped.
QString cleaned(const QString& stem) {
    QString name = stem.trimmed();
    name.replace(QLatin1Char('/'), QLatin1Char('-'));
    name.replace(QLatin1Char(':'), QLatin1Char('-'));
    name.replace(QChar(0), QLatin1Char('-'));
    if (name.isEmpty()) name = QStringLiteral("Untitled");
    return name;
}

QString withExtension(const QString& stem, const char* extension) {
    return QString::fromUtf8(fitted((stem + QLatin1String(extension)).toUtf8()));
}

// The first `count` user-perceived characters, so an emoji or an accented letter is never cut.
QString firstCharacters(QStringView text, int count) {
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text.data(), static_cast<int>(text.size()));
    qsizetype end = 0;
    for (int i = 0; i < count; ++i) {
        const qsizetype next = graphemes.toNextBoundary();
        if (next < 0) {
            end = text.size();
            break;
        }
        end = next;
    }
    return text.left(end).toString();
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

QString forLink(const QString& title) { return withExtension(cleaned(title), ".desktop"); }

QString forText(const QString& text) {
    const qsizetype size = text.size();
    qsizetype start = 0;
    while (start < size && isLineBreak(text.at(start))) ++start;
    if (start == size) return withExtension(cleaned(QStringLiteral("Text")), ".txt");
    qsizetype end = start;
    // Only as far as the line reaches: the text may be very long.
    while (end < size && !isLineBreak(text.at(end))) ++end;
    const QStringView line = QStringView(text).mid(start, end - start);
    return withExtension(cleaned(firstCharacters(line, kTextNameCharacters)), ".txt");
}

QString forImage(const QDateTime& moment) {
    return QStringLiteral("Image ") + moment.toString(QStringLiteral("yyyy-MM-dd 'at' HH.mm.ss")) +
           QStringLiteral(".png");
}

QString forDocument(const QDateTime& moment) {
    return QStringLiteral("Document ") + moment.toString(QStringLiteral("yyyy-MM-dd 'at' HH.mm.ss")) +
           QStringLiteral(".pdf");
}

QByteArray forPromise(const QByteArray& proposed, const QString& mimeType) {
    QByteArray name = proposed;
    name.replace('/', '-');
    name.replace('\0', '-');
    qsizetype first = 0;
    qsizetype last = name.size();
    while (first < last && isBlank(name.at(first))) ++first;
    while (last > first && isBlank(name.at(last - 1))) --last;
    name = name.mid(first, last - first);
    if (!name.isEmpty() && name != "." && name != "..") return fitted(name);

    QByteArray fallback = "Incoming";
    if (mimeType != QLatin1String(ShelfItem::kGenericContentType)) {
        const QString suffix = QMimeDatabase().mimeTypeForName(mimeType).preferredSuffix();
        if (!suffix.isEmpty()) fallback += "." + suffix.toUtf8();
    }
    return fallback;
}

QByteArray fitted(const QByteArray& name) {
    if (name.size() <= kMaxNameBytes) return name;
    const qsizetype dot = name.lastIndexOf('.');
    QByteArray extension;
    if (dot > 0 && name.size() - dot <= kMaxKeptExtension) extension = name.mid(dot);
    qsizetype cut = kMaxNameBytes - extension.size();
    // Back to the start of a UTF-8 character (continuation bytes are 10xxxxxx).
    while (cut > 0 && (static_cast<unsigned char>(name.at(cut)) & 0xC0) == 0x80) --cut;
    return name.left(cut) + extension;
}

}  // namespace mosswick::DroppedFileNames
