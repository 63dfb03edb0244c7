#pragma once

#include <QJsonArray>
#include <optional>
#include <vector>

namespace mosswick {

// Decodes one element of a saved array without failing: a bad element yields an empty value
// instead of spoiling the elements around it.
template <typename T>
struct Lenient {
    std::optional<T> value;

    static Lenient decode(const QJsonValue& json) { return Lenient{T::fromJson(json)}; }
};

// The elements of `array` that decode, in order; the others are dropped.
template <typename T>
std::vector<T> decodeLeniently(const QJsonArray& array) {
    std::vector<T> decoded;
    decoded.reserve(static_cast<size_t>(array.size()));
    for (const QJsonValue& element : array) {
        if (auto item = Lenient<T>::decode(element).value) decoded.push_back(std::move(*item));
    }
    return decoded;
}

}  // namespace mosswick
