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

namespace qel_test {

using Point = qel::TripletBase<double>;
using FloatPoint = qel::TripletBase<float>;
using Points = std::vector<Point>;
using FloatPoints = std::vector<FloatPoint>;
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

inline FloatPoints floats(const Points& points) {
    FloatPoints narrow;
    for (const Point& p : points) {
        narrow.emplace_back(static_cast<float>(p.x), static_cast<float>(p.y),
                            static_cast<float>(p.z));
    }
    return narrow;
}

// -- Curves of every kind ----

class CurveMaker {
public:
    explicit CurveMaker(unsigned seed) : random_(seed) {}

    std::size_t index(std::size_t count) { return random_() % count; }

    double uniform(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    }

    // A random walk, an integer grid (with repeats and exact ties), coincident points, a closed
    // loop, or a straight run, at one scale from 1e-12 to 1e12; sometimes with marker, NaN or
    // infinite components when wild.
    Points points(bool wild = true) {
        const std::size_t n = 2 + index(index(4) == 0 ? 60 : 9);
        Points made = shape(n);
        const double scale = index(3) == 0 ? std::pow(10.0, uniform(-12.0, 12.0)) : 1.0;
        for (Point& p : made) {
            p *= scale;
        }
        if (wild && index(12) == 0) {
            const double odd[] = {kMarker, kNaN, kInfinity, -kInfinity, 1e300, -0.0};
            made[index(n)].getRef(static_cast<int>(index(3))) = odd[index(6)];
        }
        return made;
    }

    // Values that never decrease, often repeated, seldom starting at 0 or ending at 1.
    Values rising(std::size_t n) {
        Values s(n);
        s[0] = index(2) == 0 ? 0.0 : uniform(-2.0, 2.0);
        const double scale = index(4) == 0 ? std::pow(10.0, uniform(-9.0, 9.0)) : 0.2;
        const bool steps = index(2) == 0;
        for (std::size_t i = 1; i < n; ++i) {
            const double step = index(4) == 0 ? 0.0 : uniform(0.0, 1.0);
            s[i] = s[i - 1] + scale * (steps ? std::floor(3.0 * step) : step);
        }
        return s;
    }

    ParametricCurve curve(bool wild = true) {
        const Points made = points(wild);
        const auto dimension = static_cast<ParametricCurve::dim>(index(3));
        const bool single = index(4) == 0;
        if (index(3) != 0) {
            return single ? ParametricCurve(floats(made), dimension)
                          : ParametricCurve(made, dimension);
        }
        const Values s = rising(made.size());
        return single ? ParametricCurve(floats(made), s, dimension)
                      : ParametricCurve(made, s, dimension);
    }

    // A parameter inside, outside, or exactly at a stored s-value (as it is or rounded to float).
    double parameter(const Values& s) {
        switch (index(8)) {
        case 0:
            return s[index(s.size())];
        case 1:
            return static_cast<double>(static_cast<float>(s[index(s.size())]));
        case 2:
            return s.front() - uniform(0.0, 1.0);
        case 3:
            return s.back() + uniform(0.0, 1.0);
        case 4:
            return std::nextafter(s[index(s.size())], uniform(-1.0, 1.0) < 0.0 ? -9.9 : 9.9);
        default:
            return s.front() + (s.back() - s.front()) * uniform(0.0, 1.0);
        }
    }

private:
    Points shape(std::size_t n) {
        Points made(n);
        const std::size_t kind = index(6);
        for (std::size_t i = 0; i < n; ++i) {
            const double t = static_cast<double>(i) / static_cast<double>(n - 1);
            switch (kind) {
            case 0: // random walk
            case 1:
                made[i] = Point(uniform(-1.0, 1.0), uniform(-1.0, 1.0), uniform(-1.0, 1.0));
                made[i] += i > 0 ? made[i - 1] : Point();
                break;
            case 2: // integer grid
                made[i] = Point(std::floor(uniform(0.0, 3.0)), std::floor(uniform(0.0, 2.0)),
                                std::floor(uniform(0.0, 2.0)));
                break;
            case 3: // coincident
                made[i] = Point(0.25, -3.0, 1e-3);
                break;
            case 4: // closed loop
                made[i] = i + 1 < n ? Point(std::cos(6.0 * t), std::sin(6.0 * t), t) : made[0];
                break;
            default: // straight
                made[i] = Point(std::floor(8.0 * t), 2.0 * t, 0.0);
            }
        }
        return made;
    }

    std::mt19937 random_;
};

} // namespace qel_test

#endif
