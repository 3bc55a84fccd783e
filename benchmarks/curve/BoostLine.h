#ifndef QEL_BENCHMARKS_CURVE_BOOSTLINE_H
#define QEL_BENCHMARKS_CURVE_BOOSTLINE_H

#if defined(QEL_BENCHMARK_HAS_BOOST)

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/geometries/point_xy.hpp>

#include "curve/CurveInput.h"

namespace qel_benchmark {

inline constexpr const char* kBoost = "Boost";

using BoostFlatPoint = boost::geometry::model::d2::point_xy<double>;
using BoostFlatLine = boost::geometry::model::linestring<BoostFlatPoint>;
using BoostPoint = boost::geometry::model::point<double, 3, boost::geometry::cs::cartesian>;
using BoostLine = boost::geometry::model::linestring<BoostPoint>;

// The x and y of points.
inline BoostFlatLine boostFlatLine(const Points& points) {
    BoostFlatLine line;
    line.reserve(points.size());
    for (const Point& p : points) {
        line.emplace_back(p.x, p.y);
    }
    return line;
}

inline BoostLine boostLine(const Points& points) {
    BoostLine line;
    line.reserve(points.size());
    for (const Point& p : points) {
        line.emplace_back(p.x, p.y, p.z);
    }
    return line;
}

} // namespace qel_benchmark

#endif

#endif
