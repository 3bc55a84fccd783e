#ifndef QEL_POLYLINE_INTERPOLATION_H
#define QEL_POLYLINE_INTERPOLATION_H

#include <cmath>

namespace qel {

/// Linear from a at t = 0 to exactly b at t = 1.
inline double interpolated(double a, double b, double t) {
    const double s = t < 1.0 ? a + (b - a) * t : b;
    return std::isfinite(s) ? s : a * (1.0 - t) + b * t; // where the difference overflows
}

} // namespace qel

#endif
