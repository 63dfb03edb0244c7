#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include "shelf/ReducedMotion.h"

namespace mosswick {

// The item count in the toolbar. When the count changes the number rolls (up when it grows, down
// when it shrinks) while the words beside it stay put.
class CountLabel : public QWidget {
    Q_OBJECT

public:
    static constexpr int kRollMilliseconds = 250;

    explicit CountLabel(ReducedMotion motion, QWidget* parent = nullptr);

    void setText(const QString& text, int direction);
    QString text() const { return text_; }
    bool isRolling() const { return roll_.state() == QAbstractAnimation::Running; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ReducedMotion motion_;
    QString text_;
    QString previous_;
    int direction_ = 1;
    QVariantAnimation roll_;
};

}  // namespace mosswick
