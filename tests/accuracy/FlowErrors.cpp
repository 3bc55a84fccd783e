#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include <qel/GradientAnalysis.h>

#include "accuracy/ExactQuantities.h"
#include "accuracy/Measurements.h"

namespace qel_accuracy {
namespace {

template <typename T>
struct Quantity {
    const char* name;
    int power; // of the unit of T
    Real (*exact)(const Gradient&);
    qel::ScalarView<T> qel::GradientFields<T>::*field;
};

template <typename T>
const std::vector<Quantity<T>>& quantities() {
    using Fields = qel::GradientFields<T>;
    static const std::vector<Quantity<T>> all = {
        {"Q", 2, invariantQ, &Fields::invariantQ},
        {"discriminant", 6, discriminant, &Fields::discriminant},
        {"λ2", 2, lambda2, &Fields::lambda2},
        {"swirl strength", 1, swirlStrength, &Fields::swirlStrength},
        {"vorticity magnitude", 1, vorticityMagnitude, &Fields::vorticityMagnitude},
        {"strain magnitude", 1, strainMagnitude, &Fields::strainMagnitude},
    };
    return all;
}

// What a quantity of that power can be as a normal number.
template <typename T>
bool isInRange(Real size, int power) {
    const Real exponent = power * std::log2(size);
    return exponent > std::numeric_limits<T>::min_exponent + std::numeric_limits<T>::digits &&
           exponent < std::numeric_limits<T>::max_exponent - 1;
}

template <typename T>
double largestError(const std::vector<Gradient>& gradients, const Quantity<T>& quantity, Real size,
                    bool isScaled) {
    std::vector<std::array<T, 9>> narrowed(gradients.size());
    for (std::size_t i = 0; i < gradients.size(); ++i) {
        std::transform(gradients[i].begin(), gradients[i].end(), narrowed[i].begin(),
                       [size](Real v) { return static_cast<T>(v * size); });
    }
    std::vector<T> values(gradients.size());
    qel::GradientFields<T> out;
    out.*quantity.field = values;
    qel::GradientOptions options;
    options.isScaled = isScaled;
    analyzeGradients(qel::TensorView<const T>(narrowed.data()->data(), narrowed.size()), out,
                     options);

    Real largest = 0;
    for (std::size_t i = 0; i < gradients.size(); ++i) {
        const Real natural = norm(gradients[i]);
        if (!isInRange<T>(natural * size, quantity.power)) {
            continue;
        }
        const Real computed = static_cast<Real>(values[i]) / std::pow(size, quantity.power);
        const Real error = std::fabs(computed - quantity.exact(gradients[i]));
        const Real relative = error / std::pow(natural, quantity.power);
        largest = relative <= largest ? largest : relative; // NaN stays
    }
    return static_cast<double>(largest);
}

template <typename T>
double largestScaledError(const std::vector<Gradient>& gradients, const Quantity<T>& quantity) {
    double largest = 0.0;
    for (const Real size : {1e-12L, 1e-6L, 1e-3L, 1.0L, 1e3L, 1e6L, 1e12L}) {
        const double error = largestError(gradients, quantity, size, true);
        largest = error <= largest ? largest : error;
    }
    return largest;
}

} // namespace

std::vector<FlowRow> measureFlows() {
    std::vector<FlowRow> rows;
    for (const Flow& flow : flows()) {
        for (std::size_t k = 0; k < quantities<float>().size(); ++k) {
            const Quantity<float>& quantity = quantities<float>()[k];
            rows.push_back({flow.name, quantity.name,
                            largestError(flow.gradients, quantity, 1.0L, false),
                            largestScaledError(flow.gradients, quantity),
                            largestScaledError(flow.gradients, quantities<double>()[k])});
        }
    }
    return rows;
}

} // namespace qel_accuracy
