// The tensor analysis: each operation over the field.
//
// An operation is a formula at one point (PointFormulas.h, RootFormulas.h) in the loop below that
// goes through the arrays' own operations. Arrays of the library's own kinds that share no memory
// take the same formula through the vector units (FieldKernels.h, SplitRows.h, RootKernels.h), with
// the same result.

#include <qel/TensorEigenizer.h>

#include "platform/VectorDispatch.h"
#include "tensor/FieldAccess.h"
#include "tensor/FieldKernels.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootFormulas.h"
#include "tensor/RootKernels.h"
#include "tensor/SplitRows.h"

namespace qel {
namespace {

using Triplet = TripletBase<float>;

// The three rows, n points of each.
struct Field {
    std::size_t n;
    const TripletQELVector& row1;
    const TripletQELVector& row2;
    const TripletQELVector& row3;

    Gradient at(std::size_t k) const { return gradientOf(row1[k], row2[k], row3[k]); }

    Rows rows() const { return {runOf(row1, n), runOf(row2, n), runOf(row3, n)}; }
};

bool standsApartFromRows(const Footprint& output, const Rows& rows, std::size_t n) {
    return standsApart(output, Footprint(rows.row1, n), Footprint(rows.row2, n),
                       Footprint(rows.row3, n));
}

bool isOwnKind(const TripletQELVector&) {
    return true;
}

// Bracketing a root costs more than the C library's function, unless many are done at once.
bool bracketingPays() {
    return vectorUnit() != VectorUnit::portable;
}

// -- Point by point, through the arrays' operations ----

// Stores formula(point) in out[point] for every point.
template <typename Output, typename Formula>
void storeEach(std::size_t n, Output& out, const Formula& formula) {
    for (std::size_t k = 0; k < n; ++k) {
        const auto value = formula(k);
        out[k] = value;
    }
}

// -- A formula of the tensor alone ----

template <float (*Formula)(const Gradient&), typename Kernel = FloatKernel<Formula>,
          typename Split = Kernel>
void evaluate(const Field& field, FloatQELVector& out) {
    out.resize(field.n);
    if (field.n == 0) {
        return;
    }
    if (isOwnKind(out)) {
        const FloatRun run = runOf(out, field.n);
        const Rows rows = field.rows();
        if (standsApartFromRows(Footprint(run, field.n), rows, field.n)) {
            onVectorUnitSplit<Kernel, Split>(rows, field.n, run);
            return;
        }
    }
    storeEach(field.n, out, [&](std::size_t k) { return Formula(field.at(k)); });
}

template <float (*Formula)(const Gradient&)>
void evaluateSplit(const Field& field, FloatQELVector& out) {
    evaluate<Formula, FloatKernel<Formula>, SplitFloatKernel<Formula>>(field, out);
}

// -- A formula of the tensor, the real eigenvalue and the swirl strength ----

// Both are read at every point, also where the second is not needed: inputs that are too short
// are fatal, whatever their values.
template <typename Kernel, typename Output, typename Formula>
void evaluateWhereItSwirls(const Field& field, FloatQELVector& swirl,
                           FloatQELVector& realEigenvalue, Output& out, const Formula& formula) {
    out.resize(field.n);
    if (field.n == 0) {
        return;
    }
    if (isOwnKind(out) && isOwnKind(swirl) && isOwnKind(realEigenvalue)) {
        const SwirlRuns inputs = {runOf(swirl, field.n), runOf(realEigenvalue, field.n)};
        const auto run = runOf(out, field.n);
        const Rows rows = field.rows();
        const Footprint output(run, field.n);
        if (standsApartFromRows(output, rows, field.n) &&
            standsApart(output, Footprint(inputs.strength, field.n),
                        Footprint(inputs.eigenvalue, field.n))) {
            onVectorUnit<Kernel>(rows, field.n, inputs, run);
            return;
        }
    }
    storeEach(field.n, out, [&](std::size_t k) {
        const float strength = swirl[k];
        const float eigenvalue = realEigenvalue[k];
        return strength > 0.0f ? formula(field.at(k), eigenvalue, strength)
                               : decltype(formula(field.at(k), eigenvalue, strength)){};
    });
}

template <float (*Formula)(const Gradient&, float, float)>
void evaluateSwirl(const Field& field, FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                   FloatQELVector& out) {
    evaluateWhereItSwirls<SwirlFloatKernel<Formula>>(field, swirl, realEigenvalue, out, Formula);
}

template <Triplet (*Formula)(const Gradient&, float, float)>
void evaluateSwirl(const Field& field, FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                   TripletQELVector& out) {
    evaluateWhereItSwirls<SwirlTripletKernel<Formula>>(field, swirl, realEigenvalue, out, Formula);
}

} // namespace

TensorEigenizer::TensorEigenizer(std::size_t n, const TripletQELVector& row1,
                                 const TripletQELVector& row2, const TripletQELVector& row3)
    : n_(n), row1_(&row1), row2_(&row2), row3_(&row3) {}
TensorEigenizer::TensorEigenizer(const TensorEigenizer&) = default;
TensorEigenizer& TensorEigenizer::operator=(const TensorEigenizer&) = default;
TensorEigenizer::~TensorEigenizer() = default;

// -- Invariants and products ----

void TensorEigenizer::getInvariantQ(FloatQELVector& out) const {
    evaluateSplit<invariantQ>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDivergence(FloatQELVector& out) const {
    evaluateSplit<divergence>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDiscrim(FloatQELVector& out) const {
    evaluateSplit<discriminant>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getVorticity(TripletQELVector& out) const {
    const Field field = {n_, *row1_, *row2_, *row3_};
    out.resize(n_);
    if (n_ == 0) {
        return;
    }
    Triplet* const run = runOf(out, n_);
    const Rows rows = field.rows();
    if (standsApartFromRows(Footprint(run, n_), rows, n_)) {
        onVectorUnitSplit<VorticityKernel, SplitVorticityKernel>(rows, n_, run);
    } else {
        storeEach(n_, out, [&](std::size_t k) { return vorticity(field.at(k)); });
    }
}

void TensorEigenizer::getHelicity(TripletQELVector& velocity, FloatQELVector& out) const {
    const Field field = {n_, *row1_, *row2_, *row3_};
    out.resize(n_);
    if (n_ == 0) {
        return;
    }
    if (isOwnKind(out)) {
        const Triplet* const input = runOf(velocity, n_);
        const FloatRun run = runOf(out, n_);
        const Rows rows = field.rows();
        const Footprint output(run, n_);
        if (standsApartFromRows(output, rows, n_) && standsApart(output, Footprint(input, n_))) {
            onVectorUnitSplit<HelicityKernel, SplitHelicityKernel>(rows, n_, input, run);
            return;
        }
    }
    storeEach(n_, out, [&](std::size_t k) { return helicity(field.at(k), velocity[k]); });
}

void TensorEigenizer::get2ndEValSymmTT(FloatQELVector& out) const {
    const Field field = {n_, *row1_, *row2_, *row3_};
    if (bracketingPays()) {
        evaluate<secondEigenvalue, SecondEigenvalueKernel>(field, out);
    } else {
        evaluate<secondEigenvalue>(field, out);
    }
}

// -- Eigenvalues and what is built on them ----

void TensorEigenizer::getSwirlStrength(FloatQELVector& swirl,
                                       FloatQELVector& realEigenvalue) const {
    const Field field = {n_, *row1_, *row2_, *row3_};
    swirl.resize(n_);
    realEigenvalue.resize(n_);
    if (n_ == 0) {
        return;
    }
    if (bracketingPays() && isOwnKind(swirl) && isOwnKind(realEigenvalue)) {
        const FloatRun first = runOf(swirl, n_);
        const FloatRun second = runOf(realEigenvalue, n_);
        const Rows rows = field.rows();
        const Footprint output(second, n_);
        if (standsApartFromRows(Footprint(first, n_), rows, n_) &&
            standsApartFromRows(output, rows, n_) && standsApart(output, Footprint(first, n_))) {
            onVectorUnit<SwirlKernel>(rows, n_, first, second);
            return;
        }
    }
    for (std::size_t k = 0; k < n_; ++k) {
        const Swirl value = swirlOf(field.at(k));
        swirl[k] = value.strength;
        realEigenvalue[k] = value.realEigenvalue;
    }
}

void TensorEigenizer::getSwirlStretchRate(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                          FloatQELVector& out) const {
    evaluateSwirl<stretchRate>({n_, *row1_, *row2_, *row3_}, swirl, realEigenvalue, out);
}

void TensorEigenizer::getRealEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluateSwirl<eigenvectorHelicity>({n_, *row1_, *row2_, *row3_}, swirl, realEigenvalue, out);
}

void TensorEigenizer::getNormEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluateSwirl<normalHelicity>({n_, *row1_, *row2_, *row3_}, swirl, realEigenvalue, out);
}

void TensorEigenizer::getSwirlNormal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                     TripletQELVector& out) const {
    evaluateSwirl<scaledNormal>({n_, *row1_, *row2_, *row3_}, swirl, realEigenvalue, out);
}

void TensorEigenizer::getEVecReal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                  TripletQELVector& out) const {
    evaluateSwirl<scaledEigenvector>({n_, *row1_, *row2_, *row3_}, swirl, realEigenvalue, out);
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
