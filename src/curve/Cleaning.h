#ifndef QEL_CURVE_CLEANING_H
#define QEL_CURVE_CLEANING_H

/// @file
/// Points of a polyline that lie close to each other in s.

#include <cstddef>
#include <vector>

#include <qel/ParametricCurve.h>

namespace qel {

/// 10^exponent spacings of s at 0.5, in single or double precision; infinite or zero where the
/// power overflows or underflows.
double coincidenceTolerance(int exponent, ParametricCurve::PrecisionUtils precision);

/// Gives keep(i) the index of each point that is kept, in order: the first, the last, and those
/// between whose s is beyond that of the point kept before, and before that of the next point, by
/// more than the tolerance. O(n).
template <typename Keep>
void forEachDistinct(const std::vector<double>& svalues, double tolerance, Keep keep) {
    keep(std::size_t{0});
    double last = svalues[0];
    for (std::size_t i = 1; i + 1 < svalues.size(); ++i) {
        const double s = svalues[i];
        if (s - last > tolerance && svalues[i + 1] - s > tolerance) {
            keep(i);
            last = s;
        }
    }
    keep(svalues.size() - 1);
}

} // namespace qel

#endif
