#include "interaction/ShelfPalette.h"

namespace mosswick {

namespace {

struct Scheme {
    QColor window, text, base, button, accent, accentText, toolTip, toolTipText, placeholder;
};

QPalette paletteOf(const Scheme& s) {
    QPalette p;
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        p.setColor(group, QPalette::Window, s.window);
        p.setColor(group, QPalette::WindowText, s.text);
        p.setColor(group, QPalette::Base, s.base);
        p.setColor(group, QPalette::AlternateBase, s.window);
        p.setColor(group, QPalette::Text, s.text);
        p.setColor(group, QPalette::Button, s.button);
        p.setColor(group, QPalette::ButtonText, s.text);
        p.setColor(group, QPalette::Highlight, s.accent);
        p.setColor(group, QPalette::HighlightedText, s.accentText);
        p.setColor(group, QPalette::ToolTipBase, s.toolTip);
        p.setColor(group, QPalette::ToolTipText, s.toolTipText);
        p.setColor(group, QPalette::PlaceholderText, s.placeholder);
        p.setColor(group, QPalette::BrightText, s.base);
    }
    QColor muted = s.text;
    muted.setAlphaF(0.35f);
    p.setColor(QPalette::Disabled, QPalette::Window, s.window);
    p.setColor(QPalette::Disabled, QPalette::WindowText, muted);
    p.setColor(QPalette::Disabled, QPalette::Text, muted);
    p.setColor(QPalette::Disabled, QPalette::ButtonText, muted);
    p.setColor(QPalette::Disabled, QPalette::Highlight, s.accent);
    return p;
}

}  // namespace

QPalette ShelfPalette::light() {
    return paletteOf({QColor(0xf5, 0xf5, 0xf7), QColor(0x1d, 0x1d, 0x1f), QColor(0xff, 0xff, 0xff),
                      QColor(0xfb, 0xfb, 0xfd), QColor(0x0a, 0x72, 0xe6), Qt::white, QColor(0xfb, 0xfb, 0xfb),
                      QColor(0x1d, 0x1d, 0x1f), QColor(0x8a, 0x8a, 0x8e)});
}

QPalette ShelfPalette::dark() {
    return paletteOf({QColor(0x2b, 0x2b, 0x30), QColor(0xf2, 0xf2, 0xf5), QColor(0x1e, 0x1e, 0x22),
                      QColor(0x3a, 0x3a, 0x40), QColor(0x3d, 0x95, 0xff), Qt::white, QColor(0x3a, 0x3a, 0x3f),
                      QColor(0xf2, 0xf2, 0xf5), QColor(0x8e, 0x8e, 0x93)});
}

QPalette ShelfPalette::forAppearance(AppearanceMode mode, const QPalette& desktop) {
    switch (mode) {
        case AppearanceMode::light:
            return light();
        case AppearanceMode::dark:
            return dark();
        case AppearanceMode::system:
            break;
    }
    return following(isDark(desktop), desktop);
}

QPalette ShelfPalette::following(bool wantDark, const QPalette& desktop) {
    QPalette chosen = wantDark ? dark() : light();
    const QColor accent = desktop.color(QPalette::Active, QPalette::Highlight);
    if (accent.isValid()) {
        for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            chosen.setColor(group, QPalette::Highlight, accent);
            chosen.setColor(group, QPalette::HighlightedText,
                            desktop.color(QPalette::Active, QPalette::HighlightedText));
        }
    }
    return chosen;
}

bool ShelfPalette::isDark(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    return text.lightness() > window.lightness();
}

}  // namespace mosswick
