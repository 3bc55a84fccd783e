// Building a curve: lengths of the steps, their running sum and the division by the length.
#include <benchmark/benchmark.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_EIGEN)
#include <Eigen/Core>
#endif

namespace {

using namespace qel_benchmark;

void arcLengthRead(benchmark::State& state) {
    measureRead(state, helix(static_cast<std::size_t>(state.range(0))));
}

void arcLengthCopy(benchmark::State& state) {
    measureCopy(state, helix(static_cast<std::size_t>(state.range(0))));
}

#if defined(QEL_BENCHMARK_HAS_EIGEN)
// Norms of the columns' differences in one expression, the running sum as Eigen has none.
void arcLengthEigen(benchmark::State& state) {
    const Points points = helix(static_cast<std::size_t>(state.range(0)));
    const auto n = static_cast<Eigen::Index>(points.size());
    const Eigen::Map<const Eigen::Matrix3Xd> columns(&points[0].x, 3, n);
    Eigen::VectorXd s(n);
    for (auto _ : state) {
        s[0] = 0.0;
        s.tail(n - 1) = (columns.rightCols(n - 1) - columns.leftCols(n - 1)).colwise().norm();
        double sum = 0.0;
        for (Eigen::Index i = 1; i < n; ++i) {
            sum += s[i];
            s[i] = sum;
        }
        s /= sum;
        benchmark::DoNotOptimize(s.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(arcLengthEigen)->Name("arcLength/eigen")->Arg(30000)->Arg(5000000);
#endif

BENCHMARK(arcLengthRead)->Name("arcLength/read")->Arg(30000)->Arg(5000000);
BENCHMARK(arcLengthCopy)->Name("arcLength/copy")->Arg(30000)->Arg(5000000);

} // namespace
