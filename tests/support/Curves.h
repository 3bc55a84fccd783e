#ifndef QEL_TESTS_SUPPORT_CURVES_H
#define QEL_TESTS_SUPPORT_CURVES_H

// What tests of curves share: whole states to compare, and curves of every kind from a seed.

#include <cfloat>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <qel/ParametricCurve.h>

#include "support/Bits.h"

namespace qel_test {

using Point = qel::TripletBase<double>;
using Points = std::vector<Point>;
using FloatPoint = qel::TripletBase<float>;
using FloatPoints = std::vector<FloatPoint>;
using Values = std::vector<double>;
using qel::ParametricCurve;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kMarker = std::numeric_limits<double>::max();
// The length of what the marker makes undefined.
inline constexpr double kUndefinedLength = 3.4028234663852886e38;

// Everything that a caller can see of a curve.
struct CurveState {
    Points points;
    Values svalues;
    int dimension;
    int parametrization;
    double length;
    bool createdAsDouble;
    Point axisPoint;
    Point axisDirection;
};

inline CurveState stateOf(const ParametricCurve& curve) {
    return {curve.getCurve(),           curve.getSvalues(),      curve.getDimension(),
            curve.getParametrization(), curve.getLength(),       curve.isCurveCreatedAsDouble(),
            curve.getAxisPoint(),       curve.getAxisDirection()};
}

// Bit for bit, so that states with NaN compare as well.
inline bool operator==(const CurveState& a, const CurveState& b) {
    return sameBitsInAll(a.points, b.points) && sameBitsInAll(a.svalues, b.svalues) &&
           a.dimension == b.dimension && a.parametrization == b.parametrization &&
           sameBits(a.length, b.length) && a.createdAsDouble == b.createdAsDouble &&
           sameBits(a.axisPoint, b.axisPoint) && sameBits(a.axisDirection, b.axisDirection);
}

inline std::ostream& operator<<(std::ostream& os, const CurveState& state) {
    os << "{" << state.points.size() << " points";
    for (std::size_t i = 0; i < state.points.size() && i < 8; ++i) {
        os << " " << state.points[i];
    }
    os << "; s";
    for (std::size_t i = 0; i < state.svalues.size() && i < 8; ++i) {
        os << " " << state.svalues[i];
    }
    return os << "; dimension " << state.dimension << ", parametrization " << state.parametrization
              << ", length " << state.length << ", double " << state.createdAsDouble << "}";
}

// For EXPECT_PRED2.
inline bool samePoint(const Point& a, const Point& b) {
    return sameBits(a, b);
}

inline FloatPoints narrowed(const Points& points) {
    return {points.begin(), points.end()};
}
inline Points widened(const FloatPoints& points) {
    return {points.begin(), points.end()};
}

// Curves of many kinds: each seed gives other ones.
class RandomCurves {
public:
    explicit RandomCurves(unsigned seed) : random_(seed) {}

    std::mt19937& engine() { return random_; }

    // -- Numbers ----

    double uniform(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    }
    std::size_t count(std::size_t from, std::size_t to) {
        return std::uniform_int_distribution<std::size_t>(from, to)(random_);
    }
    std::size_t index(std::size_t size) { return count(0, size - 1); }
    bool chance(double probability) { return uniform(0.0, 1.0) < probability; }

    double specialValue() {
        constexpr double values[] = {kMarker, -kMarker, kInfinity, -kInfinity, kNaN,
                                     1e200,   DBL_MIN,  5e-324,    -0.0,       kUndefinedLength};
        return values[index(std::size(values))];
    }

    // -- Points ----

    Point point(double scale) {
        return {scale * uniform(-1.0, 1.0), scale * uniform(-1.0, 1.0), scale * uniform(-1.0, 1.0)};
    }

