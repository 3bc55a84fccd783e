#ifndef QEL_TENSOR_ROOTKERNELS_H
#define QEL_TENSOR_ROOTKERNELS_H

/// @file
/// lambda-2 and swirl strength over many points: both ends of the bracketed roots in vector lanes,
/// and the plain formula where the ends do not round to the same float.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/VectorUnit.h"
#include "tensor/BracketedRoots.h"
#include "tensor/FieldKernels.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootFormulas.h"
#include "tensor/Runs.h"

namespace qel {

/// Both ends of a result.
template <typename Value>
struct Ends {
    Value least, most;
};

/// Nonzero unless the two are one number, bit for bit. A NaN is in doubt too.
QEL_KERNEL std::int32_t differ(float a, float b) {
    return a == b ? bitsOf(a) ^ bitsOf(b) : 1;
}

QEL_KERNEL std::int32_t differ(const Swirl& a, const Swirl& b) {
    return differ(a.strength, b.strength) | differ(a.realEigenvalue, b.realEigenvalue);
}

// -- What is bracketed, and the plain formula of it ----

struct SecondEigenvalue {
    QEL_KERNEL static Ends<float> bracket(const Gradient& t) {
        const SymmetricCubic cubic = symmetricCubic(t);
        const double cosine = middleCosine(cubic.r);
        const bool spread = cubic.d >= kSmallestSpread;
        const double middle = median(cubic.m11, cubic.m22, cubic.m33);
        const double low = (cosine - kCosineBound) * cubic.scale + cubic.m;
        const double high = (cosine + kCosineBound) * cubic.scale + cubic.m;
        return {static_cast<float>(spread ? low : middle),
                static_cast<float>(spread ? high : middle)};
    }
    static float at(const Gradient& t) { return secondEigenvalue(t); }
};

struct SwirlAnalysis {
    QEL_KERNEL static Ends<Swirl> bracket(const Gradient& t) {
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        const Cubic cubic = characteristicCubic(t);
        const bool complexPair = cubic.discriminant > 0.0;
        const double s = std::sqrt(cubic.discriminant);
        const double x1 = complexPair ? s - cubic.h : cubic.h;
        const double x2 = s + cubic.h;
        const RootBracket root1 = cubeRootBracket(x1);
        const RootBracket root2 = cubeRootBracket(x2);

        // Where the difference of the roots may have either sign, its square has no lower end.
        const double low = root1.low - root2.high;
        const double high = root1.high - root2.low;
        const double nearestTo0 = low >= 0.0 ? low : (high <= 0.0 ? high : kNone);
        const double farthestFrom0 = low >= 0.0 ? high : low;
        const double leastSquare = 0.75 * nearestTo0 * nearestTo0 + cubic.p;
        const double mostSquare = 0.75 * farthestFrom0 * farthestFrom0 + cubic.p;

        // The roots of equal numbers cancel exactly.
        const bool cancel = x1 == x2;
        const double leastStrength = std::sqrt(cancel ? cubic.p : leastSquare);
        const double mostStrength = std::sqrt(cancel ? cubic.p : mostSquare);
        const double shift = cubic.a / 3.0;
        const double least = complexPair ? (cancel ? 0.0 : low) - shift : -2.0 * root1.high - shift;
        const double most = complexPair ? (cancel ? 0.0 : high) - shift : -2.0 * root1.low - shift;
        return {{static_cast<float>(complexPair ? leastStrength : 0.0), static_cast<float>(least)},
                {static_cast<float>(complexPair ? mostStrength : 0.0), static_cast<float>(most)}};
    }
    static Swirl at(const Gradient& t) { return swirlOf(t); }
};

// -- Kernel ----

template <>
struct Block<SwirlRuns> {
    Block<FloatRun> strength;
    Block<FloatRun> eigenvalue;

    QEL_KERNEL void set(std::size_t k, const Swirl& value) {
        strength.set(k, value.strength);
        eigenvalue.set(k, value.realEigenvalue);
    }
    QEL_KERNEL void store(std::size_t from, std::size_t count, const SwirlRuns& runs) const {
        strength.store(from, count, runs.strength);
        eigenvalue.store(from, count, runs.eigenvalue);
    }
};

/// Marks of the points of a block that the plain formula must do.
struct Doubts {
    alignas(kLine) std::int32_t at[kBlock];

    QEL_KERNEL bool any(std::size_t count) const {
        std::int32_t found = 0;
        for (std::size_t k = 0; k < count; ++k) {
            found |= at[k];
        }
        return found != 0;
    }
};

template <typename Root>
struct BracketedKernel {
    template <typename Output>
    QEL_KERNEL static void run(std::size_t n, Output out, Rows rows) {
        forEachBlock(n, [&](std::size_t from, std::size_t count) QEL_KERNEL_LAMBDA {
            Block<Output> block;
            Doubts doubts;
            for (std::size_t k = 0; k < count; ++k) {
                const auto ends = Root::bracket(rows.at(from + k));
                block.set(k, ends.least);
                doubts.at[k] = differ(ends.least, ends.most);
            }
            if (doubts.any(count)) {
                settle(rows.after(from), count, doubts, block);
            }
            block.store(from, count, out);
        });
    }

private:
    template <typename Values>
    static void settle(const Rows& rows, std::size_t count, const Doubts& doubts, Values& block) {
        for (std::size_t k = 0; k < count; ++k) {
            if (doubts.at[k] != 0) {
                block.set(k, Root::at(rows.at(k)));
            }
        }
    }
};

} // namespace qel

#endif
