#ifndef QEL_TENSOR_POINTFORMULAS_H
#define QEL_TENSOR_POINTFORMULAS_H

/// @file
/// The formulas of the tensor analysis at one point, as they are defined: every operation in the
/// order and precision in which it stands. Kernels compute these same functions in vector lanes, so
/// none of them branches but middleRoot() and swirlOf(), which need acos, cos or pow.
///
/// What is a template of Number takes gradients of floats, of which it computes in the precision
/// that TensorEigenizer states, or of doubles, all in double.

#include <cmath>

#include <qel/TripletBase.h>

#include "foundation/Deinterleave.h"
#include "platform/VectorUnit.h"

namespace qel {

/// The velocity-gradient tensor at one point, row by row: t12 = du/dy.
template <typename Number>
struct BasicGradient {
    Number t11, t12, t13;
    Number t21, t22, t23;
    Number t31, t32, t33;
};

using Gradient = BasicGradient<float>;
using WideGradient = BasicGradient<double>;

using Triple = BasicTriple<float>;
using WideTriple = BasicTriple<double>;

QEL_KERNEL Gradient gradientOf(const TripletBase<float>& row1, const TripletBase<float>& row2,
                               const TripletBase<float>& row3) {
    return {row1.x, row1.y, row1.z, row2.x, row2.y, row2.z, row3.x, row3.y, row3.z};
}

QEL_KERNEL Triple tripleOf(const TripletBase<float>& t) {
    return {t.x, t.y, t.z};
}

QEL_KERNEL WideGradient widened(const Gradient& t) {
    return {static_cast<double>(t.t11), static_cast<double>(t.t12), static_cast<double>(t.t13),
            static_cast<double>(t.t21), static_cast<double>(t.t22), static_cast<double>(t.t23),
            static_cast<double>(t.t31), static_cast<double>(t.t32), static_cast<double>(t.t33)};
}

QEL_KERNEL WideGradient widened(const WideGradient& t) {
    return t;
}

// -- In the precision of the gradient. Number may be Lanes of floats, for several points at once --

struct InvariantQ {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t) {
        return (t.t33 + t.t22) * t.t11 - t.t21 * t.t12 - t.t31 * t.t13 - t.t32 * t.t23 +
               t.t33 * t.t22;
    }
};

struct Divergence {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t) {
        return (t.t22 + t.t11) + t.t33;
    }
};

struct Vorticity {
    template <typename Number>
    QEL_KERNEL static BasicTriple<Number> at(const BasicGradient<Number>& t) {
        return {t.t32 - t.t23, t.t13 - t.t31, t.t21 - t.t12};
    }
};

/// A vector times the vorticity, in the order y, x, z.
struct Helicity {
    template <typename Number>
    QEL_KERNEL static Number at(const BasicGradient<Number>& t, const BasicTriple<Number>& a) {
        const BasicTriple<Number> vorticity = Vorticity::at(t);
        return vorticity.y * a.y + vorticity.x * a.x + vorticity.z * a.z;
    }
};

template <typename Number>
QEL_KERNEL BasicTriple<Number> scaled(const BasicTriple<Number>& t, Number factor) {
    return {t.x * factor, t.y * factor, t.z * factor};
}

// -- The characteristic cubic  l^3 + a l^2 + b l + c = 0 ----

/// Its coefficient a, and the depressed cubic  x^3 + p x + 2 h = 0  with  x = l + a/3.
struct Cubic {
    double a;
    double p;
    double h;
    double discriminant; ///< p^3/27 + h^2: positive if two roots are complex
};

