// Points at s-values, in random order: a binary search each.
//
// GEOS extracts points by length along a line of the plane, which it walks to find them.
#include <algorithm>

#include <qel/ParametricCurve.h>

#include <benchmark/benchmark.h>

#include "GeosLine.h"
#include "support/Curves.h"

#if defined(QEL_BENCHMARK_HAS_GEOS)
#include <geos/linearref/LengthIndexedLine.h>
#endif

namespace {

using namespace qel_benchmark;
using qel::ParametricCurve;

// Taken in turn; of fewer, a processor learns by heart which way each search goes.
constexpr std::size_t kParameters = std::size_t{1} << 16;

std::vector<double> randomParameters() {
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> between(0.0, 1.0);
    std::vector<double> s(kParameters);
    for (double& value : s) {
        value = between(random);
    }
    return s;
}

void pointAtQel(benchmark::State& state) {
    const ParametricCurve curve(wave(static_cast<std::size_t>(state.range(0))),
                                ParametricCurve::dim3D);
    const std::vector<double> s = randomParameters();
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(curve.getPointAtParameter(s[k++ % kParameters]));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pointAtQel)->Name("pointAt/qel")->Arg(1000)->Arg(100000)->Arg(1000000)->Arg(10000000);

Point between(const Points& points, const std::vector<double>& svalues, double s) {
    const auto above = std::upper_bound(svalues.begin() + 1, svalues.end() - 1, s);
    const auto i = static_cast<std::size_t>(above - svalues.begin());
    const double t = (s - svalues[i - 1]) / (svalues[i] - svalues[i - 1]);
    return points[i - 1] + (points[i] - points[i - 1]) * t;
}

// What one would write by hand: the standard's search, and the point between two.
void pointAtStd(benchmark::State& state) {
    const ParametricCurve curve(wave(static_cast<std::size_t>(state.range(0))),
                                ParametricCurve::dim3D);
    const Points& points = curve.getCurve();
    const std::vector<double>& own = curve.getSvalues();
    const std::vector<double> s = randomParameters();
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(between(points, own, s[k++ % kParameters]));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pointAtStd)->Name("pointAt/std")->Arg(1000)->Arg(100000)->Arg(1000000);

#if defined(QEL_BENCHMARK_HAS_GEOS)
void pointAtGeos(benchmark::State& state) {
    const auto line = geosLine(wave(static_cast<std::size_t>(state.range(0))));
    const geos::linearref::LengthIndexedLine indexed(line.get());
    const double length = line->getLength();
    const std::vector<double> s = randomParameters();
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(indexed.extractPoint(length * s[k++ % kParameters]));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pointAtGeos)->Name("pointAt/geos")->Arg(1000)->Arg(100000);
#endif

} // namespace
