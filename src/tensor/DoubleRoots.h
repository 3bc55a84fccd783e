#ifndef QEL_TENSOR_DOUBLEROOTS_H
#define QEL_TENSOR_DOUBLEROOTS_H

/// @file
/// lambda-2, swirl strength and real eigenvalue in double, for gradients of doubles whose largest
/// element is near 1.
///
/// The cubics are those of the float analysis, but their roots are taken so that nothing cancels:
/// its forms keep half the digits of a double where roots are nearly equal, which is everywhere in
/// flow in a plane. No function branches or fuses, so kernels compute all of them in lanes, with
/// the same bits on every unit.

#include <cmath>

#include "platform/VectorUnit.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootEnclosures.h"

namespace qel {

/// The polynomial with these coefficients, that of the highest power first (Horner's rule), each
/// step rounded.
template <typename... Coefficients>
QEL_KERNEL double roundedPolynomial(double x, double highest, Coefficients... others) {
    double value = highest;
    ((value = value * x + others), ...);
    return value;
}

/// Stands for a constant divisor where the quotient may be off by a unit in the last place: the
/// divider takes several times as long as a product.
struct Reciprocal {
    double value;

    constexpr explicit Reciprocal(double d) : value(1.0 / d) {}
};

QEL_KERNEL double operator/(double x, const Reciprocal& d) {
    return x * d.value;
}

// -- lambda-2 ----

/// cos(acos(x)/3) for x in [0, 1]: the root of 4 y^3 - 3 y = x farthest from the other two. A
/// Chebyshev fit of degree 10, off by 5e-11, and a step of Newton's iteration.
QEL_KERNEL double farthestCosine(double x) {
    const double y = roundedPolynomial(
        x, -0.0001011507064959066, 0.0006828194897612531, -0.0021808398985963015,
        0.004549324858343788, -0.007382037741318452, 0.010705742005065223, -0.015538831891151437,
        0.02468504367536482, -0.048112130678271255, 0.16666665704159436, 0.8660254038240741);
    const double square = y * y;
    return y - ((4.0 * square - 3.0) * y - x) / (12.0 * square - 3.0);
}

/// Half the distance between the two other eigenvalues of a symmetric matrix K of trace 0, of which
/// one eigenvalue l is far from them.
///
/// With the unit eigenvector v of l, K - l v v^t + (l/2) (I - v v^t) has the eigenvalues 0 and plus
/// and minus that half, which therefore is had from its norm, in full precision however small it
/// is. v v^t is the adjugate of K - l I over its trace.
QEL_KERNEL double halfDistanceOfOthers(const SymmetricMatrix& k, double l) {
    const double b11 = k.m11 - l;
    const double b22 = k.m22 - l;
    const double b33 = k.m33 - l;
    const SymmetricMatrix adjugate = {b22 * b33 - k.m23 * k.m23,   b11 * b33 - k.m13 * k.m13,
                                      b11 * b22 - k.m12 * k.m12,   k.m13 * k.m23 - k.m12 * b33,
                                      k.m12 * k.m13 - k.m23 * b11, k.m12 * k.m23 - k.m13 * b22};
    const double factor = 1.5 * l / (adjugate.m11 + adjugate.m22 + adjugate.m33);
    const WideTriple diagonal = {k.m11 + 0.5 * l - factor * adjugate.m11,
                                 k.m22 + 0.5 * l - factor * adjugate.m22,
                                 k.m33 + 0.5 * l - factor * adjugate.m33};
    const WideTriple across = {k.m12 - factor * adjugate.m12, k.m23 - factor * adjugate.m23,
                               k.m13 - factor * adjugate.m13};
    return std::sqrt(0.5 * square(diagonal) + square(across));
}

/// The eigenvalue that lies apart from the others by trigonometry, as in the float analysis; the
/// middle one from what is left.
struct DoubleLambda2 {
    QEL_KERNEL static double at(const WideGradient& t) {
        const SymmetricMatrix m = symmetricSquare(t);
        const double mean = (m.m22 + m.m11 + m.m33) / Reciprocal(3.0);
        const SymmetricMatrix deviator = {m.m11 - mean, m.m22 - mean, m.m33 - mean,
                                          m.m12,        m.m23,        m.m13};
        const double d = deviator.spread();
        const double scale = std::sqrt(d) / Reciprocal(1.5);
        const double r = deviator.determinant() * 9.0 / (scale * d);
        const double size = std::fabs(r);
        const double apart = std::copysign(farthestCosine(size < 1.0 ? size : 1.0) * scale, r);
        const double half = halfDistanceOfOthers(deviator, apart);
        const double middle = mean + (std::copysign(half, apart) - 0.5 * apart);
        // Not below the threshold is a NaN either.
        return d < kMinSpread ? median(m.m11, m.m22, m.m33) : middle;
    }
};

// -- Swirl strength ----

struct DoubleSwirl {
    double strength;
    double realEigenvalue;
};

/// The cube root of x >= 0 that is no denormal number, to the last place or the one before.
///
/// As in the float analysis, but with a Chebyshev fit of degree 12.
QEL_KERNEL double preciseCubeRoot(double x) {
    const double y = inverseCubeRootGuess(x);
    const double xy2 = x * y * y;
    const double e = xy2 * y - 1.0;
    return xy2 * roundedPolynomial(e, 0.33073458489736174, -0.33949315295309573, 0.3388549488110318,
                                   -0.35055962168722254, 0.3641901177663508, -0.3800242541322886,
                                   0.3990245353849625, -0.4224965679552957, 0.4526748971247848,
                                   -0.4938271604973323, 0.5555555555555527, -0.6666666666666654,
                                   1.0);
}

/// With u and v the roots of s + |h| and s - |h|, where s^2 is the discriminant, u v = p/3. Sums of
/// u and v, in which they may cancel, stand as quotients of sums of their cubes.
QEL_KERNEL DoubleSwirl doubleSwirlOf(const Cubic& cubic) {
    const bool isComplexPair = cubic.discriminant > 0.0;
    const double s = isComplexPair ? std::sqrt(cubic.discriminant) : 0.0;
    const double u = preciseCubeRoot(s + std::fabs(cubic.h));
    const double uv = cubic.p / Reciprocal(3.0);
    const double v = uv / u;
    const double squares = u * u + v * v;
    constexpr double kRootOf3 = 1.7320508075688772;
    const double root =
        isComplexPair ? -2.0 * cubic.h / (squares + uv) : std::copysign(2.0 * u, -cubic.h);
    return {isComplexPair ? kRootOf3 * s / (squares - uv) : 0.0, root - cubic.a / Reciprocal(3.0)};
}

} // namespace qel

#endif
