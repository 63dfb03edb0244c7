#include "interaction/ApplicationAppearance.h"

#include <QEvent>
#include <QGuiApplication>

#include "interaction/ShelfPalette.h"

namespace mosswick {

ApplicationAppearance::ApplicationAppearance(DesktopColorScheme& scheme, QObject* parent)
    : QObject(parent), scheme_(scheme), desktop_(QGuiApplication::palette()) {
    scheme_.watch([this] {
        if (mode_ == AppearanceMode::system) reapply();
    });
    QGuiApplication::instance()->installEventFilter(this);
}

ApplicationAppearance::~ApplicationAppearance() { scheme_.watch({}); }

void ApplicationAppearance::apply(AppearanceMode mode) {
    mode_ = mode;
    reapply();
}

QPalette ApplicationAppearance::paletteFor(AppearanceMode mode, DesktopColorScheme::Scheme scheme,
                                           const QPalette& desktop) {
    if (mode != AppearanceMode::system) return ShelfPalette::forAppearance(mode, desktop);
    switch (scheme) {
        case DesktopColorScheme::Scheme::dark:
            return ShelfPalette::following(true, desktop);
        case DesktopColorScheme::Scheme::light:
            return ShelfPalette::following(false, desktop);
        case DesktopColorScheme::Scheme::noPreference:
            break;
    }
    return ShelfPalette::forAppearance(AppearanceMode::system, desktop);
}

void ApplicationAppearance::reapply() {
    applying_ = true;
    QGuiApplication::setPalette(paletteFor(mode_, scheme_.scheme(), desktop_));
    applying_ = false;
    applied_ = QGuiApplication::palette();
}

bool ApplicationAppearance::eventFilter(QObject* watched, QEvent* event) {
    // Our own palette comes back as a change too; only someone else's is the desktop's.
    if (event->type() == QEvent::ApplicationPaletteChange && watched == QGuiApplication::instance() &&
        !applying_ && QGuiApplication::palette() != applied_) {
        desktop_ = QGuiApplication::palette();
        if (mode_ == AppearanceMode::system) reapply();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace mosswick
