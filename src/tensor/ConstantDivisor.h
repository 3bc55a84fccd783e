#ifndef QEL_TENSOR_CONSTANTDIVISOR_H
#define QEL_TENSOR_CONSTANTDIVISOR_H

/// @file
/// Division by a constant without the divider, which takes several times as long as a product and
/// is what bounds the cubics: x / d = fma(x, high, x * low), where high + low is 1/d to twice the
/// precision (Brisebarre, Muller and Raina, "Accelerating correctly rounded floating-point division
/// when the divisor is known in advance", IEEE Transactions on Computers 53, 2004).
///
/// The quotient is that of the division, in every bit, where d has few digits: with d = D 2^k, D an
/// odd integer, x/d lies at least 1/(2D) of a unit in the last place away from where rounding
/// changes, and what fma rounds is off by 2^-52 of a unit. That holds for x = 0, infinities and
/// NaN, and as long as nothing underflows: for |x| above 1e-280. The tensor formulas divide nothing
/// smaller: the entries are multiples of 2^-149, what is quadratic in them is a multiple of 2^-298,
/// and p, as the difference of such a number and a third of one, is 0 or above 2^-302.

#include <cmath>

#include "platform/VectorUnit.h"

namespace qel {

/// Stands for a divisor in kernels of units with fused multiply-add.
struct ConstantDivisor {
    double high; ///< 1/d rounded, below it for the divisors here, so that low is positive
    double low;  ///< what is missing

    /// @param d  of at most 26 binary digits
    constexpr explicit ConstantDivisor(double d) : high(1.0 / d), low(residual(d, high) / d) {}

private:
    // 1 - d * high, exactly: both halves of high (Veltkamp's splitting) times d are exact.
    static constexpr double residual(double d, double high) {
        constexpr double kSplitter = 134217729.0; // 2^27 + 1
        const double upper = kSplitter * high - (kSplitter * high - high);
        const double lower = high - upper;
        return (1.0 - d * upper) - d * lower;
    }
};

QEL_KERNEL double operator/(double x, const ConstantDivisor& d) {
    return std::fma(x, d.high, x * d.low);
}

} // namespace qel

#endif
