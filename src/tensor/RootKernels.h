#ifndef QEL_TENSOR_ROOTKERNELS_H
#define QEL_TENSOR_ROOTKERNELS_H

/// @file
/// lambda-2 and swirl strength over many points: both ends of the bracketed roots in vector lanes,
/// and the plain formula where the ends do not round to the same float.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "tensor/BracketedRoots.h"
#include "tensor/FieldKernels.h"
#include "tensor/RootFormulas.h"

namespace qel {

/// Marks of the points of a block that the plain formula must do.
struct Doubts {
    std::int32_t at[kBlock];

    QEL_KERNEL bool any(std::size_t count) const {
        std::int32_t found = 0;
        for (std::size_t k = 0; k < count; ++k) {
            found |= at[k];
        }
        return found != 0;
    }
};

/// Nonzero unless the two are one number, bit for bit. A NaN is in doubt too.
QEL_KERNEL std::int32_t differ(float a, float b) {
    return a == b ? bitsOf(a) ^ bitsOf(b) : 1;
}

struct SecondEigenvalueKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, FloatRun out) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            float values[kBlock];
            Doubts doubts;
            for (std::size_t k = 0; k < count; ++k) {
                const SymmetricCubic cubic = symmetricCubic(rows.at(from + k));
                const double cosine = middleCosine(cubic.r);
                const bool spread = cubic.d >= kSmallestSpread;
                const double middle = median(cubic.m11, cubic.m22, cubic.m33);
                const double low = (cosine - kCosineBound) * cubic.scale + cubic.m;
                const double high = (cosine + kCosineBound) * cubic.scale + cubic.m;
                const float least = static_cast<float>(spread ? low : middle);
                const float most = static_cast<float>(spread ? high : middle);
                values[k] = least;
                doubts.at[k] = differ(least, most);
            }
            if (doubts.any(count)) {
                settle(rows, from, count, doubts, values);
            }
            store(values, from, count, out);
        }
    }

private:
    static void settle(const Rows& rows, std::size_t from, std::size_t count, const Doubts& doubts,
                       float* values) {
        for (std::size_t k = 0; k < count; ++k) {
            if (doubts.at[k] != 0) {
                values[k] = secondEigenvalue(rows.at(from + k));
            }
        }
    }
};

/// Both results of one point, each with both ends.
struct SwirlBracket {
    float leastStrength, mostStrength;
    float leastEigenvalue, mostEigenvalue;
};

QEL_KERNEL SwirlBracket swirlBracket(const Gradient& t) {
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
    return {static_cast<float>(complexPair ? leastStrength : 0.0),
            static_cast<float>(complexPair ? mostStrength : 0.0), static_cast<float>(least),
            static_cast<float>(most)};
}

struct SwirlKernel {
    QEL_KERNEL static void run(Rows rows, std::size_t n, FloatRun swirl, FloatRun realEigenvalue) {
        for (std::size_t from = 0; from < n; from += kBlock) {
            const std::size_t count = std::min(kBlock, n - from);
            SwirlBlock block;
            Doubts doubts;
            for (std::size_t k = 0; k < count; ++k) {
                const SwirlBracket point = swirlBracket(rows.at(from + k));
                block.strength[k] = point.leastStrength;
                block.eigenvalue[k] = point.leastEigenvalue;
                doubts.at[k] = differ(point.leastStrength, point.mostStrength) |
                               differ(point.leastEigenvalue, point.mostEigenvalue);
            }
            if (doubts.any(count)) {
                settle(rows, from, count, doubts, block);
            }
            store(block.strength, from, count, swirl);
            store(block.eigenvalue, from, count, realEigenvalue);
        }
    }

private:
    static void settle(const Rows& rows, std::size_t from, std::size_t count, const Doubts& doubts,
                       SwirlBlock& block) {
        for (std::size_t k = 0; k < count; ++k) {
            if (doubts.at[k] != 0) {
                const Swirl point = swirlOf(rows.at(from + k));
                block.strength[k] = point.strength;
                block.eigenvalue[k] = point.realEigenvalue;
            }
        }
    }
};

} // namespace qel

#endif
