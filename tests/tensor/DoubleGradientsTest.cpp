// The analysis of gradients of doubles: against the same quantities found by other means in long
// double, and where gradients are degenerate, tiny or huge.

#include <qel/GradientAnalysis.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/VectorUnits.h"
#include "tensor/AllFields.h"

namespace {

using namespace qel_test;
using Real = long double;

AllFields<double> analyzed(const std::vector<WideTensor>& tensors) {
    AllFields<double> fields(tensors.size());
    qel::analyzeGradients(viewOf(tensors), fields.views(false));
    return fields;
}

// Names of the fields of AllFields.
constexpr std::size_t kQ = 0, kQCriterion = 1, kDivergence = 2, kDiscriminant = 3, kLambda2 = 4,
                      kSwirl = 5, kEigenvalue = 6, kSpin = 7, kStrain = 8, kStretch = 9;

// -- Other means ----

Real at(const WideTensor& t, std::size_t i, std::size_t j) {
    return static_cast<Real>(t[3 * i + j]);
}

Real normOf(const WideTensor& t) {
    Real sum = 0;
    for (const double v : t) {
        sum += static_cast<Real>(v) * static_cast<Real>(v);
    }
    return std::sqrt(sum);
}

// The middle eigenvalue of S^2 + W^2, by Jacobi's rotations.
Real lambda2ByRotations(const WideTensor& t) {
    Real m[3][3];
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            m[i][j] = 0;
            for (std::size_t k = 0; k < 3; ++k) {
                m[i][j] += (at(t, i, k) * at(t, k, j) + at(t, j, k) * at(t, k, i)) / 2;
            }
        }
    }
    for (int sweep = 0; sweep < 20; ++sweep) {
        for (std::size_t p = 0; p < 2; ++p) {
            for (std::size_t q = p + 1; q < 3; ++q) {
                if (m[p][q] == 0) {
                    continue;
                }
                const Real theta = (m[q][q] - m[p][p]) / (2 * m[p][q]);
                const Real tangent =
                    std::copysign(1 / (std::fabs(theta) + std::sqrt(theta * theta + 1)), theta);
                const Real c = 1 / std::sqrt(tangent * tangent + 1), s = tangent * c;
                for (std::size_t k = 0; k < 3; ++k) {
                    const Real kp = m[k][p], kq = m[k][q];
                    m[k][p] = c * kp - s * kq;
                    m[k][q] = s * kp + c * kq;
                }
                for (std::size_t k = 0; k < 3; ++k) {
                    const Real pk = m[p][k], qk = m[q][k];
                    m[p][k] = c * pk - s * qk;
                    m[q][k] = s * pk + c * qk;
                }
            }
        }
    }
    std::array<Real, 3> values = {m[0][0], m[1][1], m[2][2]};
    std::sort(values.begin(), values.end());
    return values[1];
}

struct Pair {
    Real imaginary, real; // 0 where all eigenvalues are real
};

// The real eigenvalue by bisection of the characteristic polynomial from where it has one sign
// change; the pair out of the quadratic that is left.
Pair pairByBisection(const WideTensor& t) {
    const auto T = [&](std::size_t i, std::size_t j) { return at(t, i, j); };
    const Real a = -(T(0, 0) + T(1, 1) + T(2, 2));
    const Real b = T(0, 0) * T(1, 1) - T(0, 1) * T(1, 0) + T(0, 0) * T(2, 2) - T(0, 2) * T(2, 0) +
                   T(1, 1) * T(2, 2) - T(1, 2) * T(2, 1);
    const Real c = -(T(0, 0) * (T(1, 1) * T(2, 2) - T(1, 2) * T(2, 1)) -
                     T(0, 1) * (T(1, 0) * T(2, 2) - T(1, 2) * T(2, 0)) +
                     T(0, 2) * (T(1, 0) * T(2, 1) - T(1, 1) * T(2, 0)));
    const auto value = [&](Real x) { return ((x + a) * x + b) * x + c; };
    Real low = -3 * normOf(t), high = 3 * normOf(t);
    for (int i = 0; i < 200; ++i) {
        const Real middle = (low + high) / 2;
        (value(middle) < 0 ? low : high) = middle;
    }
    const Real root = (low + high) / 2;
    // What is left: x^2 + (a + root) x + (b + (a + root) root).
    const Real half = (a + root) / 2;
    const Real square = b + (a + root) * root - half * half;
    return {square > 0 ? std::sqrt(square) : 0, root};
}

