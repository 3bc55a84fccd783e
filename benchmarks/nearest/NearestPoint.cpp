// Nearest-point search in the plane: building, and queries anywhere, near points and far off.
//
// A build is measured beside the peers' alone: a plain loop needs none. The plain loop of a query
// scans all points; of equally near ones it finds the first, the library the one that its stated
// order of search meets first, and a peer any.

#include <memory>
#include <string>
#include <type_traits>

#include "nearest/CgalLocator.h"
#include "nearest/Locators.h"
#include "support/Program.h"

namespace qel_benchmark {
namespace {

using qel_test::CloudShape;

// So many that a processor does not learn which way each search goes.
constexpr std::size_t kQueries = 1 << 14;

// A structure of one kind over the cloud, built when first asked for.
template <typename Locator>
class Lazy {
public:
    Locator& over(const Points& points) const {
        if (!locator_) {
            input_ = std::make_unique<typename Locator::Input>(Locator::prepare(points));
            locator_ = std::make_unique<Locator>(*input_);
        }
        return *locator_;
    }

private:
    mutable std::unique_ptr<typename Locator::Input> input_;
    mutable std::unique_ptr<Locator> locator_;
};

struct CloudInput {
    CloudInput(const CloudShape& shapeOfPoints, std::size_t count)
        : shape(shapeOfPoints), n(count), points(shape.make(n)) {}

    const CloudShape& shape;
    std::size_t n;
    Points points;
    Lazy<LibraryLocator> library;
    Lazy<DeepLibraryLocator> deepLibrary;
#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
    Lazy<NanoflannLocator> nanoflann;
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
    Lazy<BoostLocator> boost;
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
    Lazy<VtkLocator> vtk;
#endif
#if defined(QEL_BENCHMARK_HAS_CGAL)
    Lazy<CgalLocator> cgal;
#endif

    // Peers may hang on NaN, or fail.
    bool isFinite() const {
        return std::string(shape.name) != "nan_among";
    }
    // CGAL's tree is as deep as there are equal points, which ends the program.
    bool isForCgal() const {
        return isFinite() && std::string(shape.name) != "equal_points";
    }
};

// -- Building ----

template <typename Locator>
void addBuild(Row& row, const char* who, const CloudInput& in) {
    if (row.wants(who)) {
        row.add(who, [input = Locator::prepare(in.points)] {
            Locator locator(input);
            keep(&locator);
        });
    }
}

template <typename Library>
void build(Row& row, const CloudInput& in) {
    addBuild<Library>(row, kLibrary, in);
    if (in.isFinite()) {
#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
        addBuild<NanoflannLocator>(row, "nanoflann", in);
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
        addBuild<BoostLocator>(row, "Boost", in);
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
        addBuild<VtkLocator>(row, "VTK", in);
#endif
    }
#if defined(QEL_BENCHMARK_HAS_CGAL)
    if (in.isForCgal()) {
        addBuild<CgalLocator>(row, "CGAL", in);
    }
#endif
    row.measure();
}

// -- Queries ----

std::size_t nearestByLoop(const Points& points, const Point& q) {
    std::size_t nearest = 0;
    float least = std::numeric_limits<float>::max();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const float dx = q.x - points[i].x;
        const float dy = q.y - points[i].y;
        const float d2 = dx * dx + dy * dy;
        if (d2 < least) {
            least = d2;
            nearest = i;
        }
    }
    return nearest;
}

// A query a call.
template <typename Locator>
void addQueries(Row& row, const char* who, const CloudInput& in, const Lazy<Locator>& lazy,
                const Points& queries) {
    if (row.wants(who)) {
        Locator& locator = lazy.over(in.points);
        row.add(who, [&locator, &queries, k = std::size_t{0}]() mutable {
            keep(locator.nearest(queries[k++ % kQueries]));
        });
    }
}

// Whether all queries find points as near as the loop does.
template <typename Locator>
bool findsNearest(Locator& locator, const Points& points, const Points& queries) {
    const auto squaredDistance = [&](std::size_t i, const Point& q) {
        const float dx = q.x - points[i].x;
        const float dy = q.y - points[i].y;
        return dx * dx + dy * dy;
    };
    for (std::size_t k = 0; k < kQueries; k += kQueries / 16) {
        const Point& q = queries[k];
        if (squaredDistance(locator.nearest(q), q) !=
            squaredDistance(nearestByLoop(points, q), q)) {
            return false;
        }
    }
    return true;
}

using MakeQueries = Points (*)(const CloudShape&, const Points&, std::size_t);

template <typename Locator>
void query(Row& row, const CloudInput& in, const Lazy<Locator>& library, MakeQueries make) {
    const Points queries = make(in.shape, in.points, kQueries);
    row.setItems(1);
    addQueries(row, kLibrary, in, library, queries);
    row.add(kPlain, [&, k = std::size_t{0}]() mutable {
        keep(nearestByLoop(in.points, queries[k++ % kQueries]));
    });
    if (in.isFinite()) {
#if defined(QEL_BENCHMARK_HAS_NANOFLANN)
        addQueries(row, "nanoflann", in, in.nanoflann, queries);
#endif
#if defined(QEL_BENCHMARK_HAS_BOOST)
        addQueries(row, "Boost", in, in.boost, queries);
#endif
#if defined(QEL_BENCHMARK_HAS_VTK)
        addQueries(row, "VTK", in, in.vtk, queries);
#endif
    }
#if defined(QEL_BENCHMARK_HAS_CGAL)
    if (in.isForCgal()) {
        addQueries(row, "CGAL", in, in.cgal, queries);
    }
#endif
    row.measure();
    if (row.canCompare()) {
        row.expectSame(findsNearest(library.over(in.points), in.points, queries));
    }
}

void queryAnywhere(Row& row, const CloudInput& in) {
    query(row, in, in.library, qel_test::queriesAnywhere);
}

void queryNearPoints(Row& row, const CloudInput& in) {
    query(row, in, in.library, qel_test::queriesNearPoints);
}

void queryNearPointsDeep(Row& row, const CloudInput& in) {
    query(row, in, in.deepLibrary, qel_test::queriesNearPoints);
}

void queryFarOff(Row& row, const CloudInput& in) {
    query(row, in, in.library, qel_test::queriesFarOff);
}

} // namespace
} // namespace qel_benchmark

int main(int argc, char** argv) {
    using namespace qel_benchmark;
    Program program(argc, argv, "nearest");
    Works<CloudShape, CloudInput> works;
    works.add("build", build<LibraryLocator>);
    works.add("build_deep", build<DeepLibraryLocator>);
    works.add("query_anywhere", queryAnywhere);
    works.add("query_near_points", queryNearPoints);
    works.add("query_near_points_deep", queryNearPointsDeep);
    works.add("query_far_off", queryFarOff);
    works.measure(program, qel_test::cloudShapes());
}
