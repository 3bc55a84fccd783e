// The sharpest corners of a curve: small angles between the directions to the neighbours.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>

#include <qel/NumericalUtils.h>

#include "curve/Conversions.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

using Corner = std::pair<double, std::size_t>; // angle and index

constexpr std::size_t kReach = 4;              // neighbours tried on either side
constexpr double kTooCloseFactor = 100.0;      // spacings of the neighbour's distance
constexpr double kNoAngle = 6.283185307179586; // 2 pi: no corner is measured there

[[noreturn]] void refuse(SystemMsg& message) {
    throw internal::error("ParametricCurve", "findTwoPointsWithMinAngle", message, argumentError);
}

void checkRange(std::size_t first, std::size_t second, std::size_t count) {
    if (first >= count) {
        SystemMsg message("First index out of bounds =%1");
        refuse(message % first);
    }
    if (second >= count) {
        SystemMsg message("Requested index out of bounds =%1");
        refuse(message % second);
    }
    if (first == second) {
        SystemMsg message("First and second index must be different.");
        refuse(message);
    }
}

// From a vertex to another, and how far.
struct Direction {
    Direction(const Point& from, const Point& to) : vector(to - from), length(vector.length()) {}

    // False for a NaN, and for an infinite length, whose spacing is one.
    bool isSignificant() const {
        return length > kTooCloseFactor * NumericalUtils::spacing(length);
    }

    Point vector;
    double length;
};

// c is a NaN where the products overflow; it stays one.
double angleBetween(const Direction& a, const Direction& b) {
    double c = a.vector.dot(b.vector) / (a.length * b.length);
    if (c > 1.0) {
        c = 1.0;
    } else if (c < -1.0) {
        c = -1.0;
    }
    return std::acos(c);
}

// Angle at vertex k. Crowded is told of every vertex after k that is too close to it.
template <typename Crowded>
double cornerAngle(const Points& points, std::size_t k, const Crowded& crowded) {
    const Point& corner = points[k];
    std::size_t d = 1;
    while (d <= kReach && d <= k && !Direction(corner, points[k - d]).isSignificant()) {
        ++d;
    }
    std::size_t e = 1;
    while (e <= kReach && k + e < points.size() &&
           !Direction(corner, points[k + e]).isSignificant()) {
        crowded(k + e);
        ++e;
    }
    if (d > kReach || d > k || e > kReach || k + e >= points.size()) {
        return kNoAngle;
    }
    return angleBetween(Direction(corner, points[k + e]), Direction(corner, points[k - d]));
}

// By angle, then by index; NaN after all numbers.
bool isSharper(const Corner& a, const Corner& b) {
    if (std::isnan(a.first) || std::isnan(b.first)) {
        return std::isnan(a.first) == std::isnan(b.first) ? a.second < b.second
                                                          : std::isnan(b.first);
    }
    return a < b;
}

} // namespace

void ParametricCurve::findTwoPointsWithMinAngle(std::size_t first, std::size_t second, Corner& a,
                                                Corner& b) const {
    checkRange(first, second, points_.size());
    // The curve's own ends are no corners. There are two points at least, or first = second.
    const std::size_t start = std::max<std::size_t>(std::min(first, second), 1);
    const std::size_t end = std::min(std::max(first, second), points_.size() - 2);
    if (end < start + 1) {
        SystemMsg message("Less than two inner points between indices. First id=%1, Second id=%2");
        message % first;
        refuse(message % second);
    }
    std::vector<Corner> corners;
    corners.reserve(end - start + 1);
    // Vertices that crowd a corner before them: deliberately never corners themselves, though
    // they may be sharper (Corners, PointCrowdingACornerIsNotMeasured).
    std::vector<bool> isCrowding(end - start + 1 + kReach, false);
    for (std::size_t k = start; k <= end; ++k) {
        const double angle =
            isCrowding[k - start] ? kNoAngle : cornerAngle(points_, k, [&](std::size_t neighbour) {
                isCrowding[neighbour - start] = true;
            });
        corners.emplace_back(angle, k);
    }
    std::partial_sort(corners.begin(), corners.begin() + 2, corners.end(), isSharper);
    a = std::max(corners[0], corners[1],
                 [](const Corner& x, const Corner& y) { return x.second < y.second; });
    b = a.second == corners[0].second ? corners[1] : corners[0];
}

} // namespace qel
