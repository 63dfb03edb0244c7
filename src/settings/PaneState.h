#pragma once

#include <QString>
#include <optional>

#include "model/PreferenceEnums.h"

namespace mosswick {

// The Advanced pane's sentence around the alternate-data picker: "Also provide [the file path as]
// text when dragging out". With no alternate the sentence speaks of data, not text.
namespace AlternateDataSentence {

QString lead();
QString ending(AlternateDragData value);

}  // namespace AlternateDataSentence

// "Keep at most:" — the shelf's item limit as the settings offer it: 5 to 500 in fives, shown as
// "N files". The store may hold anything (a hand-edited 7, or 0 for no limit); the stepper starts
// from it and lands back in range.
namespace ItemCountStepper {

constexpr qint64 kMinimum = 5;
constexpr qint64 kMaximum = 500;
constexpr qint64 kStep = 5;

qint64 stepped(qint64 value, int steps);
QString text(qint64 value);
// What the user typed, "120" or "120 files"; none when it is not a count. Rounded to a step.
std::optional<qint64> parse(const QString& text);

}  // namespace ItemCountStepper

}  // namespace mosswick
