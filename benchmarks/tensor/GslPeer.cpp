// GSL: the roots of the characteristic cubic, imaginary part and real root stored.

#include <algorithm>
#include <memory>
#include <vector>

#include <gsl/gsl_complex.h>
#include <gsl/gsl_poly.h>

#include "tensor/TensorField.h"

namespace qel_benchmark {
namespace {

void swirl(const TensorField& f, float* strength, float* eigenvalue) {
    for (std::size_t k = 0; k < f.n; ++k) {
        const auto t = [k](const float* row, std::size_t i) {
            return static_cast<double>(row[3 * k + i]);
        };
        const double t11 = t(f.row1, 0), t12 = t(f.row1, 1), t13 = t(f.row1, 2);
        const double t21 = t(f.row2, 0), t22 = t(f.row2, 1), t23 = t(f.row2, 2);
        const double t31 = t(f.row3, 0), t32 = t(f.row3, 1), t33 = t(f.row3, 2);
        const double minor = t32 * t23 - t33 * t22;
        const double a = -t11 - t22 - t33;
        const double b = (t33 + t22) * t11 - t21 * t12 - t31 * t13 - minor;
        const double c =
            t11 * minor + t12 * (t33 * t21 - t31 * t23) + t13 * (t31 * t22 - t32 * t21);
        gsl_complex z[3];
        gsl_poly_complex_solve_cubic(a, b, c, &z[0], &z[1], &z[2]);
        // In ascending order of the real parts; the pair side by side, negative imaginary first.
        const bool pairFirst = GSL_IMAG(z[0]) != 0.0;
        strength[k] = static_cast<float>(GSL_IMAG(z[pairFirst ? 1 : 2]));
        eigenvalue[k] = static_cast<float>(GSL_REAL(z[pairFirst ? 2 : 0]));
    }
}

const int registered = add("swirl", "gsl", [](const TensorField& f) {
    auto out = std::make_shared<std::vector<float>>(2 * f.n);
    return [f, out] { swirl(f, out->data(), out->data() + f.n); };
});

} // namespace
} // namespace qel_benchmark
