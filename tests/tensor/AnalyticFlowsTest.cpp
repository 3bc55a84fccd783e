// Flows whose vortex quantities are known in closed form, and eigenvalues by another method.
//
// Bounds are in units of the float rounding of the gradient, times what the quantity amplifies it
// by; kTolerance is 1e-5 of the natural scale of each quantity, unless stated at the place.

#include <algorithm>
#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "tensor/Fields.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;

constexpr double kTolerance = 1e-5;
const double kScales[] = {1e-6, 1e-3, 1.0, 1e3, 1e6};

// Everything at one point.
struct Point {
    double q, divergence, discriminant, lambda2, swirl, eigenvalue, stretch;
    Triplet vorticity, vector, normal;
};

Point analysed(const std::array<double, 9>& gradient) {
    Tensor t;
    std::transform(gradient.begin(), gradient.end(), t.begin(),
                   [](double v) { return static_cast<float>(v); });
    const Field field({t});
    const qel::TensorEigenizer e = field.eigenizer();
    const auto one = [&](auto operation) {
        FloatQELVectorConcrete out;
        (e.*operation)(out);
        return static_cast<double>(out[0]);
    };
    Point p;
    p.q = one(&qel::TensorEigenizer::getInvariantQ);
    p.divergence = one(&qel::TensorEigenizer::getDivergence);
    p.discriminant = one(&qel::TensorEigenizer::getDiscrim);
    p.lambda2 = one(&qel::TensorEigenizer::get2ndEValSymmTT);
    FloatQELVectorConcrete swirl, eigenvalue, stretch;
    TripletQELVector triplets;
    e.getSwirlStrength(swirl, eigenvalue);
    p.swirl = static_cast<double>(swirl[0]);
    p.eigenvalue = static_cast<double>(eigenvalue[0]);
    e.getSwirlStretchRate(swirl, eigenvalue, stretch);
    p.stretch = static_cast<double>(stretch[0]);
    e.getVorticity(triplets);
    p.vorticity = triplets[0];
    e.getEVecReal(swirl, eigenvalue, triplets);
    p.vector = triplets[0];
    e.getSwirlNormal(swirl, eigenvalue, triplets);
    p.normal = triplets[0];
    return p;
}

// -- Rigid rotation about any axis ----

TEST(AnalyticFlows, RigidRotationAboutAnyAxis) {
    std::mt19937 random(81);
    std::normal_distribution<double> normal(0.0, 1.0);
    for (const double scale : kScales) {
        for (int round = 0; round < 50; ++round) {
            double w[3] = {normal(random), normal(random), normal(random)};
            const double length = std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2]);
            for (double& c : w) {
                c *= scale / length;
            }
            const Point p = analysed({0, -w[2], w[1], w[2], 0, -w[0], -w[1], w[0], 0});
            EXPECT_NEAR(p.q, scale * scale, kTolerance * scale * scale);
            EXPECT_EQ(p.divergence, 0.0);
            EXPECT_NEAR(p.lambda2, -scale * scale, kTolerance * scale * scale);
            EXPECT_NEAR(p.swirl, scale, kTolerance * scale);
            EXPECT_NEAR(p.eigenvalue, 0.0, kTolerance * scale);
            const double axis[] = {static_cast<double>(p.vector.x), static_cast<double>(p.vector.y),
                                   static_cast<double>(p.vector.z)};
            for (int i = 0; i < 3; ++i) {
                EXPECT_NEAR(axis[i], w[i], kTolerance * scale);
            }
            EXPECT_NEAR(p.stretch, scale, kTolerance * scale);
        }
    }
}

// -- Strain and shear ----

TEST(AnalyticFlows, PureStrain) {
    for (const double s : kScales) {
        const Point p = analysed({s, 0, 0, 0, -s, 0, 0, 0, 0});
        EXPECT_NEAR(p.q, -s * s, kTolerance * s * s);
        EXPECT_LT(p.discriminant, 0.0);
        EXPECT_NEAR(p.lambda2, s * s, kTolerance * s * s);
        EXPECT_EQ(p.swirl, 0.0);
        EXPECT_EQ(p.vorticity, Triplet(0, 0, 0));
    }
}

