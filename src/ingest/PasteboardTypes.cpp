#include "ingest/PasteboardTypes.h"

#include <algorithm>

namespace mosswick::PasteboardTypes {

namespace {

QString normalised(const QString& name) {
    QString compact = name.toLower();
    compact.remove(QLatin1Char(' '));
    return compact;
}

bool offersAny(const QStringList& offered, bool PasteboardType::*where,
               bool (*alsoNeeds)(PasteboardContent)) {
    return std::any_of(all().begin(), all().end(), [&](const PasteboardType& type) {
        return type.*where && alsoNeeds(type.content) && find(offered, type.name).has_value();
    });
}

bool anyContent(PasteboardContent) { return true; }

bool worthAShelf(PasteboardContent content) {
    return content == PasteboardContent::files || content == PasteboardContent::filePromise ||
           content == PasteboardContent::link;
}

}  // namespace

const std::vector<PasteboardType>& all() {
    using C = PasteboardContent;
    static const std::vector<PasteboardType> types = {
        {fileList, C::files, true, true},
        // A file manager's copy on the clipboard (the list with "copy" or "cut" before it).
        {QStringLiteral("x-special/gnome-copied-files"), C::files, false, true},
        {directSave, C::filePromise, true, false},
        // Browsers' links: UTF-16 "url\ntitle", and the older "url\ntitle" in UTF-8.
        {QStringLiteral("text/x-moz-url"), C::link, true, true},
        {QStringLiteral("_NETSCAPE_URL"), C::link, true, true},
        {QStringLiteral("image/png"), C::image, true, true},
        {QStringLiteral("image/tiff"), C::image, true, true},
        {QStringLiteral("image/jpeg"), C::image, true, false},
        {QStringLiteral("application/x-qt-image"), C::image, true, false},
        {QStringLiteral("application/pdf"), C::document, true, true},
        {QStringLiteral("text/rtf"), C::richText, true, true},
        {QStringLiteral("application/rtf"), C::richText, true, true},
        {QStringLiteral("text/html"), C::richText, true, true},
        {QStringLiteral("text/plain;charset=utf-8"), C::text, true, true},
        {QStringLiteral("text/plain"), C::text, true, true},
        {QStringLiteral("UTF8_STRING"), C::text, true, true},
        // Latin-1 text of older X programs.
        {QStringLiteral("STRING"), C::text, false, true},
        {QStringLiteral("TEXT"), C::text, false, true},
    };
    return types;
}

QStringList names(PasteboardContent content) {
    QStringList result;
    for (const PasteboardType& type : all())
        if (type.content == content) result << type.name;
    return result;
}

bool same(const QString& offered, const QString& name) { return normalised(offered) == normalised(name); }

std::optional<QString> find(const QStringList& offered, const QString& name) {
    for (const QString& spelling : offered)
        if (same(spelling, name)) return spelling;
    return std::nullopt;
}

bool takenOnDrop(const QStringList& offered) {
    return offersAny(offered, &PasteboardType::takenOnDrop, anyContent);
}

bool bringsShelfUp(const QStringList& offered) {
    return offersAny(offered, &PasteboardType::takenOnDrop, worthAShelf);
}

bool takenFromClipboard(const QStringList& offered) {
    return offersAny(offered, &PasteboardType::takenFromClipboard, anyContent);
}

}  // namespace mosswick::PasteboardTypes
