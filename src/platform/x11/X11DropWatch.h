#pragma once

#include <QAbstractNativeEventFilter>
#include <QtGlobal>
#include <optional>

namespace mosswick {

class X11Atoms;

// Notes the XdndDrop messages Qt's own connection receives: Qt keeps the drop's source window
// and server time to itself, and both are needed to ask the source for a promised file (a Qt
// source finds the dropped data only by that time once its drag has ended). Qt hands the
// message to this filter before it delivers the drop, so during a drop event the last one noted
// is that drop's. Main thread only.
class X11DropWatch final : public QAbstractNativeEventFilter {
public:
    struct Drop {
        quint32 source;  // the drag source's window
        quint32 time;    // the drop's server time
    };

    // Watches from construction until destruction; does nothing unless Qt runs on xcb.
    explicit X11DropWatch(X11Atoms& atoms);
    ~X11DropWatch() override;
    X11DropWatch(const X11DropWatch&) = delete;
    X11DropWatch& operator=(const X11DropWatch&) = delete;

    // The latest drop, handed out once.
    std::optional<Drop> takeLastDrop();

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    quint32 dropAtom_ = 0;
    std::optional<Drop> last_;
};

}  // namespace mosswick
