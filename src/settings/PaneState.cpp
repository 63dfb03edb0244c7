#include "settings/PaneState.h"

#include <QRegularExpression>
#include <algorithm>

namespace mosswick {

namespace AlternateDataSentence {

QString lead() { return QStringLiteral("Also provide"); }

QString ending(AlternateDragData value) {
    return value == AlternateDragData::none ? QStringLiteral("data when dragging out")
                                            : QStringLiteral("text when dragging out");
}

}  // namespace AlternateDataSentence

namespace ItemCountStepper {

namespace {
qint64 clamped(qint64 value) { return std::clamp(value, kMinimum, kMaximum); }
}  // namespace

qint64 stepped(qint64 value, int steps) {
    // A value from outside the range first lands on its edge, so one step never jumps across it.
    const qint64 start = clamped(value);
    if (start != value && steps != 0) return start;
    return clamped(start + steps * kStep);
}

QString text(qint64 value) { return QStringLiteral("%1 files").arg(value); }

std::optional<qint64> parse(const QString& typed) {
    static const QRegularExpression count(QStringLiteral("^\\s*(\\d{1,9})\\s*(files?)?\\s*$"));
    const QRegularExpressionMatch match = count.match(typed);
    if (!match.hasMatch()) return std::nullopt;
    const qint64 number = match.captured(1).toLongLong();
    return clamped((number + kStep / 2) / kStep * kStep);
}

}  // namespace ItemCountStepper

}  // namespace mosswick
