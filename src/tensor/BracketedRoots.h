#ifndef QEL_TENSOR_BRACKETEDROOTS_H
#define QEL_TENSOR_BRACKETEDROOTS_H

/// @file
/// Stand-ins for acos, cos and pow that vector code can compute, with proved error bounds.
///
/// Each gives an interval that holds the value which the plain formula gets from the C library.
/// What follows in the formulas (sums, products with one sign, roots, rounding) never decreases
/// or never increases in that value, and neither does its rounding, so computing it on both ends
/// brackets the result. Where both ends round to the same float, that float is the result of the
/// plain formula in every bit; elsewhere, about one point in ten thousand and where results vanish
/// by cancellation, the plain formula is computed. The bounds are tested in RootBoundsTest.

#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/VectorUnit.h"

namespace qel {

struct RootBracket {
    double low;
    double high;
};

// -- cos((acos(r) + 4 pi)/3), the middle root ----

/// More than the polynomial is off (2.1e-13), rounds off (1e-14), and than the plain formula is
/// off with a C library good to one unit in the last place (4e-15).
constexpr double kCosineBound = 1e-12;

/// cos((acos(r) + 4 pi)/3) = -sin(asin(r)/3) for r in [-1, 1], without its error interval.
///
/// It is odd in r, and with u = 1 - |r| analytic in sqrt(u): -sin(pi/6 - 2/3 asin(sqrt(u/2))), a
/// Chebyshev fit of degree 19 on [0, 1], split into even and odd powers of sqrt(u).
QEL_KERNEL double middleCosine(double r) {
    const double u = 1.0 - std::fabs(r);
    double even = -0.45630722864278156;
    even = even * u + -4.362822920838217;
    even = even * u + -8.696601348709617;
    even = even * u + -5.35638540047142;
    even = even * u + -1.1427381861175447;
    even = even * u + -0.08313686114293113;
    even = even * u + 0.00024427724316180183;
    even = even * u + 0.008220365219114375;
    even = even * u + 0.05555554858281599;
    even = even * u + -0.5000000000000658;
    double odd = 0.05356662015901562;
    odd = odd * u + 1.8016270635193516;
    odd = odd * u + 7.235826990099607;
    odd = odd * u + 7.820083133827671;
    odd = odd * u + 2.8199083053916967;
    odd = odd * u + 0.35566121591388655;
    odd = odd * u + 0.015937252885760842;
    odd = odd * u + 0.00421213342368799;
    odd = odd * u + 0.018900749140088397;
    odd = odd * u + 0.408248290516513;
    const double cosine = even + std::sqrt(u) * odd;
    return r < 0.0 ? -cosine : cosine;
}

// -- pow(x, 0.333333333333333) ----

/// Relative. More than a third differs from the exponent over the range (2.5e-13), the polynomial
/// is off (1e-14) and rounds off (4e-15), and than the C library is off.
constexpr double kCubeRootBound = 1e-12;

/// The range of the bound.
constexpr double kSmallestRadicand = 1e-290;
constexpr double kLargestRadicand = 1e290;

/// Cube root of x > 0 within the range, without its error interval.
///
/// A third of the exponent and leading digits, taken as one number, is within 4 % (the constant
/// mends the exponent's bias); t (t^3/x)^(-1/3) then is the root, and t^3/x is close enough to 1
/// for a Chebyshev fit of degree 9 on [0.909, 1.0998].
QEL_KERNEL double cubeRoot(double x) {
    constexpr std::uint64_t kTwoTo52Bits = 0x4330000000000000u;
    constexpr double kTwoTo52 = 4503599627370496.0;
    constexpr double kBias = 715094163.0;
    const double head = doubleOf((bitsOf(x) >> 32) | kTwoTo52Bits) - kTwoTo52;
    const double rootHead = head * (1.0 / 3.0) + (kBias + kTwoTo52);
    const double t = doubleOf(bitsOf(rootHead) << 32);

    const double z = t * t * (t / x) - 1.0;
    double p = -0.08334510292759328;
    p = p * z + 0.09376761245028727;
    p = p * z + -0.10044138849950038;
    p = p * z + 0.1109453444958634;
    p = p * z + -0.12482820173265614;
    p = p * z + 0.1440329638274138;
    p = p * z + -0.1728395069230649;
    p = p * z + 0.2222222221755709;
    p = p * z + -0.3333333333328925;
    p = p * z + 1.0000000000000084;
    return t * p;
}

/// The signed cube root of the plain formula; exact for 0. Both ends are NaN where the bound does
/// not hold: beyond the range, and for NaN.
QEL_KERNEL RootBracket cubeRootBracket(double x) {
    const double size = std::fabs(x);
    const bool within = (size >= kSmallestRadicand) & (size <= kLargestRadicand);
    const double bounded = within ? cubeRoot(size) : std::numeric_limits<double>::quiet_NaN();
    const double root = size == 0.0 ? 0.0 : bounded;
    const double signedRoot = std::copysign(root, x + 0.0); // + 0: the root of -0 is +0
    const double width = root * kCubeRootBound;
    return {signedRoot - width, signedRoot + width};
}

} // namespace qel

#endif
