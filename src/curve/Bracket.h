#ifndef QEL_CURVE_BRACKET_H
#define QEL_CURVE_BRACKET_H

/// @file
/// The stored points around an s, and the point between them.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "curve/Conversions.h"
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
/// The searches for the first value not less than s and for the first greater one go the same way
/// until they meet s itself (or NaN), so one walk serves both up to there. What it finds is what
/// std::lower_bound and std::upper_bound find.
inline Bracket bracketOf(const std::vector<double>& svalues, double s) {
    auto first = svalues.begin();
    auto count = svalues.end() - first;
    while (count > 0) {
        const auto half = count / 2;
        const auto middle = first + half;
        const bool below = *middle < s;
        if (below == (s < *middle)) {
            const auto lo = std::lower_bound(first, middle, s);
            const auto hi = std::upper_bound(middle + 1, first + count, s);
            return {static_cast<std::size_t>(lo - svalues.begin()),
                    static_cast<std::size_t>(hi - svalues.begin())};
        }
        first = below ? middle + 1 : first;
        count = below ? count - half - 1 : half;
    }
    const auto hi = static_cast<std::size_t>(first - svalues.begin());
    return {hi - 1, hi};
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
