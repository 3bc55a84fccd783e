#ifndef QEL_TENSOR_ROOTENCLOSURES_H
#define QEL_TENSOR_ROOTENCLOSURES_H

/// @file
/// Enclosures of lambda-2, swirl strength and real eigenvalue that vector code can compute.
///
/// Stand-ins for acos, cos and pow, with proved error bounds, give an interval that holds the value
/// which the reference implementation gets from the C library. What follows in the formulas (sums,
/// products with one sign, roots, rounding) never decreases or never increases in that value, so
/// computing it at both ends encloses the result. Where both ends round to the same float, that is
/// the reference implementation's result in every bit; elsewhere, about one point in ten thousand
/// and where results vanish by cancellation, the lane is unresolved and its result recomputed. The
/// bounds are tested in RootEnclosuresTest.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/VectorUnit.h"
#include "tensor/ConstantDivisor.h"
#include "tensor/PointFormulas.h"

namespace qel {

template <typename Value>
struct Enclosure {
    Value low, high;
};

/// The polynomial with these coefficients, that of the highest power first (Horner's rule).
template <typename... Coefficients>
QEL_KERNEL double polynomial(double x, double highest, Coefficients... others) {
    double value = highest;
    ((value = std::fma(value, x, others)), ...);
    return value;
}

// -- cos((acos(r) + 4 pi)/3), the middle root ----

/// More than the polynomial is off (2.1e-13), rounds off (1e-14), and than the reference is off
/// with a C library good to one unit in the last place (4e-15).
constexpr double kCosineBound = 1e-12;

/// cos((acos(r) + 4 pi)/3) = -sin(asin(r)/3), r brought into [-1, 1], without its error interval.
///
/// It is odd in r, and with u = 1 - |r| analytic in sqrt(u): -sin(pi/6 - 2/3 asin(sqrt(u/2))), a
/// Chebyshev fit of degree 19 on [0, 1], split into even and odd powers of sqrt(u).
QEL_KERNEL double middleCosine(double r) {
    const double size = std::fabs(r);
    const double u = size > 1.0 ? 0.0 : 1.0 - size;
    const double even = polynomial(u, -0.45630722864278156, -4.362822920838217, -8.696601348709617,
                                   -5.35638540047142, -1.1427381861175447, -0.08313686114293113,
                                   0.00024427724316180183, 0.008220365219114375,
                                   0.05555554858281599, -0.5000000000000658);
    const double odd =
        polynomial(u, 0.05356662015901562, 1.8016270635193516, 7.235826990099607, 7.820083133827671,
                   2.8199083053916967, 0.35566121591388655, 0.015937252885760842,
                   0.00421213342368799, 0.018900749140088397, 0.408248290516513);
    const double cosine = even + std::sqrt(u) * odd;
    return r < 0.0 ? -cosine : cosine;
}

// -- pow(x, 0.333333333333333) ----

/// Relative. More than a third differs from the exponent over the range (2.5e-13), the polynomial
/// is off (1e-13) and rounds off (4e-15), and than the C library is off.
constexpr double kCubeRootBound = 1e-12;

/// The range of the bound. From a tensor of floats come no radicands beyond 1e-175 and 1e117 but 0,
/// infinities and NaN.
constexpr double kMinRadicand = 1e-290;
constexpr double kMaxRadicand = 1e290;

/// Within 4 % of the inverse cube root of x > 0: minus a third of the exponent and leading digits,
/// taken as one number (the constant mends the exponent's bias).
QEL_KERNEL double inverseCubeRootGuess(double x) {
    constexpr std::uint64_t kTwoTo52Bits = 0x4330000000000000u;
    constexpr double kTwoTo52 = 4503599627370496.0;
    constexpr double kBias = 1430186264.0;
    const double head = doubleOf((bitsOf(x) >> 32) | kTwoTo52Bits) - kTwoTo52;
    const double inverseHead = head * (-1.0 / 3.0) + (kBias + kTwoTo52);
    return doubleOf(bitsOf(inverseHead) << 32);
}

/// Cube root of x > 0 within the range, without its error interval; exact for 0. NaN or an infinity
/// for those.
///
/// Of a guess y of the inverse root, e = x y^3 - 1 is close enough to 0 for a Chebyshev fit of
/// degree 9 on [-0.1022, 0.1019]; the root is x y^2 (1 + e)^(-2/3).
QEL_KERNEL double cubeRoot(double x) {
    const double y = inverseCubeRootGuess(x);
    const double xy2 = x * y * y;
    const double e = std::fma(xy2, y, -1.0);
    const double correction = polynomial(
        e, -0.35986458724091225, 0.37316121025656745, -0.37993400325904336, 0.39894233488255043,
        -0.4224969338733106, 0.45267520367304903, -0.4938271599427728, 0.5555555551559348,
        -0.6666666666668538, 1.0000000000000833);
    return xy2 * correction;
}

// -- The results ----

QEL_KERNEL Enclosure<float> encloseMiddleRoot(const SymmetricCubic& cubic) {
    const double cosine = middleCosine(cubic.r);
    const bool isSpread = cubic.scale > 0.0;
    const double low = (cosine - kCosineBound) * cubic.scale + cubic.mean;
    const double high = (cosine + kCosineBound) * cubic.scale + cubic.mean;
    return {static_cast<float>(isSpread ? low : cubic.mean),
            static_cast<float>(isSpread ? high : cubic.mean)};
}

/// Each component by itself. Where all eigenvalues are real, s = 0 gives minus twice the root of h.
QEL_KERNEL Enclosure<Swirl> encloseSwirl(const Cubic& cubic) {
    const bool isComplexPair = cubic.discriminant > 0.0;
    const double s = isComplexPair ? std::sqrt(cubic.discriminant) : 0.0;
    const double x1 = s - cubic.h;
    const double x2 = s + cubic.h;
    const double size1 = cubeRoot(std::fabs(x1));
    const double size2 = cubeRoot(std::fabs(x2));
    const double width = (size1 + size2) * kCubeRootBound;
    const double difference = std::copysign(size1, x1) - std::copysign(size2, x2);

    // The roots of equal numbers cancel exactly; minus twice the root of 0 is -0.
    const bool cancel = (x1 == x2) & (x1 < std::numeric_limits<double>::infinity());
    const double exact = isComplexPair ? 0.0 : -0.0;
    const double low = cancel ? exact : difference - width;
    const double high = cancel ? exact : difference + width;

    // Where the root may have either sign its square may be 0.
    const double nearestTo0 = (low > 0.0 ? low : 0.0) + (high < 0.0 ? high : 0.0);
    const double farthestFrom0 = high > -low ? high : -low;
    const double lowStrength = std::sqrt(0.75 * nearestTo0 * nearestTo0 + cubic.p);
    const double highStrength = std::sqrt(0.75 * farthestFrom0 * farthestFrom0 + cubic.p);
    const double shift = cubic.a / ConstantDivisor(3.0);
    return {
        {static_cast<float>(isComplexPair ? lowStrength : 0.0), static_cast<float>(low - shift)},
        {static_cast<float>(isComplexPair ? highStrength : 0.0), static_cast<float>(high - shift)}};
}

/// 0 where both ends are one number, bit for bit, or NaN, which the result then is.
QEL_KERNEL std::int32_t isUnresolved(float low, float high) {
    const bool areNan = (low != low) & (high != high);
    return areNan ? 0 : bitsOf(low) ^ bitsOf(high);
}

QEL_KERNEL std::int32_t isUnresolved(const Swirl& low, const Swirl& high) {
    return isUnresolved(low.strength, high.strength) |
           isUnresolved(low.realEigenvalue, high.realEigenvalue);
}

} // namespace qel

#endif
