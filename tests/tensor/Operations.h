#ifndef QEL_TESTS_TENSOR_OPERATIONS_H
#define QEL_TESTS_TENSOR_OPERATIONS_H

// Every operation of TensorEigenizer, but for getSwirlStrength with its two outputs, for tests of
// what they have in common; and what it must give at one point.

#include <gtest/gtest.h>

#include <qel/FloatQELVector.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "tensor/Fields.h"
#include "tensor/ReferenceFormulas.h"

namespace qel_test {

// What operations take beside the rows.
struct Inputs {
    qel::FloatQELVector& swirl;
    qel::FloatQELVector& eigenvalue;
    qel::TripletQELVector& velocity;
};

// The same at one point.
struct PointInputs {
    float swirl, eigenvalue;
    Triplet velocity;
};

template <typename Output, typename Value>
struct Operation {
    const char* name;
    void (*run)(const qel::TensorEigenizer& t, Inputs in, Output& out);
    Value (*reference)(const Tensor& t, const PointInputs& in);
    bool takesSwirl = false;
};

inline constexpr Operation<qel::FloatQELVector, float> kFloatOperations[] = {
    {"Q", [](const auto& t, Inputs, auto& out) { t.getInvariantQ(out); },
     [](const Tensor& t, const PointInputs&) { return reference::invariantQ(t); }},
    {"divergence", [](const auto& t, Inputs, auto& out) { t.getDivergence(out); },
     [](const Tensor& t, const PointInputs&) { return reference::divergence(t); }},
    {"discriminant", [](const auto& t, Inputs, auto& out) { t.getDiscrim(out); },
     [](const Tensor& t, const PointInputs&) {
         return static_cast<float>(reference::cubic(t).discriminant);
     }},
    {"lambda-2", [](const auto& t, Inputs, auto& out) { t.get2ndEValSymmTT(out); },
     [](const Tensor& t, const PointInputs&) { return reference::secondEigenvalue(t); }},
    {"helicity", [](const auto& t, Inputs in, auto& out) { t.getHelicity(in.velocity, out); },
     [](const Tensor& t, const PointInputs& in) {
         return reference::productYxz(in.velocity, reference::vorticity(t));
     }},
    {"stretch rate",
     [](const auto& t, Inputs in, auto& out) {
         t.getSwirlStretchRate(in.swirl, in.eigenvalue, out);
     },
     [](const Tensor& t, const PointInputs& in) {
         return in.swirl > 0 ? reference::stretchRate(t, in.eigenvalue, in.swirl) : 0;
     },
     true},
    {"eigenvector helicity",
     [](const auto& t, Inputs in, auto& out) {
         t.getRealEigenHelicity(in.swirl, in.eigenvalue, out);
     },
     [](const Tensor& t, const PointInputs& in) {
         return in.swirl > 0 ? reference::productYxz(reference::realEigenvector(t, in.eigenvalue),
                                                     reference::vorticity(t))
                             : 0;
     },
     true},
    {"normal helicity",
     [](const auto& t, Inputs in, auto& out) {
         t.getNormEigenHelicity(in.swirl, in.eigenvalue, out);
     },
     [](const Tensor& t, const PointInputs& in) {
         return in.swirl > 0
                    ? reference::productYxz(reference::swirlNormal(t, in.eigenvalue, in.swirl),
                                            reference::vorticity(t))
                    : 0;
     },
     true},
};

inline constexpr Operation<qel::TripletQELVector, Triplet> kTripletOperations[] = {
    {"vorticity", [](const auto& t, Inputs, auto& out) { t.getVorticity(out); },
     [](const Tensor& t, const PointInputs&) { return reference::vorticity(t); }},
    {"normal",
     [](const auto& t, Inputs in, auto& out) { t.getSwirlNormal(in.swirl, in.eigenvalue, out); },
     [](const Tensor& t, const PointInputs& in) {
         return in.swirl > 0 ? reference::scaled(reference::swirlNormal(t, in.eigenvalue, in.swirl),
                                                 in.swirl)
                             : Triplet();
     },
     true},
    {"eigenvector",
     [](const auto& t, Inputs in, auto& out) { t.getEVecReal(in.swirl, in.eigenvalue, out); },
     [](const Tensor& t, const PointInputs& in) {
         return in.swirl > 0
                    ? reference::scaled(reference::realEigenvector(t, in.eigenvalue), in.swirl)
                    : Triplet();
     },
     true},
};

// Calls use(operation, out) for every operation, with a new output each time.
template <typename FloatOutput, typename Use>
void forEachOperation(const Use& use) {
    for (const auto& operation : kFloatOperations) {
        SCOPED_TRACE(operation.name);
        FloatOutput out;
        use(operation, out);
    }
    for (const auto& operation : kTripletOperations) {
        SCOPED_TRACE(operation.name);
        qel::TripletQELVector out;
        use(operation, out);
    }
}

} // namespace qel_test

#endif
