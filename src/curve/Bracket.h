#ifndef QEL_CURVE_BRACKET_H
#define QEL_CURVE_BRACKET_H

/// @file
/// The stored points around an s, and the point between them.

#include <cmath>
#include <cstddef>
#include <vector>

#include "curve/Conversions.h"
#include "curve/PartitionPoint.h"
#include "foundation/MachineSpacing.h"

namespace qel {

constexpr double kEqualSvalues = 100.0; // spacings of the greater one

inline bool countAsEqual(double sLo, double sHi) {
    const double step = sHi - sLo;
    const double magnitude = std::abs(sHi);
    if (magnitude > kLeastOfSpacings && step > kHundredSpacings * magnitude) {
        return false; // without the search for the decade
    }
    return kEqualSvalues * spacingAt(sHi) > step;
}

/// hi is the first index whose s-value is greater than s; lo is the first index whose s-value
/// equals s if there is one, else the last whose s-value is less.
struct Bracket {
    std::size_t lo;
    std::size_t hi;
};

/// The bracket of an s strictly between the first and the last s-value. Both indices are valid
/// also where NaN stands among the s-values. O(log n).
///
/// hi is what std::upper_bound finds. It is what std::lower_bound finds, too, unless that is s
/// itself or the search came across a NaN.
inline Bracket bracketOf(const std::vector<double>& svalues, double s) {
    double zero = 0.0; // a NaN or an infinity among the values makes it a NaN
    const std::size_t lower =
        partitionPoint(svalues.data(), svalues.size(), [s, &zero](double value) {
            zero += value * 0.0;
            return value < s;
        });
    if (svalues[lower] != s && zero == 0.0) {
        return {lower - 1, lower};
    }
    const std::size_t upper =
        partitionPoint(svalues.data(), svalues.size(), [s](double value) { return !(s < value); });
    return {lower == upper ? lower - 1 : lower, upper};
}

/// Point at s between two points with their s-values: weighted by where s lies, or the middle
/// where the s-values count as equal.
inline Point pointBetween(const Point& pLo, const Point& pHi, double sLo, double sHi, double s) {
    if (countAsEqual(sLo, sHi)) {
        return (pLo + pHi) * 0.5;
    }
    const double t = (s - sLo) / (sHi - sLo);
    return pLo + (pHi - pLo) * t;
}

/// Point at s; outside the range, the nearer end point. Also tells the hi of its bracket, unless
/// the answer is an end point. O(log n).
inline Point pointAtParameter(const Points& points, const std::vector<double>& svalues, double s,
                              std::size_t& hi) {
    if (s > svalues.back()) {
        s = svalues.back(); // where all s-values are equal, the first point answers
    }
    if (!(s > svalues.front())) {
        return points.front();
    }
    if (!(s < svalues.back())) {
        return points.back();
    }
    const Bracket bracket = bracketOf(svalues, s);
    hi = bracket.hi;
    return pointBetween(points[bracket.lo], points[hi], svalues[bracket.lo], svalues[hi], s);
}

} // namespace qel

#endif
