// Projection: one probe, many probes, and the deviation of a curve from one chord.
//
// What a peer builds for many probes is timed too, as our curves hold no index. The peers find the
// nearest vertex; the two edges beside it are looked at as in the plain loop.

#include <cstdint>
#include <map>

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/EigenCurve.h"
#include "support/Limit.h"

#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
#include <nanoflann.hpp>
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#endif

namespace qel_benchmark {
namespace {

constexpr std::size_t kProbes = 64;

// -- One probe ----

void projectOne(Row& row, const CurveInput& in) {
    const Points probes = qel_test::probesOf(in.shape, in.points, kProbes, 0.1);
    Values a(kProbes);
    Values b(kProbes);
    std::size_t i = 0;
    row.add(kLibrary, [&] {
        const std::size_t k = i++ % kProbes;
        keep(in.curve.projectPoint(probes[k], a[k]));
    });
    std::size_t j = 0;
    row.add(kPlain, [&] {
        const std::size_t k = j++ % kProbes;
        keep(plain::project(in.points, in.svalues(), probes[k], b[k]));
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    std::size_t l = 0;
    row.add(kEigen, [&] {
        const Point& q = probes[l++ % kProbes];
        double s = 0.0;
        keep(plain::footBeside(in.points, in.svalues(), q, nearestByEigen(in.points, q), s));
    });
#endif
    row.measure();
    bool same = true;
    for (std::size_t k = 0; k < kProbes && row.canCompare(); ++k) {
        in.curve.projectPoint(probes[k], a[k]);
        plain::project(in.points, in.svalues(), probes[k], b[k]);
        same = same && sameBits(a[k], b[k]);
    }
    row.expectSame(same);
}

void nearestVertex(Row& row, const CurveInput& in) {
    const Points probes = qel_test::probesOf(in.shape, in.points, kProbes, 0.1);
    std::size_t i = 0;
    row.add(kLibrary, [&] { keep(in.curve.getClosestPoint(probes[i++ % kProbes])); });
    std::size_t j = 0;
    row.add(kPlain, [&] { keep(plain::nearestVertex(in.points, probes[j++ % kProbes])); });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    std::size_t k = 0;
    row.add(kEigen, [&] { keep(nearestByEigen(in.points, probes[k++ % kProbes])); });
#endif
    addCopy(row, in.n * sizeof(Point));
    row.measure();
}

// -- Many probes ----

#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
struct NanoflannPoints {
    const Points& points;

    std::size_t kdtree_get_point_count() const { return points.size(); }
    double kdtree_get_pt(std::size_t i, std::size_t component) const {
        return (&points[i].x)[component];
    }
    template <typename Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

void projectByNanoflann(const CurveInput& in, const Points& probes, Values& s) {
    using Tree =
        nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, NanoflannPoints>,
                                            NanoflannPoints, 3, std::uint32_t>;
    const NanoflannPoints points{in.points};
    Tree tree(3, points, nanoflann::KDTreeSingleIndexAdaptorParams(10));
    tree.buildIndex();
    for (std::size_t k = 0; k < probes.size(); ++k) {
        std::uint32_t nearest = 0;
        double d2 = 0.0;
        tree.knnSearch(&probes[k].x, 1, &nearest, &d2);
        plain::footBeside(in.points, in.svalues(), probes[k], nearest, s[k]);
    }
}
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
void projectByBoost(const CurveInput& in, const Points& probes, Values& s) {
    namespace bg = boost::geometry;
    using Place = bg::model::point<double, 3, bg::cs::cartesian>;
    using Value = std::pair<Place, std::uint32_t>;
    std::vector<Value> values;
    values.reserve(in.n);
    for (const Point& p : in.points) {
        values.emplace_back(Place(p.x, p.y, p.z), static_cast<std::uint32_t>(values.size()));
    }
    const bg::index::rtree<Value, bg::index::rstar<16>> tree(values); // packed
    for (std::size_t k = 0; k < probes.size(); ++k) {
        const Point& q = probes[k];
        const auto hit = bg::index::nearest(Place(q.x, q.y, q.z), 1);
        std::uint32_t nearest = 0;
        for (auto it = tree.qbegin(hit); it != tree.qend(); ++it) {
            nearest = it->second;
        }
        plain::footBeside(in.points, in.svalues(), q, nearest, s[k]);
    }
}
#endif

void projectEach(Row& row, const CurveInput& in, const Points& probes) {
    Values a;
    Values b(probes.size());
    row.add(kLibrary, [&] { in.curve.getSvalues(probes, a, false); });
    row.add(kPlain, [&] {
        for (std::size_t k = 0; k < probes.size(); ++k) {
            plain::project(in.points, in.svalues(), probes[k], b[k]);
        }
    });
#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
    Values c(probes.size());
    if (in.isFinite()) {
        row.add("nanoflann", [&] { projectByNanoflann(in, probes, c); });
    }
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
    Values d(probes.size());
    if (in.isFinite()) {
        row.add("Boost", [&] { projectByBoost(in, probes, d); });
    }
#endif
    row.measure();
    row.expectSame(sameBits(a, b));
}

// As many as vertices, a hundredth of the curve's extent away, in no order.
void projectMany(Row& row, const CurveInput& in) {
    projectEach(row, in, qel_test::probesOf(in.shape, in.points, in.n));
}

// n probes on a curve of ten thousand vertices.
void projectFew(Row& row, const CurveInput& in) {
    static std::map<std::string, std::unique_ptr<const CurveInput>> curves;
    std::unique_ptr<const CurveInput>& curve = curves[in.shape.name];
    if (!curve) {
        curve = std::make_unique<const CurveInput>(in.shape, 10000);
    }
    projectEach(row, *curve, qel_test::probesOf(in.shape, curve->points, in.n));
}

// -- A chord ----

void deviationFromChord(Row& row, const CurveInput& in) {
    const int last = static_cast<int>(in.n) - 1;
    double distance = 0.0;
    int index = 0;
    bool done = false;
    row.add(kLibrary,
            [&] { in.curve.calculateNormalDistanceFromTwoPoints(0, last, distance, index, done); });
    plain::Deviation b;
    row.add(kPlain, [&] { b = plain::normalDistance(in.points, in.svalues(), 0, in.n - 1); });
    row.measure();
    row.expectSame(sameBits(distance, b.distance) && static_cast<std::size_t>(index) == b.index &&
                   done == b.done);
}

const bool registered =
    addCurveWork("project_one", projectOne) && addCurveWork("nearest_vertex", nearestVertex) &&
    addCurveWork("project_many", projectMany) && addCurveWork("project_few", projectFew, 1000) &&
    addCurveWork("deviation_from_chord", deviationFromChord);

} // namespace
} // namespace qel_benchmark
