// GSL: the roots of the characteristic cubic, imaginary part and real root stored.

#include <memory>
#include <string>
#include <vector>

#include <gsl/gsl_complex.h>
#include <gsl/gsl_poly.h>

#include "tensor/GradientInput.h"

namespace qel_benchmark {
namespace {

void swirl(const GradientInput& in, float* strength, float* eigenvalue) {
    for (std::size_t k = 0; k < in.n; ++k) {
        const double t11 = in.t(k, 0, 0), t12 = in.t(k, 0, 1), t13 = in.t(k, 0, 2);
        const double t21 = in.t(k, 1, 0), t22 = in.t(k, 1, 1), t23 = in.t(k, 1, 2);
        const double t31 = in.t(k, 2, 0), t32 = in.t(k, 2, 1), t33 = in.t(k, 2, 2);
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

} // namespace

void addGsl(Row& row, const char* work, const GradientInput& in) {
    if (std::string(work) == "swirl") {
        const auto out = std::make_shared<std::vector<float>>(2 * in.n);
        row.add("GSL", [out, &in] { swirl(in, out->data(), out->data() + in.n); });
    }
}

} // namespace qel_benchmark
