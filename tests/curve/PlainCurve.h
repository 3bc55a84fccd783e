#ifndef QEL_TESTS_CURVE_PLAINCURVE_H
#define QEL_TESTS_CURVE_PLAINCURVE_H

// What tests of curves share: curves of every kind from a seed, and the plain statement of how a
// curve is read at a parameter, by searching from the start. Slow and obvious on purpose.

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <qel/NumericalUtils.h>
#include <qel/ParametricCurve.h>

#include "support/Curves.h"

namespace qel_test {

using Values = std::vector<double>;
using qel::ParametricCurve;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kMarker = std::numeric_limits<double>::max();

// -- Reading a curve ----

// The stored points around an s strictly inside the range, by looking at one s-value at a time.
inline void plainBracket(const Values& s, double at, std::size_t& lo, std::size_t& hi) {
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

inline bool plainEqual(const Values& s, std::size_t lo, std::size_t hi) {
    return 100.0 * qel::NumericalUtils::spacing(s[hi]) > s[hi] - s[lo];
}

inline Point plainAt(const Points& p, const Values& s, double at) {
    at = at > s.back() ? s.back() : at;
    if (!(at > s.front())) {
        return p.front();
    }
    if (!(at < s.back())) {
        return p.back();
    }
    std::size_t lo = 0;
    std::size_t hi = 0;
    plainBracket(s, at, lo, hi);
    if (plainEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * ((at - s[lo]) / (s[hi] - s[lo]));
}

// The evaluator that rounds s to float and weighs before it divides.
inline Point plainInterpolated(const Points& p, const Values& s, double exact, std::size_t& lo,
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
    plainBracket(s, at, lo, hi);
    if (plainEqual(s, lo, hi)) {
        return (p[lo] + p[hi]) * 0.5;
    }
    return p[lo] + (p[hi] - p[lo]) * (at - s[lo]) / (s[hi] - s[lo]);
}

inline double plainDistance(const Point& a, const Point& b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double dz = b.z - a.z;
    if (dx == kMarker || dy == kMarker || dz == kMarker) {
        return static_cast<double>(std::numeric_limits<float>::max());
    }
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

// s-values as normalised arc length; returns the length.
inline double plainArcValues(const Points& p, Values& s) {
    const std::size_t last = p.size() - 1;
    s.assign(p.size(), 0.0);
    for (std::size_t i = 1; i <= last; ++i) {
        s[i] = s[i - 1] + plainDistance(p[i - 1], p[i]);
    }
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
    state.length = plainArcValues(state.points, state.svalues);
}

// -- Curves of every kind ----

// The kinds of RandomCurves and the closed, coincident and straight ones, with s-values computed
// or supplied, from doubles or floats, of every dimension.
class CurveMaker : public RandomCurves {
public:
    using RandomCurves::RandomCurves;

    std::size_t index(std::size_t size) { return count(0, size - 1); }

    Points points() {
        const std::size_t n = index(4) == 0 ? 60 : 10;
        switch (index(10)) {
        case 0: { // a loop
            Points loop = RandomCurves::points(n);
            loop.back() = loop.front();
            return loop;
        }
        case 1:
            return Points(count(2, n), Point(0.25, -3.0, 1e-3));
        case 2: {
            Points straight;
            for (std::size_t i = count(2, n); i > 0; --i) {
                straight.emplace_back(static_cast<double>(i / 2), 2.0 * static_cast<double>(i),
                                      0.0);
            }
            return straight;
        }
        default:
            return RandomCurves::points(n);
        }
    }

    // Values that never decrease, as svalues(n) has them or at another scale.
    Values rising(std::size_t n) {
        Values s = svalues(n);
        const double scale = index(4) == 0 ? std::pow(10.0, uniform(-9.0, 9.0)) : 1.0;
        for (double& value : s) {
            value *= scale;
        }
        return s;
    }

    ParametricCurve curve() {
        const Points made = points();
        const auto dimension = static_cast<ParametricCurve::dim>(index(3));
        const bool single = index(4) == 0;
        if (index(3) != 0) {
            return single ? ParametricCurve(narrowed(made), dimension)
                          : ParametricCurve(made, dimension);
        }
        const Values s = rising(made.size());
        return single ? ParametricCurve(narrowed(made), s, dimension)
                      : ParametricCurve(made, s, dimension);
    }
};

} // namespace qel_test

#endif
