#include <Eigen/Geometry>

#include "curve/EigenCurve.h"

namespace qel_benchmark {
namespace {

Eigen::Map<const Eigen::Vector3d> vectorOf(const Point& point) {
    return Eigen::Map<const Eigen::Vector3d>(&point.x);
}

} // namespace

// Norms of the columns' differences in one expression, then the running sum, which Eigen has not.
double arcValuesByEigen(const Points& points, Values& values) {
    const auto n = static_cast<Eigen::Index>(points.size());
    values.resize(points.size());
    Eigen::Map<Eigen::VectorXd> s(values.data(), n);
    const ConstEigenColumns columns = columnsOf(points);
    s[0] = 0.0;
    s.tail(n - 1) = (columns.rightCols(n - 1) - columns.leftCols(n - 1)).colwise().norm();
    double sum = 0.0;
    for (Eigen::Index i = 1; i < n; ++i) {
        sum += s[i];
        s[i] = sum;
    }
    s /= sum;
    return sum;
}

std::size_t nearestByEigen(const Points& points, const Point& q) {
    Eigen::Index nearest = 0;
    (columnsOf(points).colwise() - vectorOf(q)).colwise().squaredNorm().minCoeff(&nearest);
    return static_cast<std::size_t>(nearest);
}

// Axial coordinate and radius, which it forms in another way than the library, and so with other
// last bits.
void axialByEigen(const Points& points, const Point& origin, const Point& direction, Points& out) {
    const Eigen::Vector3d d = vectorOf(direction);
    const Eigen::Vector3d o = vectorOf(origin);
    out.resize(points.size());
    const ConstEigenColumns p = columnsOf(points);
    EigenColumns result = columnsOf(out);
    for (Eigen::Index i = 0; i < p.cols(); ++i) {
        const Eigen::Vector3d v = p.col(i) - o;
        const double a = v.dot(d);
        result.col(i) = Eigen::Vector3d(a, (v - a * d).norm(), 0.0);
    }
}

void rotateByEigen(Points& points, const Point& centre, const Point& axis, double angle) {
    const Eigen::Affine3d turn = Eigen::Translation3d(vectorOf(centre)) *
                                 Eigen::AngleAxisd(angle, vectorOf(axis).normalized()) *
                                 Eigen::Translation3d(-vectorOf(centre));
    const Eigen::Matrix3d matrix = turn.linear();
    const Eigen::Vector3d shift = turn.translation();
    EigenColumns columns = columnsOf(points);
    for (Eigen::Index i = 0; i < columns.cols(); ++i) {
        const Eigen::Vector3d p = columns.col(i);
        columns.col(i) = matrix * p + shift;
    }
}

} // namespace qel_benchmark
