#ifndef QEL_CURVE_AXISCOORDINATES_H
#define QEL_CURVE_AXISCOORDINATES_H

/// @file
/// Axial, radial and angle coordinates about an axis.
///
/// Fast path: neither the coordinates of a point nor the sine and cosine of the turn from its
/// neighbour depend on those of another, so both run in lanes, block by block; the arcs are then
/// taken and summed one by one. Each value takes the stated operations in their order, with a
/// division by one in place of one that is left out, so the bits are the same.

#include <cstddef>
#include <vector>

#include <qel/Point.h>

namespace qel {

struct Axis {
    Point point;
    Point direction; ///< of unit length
};

/// Sets out[i], a Point or FloatPoint, to (axial, radial, 0) of each point: along the axis and away
/// from it. The list may be the points themselves.
template <typename Target>
void convertToART0(const Axis& axis, const Points& points, Target* out);

/// Sets out[i] to (axial, radial, angle in radians). The angle is theta0 at the reference point;
/// from there to both ends it grows by the turn between the unit vectors from the axis to
/// neighbouring points, by the right-hand rule, from -pi to pi; by none to and from a point on the
/// axis. The list may be the points themselves.
template <typename Target>
void convertToART(const Axis& axis, const Points& points, std::size_t reference, double theta0,
                  Target* out);

} // namespace qel

#endif
