#include "app/UpdateVersion.h"

#include <QStringList>

namespace mosswick {

namespace {

constexpr int kLongestNumber = 9;  // digits; an int holds them all

std::optional<int> number(const QString& part) {
    if (part.isEmpty() || part.size() > kLongestNumber) return std::nullopt;
    for (const QChar c : part)
        if (c < u'0' || c > u'9') return std::nullopt;
    return part.toInt();
}

bool isIdentifier(const QString& part) {
    if (part.isEmpty()) return false;
    for (const QChar c : part)
        if (!(c.isLetterOrNumber() && c.unicode() < 128) && c != u'-') return false;
    return true;
}

std::strong_ordering compareIdentifiers(const QString& a, const QString& b) {
    const std::optional<int> na = number(a), nb = number(b);
    if (na && nb) return *na <=> *nb;
    if (na) return std::strong_ordering::less;
    if (nb) return std::strong_ordering::greater;
    const int c = QString::compare(a, b, Qt::CaseSensitive);
    return c < 0   ? std::strong_ordering::less
           : c > 0 ? std::strong_ordering::greater
                   : std::strong_ordering::equal;
}

}  // namespace

std::optional<UpdateVersion> UpdateVersion::parse(const QString& text) {
    const qsizetype dash = text.indexOf(u'-');
    const QString release = dash < 0 ? text : text.left(dash);
    UpdateVersion version;
    for (const QString& part : release.split(u'.')) {
        const std::optional<int> n = number(part);
        if (!n) return std::nullopt;
        version.numbers.push_back(*n);
    }
    if (dash >= 0) {
        for (const QString& part : text.mid(dash + 1).split(u'.')) {
            if (!isIdentifier(part)) return std::nullopt;
            version.preRelease.push_back(part);
        }
    }
    return version;
}

QString UpdateVersion::toString() const {
    QStringList parts;
    for (const int n : numbers) parts.append(QString::number(n));
    QString text = parts.join(u'.');
    if (!preRelease.empty()) text += u'-' + QStringList(preRelease.begin(), preRelease.end()).join(u'.');
    return text;
}

std::strong_ordering UpdateVersion::operator<=>(const UpdateVersion& other) const {
    const size_t count = std::max(numbers.size(), other.numbers.size());
    for (size_t i = 0; i < count; ++i) {
        const int a = i < numbers.size() ? numbers[i] : 0;
        const int b = i < other.numbers.size() ? other.numbers[i] : 0;
        if (a != b) return a <=> b;
    }
    // A release is after each of its pre-releases.
    if (preRelease.empty() || other.preRelease.empty())
        return preRelease.empty() <=> other.preRelease.empty();
    for (size_t i = 0; i < std::min(preRelease.size(), other.preRelease.size()); ++i)
        if (const auto c = compareIdentifiers(preRelease[i], other.preRelease[i]); c != 0) return c;
    return preRelease.size() <=> other.preRelease.size();
}

}  // namespace mosswick
