#pragma once

#include <QByteArray>
#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "platform/x11/X11Atoms.h"

class QSocketNotifier;
struct _XDisplay;
union _XEvent;

namespace mosswick {

// Mosswick's own connection to the X server, apart from Qt's, so its backends can select events
// and set per-client modes (detectable auto-repeat) without disturbing Qt. Its events are read in
// Qt's event loop and offered to each backend's filter in turn. Main thread only.
class X11Connection : public QObject {
    Q_OBJECT

public:
    // Returns false when it did not take the event.
    using EventFilter = std::function<bool(_XEvent& event)>;

    // Connects to `displayName` (empty: the display Qt uses, else $DISPLAY); null when that fails.
    static std::unique_ptr<X11Connection> open(const QByteArray& displayName = {});
    // The display Qt itself is connected to, when it runs on X11.
    static QByteArray qtDisplayName();

    ~X11Connection() override;

    _XDisplay* display() const { return display_; }
    // What the display is called, for another connection to the same one.
    QByteArray displayName() const;
    quintptr rootWindow() const { return root_; }
    // The table every main-thread backend takes its atoms from, Qt's own connection's included.
    X11Atoms& atoms() { return atoms_; }
    quintptr atom(const char* name) { return atoms_[name]; }

    int addEventFilter(EventFilter filter);
    // Called once after each batch of events, so a backend can coalesce bursts (pointer motion).
    int addBatchObserver(std::function<void()> observer);
    void removeObserver(int id);

    // Reads whatever the server has sent and hands it out.
    void dispatchPending();
    // Sends requests still buffered.
    void flush();
    // Sends them and waits until the server has dealt with them.
    void sync();

private:
    struct Observer {
        int id;
        EventFilter filter;
        std::function<void()> batchEnd;
    };

    explicit X11Connection(_XDisplay* display);
    void dispatchQueued();
    std::vector<int> observerIds() const;
    const Observer* find(int id) const;

    _XDisplay* display_;
    quintptr root_;
    X11Atoms atoms_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<Observer> observers_;
    int lastId_ = 0;
    bool dispatching_ = false;
};

}  // namespace mosswick
