#ifndef QEL_TESTS_TENSOR_OPERATIONS_H
#define QEL_TESTS_TENSOR_OPERATIONS_H

// Every operation of TensorEigenizer, but for getSwirlStrength with its two outputs, for tests of
// what they have in common.

#include <gtest/gtest.h>

#include <qel/FloatQELVector.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

namespace qel_test {

// What operations take beside the rows.
struct Inputs {
    qel::FloatQELVector& swirl;
    qel::FloatQELVector& eigenvalue;
    qel::TripletQELVector& velocity;
};

template <typename Output>
struct Operation {
    const char* name;
    void (*run)(const qel::TensorEigenizer& t, Inputs in, Output& out);
    bool takesSwirl = false;
};

inline constexpr Operation<qel::FloatQELVector> kFloatOperations[] = {
    {"Q", [](const auto& t, Inputs, auto& out) { t.getInvariantQ(out); }},
    {"divergence", [](const auto& t, Inputs, auto& out) { t.getDivergence(out); }},
    {"discriminant", [](const auto& t, Inputs, auto& out) { t.getDiscrim(out); }},
    {"lambda-2", [](const auto& t, Inputs, auto& out) { t.get2ndEValSymmTT(out); }},
    {"helicity", [](const auto& t, Inputs in, auto& out) { t.getHelicity(in.velocity, out); }},
    {"stretch rate",
     [](const auto& t, Inputs in, auto& out) {
         t.getSwirlStretchRate(in.swirl, in.eigenvalue, out);
     },
     true},
    {"eigenvector helicity",
     [](const auto& t, Inputs in, auto& out) {
         t.getRealEigenHelicity(in.swirl, in.eigenvalue, out);
     },
     true},
    {"normal helicity",
     [](const auto& t, Inputs in, auto& out) {
         t.getNormEigenHelicity(in.swirl, in.eigenvalue, out);
     },
     true},
};

inline constexpr Operation<qel::TripletQELVector> kTripletOperations[] = {
    {"vorticity", [](const auto& t, Inputs, auto& out) { t.getVorticity(out); }},
    {"normal",
     [](const auto& t, Inputs in, auto& out) { t.getSwirlNormal(in.swirl, in.eigenvalue, out); },
     true},
    {"eigenvector",
     [](const auto& t, Inputs in, auto& out) { t.getEVecReal(in.swirl, in.eigenvalue, out); },
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
