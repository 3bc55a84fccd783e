#ifndef QEL_TESTS_TENSOR_ALLFIELDS_H
#define QEL_TESTS_TENSOR_ALLFIELDS_H

// Inputs of analyzeGradients, and memory for every output.

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <vector>

#include <qel/GradientAnalysis.h>

#include "support/Bits.h"
#include "tensor/Fields.h"

namespace qel_test {

using WideTensor = std::array<double, 9>; // row by row
using Velocities = std::vector<Triplet>;

inline qel::TensorView<const float> viewOf(const std::vector<Tensor>& tensors) {
    return {tensors.empty() ? nullptr : tensors[0].data(), tensors.size()};
}

inline std::vector<WideTensor> doublesOf(const std::vector<Tensor>& tensors) {
    std::vector<WideTensor> wide(tensors.size());
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        std::copy(tensors[k].begin(), tensors[k].end(), wide[k].begin());
    }
    return wide;
}

inline qel::TensorView<const double> viewOf(const std::vector<WideTensor>& tensors) {
    return {tensors.empty() ? nullptr : tensors[0].data(), tensors.size()};
}

inline Velocities velocitiesOf(std::size_t n) {
    std::mt19937 random(5);
    std::normal_distribution<float> normal;
    Velocities velocities(n);
    for (Triplet& v : velocities) {
        v.x = normal(random);
        v.y = normal(random);
        v.z = normal(random);
    }
    return velocities;
}

template <typename T>
struct AllFields {
    using Numbers = std::vector<T>;
    using Triples = std::vector<qel::TripletBase<T>>;

    explicit AllFields(std::size_t n, T filledWith = T(-7))
        : numbers(kNumbers, Numbers(n, filledWith)),
          triples(kTriples, Triples(n, {filledWith, filledWith, filledWith})) {}

    // All outputs; without the helicity there need be no velocity.
    qel::GradientFields<T> views(bool withHelicity) {
        qel::GradientFields<T> out;
        std::size_t i = 0;
        for (qel::ScalarView<T>* view : scalarsOf(out)) {
            *view = numbers[i++];
        }
        if (!withHelicity) {
            out.helicity = {};
        }
        i = 0;
        for (qel::TripletView<T>* view : tripletsOf(out)) {
            *view = triples[i++];
        }
        return out;
    }

    static std::vector<qel::ScalarView<T>*> scalarsOf(qel::GradientFields<T>& out) {
        return {&out.invariantQ,        &out.qCriterion,
                &out.divergence,        &out.discriminant,
                &out.lambda2,           &out.swirlStrength,
                &out.realEigenvalue,    &out.vorticityMagnitude,
                &out.strainMagnitude,   &out.swirlStretchRate,
                &out.realEigenHelicity, &out.normalEigenHelicity,
                &out.helicity};
    }
    static std::vector<qel::TripletView<T>*> tripletsOf(qel::GradientFields<T>& out) {
        return {&out.vorticity, &out.realEigenvector, &out.swirlNormal};
    }

    static constexpr std::size_t kNumbers = 13;
    static constexpr std::size_t kTriples = 3;
    std::vector<Numbers> numbers; // in the order of scalarsOf()
    std::vector<Triples> triples; // in the order of tripletsOf()
};

template <typename T>
void expectSameFields(const AllFields<T>& actual, const AllFields<T>& expected) {
    for (std::size_t i = 0; i < expected.numbers.size(); ++i) {
        EXPECT_TRUE(sameBitsInAll(actual.numbers[i], expected.numbers[i])) << "scalar " << i;
    }
    for (std::size_t i = 0; i < expected.triples.size(); ++i) {
        EXPECT_TRUE(sameBitsInAll(actual.triples[i], expected.triples[i])) << "triplet " << i;
    }
}

} // namespace qel_test

#endif
