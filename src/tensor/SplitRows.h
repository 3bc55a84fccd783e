#ifndef QEL_TENSOR_SPLITROWS_H
#define QEL_TENSOR_SPLITROWS_H

/// @file
/// The kernels of the operations that memory bounds, for units of sixteen floats.
///
/// Left to the compiler, each component of a row is gathered by reads of its own. Here a group of
/// points is read once, row by row from the start of a cache line on, and its components are put
/// apart by shuffles: up to twice as fast inside the cache. Shuffles move bits and compute
/// nothing; the formulas are the same, and so are the results. The points before the first line
/// and after the last whole group take the plain kernels.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/VectorDispatch.h"
#include "tensor/FieldKernels.h"

#if defined(QEL_VECTOR_UNITS) && defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#define QEL_SPLIT_ROWS 1
#endif
#endif

namespace qel {

#if defined(QEL_SPLIT_ROWS)

constexpr std::size_t kLanes = 16;
constexpr std::size_t kGroup = 2 * kLanes;

using Lanes = float __attribute__((vector_size(kLanes * sizeof(float))));

/// Every third lane, from the given one on, of b, and the others of a.
template <int first>
QEL_KERNEL void blend(const Lanes& a, const Lanes& b, Lanes& blended) {
    constexpr int k0 = first == 0 ? 16 : 0;
    constexpr int k1 = first == 1 ? 16 : 0;
    constexpr int k2 = first == 2 ? 16 : 0;
    blended = __builtin_shufflevector(a, b, k0, k1 + 1, k2 + 2, k0 + 3, k1 + 4, k2 + 5, k0 + 6,
                                      k1 + 7, k2 + 8, k0 + 9, k1 + 10, k2 + 11, k0 + 12, k1 + 13,
                                      k2 + 14, k0 + 15);
}

/// A group of one row, component by component.
struct SplitRow {
    alignas(Lanes) float x[kGroup];
    alignas(Lanes) float y[kGroup];
    alignas(Lanes) float z[kGroup];

    QEL_KERNEL void read(const TripletBase<float>* row) {
        for (std::size_t k = 0; k < kGroup; k += kLanes) {
            readLanes(row + k, k);
        }
    }

private:
    // Three vectors hold x y z x .. x, y z .. y and z x y .. z: two blends gather a component,
    // whose points are then put in order.
    QEL_KERNEL void readLanes(const TripletBase<float>* row, std::size_t k) {
        static_assert(sizeof(*row) == 3 * sizeof(float), "triplets lie side by side");
        const char* const bytes = reinterpret_cast<const char*>(row);
        Lanes a, b, c, ofX, ofY, ofZ;
        std::memcpy(&a, bytes, sizeof a);
        std::memcpy(&b, bytes + sizeof a, sizeof b);
        std::memcpy(&c, bytes + 2 * sizeof a, sizeof c);
#if !defined(__clang__) // which reads once by itself
        // To stay in registers: otherwise each use becomes a read of its own again.
        __asm__("" : "+v"(a), "+v"(b), "+v"(c));
#endif
        blend<1>(a, c, ofX);
        blend<2>(ofX, b, ofX);
        blend<2>(a, c, ofY);
        blend<0>(ofY, b, ofY);
        blend<0>(a, c, ofZ);
        blend<1>(ofZ, b, ofZ);
        ofX =
            __builtin_shufflevector(ofX, ofX, 0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14, 1, 4, 7, 10, 13);
        ofY =
            __builtin_shufflevector(ofY, ofY, 1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14);
        ofZ =
            __builtin_shufflevector(ofZ, ofZ, 2, 5, 8, 11, 14, 1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15);
        std::memcpy(x + k, &ofX, sizeof ofX);
        std::memcpy(y + k, &ofY, sizeof ofY);
        std::memcpy(z + k, &ofZ, sizeof ofZ);
    }
};

/// A group of all rows.
struct SplitRows {
    SplitRow row1, row2, row3;

    QEL_KERNEL void read(const Rows& rows, std::size_t from) {
        row1.read(rows.row1 + from);
        row2.read(rows.row2 + from);
        row3.read(rows.row3 + from);
    }

    QEL_KERNEL Gradient at(std::size_t k) const {
        return {row1.x[k], row1.y[k], row1.z[k], row2.x[k], row2.y[k],
                row2.z[k], row3.x[k], row3.y[k], row3.z[k]};
    }
};

/// How many of the n points lie before the first cache line that begins with a point: less than
/// sixteen, as three has an inverse among the sixteen floats of a line. Separate arrays mostly
/// begin at the same place of a line, so row 1 speaks for all.
QEL_KERNEL std::size_t pointsBeforeLine(const TripletBase<float>* row, std::size_t n) {
    constexpr std::uintptr_t kMinusInverseOf3 = 5;
    const std::uintptr_t floats = reinterpret_cast<std::uintptr_t>(row) / sizeof(float);
    return std::min(static_cast<std::size_t>(floats * kMinusInverseOf3 % kLanes), n);
}

template <float (*Formula)(const Gradient&)>
struct SplitFloatKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, FloatRun out) {
        std::size_t from = pointsBeforeLine(rows.row1, n);
        FloatKernel<Formula>::run(rows, from, out);
        for (; n - from >= kGroup; from += kGroup) {
            SplitRows group;
            group.read(rows, from);
            float values[kGroup];
            for (std::size_t k = 0; k < kGroup; ++k) {
                values[k] = Formula(group.at(k));
            }
            store(values, from, kGroup, out);
        }
        FloatKernel<Formula>::run(rows.after(from), n - from, out.after(from));
    }
};

struct SplitVorticityKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, TripletBase<float>* out) {
        std::size_t from = pointsBeforeLine(rows.row1, n);
        VorticityKernel::run(rows, from, out);
        for (; n - from >= kGroup; from += kGroup) {
            SplitRows group;
            group.read(rows, from);
            TripletBlock values;
            for (std::size_t k = 0; k < kGroup; ++k) {
                values.set(k, vorticity(group.at(k)));
            }
            store(values, from, kGroup, out);
        }
        VorticityKernel::run(rows.after(from), n - from, out + from);
    }
};

struct SplitHelicityKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, const TripletBase<float>* velocity,
                               FloatRun out) {
        std::size_t from = pointsBeforeLine(rows.row1, n);
        HelicityKernel::run(rows, from, velocity, out);
        for (; n - from >= kGroup; from += kGroup) {
            SplitRows group;
            group.read(rows, from);
            SplitRow v;
            v.read(velocity + from);
            float values[kGroup];
            for (std::size_t k = 0; k < kGroup; ++k) {
                values[k] = helicity(group.at(k), {v.x[k], v.y[k], v.z[k]});
            }
            store(values, from, kGroup, out);
        }
        HelicityKernel::run(rows.after(from), n - from, velocity + from, out.after(from));
    }
};

#else

template <float (*Formula)(const Gradient&)>
using SplitFloatKernel = FloatKernel<Formula>;
using SplitVorticityKernel = VorticityKernel;
using SplitHelicityKernel = HelicityKernel;

#endif

/// Calls Plain::run(arguments...) on the vector unit in use, or where that has sixteen lanes, the
/// split kernel that stands for it.
template <typename Plain, typename Split, typename... Arguments>
void onVectorUnitSplit(Arguments... arguments) {
#if defined(QEL_SPLIT_ROWS)
    if (vectorUnit() == VectorUnit::avx512) {
        return runAvx512<Split, Arguments...>(arguments...);
    }
#endif
    onVectorUnit<Plain, Arguments...>(arguments...);
}

} // namespace qel

#endif
