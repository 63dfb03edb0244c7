#pragma once

#include <QStringList>
#include <functional>
#include <memory>

union _XEvent;

namespace mosswick {

class X11Connection;

// The drag pasteboard on X11: the XdndSelection selection. Every new owner is one change (told by
// XFixes, without polling); the offered types are asked for with TARGETS, and where the source
// refuses that (Qt does), a text/uri-list conversion at the change's own timestamp stands in for
// it. Answers arrive later through the event loop: nothing here waits on the drag source.
// XdndDirectSave0 is never converted, as that makes the source write its file.
class X11DragSelection {
public:
    // Null when the server has no XFixes.
    static std::unique_ptr<X11DragSelection> create(X11Connection& connection);
    ~X11DragSelection();
    X11DragSelection(const X11DragSelection&) = delete;
    X11DragSelection& operator=(const X11DragSelection&) = delete;

    qint64 changeCount() const { return changeCount_; }
    // The latest change's types; empty until known.
    const QStringList& types() const { return types_; }
    // The server time of the latest change.
    unsigned long changeTime() const { return changeTime_; }

    // Types are asked for only while this is on: nobody needs them otherwise.
    void setQueryingTypes(bool querying) { querying_ = querying; }

    // Called on each change and again once its types are known.
    std::function<void()> onChange = [] {};

private:
    X11DragSelection(X11Connection& connection, int xfixesEventBase);
    bool handleEvent(_XEvent& event);
    void ownerChanged(quintptr owner, unsigned long time);
    void convert(quintptr target);
    void replied(quintptr target, quintptr property);
    void readTargets();
    void drainIncrementalReply();

    X11Connection& connection_;
    int xfixesEventBase_;
    int filterId_ = 0;
    quintptr window_ = 0;
    quintptr selection_;
    quintptr targetsAtom_;
    quintptr uriListAtom_;
    quintptr incrAtom_;
    quintptr property_;
    qint64 changeCount_ = 0;
    unsigned long changeTime_ = 0;
    QStringList types_;
    bool querying_ = false;
    // The conversion under way for the latest change, if any.
    quintptr pendingTarget_ = 0;
    bool draining_ = false;
};

}  // namespace mosswick