/// @tparam Divisor  double, or ConstantDivisor with the same quotients
template <typename Divisor, typename Number>
QEL_KERNEL Cubic characteristicCubic(const BasicGradient<Number>& gradient) {
    const WideGradient t = widened(gradient);
    const double minor1 = t.t32 * t.t23 - t.t33 * t.t22;
    const double a = -t.t11 - t.t22 - t.t33;
    const double b = (t.t33 + t.t22) * t.t11 - t.t21 * t.t12 - t.t31 * t.t13 - minor1;
    const double c = t.t11 * minor1 + t.t12 * (t.t33 * t.t21 - t.t31 * t.t23) +
                     t.t13 * (t.t31 * t.t22 - t.t32 * t.t21);
    const double p = b - a * a / Divisor(3.0);
    const double h = 0.5 * (c + (a * a / Divisor(13.5) - b / Divisor(3.0)) * a);
    return {a, p, h, p * p * p / Divisor(27.0) + h * h};
}

// -- lambda-2: the middle eigenvalue of M = (T T + (T T)^t) / 2 ----

struct SymmetricMatrix {
    double m11, m22, m33, m12, m23, m13;

    /// Half the squared distance of the eigenvalues from each other, over all pairs.
    QEL_KERNEL double spread() const {
        return 0.5 * ((m11 - m22) * (m11 - m22) + (m22 - m33) * (m22 - m33) +
                      (m33 - m11) * (m33 - m11)) +
               3.0 * (m12 * m12 + m23 * m23 + m13 * m13);
    }
    QEL_KERNEL double determinant() const {
        return (m23 * m12 - m13 * m22) * m13 + (m33 * m22 - m23 * m23) * m11 +
               (m13 * m23 - m12 * m33) * m12;
    }
};

/// M itself.
template <typename Number>
QEL_KERNEL SymmetricMatrix symmetricSquare(const BasicGradient<Number>& gradient) {
    const WideGradient t = widened(gradient);
    return {t.t11 * t.t11 + t.t21 * t.t12 + t.t31 * t.t13,
            t.t22 * t.t22 + t.t21 * t.t12 + t.t32 * t.t23,
            t.t33 * t.t33 + t.t32 * t.t23 + t.t31 * t.t13,
            0.5 * (t.t22 * t.t12 + t.t12 * t.t11 + t.t32 * t.t13 + t.t21 * t.t11 + t.t22 * t.t21 +
                   t.t31 * t.t23),
            0.5 * (t.t23 * t.t22 + t.t21 * t.t13 + t.t33 * t.t23 + t.t31 * t.t12 + t.t32 * t.t22 +
                   t.t33 * t.t32),
            0.5 * (t.t23 * t.t12 + t.t13 * t.t11 + t.t33 * t.t13 + t.t31 * t.t11 + t.t32 * t.t21 +
                   t.t33 * t.t31)};
}

/// The characteristic cubic of M, solved by trigonometry (Smith, "Eigenvalues of a symmetric 3x3
/// matrix", Communications of the ACM 4, 1961): the eigenvalues are mean + cos(angle) * scale,
/// where the cosine of three times the angle is r. Of a multiple of the identity, scale is 0 and
/// mean the middle one of the diagonal.
struct SymmetricCubic {
    double r; ///< beyond [-1, 1] by rounding only; or NaN
    double scale;
    double mean;
};

/// Below this spread d of its entries, M is a multiple of the identity to working precision.
constexpr double kMinSpread = 1e-36;

/// The middle one of three numbers: max(min(a, b), min(max(a, b), c)), with the standard library's
/// min and max where one is a NaN.
QEL_KERNEL double median(double a, double b, double c) {
    const double low = b < a ? b : a;
    const double high = a < b ? b : a;
    const double capped = c < high ? c : high;
    return low < capped ? capped : low;
}

/// @tparam Divisor  double, or ConstantDivisor with the same quotients
template <typename Divisor>
QEL_KERNEL SymmetricCubic symmetricCubic(const Gradient& gradient) {
    const SymmetricMatrix matrix = symmetricSquare(gradient);
    const double d = matrix.spread();
    const double s = std::sqrt(d);
    const double m = (matrix.m22 + matrix.m11 + matrix.m33) / Divisor(3.0);
    const double scale = s / Divisor(1.5);
    const double r = (matrix.determinant() + (d / Divisor(3.0) - m * m) * m) * 9.0 / (scale * d);
    // Not at or above the threshold is a NaN either, which infinite or NaN entries give.
    const bool isSpread = d >= kMinSpread;
    return {r, isSpread ? scale : 0.0, isSpread ? m : median(matrix.m11, matrix.m22, matrix.m33)};
}

