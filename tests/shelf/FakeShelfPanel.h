#pragma once

#include <string>
#include <vector>

#include "shelf/ShelfPanelSurface.h"

namespace mosswick::testing {

// A panel that records what it was asked to do, in a readable log, and runs its animations only
// when told to. Animations take over properties as the real panel's do; one that was cut short
// still has its completion run late, at finishAnimations(), to exercise the controller's guard.
class FakeShelfPanel final : public ShelfPanelSurface {
public:
    ScreenRect frame() const override { return frame_; }
    bool isVisible() const override { return visible_; }
    // Hidden, it stands aside when the window manager in the test allows it.
    bool standsAside() const override { return allowsAside && !visible_ && putAway_; }
    void setFrame(const ScreenRect& frame) override;
    void setAlpha(double alpha) override;
    void orderFront() override;
    void orderOut() override;
    void animate(const PanelAnimation& animation, std::function<void()> completion) override;
    void setAppearance(AppearanceMode mode) override { appearance_ = mode; }
    void takeFocus() override { log("take focus"); }

    bool allowsAside = false;

    double alpha() const { return alpha_; }
    AppearanceMode appearance() const { return appearance_; }

    // Moves every running animation to its end, then runs the completions in the order the
    // animations were started.
    void finishAnimations();
    // Stands the panel part-way through its slide, as if time had passed.
    void standAt(const ScreenRect& frame) { frame_ = frame; }

    // What happened since the last call, one line per request.
    std::vector<std::string> takeLog();

private:
    struct Running {
        PanelAnimation animation;
        std::function<void()> completion;
        bool ownsFrame;
        bool ownsAlpha;
    };
    void log(std::string line) { log_.push_back(std::move(line)); }

    ScreenRect frame_;
    double alpha_ = 1;
    bool visible_ = false;
    bool putAway_ = false;
    AppearanceMode appearance_ = AppearanceMode::system;
    std::vector<Running> running_;
    std::vector<std::string> log_;
};

}  // namespace mosswick::testing
