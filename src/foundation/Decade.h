#ifndef QEL_FOUNDATION_DECADE_H
#define QEL_FOUNDATION_DECADE_H

/// @file
/// The power of ten of a number: its definition, step by step.

namespace qel {

// Single precision on purpose: 0.1 stands as 0.100000001490116..., so that 0.1 lies below it.
constexpr float kAscendingPowers[] = {1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f};
constexpr float kDescendingPowers[] = {1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f,
                                       1e-6f, 1e-7f, 1e-8f, 1e-9f};

/// The power of ten of x, which must be positive and finite: 1 in [0.1, 10], 10 in (10, 100], ...
constexpr double decadeStepByStep(double x) {
    constexpr double kLargestPower = 1e9;
    constexpr double kSmallestPower = 1e-9f;
    double scale = 1.0;
    if (x >= 1.0) {
        while (x > kLargestPower) {
            x /= kLargestPower;
            scale *= kLargestPower;
        }
        for (const double power : kAscendingPowers) {
            if (!(x > power)) {
                break;
            }
            scale *= 10.0;
        }
    } else {
        while (kSmallestPower > x) {
            x /= kSmallestPower;
            scale *= kSmallestPower;
        }
        for (const double power : kDescendingPowers) {
            if (!(power > x)) {
                break;
            }
            scale *= 0.1;
        }
    }
    return scale;
}

} // namespace qel

#endif
