// GSL: the roots of the characteristic cubic, imaginary part and real root stored.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gsl/gsl_complex.h>
#include <gsl/gsl_eigen.h>
#include <gsl/gsl_matrix.h>
#include <gsl/gsl_poly.h>

#include "tensor/GradientInput.h"

namespace qel_benchmark {
namespace {

// at(k, i, j) is component j of row i at point k.
template <typename At, typename T>
void swirl(std::size_t n, const At& at, T* strength, T* eigenvalue) {
    for (std::size_t k = 0; k < n; ++k) {
        const double t11 = at(k, 0, 0), t12 = at(k, 0, 1), t13 = at(k, 0, 2);
        const double t21 = at(k, 1, 0), t22 = at(k, 1, 1), t23 = at(k, 1, 2);
        const double t31 = at(k, 2, 0), t32 = at(k, 2, 1), t33 = at(k, 2, 2);
        const double minor = t32 * t23 - t33 * t22;
        const double a = -t11 - t22 - t33;
        const double b = (t33 + t22) * t11 - t21 * t12 - t31 * t13 - minor;
        const double c =
            t11 * minor + t12 * (t33 * t21 - t31 * t23) + t13 * (t31 * t22 - t32 * t21);
        gsl_complex z[3];
        gsl_poly_complex_solve_cubic(a, b, c, &z[0], &z[1], &z[2]);
        // In ascending order of the real parts; the pair side by side, negative imaginary first.
        const bool pairFirst = GSL_IMAG(z[0]) != 0.0;
        strength[k] = static_cast<T>(GSL_IMAG(z[pairFirst ? 1 : 2]));
        eigenvalue[k] = static_cast<T>(GSL_REAL(z[pairFirst ? 2 : 0]));
    }
}

// The middle one of the eigenvalues of (T T + (T T)^t) / 2.
void lambda2(const DoubleGradients& in, double* out) {
    const std::unique_ptr<gsl_eigen_symm_workspace, decltype(&gsl_eigen_symm_free)> workspace(
        gsl_eigen_symm_alloc(3), gsl_eigen_symm_free);
    for (std::size_t k = 0; k < in.n; ++k) {
        const double* t = in.nine + 9 * k;
        double m[9], values[3];
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                m[3 * i + j] = 0.0;
                for (std::size_t l = 0; l < 3; ++l) {
                    m[3 * i + j] +=
                        0.5 * (t[3 * i + l] * t[3 * l + j] + t[3 * j + l] * t[3 * l + i]);
                }
            }
        }
        gsl_matrix_view matrix = gsl_matrix_view_array(m, 3, 3);
        gsl_vector_view vector = gsl_vector_view_array(values, 3);
        gsl_eigen_symm(&matrix.matrix, &vector.vector, workspace.get());
        std::sort(values, values + 3);
        out[k] = values[1];
    }
}

} // namespace

void addGsl(Row& row, const char* work, const GradientInput& in) {
    if (std::string(work) == "swirl") {
        const auto out = std::make_shared<std::vector<float>>(2 * in.n);
        row.add("GSL", [out, &in] {
            const auto at = [&in](std::size_t k, int i, int j) { return in.t(k, i, j); };
            swirl(in.n, at, out->data(), out->data() + in.n);
        });
    }
}

void addGslOfDoubles(Row& row, const char* work, const DoubleGradients& in) {
    const auto out = std::make_shared<std::vector<double>>(2 * in.n);
    if (std::string(work) == "lambda2") {
        row.add("GSL", [out, in] { lambda2(in, out->data()); });
    } else {
        row.add("GSL", [out, in] {
            const auto at = [&in](std::size_t k, int i, int j) {
                return in.nine[9 * k + static_cast<std::size_t>(3 * i + j)];
            };
            swirl(in.n, at, out->data(), out->data() + in.n);
        });
    }
}

} // namespace qel_benchmark
