#include "interaction/ShelfToolbarState.h"

#include "model/ShelfStore.h"

namespace mosswick {

ShelfToolbarState ShelfToolbarState::of(const ShelfStore& store) {
    return of(static_cast<qsizetype>(store.items().size()), !store.removalHistory().empty());
}

ShelfToolbarState ShelfToolbarState::of(qsizetype itemCount, bool hasRemovals) {
    return {countLabelFor(itemCount), hasRemovals, itemCount > 0};
}

QString ShelfToolbarState::countLabelFor(qsizetype itemCount) {
    if (itemCount <= 0) return {};
    if (itemCount == 1) return QStringLiteral("1 item");
    return QString::number(itemCount) + QStringLiteral(" items");
}

}  // namespace mosswick
