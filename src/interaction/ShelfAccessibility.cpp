#include "interaction/ShelfAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "interaction/CountLabel.h"
#include "interaction/EmptyStateView.h"
#include "interaction/ShelfItemView.h"

namespace mosswick {

namespace {

class TileAccessible final : public QAccessibleWidget {
public:
    explicit TileAccessible(ShelfItemView* tile) : QAccessibleWidget(tile, QAccessible::ListItem) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const auto* tile = static_cast<const ShelfItemView*>(widget());
        state.selectable = true;
        state.multiSelectable = true;
        state.selected = tile->isSelected();
        state.focusable = true;
        state.focused = tile->hasKeyboardFocus();
        return state;
    }
};

QAccessibleInterface* shelfAccessible(const QString&, QObject* object) {
    if (!object->isWidgetType()) return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    if (auto* tile = qobject_cast<ShelfItemView*>(object)) return new TileAccessible(tile);
    if (qobject_cast<CountLabel*>(object) || qobject_cast<EmptyStateView*>(object))
        return new QAccessibleWidget(widget, QAccessible::StaticText);
    if (object->objectName() == QLatin1String(ShelfAccessibility::kTileListName))
        return new QAccessibleWidget(widget, QAccessible::List);
    return nullptr;
}

}  // namespace

void ShelfAccessibility::install() {
    static const bool installed = [] {
        QAccessible::installFactory(shelfAccessible);
        return true;
    }();
    Q_UNUSED(installed);
}

}  // namespace mosswick