// -- Inputs ----

WideTensor normalTensor(std::mt19937_64& random, double scale = 1.0) {
    std::normal_distribution<double> normal(0.0, scale);
    WideTensor t;
    for (double& v : t) {
        v = normal(random);
    }
    return t;
}

std::vector<WideTensor> generalTensors(std::size_t n) {
    std::mt19937_64 random(31);
    std::vector<WideTensor> tensors;
    for (std::size_t k = 0; k < n; ++k) {
        tensors.push_back(normalTensor(random));
        if (k % 2 == 0) {
            tensors.back()[8] = -tensors.back()[0] - tensors.back()[4];
        }
    }
    return tensors;
}

// Flow in a plane, in any of the three, and next to it: S^2 + W^2 has a double eigenvalue.
std::vector<WideTensor> planeTensors(std::size_t n) {
    std::mt19937_64 random(32);
    std::vector<WideTensor> tensors;
    for (std::size_t k = 0; k < n; ++k) {
        WideTensor t = {};
        const WideTensor numbers = normalTensor(random);
        const std::size_t i = k % 3, j = (k + 1) % 3;
        t[3 * i + i] = numbers[0];
        t[3 * j + j] = -numbers[0];
        t[3 * i + j] = numbers[1];
        t[3 * j + i] = numbers[2];
        const double beside = k % 2 == 0 ? 0.0 : std::ldexp(1.0, -static_cast<int>(random() % 60));
        const WideTensor others = normalTensor(random, 1.0);
        for (std::size_t e = 0; e < 9; ++e) {
            t[e] += beside * others[e];
        }
        tensors.push_back(t);
    }
    return tensors;
}

// Few different elements: ties, zeros and repeated eigenvalues.
std::vector<WideTensor> wholeTensors(std::size_t n) {
    std::mt19937_64 random(33);
    std::vector<WideTensor> tensors;
    for (std::size_t k = 0; k < n; ++k) {
        WideTensor t;
        for (double& v : t) {
            v = static_cast<double>(random() % 5) - 2.0;
        }
        tensors.push_back(t);
    }
    return tensors;
}

std::vector<WideTensor> allTensors() {
    std::vector<WideTensor> all;
    for (const auto& tensors : {generalTensors(20000), planeTensors(20000), wholeTensors(20000)}) {
        all.insert(all.end(), tensors.begin(), tensors.end());
    }
    return all;
}

// The largest |actual - expected| / |T|^power.
template <typename Expected>
double largestError(const std::vector<WideTensor>& tensors, const std::vector<double>& actual,
                    int power, const Expected& expected) {
    Real largest = 0;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const Real norm = normOf(tensors[k]);
        if (norm > 0) {
            const Real error = std::fabs(static_cast<Real>(actual[k]) - expected(tensors[k]));
            largest = std::max(largest, error / std::pow(norm, static_cast<Real>(power)));
            EXPECT_FALSE(std::isnan(actual[k]));
        }
    }
    return static_cast<double>(largest);
}

// -- Errors ----

TEST(DoubleGradients, Lambda2HasFullPrecisionWhereverTheEigenvaluesLie) {
    const std::vector<WideTensor> tensors = allTensors();
    const AllFields<double> fields = analyzed(tensors);
    const double error = largestError(tensors, fields.numbers[kLambda2], 2, lambda2ByRotations);
    RecordProperty("error", std::to_string(error * 1e16));
    EXPECT_LT(error, 2e-15);
}

TEST(DoubleGradients, TheSwirlStrengthHasFullPrecisionWherePairsAreApart) {
    const std::vector<WideTensor> tensors = generalTensors(40000);
    const AllFields<double> fields = analyzed(tensors);
    std::vector<WideTensor> apart;
    std::vector<double> strength, eigenvalue;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const Real norm = normOf(tensors[k]);
        if (pairByBisection(tensors[k]).imaginary > norm / 10) {
            apart.push_back(tensors[k]);
            strength.push_back(fields.numbers[kSwirl][k]);
            eigenvalue.push_back(fields.numbers[kEigenvalue][k]);
        }
    }
    ASSERT_GT(apart.size(), 10000U);
    EXPECT_LT(largestError(apart, strength, 1,
                           [](const WideTensor& t) { return pairByBisection(t).imaginary; }),
              2e-14);
    EXPECT_LT(largestError(apart, eigenvalue, 1,
                           [](const WideTensor& t) { return pairByBisection(t).real; }),
              2e-14);
}

