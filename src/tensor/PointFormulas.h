#ifndef QEL_TENSOR_POINTFORMULAS_H
#define QEL_TENSOR_POINTFORMULAS_H

/// @file
/// The formulas of the tensor analysis at one point, as they are defined: every operation in the
/// order and precision in which it stands. The loops over many points compute these same
/// functions in vector lanes; those that need acos, cos or pow stand in RootFormulas.h.
///
/// All of them are free of branches that vector code could not follow, except where one is named.

#include <cmath>

#include <qel/TripletBase.h>

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

/// A vector that a formula computes with: of the types that TripletBase is not for as well.
template <typename Number>
struct BasicTriple {
    Number x, y, z;
};

using Triple = BasicTriple<float>;
using WideTriple = BasicTriple<double>;

QEL_KERNEL Gradient gradientOf(const TripletBase<float>& row1, const TripletBase<float>& row2,
                               const TripletBase<float>& row3) {
    return {row1.x, row1.y, row1.z, row2.x, row2.y, row2.z, row3.x, row3.y, row3.z};
}

QEL_KERNEL Triple tripleOf(const TripletBase<float>& t) {
    return {t.x, t.y, t.z};
}

QEL_KERNEL TripletBase<float> tripletOf(const Triple& t) {
    return {t.x, t.y, t.z};
}

QEL_KERNEL WideGradient widened(const Gradient& t) {
    return {static_cast<double>(t.t11), static_cast<double>(t.t12), static_cast<double>(t.t13),
            static_cast<double>(t.t21), static_cast<double>(t.t22), static_cast<double>(t.t23),
            static_cast<double>(t.t31), static_cast<double>(t.t32), static_cast<double>(t.t33)};
}

// -- Single precision, also of several points at once: Number is float, or Lanes of them ----

template <typename Number>
QEL_KERNEL Number invariantQ(const BasicGradient<Number>& t) {
    return (t.t33 + t.t22) * t.t11 - t.t21 * t.t12 - t.t31 * t.t13 - t.t32 * t.t23 + t.t33 * t.t22;
}

template <typename Number>
QEL_KERNEL Number divergence(const BasicGradient<Number>& t) {
    return (t.t22 + t.t11) + t.t33;
}

template <typename Number>
QEL_KERNEL BasicTriple<Number> vorticity(const BasicGradient<Number>& t) {
    return {t.t32 - t.t23, t.t13 - t.t31, t.t21 - t.t12};
}

/// a times the vorticity, in the order y, x, z.
template <typename Number>
QEL_KERNEL Number timesVorticity(const BasicTriple<Number>& a,
                                 const BasicTriple<Number>& vorticity) {
    return vorticity.y * a.y + vorticity.x * a.x + vorticity.z * a.z;
}

template <typename Number>
QEL_KERNEL Number helicity(const BasicGradient<Number>& t, const BasicTriple<Number>& velocity) {
    return timesVorticity(velocity, vorticity(t));
}

QEL_KERNEL Triple scaled(const Triple& t, float factor) {
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

QEL_KERNEL Cubic characteristicCubic(const Gradient& gradient) {
    const WideGradient t = widened(gradient);
    const double minor1 = t.t32 * t.t23 - t.t33 * t.t22;
    const double a = -t.t11 - t.t22 - t.t33;
    const double b = (t.t33 + t.t22) * t.t11 - t.t21 * t.t12 - t.t31 * t.t13 - minor1;
    const double c = t.t11 * minor1 + t.t12 * (t.t33 * t.t21 - t.t31 * t.t23) +
                     t.t13 * (t.t31 * t.t22 - t.t32 * t.t21);
    const double p = b - a * a / 3.0;
    const double h = 0.5 * (c + (a * a / 13.5 - b / 3.0) * a);
    return {a, p, h, p * p * p / 27.0 + h * h};
}

QEL_KERNEL float discriminant(const Gradient& t) {
    return static_cast<float>(characteristicCubic(t).discriminant);
}

// -- Vectors of the eigen-analysis ----

/// Below this squared length a direction is undetermined.
constexpr double kSmallestSquare = 1e-36;

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
QEL_KERNEL Triple directionOfLongest(const WideTriple& c1, const WideTriple& c2,
                                     const WideTriple& c3, const WideGradient& t) {
    const double x1 = square(c1);
    const double x2 = square(c2);
    const double x3 = square(c3);
    const bool first = (x1 >= x2) & (x1 >= x3);
    const bool second = (x2 >= x3) & (x2 >= x1);
    const WideTriple longest = selected(first, c1, selected(second, c2, c3));
    const double length2 = first ? x1 : (second ? x2 : x3);

    const double scale = 1.0 / std::sqrt(length2);
    const bool determined = length2 > kSmallestSquare;
    const WideTriple e = selected(
        determined, {longest.x * scale, longest.y * scale, longest.z * scale}, {0.0, 0.0, 0.0});

    const double along = (t.t32 - t.t23) * e.x + (t.t13 - t.t31) * e.y + (t.t21 - t.t12) * e.z;
    const WideTriple oriented = selected(along < 0.0, {-e.x, -e.y, -e.z}, e);
    return {static_cast<float>(oriented.x), static_cast<float>(oriented.y),
            static_cast<float>(oriented.z)};
}

/// Unit eigenvector for the real eigenvalue: the rows of A = T - l I are normal to it, so the cross
/// product of two of them is along it.
QEL_KERNEL Triple realEigenvector(const Gradient& t, float eigenvalue) {
    const Gradient shifted = {t.t11 - eigenvalue, t.t12, t.t13, t.t21,
                              t.t22 - eigenvalue, t.t23, t.t31, t.t32,
                              t.t33 - eigenvalue};
    const WideGradient a = widened(shifted);
    const WideTriple a1 = {a.t11, a.t12, a.t13};
    const WideTriple a2 = {a.t21, a.t22, a.t23};
    const WideTriple a3 = {a.t31, a.t32, a.t33};
    return directionOfLongest(cross(a1, a2), cross(a1, a3), cross(a2, a3), widened(t));
}

/// Unit normal of the swirl plane: that plane is the null space of
/// B = T T - 2 lcr T + (lci^2 + lcr^2) I, so every row of B is along the normal.
QEL_KERNEL Triple swirlPlaneNormal(const Gradient& gradient, float realEigenvalue,
                                   float swirlStrength) {
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
    return directionOfLongest(b1, b2, b3, t);
}

// -- What is built on them, where the swirl strength is positive ----

QEL_KERNEL Triple scaledEigenvector(const Gradient& t, float eigenvalue, float strength) {
    return scaled(realEigenvector(t, eigenvalue), strength);
}

QEL_KERNEL Triple scaledNormal(const Gradient& t, float eigenvalue, float strength) {
    return scaled(swirlPlaneNormal(t, eigenvalue, strength), strength);
}

QEL_KERNEL float eigenvectorHelicity(const Gradient& t, float eigenvalue, float /*strength*/) {
    return timesVorticity(realEigenvector(t, eigenvalue), vorticity(t));
}

QEL_KERNEL float normalHelicity(const Gradient& t, float eigenvalue, float strength) {
    return timesVorticity(swirlPlaneNormal(t, eigenvalue, strength), vorticity(t));
}

QEL_KERNEL float stretchRate(const Gradient& t, float eigenvalue, float strength) {
    const Triple e = realEigenvector(t, eigenvalue);
    const Triple n = swirlPlaneNormal(t, eigenvalue, strength);
    return (e.x * n.x + e.y * n.y + e.z * n.z) * strength;
}

} // namespace qel

#endif
