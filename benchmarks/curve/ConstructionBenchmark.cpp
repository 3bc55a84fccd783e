// Building a curve: lengths of the steps, their running sum and the division by the length.
//
// "arcLength" builds anew the s-values of points that are there; "construct" builds a curve, which
// copies the points as well. The peer of the latter does both into memory of its own.
#include <qel/ParametricCurve.h>

#include <benchmark/benchmark.h>

#include "curve/ArcLength.h"
#include "support/Bandwidth.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_EIGEN)
#include <Eigen/Core>
#endif

namespace {

using namespace qel_benchmark;
using qel::ParametricCurve;

Points pointsOf(const benchmark::State& state) {
    return helix(static_cast<std::size_t>(state.range(0)));
}

void sizes(benchmark::internal::Benchmark* work) {
    work->Arg(1000)->Arg(30000)->Arg(5000000);
}

void countPoints(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void arcLengthQel(benchmark::State& state) {
    const Points points = pointsOf(state);
    std::vector<double> s(points.size());
    double length = 0.0;
    for (auto _ : state) {
        qel::calculateArcValue(points, s, length);
        benchmark::ClobberMemory();
    }
    countPoints(state);
}
BENCHMARK(arcLengthQel)->Name("arcLength/qel")->Apply(sizes)->Arg(100000)->Arg(10000000);

void constructQel(benchmark::State& state) {
    const Points points = pointsOf(state);
    for (auto _ : state) {
        const ParametricCurve curve(points, ParametricCurve::dim3D);
        benchmark::DoNotOptimize(curve.getLength());
    }
    countPoints(state);
}
BENCHMARK(constructQel)->Name("construct/qel")->Apply(sizes);

void constructRead(benchmark::State& state) {
    measureRead(state, pointsOf(state));
}
BENCHMARK(constructRead)->Name("construct/read")->Apply(sizes);

void constructCopy(benchmark::State& state) {
    measureCopy(state, pointsOf(state));
}
BENCHMARK(constructCopy)->Name("construct/copy")->Apply(sizes);

// What a curve's own vectors cost: a copy into fresh memory.
void constructFreshCopy(benchmark::State& state) {
    const Points points = pointsOf(state);
    for (auto _ : state) {
        const Points copy(points);
        benchmark::DoNotOptimize(copy.data());
    }
    countPoints(state);
}
BENCHMARK(constructFreshCopy)->Name("construct/std")->Apply(sizes);

#if defined(QEL_BENCHMARK_HAS_EIGEN)
// Norms of the columns' differences in one expression, then the running sum, which Eigen has not.
void arcLengthByEigen(const Points& points, Eigen::VectorXd& s) {
    const auto n = static_cast<Eigen::Index>(points.size());
    const Eigen::Map<const Eigen::Matrix3Xd> columns(&points[0].x, 3, n);
    s[0] = 0.0;
    s.tail(n - 1) = (columns.rightCols(n - 1) - columns.leftCols(n - 1)).colwise().norm();
    double sum = 0.0;
    for (Eigen::Index i = 1; i < n; ++i) {
        sum += s[i];
        s[i] = sum;
    }
    s /= sum;
}

void arcLengthEigen(benchmark::State& state) {
    const Points points = pointsOf(state);
    Eigen::VectorXd s(state.range(0));
    for (auto _ : state) {
        arcLengthByEigen(points, s);
        benchmark::DoNotOptimize(s.data());
        benchmark::ClobberMemory();
    }
    countPoints(state);
}
BENCHMARK(arcLengthEigen)->Name("arcLength/eigen")->Apply(sizes);

void constructEigen(benchmark::State& state) {
    const Points points = pointsOf(state);
    for (auto _ : state) {
        const Points copy(points);
        Eigen::VectorXd s(state.range(0));
        arcLengthByEigen(copy, s);
        benchmark::DoNotOptimize(s.data());
    }
    countPoints(state);
}
BENCHMARK(constructEigen)->Name("construct/eigen")->Apply(sizes);
#endif

} // namespace
