#include "triggers/KeyboardLayout.h"

namespace mosswick {

namespace {

// Where no layout can be read, every key falls back to its number.
class NoKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<QString> character(quint32) const override { return std::nullopt; }
    std::optional<QString> symbolName(quint32) const override { return std::nullopt; }
};

const KeyboardLayout* installed = nullptr;

}  // namespace

const KeyboardLayout& KeyboardLayout::shared() {
    static const NoKeyboardLayout none;
    return installed ? *installed : none;
}

void KeyboardLayout::setShared(const KeyboardLayout* layout) { installed = layout; }

}  // namespace mosswick
