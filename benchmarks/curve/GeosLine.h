#ifndef QEL_BENCHMARKS_CURVE_GEOSLINE_H
#define QEL_BENCHMARKS_CURVE_GEOSLINE_H

#if defined(QEL_BENCHMARK_HAS_GEOS)

#include <memory>
#include <utility>
#include <vector>

#include <geos/geom/Coordinate.h>
#include <geos/geom/CoordinateArraySequence.h>
#include <geos/geom/GeometryFactory.h>
#include <geos/geom/LineString.h>

#include "curve/CurveInput.h"

namespace qel_benchmark {

// The x and y of points as a line of GEOS.
inline std::unique_ptr<geos::geom::LineString> geosLine(const Points& points) {
    std::vector<geos::geom::Coordinate> coordinates;
    coordinates.reserve(points.size());
    for (const Point& p : points) {
        coordinates.emplace_back(p.x, p.y);
    }
    return geos::geom::GeometryFactory::getDefaultInstance()->createLineString(
        std::make_unique<geos::geom::CoordinateArraySequence>(std::move(coordinates)));
}

} // namespace qel_benchmark

#endif

#endif
