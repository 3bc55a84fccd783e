// Minimum, maximum, sum and count of a float array with undefined values marked.
//
// One item is one value. Fields: "pressure", values within half a percent of 1e5, whose sums are
// exact; "velocity", normal values of both signs, of whose blocks most add up exactly; "spread",
// magnitudes over eighty octaves, whose sums round at nearly every step.

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>

#include "support/Bandwidth.h"

#if defined(QEL_BENCHMARK_HAS_BOOST)
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#endif
#include <boost/accumulators/accumulators.hpp>
#include <boost/accumulators/statistics/count.hpp>
#include <boost/accumulators/statistics/max.hpp>
#include <boost/accumulators/statistics/min.hpp>
#include <boost/accumulators/statistics/stats.hpp>
#include <boost/accumulators/statistics/sum.hpp>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
#endif

namespace {

enum class Kind { pressure, velocity, spread };

const char* nameOf(Kind kind) {
    switch (kind) {
    case Kind::pressure:
        return "pressure";
    case Kind::velocity:
        return "velocity";
    case Kind::spread:
        break;
    }
    return "spread";
}

float sample(Kind kind, std::mt19937& random) {
    std::normal_distribution<float> normal;
    const float value = normal(random);
    if (kind == Kind::pressure) {
        return 101325.0f + 100.0f * value;
    }
    std::uniform_int_distribution<int> octave(-40, 40);
    return kind == Kind::velocity ? value : std::ldexp(value, octave(random));
}

std::vector<float> field(Kind kind, std::size_t n) {
    std::mt19937 random(1);
    std::vector<float> values(std::min(n, std::size_t{1} << 16));
    for (float& v : values) {
        v = sample(kind, random);
    }
    for (std::size_t i = 0; values.size() < n; ++i) { // repeats itself, to be built fast
        values.push_back(values[i]);
    }
    return values;
}

void countItems(benchmark::State& state, std::size_t n) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

void ofArray(benchmark::State& state, const qel::FloatQELVector& array) {
    for (auto _ : state) {
        array.invalidateCache();
        benchmark::DoNotOptimize(array.getMin());
        benchmark::DoNotOptimize(array.getSum());
    }
    countItems(state, array.size());
}

void qelStatistics(benchmark::State& state, Kind kind, std::size_t n) {
    const std::vector<float> values = field(kind, n);
    ofArray(state, qel::FloatQELVectorConcrete(values.data(), n));
}

void qelComponentStatistics(benchmark::State& state, Kind kind, std::size_t n) {
    qel::TripletQELVector triplets;
    for (const float v : field(kind, n)) {
        triplets.push_back({v, v, v});
    }
    ofArray(state, qel::FloatQELVectorComponent(triplets, 1));
}

#if defined(QEL_BENCHMARK_HAS_BOOST)
// Of every stride-th value.
template <std::size_t stride>
void ofBoost(benchmark::State& state, const std::vector<float>& values) {
    namespace acc = boost::accumulators;
    for (auto _ : state) {
        acc::accumulator_set<
            double, acc::stats<acc::tag::min, acc::tag::max, acc::tag::sum, acc::tag::count>>
            set;
        for (std::size_t i = 0; i < values.size(); i += stride) {
            if (values[i] != std::numeric_limits<float>::max()) {
                set(static_cast<double>(values[i]));
            }
        }
        benchmark::DoNotOptimize(acc::min(set));
        benchmark::DoNotOptimize(acc::max(set));
        benchmark::DoNotOptimize(acc::sum(set));
        benchmark::DoNotOptimize(acc::count(set));
    }
    countItems(state, values.size() / stride);
}

void boostStatistics(benchmark::State& state, Kind kind, std::size_t n) {
    ofBoost<1>(state, field(kind, n));
}

void boostComponentStatistics(benchmark::State& state, Kind kind, std::size_t n) {
    std::vector<float> triplets;
    for (const float v : field(kind, n)) {
        triplets.insert(triplets.end(), 3, v);
    }
    ofBoost<3>(state, triplets);
}
#endif

void readValues(benchmark::State& state, Kind, std::size_t n) {
    const std::vector<double> pairs(n / 2, 1.0); // as many bytes as n floats
    for (auto _ : state) {
        benchmark::DoNotOptimize(qel_benchmark::readAll(pairs));
    }
    countItems(state, n);
}

using Work = void (*)(benchmark::State&, Kind, std::size_t);

void add(const std::string& work, const char* who, Work function, Kind kind, std::size_t n) {
    const std::string name = work + "/" + who + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), function, kind, n);
}

const bool registered = [] {
    for (const std::size_t n : {std::size_t{250000}, std::size_t{50000000}}) {
        for (const Kind kind : {Kind::pressure, Kind::velocity, Kind::spread}) {
            const std::string work = nameOf(kind);
            add(work, "qel", qelStatistics, kind, n);
#if defined(QEL_BENCHMARK_HAS_BOOST)
            add(work, "boost", boostStatistics, kind, n);
#endif
            if (n < 1000000) {
                add(work + "_component", "qel", qelComponentStatistics, kind, n);
#if defined(QEL_BENCHMARK_HAS_BOOST)
                add(work + "_component", "boost", boostComponentStatistics, kind, n);
#endif
            }
            add(work, "read", readValues, kind, n);
        }
    }
    // The growth with n.
    for (std::size_t n = 1000; n <= 10000000; n *= 10) {
        add("pressure", "qel", qelStatistics, Kind::pressure, n);
        add("velocity", "qel", qelStatistics, Kind::velocity, n);
    }
    return true;
}();

} // namespace
