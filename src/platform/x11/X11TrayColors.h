#pragma once

#include <QColor>
#include <functional>
#include <optional>

union _XEvent;

namespace mosswick {

class X11Connection;

// The colour the system tray asks its icons to draw in: the first of _NET_SYSTEM_TRAY_COLORS on
// the tray manager's window, the panel's own text colour. Trays start after us and change
// themes, so the tray selection's owner and that property are watched, and `changed` is called
// with the answer whenever it may have changed. Main thread only.
class X11TrayColors {
public:
    using Changed = std::function<void(std::optional<QColor> textColor)>;
    X11TrayColors(X11Connection& connection, Changed changed);
    ~X11TrayColors();
    X11TrayColors(const X11TrayColors&) = delete;
    X11TrayColors& operator=(const X11TrayColors&) = delete;

    std::optional<QColor> textColor() const { return textColor_; }

private:
    void readManager();
    bool handleEvent(_XEvent& event);

    X11Connection& connection_;
    Changed changed_;
    int filterId_ = 0;
    int xfixesEventBase_ = -1;
    unsigned long selection_ = 0;
    unsigned long colorsAtom_ = 0;
    unsigned long manager_ = 0;
    std::optional<QColor> textColor_;
};

}  // namespace mosswick
