#ifndef QEL_TENSOR_ROOTFORMULAS_H
#define QEL_TENSOR_ROOTFORMULAS_H

/// @file
/// The roots of the two cubics of the tensor analysis at one point, with the C library's acos, cos
/// and pow: the definition of what lambda-2, swirl strength and real eigenvalue are.

#include <cmath>

#include "tensor/PointFormulas.h"

namespace qel {

// -- lambda-2: the middle eigenvalue of M = (T T + (T T)^t) / 2 ----

/// The depressed cubic of M. With s = sqrt(d), the eigenvalues are m + cos(angle) s/1.5, where the
/// cosine of three times the angle is r.
struct SymmetricCubic {
    double m11, m22, m33; ///< diagonal of M
    double d;             ///< 0 where M is a multiple of the identity
    double m;             ///< mean of the diagonal
    double scale;         ///< s/1.5
    double r;             ///< within [-1, 1], or NaN
};

/// Below this, M is a multiple of the identity to working precision.
constexpr double kSmallestSpread = 1e-36;

QEL_KERNEL SymmetricCubic symmetricCubic(const Gradient& gradient) {
    const WideGradient t = widened(gradient);
    const double m11 = t.t11 * t.t11 + t.t21 * t.t12 + t.t31 * t.t13;
    const double m22 = t.t22 * t.t22 + t.t21 * t.t12 + t.t32 * t.t23;
    const double m33 = t.t33 * t.t33 + t.t32 * t.t23 + t.t31 * t.t13;
    const double m12 = 0.5 * (t.t22 * t.t12 + t.t12 * t.t11 + t.t32 * t.t13 + t.t21 * t.t11 +
                              t.t22 * t.t21 + t.t31 * t.t23);
    const double m23 = 0.5 * (t.t23 * t.t22 + t.t21 * t.t13 + t.t33 * t.t23 + t.t31 * t.t12 +
                              t.t32 * t.t22 + t.t33 * t.t32);
    const double m13 = 0.5 * (t.t23 * t.t12 + t.t13 * t.t11 + t.t33 * t.t13 + t.t31 * t.t11 +
                              t.t32 * t.t21 + t.t33 * t.t31);
    const double d =
        0.5 * ((m11 - m22) * (m11 - m22) + (m22 - m33) * (m22 - m33) + (m33 - m11) * (m33 - m11)) +
        3.0 * (m12 * m12 + m23 * m23 + m13 * m13);
    const double s = std::sqrt(d);
    const double m = (m22 + m11 + m33) / 3.0;
    const double determinant = (m23 * m12 - m13 * m22) * m13 + (m33 * m22 - m23 * m23) * m11 +
                               (m13 * m23 - m12 * m33) * m12;
    const double scale = s / 1.5;
    const double cosine = (determinant + (d / 3.0 - m * m) * m) * 9.0 / (scale * d);
    const double r = cosine > 1.0 ? 1.0 : (cosine < -1.0 ? -1.0 : cosine);
    return {m11, m22, m33, d, m, scale, r};
}

/// The middle one of three numbers: max(min(a, b), min(max(a, b), c)), with the standard library's
/// min and max where one is a NaN.
QEL_KERNEL double median(double a, double b, double c) {
    const double low = b < a ? b : a;
    const double high = a < b ? b : a;
    const double capped = c < high ? c : high;
    return low < capped ? capped : low;
}

/// A NaN spread, which infinite or NaN inputs give, takes the median: it is not at or above the
/// threshold.
inline float secondEigenvalue(const Gradient& t) {
    constexpr double kFourPi = 12.566370614359172;
    const SymmetricCubic cubic = symmetricCubic(t);
    if (cubic.d >= kSmallestSpread) {
        const double angle = std::acos(cubic.r);
        return static_cast<float>(std::cos((angle + kFourPi) / 3.0) * cubic.scale + cubic.m);
    }
    return static_cast<float>(median(cubic.m11, cubic.m22, cubic.m33));
}

// -- Swirl strength: the complex pair of the characteristic cubic (Cardano) ----

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
inline Swirl swirlOf(const Gradient& t) {
    const Cubic cubic = characteristicCubic(t);
    if (cubic.discriminant > 0.0) {
        const double s = std::sqrt(cubic.discriminant);
        const double root = signedCubeRoot(s - cubic.h) - signedCubeRoot(s + cubic.h);
        return {static_cast<float>(std::sqrt(0.75 * root * root + cubic.p)),
                static_cast<float>(root - cubic.a / 3.0)};
    }
    return {0.0f, static_cast<float>(-2.0 * signedCubeRoot(cubic.h) - cubic.a / 3.0)};
}

} // namespace qel

#endif
