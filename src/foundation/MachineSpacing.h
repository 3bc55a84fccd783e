#ifndef QEL_FOUNDATION_MACHINESPACING_H
#define QEL_FOUNDATION_MACHINESPACING_H

/// @file
/// Machine spacing: the machine epsilon scaled to the decade of a number, for loops inside the
/// library to take in.

#include <cmath>
#include <cstddef>
#include <limits>

#include "platform/FloatBits.h"

namespace qel {

/// From 1 on upwards or downwards: the next powers of ten, in single precision on purpose (0.1
/// stands as 0.100000001490116..., so that 0.1 lies below it), and the scales, one step after the
/// other, each product rounded.
struct Decades {
    float powers[9];
    double step;
    double scales[10] = {1.0};

    constexpr Decades(double stepBetween, const float (&next)[9]) : powers(), step(stepBetween) {
        for (std::size_t i = 0; i < 9; ++i) {
            powers[i] = next[i];
            scales[i + 1] = scales[i] * step;
        }
    }
};

constexpr Decades kUpwards(10.0, {1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f});
constexpr Decades kDownwards(0.1, {1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f});

/// The power of ten of x, which must be positive and finite: 1 in [0.1, 10], 10 in (10, 100], ...
/// O(1) from 1e-9 to 1e9; beyond, a division for every nine powers.
inline double decadeOf(double x) {
    const bool isUpwards = x >= 1.0;
    const Decades& decades = isUpwards ? kUpwards : kDownwards;
    const auto isPassed = [&](float power) { return isUpwards ? x > power : power > x; };
    const double last = decades.powers[8];
    double scale = 1.0;
    while (isPassed(decades.powers[8])) {
        x /= last;
        scale *= last;
    }
    // The powers passed at the end of the octave of x that is nearer to 1, 2^m or 2^-m: m log10(2)
    // of them, rounded down, for m below 30. Within the octave there is one more at most.
    const int exponent = static_cast<int>(bitsOf(x) >> 52) - 1023;
    const int m = isUpwards ? exponent : -1 - exponent;
    int passed = m * 1233 / 4096;
    passed += isPassed(decades.powers[passed]) ? 1 : 0;
    if (scale == 1.0) {
        return decades.scales[passed];
    }
    for (; passed > 0; --passed) {
        scale *= decades.step;
    }
    return scale;
}

/// NumericalUtils::spacing(x), of float or double.
template <typename T>
inline T spacingAt(T x) {
    constexpr T epsilon = std::numeric_limits<T>::epsilon();
    if (x == T(0) || std::isnan(x)) {
        return epsilon;
    }
    if (std::isinf(x)) { // has no decade
        return std::numeric_limits<T>::quiet_NaN();
    }
    return static_cast<T>(decadeOf(std::abs(static_cast<double>(x))) *
                          static_cast<double>(epsilon));
}

/// A share of a number that is more than a hundred spacings of it: its decade is at most ten times
/// the number, but for what the steps to it round. For numbers of a magnitude above the second, as
/// nothing underflows then. Where one thing exceeds this share of another, no spacing need be found
/// to tell that it exceeds a hundred of them.
constexpr double kHundredSpacings = 0x1p-41;
constexpr double kMinOfSpacings = 1e-290;

} // namespace qel

#endif
