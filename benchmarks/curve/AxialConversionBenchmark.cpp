// Turning every point of a curve about an axis.
#include <benchmark/benchmark.h>

#include <qel/ParametricCurve.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"
#include "support/Sizes.h"

#if defined(QEL_BENCHMARK_HAS_EIGEN)
#include <Eigen/Geometry>
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point.hpp>
#endif

namespace {

using namespace qel_benchmark;

void rotateQel(benchmark::State& state) {
    qel::ParametricCurve curve(helix(static_cast<std::size_t>(state.range(0))),
                               qel::ParametricCurve::dim3D);
    for (auto _ : state) {
        curve.rotateAroundVector(Point(1, 2, 3), Point(1, 1, 1), 0.1);
        benchmark::DoNotOptimize(curve.getCurve().data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void rotateCopy(benchmark::State& state) {
    measureCopy(state, helix(static_cast<std::size_t>(state.range(0))));
}

#if defined(QEL_BENCHMARK_HAS_EIGEN)
void rotateEigen(benchmark::State& state) {
    Points points = helix(static_cast<std::size_t>(state.range(0)));
    Eigen::Map<Eigen::Matrix3Xd> columns(&points[0].x, 3, static_cast<Eigen::Index>(points.size()));
    const Eigen::Vector3d centre(1, 2, 3);
    const Eigen::Matrix3d rotation =
        Eigen::AngleAxisd(0.1, Eigen::Vector3d(1, 1, 1).normalized()).toRotationMatrix();
    for (auto _ : state) {
        columns = (rotation * (columns.colwise() - centre)).colwise() + centre;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(rotateEigen)->Name("rotate/eigen")->Arg(30000)->Arg(5000000);
#endif

#if defined(QEL_BENCHMARK_HAS_BOOST)
void rotateBoost(benchmark::State& state) {
    namespace bg = boost::geometry;
    using Space = bg::model::point<double, 3, bg::cs::cartesian>;
    bg::model::linestring<Space> line;
    for (const Point& p : helix(static_cast<std::size_t>(state.range(0)))) {
        line.emplace_back(p.x, p.y, p.z);
    }
    bg::model::linestring<Space> turned(line);
    // A matrix with a shift: what a rotation about a point comes to.
    const bg::strategy::transform::matrix_transformer<double, 3, 3> matrix(
        0.6, -0.8, 0.0, 1.0, 0.8, 0.6, 0.0, 2.0, 0.0, 0.0, 1.0, 3.0, 0.0, 0.0, 0.0, 1.0);
    for (auto _ : state) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            matrix.apply(line[i], turned[i]);
        }
        benchmark::DoNotOptimize(turned.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(rotateBoost)->Name("rotate/boost")->Arg(30000)->Arg(5000000);
#endif

BENCHMARK(rotateQel)->Name("rotate/qel")->Arg(30000)->Arg(5000000)->Apply(growthSizes);
BENCHMARK(rotateCopy)->Name("rotate/copy")->Arg(30000)->Arg(5000000);

} // namespace
