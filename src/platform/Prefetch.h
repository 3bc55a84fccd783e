#ifndef QEL_PLATFORM_PREFETCH_H
#define QEL_PLATFORM_PREFETCH_H

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

} // namespace qel

#endif
