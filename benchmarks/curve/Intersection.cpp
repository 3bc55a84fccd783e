// The first crossing of a curve with another and with a segment, in the plane.
//
// The second curve lies beside the first, between its strokes, and crosses it on few shapes. Peers
// say yes or no alone; the index that one of them makes of a curve is timed, as ours keep none.

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/GeosLine.h"

#include <qel/LineSegment2D.h>

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/geom/prep/PreparedGeometryFactory.h>
#endif

namespace qel_benchmark {
namespace {

qel::LineSegment2D segmentOf(const Points& p, std::size_t i) {
    const auto at = [](const Point& point) {
        return qel::Doublet(static_cast<float>(point.x), static_cast<float>(point.y));
    };
    return {at(p[i - 1]), at(p[i])};
}

// The first of a curve's segments that meets one; the place on it, in double.
bool meets(const Points& p, const qel::LineSegment2D& other, qel::TripletBase<float>& place) {
    for (std::size_t i = 1; i < p.size(); ++i) {
        const qel::LineSegment2D segment = segmentOf(p, i);
        double t = 0.0;
        if (segment.intersectWithLimits(other, t)) {
            const qel::Doublet found = segment.getPointAt(t);
            place = qel::TripletBase<float>(found.x, found.y, 0.0f);
            return true;
        }
    }
    return false;
}

bool crosses(const Points& a, const Points& b, qel::TripletBase<float>& place) {
    for (std::size_t i = 1; i < a.size(); ++i) {
        if (meets(b, segmentOf(a, i), place)) {
            return true;
        }
    }
    return false;
}

void firstCrossing(Row& row, const CurveInput& in) {
    const Points beside = in.shape.makeBeside(in.n);
    const ParametricCurve first(in.points, kPlane);
    const ParametricCurve second(beside, kPlane);
    bool a = false;
    bool b = false;
    qel::TripletBase<float> placeA(0.0f, 0.0f, 0.0f);
    qel::TripletBase<float> placeB(0.0f, 0.0f, 0.0f);
    row.add(kLibrary, [&] { a = first.intersectWithCurve(second, placeA); });
    row.add(kPlain, [&] { b = crosses(in.points, beside, placeB); });
#if defined(QEL_BENCHMARK_HAS_GEOS)
    std::unique_ptr<geos::geom::LineString> geosFirst;
    std::unique_ptr<geos::geom::LineString> geosSecond;
    if (in.isFinite()) {
        geosFirst = geosLine(in.points);
        geosSecond = geosLine(beside);
        row.add("GEOS", [&] {
            using geos::geom::prep::PreparedGeometryFactory;
            keep(PreparedGeometryFactory::prepare(geosFirst.get())->intersects(geosSecond.get()));
        });
    }
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
    const BoostFlatLine boostFirst = boostFlatLine(in.points);
    const BoostFlatLine boostSecond = boostFlatLine(beside);
    if (in.isFinite()) {
        row.add(kBoost, [&] { keep(boost::geometry::intersects(boostFirst, boostSecond)); });
    }
#endif
    row.measure();
    row.expectSame(a == b && sameBits(placeA, placeB));
}

// A short segment through the last point, which most shapes meet late.
qel::LineSegment2D besideTheEnd(const Points& points) {
    const Point& last = points.back();
    const auto x = static_cast<float>(last.x);
    const auto y = static_cast<float>(last.y);
    const auto half = static_cast<float>(1e-3 * qel_test::extentOf(points));
    return {qel::Doublet(x - half, y - half), qel::Doublet(x + half, y + half)};
}

void crossSegment(Row& row, const CurveInput& in) {
    const ParametricCurve curve(in.points, kPlane);
    const qel::LineSegment2D segment = besideTheEnd(in.points);
    bool a = false;
    bool b = false;
    qel::TripletBase<float> placeA(0.0f, 0.0f, 0.0f);
    qel::TripletBase<float> placeB(0.0f, 0.0f, 0.0f);
    row.add(kLibrary, [&] { a = curve.intersectWithSegment(segment, placeA); });
    row.add(kPlain, [&] { b = meets(in.points, segment, placeB); });
    row.measure();
    row.expectSame(a == b && sameBits(placeA, placeB));
}

const bool registered =
    addCurveWork("first_crossing", firstCrossing) && addCurveWork("cross_segment", crossSegment);

} // namespace
} // namespace qel_benchmark
