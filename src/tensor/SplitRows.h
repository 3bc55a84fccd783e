#ifndef QEL_TENSOR_SPLITROWS_H
#define QEL_TENSOR_SPLITROWS_H

/// @file
/// The kernels of the operations that memory bounds, for units of eight and sixteen floats.
///
/// Left to the compiler, each component of a row is gathered by reads of its own. Here a group of
/// points, one for each lane, is read once, and its components are put apart by shuffles. Inside
/// the cache that is up to twice as fast; with sixteen lanes, what is left is about the time of
/// reading. Shuffles move bits and compute nothing; the formulas are the same, and so are the
/// results. Groups begin with a cache line; the points before and after them take the plain
/// kernel.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/VectorDispatch.h"
#include "tensor/FieldKernels.h"
#include "tensor/Runs.h"
#include "tensor/TripletLanes.h"

namespace qel {

#if defined(QEL_SHUFFLES)

template <std::size_t width, typename Element>
QEL_KERNEL BasicTriple<FloatLanes<width>> groupAt(const BasicTripletRun<Element>& run,
                                                  std::size_t from) {
    static_assert(sizeof(Element) == 3 * sizeof(float), "triplets lie side by side");
    return readTriples<width>(reinterpret_cast<const char*>(run.first + from));
}

template <std::size_t width>
QEL_KERNEL BasicGradient<FloatLanes<width>> groupAt(const Rows& rows, std::size_t from) {
    const BasicTriple<FloatLanes<width>> row1 = groupAt<width>(rows.row1, from);
    const BasicTriple<FloatLanes<width>> row2 = groupAt<width>(rows.row2, from);
    const BasicTriple<FloatLanes<width>> row3 = groupAt<width>(rows.row3, from);
    return {row1.x, row1.y, row1.z, row2.x, row2.y, row2.z, row3.x, row3.y, row3.z};
}

template <std::size_t width>
QEL_KERNEL void storeGroup(const FloatLanes<width>& values, const FloatRun& run) {
    if (run.stride == 1) {
        writeNumbers(values, reinterpret_cast<char*>(run.first));
        return;
    }
    float inOrder[width];
    writeNumbers(values, reinterpret_cast<char*>(inOrder));
    for (std::size_t k = 0; k < width; ++k) {
        run.first[3 * k] = inOrder[k];
    }
}

template <std::size_t width>
QEL_KERNEL void storeGroup(const BasicTriple<FloatLanes<width>>& values, const TripletRun& run) {
    writeTriples(values, reinterpret_cast<char*>(run.first));
}

/// How many of the n points lie before the first cache line that begins with a point: less than
/// sixteen, as three has an inverse among the sixteen floats of a line.
template <typename Element>
QEL_KERNEL std::size_t pointsBeforeLine(const BasicTripletRun<Element>& run, std::size_t n) {
    constexpr std::uintptr_t kFloatsOfLine = 16;
    constexpr std::uintptr_t kMinusInverseOf3 = 5;
    const std::uintptr_t floats = reinterpret_cast<std::uintptr_t>(run.first) / sizeof(float);
    return std::min(static_cast<std::size_t>(floats * kMinusInverseOf3 % kFloatsOfLine), n);
}

/// Where groups begin: lines of what is written if that is triplets, since writing across lines
/// costs more than reading. Else lines of row 1, which speaks for all rows: separate arrays mostly
/// begin at the same place of a line.
QEL_KERNEL std::size_t pointsBeforeGroups(const TripletRun& out, const Rows&, std::size_t n) {
    return pointsBeforeLine(out, n);
}

QEL_KERNEL std::size_t pointsBeforeGroups(const FloatRun&, const Rows& rows, std::size_t n) {
    return pointsBeforeLine(rows.row1, n);
}

/// Calls work(from) for each group of `size` points; what is left before and after the groups takes
/// the plain kernel.
template <typename Formula, std::size_t size, typename Work, typename Output, typename... Inputs>
QEL_KERNEL void forEachGroup(const Work& work, std::size_t n, const Output& out, const Rows& rows,
                             const Inputs&... inputs) {
    std::size_t from = pointsBeforeGroups(out, rows, n);
    PointKernel<Formula>::run(from, out, rows, inputs...);
    for (; n - from >= size; from += size) {
        work(from);
    }
    PointKernel<Formula>::run(n - from, out.after(from), rows.after(from), inputs.after(from)...);
}

/// PointKernel<Formula>, for formulas of Lanes.
template <typename Formula, std::size_t width>
struct SplitKernel {
    template <typename Output, typename... Inputs>
    QEL_KERNEL static void run(std::size_t n, Output out, Rows rows, Inputs... inputs) {
        const auto group = [&](std::size_t from) QEL_KERNEL_LAMBDA {
            storeGroup(Formula::at(groupAt<width>(rows, from), groupAt<width>(inputs, from)...),
                       out.after(from));
        };
        forEachGroup<Formula, width>(group, n, out, rows, inputs...);
    }
};

#else

template <typename Formula, std::size_t>
using SplitKernel = PointKernel<Formula>;

#endif

#if defined(QEL_SHUFFLES) && !defined(__clang__) // which makes scalar code of so short a loop

/// The components of two groups side by side.
template <std::size_t width>
struct SplitTriplets {
    float x[2 * width], y[2 * width], z[2 * width];

    QEL_KERNEL void read(const ConstTripletRun& run, std::size_t from) {
        for (std::size_t k = 0; k < 2 * width; k += width) {
            const BasicTriple<FloatLanes<width>> group = groupAt<width>(run, from + k);
            std::memcpy(x + k, &group.x.value, sizeof group.x);
            std::memcpy(y + k, &group.y.value, sizeof group.y);
            std::memcpy(z + k, &group.z.value, sizeof group.z);
        }
    }
};

/// PointKernel<Formula>, for formulas of one point, of which the compiler makes vector code: better
/// so for two groups at once.
template <typename Formula, std::size_t width>
struct SplitLoopKernel {
    QEL_KERNEL static void run(std::size_t n, FloatRun out, Rows rows) {
        const auto groups = [&](std::size_t from) QEL_KERNEL_LAMBDA {
            SplitTriplets<width> t1, t2, t3;
            t1.read(rows.row1, from), t2.read(rows.row2, from), t3.read(rows.row3, from);
            float values[2 * width];
            for (std::size_t k = 0; k < 2 * width; ++k) {
                values[k] = Formula::at(Gradient{t1.x[k], t1.y[k], t1.z[k], t2.x[k], t2.y[k],
                                                 t2.z[k], t3.x[k], t3.y[k], t3.z[k]});
            }
            for (std::size_t k = 0; k < 2 * width; k += width) {
                FloatLanes<width> group;
                std::memcpy(&group.value, values + k, sizeof group);
                storeGroup(group, out.after(from + k));
            }
        };
        forEachGroup<Formula, 2 * width>(groups, n, out, rows);
    }
};

#else

template <typename Formula, std::size_t>
using SplitLoopKernel = PointKernel<Formula>;

#endif

/// Runs PointKernel<Formula> on the vector unit in use, or the split kernel that stands for it.
template <typename Formula, template <typename, std::size_t> class Split, typename... Arguments>
void onVectorUnitSplit(Arguments... arguments) {
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return runAvx512<Split<Formula, 16>, Arguments...>(arguments...);
    case VectorUnit::avx2:
        return runAvx2<Split<Formula, 8>, Arguments...>(arguments...);
    case VectorUnit::portable:
        break;
    }
#endif
    runPortable<PointKernel<Formula>, Arguments...>(arguments...);
}

} // namespace qel

#endif
