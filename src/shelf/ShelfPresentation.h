#pragma once

#include <cstddef>
#include <functional>

namespace mosswick {

// The reasons for the shelf to be on screen, and the one veto. The window controller decides
// from these alone whether the shelf is shown.
struct ShelfPresentation {
    bool isDragging = false;
    bool isSummoned = false;
    bool isPreviewing = false;
    bool hasContent = false;
    bool keepsEmptyShelfUp = false;
    bool isSuppressed = false;

    bool wantsToBeShown() const {
        return !isSuppressed && (isDragging || hasContent || isSummoned || isPreviewing || keepsEmptyShelfUp);
    }

    // The transitions; every change of the flags goes through one of these.

    // Brought up on purpose (the shortcut, the menu, a second launch, a clipboard import).
    void summon();
    // Put away on purpose (Escape, the shortcut's tap on a shown shelf): every reason is dropped
    // and the veto holds until content arrives or the shelf is brought up again.
    void dismiss();
    // Dismissed when it wants to be shown, else summoned.
    void toggle();
    void dragBegan();
    void dragEnded();
    // A position or size is being shown off.
    void startPreview();
    void endPreview();
    // At start-up: hidden, whatever the restored shelf holds.
    void resetHidden(bool nowHasContent);
    // The user asked for empty shelves to hide.
    void emptyShelvesHide();
    // Content arriving lifts the veto; the last item leaving a shelf that was up for a reason
    // keeps it up when the user does not want empty shelves hidden.
    void contentChanged(bool nowHasContent, bool hideWhenEmpty);
    // The saved shelf arrived after start-up: it is content, but as at start-up it lifts nothing.
    void contentRestored(bool nowHasContent) { hasContent = nowHasContent; }

    bool operator==(const ShelfPresentation&) const = default;
};

}  // namespace mosswick

template <>
struct std::hash<mosswick::ShelfPresentation> {
    size_t operator()(const mosswick::ShelfPresentation& p) const noexcept {
        return size_t(p.isDragging) | size_t(p.isSummoned) << 1 | size_t(p.isPreviewing) << 2 |
               size_t(p.hasContent) << 3 | size_t(p.keepsEmptyShelfUp) << 4 | size_t(p.isSuppressed) << 5;
    }
};
