#pragma once

namespace mosswick {

// The step response of a damped spring, described as designers do: `response` is the period of
// the undamped oscillation in seconds, `dampingFraction` below 1 lets it overshoot a little.
class SpringCurve {
public:
    SpringCurve(double response, double dampingFraction);

    // The spring's position at `seconds` after release: 0 at the start, settling at 1.
    double value(double seconds) const;
    // When the spring stays within `tolerance` of its rest for good.
    double settlingTime(double tolerance = 0.001) const;

private:
    double omega_;
    double damping_;
};

}  // namespace mosswick
