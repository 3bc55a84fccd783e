// Eigen: strided maps for what is linear in the points, Matrix3d per point for the rest.

#include <memory>
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

#include "tensor/TensorField.h"

namespace qel_benchmark {
namespace {

using Strided = Eigen::Map<const Eigen::ArrayXf, 0, Eigen::InnerStride<3>>;
using StridedOutput = Eigen::Map<Eigen::ArrayXf, 0, Eigen::InnerStride<3>>;
using Output = std::shared_ptr<std::vector<float>>;

Strided component(const float* row, std::size_t n, int i) {
    return Strided(row + i, static_cast<Eigen::Index>(n));
}

Eigen::Matrix3d matrixAt(const TensorField& f, std::size_t k) {
    Eigen::Matrix3d t;
    for (int j = 0; j < 3; ++j) {
        const std::size_t at = 3 * k + static_cast<std::size_t>(j);
        t(0, j) = static_cast<double>(f.row1[at]);
        t(1, j) = static_cast<double>(f.row2[at]);
        t(2, j) = static_cast<double>(f.row3[at]);
    }
    return t;
}

template <typename Pass>
int addEigen(const char* work, std::size_t floatsPerPoint, Pass pass) {
    return add(work, "eigen", [floatsPerPoint, pass](const TensorField& f) {
        auto out = std::make_shared<std::vector<float>>(f.n * floatsPerPoint);
        return [f, out, pass] { pass(f, out->data()); };
    });
}

// out[k] = function(T at k).
template <typename Function>
int addPerPoint(const char* work, Function function) {
    return addEigen(work, 1, [function](const TensorField& f, float* out) {
        for (std::size_t k = 0; k < f.n; ++k) {
            out[k] = static_cast<float>(function(matrixAt(f, k)));
        }
    });
}

double discriminantOf(const Eigen::Matrix3d& t) {
    const double a = -t.trace();
    const double b = 0.5 * (a * a - (t * t).trace());
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

void realEigenvector(const TensorField& f, float* out) {
    for (std::size_t k = 0; k < f.n; ++k) {
        Eigen::Map<Eigen::Vector3f>(out + 3 * k) = realEigenvectorOf(matrixAt(f, k)).cast<float>();
    }
}

void invariantQ(const TensorField& f, float* out) {
    const auto t = [&](const float* row, int i) { return component(row, f.n, i); };
    Eigen::Map<Eigen::ArrayXf>(out, static_cast<Eigen::Index>(f.n)) =
        (t(f.row3, 2) + t(f.row2, 1)) * t(f.row1, 0) - t(f.row2, 0) * t(f.row1, 1) -
        t(f.row3, 0) * t(f.row1, 2) - t(f.row3, 1) * t(f.row2, 2) + t(f.row3, 2) * t(f.row2, 1);
}

void divergence(const TensorField& f, float* out) {
    Eigen::Map<Eigen::ArrayXf>(out, static_cast<Eigen::Index>(f.n)) =
        component(f.row2, f.n, 1) + component(f.row1, f.n, 0) + component(f.row3, f.n, 2);
}

void vorticity(const TensorField& f, float* out) {
    const auto n = static_cast<Eigen::Index>(f.n);
    StridedOutput(out, n) = component(f.row3, f.n, 1) - component(f.row2, f.n, 2);
    StridedOutput(out + 1, n) = component(f.row1, f.n, 2) - component(f.row3, f.n, 0);
    StridedOutput(out + 2, n) = component(f.row2, f.n, 0) - component(f.row1, f.n, 1);
}

void helicity(const TensorField& f, float* out) {
    const auto t = [&](const float* row, int i) { return component(row, f.n, i); };
    Eigen::Map<Eigen::ArrayXf>(out, static_cast<Eigen::Index>(f.n)) =
        (t(f.row1, 2) - t(f.row3, 0)) * t(f.velocity, 1) +
        (t(f.row3, 1) - t(f.row2, 2)) * t(f.velocity, 0) +
        (t(f.row2, 0) - t(f.row1, 1)) * t(f.velocity, 2);
}

const bool registered = [] {
    addEigen("q", 1, invariantQ);
    addEigen("divergence", 1, divergence);
    addEigen("vorticity", 3, vorticity);
    addEigen("helicity", 1, helicity);
    addEigen("eigenvector", 3, realEigenvector);
    addPerPoint("discriminant", discriminantOf);
    addPerPoint("lambda2", lambda2Of);
    addPerPoint("swirl", swirlOf);
    return true;
}();

} // namespace
} // namespace qel_benchmark
