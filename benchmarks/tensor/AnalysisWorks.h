#ifndef QEL_BENCHMARKS_TENSOR_ANALYSISWORKS_H
#define QEL_BENCHMARKS_TENSOR_ANALYSISWORKS_H

// The works of the tensor group, which stand in more than one file.

#include <cstddef>
#include <cstring>

#include "support/Program.h"
#include "tensor/GradientInput.h"

namespace qel_benchmark {

using GradientWorks = Works<qel_test::GradientShape, GradientInput>;

void addAnalysisWorks(GradientWorks& works);

// A NaN equals any other.
inline bool sameBits(const float* a, const float* b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const bool bothNaN = a[i] != a[i] && b[i] != b[i];
        if (!bothNaN && std::memcmp(a + i, b + i, sizeof(float)) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace qel_benchmark

#endif
