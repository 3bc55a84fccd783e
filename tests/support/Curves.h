#ifndef QEL_TESTS_SUPPORT_CURVES_H
#define QEL_TESTS_SUPPORT_CURVES_H

// Builders of curves for tests: whole states to compare, and seeded random and degenerate points.

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

// Everything that a caller can see of a curve.
struct CurveState {
    Points points;
    std::vector<double> svalues;
    int dimension;
    int parametrization;
    double length;
    bool createdAsDouble;
    Point axisPoint;
    Point axisDirection;
};

inline CurveState stateOf(const qel::ParametricCurve& curve) {
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

// Random points of many kinds: each seed gives one curve of 2 to maxSize points.
class RandomCurves {
public:
    explicit RandomCurves(unsigned seed) : random_(seed) {}

    std::mt19937& engine() { return random_; }

    double uniform(double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random_);
    }
    std::size_t count(std::size_t from, std::size_t to) {
        return std::uniform_int_distribution<std::size_t>(from, to)(random_);
    }
    bool chance(double probability) { return uniform(0.0, 1.0) < probability; }

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

    // Scattered, on a grid, a smooth path, repeated points, or with special values.
    Points points(std::size_t maxSize) {
        const std::size_t n = count(2, maxSize);
        const std::size_t kind = count(0, 4);
        const double scale = std::pow(10.0, uniform(-12.0, 12.0));
        Points points;
        for (std::size_t i = 0; i < n; ++i) {
            const double u = static_cast<double>(i) / static_cast<double>(n);
            const bool repeat = kind >= 3 && !points.empty() && chance(0.3);
            points.push_back(
                repeat      ? points.back()
                : kind == 1 ? gridPoint()
                : kind == 2 ? Point(scale * std::cos(7.0 * u), scale * std::sin(7.0 * u), scale * u)
                            : point(scale));
        }
        if (kind == 4) {
            points[count(0, n - 1)].getRef(static_cast<int>(count(0, 2))) = specialValue();
        }
        return points;
    }

    double specialValue() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double values[] = {
            DBL_MAX, -DBL_MAX, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(),
            1e200,   DBL_MIN,  5e-324,   -0.0,      3.4028234663852886e38};
        return values[count(0, std::size(values) - 1)];
    }

    // Non-decreasing s-values with runs of equal ones, within 0..1 or beyond.
    std::vector<double> svalues(std::size_t n) {
        std::vector<double> s(n);
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
    double parameter(const std::vector<double>& s) {
        const double at = s[count(0, s.size() - 1)];
        switch (count(0, 5)) {
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

private:
    std::mt19937 random_;
};

} // namespace qel_test

#endif
