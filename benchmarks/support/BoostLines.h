#ifndef QEL_BENCHMARKS_SUPPORT_BOOSTLINES_H
#define QEL_BENCHMARKS_SUPPORT_BOOSTLINES_H

// Curves as polylines of the plane for Boost.Geometry.

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>

#include "support/Curves.h"

namespace qel_benchmark {

using BoostLine = boost::geometry::model::linestring<boost::geometry::model::d2::point_xy<double>>;

inline BoostLine boostLine(const Points& points) {
    BoostLine line;
    line.reserve(points.size());
    for (const Point& p : points) {
        line.emplace_back(p.x, p.y);
    }
    return line;
}

} // namespace qel_benchmark

#endif
