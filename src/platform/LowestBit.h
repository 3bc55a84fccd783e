#ifndef QEL_PLATFORM_LOWESTBIT_H
#define QEL_PLATFORM_LOWESTBIT_H

#include <cstdint>

#include "platform/VectorUnit.h"

namespace qel {

/// Which bit is the lowest of those that are set. One is.
QEL_KERNEL int lowestBit(std::uint64_t bits) {
#if defined(QEL_VECTOR_UNITS)
    return __builtin_ctzll(bits);
#else
    int lowest = 0;
    while ((bits >> lowest & 1u) == 0) {
        ++lowest;
    }
    return lowest;
#endif
}

} // namespace qel

#endif
