#pragma once

#include <QString>
#include <array>
#include <optional>

namespace mosswick {

// The enumerations stored by raw value: each raw value is the case name, and titles are what the
// settings window and menus show. Cases are listed in picker order.

enum class ShelfPosition { leftTop, leftCenter, leftBottom, rightTop, rightCenter, rightBottom };
enum class ShelfSize { standard, biggest, smallest, adaptiveStandard, adaptiveSmallest };
enum class AppearanceMode { system, light, dark };
enum class ShowTrigger { dragStarts, dragStartsAtCursor, dragToScreenEdge };
enum class AlternateDragData { none, filePath, fileName, fileContents };

template <typename E>
struct EnumCase {
    E value;
    const char* rawValue;
    const char* title;
};

// The one table per enumeration; every conversion below reads it.
template <typename E>
struct EnumCases;

template <>
struct EnumCases<ShelfPosition> {
    static const std::array<EnumCase<ShelfPosition>, 6> all;
};
template <>
struct EnumCases<ShelfSize> {
    static const std::array<EnumCase<ShelfSize>, 5> all;
};
template <>
struct EnumCases<AppearanceMode> {
    static const std::array<EnumCase<AppearanceMode>, 3> all;
};
template <>
struct EnumCases<ShowTrigger> {
    static const std::array<EnumCase<ShowTrigger>, 3> all;
};
template <>
struct EnumCases<AlternateDragData> {
    static const std::array<EnumCase<AlternateDragData>, 4> all;
};

template <typename E>
QString rawValue(E value) {
    for (const auto& c : EnumCases<E>::all)
        if (c.value == value) return QString::fromLatin1(c.rawValue);
    return {};
}

template <typename E>
QString title(E value) {
    for (const auto& c : EnumCases<E>::all)
        if (c.value == value) return QString::fromUtf8(c.title);
    return {};
}

// Exact match only: letter case matters.
template <typename E>
std::optional<E> fromRawValue(const QString& raw) {
    for (const auto& c : EnumCases<E>::all)
        if (raw == QLatin1String(c.rawValue)) return c.value;
    return std::nullopt;
}

inline bool isAdaptive(ShelfSize size) {
    return size == ShelfSize::adaptiveStandard || size == ShelfSize::adaptiveSmallest;
}

}  // namespace mosswick
