#pragma once

#include "triggers/DesktopProbe.h"

namespace mosswick {

// For sessions where other programs' drags cannot be seen (headless runs, unsupported desktops):
// nothing ever changes, so the drag monitor stays quiet.
class DummyDesktopProbe final : public DesktopProbe {
public:
    void watch(EventHandler) override {}
    qint64 dragChangeCount() override { return 0; }
    QStringList dragTypes() override { return {}; }
    bool isLeftButtonDown() override { return false; }
    bool isShiftDown() override { return false; }
    FrontmostApplication frontmostApplication() override { return {}; }
};

}  // namespace mosswick
