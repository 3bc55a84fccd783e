#ifndef QEL_PLATFORM_PREFETCH_H
#define QEL_PLATFORM_PREFETCH_H

#include <cstddef>
#include <cstdint>

#include "platform/VectorUnit.h"

namespace qel {

/// Asks for memory that may be needed soon. Any address is taken.
QEL_KERNEL void prefetch(const void* place) {
#if defined(QEL_VECTOR_UNITS)
    __builtin_prefetch(place);
#else
    static_cast<void>(place);
#endif
}

/// Asks for memory so many bytes behind a place, whether or not anything lies there.
QEL_KERNEL void prefetchBehind(const void* place, std::size_t bytes) {
    // As an integer: pointers beyond an array have no arithmetic.
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(place) + bytes;
    prefetch(reinterpret_cast<const void*>(address)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace qel

#endif
