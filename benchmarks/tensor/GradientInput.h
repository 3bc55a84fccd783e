#ifndef QEL_BENCHMARKS_TENSOR_GRADIENTINPUT_H
#define QEL_BENCHMARKS_TENSOR_GRADIENTINPUT_H

// A field of velocity gradients, as the library's arrays and as the plain memory that every other
// library can take as it is.

#include <cstddef>
#include <string>
#include <vector>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "support/GradientShapes.h"
#include "support/Row.h"

namespace qel_benchmark {

using Triplet = qel::TripletBase<float>;

struct GradientInput {
    GradientInput(const qel_test::GradientShape& shapeOfField, std::size_t count)
        : GradientInput(shapeOfField, count, shapeOfField.make(count)) {}
    GradientInput(const GradientInput&) = delete;
    GradientInput& operator=(const GradientInput&) = delete;

    const qel_test::GradientShape& shape;
    std::size_t n;
    qel::TripletQELVector row1, row2, row3;
    mutable qel::TripletQELVector velocity;
    qel::TensorEigenizer eigenizer;
    mutable qel::FloatQELVectorConcrete swirl, realEigenvalue;
    // The arrays' own memory, so that all find it in the same caches.
    const Triplet *r1, *r2, *r3, *u;

    bool isFinite() const {
        const std::string name = shape.name;
        return name.find("nan") == std::string::npos && name != "huge" && name != "undefined_among";
    }

    // A row as x, y, z of each point in turn.
    const float* at(int row) const { return &(row == 0 ? r1 : row == 1 ? r2 : r3)->x; }
    // T at point k, component j of row i, both from 0.
    double t(std::size_t k, int i, int j) const {
        return static_cast<double>(at(i)[3 * k + static_cast<std::size_t>(j)]);
    }

private:
    GradientInput(const qel_test::GradientShape& shapeOfField, std::size_t count,
                  const qel_test::GradientField& field)
        : shape(shapeOfField),
          n(count),
          row1(field.row1),
          row2(field.row2),
          row3(field.row3),
          velocity(field.velocity),
          eigenizer(n, row1, row2, row3),
          r1(row1.getInternals().data()),
          r2(row2.getInternals().data()),
          r3(row3.getInternals().data()),
          u(velocity.getInternals().data()) {
        eigenizer.getSwirlStrength(swirl, realEigenvalue);
    }
};

// Each adds its contenders for the work of that name, where it has one.
using AddPeer = void (*)(Row& row, const char* work, const GradientInput& in);
void addEigen(Row& row, const char* work, const GradientInput& in);
void addGsl(Row& row, const char* work, const GradientInput& in);

// Gradients of doubles, nine by nine.
struct DoubleGradients {
    const double* nine;
    std::size_t n;
    bool isFinite;
};
void addEigenOfDoubles(Row& row, const char* work, const DoubleGradients& in);
void addGslOfDoubles(Row& row, const char* work, const DoubleGradients& in);

} // namespace qel_benchmark

#endif
