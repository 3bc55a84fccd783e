// Machine spacing: the machine epsilon scaled to the decade of a number.

#include <qel/NumericalUtils.h>

#include <cmath>
#include <limits>

namespace qel {
namespace {

// Single precision on purpose: 0.1 stands as 0.100000001490116..., so that 0.1 lies below it.
constexpr float kAscendingPowers[] = {1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f, 1e8f, 1e9f};
constexpr float kDescendingPowers[] = {1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f,
                                       1e-6f, 1e-7f, 1e-8f, 1e-9f};
constexpr double kLargestPower = 1e9;
constexpr double kSmallestPower = 1e-9f;

// The power of ten of x, which must be positive and finite: 1 in [0.1, 10], 10 in (10, 100], ...
double decadeOf(double x) {
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

template <typename T>
T spacingAt(T x) {
    constexpr T epsilon = std::numeric_limits<T>::epsilon();
    if (x == T(0)) {
        return epsilon;
    }
    if (std::isinf(x)) { // has no decade
        return std::numeric_limits<T>::quiet_NaN();
    }
    return static_cast<T>(decadeOf(std::abs(static_cast<double>(x))) *
                          static_cast<double>(epsilon));
}

} // namespace

double NumericalUtils::spacing(double x) {
    return spacingAt(x);
}

float NumericalUtils::spacing(float x) {
    return spacingAt(x);
}

} // namespace qel
