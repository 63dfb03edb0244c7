#include "shelf/ReducedMotion.h"

#include "model/Preferences.h"
#include "shelf/DesktopMotionSetting.h"

namespace mosswick {

bool ReducedMotion::applies() const { return preferences_->reduceMotion() || desktop_->reducesMotion(); }

}  // namespace mosswick
