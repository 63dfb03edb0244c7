#pragma once

#include <QByteArray>

#include "interaction/DragPayload.h"

namespace mosswick {

// Qt's drag on X11 makes two types up from the URIs and answers for them itself: a
// text/x-moz-url of the first file's URL (no title, whatever bytes were given for it) and a
// text/plain of the URLs, even when no text was chosen. Where the desktop lets it, a backend
// answers reads of those types with what the drag really offers instead.
class DragTypeOverride {
public:
    // How a read of one type is answered.
    struct Answer {
        enum class Kind { qtDefault, bytes, refusal };
        Kind kind = Kind::qtDefault;
        QByteArray bytes;

        bool operator==(const Answer&) const = default;
    };

    virtual ~DragTypeOverride() = default;

    // From now on, reads of the shelf's drags are answered for these types (the latest drag's:
    // targets read a drop after the drag has ended, but never one drag's data during the next).
    virtual void offer(const DragPayload::Types& types) = 0;

    // The rule: a link's own text/x-moz-url replaces Qt's; a drag that offers no text refuses
    // text/plain; anything else, a chosen text included, Qt answers. Where a compositor hands the
    // shelf's drags to Wayland programs (`bridged`), every offered type is answered with its bytes:
    // Qt ties a read to its drag by the read's time and refuses any other, and mutter reads at its
    // own time, so the Wayland program would get nothing.
    static Answer answer(const DragPayload::Types& types, const QByteArray& target, bool bridged = false);
};

// Where no backend can step in: Qt answers everything.
class NoDragTypeOverride final : public DragTypeOverride {
public:
    void offer(const DragPayload::Types&) override {}
};

}  // namespace mosswick
