#pragma once

#include <QAbstractButton>

namespace mosswick {

// A toolbar button of the shelf: one drawn symbol on a small glass pill, its help text as the
// tooltip and the name a screen reader says. Tab reaches it (Space presses it); a click leaves the
// focus where it was.
class ToolbarButton : public QAbstractButton {
    Q_OBJECT

public:
    using Symbol = void (*)(QPainter& painter, const QRectF& box, const QColor& color);

    ToolbarButton(Symbol symbol, const QString& help, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol symbol_;
};

}  // namespace mosswick
