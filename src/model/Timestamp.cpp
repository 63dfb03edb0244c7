#include "model/Timestamp.h"

#include <QTimeZone>

namespace mosswick {

namespace {
// 2001-01-01T00:00:00Z in milliseconds since the Unix epoch.
constexpr qint64 kReferenceDateMs = 978307200000LL;
}  // namespace

Timestamp Timestamp::now() { return fromDateTime(QDateTime::currentDateTimeUtc()); }

Timestamp Timestamp::fromDateTime(const QDateTime& moment) {
    return {static_cast<double>(moment.toMSecsSinceEpoch() - kReferenceDateMs) / 1000.0};
}

QDateTime Timestamp::toDateTime() const {
    const auto ms = static_cast<qint64>(secondsSinceReferenceDate * 1000.0) + kReferenceDateMs;
    return QDateTime::fromMSecsSinceEpoch(ms, QTimeZone::utc());
}

}  // namespace mosswick
