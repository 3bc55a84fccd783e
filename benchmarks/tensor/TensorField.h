#ifndef QEL_BENCHMARKS_TENSOR_TENSORFIELD_H
#define QEL_BENCHMARKS_TENSOR_TENSORFIELD_H

// The field that all are measured on, as plain memory that every library can take as it is, and
// how a measurement is registered. One item is one point.

#include <cstddef>
#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>

namespace qel_benchmark {

constexpr std::size_t kSizes[] = {10000, 10000000};
constexpr std::size_t kGrowthSizes[] = {1000, 100000, 1000000};

// Rows of T and the velocity: x, y, z of each point in turn. The pointers last.
struct TensorField {
    std::size_t n;
    const float* row1;
    const float* row2;
    const float* row3;
    const float* velocity;
};

// Normal entries, made free of divergence. Built once for each n.
TensorField tensorField(std::size_t n);

template <typename Prepare>
void addAt(const std::string& name, std::size_t n, Prepare prepare) {
    const std::string full = name + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(full.c_str(), [n, prepare](benchmark::State& state) {
        auto pass = prepare(tensorField(n));
        for (auto _ : state) {
            pass();
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
    });
}

// Registers "<work>/<who>/<n>" for each n of kSizes, and for the library at the lengths between,
// for its growth with n; pass(field) does the work once.
template <typename Prepare>
int add(const char* work, const char* who, Prepare prepare) {
    const std::string name = std::string(work) + "/" + who;
    for (const std::size_t n : kSizes) {
        addAt(name, n, prepare);
    }
    if (std::string(who) == "qel") {
        for (const std::size_t n : kGrowthSizes) {
            addAt(name, n, prepare);
        }
    }
    return 0;
}

} // namespace qel_benchmark

#endif
