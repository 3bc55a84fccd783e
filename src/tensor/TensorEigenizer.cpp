// The tensor analysis: each operation, point by point.

#include <qel/TensorEigenizer.h>

#include "tensor/PointFormulas.h"
#include "tensor/RootFormulas.h"

namespace qel {
namespace {

using Triplet = TripletBase<float>;

constexpr Triplet kZero = {0.0f, 0.0f, 0.0f};

} // namespace

TensorEigenizer::TensorEigenizer(std::size_t n, const TripletQELVector& row1,
                                 const TripletQELVector& row2, const TripletQELVector& row3)
    : n_(n), row1_(&row1), row2_(&row2), row3_(&row3) {}
TensorEigenizer::TensorEigenizer(const TensorEigenizer&) = default;
TensorEigenizer& TensorEigenizer::operator=(const TensorEigenizer&) = default;
TensorEigenizer::~TensorEigenizer() = default;

namespace {

// The three rows.
struct Field {
    const TripletQELVector& row1;
    const TripletQELVector& row2;
    const TripletQELVector& row3;

    Gradient at(std::size_t k) const { return gradientOf(row1[k], row2[k], row3[k]); }
};

// Stores formula(gradient at k) in out[k] for every point.
template <typename Output, typename Formula>
void evaluate(std::size_t n, const Field& field, Output& out, Formula formula) {
    out.resize(n);
    for (std::size_t k = 0; k < n; ++k) {
        const auto value = formula(field.at(k));
        out[k] = value;
    }
}

// The same for a formula of swirl strength and real eigenvalue too, and only where it swirls.
template <typename Value, typename Output, typename Formula>
void evaluateWhereItSwirls(std::size_t n, const Field& field, FloatQELVector& swirl,
                           FloatQELVector& realEigenvalue, Output& out, const Value& otherwise,
                           Formula formula) {
    out.resize(n);
    for (std::size_t k = 0; k < n; ++k) {
        const float strength = swirl[k];
        const float eigenvalue = realEigenvalue[k];
        const Value value =
            strength > 0.0f ? formula(field.at(k), eigenvalue, strength) : otherwise;
        out[k] = value;
    }
}

} // namespace

// -- Invariants and products ----

void TensorEigenizer::getInvariantQ(FloatQELVector& out) const {
    evaluate(n_, {*row1_, *row2_, *row3_}, out, invariantQ);
}

void TensorEigenizer::getDivergence(FloatQELVector& out) const {
    evaluate(n_, {*row1_, *row2_, *row3_}, out, divergence);
}

void TensorEigenizer::getDiscrim(FloatQELVector& out) const {
    evaluate(n_, {*row1_, *row2_, *row3_}, out, discriminant);
}

void TensorEigenizer::getVorticity(TripletQELVector& out) const {
    evaluate(n_, {*row1_, *row2_, *row3_}, out, vorticity);
}

void TensorEigenizer::getHelicity(TripletQELVector& velocity, FloatQELVector& out) const {
    const Field field = {*row1_, *row2_, *row3_};
    out.resize(n_);
    for (std::size_t k = 0; k < n_; ++k) {
        const Triplet u = velocity[k];
        const float value = timesVorticity(u, vorticity(field.at(k)));
        out[k] = value;
    }
}

void TensorEigenizer::get2ndEValSymmTT(FloatQELVector& out) const {
    evaluate(n_, {*row1_, *row2_, *row3_}, out, secondEigenvalue);
}

// -- Eigenvalues and what is built on them ----

void TensorEigenizer::getSwirlStrength(FloatQELVector& swirl,
                                       FloatQELVector& realEigenvalue) const {
    const Field field = {*row1_, *row2_, *row3_};
    swirl.resize(n_);
    realEigenvalue.resize(n_);
    for (std::size_t k = 0; k < n_; ++k) {
        const Swirl value = swirlOf(field.at(k));
        swirl[k] = value.strength;
        realEigenvalue[k] = value.realEigenvalue;
    }
}

void TensorEigenizer::getSwirlStretchRate(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                          FloatQELVector& out) const {
    evaluateWhereItSwirls(n_, {*row1_, *row2_, *row3_}, swirl, realEigenvalue, out, 0.0f,
                          [](const Gradient& t, float eigenvalue, float strength) {
                              return scaledCosine(realEigenvector(t, eigenvalue),
                                                  swirlPlaneNormal(t, eigenvalue, strength),
                                                  strength);
                          });
}

void TensorEigenizer::getRealEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluateWhereItSwirls(n_, {*row1_, *row2_, *row3_}, swirl, realEigenvalue, out, 0.0f,
                          [](const Gradient& t, float eigenvalue, float) {
                              return timesVorticity(realEigenvector(t, eigenvalue), vorticity(t));
                          });
}

void TensorEigenizer::getNormEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluateWhereItSwirls(n_, {*row1_, *row2_, *row3_}, swirl, realEigenvalue, out, 0.0f,
                          [](const Gradient& t, float eigenvalue, float strength) {
                              return timesVorticity(swirlPlaneNormal(t, eigenvalue, strength),
                                                    vorticity(t));
                          });
}

void TensorEigenizer::getSwirlNormal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                     TripletQELVector& out) const {
    evaluateWhereItSwirls(n_, {*row1_, *row2_, *row3_}, swirl, realEigenvalue, out, kZero,
                          [](const Gradient& t, float eigenvalue, float strength) {
                              return scaled(swirlPlaneNormal(t, eigenvalue, strength), strength);
                          });
}

void TensorEigenizer::getEVecReal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                  TripletQELVector& out) const {
    evaluateWhereItSwirls(n_, {*row1_, *row2_, *row3_}, swirl, realEigenvalue, out, kZero,
                          [](const Gradient& t, float eigenvalue, float strength) {
                              return scaled(realEigenvector(t, eigenvalue), strength);
                          });
}

// -- One point ----

Triplet TensorEigenizer::realeigenvec(const Triplet& row1, const Triplet& row2, const Triplet& row3,
                                      float realEigenvalue) const {
    return realEigenvector(gradientOf(row1, row2, row3), realEigenvalue);
}

Triplet TensorEigenizer::swirlnormal(const Triplet& row1, const Triplet& row2, const Triplet& row3,
                                     float realEigenvalue, float swirlStrength) const {
    return swirlPlaneNormal(gradientOf(row1, row2, row3), realEigenvalue, swirlStrength);
}

} // namespace qel
