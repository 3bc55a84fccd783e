#ifndef QEL_POLYLINE_ORIENTATION_H
#define QEL_POLYLINE_ORIENTATION_H

/// @file
/// On which side of a line a point lies, decided exactly (Shewchuk 1997, Adaptive precision
/// floating-point arithmetic and fast robust geometric predicates).

#include <cmath>

namespace qel {

struct PlanePoint {
    double x;
    double y;

    bool operator==(const PlanePoint& o) const { return x == o.x && y == o.y; }
    bool operator!=(const PlanePoint& o) const { return !(*this == o); }
};

/// The determinant |b - a, c - a|, twice the signed area of the triangle, to a relative error of a
/// few machine epsilons; its sign is right, and 0 stands for 0 alone.
///
/// Coordinates must be 0 or between 2^-480 and 2^500 in size, so that no product of two overflows
/// or loses bits below the least double.
double orientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c);

/// The same by exact arithmetic alone: the reference implementation.
double exactOrientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c);

/// Coordinates below 2^this are brought to it, for exact products of small and large ones.
constexpr int kExactExponent = 480;

/// 1 if c lies to the left of the line from a to b, -1 if to the right, 0 if on it or if a equals
/// b.
inline int sideOf(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
    // (3 + 16 e) e for e = 2^-53 bounds the error of the determinant relative to the sum of its
    // terms' sizes; Shewchuk 1997, section 4.3.
    constexpr double kErrorBound = 3.3306690738754716e-16;
    const double left = (a.x - c.x) * (b.y - c.y);
    const double right = (a.y - c.y) * (b.x - c.x);
    const double difference = left - right;
    const bool isSure = std::fabs(difference) >= kErrorBound * (std::fabs(left) + std::fabs(right));
    const double value = isSure ? difference : exactOrientation(a, b, c);
    return (value > 0.0) - (value < 0.0);
}

} // namespace qel

#endif
