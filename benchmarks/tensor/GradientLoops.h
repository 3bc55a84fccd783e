#ifndef QEL_BENCHMARKS_TENSOR_GRADIENTLOOPS_H
#define QEL_BENCHMARKS_TENSOR_GRADIENTLOOPS_H

// The formulas of the invariants and of the eigen-analysis at one point, in the library's order of
// operations, with the scalar functions of the standard library.

#include <algorithm>
#include <cmath>

#include <qel/TripletBase.h>

namespace qel_benchmark {
namespace loops {

using Triplet = qel::TripletBase<float>;

inline float invariantQ(const Triplet& r1, const Triplet& r2, const Triplet& r3) {
    return (r3.z + r2.y) * r1.x - r2.x * r1.y - r3.x * r1.z - r3.y * r2.z + r3.z * r2.y;
}

inline float divergence(const Triplet& r1, const Triplet& r2, const Triplet& r3) {
    return (r2.y + r1.x) + r3.z;
}

inline Triplet vorticity(const Triplet& r1, const Triplet& r2, const Triplet& r3) {
    return {r3.y - r2.z, r1.z - r3.x, r2.x - r1.y};
}

inline float helicity(const Triplet& w, const Triplet& u) {
    return w.y * u.y + w.x * u.x + w.z * u.z;
}

// The depressed characteristic cubic.
struct Cubic {
    double a, p, h;
    double discriminant() const { return p * p * p / 27.0 + h * h; }
};

template <typename T>
Cubic cubicOf(const qel::TripletBase<T>& r1, const qel::TripletBase<T>& r2,
              const qel::TripletBase<T>& r3) {
    const double t11 = static_cast<double>(r1.x), t12 = static_cast<double>(r1.y),
                 t13 = static_cast<double>(r1.z), t21 = static_cast<double>(r2.x),
                 t22 = static_cast<double>(r2.y), t23 = static_cast<double>(r2.z),
                 t31 = static_cast<double>(r3.x), t32 = static_cast<double>(r3.y),
                 t33 = static_cast<double>(r3.z);
    const double minor = t32 * t23 - t33 * t22;
    const double a = -t11 - t22 - t33;
    const double b = (t33 + t22) * t11 - t21 * t12 - t31 * t13 - minor;
    const double c = t11 * minor + t12 * (t33 * t21 - t31 * t23) + t13 * (t31 * t22 - t32 * t21);
    return {a, b - a * a / 3.0, 0.5 * (c + (a * a / 13.5 - b / 3.0) * a)};
}

inline double cubeRoot(double x) {
    constexpr double kThird = 0.333333333333333;
    return x >= 0.0 ? std::pow(x, kThird) : -std::pow(-x, kThird);
}

template <typename T>
void swirlStrength(const Cubic& c, T& swirl, T& eigenvalue) {
    const double d = c.discriminant();
    if (d > 0.0) {
        const double s = std::sqrt(d);
        const double t = cubeRoot(s - c.h) - cubeRoot(s + c.h);
        swirl = static_cast<T>(std::sqrt(0.75 * t * t + c.p));
        eigenvalue = static_cast<T>(t - c.a / 3.0);
    } else {
        swirl = 0;
        eigenvalue = static_cast<T>(-2.0 * cubeRoot(c.h) - c.a / 3.0);
    }
}

// The upper half of the symmetric matrix S^2 + W^2.
struct Symmetric {
    double m11, m22, m33, m12, m23, m13;
};

template <typename T>
Symmetric strainAndSpin(const qel::TripletBase<T>& r1, const qel::TripletBase<T>& r2,
                        const qel::TripletBase<T>& r3) {
    const double t11 = static_cast<double>(r1.x), t12 = static_cast<double>(r1.y),
                 t13 = static_cast<double>(r1.z), t21 = static_cast<double>(r2.x),
                 t22 = static_cast<double>(r2.y), t23 = static_cast<double>(r2.z),
                 t31 = static_cast<double>(r3.x), t32 = static_cast<double>(r3.y),
                 t33 = static_cast<double>(r3.z);
    return {t11 * t11 + t21 * t12 + t31 * t13,
            t22 * t22 + t21 * t12 + t32 * t23,
            t33 * t33 + t32 * t23 + t31 * t13,
            0.5 * (t22 * t12 + t12 * t11 + t32 * t13 + t21 * t11 + t22 * t21 + t31 * t23),
            0.5 * (t23 * t22 + t21 * t13 + t33 * t23 + t31 * t12 + t32 * t22 + t33 * t32),
            0.5 * (t23 * t12 + t13 * t11 + t33 * t13 + t31 * t11 + t32 * t21 + t33 * t31)};
}

// The middle eigenvalue, by the trigonometric solution of its characteristic cubic.
inline double lambda2(const Symmetric& m) {
    const double ab = m.m11 - m.m22;
    const double bc = m.m22 - m.m33;
    const double ca = m.m33 - m.m11;
    const double d =
        0.5 * (ab * ab + bc * bc + ca * ca) + 3.0 * (m.m12 * m.m12 + m.m23 * m.m23 + m.m13 * m.m13);
    if (d >= 1e-36) {
        const double s = std::sqrt(d);
        const double mean = (m.m22 + m.m11 + m.m33) / 3.0;
        const double det = (m.m23 * m.m12 - m.m13 * m.m22) * m.m13 +
                           (m.m33 * m.m22 - m.m23 * m.m23) * m.m11 +
                           (m.m13 * m.m23 - m.m12 * m.m33) * m.m12;
        const double r = (det + (d / 3.0 - mean * mean) * mean) * 9.0 / ((s / 1.5) * d);
        const double angle = std::acos(std::max(-1.0, std::min(1.0, r)));
        return std::cos((angle + 12.566370614359172) / 3.0) * (s / 1.5) + mean;
    }
    return std::max(std::min(m.m11, m.m22), std::min(std::max(m.m11, m.m22), m.m33));
}

} // namespace loops
} // namespace qel_benchmark

#endif
