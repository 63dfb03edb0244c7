#include "platform/x11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QSocketNotifier>
#include <mutex>
#include <set>

#include <X11/Xlib.h>

Q_LOGGING_CATEGORY(lcX11, "mosswick.x11", QtInfoMsg)

namespace mosswick {

namespace {

// Xlib's own handler ends the process on any error, and a window can vanish between learning of
// it and asking about it. Errors on Mosswick's connections are expected and only logged; the
// handler that was there before keeps the others (Qt's).
std::set<Display*>& ownDisplays() {
    static std::set<Display*> displays;
    return displays;
}
XErrorHandler previousHandler = nullptr;

int logError(Display* display, XErrorEvent* error) {
    if (!ownDisplays().contains(display) && previousHandler) return previousHandler(display, error);
    qCDebug(lcX11) << "X error" << error->error_code << "request" << error->request_code << "minor"
                   << error->minor_code;
    return 0;
}

void installErrorHandler() {
    static std::once_flag once;
    std::call_once(once, [] { previousHandler = XSetErrorHandler(logError); });
}

}  // namespace

QByteArray X11Connection::qtDisplayName() {
    if (auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr)
        if (Display* display = x11->display()) return QByteArray(DisplayString(display));
    return {};
}

std::unique_ptr<X11Connection> X11Connection::open(const QByteArray& displayName) {
    const QByteArray name = displayName.isEmpty() ? qtDisplayName() : displayName;
    installErrorHandler();
    Display* display = XOpenDisplay(name.isEmpty() ? nullptr : name.constData());
    if (!display) {
        qCInfo(lcX11) << "cannot connect to the X display" << name;
        return nullptr;
    }
    return std::unique_ptr<X11Connection>(new X11Connection(display));
}

X11Connection::X11Connection(Display* display)
    : display_(display),
      root_(DefaultRootWindow(display)),
      atoms_(display),
      notifier_(std::make_unique<QSocketNotifier>(ConnectionNumber(display), QSocketNotifier::Read)) {
    ownDisplays().insert(display_);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &X11Connection::dispatchPending);
    // Xlib reads events into its queue while it waits for any reply, so some arrive without the
    // socket ever becoming readable again: look at the queue before the event loop sleeps.
    if (auto* dispatcher = QAbstractEventDispatcher::instance())
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            if (XEventsQueued(display_, QueuedAlready) > 0) dispatchQueued();
            XFlush(display_);
        });
}

X11Connection::~X11Connection() {
    notifier_.reset();
    ownDisplays().erase(display_);
    XCloseDisplay(display_);
}

QByteArray X11Connection::displayName() const { return QByteArray(DisplayString(display_)); }

int X11Connection::addEventFilter(EventFilter filter) {
    observers_.push_back({++lastId_, std::move(filter), {}});
    return lastId_;
}

int X11Connection::addBatchObserver(std::function<void()> observer) {
    observers_.push_back({++lastId_, {}, std::move(observer)});
    return lastId_;
}

void X11Connection::removeObserver(int id) {
    std::erase_if(observers_, [id](const Observer& observer) { return observer.id == id; });
}

// Observers are looked up by id as they are called, so one may add or remove others (or itself)
// while events are handed out.
std::vector<int> X11Connection::observerIds() const {
    std::vector<int> ids;
    for (const Observer& observer : observers_) ids.push_back(observer.id);
    return ids;
}

const X11Connection::Observer* X11Connection::find(int id) const {
    for (const Observer& observer : observers_)
        if (observer.id == id) return &observer;
    return nullptr;
}

void X11Connection::flush() { XFlush(display_); }

void X11Connection::sync() { XSync(display_, False); }

void X11Connection::dispatchPending() {
    XEventsQueued(display_, QueuedAfterReading);
    dispatchQueued();
}

void X11Connection::dispatchQueued() {
    // A filter may make requests that read more events; those wait for the loop below.
    if (dispatching_) return;
    dispatching_ = true;
    bool any = false;
    while (XEventsQueued(display_, QueuedAlready) > 0) {
        XEvent event;
        XNextEvent(display_, &event);
        any = true;
        const bool hasData = event.type == GenericEvent && XGetEventData(display_, &event.xcookie);
        for (const int id : observerIds()) {
            const Observer* observer = find(id);
            if (!observer || !observer->filter) continue;
            const EventFilter filter = observer->filter;  // the observer may be removed while it runs
            if (filter(event)) break;
        }
        if (hasData) XFreeEventData(display_, &event.xcookie);
    }
    dispatching_ = false;
    if (!any) return;
    for (const int id : observerIds()) {
        const Observer* observer = find(id);
        if (!observer || !observer->batchEnd) continue;
        const std::function<void()> batchEnd = observer->batchEnd;
        batchEnd();
    }
    XFlush(display_);
}

}  // namespace mosswick
