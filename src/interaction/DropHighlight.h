#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include "shelf/ReducedMotion.h"

namespace mosswick {

// The outline that tells the user the shelf will take what they are dragging: a rounded frame in
// the accent colour laid over the whole content. It fades in and out; it never takes a click.
class DropHighlight : public QWidget {
    Q_OBJECT

public:
    static constexpr int kFadeMilliseconds = 160;

    explicit DropHighlight(ReducedMotion motion, QWidget* parent = nullptr);

    void setLit(bool lit);
    bool isLit() const { return isLit_; }
    // 0 when out of sight, 1 when fully shown.
    double level() const { return level_; }
    bool isFading() const { return fade_.state() == QAbstractAnimation::Running; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ReducedMotion motion_;
    bool isLit_ = false;
    double level_ = 0;
    QVariantAnimation fade_;
};

}  // namespace mosswick
