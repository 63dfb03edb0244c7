#pragma once

#include <QtGlobal>

namespace mosswick {

// What the shelf's window asks of the window system beyond what Qt sets: to be left out of task
// bars and pagers and kept on every workspace, and whether a compositor runs (a see-through window
// needs one). Window ids are the native ids Qt gives.
class PanelWindowHints {
public:
    virtual ~PanelWindowHints() = default;

    // Read by the window manager when the window is mapped and dropped when it is withdrawn: call it
    // before every map, on the unmapped window.
    virtual void keepOffTaskbarOnAllWorkspaces(quintptr window) = 0;
    virtual bool compositorRunning(quintptr window) const = 0;
    // Asks the window manager to leave the window wherever it is moved, outside every screen
    // included, for as long as it stays mapped; call it on the unmapped window. False where that
    // cannot be had: the panel is then withdrawn while hidden instead of standing aside.
    virtual bool letStandOffScreen(quintptr window) = 0;
    // Hands the keyboard focus on when the window holds it: a window that stays mapped aside
    // would keep it otherwise.
    virtual void giveUpFocus(quintptr window) = 0;
    // Whether drops reach only an ordinary window that accepts the focus (KWin hands a drag's
    // data to none other, and hides the utility windows of an inactive program): the panel is
    // then such a window, shown without being activated.
    virtual bool dropsNeedFocusableWindow() const { return false; }
    // Whether only a window the window manager leaves alone lands where it is placed (sway centres
    // and widens the windows it manages): the panel is then one (override-redirect on X11).
    virtual bool placesItself() const { return false; }
    // Whether a drag's data can be read only while the drag is over the window, not at its drop
    // (wlroots hands an unfocused X window nothing then): the panel then reads what it would take
    // as the drag enters, and drops that.
    virtual bool dataOnlyBeforeDrop() const { return false; }
};

// Where no window system can be asked: nothing to set, and a compositor is taken to run (Wayland
// always composites; offscreen has nothing to cut).
class NoPanelWindowHints final : public PanelWindowHints {
public:
    void keepOffTaskbarOnAllWorkspaces(quintptr) override {}
    bool compositorRunning(quintptr) const override { return true; }
    bool letStandOffScreen(quintptr) override { return false; }
    void giveUpFocus(quintptr) override {}
};

}  // namespace mosswick
