#pragma once

#include <QObject>
#include <QPalette>

#include "interaction/DesktopColorScheme.h"
#include "model/PreferenceEnums.h"

namespace mosswick {

// The application-wide palette for the user's appearance preference. Light and dark are the
// shelf's own; "system" follows the desktop while Mosswick runs: its colour scheme where it
// states one, else the palette Qt was given for the desktop (a platform theme or qt6ct may change
// it at any time). The desktop's accent colour is kept either way.
class ApplicationAppearance final : public QObject {
    Q_OBJECT

public:
    explicit ApplicationAppearance(DesktopColorScheme& scheme, QObject* parent = nullptr);
    ~ApplicationAppearance() override;

    void apply(AppearanceMode mode);
    AppearanceMode mode() const { return mode_; }

    static QPalette paletteFor(AppearanceMode mode, DesktopColorScheme::Scheme scheme,
                               const QPalette& desktop);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reapply();

    DesktopColorScheme& scheme_;
    AppearanceMode mode_ = AppearanceMode::system;
    // The desktop's palette as Qt last had it from someone other than us.
    QPalette desktop_;
    QPalette applied_;
    bool applying_ = false;
};

}  // namespace mosswick
