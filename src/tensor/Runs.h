#ifndef QEL_TENSOR_RUNS_H
#define QEL_TENSOR_RUNS_H

/// @file
/// Arrays as memory: what the kernels read and write. FieldAccess.h says when they may.

#include <cstddef>

#include <qel/TripletBase.h>

#include "platform/VectorUnit.h"
#include "tensor/PointFormulas.h"

namespace qel {

/// Floats in memory, each `stride` behind the one before: 1 or 3.
struct FloatRun {
    float* first;
    std::size_t stride;

    QEL_KERNEL FloatRun after(std::size_t n) const { return {first + n * stride, stride}; }
};

/// Triplets in memory, side by side.
template <typename Element>
struct BasicTripletRun {
    Element* first;

    QEL_KERNEL Triple at(std::size_t k) const { return tripleOf(first[k]); }
    QEL_KERNEL BasicTripletRun after(std::size_t n) const { return {first + n}; }
};

using TripletRun = BasicTripletRun<TripletBase<float>>;
using ConstTripletRun = BasicTripletRun<const TripletBase<float>>;

/// The rows of T.
struct Rows {
    ConstTripletRun row1, row2, row3;

    QEL_KERNEL Gradient at(std::size_t k) const {
        return gradientOf(row1.first[k], row2.first[k], row3.first[k]);
    }
    QEL_KERNEL Rows after(std::size_t n) const {
        return {row1.after(n), row2.after(n), row3.after(n)};
    }
};

/// The two outputs of the swirl analysis.
struct SwirlRuns {
    FloatRun strength;
    FloatRun eigenvalue;
};

} // namespace qel

#endif
