#ifndef QEL_CURVE_ARCLENGTH_H
#define QEL_CURVE_ARCLENGTH_H

/// @file
/// s-values of a polyline as normalised arc length.

#include <vector>

#include "curve/Conversions.h"

namespace qel {

/// Cumulative distance between consecutive points, divided by the total: s is 0 at the first point
/// and exactly 1 at the last. A polyline of no significant length gets 0, ..., 0, 1.
///
/// @param      points   at least one
/// @param[out] svalues  one for each point
/// @param[out] length   the total, same unit as the points
void calculateArcValue(const Points& points, std::vector<double>& svalues, double& length);

} // namespace qel

#endif
