#include "FakeShelfPanel.h"

#include <sstream>

namespace mosswick::testing {

namespace {
std::string describe(const ScreenRect& rect) {
    std::ostringstream out;
    out << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
    return out.str();
}
}  // namespace

void FakeShelfPanel::setFrame(const ScreenRect& frame) {
    for (Running& r : running_) r.ownsFrame = false;
    frame_ = frame;
    log("frame " + describe(frame));
}

void FakeShelfPanel::setAlpha(double alpha) {
    for (Running& r : running_) r.ownsAlpha = false;
    alpha_ = alpha;
    std::ostringstream line;
    line << "alpha " << alpha;
    log(line.str());
}

void FakeShelfPanel::orderFront() {
    visible_ = true;
    log("front");
}

void FakeShelfPanel::orderOut() {
    visible_ = false;
    putAway_ = true;
    log("out");
}

void FakeShelfPanel::animate(const PanelAnimation& animation, std::function<void()> completion) {
    for (Running& r : running_) {
        r.ownsFrame = false;
        if (animation.alpha) r.ownsAlpha = false;
    }
    running_.push_back({animation, std::move(completion), true, animation.alpha.has_value()});
    std::ostringstream line;
    line << "animate " << describe(animation.frame);
    if (animation.alpha) line << " alpha " << *animation.alpha;
    line << " " << animation.duration << "s "
         << (animation.curve == AnimationCurve::easeIn ? "ease-in" : "ease-out");
    log(line.str());
}

void FakeShelfPanel::finishAnimations() {
    std::vector<Running> finishing;
    finishing.swap(running_);
    for (const Running& r : finishing) {
        if (r.ownsFrame) frame_ = r.animation.frame;
        if (r.ownsAlpha) alpha_ = *r.animation.alpha;
    }
    for (const Running& r : finishing)
        if (r.completion) r.completion();
}

std::vector<std::string> FakeShelfPanel::takeLog() {
    std::vector<std::string> taken;
    taken.swap(log_);
    return taken;
}

}  // namespace mosswick::testing
