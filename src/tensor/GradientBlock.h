#ifndef QEL_TENSOR_GRADIENTBLOCK_H
#define QEL_TENSOR_GRADIENTBLOCK_H

/// @file
/// The gradients of a block of points, one column for each element, and other columns beside them.

#include <cstddef>

#include "foundation/Deinterleave.h"
#include "platform/VectorUnit.h"
#include "tensor/FieldMemory.h"
#include "tensor/PointFormulas.h"

namespace qel {

constexpr std::size_t kBlock = 256;

/// One number of each point of a block. No vector of it lies across cache lines.
template <typename Number>
struct alignas(64) Column {
    Number values[kBlock];

    QEL_KERNEL Number& operator[](std::size_t k) { return values[k]; }
    QEL_KERNEL const Number& operator[](std::size_t k) const { return values[k]; }
    QEL_KERNEL void set(std::size_t k, Number value) { values[k] = value; }
};

/// Three numbers of each point.
template <typename Number>
struct TripleColumns {
    Column<Number> x, y, z;

    QEL_KERNEL BasicTriple<Number> operator[](std::size_t k) const { return {x[k], y[k], z[k]}; }
    QEL_KERNEL void set(std::size_t k, const BasicTriple<Number>& t) {
        x[k] = t.x, y[k] = t.y, z[k] = t.z;
    }
};

/// The tensor at the points.
template <typename Number>
struct BasicGradientBlock {
    Column<Number> t11, t12, t13, t21, t22, t23, t31, t32, t33;

    QEL_KERNEL BasicGradient<Number> at(std::size_t k) const {
        return {t11[k], t12[k], t13[k], t21[k], t22[k], t23[k], t31[k], t32[k], t33[k]};
    }

    QEL_KERNEL void set(std::size_t k, const BasicGradient<Number>& t) {
        t11[k] = t.t11, t12[k] = t.t12, t13[k] = t.t13;
        t21[k] = t.t21, t22[k] = t.t22, t23[k] = t.t23;
        t31[k] = t.t31, t32[k] = t.t32, t33[k] = t.t33;
    }
};

using GradientBlock = BasicGradientBlock<float>;

/// The points of a block, as memory that kernels read.
struct BlockPoints {
    const GradientBlock* block;

    QEL_KERNEL Gradient at(std::size_t k) const { return block->at(k); }
};

/// Reads the first `count` points of the rows.
template <std::size_t width>
QEL_KERNEL void load(const GradientRows& rows, std::size_t count, GradientBlock& t) {
    deinterleave<width>(rows.row1.first, count, t.t11.values, t.t12.values, t.t13.values);
    deinterleave<width>(rows.row2.first, count, t.t21.values, t.t22.values, t.t23.values);
    deinterleave<width>(rows.row3.first, count, t.t31.values, t.t32.values, t.t33.values);
}

} // namespace qel

#endif
