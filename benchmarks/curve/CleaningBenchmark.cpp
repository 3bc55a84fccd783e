// Removing repeated points, one in sixteen. What the curve does includes the s-values of what
// remains; removeRepeats/std does not, removeRepeatsAndMeasure/std does.
#include <algorithm>
#include <cmath>
#include <iterator>

#include <benchmark/benchmark.h>

#include <qel/ParametricCurve.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"
#include "support/Sizes.h"

namespace {

using namespace qel_benchmark;

Points withRepeats(std::size_t n) {
    Points points = helix(n);
    for (std::size_t i = 8; i < n; i += 16) {
        points[i] = points[i - 1];
    }
    return points;
}

// The curve is emptied of its repeats by the work, so each run starts from a copy made off the
// clock.
void removeRepeatsQel(benchmark::State& state) {
    const qel::ParametricCurve original(withRepeats(static_cast<std::size_t>(state.range(0))),
                                        qel::ParametricCurve::dim3D);
    for (auto _ : state) {
        state.PauseTiming();
        qel::ParametricCurve curve(original);
        state.ResumeTiming();
        curve.makeUnique();
        benchmark::DoNotOptimize(curve.getCurve().data());
        benchmark::ClobberMemory();
        state.PauseTiming();
        curve = qel::ParametricCurve();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void removeRepeatsStd(benchmark::State& state, bool measure) {
    const Points points = withRepeats(static_cast<std::size_t>(state.range(0)));
    Points kept(points);
    std::vector<double> s(points.size());
    for (auto _ : state) {
        const auto end = std::unique_copy(points.begin(), points.end(), kept.begin());
        if (measure) {
            const auto n = static_cast<std::size_t>(end - kept.begin());
            for (std::size_t i = 1; i < n; ++i) {
                const Point d = kept[i] - kept[i - 1];
                s[i] = s[i - 1] + std::sqrt(d.dot(d));
            }
            for (std::size_t i = 1; i < n; ++i) {
                s[i] /= s[n - 1];
            }
            benchmark::DoNotOptimize(s.data());
        }
        benchmark::DoNotOptimize(kept.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void removeRepeatsCopy(benchmark::State& state) {
    measureCopy(state, withRepeats(static_cast<std::size_t>(state.range(0))));
}

BENCHMARK(removeRepeatsQel)
    ->Name("removeRepeats/qel")
    ->Arg(30000)
    ->Arg(5000000)
    ->Apply(growthSizes);
BENCHMARK_CAPTURE(removeRepeatsStd, alone, false)
    ->Name("removeRepeats/std")
    ->Arg(30000)
    ->Arg(5000000);
BENCHMARK_CAPTURE(removeRepeatsStd, measured, true)
    ->Name("removeRepeatsAndMeasure/std")
    ->Arg(30000)
    ->Arg(5000000);
BENCHMARK(removeRepeatsCopy)->Name("removeRepeats/copy")->Arg(30000)->Arg(5000000);

} // namespace
