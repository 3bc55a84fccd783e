#ifndef QEL_TESTS_TENSOR_FIELDS_H
#define QEL_TESTS_TENSOR_FIELDS_H

// Tensors, fields of them, and a caller's own kind of float array.

#include <array>
#include <cstddef>
#include <random>
#include <vector>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "support/SpecialFloats.h"

namespace qel_test {

using Triplet = qel::TripletBase<float>;

// Row by row.
using Tensor = std::array<float, 9>;

// The three row arrays of a field.
struct Field {
    qel::TripletQELVector row1, row2, row3;

    Field() = default;
    explicit Field(const std::vector<Tensor>& tensors) {
        for (const Tensor& t : tensors) {
            add(t);
        }
    }
    void add(const Tensor& t) {
        row1.push_back({t[0], t[1], t[2]});
        row2.push_back({t[3], t[4], t[5]});
        row3.push_back({t[6], t[7], t[8]});
    }
    Tensor at(std::size_t k) const {
        return {row1[k].x, row1[k].y, row1[k].z, row2[k].x, row2[k].y,
                row2[k].z, row3[k].x, row3[k].y, row3[k].z};
    }
    qel::TensorEigenizer eigenizer() const {
        return qel::TensorEigenizer(row1.size(), row1, row2, row3);
    }
};

// A kind of float array of a caller's own, which counts what is asked of it.
class CallersArray : public qel::FloatQELVector {
public:
    const float& operator[](std::size_t i) const override { return values_.at(i); }
    float& operator[](std::size_t i) override {
        invalidateCache();
        asked.push_back(i);
        return values_.at(i);
    }
    void resize(std::size_t n) override {
        ++resized;
        values_.resize(n);
    }
    std::size_t size() const override { return values_.size(); }
    Iterator Begin() override { return {1, values_.empty() ? nullptr : values_.data()}; }
    Iterator End() override {
        return {1, values_.empty() ? nullptr : values_.data() + values_.size()};
    }

    std::vector<std::size_t> asked;
    int resized = 0;

private:
    int getStride() const override { return 1; }

    std::vector<float> values_;
};

inline std::vector<float> valuesOf(const qel::FloatQELVector& array) {
    std::vector<float> values;
    for (std::size_t i = 0; i < array.size(); ++i) {
        values.push_back(array[i]);
    }
    return values;
}

// -- Random tensors ----

inline Tensor normalTensor(std::mt19937& random, float scale) {
    std::normal_distribution<float> normal(0.0f, scale);
    Tensor t;
    for (float& v : t) {
        v = normal(random);
    }
    return t;
}

// Few different entries: zeros, ties and repeated eigenvalues in plenty.
inline Tensor degenerateTensor(std::mt19937& random) {
    const float few[] = {0.0f, -0.0f, 1.0f, -1.0f, 2.0f, 0.5f};
    Tensor t;
    for (float& v : t) {
        v = few[random() % 6];
    }
    return t;
}

inline Tensor extremeTensor(std::mt19937& random) {
    const float extreme[] = {kUndef, -kUndef, kInf,   -kInf, kNan, 1e-45f, -1e-40f,
                             1e38f,  1e-19f,  1e-12f, 0.0f,  1.0f, 3e-10f, 1e19f};
    Tensor t = normalTensor(random, 1.0f);
    for (float& v : t) {
        if (random() % 3 != 0) {
            v = extreme[random() % 14];
        }
    }
    return t;
}

// A little of everything.
inline std::vector<Tensor> mixedTensors(std::size_t n, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Tensor> tensors;
    while (tensors.size() < n) {
        switch (random() % 6) {
        case 0:
            tensors.push_back(degenerateTensor(random));
            break;
        case 1:
            tensors.push_back(extremeTensor(random));
            break;
        case 2: { // without divergence, as in incompressible flow
            Tensor t = normalTensor(random, 10.0f);
            t[8] = -t[0] - t[4];
            tensors.push_back(t);
            break;
        }
        case 3: { // in one plane
            Tensor t = normalTensor(random, 1.0f);
            t[2] = t[5] = t[6] = t[7] = t[8] = 0.0f;
            tensors.push_back(t);
            break;
        }
        default:
            tensors.push_back(
                normalTensor(random, std::ldexp(1.0f, static_cast<int>(random() % 120) - 60)));
        }
    }
    return tensors;
}

} // namespace qel_test

#endif
