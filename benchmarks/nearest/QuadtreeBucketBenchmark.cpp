// Nearest-point search in the plane: building and querying, on clouds spread evenly, clustered at
// a wall, and on a grid where every query is a tie.
//
// Memory per point of the bucket, on top of the caller's list: 25 to 32 bytes (30 on even clouds
// and in layers at a capacity of 16), of which 16 hold coordinates, index and leaf; the rest is the
// unused places of its blocks, its boxes and the leaves. 4 bytes more where the points differ in z.
// Building takes 2 bytes more, for the list of blocks; it sorts where the index will lie.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "nearest/CgalLocator.h"
#include "nearest/Clouds.h"
#include "nearest/Locators.h"

namespace qel_benchmark {
namespace {

constexpr unsigned kSeed = 20240611;
constexpr std::size_t kQueries = std::size_t{1} << 16;
constexpr std::size_t kSizes[] = {1000, 100000, 1000000, 10000000};

enum class QueryKind { box, near };

// The cloud in use: one at a time, as the largest fill the memory.
const Points& cloudOf(CloudKind kind, std::size_t n) {
    static Points points;
    static CloudKind lastKind = CloudKind::uniform;
    if (points.size() != n || lastKind != kind) {
        points = CloudMaker(kSeed).cloud(kind, n);
        lastKind = kind;
    }
    return points;
}

template <typename Locator>
void measureBuild(benchmark::State& state, CloudKind kind, std::size_t n) {
    const auto input = Locator::prepare(cloudOf(kind, n));
    for (auto _ : state) {
        Locator locator(input);
        benchmark::DoNotOptimize(&locator);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

template <typename Locator>
void measureQueries(benchmark::State& state, CloudKind kind, QueryKind where, std::size_t n) {
    const Points& points = cloudOf(kind, n);
    CloudMaker maker(kSeed + 1);
    const Points queries = where == QueryKind::box
                               ? maker.queriesInBox(kind, points, kQueries)
                               : maker.queriesNearPoints(kind, points, kQueries);
    const auto input = Locator::prepare(points);
    Locator locator(input);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(locator.nearest(queries[next]));
        next = (next + 1) % kQueries;
    }
    state.SetItemsProcessed(state.iterations());
}

template <typename Locator>
void registerLocator(CloudKind kind, std::size_t n) {
    const std::string tail = std::string("_") + nameOf(kind);
    const std::string who = std::string("/") + Locator::kName + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(("build" + tail + who).c_str(), [=](benchmark::State& state) {
        measureBuild<Locator>(state, kind, n);
    });
    benchmark::RegisterBenchmark(("query_box" + tail + who).c_str(), [=](benchmark::State& state) {
        measureQueries<Locator>(state, kind, QueryKind::box, n);
    });
    benchmark::RegisterBenchmark(("query_near" + tail + who).c_str(), [=](benchmark::State& state) {
        measureQueries<Locator>(state, kind, QueryKind::near, n);
    });
}

const bool registered = [] {
    for (const CloudKind kind : {CloudKind::uniform, CloudKind::layer, CloudKind::grid}) {
        for (const std::size_t n : kSizes) {
            registerLocator<QelLocator<ChosenLimits>>(kind, n);
            registerLocator<QelLocator<DefaultLimits>>(kind, n);
#ifdef QEL_BENCHMARK_HAS_NANOFLANN
            registerLocator<NanoflannLocator>(kind, n);
#endif
#ifdef QEL_BENCHMARK_HAS_VTK
            registerLocator<VtkLocator>(kind, n);
#endif
#ifdef QEL_BENCHMARK_HAS_BOOST
            registerLocator<BoostLocator>(kind, n);
#endif
#ifdef QEL_BENCHMARK_HAS_CGAL
            registerLocator<CgalLocator>(kind, n);
#endif
        }
    }
    return true;
}();

} // namespace
} // namespace qel_benchmark
