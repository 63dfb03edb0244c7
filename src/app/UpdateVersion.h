#pragma once

#include <QString>
#include <compare>
#include <optional>
#include <vector>

namespace mosswick {

// A release's version as the update feed and the build write it: dot-separated numbers, then
// optionally "-" and a pre-release tag of dot-separated identifiers ("1.10.0", "2.0-beta.2").
// Compared as release numbers, not as text: 1.10 is after 1.9, 1.2 equals 1.2.0, and a
// pre-release comes before its release (1.0-rc.1 < 1.0), its identifiers compared numerically
// where both are numbers (beta.2 < beta.10), a number before a word, else as ASCII text.
struct UpdateVersion {
    std::vector<int> numbers;
    std::vector<QString> preRelease;

    // Nothing for anything else (empty parts, letters in the numbers, a leading "v" or blanks).
    static std::optional<UpdateVersion> parse(const QString& text);
    QString toString() const;

    std::strong_ordering operator<=>(const UpdateVersion& other) const;
    bool operator==(const UpdateVersion& other) const { return (*this <=> other) == 0; }
};

}  // namespace mosswick
