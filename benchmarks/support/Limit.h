#ifndef QEL_BENCHMARKS_SUPPORT_LIMIT_H
#define QEL_BENCHMARKS_SUPPORT_LIMIT_H

// What memory allows: a copy that moves as many bytes as a work reads and writes.

#include <cstddef>
#include <cstring>
#include <vector>

#include "support/Row.h"

namespace qel_benchmark {

inline constexpr const char* kCopy = "copy";

// Half of the bytes are read, half of them written.
inline void addCopy(Row& row, std::size_t bytes) {
    row.add(kCopy,
            [from = std::vector<char>(bytes / 2, 1), to = std::vector<char>(bytes / 2)]() mutable {
                std::memcpy(to.data(), from.data(), from.size());
                keep(to.data());
            });
}

} // namespace qel_benchmark

#endif
