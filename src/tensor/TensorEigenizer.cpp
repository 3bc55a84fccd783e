// The tensor analysis: each operation over the field.
//
// An operation is a formula at one point (PointFormulas.h, RootFormulas.h) in the loop below that
// goes through the arrays' own operations. Arrays of the library's own kinds that share no memory
// take the same formula through the vector units (FieldKernels.h, SplitRows.h, RootKernels.h), with
// the same result.

#include <qel/TensorEigenizer.h>

#include <cstddef>
#include <tuple>

#include "platform/VectorDispatch.h"
#include "tensor/FieldAccess.h"
#include "tensor/FieldKernels.h"
#include "tensor/PointFormulas.h"
#include "tensor/RootFormulas.h"
#include "tensor/RootKernels.h"
#include "tensor/Runs.h"
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

// -- Outputs ----

// Both outputs of the swirl analysis, as one.
struct SwirlArrays {
    FloatQELVector& strength;
    FloatQELVector& eigenvalue;

    void resize(std::size_t n) {
        strength.resize(n);
        eigenvalue.resize(n);
    }
};

bool isOwnKind(const SwirlArrays& arrays) {
    return isOwnKind(arrays.strength) && isOwnKind(arrays.eigenvalue);
}

SwirlRuns runOf(SwirlArrays& arrays, std::size_t n) {
    return {runOf(arrays.strength, n), runOf(arrays.eigenvalue, n)};
}

void store(float value, FloatQELVector& out, std::size_t k) {
    out[k] = value;
}

void store(const Triple& value, TripletQELVector& out, std::size_t k) {
    out[k] = tripletOf(value);
}

void store(const Swirl& value, SwirlArrays& out, std::size_t k) {
    out.strength[k] = value.strength;
    out.eigenvalue[k] = value.realEigenvalue;
}

// -- An operation over the field ----

// out = atPoint(k) for every point k in order, through the arrays' operations; or the same by
// onMemory(n, memory of out, rows, memory of the inputs...) where that may stand for it.
template <typename OnMemory, typename AtPoint, typename Output, typename... Inputs>
void evaluate(const Field& field, const OnMemory& onMemory, const AtPoint& atPoint, Output& out,
              Inputs&... inputs) {
    const std::size_t n = field.n;
    out.resize(n);
    if (n == 0) {
        return;
    }
    if (isOwnKind(out) && (isOwnKind(inputs) && ...)) {
        const std::tuple memory{runOf(inputs, n)...};
        const auto output = runOf(out, n);
        const Rows rows = field.rows();
        const auto run = [&](const auto&... input) {
            const bool apart = standsApart(n, output, rows, input...);
            if (apart) {
                onMemory(n, output, rows, input...);
            }
            return apart;
        };
        if (std::apply(run, memory)) {
            return;
        }
    }
    for (std::size_t k = 0; k < n; ++k) {
        store(atPoint(k), out, k);
    }
}

// A formula of the tensor, the memory read by groups and their components put apart.
template <typename Formula, template <typename, std::size_t> class Split = SplitKernel,
          typename Output>
void evaluateSplit(const Field& field, Output& out) {
    evaluate(
        field, [](auto... memory) { onVectorUnitSplit<Formula, Split>(memory...); },
        [&](std::size_t k) { return Formula::at(field.at(k)); }, out);
}

// A root, bracketed in vector lanes: that costs more than the C library's function, unless many are
// done at once.
template <typename Root, typename Output>
void evaluateRoot(const Field& field, Output& out) {
    const auto onMemory = [](auto... memory) {
        if (vectorUnit() == VectorUnit::portable) {
            runPortable<PointKernel<Root>>(memory...);
        } else {
            onVectorUnit<BracketedKernel<Root>>(memory...);
        }
    };
    evaluate(
        field, onMemory, [&](std::size_t k) { return Root::at(field.at(k)); }, out);
}

// A formula of the tensor, the real eigenvalue and the swirl strength, where it swirls. Both are
// read at every point, also where the second is not needed: inputs that are too short are fatal,
// whatever their values.
template <auto formula, typename Output>
void evaluateSwirl(const Field& field, FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                   Output& out) {
    using Value = decltype(formula(Gradient(), 0.0f, 0.0f));
    const auto atPoint = [&](std::size_t k) {
        const float strength = swirl[k];
        const float eigenvalue = realEigenvalue[k];
        return strength > 0.0f ? formula(field.at(k), eigenvalue, strength) : Value{};
    };
    evaluate(
        field, [](auto... memory) { onVectorUnit<SwirlPointKernel<formula>>(memory...); }, atPoint,
        out, swirl, realEigenvalue);
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
    evaluateSplit<InvariantQ>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDivergence(FloatQELVector& out) const {
    evaluateSplit<Divergence>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDiscrim(FloatQELVector& out) const {
    evaluateSplit<Discriminant, SplitLoopKernel>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getVorticity(TripletQELVector& out) const {
    evaluateSplit<Vorticity>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getHelicity(TripletQELVector& velocity, FloatQELVector& out) const {
    const Field field = {n_, *row1_, *row2_, *row3_};
    evaluate(
        field, [](auto... memory) { onVectorUnitSplit<Helicity, SplitKernel>(memory...); },
        [&](std::size_t k) { return Helicity::at(field.at(k), tripleOf(velocity[k])); }, out,
        velocity);
}

void TensorEigenizer::get2ndEValSymmTT(FloatQELVector& out) const {
    evaluateRoot<SecondEigenvalue>({n_, *row1_, *row2_, *row3_}, out);
}

// -- Eigenvalues and what is built on them ----

void TensorEigenizer::getSwirlStrength(FloatQELVector& swirl,
                                       FloatQELVector& realEigenvalue) const {
    SwirlArrays out = {swirl, realEigenvalue};
    evaluateRoot<SwirlAnalysis>({n_, *row1_, *row2_, *row3_}, out);
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
    return tripletOf(realEigenvector(gradientOf(row1, row2, row3), realEigenvalue));
}

Triplet TensorEigenizer::swirlnormal(const Triplet& row1, const Triplet& row2, const Triplet& row3,
                                     float realEigenvalue, float swirlStrength) const {
    return tripletOf(swirlPlaneNormal(gradientOf(row1, row2, row3), realEigenvalue, swirlStrength));
}

} // namespace qel
