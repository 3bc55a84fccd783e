// Vortex fields from a solver's velocity gradients, where they lie.
#include <algorithm>
#include <cmath>
#include <iostream>

#include <qel/GradientAnalysis.h>

int main() {
    constexpr int n = 1000;
    // gradU[k][3 * i + j] = du_i/dx_j, at radii 0 to 5 of a vortex with a core of radius 1
    static double gradU[n][9], lambda2[n], swirl[n];
    for (int k = 0; k < n; ++k) {
        const double r2 = std::pow((k + 0.5) / 200.0, 2), decay = std::exp(-r2);
        gradU[k][1] = -(1.0 - decay) / r2;
        gradU[k][3] = 2.0 * decay + gradU[k][1];
    }
    qel::GradientFields<double> out;
    out.lambda2 = {lambda2, n};
    out.swirlStrength = {swirl, n};
    qel::analyzeGradients(qel::TensorView<const double>(&gradU[0][0], n), out);
    const auto inside = std::find_if(lambda2, lambda2 + n, [](double l) { return l >= 0.0; });
    std::cout << "swirl strength " << std::round(swirl[0] * 1e4) / 1e4
              << " at the axis, a vortex up to r = " << double(inside - lambda2) / 200.0 << "\n";
}
