#pragma once

#include <QWidget>

#include "shelf/ReducedMotion.h"
#include "interaction/ShelfToolbarState.h"

namespace mosswick {

class CountLabel;
class ToolbarButton;

// The row above the tiles: the item count, then the bring-back and clear buttons when they apply.
class ShelfToolbar : public QWidget {
    Q_OBJECT

public:
    static constexpr const char* kBringBackHelp = "Bring back the files removed last";
    static constexpr const char* kClearHelp = "Clear the shelf";

    explicit ShelfToolbar(ReducedMotion motion, QWidget* parent = nullptr);

    void setState(const ShelfToolbarState& state, qsizetype itemCount);

    const CountLabel& countLabel() const { return *count_; }
    ToolbarButton& bringBackButton() { return *bringBack_; }
    ToolbarButton& clearButton() { return *clear_; }

signals:
    void bringBackClicked();
    void clearClicked();

private:
    CountLabel* count_;
    ToolbarButton* bringBack_;
    ToolbarButton* clear_;
    qsizetype itemCount_ = 0;
};

}  // namespace mosswick
