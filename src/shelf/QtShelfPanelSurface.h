#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <vector>

#include "shelf/ShelfPanelSurface.h"

class QVariantAnimation;

namespace mosswick {

class ShelfPanel;

// The window controller's panel, on screen: converts the controller's frames (origin at the lower
// left of the main display, y up) to Qt's once, here, and runs its animations with Qt's
// animation framework. A later animation takes over the properties it names from earlier ones,
// which still finish and report; nothing reports after the panel is gone.
class QtShelfPanelSurface final : public QObject, public ShelfPanelSurface {
    Q_OBJECT

public:
    explicit QtShelfPanelSurface(ShelfPanel* panel);
    ~QtShelfPanelSurface() override;

    ShelfPanel& panel() { return *panel_; }

    ScreenRect frame() const override { return frame_; }
    bool isVisible() const override;
    bool standsAside() const override;
    void setFrame(const ScreenRect& frame) override;
    void setAlpha(double alpha) override;
    void orderFront() override;
    void takeFocus() override;
    void orderOut() override;
    void animate(const PanelAnimation& animation, std::function<void()> completion) override;
    void setAppearance(AppearanceMode mode) override;

private:
    struct Running {
        QVariantAnimation* animation;
        bool ownsFrame;
        bool ownsAlpha;
    };
    void applyFrame(const ScreenRect& frame);
    void applyAlpha(double alpha);

    QPointer<ShelfPanel> panel_;
    ScreenRect frame_;
    double alpha_ = 1;
    std::vector<Running> running_;
};

}  // namespace mosswick
