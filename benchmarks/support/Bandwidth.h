#ifndef QEL_BENCHMARKS_SUPPORT_BANDWIDTH_H
#define QEL_BENCHMARKS_SUPPORT_BANDWIDTH_H

// What the memory allows: loops that only read or copy the bytes of the work measured.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

namespace qel_benchmark {

// Adds up all bytes as whole words: integers, so that the compiler may use every lane.
template <typename T>
std::uint64_t readAll(const std::vector<T>& values) {
    static_assert(sizeof(T) % sizeof(std::uint64_t) == 0, "read in whole words");
    const std::size_t words = values.size() * (sizeof(T) / sizeof(std::uint64_t));
    const char* bytes = reinterpret_cast<const char*>(values.data());
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i * sizeof(word), sizeof(word));
        sum += word;
    }
    return sum;
}

template <typename T>
void measureRead(benchmark::State& state, const std::vector<T>& values) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(readAll(values));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

// Copies into memory that is there already.
template <typename T>
void measureCopy(benchmark::State& state, const std::vector<T>& values) {
    std::vector<T> copy(values);
    for (auto _ : state) {
        std::memcpy(static_cast<void*>(copy.data()), values.data(), values.size() * sizeof(T));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

} // namespace qel_benchmark

#endif
