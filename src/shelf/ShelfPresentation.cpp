#include "shelf/ShelfPresentation.h"

namespace mosswick {

void ShelfPresentation::summon() {
    isSuppressed = false;
    isSummoned = true;
    isPreviewing = false;
}

void ShelfPresentation::dismiss() {
    isDragging = false;
    isSummoned = false;
    isPreviewing = false;
    keepsEmptyShelfUp = false;
    isSuppressed = true;
}

void ShelfPresentation::toggle() {
    if (wantsToBeShown())
        dismiss();
    else
        summon();
}

void ShelfPresentation::dragBegan() {
    isSuppressed = false;
    isDragging = true;
}

void ShelfPresentation::dragEnded() { isDragging = false; }

void ShelfPresentation::startPreview() {
    isSuppressed = false;
    isPreviewing = true;
}

void ShelfPresentation::endPreview() { isPreviewing = false; }

void ShelfPresentation::resetHidden(bool nowHasContent) {
    *this = ShelfPresentation{};
    hasContent = nowHasContent;
    isSuppressed = true;
}

void ShelfPresentation::emptyShelvesHide() { keepsEmptyShelfUp = false; }

void ShelfPresentation::contentChanged(bool nowHasContent, bool hideWhenEmpty) {
    const bool hadContent = hasContent;
    hasContent = nowHasContent;
    if (!hadContent && nowHasContent) {
        isSuppressed = false;
        keepsEmptyShelfUp = false;
        return;
    }
    // Having had content, an unsuppressed shelf was up for a reason until now.
    if (!isSuppressed && hadContent && !nowHasContent && !hideWhenEmpty) keepsEmptyShelfUp = true;
}

}  // namespace mosswick
