#ifndef QEL_TESTS_CURVE_REFERENCECURVE_H
#define QEL_TESTS_CURVE_REFERENCECURVE_H

// The reference implementation of how a curve is measured and read at a parameter, by searching
// from the start. Slow and obvious on purpose.

#include <cmath>
#include <cstddef>

#include <qel/NumericalUtils.h>

#include "support/Curves.h"

namespace qel_test {

// -- At a parameter ----

// The stored points around an s strictly inside the range, by looking at one s-value at a time.
inline void referenceBracket(const Values& s, double at, std::size_t& lo, std::size_t& hi) {
    hi = 0;
    while (!(s[hi] > at)) {
        ++hi;
    }
    lo = hi - 1;
    for (std::size_t i = hi; i-- > 0;) {
        if (s[i] == at) {
            lo = i;
        }
    }
}

inline bool referenceEqual(const Values& s, std::size_t lo, std::size_t hi) {
    return 100.0 * qel::NumericalUtils::spacing(s[hi]) > s[hi] - s[lo];
}

inline Point referenceAt(const Points& p, const Values& s, double at) {
    at = at > s.back() ? s.back() : at;
    if (!(at > s.front())) {
        return p.front();
    }
    if (!(at < s.back())) {
        return p.back();
    }
    std::size_t lo = 0;
    std::size_t hi = 0;
    referenceBracket(s, at, lo, hi);
    if (referenceEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * ((at - s[lo]) / (s[hi] - s[lo]));
}

// The evaluator that rounds s to float and weighs before it divides.
inline Point referenceInterpolated(const Points& p, const Values& s, double exact, std::size_t& lo,
                                   std::size_t& hi) {
    const double at = static_cast<double>(static_cast<float>(exact));
    if (!(at > s.front())) {
        lo = hi = 0;
        return p.front();
    }
    if (!(at < s.back())) {
        lo = hi = p.size() - 1;
        return p.back();
    }
    referenceBracket(s, at, lo, hi);
    if (referenceEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * (at - s[lo]) / (s[hi] - s[lo]);
}

// -- Lengths ----

inline double referenceDot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double referenceLength(const Point& v) {
    const bool undefined = v.x == kMarker || v.y == kMarker || v.z == kMarker;
    return undefined ? kUndefinedLength : std::sqrt(referenceDot(v, v));
}

inline Point referenceUnit(const Point& v) {
    const double length = referenceLength(v);
    return length == 0.0 ? v : Point(v.x / length, v.y / length, v.z / length);
}

// Distances along the polyline from its first point.
inline Values referenceDistances(const Points& p) {
    Values distances{0.0};
    for (std::size_t i = 1; i < p.size(); ++i) {
        distances.push_back(distances.back() + referenceLength(p[i] - p[i - 1]));
    }
    return distances;
}

// s-values as normalised arc length; returns the length.
inline double referenceArcValues(const Points& p, Values& s) {
    s = referenceDistances(p);
    const std::size_t last = p.size() - 1;
    const double length = s[last];
    const bool significant = length >= 100.0 * qel::NumericalUtils::spacing(length);
    for (std::size_t i = 1; i < last; ++i) {
        s[i] = significant ? s[i] / length : 0.0;
    }
    s[last] = 1.0;
    return length;
}

// A state with these points and the s and length computed from them.
inline void recompute(CurveState& state, const Points& points) {
    state.points = points;
    state.length = referenceArcValues(state.points, state.svalues);
}

} // namespace qel_test

#endif
