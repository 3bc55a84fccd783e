#ifndef QEL_CURVE_ROTATION_H
#define QEL_CURVE_ROTATION_H

/// @file
/// Fast road: turns many points about an axis, in place.
///
/// A point costs fewer bytes than operations, and the compiler turns the loop into lanes on the
/// widest vector unit of the machine (platform/VectorUnit.h). Each lane computes one point in the
/// order stated at rotatedPoint, so the bits are those of one point after the other.

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

/// Replaces every point by rotatedPoint of it.
void rotatePoints(Points& points, const Rotation& rotation) noexcept;

} // namespace qel

#endif
