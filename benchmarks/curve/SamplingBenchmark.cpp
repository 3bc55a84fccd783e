// Resampling a curve of n points at n parameters: evenly spread, sorted at random, and unsorted.
#include <algorithm>
#include <random>

#include <benchmark/benchmark.h>

#include <qel/ParametricCurve.h>

#include "support/Bandwidth.h"
#include "support/Curves.h"
#include "support/Sizes.h"

#if defined(QEL_BENCHMARK_HAS_BOOST)
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/multi_point.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#endif

namespace {

using namespace qel_benchmark;

std::vector<double> evenParameters(std::size_t n) {
    std::vector<double> s(n);
    for (std::size_t i = 0; i < n; ++i) {
        s[i] = static_cast<double>(i) / static_cast<double>(n - 1);
    }
    return s;
}

std::vector<double> randomParameters(std::size_t n) {
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::vector<double> s(n);
    std::generate(s.begin(), s.end(), [&] { return uniform(random); });
    return s;
}

std::vector<double> sortedParameters(std::size_t n) {
    std::vector<double> s = randomParameters(n);
    std::sort(s.begin(), s.end());
    return s;
}

void resampleQel(benchmark::State& state, std::vector<double> (*parameters)(std::size_t)) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const qel::ParametricCurve curve(wave(n), qel::ParametricCurve::dim2D);
    const std::vector<double> s = parameters(n);
    Points points(n); // memory that is there already
    for (auto _ : state) {
        curve.getCurveBySvalues(points, s, true);
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void resampleCopy(benchmark::State& state) {
    measureCopy(state, wave(static_cast<std::size_t>(state.range(0))));
}

#if defined(QEL_BENCHMARK_HAS_BOOST)
// Points at even steps of length, all in one walk: what it offers for many of them.
void resampleBoost(benchmark::State& state) {
    namespace bg = boost::geometry;
    using Flat = bg::model::d2::point_xy<double>;
    const auto n = static_cast<std::size_t>(state.range(0));
    bg::model::linestring<Flat> line;
    for (const Point& p : wave(n)) {
        line.emplace_back(p.x, p.y);
    }
    const double step = static_cast<double>(bg::length(line)) / static_cast<double>(n - 1);
    bg::model::multi_point<Flat> points;
    points.reserve(n + 1);
    for (auto _ : state) {
        points.clear();
        bg::line_interpolate(line, step, points);
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(resampleBoost)->Name("resample/boost")->Arg(30000)->Arg(5000000);
#endif

BENCHMARK_CAPTURE(resampleQel, even, evenParameters)
    ->Name("resample/qel")
    ->Arg(30000)
    ->Arg(5000000)
    ->Apply(growthSizes);
BENCHMARK(resampleCopy)->Name("resample/copy")->Arg(30000)->Arg(5000000);
BENCHMARK_CAPTURE(resampleQel, sorted, sortedParameters)
    ->Name("resampleSorted/qel")
    ->Arg(30000)
    ->Arg(5000000)
    ->Apply(growthSizes);
BENCHMARK_CAPTURE(resampleQel, random, randomParameters)
    ->Name("resampleUnsorted/qel")
    ->Arg(30000)
    ->Arg(5000000)
    ->Apply(growthSizes);

} // namespace
