#ifndef QEL_TENSOR_FIELDKERNELS_H
#define QEL_TENSOR_FIELDKERNELS_H

/// @file
/// The point formulas over many points, on memory instead of array objects, for the vector units.
///
/// Points go through in blocks: the formula fills small local arrays, which nothing else can
/// share memory with, so the compiler computes as many points at once as the unit has lanes; the
/// block is then stored. Lanes do what the formula says, so the bits are those of the point by
/// point loop, provided that no output shares memory with an input.

#include <algorithm>
#include <cstddef>

#include <qel/TripletBase.h>

#include "platform/VectorUnit.h"
#include "tensor/PointFormulas.h"

namespace qel {

constexpr std::size_t kBlock = 256;

/// The rows of T, as memory.
struct Rows {
    const TripletBase<float>* row1;
    const TripletBase<float>* row2;
    const TripletBase<float>* row3;

    QEL_KERNEL Gradient at(std::size_t k) const { return gradientOf(row1[k], row2[k], row3[k]); }
    QEL_KERNEL Rows after(std::size_t n) const { return {row1 + n, row2 + n, row3 + n}; }
};

/// Floats in memory, each `stride` behind the one before: 1 or 3.
struct FloatRun {
    float* first;
    std::size_t stride;

    QEL_KERNEL FloatRun after(std::size_t n) const { return {first + n * stride, stride}; }
};

QEL_KERNEL void load(const FloatRun& run, std::size_t from, std::size_t count, float* block) {
    if (run.stride == 1) {
        std::copy_n(run.first + from, count, block);
        return;
    }
    for (std::size_t k = 0; k < count; ++k) {
        block[k] = run.first[3 * (from + k)];
    }
}

QEL_KERNEL void store(const float* block, std::size_t from, std::size_t count,
                      const FloatRun& run) {
    if (run.stride == 1) {
        std::copy_n(block, count, run.first + from);
        return;
    }
    for (std::size_t k = 0; k < count; ++k) {
        run.first[3 * (from + k)] = block[k];
    }
}

/// A block of triplets, component by component.
struct TripletBlock {
    float x[kBlock];
    float y[kBlock];
    float z[kBlock];

    QEL_KERNEL void set(std::size_t k, const TripletBase<float>& t) {
        x[k] = t.x;
        y[k] = t.y;
        z[k] = t.z;
    }
};

QEL_KERNEL void store(const TripletBlock& block, std::size_t from, std::size_t count,
                      TripletBase<float>* out) {
    for (std::size_t k = 0; k < count; ++k) {
        out[from + k] = {block.x[k], block.y[k], block.z[k]};
    }
}

/// out = Formula(T), a float.
template <float (*Formula)(const Gradient&)>
struct FloatKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, FloatRun out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            float values[kBlock];
            for (std::size_t k = 0; k < count; ++k) {
                values[k] = Formula(rows.at(from + k));
            }
            store(values, from, count, out);
        }
    }
};

struct VorticityKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, TripletBase<float>* out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            TripletBlock values;
            for (std::size_t k = 0; k < count; ++k) {
                values.set(k, vorticity(rows.at(from + k)));
            }
            store(values, from, count, out);
        }
    }
};

struct HelicityKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, const TripletBase<float>* velocity,
                               FloatRun out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            float values[kBlock];
            for (std::size_t k = 0; k < count; ++k) {
                values[k] = helicity(rows.at(from + k), velocity[from + k]);
            }
            store(values, from, count, out);
        }
    }
};

/// The two outputs of the swirl analysis, as inputs.
struct SwirlRuns {
    FloatRun strength;
    FloatRun eigenvalue;
};

/// One block of them.
struct SwirlBlock {
    float strength[kBlock];
    float eigenvalue[kBlock];

    QEL_KERNEL void load(const SwirlRuns& runs, std::size_t from, std::size_t count) {
        qel::load(runs.strength, from, count, strength);
        qel::load(runs.eigenvalue, from, count, eigenvalue);
    }
};

/// out = Formula(T, eigenvalue, strength) where it swirls, else 0; a float.
template <float (*Formula)(const Gradient&, float, float)>
struct SwirlFloatKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, SwirlRuns swirl, FloatRun out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            SwirlBlock block;
            block.load(swirl, from, count);
            float values[kBlock];
            for (std::size_t k = 0; k < count; ++k) {
                const float value =
                    Formula(rows.at(from + k), block.eigenvalue[k], block.strength[k]);
                values[k] = block.strength[k] > 0.0f ? value : 0.0f;
            }
            store(values, from, count, out);
        }
    }
};

/// The same, a triplet.
template <TripletBase<float> (*Formula)(const Gradient&, float, float)>
struct SwirlTripletKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, SwirlRuns swirl, TripletBase<float>* out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            SwirlBlock block;
            block.load(swirl, from, count);
            TripletBlock values;
            for (std::size_t k = 0; k < count; ++k) {
                const bool swirls = block.strength[k] > 0.0f;
                const TripletBase<float> value =
                    Formula(rows.at(from + k), block.eigenvalue[k], block.strength[k]);
                values.x[k] = swirls ? value.x : 0.0f;
                values.y[k] = swirls ? value.y : 0.0f;
                values.z[k] = swirls ? value.z : 0.0f;
            }
            store(values, from, count, out);
        }
    }
};

} // namespace qel

#endif
