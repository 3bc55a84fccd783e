#ifndef QEL_SPATIAL_PARTITION_H
#define QEL_SPATIAL_PARTITION_H

/// @file
/// Stable partition of points by a cut.

#include <algorithm>
#include <cstddef>

#include "spatial/PlanePoint.h"

namespace qel {

/// Moves the points below a cut to the front, a NaN among them, and keeps the order on both sides.
/// O(n). Each point is written to both sides and counted on its own: no branch depends on a point.
/// @param scratch  memory for as many points
/// @returns how many points lie below the cut
inline std::size_t partition(PlanePoint* points, std::size_t count, bool acrossX, float cut,
                             PlanePoint* scratch) {
    std::size_t low = 0, high = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const PlanePoint p = points[i];
        const std::size_t isHigh = (acrossX ? p.x : p.y) >= cut ? 1 : 0;
        scratch[high] = p;
        points[low] = p;
        low += 1 - isHigh;
        high += isHigh;
    }
    std::copy(scratch, scratch + high, points + low);
    return low;
}

} // namespace qel

#endif
