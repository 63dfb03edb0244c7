#pragma once

#include <QString>
#include <vector>

namespace mosswick {

// An installed application that names the window class its windows carry (a desktop entry's
// StartupWMClass), so a window that says nothing else can still be traced to its desktop-file id.
struct WindowClassEntry {
    QString desktopId;
    QString windowClass;

    bool operator==(const WindowClassEntry&) const = default;
};

// The installed applications, as far as telling a window's program goes. Asked on the main thread
// as a drag starts, so it answers from what it has already read.
class InstalledApplications {
public:
    virtual ~InstalledApplications() = default;
    virtual std::vector<WindowClassEntry> windowClassEntries() = 0;
    // Starts reading ahead of the first question, so that question need not wait.
    virtual void prepare() {}
};

// For sessions without installed desktop entries to read: no window class is known.
class NoInstalledApplications final : public InstalledApplications {
public:
    std::vector<WindowClassEntry> windowClassEntries() override { return {}; }
};

}  // namespace mosswick
