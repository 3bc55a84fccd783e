#ifndef QEL_CURVE_EVALUATION_H
#define QEL_CURVE_EVALUATION_H

/// @file
/// The point of a polyline at an s: the reference implementation of both evaluators.
///
/// They find the same bracket but combine it in different orders of operations, and only
/// interpolateOnS rounds s to float first. Both differences are deliberate.

#include <cstddef>
#include <vector>

#include "curve/Bracket.h"
#include "curve/Conversions.h"
#include "curve/Tolerance.h"

namespace qel {

/// The point at s between two stored points: pLo + (pHi - pLo) * ((s - sLo) / (sHi - sLo)), or the
/// middle where the s-values count as equal.
inline Point pointBetween(const Point& pLo, const Point& pHi, double sLo, double sHi, double s) {
    if (countAsEqual(sLo, sHi)) {
        return (pLo + pHi) * 0.5;
    }
    const double t = (s - sLo) / (sHi - sLo);
    return pLo + (pHi - pLo) * t;
}

/// The point at s; outside the range, the nearer end point. O(log n).
inline Point pointAtParameter(const Points& points, const std::vector<double>& svalues, double s) {
    if (s > svalues.back()) {
        s = svalues.back(); // where all s-values are equal, the first point answers
    }
    if (!(s > svalues.front())) {
        return points.front();
    }
    if (!(s < svalues.back())) {
        return points.back();
    }
    const auto [lo, hi] = bracketOf(svalues, s);
    return pointBetween(points[lo], points[hi], svalues[lo], svalues[hi], s);
}

/// A point of the polyline, and the stored points that it lies between.
struct BracketedPoint {
    Point point;
    Bracket bracket;
};

/// The point at s rounded to float: pLo + (pHi - pLo) * (s - sLo) / (sHi - sLo), or the middle
/// where the s-values count as equal. At an end and beyond it both indices are that end's. O(log
/// n).
BracketedPoint interpolateOnS(const Points& points, const std::vector<double>& svalues, double s);

} // namespace qel

#endif
