#ifndef QEL_CURVE_ROTATION_H
#define QEL_CURVE_ROTATION_H

/// @file
/// Fast road: turns many points about an axis, in place.
///
/// A point costs fewer bytes than operations, so the loop runs in lanes on the widest vector unit
/// of the machine (platform/VectorUnit.h). To put all x, all y and all z together and apart again
/// would take more shuffles than the formula has operations: here each lane computes the coordinate
/// that it was read into, and is only handed the two others of its point. Groups of points begin
/// with a line of the cache, as writing across lines halves the speed beyond it. Each coordinate
/// takes the operations of rotatedPoint in their order, so the bits are those of one point after
/// the other.

#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

/// A matrix, row by row, and the point that it leaves in place.
struct Rotation {
    Point centre;
    Point rows[3];
};

/// centre + M (p - centre), the products of each row summed from left to right.
inline Point rotatedPoint(const Rotation& rotation, const Point& p) {
    const Point d = p - rotation.centre;
    return rotation.centre +
           Point(rotation.rows[0].dot(d), rotation.rows[1].dot(d), rotation.rows[2].dot(d));
}

/// Replaces each of the points by rotatedPoint of it.
void rotatePoints(Point* points, std::size_t count, const Rotation& rotation) noexcept;

} // namespace qel

#endif
