#ifndef QEL_BENCHMARKS_SUPPORT_SIZES_H
#define QEL_BENCHMARKS_SUPPORT_SIZES_H

#include <cstdint>

#include <benchmark/benchmark.h>

namespace qel_benchmark {

// How the library's cost grows with n is measured at these.
inline constexpr std::int64_t kGrowthSizes[] = {1000, 10000, 100000, 1000000, 10000000};

inline void growthSizes(benchmark::internal::Benchmark* work) {
    for (const std::int64_t n : kGrowthSizes) {
        work->Arg(n);
    }
}

} // namespace qel_benchmark

#endif