TEST(AnalyticFlows, SimpleShear) {
    for (const double s : kScales) {
        const Point p = analysed({0, s, 0, 0, 0, 0, 0, 0, 0});
        EXPECT_EQ(p.q, 0.0);
        EXPECT_EQ(p.lambda2, 0.0);
        EXPECT_EQ(p.swirl, 0.0);
        EXPECT_EQ(p.discriminant, 0.0);
        EXPECT_NEAR(static_cast<double>(p.vorticity.z), -s, kTolerance * s);
    }
}

// -- Vortices about z ----

// u_theta = f(r), u_z = 2 a z, u_r = -a r: the gradient at radius r on the x axis.
std::array<double, 9> axisymmetric(double f, double slope, double r, double a) {
    return {-a, -f / r, 0, slope, -a, 0, 0, 0, 2 * a};
}

// Decaying vortex of unit circulation/(2 pi): f = (1 - exp(-r^2))/r. Burgers' has a != 0.
void checkVortex(double strain) {
    for (const double scale : kScales) {
        for (const double r : {0.1, 0.3, 0.6, 0.9, 1.3, 2.0, 3.0}) {
            const double decay = std::exp(-r * r);
            const double turn = (1 - decay) / (r * r); // f/r
            const double slope = 2 * decay - turn;     // df/dr
            const double a = strain * scale;
            const Point p = analysed(axisymmetric(scale * turn * r, scale * slope, r, a));
            SCOPED_TRACE(::testing::Message() << "radius " << r << " scale " << scale);
            EXPECT_NEAR(static_cast<double>(p.vorticity.z), scale * 2 * decay, kTolerance * scale);
            // Eigenvalues -a +- sqrt(-turn slope) and 2a.
            const double q = turn * slope * scale * scale - 3 * a * a;
            EXPECT_NEAR(p.q, q, kTolerance * scale * scale);
            EXPECT_NEAR(p.divergence, 0.0, kTolerance * scale);
            if (slope > 0.0) {
                const double swirl = std::sqrt(turn * slope) * scale;
                EXPECT_NEAR(p.swirl, swirl, kTolerance * scale);
                EXPECT_NEAR(p.eigenvalue, 2 * a, kTolerance * scale);
                EXPECT_NEAR(static_cast<double>(p.vector.z), swirl, kTolerance * scale);
                EXPECT_NEAR(static_cast<double>(p.normal.z), swirl, kTolerance * scale);
                EXPECT_NEAR(p.stretch, swirl, kTolerance * scale);
            } else {
                EXPECT_EQ(p.swirl, 0.0);
            }
        }
    }
}

TEST(AnalyticFlows, LambOseenVortex) {
    checkVortex(0.0);
}

TEST(AnalyticFlows, BurgersVortex) {
    checkVortex(0.05);
}

TEST(AnalyticFlows, LambOseenLambda2IsMinusTheProductOfTurnAndSlope) {
    // In one plane M = -turn slope (1 on the plane, 0 across): the middle value repeats.
    for (const double r : {0.2, 0.7, 1.0, 1.5}) {
        const double decay = std::exp(-r * r);
        const double turn = (1 - decay) / (r * r);
        const double slope = 2 * decay - turn;
        EXPECT_NEAR(analysed(axisymmetric(turn * r, slope, r, 0)).lambda2, -turn * slope,
                    kTolerance);
    }
}

// -- Any tensor, against other methods ----

using Matrix = std::array<std::array<long double, 3>, 3>;

