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
#include "tensor/GradientBlock.h"
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

/// A formula of the tensor, enclosed in lanes: where the enclosure leaves the result open, the lane
/// is unresolved and its point recomputed.
template <typename Operation, std::size_t width>
struct EnclosureKernel {
    template <typename Output>
    QEL_KERNEL static std::size_t run(std::size_t n, Output out, GradientRows rows) {
        GradientBlock t;
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            load<width>(rows.after(from), count, t);
            run(count, out.after(from), BlockPoints{&t});
        }
        return n;
    }

    /// @param n  up to kBlock
    template <typename Output>
    QEL_KERNEL static std::size_t run(std::size_t n, Output out, BlockPoints points) {
        Column<std::int32_t> unresolved;
        std::int32_t any = 0;
        for (std::size_t k = 0; k < n; ++k) {
            const auto enclosure = Operation::enclose(points.at(k));
            out.set(k, enclosure.low);
            unresolved[k] = isUnresolved(enclosure.low, enclosure.high);
            any |= unresolved[k];
        }
        for (std::size_t k = 0; any != 0 && k < n; ++k) {
            if (unresolved[k] != 0) {
                out.set(k, Operation::at(points.at(k)));
            }
        }
        return n;
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
                load<width>(rows.after(from), size, t);
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