inline float middleRoot(const SymmetricCubic& cubic) {
    constexpr double kFourPi = 12.566370614359172;
    if (cubic.scale == 0.0) {
        return static_cast<float>(cubic.mean);
    }
    const double r = cubic.r > 1.0 ? 1.0 : (cubic.r < -1.0 ? -1.0 : cubic.r);
    const double angle = std::acos(r);
    return static_cast<float>(std::cos((angle + kFourPi) / 3.0) * cubic.scale + cubic.mean);
}

// -- Swirl strength: the complex pair of the characteristic cubic of T (Cardano) ----

/// Not the double nearest to one third, on purpose.
constexpr double kThird = 0.333333333333333;

inline double signedCubeRoot(double x) {
    return x >= 0.0 ? std::pow(x, kThird) : -std::pow(-x, kThird);
}

struct Swirl {
    float strength;
    float realEigenvalue;
};

/// Where all eigenvalues are real, the formula is that of a repeated one, on purpose. A NaN
/// discriminant counts as not positive.
inline Swirl swirlOf(const Cubic& cubic) {
    if (cubic.discriminant > 0.0) {
        const double s = std::sqrt(cubic.discriminant);
        const double root = signedCubeRoot(s - cubic.h) - signedCubeRoot(s + cubic.h);
        return {static_cast<float>(std::sqrt(0.75 * root * root + cubic.p)),
                static_cast<float>(root - cubic.a / 3.0)};
    }
    return {0.0f, static_cast<float>(-2.0 * signedCubeRoot(cubic.h) - cubic.a / 3.0)};
}

// -- Vectors of the eigen-analysis ----

/// Below this squared length a direction is undetermined.
constexpr double kMinSquaredLength = 1e-36;

