#ifndef QEL_CURVE_ARCLENGTHSTEPS_H
#define QEL_CURVE_ARCLENGTHSTEPS_H

/// @file
/// The two loops of the arc length, on every lane of the vector unit.
///
/// The lengths of the steps do not depend on each other, nor do the divisions: both run in lanes.
/// The sum of the steps is taken one by one, in the order of the points, as every partial sum is a
/// result. The steps of a short block stay in the first cache until they are added, so that the
/// points are read once, and the sum of one block runs beside the square roots of the next. Every
/// value is that of the scalar formula, rounded as often, so the bits are the same.

#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

/// Writes the distance from the first point along the polyline to each point: 0, then
/// distances[i] = distances[i - 1] + (points[i] - points[i - 1]).length().
///
/// @param[out] distances  points.size() values
void cumulateSteps(const Points& points, double* distances);

/// Divides count values by a divisor other than zero.
void divideAll(double* values, std::size_t count, double divisor);

} // namespace qel

#endif
