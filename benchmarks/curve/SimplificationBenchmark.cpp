// Thinning a curve to its k most telling points. The peer is given the tolerance that leaves as
// many. An item is a point of the curve before.
#include <qel/ParametricCurve.h>

#include <benchmark/benchmark.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_BOOST)
#include "support/BoostLines.h"
#endif

namespace {

using namespace qel_benchmark;

constexpr std::size_t kCount = 100000;

void simplifyQel(benchmark::State& state, std::size_t n) {
    const qel::ParametricCurve whole(roughWave(n), qel::ParametricCurve::dim2D);
    std::vector<int> ids;
    for (auto _ : state) {
        state.PauseTiming();
        qel::ParametricCurve curve(whole);
        state.ResumeTiming();
        curve.optimizeByNormalDistance(static_cast<int>(state.range(0)), ids, 0.0);
        benchmark::DoNotOptimize(curve.getCurve().data());
    }
    state.counters["left"] = static_cast<double>(ids.size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

void simplifyRead(benchmark::State& state) {
    measureRead(state, roughWave(kCount));
}

#if defined(QEL_BENCHMARK_HAS_BOOST)
namespace bg = boost::geometry;

// The tolerance that leaves k points, by halving the range of its logarithm.
double toleranceFor(const BoostLine& line, std::size_t k) {
    double low = 1e-9;
    double high = 10.0;
    for (int step = 0; step < 40; ++step) {
        const double middle = std::sqrt(low * high);
        BoostLine out;
        bg::simplify(line, out, middle);
        (out.size() > k ? low : high) = middle;
    }
    return high;
}

void simplifyBoost(benchmark::State& state) {
    const BoostLine line = boostLine(roughWave(kCount));
    const double tolerance = toleranceFor(line, static_cast<std::size_t>(state.range(0)));
    BoostLine out;
    for (auto _ : state) {
        out.clear();
        bg::simplify(line, out, tolerance);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["left"] = static_cast<double>(out.size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}
BENCHMARK(simplifyBoost)->Name("simplify/boost")->Arg(100)->Arg(1000);
#endif

BENCHMARK_CAPTURE(simplifyQel, 1e5, kCount)->Name("simplify/qel")->Arg(100)->Arg(1000);
BENCHMARK(simplifyRead)->Name("simplify/read")->Arg(100);

// Half of a million points kept: what a choice by scanning all chords would not live to see.
BENCHMARK_CAPTURE(simplifyQel, 1e6, 1000000)
    ->Name("simplifyMillion/qel")
    ->Arg(500000)
    ->Unit(benchmark::kMillisecond);

} // namespace
