#ifndef QEL_TENSOR_FIELDKERNELS_H
#define QEL_TENSOR_FIELDKERNELS_H

/// @file
/// The point formulas over many points, on memory instead of array objects, for the vector units.
///
/// Points go through in blocks: the formula fills small local arrays, which nothing else can
/// share memory with, so the compiler computes as many points at once as the unit has lanes; the
/// block is then stored. Lanes do what the formula says, so the bits are those of the point by
/// point loop, but for the sign of a NaN (of two NaNs added or multiplied, which one is passed on
/// depends on how the compiler orders them), provided that no output shares memory with an input.

#include <algorithm>
#include <cstddef>

#include <qel/TripletBase.h>

#include "platform/VectorUnit.h"
#include "tensor/PointFormulas.h"
#include "tensor/Runs.h"

namespace qel {

// -- Blocks ----

constexpr std::size_t kBlock = 256;
constexpr std::size_t kLine = 64; // bytes: no vector of a block lies across lines of the cache

/// Calls work(from, count) for one block of the n points after the other.
template <typename Work>
QEL_KERNEL void forEachBlock(std::size_t n, const Work& work) {
    for (std::size_t from = 0; from < n; from += kBlock) {
        work(from, std::min(kBlock, n - from));
    }
}

/// A block of what a run holds, component by component.
template <typename Run>
struct Block;

template <>
struct Block<FloatRun> {
    alignas(kLine) float values[kBlock];

    QEL_KERNEL void set(std::size_t k, float value) { values[k] = value; }

    QEL_KERNEL void load(const FloatRun& run, std::size_t from, std::size_t count) {
        if (run.stride == 1) {
            std::copy_n(run.first + from, count, values);
            return;
        }
        for (std::size_t k = 0; k < count; ++k) {
            values[k] = run.first[3 * (from + k)];
        }
    }

    QEL_KERNEL void store(std::size_t from, std::size_t count, const FloatRun& run) const {
        if (run.stride == 1) {
            std::copy_n(values, count, run.first + from);
            return;
        }
        for (std::size_t k = 0; k < count; ++k) {
            run.first[3 * (from + k)] = values[k];
        }
    }
};

template <>
struct Block<TripletRun> {
    alignas(kLine) float x[kBlock];
    alignas(kLine) float y[kBlock];
    alignas(kLine) float z[kBlock];

    QEL_KERNEL void set(std::size_t k, const Triple& t) {
        x[k] = t.x;
        y[k] = t.y;
        z[k] = t.z;
    }

    QEL_KERNEL void store(std::size_t from, std::size_t count, const TripletRun& run) const {
        for (std::size_t k = 0; k < count; ++k) {
            run.first[from + k] = {x[k], y[k], z[k]};
        }
    }
};

// -- Formulas as types: of one point, or of several at once ----

struct InvariantQ {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t) {
        return invariantQ(t);
    }
};

struct Divergence {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t) {
        return divergence(t);
    }
};

struct Discriminant {
    QEL_KERNEL static float at(const Gradient& t) { return discriminant(t); }
};

struct Vorticity {
    template <typename Number>
    QEL_KERNEL static BasicTriple<Number> at(const BasicGradient<Number>& t) {
        return vorticity(t);
    }
};

struct Helicity {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t, const BasicTriple<Number>& u) {
        return helicity(t, u);
    }
};

// -- Kernels ----

/// out = the formula of the inputs, point by point.
template <typename Formula>
struct PointKernel {
    template <typename Output, typename... Inputs>
    QEL_KERNEL static void run(std::size_t n, Output out, Inputs... inputs) {
        forEachBlock(n, [&](std::size_t from, std::size_t count) QEL_KERNEL_LAMBDA {
            Block<Output> block;
            for (std::size_t k = 0; k < count; ++k) {
                block.set(k, Formula::at(inputs.at(from + k)...));
            }
            block.store(from, count, out);
        });
    }
};

QEL_KERNEL float zeroUnless(bool condition, float value) {
    return condition ? value : 0.0f;
}

QEL_KERNEL Triple zeroUnless(bool condition, const Triple& t) {
    return {condition ? t.x : 0.0f, condition ? t.y : 0.0f, condition ? t.z : 0.0f};
}

/// out = formula(T, eigenvalue, strength) where it swirls, else 0. The formula is computed at
/// every point, so that no lane has a way of its own.
template <auto formula>
struct SwirlPointKernel {
    template <typename Output>
    QEL_KERNEL static void run(std::size_t n, Output out, Rows rows, FloatRun strength,
                               FloatRun eigenvalue) {
        forEachBlock(n, [&](std::size_t from, std::size_t count) QEL_KERNEL_LAMBDA {
            Block<FloatRun> strengths, eigenvalues;
            strengths.load(strength, from, count);
            eigenvalues.load(eigenvalue, from, count);
            Block<Output> block;
            for (std::size_t k = 0; k < count; ++k) {
                const float s = strengths.values[k];
                const auto value = formula(rows.at(from + k), eigenvalues.values[k], s);
                block.set(k, zeroUnless(s > 0.0f, value));
            }
            block.store(from, count, out);
        });
    }
};

} // namespace qel

#endif
