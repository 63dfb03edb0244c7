#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace mosswick {

// The program whose window is active, as its window names it.
struct FrontmostApplication {
    // Its desktop-file id (without ".desktop") where the window says so; empty otherwise.
    QString applicationId;
    // The window's class (X11's WM_CLASS class), empty when it has none.
    QString windowClass;
};

// What the drag monitor can learn about other programs' drags: the desktop's mouse and the
// system-wide drag pasteboard, seen from outside. Implementations answer from the main thread and
// never wait on another program.
class DesktopProbe {
public:
    enum class Event {
        leftMouseDown,
        leftMouseUp,
        // The pointer moved while the left button was down.
        leftMouseDragged,
        // The drag pasteboard changed, or the types of its latest change became known.
        dragPasteboardChanged,
    };
    using EventHandler = std::function<void(Event)>;

    virtual ~DesktopProbe() = default;

    // Starts handing the desktop's events to `handler` on the main thread; watch({}) stops.
    virtual void watch(EventHandler handler) = 0;

    // Grows by one whenever a drag source puts something on the drag pasteboard.
    virtual qint64 dragChangeCount() = 0;
    // The types offered by the latest change, as MIME or selection target names. Empty while
    // they are still being asked for, or when the source offers nothing it will name.
    virtual QStringList dragTypes() = 0;

    virtual bool isLeftButtonDown() = 0;
    virtual bool isShiftDown() = 0;
    // Both empty when no window is active or nothing is known of it.
    virtual FrontmostApplication frontmostApplication() = 0;
};

}  // namespace mosswick
