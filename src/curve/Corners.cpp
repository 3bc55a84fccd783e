// The sharpest corners of a curve: small angles between the directions to the neighbours.
//
// Fast path: cosines of the angles to both neighbours are computed in lanes. Where these are far
// enough away to count, the cosine is the one that the angle is taken of; and no angle is taken
// where it must be larger than the two smallest so far.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "curve/Tolerance.h"
#include "curve/Validation.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

using Corner = std::pair<double, std::size_t>; // angle and index

constexpr std::size_t kReach = 4;              // neighbours tried on either side
constexpr double kNoAngle = 6.283185307179586; // 2 pi: no corner is measured there

constexpr const char* kMethod = "findTwoPointsWithMinAngle";

void checkRange(std::size_t first, std::size_t second, std::size_t count) {
    if (first >= count) {
        throw argumentFault(kMethod, "First index out of bounds =%1", first);
    }
    if (second >= count) {
        throw argumentFault(kMethod, "Requested index out of bounds =%1", second);
    }
    if (first == second) {
        throw argumentFault(kMethod, "First and second index must be different.");
    }
}

bool areApart(const Point& a, const Point& b) {
    return isSignificant((b - a).length());
}

// c is a NaN where the products overflow; it stays one.
double angleOf(double c) {
    return std::acos(std::clamp(c, -1.0, 1.0));
}

// Angle at vertex k. Crowded is told of every vertex after k that is too close to it.
template <typename Crowded>
double cornerAngle(const Points& points, std::size_t k, const Crowded& crowded) {
    const Point& corner = points[k];
    std::size_t d = 1;
    while (d <= kReach && d <= k && !areApart(corner, points[k - d])) {
        ++d;
    }
    std::size_t e = 1;
    while (e <= kReach && k + e < points.size() && !areApart(corner, points[k + e])) {
        crowded(k + e);
        ++e;
    }
    if (d > kReach || d > k || e > kReach || k + e >= points.size()) {
        return kNoAngle;
    }
    const Point a = points[k + e] - corner;
    const Point b = points[k - d] - corner;
    return angleOf(a.dot(b) / (a.length() * b.length()));
}

// By angle, then by index; NaN after all numbers.
bool isSharper(const Corner& a, const Corner& b) {
    if (std::isnan(a.first) || std::isnan(b.first)) {
        return std::isnan(a.first) == std::isnan(b.first) ? a.second < b.second
                                                          : std::isnan(b.first);
    }
    return a < b;
}

// The cosine at every vertex of a block as cornerAngle takes it, from the directions to the vertex
// behind and to the one before; a NaN where one of these is not surely far enough away.
struct CosinesKernel {
    static constexpr std::size_t kBlock = 128;

    QEL_KERNEL static void run(const Point* points, std::size_t count, double* cosines) {
        constexpr double kGreatest = std::numeric_limits<double>::max();
        double x[kBlock + 1]; // of the steps between neighbours
        double y[kBlock + 1];
        double z[kBlock + 1];
        double length[kBlock + 1]; // infinite for an undefined step
        const Point* const before = points - 1;
        for (std::size_t i = 0; i <= count; ++i) {
            const Point step = points[i] - before[i];
            x[i] = step.x;
            y[i] = step.y;
            z[i] = step.z;
        }
        for (std::size_t i = 0; i <= count; ++i) {
            length[i] = std::sqrt(x[i] * x[i] + y[i] * y[i] + z[i] * z[i]);
        }
        for (std::size_t i = 0; i < count; ++i) {
            const double a = length[i + 1];
            const double b = length[i];
            const bool isUsual =
                (a > kMinOfSpacings) & (a <= kGreatest) & (b > kMinOfSpacings) & (b <= kGreatest);
            const double dot = x[i + 1] * -x[i] + y[i + 1] * -y[i] + z[i + 1] * -z[i];
            cosines[i] = isUsual ? dot / (a * b) : std::numeric_limits<double>::quiet_NaN();
        }
    }
};

// The two sharpest of the corners it is given in the order of their indices.
class SharpestTwo {
public:
    void add(double angle, std::size_t index) {
        const Corner corner(angle, index);
        if (isSharper(corner, first_)) {
            second_ = std::exchange(first_, corner);
        } else if (isSharper(corner, second_)) {
            second_ = corner;
        } else {
            return;
        }
        // The arc cosine falls at least as fast as its argument rises, but for rounding.
        constexpr double kRounding = 1e-12;
        constexpr double kPi = 3.141592653589793; // no arc cosine exceeds it
        cosine_ = second_.first <= kPi ? std::cos(second_.first) - kRounding : -kInfinity;
    }
    // True if the angle of this cosine need not be taken. Not for a NaN.
    bool isBlunt(double cosine) const { return cosine < cosine_; }

    const Corner& first() const { return first_; }
    const Corner& second() const { return second_; }

private:
    static constexpr double kInfinity = std::numeric_limits<double>::infinity();
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN(); // after all numbers
    static constexpr std::size_t kLast = std::numeric_limits<std::size_t>::max();

    Corner first_{kNone, kLast};
    Corner second_{kNone, kLast};
    double cosine_ = -kInfinity;
};

SharpestTwo sharpestOf(const Points& points, std::size_t start, std::size_t end) {
    SharpestTwo sharpest;
    double cosines[CosinesKernel::kBlock];
    // Vertices that crowd a corner before them, bit d for the one d after the vertex at hand:
    // deliberately never corners themselves, though they may be sharper (Corners,
    // PointCrowdingACornerIsNotMeasured).
    unsigned crowding = 0;
    for (std::size_t k = start; k <= end; ++k, crowding >>= 1U) {
        const std::size_t i = (k - start) % CosinesKernel::kBlock;
        if (i == 0) {
            const std::size_t count = std::min(CosinesKernel::kBlock, end + 1 - k);
            onVectorUnitFrom<CosinesKernel>(count, &points[k], count,
                                            static_cast<double*>(cosines));
        }
        if ((crowding & 1U) != 0) {
            sharpest.add(kNoAngle, k);
        } else if (std::isnan(cosines[i])) {
            sharpest.add(
                cornerAngle(points, k,
                            [&](std::size_t neighbour) { crowding |= 1U << (neighbour - k); }),
                k);
        } else if (!sharpest.isBlunt(cosines[i])) {
            sharpest.add(angleOf(cosines[i]), k);
        }
    }
    return sharpest;
}

} // namespace

void ParametricCurve::findTwoPointsWithMinAngle(std::size_t first, std::size_t second, Corner& a,
                                                Corner& b) const {
    checkRange(first, second, points_.size());
    // The curve's own ends are no corners. There are two points at least, or first = second.
    const std::size_t start = std::max<std::size_t>(std::min(first, second), 1);
    const std::size_t end = std::min(std::max(first, second), points_.size() - 2);
    if (end < start + 1) {
        throw argumentFault(kMethod,
                            "Less than two inner points between indices. First id=%1, Second id=%2",
                            first, second);
    }
    const SharpestTwo sharpest = sharpestOf(points_, start, end);
    a = std::max(sharpest.first(), sharpest.second(),
                 [](const Corner& x, const Corner& y) { return x.second < y.second; });
    b = a.second == sharpest.first().second ? sharpest.second() : sharpest.first();
}

} // namespace qel
