#ifndef QEL_TESTS_TENSOR_REFERENCEFORMULAS_H
#define QEL_TESTS_TENSOR_REFERENCEFORMULAS_H

// The tensor formulas once more, written apart from the library's, with indices instead of names:
// what every operation must give, bit for bit.

#include <algorithm>
#include <array>
#include <cmath>

#include "tensor/Fields.h"

namespace qel_test {
namespace reference {

inline float at(const Tensor& t, int row, int column) {
    return t[static_cast<std::size_t>(3 * (row - 1) + column - 1)];
}

inline float invariantQ(const Tensor& t) {
    float q = (at(t, 3, 3) + at(t, 2, 2)) * at(t, 1, 1);
    q -= at(t, 2, 1) * at(t, 1, 2);
    q -= at(t, 3, 1) * at(t, 1, 3);
    q -= at(t, 3, 2) * at(t, 2, 3);
    q += at(t, 3, 3) * at(t, 2, 2);
    return q;
}

inline float divergence(const Tensor& t) {
    const float sum = at(t, 2, 2) + at(t, 1, 1);
    return sum + at(t, 3, 3);
}

inline Triplet vorticity(const Tensor& t) {
    return {at(t, 3, 2) - at(t, 2, 3), at(t, 1, 3) - at(t, 3, 1), at(t, 2, 1) - at(t, 1, 2)};
}

inline float productYxz(const Triplet& a, const Triplet& w) {
    float sum = a.y * w.y;
    sum += a.x * w.x;
    sum += a.z * w.z;
    return sum;
}

struct Cubic {
    double a, p, h, discriminant;
};

inline Cubic cubic(const Tensor& tensor) {
    const auto T = [&](int i, int j) { return static_cast<double>(at(tensor, i, j)); };
    const double a = -T(1, 1) - T(2, 2) - T(3, 3);
    double b = (T(3, 3) + T(2, 2)) * T(1, 1);
    b -= T(2, 1) * T(1, 2);
    b -= T(3, 1) * T(1, 3);
    b -= T(3, 2) * T(2, 3) - T(3, 3) * T(2, 2);
    double c = T(1, 1) * (T(3, 2) * T(2, 3) - T(3, 3) * T(2, 2));
    c += T(1, 2) * (T(3, 3) * T(2, 1) - T(3, 1) * T(2, 3));
    c += T(1, 3) * (T(3, 1) * T(2, 2) - T(3, 2) * T(2, 1));
    const double p = b - (a * a) / 3;
    const double h = 0.5 * (c + ((a * a) / 13.5 - b / 3) * a);
    return {a, p, h, ((p * p) * p) / 27 + h * h};
}

inline float secondEigenvalue(const Tensor& tensor) {
    const auto T = [&](int i, int j) { return static_cast<double>(at(tensor, i, j)); };
    const double m11 = T(1, 1) * T(1, 1) + T(2, 1) * T(1, 2) + T(3, 1) * T(1, 3);
    const double m22 = T(2, 2) * T(2, 2) + T(2, 1) * T(1, 2) + T(3, 2) * T(2, 3);
    const double m33 = T(3, 3) * T(3, 3) + T(3, 2) * T(2, 3) + T(3, 1) * T(1, 3);
    const double m12 = 0.5 * (T(2, 2) * T(1, 2) + T(1, 2) * T(1, 1) + T(3, 2) * T(1, 3) +
                              T(2, 1) * T(1, 1) + T(2, 2) * T(2, 1) + T(3, 1) * T(2, 3));
    const double m23 = 0.5 * (T(2, 3) * T(2, 2) + T(2, 1) * T(1, 3) + T(3, 3) * T(2, 3) +
                              T(3, 1) * T(1, 2) + T(3, 2) * T(2, 2) + T(3, 3) * T(3, 2));
    const double m13 = 0.5 * (T(2, 3) * T(1, 2) + T(1, 3) * T(1, 1) + T(3, 3) * T(1, 3) +
                              T(3, 1) * T(1, 1) + T(3, 2) * T(2, 1) + T(3, 3) * T(3, 1));
    const auto squared = [](double x) { return x * x; };
    const double d = 0.5 * (squared(m11 - m22) + squared(m22 - m33) + squared(m33 - m11)) +
                     3.0 * (squared(m12) + squared(m23) + squared(m13));
    if (d >= 1e-36) {
        const double s = std::sqrt(d);
        const double m = (m22 + m11 + m33) / 3;
        const double det = (m23 * m12 - m13 * m22) * m13 + (m33 * m22 - squared(m23)) * m11 +
                           (m13 * m23 - m12 * m33) * m12;
        double r = (det + (d / 3 - squared(m)) * m) * 9 / ((s / 1.5) * d);
        if (r > 1) {
            r = 1;
        }
        if (r < -1) {
            r = -1;
        }
        return static_cast<float>(std::cos((std::acos(r) + 12.566370614359172) / 3) * (s / 1.5) +
                                  m);
    }
    return static_cast<float>(std::max(std::min(m11, m22), std::min(std::max(m11, m22), m33)));
}

inline double cubeRoot(double x) {
    return x >= 0 ? std::pow(x, 0.333333333333333) : -std::pow(-x, 0.333333333333333);
}

struct Swirl {
    float strength, eigenvalue;
};

inline Swirl swirl(const Tensor& t) {
    const Cubic c = cubic(t);
    if (c.discriminant > 0) {
        const double s = std::sqrt(c.discriminant);
        const double root = cubeRoot(s - c.h) - cubeRoot(s + c.h);
        return {static_cast<float>(std::sqrt(0.75 * root * root + c.p)),
                static_cast<float>(root - c.a / 3)};
    }
    return {0.0f, static_cast<float>(-2 * cubeRoot(c.h) - c.a / 3)};
}

using Wide = std::array<double, 3>;

inline Triplet orientedLongest(const std::array<Wide, 3>& candidates, const Tensor& t) {
    std::array<double, 3> x;
    for (std::size_t i = 0; i < 3; ++i) {
        const Wide& c = candidates[i];
        x[i] = c[0] * c[0] + c[1] * c[1] + c[2] * c[2];
    }
    std::size_t chosen = 2;
    if (x[0] >= x[1] && x[0] >= x[2]) {
        chosen = 0;
    } else if (x[1] >= x[2] && x[1] >= x[0]) {
        chosen = 1;
    }
    Wide e = {0, 0, 0};
    if (x[chosen] > 1e-36) {
        const double inverse = 1 / std::sqrt(x[chosen]);
        for (std::size_t i = 0; i < 3; ++i) {
            e[i] = candidates[chosen][i] * inverse;
        }
    }
    const auto T = [&](int i, int j) { return static_cast<double>(at(t, i, j)); };
    const double along =
        (T(3, 2) - T(2, 3)) * e[0] + (T(1, 3) - T(3, 1)) * e[1] + (T(2, 1) - T(1, 2)) * e[2];
    if (along < 0) {
        e = {-e[0], -e[1], -e[2]};
    }
    return {static_cast<float>(e[0]), static_cast<float>(e[1]), static_cast<float>(e[2])};
}

inline Wide cross(const Wide& a, const Wide& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline Triplet realEigenvector(const Tensor& t, float eigenvalue) {
    std::array<Wide, 3> rows;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const float entry = at(t, i + 1, j + 1);
            rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] =
                static_cast<double>(i == j ? entry - eigenvalue : entry);
        }
    }
    return orientedLongest(
        {cross(rows[0], rows[1]), cross(rows[0], rows[2]), cross(rows[1], rows[2])}, t);
}

inline Triplet swirlNormal(const Tensor& t, float eigenvalue, float strength) {
    const auto T = [&](int i, int j) { return static_cast<double>(at(t, i, j)); };
    const double lcr = (T(2, 2) + T(1, 1) + T(3, 3) - static_cast<double>(eigenvalue)) * 0.5;
    const double m = static_cast<double>(strength * strength) + lcr * lcr;
    std::array<Wide, 3> rows;
    for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j) {
            double b =
                T(i, 1) * T(1, j) + T(i, 2) * T(2, j) + T(i, 3) * T(3, j) - 2 * lcr * T(i, j);
            if (i == j) {
                b += m;
            }
            rows[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)] = b;
        }
    }
    return orientedLongest(rows, t);
}

inline Triplet scaled(const Triplet& t, float factor) {
    return {t.x * factor, t.y * factor, t.z * factor};
}

inline float stretchRate(const Tensor& t, float eigenvalue, float strength) {
    const Triplet e = realEigenvector(t, eigenvalue);
    const Triplet n = swirlNormal(t, eigenvalue, strength);
    float sum = e.x * n.x;
    sum += e.y * n.y;
    sum += e.z * n.z;
    return sum * strength;
}

} // namespace reference
} // namespace qel_test

#endif
