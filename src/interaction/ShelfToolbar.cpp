#include "interaction/ShelfToolbar.h"

#include <QHBoxLayout>

#include "interaction/CountLabel.h"
#include "interaction/ShelfSymbols.h"
#include "interaction/ToolbarButton.h"

namespace mosswick {

namespace {
// The count starts where a tile's picture starts, so the column lines up.
constexpr int kLeadingMargin = 8;
constexpr int kButtonSpacing = 6;
}  // namespace

ShelfToolbar::ShelfToolbar(ReducedMotion motion, QWidget* parent)
    : QWidget(parent),
      count_(new CountLabel(motion, this)),
      bringBack_(new ToolbarButton(&ShelfSymbols::bringBack, QString::fromUtf8(kBringBackHelp), this)),
      clear_(new ToolbarButton(&ShelfSymbols::trash, QString::fromUtf8(kClearHelp), this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kLeadingMargin, 0, 2, 0);
    row->setSpacing(kButtonSpacing);
    row->addWidget(count_, 1);
    row->addWidget(bringBack_, 0, Qt::AlignVCenter);
    row->addWidget(clear_, 0, Qt::AlignVCenter);
    bringBack_->hide();
    clear_->hide();
    connect(bringBack_, &QAbstractButton::clicked, this, &ShelfToolbar::bringBackClicked);
    connect(clear_, &QAbstractButton::clicked, this, &ShelfToolbar::clearClicked);
}

void ShelfToolbar::setState(const ShelfToolbarState& state, qsizetype itemCount) {
    count_->setText(state.countLabel, itemCount >= itemCount_ ? 1 : -1);
    itemCount_ = itemCount;
    bringBack_->setVisible(state.showsBringBack);
    clear_->setVisible(state.showsClear);
}

}  // namespace mosswick