// Eigenvalues that nearly coincide move by the root of what moves the elements.
TEST(DoubleGradients, TheSwirlStrengthHasHalfPrecisionAtWorst) {
    for (const auto& tensors : {generalTensors(20000), planeTensors(20000)}) {
        const AllFields<double> fields = analyzed(tensors);
        EXPECT_LT(largestError(tensors, fields.numbers[kSwirl], 1,
                               [](const WideTensor& t) { return pairByBisection(t).imaginary; }),
                  1e-7);
    }
}

TEST(DoubleGradients, TheOtherFieldsHaveFullPrecision) {
    const std::vector<WideTensor> tensors = allTensors();
    const AllFields<double> fields = analyzed(tensors);
    const auto error = [&](std::size_t field, int power, const auto& expected) {
        return largestError(tensors, fields.numbers[field], power, expected);
    };
    EXPECT_LT(error(kDivergence, 1,
                    [](const auto& t) { return at(t, 0, 0) + at(t, 1, 1) + at(t, 2, 2); }),
              5e-16);
    const auto squareTrace = [](const WideTensor& t) {
        Real sum = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                sum += at(t, i, j) * at(t, j, i);
            }
        }
        return sum;
    };
    EXPECT_LT(error(kQCriterion, 2, [&](const auto& t) { return -squareTrace(t) / 2; }), 5e-16);
    EXPECT_LT(error(kQ, 2,
                    [&](const auto& t) {
                        const Real trace = at(t, 0, 0) + at(t, 1, 1) + at(t, 2, 2);
                        return (trace * trace - squareTrace(t)) / 2;
                    }),
              1e-15);
    EXPECT_LT(error(kSpin, 1,
                    [](const auto& t) {
                        const Real x = at(t, 2, 1) - at(t, 1, 2), y = at(t, 0, 2) - at(t, 2, 0),
                                   z = at(t, 1, 0) - at(t, 0, 1);
                        return std::sqrt(x * x + y * y + z * z);
                    }),
              1e-15);
    EXPECT_LT(error(kStrain, 1,
                    [](const auto& t) {
                        Real sum = 0;
                        for (std::size_t i = 0; i < 3; ++i) {
                            for (std::size_t j = 0; j < 3; ++j) {
                                const Real s = (at(t, i, j) + at(t, j, i)) / 2;
                                sum += 2 * s * s;
                            }
                        }
                        return std::sqrt(sum);
                    }),
              1e-15);
}

TEST(DoubleGradients, VectorsAreTheEigenvectorAndTheNormalOfTheSwirlPlane) {
    const std::vector<WideTensor> tensors = generalTensors(5000);
    const AllFields<double> fields = analyzed(tensors);
    std::size_t swirling = 0;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const double swirl = fields.numbers[kSwirl][k];
        if (!(swirl > 0.1)) {
            continue;
        }
        ++swirling;
        const auto e = fields.triples[1][k] / swirl;
        const auto n = fields.triples[2][k] / swirl;
        const auto times = [&](const qel::TripletBase<double>& v) {
            const WideTensor& t = tensors[k];
            return qel::TripletBase<double>(t[0] * v.x + t[1] * v.y + t[2] * v.z,
                                            t[3] * v.x + t[4] * v.y + t[5] * v.z,
                                            t[6] * v.x + t[7] * v.y + t[8] * v.z);
        };
        const auto residual = times(e) - e * fields.numbers[kEigenvalue][k];
        EXPECT_LT(std::sqrt(residual.dot(residual)), 1e-10);
        EXPECT_NEAR(e.dot(e), 1.0, 1e-14);
        EXPECT_NEAR(n.dot(n), 1.0, 1e-14);
        // The plane across n is kept by T: n is an eigenvector of its transpose.
        const WideTensor& t = tensors[k];
        const qel::TripletBase<double> left(t[0] * n.x + t[3] * n.y + t[6] * n.z,
                                            t[1] * n.x + t[4] * n.y + t[7] * n.z,
                                            t[2] * n.x + t[5] * n.y + t[8] * n.z);
        const auto across = left - n * fields.numbers[kEigenvalue][k];
        EXPECT_LT(std::sqrt(across.dot(across)), 1e-10);
        EXPECT_NEAR(fields.numbers[kStretch][k], e.dot(n) * swirl, 1e-12);
    }
    EXPECT_GT(swirling, 1000U);
}

