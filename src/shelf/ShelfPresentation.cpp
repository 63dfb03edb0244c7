#include "shelf/ShelfPresentation.h"

namespace mosswick {

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
