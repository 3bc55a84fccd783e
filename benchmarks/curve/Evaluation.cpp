// Reading a curve: points at a parameter, components, extremes.

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"
#include "curve/EigenCurve.h"

namespace qel_benchmark {
namespace {

// So many that a processor does not learn which way each search goes.
constexpr std::size_t kQueries = 1 << 14;

// One evaluation a call, at these parameters in turn.
void pointAtEach(Row& row, const CurveInput& in, const Values& parameters) {
    row.setItems(1);
    std::size_t a = 0;
    row.add(kLibrary, [&] { keep(in.curve.getPointAtParameter(parameters[a++ % kQueries])); });
    std::size_t b = 0;
    row.add(kPlain,
            [&] { keep(plain::pointAt(in.points, in.svalues(), parameters[b++ % kQueries])); });
    row.measure();
    bool same = true;
    for (const double s : parameters) {
        same = same && sameBits(in.curve.getPointAtParameter(s),
                                plain::pointAt(in.points, in.svalues(), s));
    }
    row.expectSame(same);
}

void pointAt(Row& row, const CurveInput& in) {
    pointAtEach(row, in, randomParameters(kQueries));
}

void pointAtSorted(Row& row, const CurveInput& in) {
    Values parameters = randomParameters(kQueries);
    std::sort(parameters.begin(), parameters.end());
    pointAtEach(row, in, parameters);
}

void closestToS(Row& row, const CurveInput& in) {
    const Values parameters = randomParameters(kQueries);
    row.setItems(1);
    std::size_t a = 0;
    row.add(kLibrary, [&] { keep(in.curve.getClosestToSvaluePoint(parameters[a++ % kQueries])); });
    std::size_t b = 0;
    row.add(kPlain, [&] { keep(plain::closestToS(in.svalues(), parameters[b++ % kQueries])); });
    row.measure();
}

void svaluesOfIds(Row& row, const CurveInput& in) {
    ShapeRandom random(2);
    std::vector<int> ids(in.n);
    for (int& id : ids) {
        id = static_cast<int>(random.index(in.n));
    }
    row.add(kLibrary, [&] { keep(in.curve.getSvalues(ids).data()); });
    row.add(kPlain, [&] {
        Values s(ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i) {
            s[i] = in.svalues().at(static_cast<std::size_t>(ids[i]));
        }
        keep(s.data());
    });
    row.measure();
}

// -- Components ----

template <typename T>
void getX(Row& row, const CurveInput& in) {
    std::vector<T> a(in.n);
    std::vector<T> b(in.n);
    row.add(kLibrary, [&] { in.curve.getX(a); });
    row.add(kPlain, [&] {
        b.resize(in.n);
        for (std::size_t i = 0; i < in.n; ++i) {
            b[i] = static_cast<T>(in.points[i].x);
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    std::vector<T> c(in.n);
    row.add(kEigen, [&] {
        c.resize(in.n);
        Eigen::Map<Eigen::Matrix<T, 1, Eigen::Dynamic>>(c.data(), static_cast<Eigen::Index>(in.n)) =
            columnsOf(in.points).row(0).template cast<T>();
    });
#endif
    row.measure();
    row.expectSame(sameBits(a, b));
}

void getXTriplets(Row& row, const CurveInput& in) {
    Points a(in.n);
    Points b(in.n);
    row.add(kLibrary, [&] { in.curve.getX(a); });
    row.add(kPlain, [&] {
        b.resize(in.n);
        for (std::size_t i = 0; i < in.n; ++i) {
            b[i] = Point(in.points[i].x, 0.0, 0.0);
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void getPoints(Row& row, const CurveInput& in) {
    Points a(in.n);
    Points b(in.n);
    row.add(kLibrary, [&] { in.curve.getCurve(a); });
    row.add(kPlain, [&] { b = in.points; });
    row.measure();
}

// -- Extremes ----

// The wider of two ranges; NaN never enters.
void widen(double value, double& low, double& high) {
    low = low > value ? value : low;
    high = value > high ? value : high;
}

void minMax(Row& row, const CurveInput& in) {
    double low[3] = {};
    double high[3] = {};
    row.add(kLibrary,
            [&] { in.curve.getMinMax(low[0], high[0], low[1], high[1], low[2], high[2]); });
    Point least;
    Point most;
    row.add(kPlain, [&] {
        least = most = in.points[0];
        for (const Point& p : in.points) {
            widen(p.x, least.x, most.x);
            widen(p.y, least.y, most.y);
            widen(p.z, least.z, most.z);
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    row.add(kEigen, [&] {
        const Eigen::Vector3d lowest = columnsOf(in.points).rowwise().minCoeff();
        const Eigen::Vector3d highest = columnsOf(in.points).rowwise().maxCoeff();
        keep(lowest);
        keep(highest);
    });
#endif
    row.measure();
    row.expectSame(sameBits(Point(low[0], low[1], low[2]), least) &&
                   sameBits(Point(high[0], high[1], high[2]), most));
}

void minMaxX(Row& row, const CurveInput& in) {
    double low = 0.0;
    double high = 0.0;
    row.add(kLibrary, [&] { in.curve.getMinMaxX(low, high); });
    double least = 0.0;
    double most = 0.0;
    row.add(kPlain, [&] {
        least = most = in.points[0].x;
        for (const Point& p : in.points) {
            widen(p.x, least, most);
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    row.add(kEigen, [&] {
        keep(columnsOf(in.points).row(0).minCoeff());
        keep(columnsOf(in.points).row(0).maxCoeff());
    });
#endif
    row.measure();
    row.expectSame(sameBits(low, least) && sameBits(high, most));
}

void indexOfMinX(Row& row, const CurveInput& in) {
    std::size_t a = 0;
    std::size_t b = 0;
    row.add(kLibrary, [&] { a = in.curve.getMinXid(); });
    row.add(kPlain, [&] {
        b = 0;
        for (std::size_t i = 1; i < in.n; ++i) {
            b = in.points[b].x > in.points[i].x ? i : b;
        }
    });
#if defined(QEL_BENCHMARK_HAS_EIGEN)
    row.add(kEigen, [&] {
        Eigen::Index index = 0;
        columnsOf(in.points).row(0).minCoeff(&index);
        keep(index);
    });
#endif
    row.measure();
    row.expectSame(a == b);
}

const bool registered =
    addCurveWork("point_at_s", pointAt) && addCurveWork("point_at_ascending_s", pointAtSorted) &&
    addCurveWork("closest_to_s", closestToS) && addCurveWork("s_of_ids", svaluesOfIds) &&
    addCurveWork("get_x", getX<double>) && addCurveWork("get_x_as_floats", getX<float>) &&
    addCurveWork("get_x_as_triplets", getXTriplets) && addCurveWork("get_points", getPoints) &&
    addCurveWork("min_max", minMax) && addCurveWork("min_max_x", minMaxX) &&
    addCurveWork("index_of_min_x", indexOfMinX);

} // namespace
} // namespace qel_benchmark
