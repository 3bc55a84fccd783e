#ifndef QEL_BENCHMARKS_CURVE_EIGENCURVE_H
#define QEL_BENCHMARKS_CURVE_EIGENCURVE_H

// Curves as Eigen sees them: a column for each point, in the points' own memory.

#if defined(QEL_BENCHMARK_HAS_EIGEN)

#include <Eigen/Core>

#include "curve/CurveInput.h"

namespace qel_benchmark {

inline constexpr const char* kEigen = "Eigen";

using EigenColumns = Eigen::Map<Eigen::Matrix3Xd>;
using ConstEigenColumns = Eigen::Map<const Eigen::Matrix3Xd>;

inline ConstEigenColumns columnsOf(const Points& points) {
    return ConstEigenColumns(&points[0].x, 3, static_cast<Eigen::Index>(points.size()));
}
inline EigenColumns columnsOf(Points& points) {
    return EigenColumns(&points[0].x, 3, static_cast<Eigen::Index>(points.size()));
}

// What computes, in a file of its own: it may contract multiplications and additions, as Eigen's
// users let it, and the loops that must give the library's bits may not.
double arcValuesByEigen(const Points& points, Values& values);
std::size_t nearestByEigen(const Points& points, const Point& q);
void axialByEigen(const Points& points, const Point& origin, const Point& direction, Points& out);
void rotateByEigen(Points& points, const Point& centre, const Point& axis, double angle);

} // namespace qel_benchmark

#endif

#endif
