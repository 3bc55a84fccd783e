#ifndef QEL_POLYLINE_LANEMASK_H
#define QEL_POLYLINE_LANEMASK_H

#include <cstddef>

#include "platform/VectorUnit.h"
#include "polyline/VertexArrays.h"

#if defined(QEL_VECTOR_UNITS)
#include <emmintrin.h>
#endif

namespace qel {

/// A bit for each lane whose value is at most the bound. None for NaN.
QEL_KERNEL unsigned lanesUpTo(double bound, const double* values) {
    unsigned lanes = 0;
#if defined(QEL_VECTOR_UNITS)
    const __m128d bounds = _mm_set1_pd(bound);
    for (std::size_t i = 0; i < kEdgeLanes; i += 2) {
        const int mask = _mm_movemask_pd(_mm_cmple_pd(_mm_loadu_pd(values + i), bounds));
        lanes |= static_cast<unsigned>(mask) << i;
    }
#else
    for (std::size_t i = 0; i < kEdgeLanes; ++i) {
        lanes |= static_cast<unsigned>(values[i] <= bound) << i;
    }
#endif
    return lanes;
}

} // namespace qel

#endif
