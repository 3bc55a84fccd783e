#ifndef QEL_CURVE_DISTANCELANES_H
#define QEL_CURVE_DISTANCELANES_H

/// @file
/// The smallest squared distance of a few neighbouring points, in the lanes of the vector unit.

#include <cstddef>

#include "curve/Conversions.h"
#include "curve/NearestVertex.h"
#include "platform/VectorUnit.h"

namespace qel {

/// Points taken together: two of the widest registers, so that their operations overlap.
constexpr std::size_t kDistanceLanes = 16;

/// The least of values none of which is NaN, or all; count is a power of two.
template <std::size_t count>
QEL_KERNEL double leastOf(const double* values) {
    if constexpr (count == 1) {
        return values[0];
    } else {
        constexpr std::size_t half = count / 2;
        double lesser[half];
        for (std::size_t i = 0; i < half; ++i) {
            lesser[i] = values[i + half] < values[i] ? values[i + half] : values[i];
        }
        return leastOf<half>(lesser);
    }
}

/// The smallest squared distance of q from count points, or start if none is less. Each lane keeps
/// the minimum of its own points by the comparison of the plain search: a NaN never comes in, and
/// a NaN to start with never goes out. The arithmetic is that of squaredDistance, to the bit.
///
/// @param count  a multiple of kDistanceLanes
QEL_KERNEL double leastSquaredDistance(const Point* points, std::size_t count, const Point& q,
                                       double start) {
    const double qx = q.x;
    const double qy = q.y;
    const double qz = q.z;
    double lanes[kDistanceLanes];
    for (double& lane : lanes) {
        lane = start;
    }
    for (std::size_t i = 0; i < count; i += kDistanceLanes) {
// Unrolled, it would no longer be seen as one operation on all lanes.
#pragma GCC unroll 1
        for (std::size_t j = 0; j < kDistanceLanes; ++j) {
            const double x = points[i + j].x - qx;
            const double y = points[i + j].y - qy;
            const double z = points[i + j].z - qz;
            const double d2 = x * x + y * y + z * z;
            lanes[j] = d2 < lanes[j] ? d2 : lanes[j];
        }
    }
    return leastOf<kDistanceLanes>(lanes);
}

/// Index of the first point at a squared distance that one of them has.
inline std::size_t firstAtSquaredDistance(double d2, const Point* points, const Point& q) {
    std::size_t i = 0;
    while (squaredDistance(points[i], q) != d2) {
        ++i;
    }
    return i;
}

} // namespace qel

#endif
