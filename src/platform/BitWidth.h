#ifndef QEL_PLATFORM_BITWIDTH_H
#define QEL_PLATFORM_BITWIDTH_H

#include <cstdint>

#include "platform/VectorUnit.h"

namespace qel {

/// How many bits it takes to write a value: 0 for 0.
inline int bitWidth(std::uint64_t value) {
#if defined(QEL_VECTOR_UNITS)
    return value == 0 ? 0 : 64 - __builtin_clzll(value);
#else
    int width = 0;
    for (; value != 0; value >>= 1) {
        ++width;
    }
    return width;
#endif
}

} // namespace qel

#endif