// Eigenvalues of a symmetric matrix by Jacobi's rotations, ascending.
std::array<long double, 3> eigenvaluesByRotations(Matrix m) {
    for (int sweep = 0; sweep < 30; ++sweep) {
        for (std::size_t p = 0; p < 2; ++p) {
            for (std::size_t q = p + 1; q < 3; ++q) {
                if (m[p][q] == 0.0L) {
                    continue;
                }
                const long double angle = 0.5L * std::atan2(2 * m[p][q], m[q][q] - m[p][p]);
                const long double c = std::cos(angle);
                const long double s = std::sin(angle);
                for (std::size_t i = 0; i < 3; ++i) {
                    const long double ip = m[i][p];
                    const long double iq = m[i][q];
                    m[i][p] = c * ip - s * iq;
                    m[i][q] = s * ip + c * iq;
                }
                for (std::size_t i = 0; i < 3; ++i) {
                    const long double pi = m[p][i];
                    const long double qi = m[q][i];
                    m[p][i] = c * pi - s * qi;
                    m[q][i] = s * pi + c * qi;
                }
            }
        }
    }
    std::array<long double, 3> values = {m[0][0], m[1][1], m[2][2]};
    std::sort(values.begin(), values.end());
    return values;
}

Matrix matrixOf(const std::array<double, 9>& t) {
    Matrix m;
    for (std::size_t i = 0; i < 9; ++i) {
        m[i / 3][i % 3] = static_cast<long double>(static_cast<float>(t[i]));
    }
    return m;
}

double lambda2ByRotations(const std::array<double, 9>& t) {
    const Matrix m = matrixOf(t);
    Matrix squared;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            long double sum = 0;
            for (std::size_t l = 0; l < 3; ++l) {
                sum += m[i][l] * m[l][j] + m[j][l] * m[l][i];
            }
            squared[i][j] = sum / 2;
        }
    }
    return static_cast<double>(eigenvaluesByRotations(squared)[1]);
}

std::array<double, 9> randomTensor(std::mt19937& random, double scale) {
    std::normal_distribution<double> normal(0.0, scale);
    std::array<double, 9> t;
    for (double& v : t) {
        v = normal(random);
    }
    return t;
}

TEST(AnalyticFlows, Lambda2AgreesWithJacobiRotations) {
    std::mt19937 random(82);
    for (const double scale : kScales) {
        for (int round = 0; round < 300; ++round) {
            const std::array<double, 9> t = randomTensor(random, scale);
            // Near a double root the middle value moves with the root of the double rounding.
            EXPECT_NEAR(analysed(t).lambda2, lambda2ByRotations(t), 1e-6 * 10 * scale * scale);
        }
    }
}

// The real root of the characteristic polynomial by bisection; the pair then follows from trace
// and determinant.
TEST(AnalyticFlows, EigenvaluesAgreeWithBisection) {
    std::mt19937 random(83);
    int swirling = 0;
    for (const double scale : kScales) {
        for (int round = 0; round < 300; ++round) {
            const std::array<double, 9> t = randomTensor(random, scale);
            const Point p = analysed(t);
            if (p.swirl < 1e-2 * scale) {
                continue;
            }
            ++swirling;
            const Matrix m = matrixOf(t);
            const auto characteristic = [&](long double l) {
                const long double a = m[0][0] - l, b = m[1][1] - l, c = m[2][2] - l;
                return a * (b * c - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * c - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - b * m[2][0]);
            };
            long double low = -100.0L * static_cast<long double>(scale); // positive here
            long double high = -low;
            for (int i = 0; i < 200; ++i) {
                const long double middle = (low + high) / 2;
                (characteristic(middle) > 0 ? low : high) = middle;
            }
            EXPECT_NEAR(p.eigenvalue, static_cast<double>(low), kTolerance * scale);
            const long double real = (m[0][0] + m[1][1] + m[2][2] - low) / 2;
            const long double minors = m[0][0] * m[1][1] - m[0][1] * m[1][0] + m[0][0] * m[2][2] -
                                       m[0][2] * m[2][0] + m[1][1] * m[2][2] -
                                       m[1][2] * m[2][1]; // = |pair|^2 + 2 real l
            const long double imaginary2 = minors - 2 * real * low - real * real;
            EXPECT_NEAR(p.swirl, static_cast<double>(std::sqrt(imaginary2)), kTolerance * scale);
        }
    }
    EXPECT_GT(swirling, 500);
}