QEL_KERNEL WideTriple cross(const WideTriple& a, const WideTriple& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

QEL_KERNEL double square(const WideTriple& a) {
    return a.x * a.x + a.y * a.y + a.z * a.z;
}

QEL_KERNEL WideTriple selected(bool first, const WideTriple& a, const WideTriple& b) {
    return {first ? a.x : b.x, first ? a.y : b.y, first ? a.z : b.z};
}

/// The longest of three candidates, the earliest among equals, as a unit vector that does not point
/// against the vorticity; zero if it is too short.
template <typename Number>
QEL_KERNEL BasicTriple<Number> directionOfLongest(const WideTriple& c1, const WideTriple& c2,
                                                  const WideTriple& c3, const WideGradient& t) {
    const double x1 = square(c1);
    const double x2 = square(c2);
    const double x3 = square(c3);
    const bool first = (x1 >= x2) & (x1 >= x3);
    const bool second = (x2 >= x3) & (x2 >= x1);
    const WideTriple longest = selected(first, c1, selected(second, c2, c3));
    const double length2 = first ? x1 : (second ? x2 : x3);

    const double scale = 1.0 / std::sqrt(length2);
    const bool determined = length2 > kMinSquaredLength;
    const WideTriple e = selected(
        determined, {longest.x * scale, longest.y * scale, longest.z * scale}, {0.0, 0.0, 0.0});

    const double along = (t.t32 - t.t23) * e.x + (t.t13 - t.t31) * e.y + (t.t21 - t.t12) * e.z;
    const WideTriple oriented = selected(along < 0.0, {-e.x, -e.y, -e.z}, e);
    return {static_cast<Number>(oriented.x), static_cast<Number>(oriented.y),
            static_cast<Number>(oriented.z)};
}

/// Unit eigenvector for the real eigenvalue: the rows of A = T - l I are normal to it, so the cross
/// product of two of them is along it.
template <typename Number>
QEL_KERNEL BasicTriple<Number> realEigenvector(const BasicGradient<Number>& t, Number eigenvalue) {
    const BasicGradient<Number> shifted = {t.t11 - eigenvalue, t.t12, t.t13, t.t21,
                                           t.t22 - eigenvalue, t.t23, t.t31, t.t32,
                                           t.t33 - eigenvalue};
    const WideGradient a = widened(shifted);
    const WideTriple a1 = {a.t11, a.t12, a.t13};
    const WideTriple a2 = {a.t21, a.t22, a.t23};
    const WideTriple a3 = {a.t31, a.t32, a.t33};
    return directionOfLongest<Number>(cross(a1, a2), cross(a1, a3), cross(a2, a3), widened(t));
}

/// Unit normal of the swirl plane: that plane is the null space of
/// B = T T - 2 lcr T + (lci^2 + lcr^2) I, so every row of B is along the normal.
template <typename Number>
QEL_KERNEL BasicTriple<Number> swirlPlaneNormal(const BasicGradient<Number>& gradient,
                                                Number realEigenvalue, Number swirlStrength) {
    const WideGradient t = widened(gradient);
    const double realPart = (t.t22 + t.t11 + t.t33 - static_cast<double>(realEigenvalue)) * 0.5;
    const double twice = 2.0 * realPart;
    const double m = static_cast<double>(swirlStrength * swirlStrength) + realPart * realPart;
    const WideTriple b1 = {t.t11 * t.t11 + t.t12 * t.t21 + t.t13 * t.t31 - twice * t.t11 + m,
                           t.t11 * t.t12 + t.t12 * t.t22 + t.t13 * t.t32 - twice * t.t12,
                           t.t11 * t.t13 + t.t12 * t.t23 + t.t13 * t.t33 - twice * t.t13};
    const WideTriple b2 = {t.t21 * t.t11 + t.t22 * t.t21 + t.t23 * t.t31 - twice * t.t21,
                           t.t21 * t.t12 + t.t22 * t.t22 + t.t23 * t.t32 - twice * t.t22 + m,
                           t.t21 * t.t13 + t.t22 * t.t23 + t.t23 * t.t33 - twice * t.t23};
    const WideTriple b3 = {t.t31 * t.t11 + t.t32 * t.t21 + t.t33 * t.t31 - twice * t.t31,
                           t.t31 * t.t12 + t.t32 * t.t22 + t.t33 * t.t32 - twice * t.t32,
                           t.t31 * t.t13 + t.t32 * t.t23 + t.t33 * t.t33 - twice * t.t33 + m};
    return directionOfLongest<Number>(b1, b2, b3, t);
}

// -- What is built on them, where the swirl strength is positive ----

QEL_KERNEL Triple scaledEigenvector(const Gradient& t, float eigenvalue, float strength) {
    return scaled(realEigenvector(t, eigenvalue), strength);
}

QEL_KERNEL Triple scaledNormal(const Gradient& t, float eigenvalue, float strength) {
    return scaled(swirlPlaneNormal(t, eigenvalue, strength), strength);
}

QEL_KERNEL float eigenvectorHelicity(const Gradient& t, float eigenvalue, float /*strength*/) {
    return Helicity::at(t, realEigenvector(t, eigenvalue));
}

QEL_KERNEL float normalHelicity(const Gradient& t, float eigenvalue, float strength) {
    return Helicity::at(t, swirlPlaneNormal(t, eigenvalue, strength));
}

/// @param e  the real eigenvector
/// @param n  the normal of the swirl plane
template <typename Number>
QEL_KERNEL Number stretchRate(const BasicTriple<Number>& e, const BasicTriple<Number>& n,
                              Number strength) {
    return (e.x * n.x + e.y * n.y + e.z * n.z) * strength;
}

QEL_KERNEL float swirlStretchRate(const Gradient& t, float eigenvalue, float strength) {
    return stretchRate(realEigenvector(t, eigenvalue), swirlPlaneNormal(t, eigenvalue, strength),
                       strength);
}

} // namespace qel

#endif
