#ifndef QEL_CURVE_ARCLENGTH_H
#define QEL_CURVE_ARCLENGTH_H

/// @file
/// s-values of a polyline as normalised arc length.
///
/// Fast path: neither the lengths of the steps nor the divisions depend on each other, so both run
/// in lanes. The sum of the steps is taken one by one, in the order of the points, as every partial
/// sum is a result. The steps of a short block stay in the first cache until they are added, so
/// that the points are read once, and the sum of one block runs beside the square roots of the
/// next. Every value is that of the scalar formula, rounded as often, so the bits are the same.

#include <vector>

#include "curve/Conversions.h"

namespace qel {

/// Cumulative distance between consecutive points, divided by the total: s is 0 at the first point
/// and exactly 1 at the last. A polyline of no significant length gets 0, ..., 0, 1. O(n).
///
/// @param      points   at least one
/// @param[out] svalues  one for each point
/// @param[out] length   the total, same unit as the points
void calculateArcValue(const Points& points, std::vector<double>& svalues, double& length);

/// The same of the points (c, 0, 0), c being a component of each point.
void calculateArcValue(const Points& points, double Point::*component, std::vector<double>& svalues,
                       double& length);

} // namespace qel

#endif
