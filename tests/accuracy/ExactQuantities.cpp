#include "accuracy/ExactQuantities.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace qel_accuracy {
namespace {

constexpr int kSweeps = 12; // of Jacobi's rotations, which converge quadratically
constexpr int kNewtonSteps = 200;

// The characteristic polynomial is x^3 - trace x^2 + q x - determinant.
struct Characteristic {
    explicit Characteristic(const Gradient& t)
        : trace(t[0] + t[4] + t[8]),
          q(invariantQ(t)),
          determinant(t[0] * (t[4] * t[8] - t[5] * t[7]) - t[1] * (t[3] * t[8] - t[5] * t[6]) +
                      t[2] * (t[3] * t[7] - t[4] * t[6])) {}

    // With x = y + trace / 3: y^3 + p y - 2 h, h of the sign of the real root.
    Real p() const { return q - trace * trace / 3; }
    Real h() const { return (determinant - trace * q / 3 + 2 * trace * trace * trace / 27) / 2; }
    Real discriminant() const { return p() * p() * p() / 27 + h() * h(); }

    Real trace, q, determinant;
};

// The real root of y^3 + p y - 2 h where there is one alone. Beyond it the cubic bends one way, and
// Newton's steps from there on go down to it.
Real singleRoot(Real p, Real h) {
    Real y = 2 * std::max(std::sqrt(std::fabs(p)), std::cbrt(2 * std::fabs(h)));
    for (int i = 0; i < kNewtonSteps; ++i) {
        const Real next = y - (y * (y * y + p) - 2 * std::fabs(h)) / (3 * y * y + p);
        if (!(next < y)) {
            break;
        }
        y = next;
    }
    return h < 0 ? -y : y;
}

} // namespace

Real norm(const Gradient& t) {
    Real sum = 0;
    for (const Real v : t) {
        sum += v * v;
    }
    return std::sqrt(sum);
}

Real invariantQ(const Gradient& t) {
    return t[0] * t[4] - t[1] * t[3] + t[0] * t[8] - t[2] * t[6] + t[4] * t[8] - t[5] * t[7];
}

Real discriminant(const Gradient& t) {
    return Characteristic(t).discriminant();
}

Real lambda2(const Gradient& t) {
    Real m[3][3]; // S^2 + W^2 = (T T + (T T)^t) / 2
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            m[i][j] = 0;
            for (std::size_t k = 0; k < 3; ++k) {
                m[i][j] += (t[3 * i + k] * t[3 * k + j] + t[3 * j + k] * t[3 * k + i]) / 2;
            }
        }
    }
    for (int step = 0; step < 3 * kSweeps; ++step) {
        const std::size_t p = step % 3 == 2 ? 1 : 0, q = step % 3 == 0 ? 1 : 2;
        const Real angle = std::atan2(2 * m[p][q], m[q][q] - m[p][p]) / 2;
        const Real c = std::cos(angle), s = std::sin(angle);
        for (auto& row : m) {
            const Real atP = row[p];
            row[p] = c * atP - s * row[q];
            row[q] = s * atP + c * row[q];
        }
        for (std::size_t i = 0; i < 3; ++i) {
            const Real atP = m[p][i];
            m[p][i] = c * atP - s * m[q][i];
            m[q][i] = s * atP + c * m[q][i];
        }
    }
    return std::max(std::min(m[0][0], m[1][1]), std::min(std::max(m[0][0], m[1][1]), m[2][2]));
}

// The pair that is left after the root y has real part -y / 2 and product p + y^2.
Real swirlStrength(const Gradient& t) {
    const Characteristic cubic(t);
    if (!(cubic.discriminant() > 0)) {
        return 0;
    }
    const Real p = cubic.p(), y = singleRoot(p, cubic.h());
    return std::sqrt(std::max(p + 3 * y * y / 4, Real(0)));
}

Real vorticityMagnitude(const Gradient& t) {
    return std::hypot(t[7] - t[5], t[2] - t[6], t[3] - t[1]);
}

Real strainMagnitude(const Gradient& t) {
    Real sum = 0; // of 4 S:S
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const Real twice = t[3 * i + j] + t[3 * j + i];
            sum += twice * twice;
        }
    }
    return std::sqrt(sum / 2);
}

} // namespace qel_accuracy
