#pragma once

#include <QWidget>

#include "shelf/PanelWindowHints.h"
#include "shelf/ReducedMotion.h"
#include "model/PreferenceEnums.h"

namespace mosswick {

class ShelfContentView;
class ShelfStore;
class ShelfView;

// The shelf's floating window: frameless, above other windows, out of the task bar and on every
// workspace. It does not take the keyboard focus when it appears, only once it is clicked (so
// Escape can reach it), and gives it up again when it goes away. Rounded and see-through where a
// compositor runs, solid and cut to its rounded shape where none does.
//
// The window controller decides where it stands and when it shows; frames here are in Qt's
// screen coordinates (top-left origin, device-independent pixels).
class ShelfPanel : public QWidget {
    Q_OBJECT

public:
    ShelfPanel(ShelfStore& store, ReducedMotion motion, PanelWindowHints& hints, QWidget* parent = nullptr);
    ~ShelfPanel() override;

    ShelfContentView& contentView() { return *content_; }
    ShelfView& shelfView();

    // Places the panel, then maps it above other windows without activating it.
    void mapAt(const QRect& frame);
    // Moves and resizes the panel, mapped or not.
    void setFrame(const QRect& frame);
    // The frame last given, which the window system may not report back yet.
    QRect frame() const { return frame_; }
    // Maps the panel at its frame (raises it when it is already mapped), without activating it.
    void orderFront();
    // Takes the panel off the screen. Where the window manager allows it the window stays mapped,
    // standing outside every monitor: drag sources that list the desktop's windows once, when
    // their drag begins (Chromium and the programs built on it), never see a window mapped later,
    // but follow one that moves.
    void orderOut();
    // Accepts the focus and asks for it; the shelf's view takes the keys. Qt activates a window
    // still being mapped once it is.
    void takeFocus();
    // Mapped and standing where the controller put it (not aside).
    bool isShown() const;
    // Kept mapped outside every monitor while hidden (where the window manager allows it).
    bool standsAside() const { return standsAside_; }

    void setAppearance(AppearanceMode mode);
    AppearanceMode appearance() const { return appearance_; }

    // The classic material: a solid body cut to its rounded shape even where a compositor could
    // show what lies behind, for desktops whose compositor leaves the see-through body stale.
    void setClassicMaterial(bool classic);

    bool acceptsFocus() const { return !windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus); }

signals:
    void escapePressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void setAcceptsFocus(bool accepts);
    // Maps the withdrawn window with the hints it needs, wherever its geometry says.
    void map();
    // Once after each mapping: makes Qt learn where the window really stands.
    void confirmPosition();
    // While parked: sends the window back out when the window manager put it elsewhere.
    void keepParked();
    void updateTranslucency();
    QRect parkingFrame() const;
    void updateMask();
    void applyPalette();

    ShelfContentView* content_;
    bool classicMaterial_ = false;
    PanelWindowHints& hints_;
    // Drops reach it only while it accepts the focus (see PanelWindowHints).
    const bool staysFocusable_;
    QRect frame_;
    bool confirmingPosition_ = false;
    bool standsAside_ = false;
    bool parked_ = false;
    int parkingAttempts_ = 0;
    static constexpr int kParkingGap = 4000;
    // Moves of a parked window that may be answered by asking again (intermediate reports of a
    // slide included) before the window is withdrawn instead.
    static constexpr int kParkingAttempts = 4;
    AppearanceMode appearance_ = AppearanceMode::system;
};

}  // namespace mosswick
