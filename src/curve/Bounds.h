#ifndef QEL_CURVE_BOUNDS_H
#define QEL_CURVE_BOUNDS_H

/// @file
/// The extremes of points, component by component.
///
/// As a loop finds them that goes on to a point whose component is strictly beyond the extreme so
/// far: a NaN counts only as the first point's, which then is the extreme; of zeros of both signs
/// the first one stays; and so does the first of equal points.

#include <array>
#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

/// The sides of a bounding box.
enum Side : std::size_t { leastX, leastY, leastZ, greatestX, greatestY, greatestZ };
constexpr std::size_t kSides = 6;

/// The extremes at all sides, in one pass. O(n).
std::array<double, kSides> boundsOf(const Points& points);

/// Index of the first point at a side. O(n).
std::size_t indexOfExtreme(const Points& points, Side side);

} // namespace qel

#endif
