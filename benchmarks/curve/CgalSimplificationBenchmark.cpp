// CGAL's thinning of a polyline to k points, beside SimplificationBenchmark.cpp. It drops points by
// the least squared distance and takes care that the polyline does not cross itself, for which it
// holds the points in a triangulation, made within the timed region: thinning uses it up.
#include <cstdint>

#include <benchmark/benchmark.h>

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polyline_simplification_2/Squared_distance_cost.h>
#include <CGAL/Polyline_simplification_2/Stop_below_count_threshold.h>
#include <CGAL/Polyline_simplification_2/simplify.h>

#include "support/Curves.h"

namespace {

namespace ps = CGAL::Polyline_simplification_2;

constexpr std::size_t kCount = 100000;

void simplifyCgal(benchmark::State& state) {
    using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
    std::vector<Kernel::Point_2> line;
    for (const qel_benchmark::Point& p : qel_benchmark::roughWave(kCount)) {
        line.emplace_back(p.x, p.y);
    }
    const auto k = static_cast<std::size_t>(state.range(0));
    std::vector<Kernel::Point_2> out;
    for (auto _ : state) {
        out.clear();
        ps::simplify(line.begin(), line.end(), ps::Squared_distance_cost(),
                     ps::Stop_below_count_threshold(k), std::back_inserter(out), false);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["left"] = static_cast<double>(out.size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}
BENCHMARK(simplifyCgal)->Name("simplify/cgal")->Arg(100)->Arg(1000);

} // namespace
