#pragma once

#include <QWidget>

namespace mosswick {

// What an empty shelf shows: a document with a downward arrow and two lines on what to do.
// Clicks pass through to the shelf behind it.
class EmptyStateView : public QWidget {
    Q_OBJECT

public:
    static constexpr const char* kHeadline = "Drop files here";
    static constexpr const char* kHint = "Then let go of the mouse";

    explicit EmptyStateView(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace mosswick