// The real eigenvector solves T e = l e; the normal is across the plane of the pair, that is along
// the eigenvector of the transpose.
TEST(AnalyticFlows, VectorsSolveTheirEquations) {
    std::mt19937 random(84);
    for (int round = 0; round < 500; ++round) {
        const std::array<double, 9> t = randomTensor(random, 1.0);
        const Point p = analysed(t);
        if (p.swirl < 0.1) {
            continue;
        }
        const double e[] = {static_cast<double>(p.vector.x) / p.swirl,
                            static_cast<double>(p.vector.y) / p.swirl,
                            static_cast<double>(p.vector.z) / p.swirl};
        const double n[] = {static_cast<double>(p.normal.x) / p.swirl,
                            static_cast<double>(p.normal.y) / p.swirl,
                            static_cast<double>(p.normal.z) / p.swirl};
        for (std::size_t i = 0; i < 3; ++i) {
            double right = 0, left = 0;
            for (std::size_t j = 0; j < 3; ++j) {
                right += t[3 * i + j] * e[j];
                left += n[j] * t[3 * j + i];
            }
            // Single precision, over the gap between real root and pair.
            EXPECT_NEAR(right, p.eigenvalue * e[i], 2e-4);
            EXPECT_NEAR(left, p.eigenvalue * n[i], 2e-4);
        }
    }
}

// u = (A sin z + C cos y, B sin x + A cos z, C sin y + B cos x): a Beltrami flow, whose vorticity
// is the velocity, so its helicity is the square of the speed.
TEST(AnalyticFlows, AbcFlowIsItsOwnVorticity) {
    const double A = 1.0, B = std::sqrt(2.0 / 3.0), C = std::sqrt(1.0 / 3.0);
    std::mt19937 random(85);
    std::uniform_real_distribution<double> angle(-3.14, 3.14);
    for (const double scale : kScales) {
        for (int round = 0; round < 100; ++round) {
            const double x = angle(random), y = angle(random), z = angle(random);
            std::array<double, 9> t = {0, -C * std::sin(y), A * std::cos(z),  B * std::cos(x),
                                       0, -A * std::sin(z), -B * std::sin(x), C * std::cos(y),
                                       0};
            for (double& v : t) {
                v *= scale;
            }
            const double u[] = {scale * (A * std::sin(z) + C * std::cos(y)),
                                scale * (B * std::sin(x) + A * std::cos(z)),
                                scale * (C * std::sin(y) + B * std::cos(x))};
            const Point p = analysed(t);
            EXPECT_EQ(p.divergence, 0.0);
            EXPECT_NEAR(static_cast<double>(p.vorticity.x), u[0], kTolerance * scale);
            EXPECT_NEAR(static_cast<double>(p.vorticity.y), u[1], kTolerance * scale);
            EXPECT_NEAR(static_cast<double>(p.vorticity.z), u[2], kTolerance * scale);
            EXPECT_NEAR(p.lambda2, lambda2ByRotations(t), 10 * kTolerance * scale * scale);

            Tensor narrow;
            std::transform(t.begin(), t.end(), narrow.begin(),
                           [](double v) { return static_cast<float>(v); });
            const Field field({narrow});
            TripletQELVector velocity(std::vector<Triplet>{
                {static_cast<float>(u[0]), static_cast<float>(u[1]), static_cast<float>(u[2])}});
            FloatQELVectorConcrete helicity;
            field.eigenizer().getHelicity(velocity, helicity);
            EXPECT_NEAR(static_cast<double>(helicity[0]), u[0] * u[0] + u[1] * u[1] + u[2] * u[2],
                        10 * kTolerance * scale * scale);
        }
    }
}

} // namespace
