#pragma once

#include <QRect>
#include <functional>
#include <optional>

namespace mosswick {

// What the desktop's panels and docks reserve on each monitor, for a display backend whose own
// source does not say (Qt subtracts the panels only when there is a single monitor). Monitors
// and areas are in the desktop's device pixels.
class MonitorWorkAreas {
public:
    virtual ~MonitorWorkAreas() = default;

    // The part of `monitor` that windows may use; nothing when it cannot be told, so the
    // backend keeps its own idea.
    virtual std::optional<QRect> usableArea(const QRect& monitor) const = 0;

    // Called on the main thread when a panel comes, goes or changes what it reserves.
    std::function<void()> onChanged;
};

// For desktops where nobody can tell: the display backend's own areas stand.
class NoMonitorWorkAreas final : public MonitorWorkAreas {
public:
    std::optional<QRect> usableArea(const QRect&) const override { return std::nullopt; }
};

}  // namespace mosswick
