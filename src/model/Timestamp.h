#pragma once

#include <QDateTime>
#include <compare>

namespace mosswick {

// A moment as the save file stores it: seconds, with fraction, since 2001-01-01 00:00:00 UTC.
// Kept as that double so a saved moment reads back exactly equal.
struct Timestamp {
    double secondsSinceReferenceDate = 0;

    static Timestamp now();
    static Timestamp fromDateTime(const QDateTime& moment);
    QDateTime toDateTime() const;

    auto operator<=>(const Timestamp&) const = default;
};

}  // namespace mosswick
