// All crossings of two curves in the plane: one that lies beside the curve, which few shapes cross,
// and the curve mirrored, which many cross often.

#include <qel/CurveCrossings.h>

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/GeosLine.h"

namespace qel_benchmark {
namespace {

// Upside down about the middle of its height, and moved a little.
Points mirrored(const Points& points) {
    double low = points[0].y, high = low;
    for (const Point& p : points) {
        low = std::min(low, p.y);
        high = std::max(high, p.y);
    }
    const double step = 1e-3 * (high - low);
    Points result = points;
    for (Point& p : result) {
        p = Point(p.x + step, low + (high - p.y), p.z);
    }
    return result;
}

void cross(Row& row, const CurveInput& in, const Points& other) {
    row.add(kLibrary, [&] { keep(qel::findCrossings(in.points, other).size()); });
#if defined(QEL_BENCHMARK_HAS_GEOS)
    std::unique_ptr<geos::geom::LineString> first, second;
    if (row.wants("GEOS")) {
        first = geosLine(in.points);
        second = geosLine(other);
        row.add("GEOS", [&] { keep(first->intersection(second.get())->getNumGeometries()); });
    }
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
    const BoostFlatLine boostFirst = boostFlatLine(in.points);
    const BoostFlatLine boostSecond = boostFlatLine(other);
    row.add(kBoost, [&] {
        boost::geometry::model::multi_point<BoostFlatPoint> points;
        boost::geometry::intersection(boostFirst, boostSecond, points);
        keep(points.size());
    });
#endif
    row.measure();
}

void crossBeside(Row& row, const CurveInput& in) {
    if (in.isFinite()) {
        cross(row, in, in.shape.makeBeside(in.n));
    }
}

void crossMirrored(Row& row, const CurveInput& in) {
    // Curves whose strokes all cross each other have more crossings than fit in memory.
    if (in.isFinite() && in.n <= 1000) {
        cross(row, in, mirrored(in.points));
    }
}

const bool registered = addCurveWork("all_crossings_beside", crossBeside) &&
                        addCurveWork("all_crossings_mirrored", crossMirrored);

} // namespace
} // namespace qel_benchmark
