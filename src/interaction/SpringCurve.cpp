#include "interaction/SpringCurve.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace mosswick {

SpringCurve::SpringCurve(double response, double dampingFraction)
    : omega_(2 * std::numbers::pi / std::max(response, 1e-6)),
      damping_(std::clamp(dampingFraction, 0.0, 1.0)) {}

double SpringCurve::value(double seconds) const {
    if (seconds <= 0) return 0;
    const double decay = std::exp(-damping_ * omega_ * seconds);
    if (damping_ >= 1) return 1 - decay * (1 + omega_ * seconds);
    const double damped = omega_ * std::sqrt(1 - damping_ * damping_);
    return 1 - decay * (std::cos(damped * seconds) + damping_ * omega_ / damped * std::sin(damped * seconds));
}

double SpringCurve::settlingTime(double tolerance) const {
    // The envelope bounds the oscillation: the amplitude factor below is at most 1/sqrt(1 - ζ²).
    const double envelope = damping_ >= 1 ? 2 : 1 / std::sqrt(1 - damping_ * damping_);
    return std::log(envelope / tolerance) / (std::max(damping_, 0.05) * omega_);
}

}  // namespace mosswick