    // A point of a small integer grid, where distances tie exactly.
    Point gridPoint() {
        const auto coordinate = [this] { return static_cast<double>(count(0, 4)); };
        const double x = coordinate();
        const double y = coordinate();
        return {x, y, coordinate()};
    }

    // 2 to maxSize points: a smooth path, on a grid, scattered, with repeats, with a special value,
    // closed, straight, or all in one place.
    Points points(std::size_t maxSize) {
        const std::size_t n = count(2, maxSize);
        const double scale = std::pow(10.0, uniform(-12.0, 12.0));
        const std::size_t kind = index(8);
        Points points;
        for (std::size_t i = 0; i < n; ++i) {
            const bool repeats = (kind == 3 || kind == 4) && i > 0 && chance(0.3);
            points.push_back(repeats ? points.back() : pointOfPath(kind, i, n, scale));
        }
        if (kind == 4) {
            points[index(n)].getRef(static_cast<int>(index(3))) = specialValue();
        } else if (kind == 5) {
            points.back() = points.front();
        } else if (kind == 6) {
            points.assign(n, points.front());
        }
        return points;
    }

    // Few, so that many curves are tried, but also enough for what works block by block.
    Points points() { return points(chance(0.25) ? 60 : 10); }

    // -- s-values ----

    // Non-decreasing s-values with runs of equal ones, within 0..1 or beyond.
    Values svalues(std::size_t n) {
        Values s(n);
        const double start = chance(0.5) ? 0.0 : uniform(-2.0, 0.5);
        s[0] = start;
        for (std::size_t i = 1; i < n; ++i) {
            s[i] = chance(0.3) ? s[i - 1] : s[i - 1] + uniform(0.0, 1.0);
        }
        if (chance(0.7) && s.back() > start) {
            const double range = s.back() - start;
            for (double& value : s) {
                value = (value - start) / range;
            }
        }
        return s;
    }

    // An s inside, at, beside or outside those of a curve.
    double parameter(const Values& s) {
        const double at = s[index(s.size())];
        switch (index(6)) {
        case 0:
            return at;
        case 1:
            return std::nextafter(at, chance(0.5) ? -10.0 : 10.0);
        case 2:
            return static_cast<double>(static_cast<float>(at));
        case 3:
            return uniform(-0.5, 1.5);
        case 4:
            return s.front() <= s.back() ? uniform(s.front(), s.back()) : 0.5; // NaN among them
        default:
            return chance(0.05) ? specialValue() : uniform(0.0, 1.0);
        }
    }

    // -- Curves ----

    // From doubles or floats, of every dimension, with s-values computed or supplied at any scale.
    ParametricCurve curveThrough(const Points& points) {
        const auto dimension = static_cast<ParametricCurve::dim>(index(3));
        const bool single = chance(0.25);
        if (chance(0.6)) {
            return single ? ParametricCurve(qel_test::narrowed(points), dimension)
                          : ParametricCurve(points, dimension);
        }
        Values s = svalues(points.size());
        const double scale = chance(0.25) ? std::pow(10.0, uniform(-9.0, 9.0)) : 1.0;
        for (double& value : s) {
            value *= scale;
        }
        return single ? ParametricCurve(qel_test::narrowed(points), s, dimension)
                      : ParametricCurve(points, s, dimension);
    }

    ParametricCurve curve() { return curveThrough(points()); }
    ParametricCurve curve(std::size_t maxSize) { return curveThrough(points(maxSize)); }

private:
    Point pointOfPath(std::size_t kind, std::size_t i, std::size_t n, double scale) {
        const double u = static_cast<double>(i) / static_cast<double>(n);
        switch (kind) {
        case 0:
            return {scale * std::cos(7.0 * u), scale * std::sin(7.0 * u), scale * u};
        case 1:
            return gridPoint();
        case 7:
            return {static_cast<double>(i), 2.0 * static_cast<double>(i), 0.0};
        default:
            return point(scale);
        }
    }

    std::mt19937 random_;
};

} // namespace qel_test

#endif
