// The nearest place on a curve: the index's building, and n probes with it.

#include <cmath>
#include <cstdint>
#include <memory>

#include <qel/CurveLocator.h>

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/GeosLine.h"

#if defined(QEL_BENCHMARK_HAS_CGAL)
#include <CGAL/AABB_segment_primitive.h>
#include <CGAL/AABB_traits.h>
#include <CGAL/AABB_tree.h>
#include <CGAL/Simple_cartesian.h>
#endif
#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/geom/Point.h>
#include <geos/operation/distance/IndexedFacetDistance.h>
#endif

namespace qel_benchmark {
namespace {

// The nearest place, all edges one after the other.
qel::CurveLocation locateByLoop(const Points& points, const Values& svalues, const Point& q) {
    qel::CurveLocation place;
    double least = HUGE_VAL;
    double along = 0.0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Point e = points[i + 1] - points[i];
        const double length2 = e.dot(e);
        const double t = length2 > 0.0 ? (q - points[i]).dot(e) / length2 : 0.0;
        const Point foot = t > 0.0 ? (t >= 1.0 ? points[i + 1] : points[i] + e * t) : points[i];
        const Point d = q - foot;
        const double d2 = d.dot(d);
        if (d2 < least) {
            least = d2;
            along = std::fmax(0.0, std::fmin(t, 1.0));
            place.foot = foot;
            place.edge = static_cast<std::int64_t>(i);
        }
    }
    const auto edge = static_cast<std::size_t>(place.edge);
    place.s = svalues[edge] + (svalues[edge + 1] - svalues[edge]) * along;
    place.distance = std::sqrt(least);
    return place;
}

#if defined(QEL_BENCHMARK_HAS_CGAL)
constexpr const char* kCgal = "CGAL";

class CgalTree {
public:
    explicit CgalTree(const Points& points) {
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            segments_.emplace_back(cgalPoint(points[i]), cgalPoint(points[i + 1]));
        }
        tree_.insert(segments_.begin(), segments_.end());
        tree_.build();
        tree_.accelerate_distance_queries();
    }

    double distance(const Point& q) const {
        return std::sqrt(tree_.squared_distance(cgalPoint(q)));
    }

private:
    using Kernel = CGAL::Simple_cartesian<double>;
    using Segments = std::vector<Kernel::Segment_3>;
    using Primitive = CGAL::AABB_segment_primitive<Kernel, Segments::const_iterator>;

    static Kernel::Point_3 cgalPoint(const Point& p) { return {p.x, p.y, p.z}; }

    Segments segments_;
    CGAL::AABB_tree<CGAL::AABB_traits<Kernel, Primitive>> tree_;
};
#endif

#if defined(QEL_BENCHMARK_HAS_GEOS)
constexpr const char* kGeos = "GEOS";

// In the plane alone.
class GeosIndex {
public:
    explicit GeosIndex(const Points& points) : line_(geosLine(points)), index_(line_.get()) {}

    double distance(const Point& q) const {
        const std::unique_ptr<geos::geom::Point> probe(
            geos::geom::GeometryFactory::getDefaultInstance()->createPoint(
                geos::geom::Coordinate(q.x, q.y)));
        return index_.distance(probe.get());
    }

private:
    std::unique_ptr<geos::geom::LineString> line_;
    mutable geos::operation::distance::IndexedFacetDistance index_;
};
#endif

void buildLocator(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    row.add(kLibrary, [&] { keep(qel::CurveLocator(in.points).size()); });
#if defined(QEL_BENCHMARK_HAS_CGAL)
    row.add(kCgal, [&] { keep(CgalTree(in.points).distance(in.points[0])); });
#endif
#if defined(QEL_BENCHMARK_HAS_GEOS)
    row.add(kGeos, [&] { keep(GeosIndex(in.points).distance(in.points[0])); });
#endif
    row.measure();
}

template <typename Index>
void addIndex(Row& row, const char* who, const Index& index, const Points& probes) {
    row.add(who, [&] {
        for (const Point& q : probes) {
            keep(index.distance(q));
        }
    });
}

void locateMany(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    const Points probes = qel_test::probesOf(in.shape, in.points, in.n);
    const qel::CurveLocator locator(in.points);
    Values distances(in.n), svalues(in.n);
    std::vector<std::int64_t> edges(in.n);
    Points feet(in.n);
    qel::CurveLocations out;
    out.foot = feet;
    out.s = svalues;
    out.edge = edges;
    out.distance = distances;
    row.add(kLibrary, [&] { locator.locate(probes, out); });
    row.add(kPlain, [&] {
        for (std::size_t i = 0; i < probes.size(); ++i) {
            const qel::CurveLocation place = locateByLoop(in.points, in.svalues(), probes[i]);
            feet[i] = place.foot;
            svalues[i] = place.s;
            edges[i] = place.edge;
            distances[i] = place.distance;
        }
    });
#if defined(QEL_BENCHMARK_HAS_CGAL)
    std::unique_ptr<const CgalTree> cgal;
    if (row.wants(kCgal, 2)) {
        cgal = std::make_unique<const CgalTree>(in.points);
        addIndex(row, kCgal, *cgal, probes);
    }
#endif
#if defined(QEL_BENCHMARK_HAS_GEOS)
    std::unique_ptr<const GeosIndex> geos;
    if (row.wants(kGeos, 2)) {
        geos = std::make_unique<const GeosIndex>(in.points);
        addIndex(row, kGeos, *geos, probes);
    }
#endif
    row.measure();
}

void locateOne(Row& row, const CurveInput& in) {
    if (!in.isFinite()) {
        return;
    }
    constexpr std::size_t kProbes = 64;
    const Points probes = qel_test::probesOf(in.shape, in.points, kProbes);
    const qel::CurveLocator locator(in.points);
    std::size_t i = 0, j = 0;
    row.add(kLibrary, [&] { keep(locator.locate(probes[i++ % kProbes])); });
    row.add(kPlain, [&] { keep(locateByLoop(in.points, in.svalues(), probes[j++ % kProbes])); });
    row.setItems(1);
    row.measure();
}

const bool registered = addCurveWork("build_locator", buildLocator) &&
                        addCurveWork("locate_many", locateMany) &&
                        addCurveWork("locate_one", locateOne);

} // namespace
} // namespace qel_benchmark
