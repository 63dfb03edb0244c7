#pragma once

#include <QByteArray>
#include <QStringList>
#include <vector>

struct _XDisplay;

namespace mosswick::testing {

// A drag source reduced to its selection: it takes XdndSelection and answers conversions the way
// GTK programs do (TARGETS answered) or the way Qt programs do (TARGETS refused with a reply that
// names no target, each offered type answered), remembering every target it was asked for and at
// what time.
class FakeDragSource {
public:
    enum class Style { answersTargets, refusesTargets };
    struct Request {
        QString target;
        unsigned long time;
    };

    FakeDragSource(const QByteArray& displayName, Style style, QStringList offered);
    ~FakeDragSource();
    FakeDragSource(const FakeDragSource&) = delete;
    FakeDragSource& operator=(const FakeDragSource&) = delete;

    // Takes the selection, as a drag source does when its drag begins.
    void takeSelection();
    // Answers whatever has been asked so far.
    void pump();
    // Takes the pointer, as a drag source does for the whole drag.
    bool grabPointer();

    const std::vector<Request>& requests() const { return requests_; }
    QStringList requestedTargets() const;

private:
    _XDisplay* display_ = nullptr;
    unsigned long window_ = 0;
    Style style_;
    QStringList offered_;
    std::vector<Request> requests_;
};

}  // namespace mosswick::testing
