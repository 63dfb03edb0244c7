#pragma once

#include <functional>

namespace mosswick {

// Whether the desktop asks programs to look dark or light, as its appearance setting says.
class DesktopColorScheme {
public:
    enum class Scheme { noPreference, dark, light };

    virtual ~DesktopColorScheme() = default;
    virtual Scheme scheme() const = 0;
    // `changed` runs on the main thread whenever scheme() answers differently; watch({}) stops.
    virtual void watch(std::function<void()> changed) = 0;
};

// For desktops that say nothing: the desktop's palette alone decides.
class NoDesktopColorScheme final : public DesktopColorScheme {
public:
    Scheme scheme() const override { return Scheme::noPreference; }
    void watch(std::function<void()>) override {}
};

}  // namespace mosswick
