// Eigen: strided maps for what is linear in the points, a Matrix3d for each point for the rest.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#endif
#include <Eigen/Dense>
#include <Eigen/Eigenvalues>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#include "tensor/GradientInput.h"

namespace qel_benchmark {
namespace {

using Strided = Eigen::Map<const Eigen::ArrayXf, 0, Eigen::InnerStride<3>>;
using StridedOutput = Eigen::Map<Eigen::ArrayXf, 0, Eigen::InnerStride<3>>;
using Output = Eigen::Map<Eigen::ArrayXf>;

Strided component(const GradientInput& in, int row, int i) {
    return Strided(in.at(row) + i, static_cast<Eigen::Index>(in.n));
}

using Rows = Eigen::Map<const Eigen::Vector3f>;

Eigen::Matrix3d matrixAt(const GradientInput& in, std::size_t k) {
    Eigen::Matrix3d t;
    for (int i = 0; i < 3; ++i) {
        t.row(i) = Rows(in.at(i) + 3 * k).cast<double>();
    }
    return t;
}

// out[k] = function(T at k).
template <typename Function>
void perPoint(const GradientInput& in, float* out, const Function& function) {
    for (std::size_t k = 0; k < in.n; ++k) {
        out[k] = static_cast<float>(function(matrixAt(in, k)));
    }
}

double discriminantOf(const Eigen::Matrix3d& t) {
    const double a = -t.trace();
    const double b = 0.5 * (a * a - t.cwiseProduct(t.transpose()).sum());
    const double c = -t.determinant();
    const double p = b - a * a / 3.0;
    const double h = 0.5 * (c + (a * a / 13.5 - b / 3.0) * a);
    return p * p * p / 27.0 + h * h;
}

double lambda2Of(const Eigen::Matrix3d& t) {
    const Eigen::Matrix3d squared = t * t;
    const Eigen::Matrix3d m = 0.5 * (squared + squared.transpose());
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
    solver.computeDirect(m, Eigen::EigenvaluesOnly);
    return solver.eigenvalues()[1];
}

double swirlOf(const Eigen::Matrix3d& t) {
    const Eigen::EigenSolver<Eigen::Matrix3d> solver(t, false);
    return solver.eigenvalues().imag().maxCoeff();
}

// The eigenvector of the real eigenvalue where the others are complex, else zero.
Eigen::Vector3d realEigenvectorOf(const Eigen::Matrix3d& t) {
    const Eigen::EigenSolver<Eigen::Matrix3d> solver(t);
    for (int i = 0; i < 3; ++i) {
        if (solver.eigenvalues()[i].imag() == 0.0 &&
            solver.eigenvalues()[(i + 1) % 3].imag() != 0.0) {
            return solver.eigenvectors().col(i).real();
        }
    }
    return Eigen::Vector3d::Zero();
}

void realEigenvector(const GradientInput& in, float* out) {
    for (std::size_t k = 0; k < in.n; ++k) {
        Eigen::Map<Eigen::Vector3f>(out + 3 * k) = realEigenvectorOf(matrixAt(in, k)).cast<float>();
    }
}

void invariantQ(const GradientInput& in, float* out) {
    const auto t = [&](int row, int i) { return component(in, row, i); };
    Output(out, static_cast<Eigen::Index>(in.n)) = (t(2, 2) + t(1, 1)) * t(0, 0) -
                                                   t(1, 0) * t(0, 1) - t(2, 0) * t(0, 2) -
                                                   t(2, 1) * t(1, 2) + t(2, 2) * t(1, 1);
}

void divergence(const GradientInput& in, float* out) {
    Output(out, static_cast<Eigen::Index>(in.n)) =
        component(in, 1, 1) + component(in, 0, 0) + component(in, 2, 2);
}

void vorticity(const GradientInput& in, float* out) {
    const auto n = static_cast<Eigen::Index>(in.n);
    StridedOutput(out, n) = component(in, 2, 1) - component(in, 1, 2);
    StridedOutput(out + 1, n) = component(in, 0, 2) - component(in, 2, 0);
    StridedOutput(out + 2, n) = component(in, 1, 0) - component(in, 0, 1);
}

void helicity(const GradientInput& in, float* out) {
    const auto t = [&](int row, int i) { return component(in, row, i); };
    const auto u = [&](int i) { return Strided(&in.u->x + i, static_cast<Eigen::Index>(in.n)); };
    Output(out, static_cast<Eigen::Index>(in.n)) =
        (t(0, 2) - t(2, 0)) * u(1) + (t(2, 1) - t(1, 2)) * u(0) + (t(1, 0) - t(0, 1)) * u(2);
}

using Pass = void (*)(const GradientInput& in, float* out);

struct Work {
    const char* name;
    Pass pass;
    std::size_t floatsAtAPoint;
};

const Work kWorks[] = {
    {"q", invariantQ, 1},
    {"divergence", divergence, 1},
    {"vorticity", vorticity, 3},
    {"helicity", helicity, 1},
    {"eigenvector", realEigenvector, 3},
    {"discriminant", [](const GradientInput& in, float* out) { perPoint(in, out, discriminantOf); },
     1},
    {"lambda2", [](const GradientInput& in, float* out) { perPoint(in, out, lambda2Of); }, 1},
    {"swirl", [](const GradientInput& in, float* out) { perPoint(in, out, swirlOf); }, 1},
};

// The iterative solvers do not end on what is not finite, or say so after many steps.
bool isIterative(const Work& work) {
    return work.pass == realEigenvector || std::string(work.name) == "swirl";
}

// out[k] = function(T at k).
template <typename Function>
void perPoint(const DoubleGradients& in, double* out, const Function& function) {
    for (std::size_t k = 0; k < in.n; ++k) {
        const Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>> t(in.nine + 9 * k);
        out[k] = function(Eigen::Matrix3d(t));
    }
}

} // namespace

void addEigenOfDoubles(Row& row, const char* work, const DoubleGradients& in) {
    const auto out = std::make_shared<std::vector<double>>(in.n);
    if (std::string(work) == "lambda2") {
        row.add("Eigen", [out, in] { perPoint(in, out->data(), lambda2Of); });
    } else if (in.isFinite) {
        row.add("Eigen", [out, in] { perPoint(in, out->data(), swirlOf); });
    }
}

void addEigen(Row& row, const char* name, const GradientInput& in) {
    for (const Work& work : kWorks) {
        if (std::string(work.name) == name && (in.isFinite() || !isIterative(work))) {
            const auto out = std::make_shared<std::vector<float>>(in.n * work.floatsAtAPoint);
            row.add("Eigen", [out, &in, pass = work.pass] { pass(in, out->data()); });
        }
    }
}

} // namespace qel_benchmark
