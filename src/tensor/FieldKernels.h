#ifndef QEL_TENSOR_FIELDKERNELS_H
#define QEL_TENSOR_FIELDKERNELS_H

/// @file
/// The kernels of the tensor analysis.
///
/// Formulas in single precision cost what reading and writing cost: a group of points, one for each
/// lane, is read once, deinterleaved in registers, computed and written. Formulas in double
/// precision cost what computing costs: points go through in blocks, whose components are
/// deinterleaved into local arrays. These share memory with nothing, so that the compiler computes
/// as many points at once as the unit has lanes.
///
/// Lanes do what the formula says, so the bits are those of the formula at each point, but for the
/// sign of a NaN (of two NaNs added or multiplied, which one is passed on depends on how the
/// compiler orders them). An output may share memory with an input at the same points: these are
/// read before they are written.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "foundation/Deinterleave.h"
#include "platform/VectorUnit.h"
#include "tensor/FieldMemory.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootEnclosures.h"

namespace qel {

// -- Groups ----

template <typename Operation, std::size_t width>
struct GroupKernel;

#if defined(QEL_SHUFFLES)

template <std::size_t width>
QEL_KERNEL TripleLanes<width> groupAt(const Triplets& triplets, std::size_t from) {
    return readTriplets<width>(triplets.first + from);
}

template <std::size_t width>
QEL_KERNEL BasicGradient<FloatLanes<width>> groupAt(const GradientRows& rows, std::size_t from) {
    const TripleLanes<width> row1 = groupAt<width>(rows.row1, from);
    const TripleLanes<width> row2 = groupAt<width>(rows.row2, from);
    const TripleLanes<width> row3 = groupAt<width>(rows.row3, from);
    return {row1.x, row1.y, row1.z, row2.x, row2.y, row2.z, row3.x, row3.y, row3.z};
}

/// Computes whole groups. All kernels return how many points they have computed.
template <typename Operation, std::size_t width>
struct GroupKernel {
    template <typename Element, typename... Inputs>
    QEL_KERNEL static std::size_t run(std::size_t n, Elements<Element> out, Inputs... inputs) {
        std::size_t from = 0;
        for (; n - from >= width; from += width) {
            writeGroup(Operation::at(groupAt<width>(inputs, from)...), out.first + from);
        }
        return from;
    }
};

#endif

// -- Blocks ----

constexpr std::size_t kBlock = 256;

/// One number of each point of a block. No vector of it lies across cache lines.
template <typename Number>
struct alignas(64) Column {
    Number values[kBlock];

    QEL_KERNEL Number& operator[](std::size_t k) { return values[k]; }
    QEL_KERNEL const Number& operator[](std::size_t k) const { return values[k]; }
};

/// The tensor at the points of a block.
struct GradientBlock {
    Column<float> t11, t12, t13, t21, t22, t23, t31, t32, t33;

    QEL_KERNEL Gradient at(std::size_t k) const {
        return {t11[k], t12[k], t13[k], t21[k], t22[k], t23[k], t31[k], t32[k], t33[k]};
    }

    QEL_KERNEL void set(std::size_t k, const Gradient& t) {
        t11[k] = t.t11, t12[k] = t.t12, t13[k] = t.t13;
        t21[k] = t.t21, t22[k] = t.t22, t23[k] = t.t23;
        t31[k] = t.t31, t32[k] = t.t32, t33[k] = t.t33;
    }

    template <std::size_t width>
    QEL_KERNEL void load(const GradientRows& rows, std::size_t count) {
        deinterleave<width>(rows.row1.first, count, t11.values, t12.values, t13.values);
        deinterleave<width>(rows.row2.first, count, t21.values, t22.values, t23.values);
        deinterleave<width>(rows.row3.first, count, t31.values, t32.values, t33.values);
    }
};

/// A formula of the tensor, enclosed in lanes: where the enclosure leaves the result open, the lane
/// is unresolved and its point recomputed.
template <typename Operation, std::size_t width>
struct EnclosureKernel {
    template <typename Output>
    QEL_KERNEL static std::size_t run(std::size_t n, Output out, GradientRows rows) {
        GradientBlock t;
        Column<std::int32_t> unresolved;
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            t.load<width>(rows.after(from), count);
            const Output values = out.after(from);
            std::int32_t any = 0;
            for (std::size_t k = 0; k < count; ++k) {
                const auto enclosure = Operation::enclose(t.at(k));
                values.set(k, enclosure.low);
                unresolved[k] = isUnresolved(enclosure.low, enclosure.high);
                any |= unresolved[k];
            }
            if (any != 0) {
                recompute(t, unresolved, count, values);
            }
        }
        return n;
    }

private:
    template <typename Output>
    static void recompute(const GradientBlock& t, const Column<std::int32_t>& unresolved,
                          std::size_t count, const Output& values) {
        for (std::size_t k = 0; k < count; ++k) {
            if (unresolved[k] != 0) {
                values.set(k, Operation::at(t.at(k)));
            }
        }
    }
};

QEL_KERNEL float zeroUnless(bool condition, float value) {
    return condition ? value : 0.0f;
}

QEL_KERNEL Triple zeroUnless(bool condition, const Triple& t) {
    return {zeroUnless(condition, t.x), zeroUnless(condition, t.y), zeroUnless(condition, t.z)};
}

/// A formula of the tensor, the swirl strength and the real eigenvalue, where it swirls. It is
/// computed at all points of a block, or if it swirls at fewer than half of them, at these alone,
/// moved together.
template <typename Operation, std::size_t width>
struct SwirlKernel {
    template <typename Element>
    QEL_KERNEL static std::size_t run(std::size_t n, Elements<Element> out, GradientRows rows,
                                      StridedFloats strengths, StridedFloats eigenvalues) {
        GradientBlock t;
        Column<float> strength, eigenvalue;
        Column<std::uint32_t> swirling;
        Column<Element> values;
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t size = std::min(kBlock, n - from);
            std::size_t count = 0;
            for (std::size_t k = 0; k < size; ++k) {
                strength[k] = strengths.at(from + k);
                eigenvalue[k] = eigenvalues.at(from + k);
                swirling[count] = static_cast<std::uint32_t>(k);
                count += strength[k] > 0.0f ? 1 : 0;
            }
            Element* const results = out.first + from;
            if (2 * count >= size) {
                t.load<width>(rows.after(from), size);
                for (std::size_t k = 0; k < size; ++k) {
                    results[k] =
                        zeroUnless(strength[k] > 0.0f,
                                   Operation::whereItSwirls(t.at(k), strength[k], eigenvalue[k]));
                }
                continue;
            }
            for (std::size_t i = 0; i < count; ++i) {
                const std::size_t k = swirling[i];
                t.set(i, rows.at(from + k));
                strength[i] = strength[k];
                eigenvalue[i] = eigenvalue[k];
            }
            for (std::size_t i = 0; i < count; ++i) {
                values[i] = Operation::whereItSwirls(t.at(i), strength[i], eigenvalue[i]);
            }
            std::fill_n(results, size, Element());
            for (std::size_t i = 0; i < count; ++i) {
                results[swirling[i]] = values[i];
            }
        }
        return n;
    }
};

} // namespace qel

#endif