// -- Bits and special values ----

TEST(DoubleGradients, EveryUnitGivesTheSameBits) {
    std::vector<WideTensor> tensors = allTensors();
    tensors.push_back({std::nan(""), 1, 2, 3, 4, 5, 6, 7, 8});
    tensors.push_back({HUGE_VAL, 1, 2, 3, -HUGE_VAL, 5, 6, 7, 8});
    qel::forceVectorUnit(qel::VectorUnit::portable);
    const AllFields<double> portable = analyzed(tensors);
    onEveryVectorUnit([&] { expectSameFields(analyzed(tensors), portable); });
}

TEST(DoubleGradients, TinyAndHugeGradientsAreAnalysedAsOrdinaryOnes) {
    const int powers[] = {2, 2, 1, 6, 2, 1, 1, 1, 1, 1, 1, 1};
    const std::vector<WideTensor> tensors = generalTensors(300);
    const AllFields<double> ordinary = analyzed(tensors);
    for (const int exponent : {-900, -300, -40, 37, 150, 500, 1000}) {
        std::vector<WideTensor> moved = tensors;
        for (WideTensor& t : moved) {
            for (double& v : t) {
                v = std::ldexp(v, exponent);
            }
        }
        const AllFields<double> fields = analyzed(moved);
        for (std::size_t i = 0; i < std::size(powers); ++i) {
            for (std::size_t k = 0; k < tensors.size(); ++k) {
                const double expected = std::ldexp(ordinary.numbers[i][k], exponent * powers[i]);
                if (expected == 0.0 || std::fabs(expected) > 1e-300) {
                    ASSERT_TRUE(sameBits(fields.numbers[i][k], expected))
                        << "scalar " << i << " at " << k << " times 2^" << exponent;
                }
            }
        }
    }
}

TEST(DoubleGradients, SimpleFlowsHaveTheirKnownValues) {
    const AllFields<double> fields = analyzed({
        {0, -1, 0, 1, 0, 0, 0, 0, 0}, // rotation
        {1, 0, 0, 0, -1, 0, 0, 0, 0}, // strain
        {1, 0, 0, 0, 1, 0, 0, 0, 1},  // expansion
        {0, 2, 0, 0, 0, 0, 0, 0, 0},  // shear
        {0, 0, 0, 0, 0, 0, 0, 0, 0},
    });
    EXPECT_EQ(fields.numbers[kQ], (std::vector<double>{1, -1, 3, 0, 0}));
    EXPECT_EQ(fields.numbers[kQCriterion], (std::vector<double>{1, -1, -1.5, 0, 0}));
    EXPECT_EQ(fields.numbers[kDivergence], (std::vector<double>{0, 0, 3, 0, 0}));
    const double lambda2[] = {-1, 1, 1, 0, 0}, swirl[] = {1, 0, 0, 0, 0}, spin[] = {2, 0, 0, 2, 0},
                 strain[] = {0, 2, std::sqrt(6.0), 2, 0};
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_NEAR(fields.numbers[kLambda2][k], lambda2[k], 1e-15);
        EXPECT_NEAR(fields.numbers[kSwirl][k], swirl[k], 1e-15);
        EXPECT_NEAR(fields.numbers[kSpin][k], spin[k], 1e-15);
        EXPECT_NEAR(fields.numbers[kStrain][k], strain[k], 1e-15);
    }
    EXPECT_GT(fields.numbers[kDiscriminant][0], 0.0);
    EXPECT_LT(fields.numbers[kDiscriminant][1], 0.0);
    EXPECT_EQ(fields.triples[0][0], qel::TripletBase<double>(0, 0, 2));
}

TEST(DoubleGradients, WhatIsNoNumberStaysNone) {
    const double nan = std::nan(""), inf = HUGE_VAL;
    const AllFields<double> fields =
        analyzed({{nan, 1, 2, 3, 4, 5, 6, 7, 8}, {1, inf, 2, 3, 4, 5, 6, 7, 8}});
    for (const std::size_t field : {kDiscriminant, kLambda2}) {
        EXPECT_TRUE(std::isnan(fields.numbers[field][0]));
        EXPECT_TRUE(std::isnan(fields.numbers[field][1]));
    }
    EXPECT_EQ(fields.numbers[kSwirl], (std::vector<double>{0, 0})) << "as for floats";
}

} // namespace
