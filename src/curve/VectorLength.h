#ifndef QEL_CURVE_VECTORLENGTH_H
#define QEL_CURVE_VECTORLENGTH_H

/// @file
/// TripletBase<double>::length() without its branches, for kernels.

#include <cmath>
#include <limits>

#include "platform/VectorUnit.h"

namespace qel {

/// sqrt(x*x + y*y + z*z); the largest finite float, if a component is the undefined marker.
QEL_KERNEL double vectorLength(double x, double y, double z) {
    constexpr double kMarker = std::numeric_limits<double>::max();
    constexpr auto kUndefinedLength = static_cast<double>(std::numeric_limits<float>::max());
    const double norm = std::sqrt(x * x + y * y + z * z);
    const bool isUndefined = (x == kMarker) | (y == kMarker) | (z == kMarker);
    return isUndefined ? kUndefinedLength : norm;
}

} // namespace qel

#endif
