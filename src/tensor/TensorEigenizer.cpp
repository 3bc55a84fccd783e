// The tensor analysis: each operation over the field.
//
// An operation is a formula at one point (PointFormulas.h). Where all inputs are the library's own
// kinds of arrays, its kernel (FieldKernels.h) works on their memory, and writes into that of the
// output if its values lie side by side, else into a block from which they are stored. Inputs of a
// caller's kind are read point by point.

#include <qel/TensorEigenizer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "tensor/FieldKernels.h"
#include "tensor/FieldMemory.h"
#include "tensor/FieldOperations.h"
#include "tensor/PointFormulas.h"

namespace qel {
namespace {

using Triplet = TripletBase<float>;

// -- Operations ----

// A formula of the tensor, the real eigenvalue and the swirl strength; 0 where it does not swirl.
template <auto formula>
struct OfSwirl {
    using Value = decltype(formula(Gradient(), 0.0f, 0.0f));

    QEL_KERNEL static Value whereItSwirls(const Gradient& t, float strength, float eigenvalue) {
        return formula(t, eigenvalue, strength);
    }
    static Value at(const Gradient& t, float strength, float eigenvalue) {
        return strength > 0.0f ? whereItSwirls(t, strength, eigenvalue) : Value{};
    }
    template <std::size_t width>
    using Kernel = SwirlKernel<OfSwirl, width>;
};

// -- Arrays ----

// The three rows, n points of each.
struct Field {
    std::size_t n;
    const TripletQELVector& row1;
    const TripletQELVector& row2;
    const TripletQELVector& row3;

    Gradient at(std::size_t k) const { return gradientOf(row1[k], row2[k], row3[k]); }
    GradientRows rows() const { return {memoryOf(row1, n), memoryOf(row2, n), memoryOf(row3, n)}; }
};

float valueAt(FloatQELVector& array, std::size_t k) {
    return array[k];
}

Triple valueAt(TripletQELVector& array, std::size_t k) {
    return tripleOf(array[k]);
}

// Both outputs of the swirl analysis, as one. If they are one array, the eigenvalue stays.
struct SwirlArrays {
    FloatQELVector& strength;
    FloatQELVector& eigenvalue;

    // Both or, if memory runs out, none: what only shrinks goes last, what has grown shrinks again.
    void resize(std::size_t n) {
        const std::size_t before = strength.size();
        if (n < before) {
            eigenvalue.resize(n);
            strength.resize(n);
            return;
        }
        strength.resize(n);
        try {
            eigenvalue.resize(n);
        } catch (...) {
            strength.resize(before);
            throw;
        }
    }
};

bool isLibraryArray(const SwirlArrays& arrays) {
    return qel::isLibraryArray(arrays.strength) && qel::isLibraryArray(arrays.eigenvalue);
}

SwirlValues<StridedFloats> memoryOf(SwirlArrays& arrays, std::size_t n) {
    return {qel::memoryOf(arrays.strength, n), qel::memoryOf(arrays.eigenvalue, n)};
}

// The n values of an output that lie side by side, where its kind of array has them so.
bool isContiguous(const FloatQELVector& out) {
    return typeid(out) == typeid(FloatQELVectorConcrete);
}

bool isContiguous(const TripletQELVector&) {
    return true;
}

bool isContiguous(const SwirlArrays& out) {
    return isContiguous(out.strength) && isContiguous(out.eigenvalue);
}

Elements<float> elementsOf(FloatQELVector& out, std::size_t n) {
    return {memoryOf(out, n).first};
}

Elements<Triplet> elementsOf(TripletQELVector& out, std::size_t n) {
    static_cast<void>(out[n - 1]);
    return {&out[0]};
}

SwirlValues<Elements<float>> elementsOf(SwirlArrays& out, std::size_t n) {
    return {elementsOf(out.strength, n), elementsOf(out.eigenvalue, n)};
}

// -- One by one ----

// Stores through the array's own operations. True if that changes none of the inputs, of which a
// caller's array may be a part.
template <typename Ranges>
bool store(float value, FloatQELVector& out, std::size_t k, const Ranges& inputs) {
    float& place = out[k];
    place = value;
    return std::none_of(inputs.begin(), inputs.end(),
                        [&](const MemoryRange& input) { return input.holds(&place); });
}

template <typename Ranges>
bool store(const Swirl& value, SwirlArrays& out, std::size_t k, const Ranges& inputs) {
    const bool isApart = store(value.strength, out.strength, k, inputs);
    return store(value.realEigenvalue, out.eigenvalue, k, inputs) && isApart;
}

template <typename Ranges>
bool store(const Triplet& value, TripletQELVector& out, std::size_t k, const Ranges&) {
    out[k] = value;
    return true;
}

// The points from `from` on, one by one: the definition of every operation.
template <typename Operation, typename Output, typename... Inputs>
void computeEach(std::size_t from, const Field& field, Output& out, Inputs&... inputs) {
    for (std::size_t k = from; k < field.n; ++k) {
        store(Operation::at(field.at(k), valueAt(inputs, k)...), out, k,
              std::array<MemoryRange, 0>());
    }
}

// -- Through a block ----

Elements<float> firstOf(float* buffer, const FloatQELVector&) {
    return {buffer};
}

SwirlValues<Elements<float>> firstOf(float* buffer, const SwirlArrays&) {
    return {{buffer}, {buffer + kBlock}};
}

// Computes by blocks and returns how many points are done: all, unless one changes the inputs of
// those to come.
template <typename Operation, typename Output, typename... Inputs>
std::size_t computeInBlocks(const Field& field, Output& out, Inputs&... inputs) {
    const std::size_t n = field.n;
    float buffer[2 * kBlock];
    const auto block = firstOf(buffer, out);
    for (std::size_t from = 0; from < n; from += kBlock) {
        const std::size_t count = std::min(kBlock, n - from);
        const GradientRows rows = field.rows();
        compute<Operation>(count, block, rows.after(from), memoryOf(inputs, n).after(from)...);
        if (isLibraryArray(out)) {
            const auto memory = memoryOf(out, n).after(from);
            for (std::size_t i = 0; i < count; ++i) {
                memory.set(i, block.at(i));
            }
            continue;
        }
        const std::array ranges{MemoryRange(rows.row1, n), MemoryRange(rows.row2, n),
                                MemoryRange(rows.row3, n), MemoryRange(memoryOf(inputs, n), n)...};
        for (std::size_t i = 0; i < count; ++i) {
            if (!store(block.at(i), out, from + i, ranges)) {
                return from + i + 1;
            }
        }
    }
    return n;
}

// -- An operation over the field ----

template <typename Operation, typename Output, typename... Inputs>
void evaluate(const Field& field, Output& out, Inputs&... inputs) {
    constexpr std::size_t kMinPoints = 4; // of which a kernel is faster
    const std::size_t n = field.n;
    out.resize(n);
    std::size_t done = 0;
    if (n >= kMinPoints && (isLibraryArray(inputs) && ...)) {
        if (isContiguous(out)) {
            compute<Operation>(n, elementsOf(out, n), field.rows(), memoryOf(inputs, n)...);
            return;
        }
        if constexpr (!std::is_same_v<Output, TripletQELVector>) {
            done = computeInBlocks<Operation>(field, out, inputs...);
        }
    }
    computeEach<Operation>(done, field, out, inputs...);
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
    evaluate<InGroups<InvariantQ>>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDivergence(FloatQELVector& out) const {
    evaluate<InGroups<Divergence>>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getDiscrim(FloatQELVector& out) const {
    evaluate<Discriminant>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getVorticity(TripletQELVector& out) const {
    evaluate<InGroups<Vorticity>>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getHelicity(TripletQELVector& velocity, FloatQELVector& out) const {
    evaluate<InGroups<Helicity>>({n_, *row1_, *row2_, *row3_}, out, velocity);
}

void TensorEigenizer::get2ndEValSymmTT(FloatQELVector& out) const {
    evaluate<SecondEigenvalue>({n_, *row1_, *row2_, *row3_}, out);
}

// -- Eigenvalues and what is built on them ----

void TensorEigenizer::getSwirlStrength(FloatQELVector& swirl,
                                       FloatQELVector& realEigenvalue) const {
    SwirlArrays out = {swirl, realEigenvalue};
    evaluate<SwirlAnalysis>({n_, *row1_, *row2_, *row3_}, out);
}

void TensorEigenizer::getSwirlStretchRate(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                          FloatQELVector& out) const {
    evaluate<OfSwirl<swirlStretchRate>>({n_, *row1_, *row2_, *row3_}, out, swirl, realEigenvalue);
}

void TensorEigenizer::getRealEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluate<OfSwirl<eigenvectorHelicity>>({n_, *row1_, *row2_, *row3_}, out, swirl,
                                           realEigenvalue);
}

void TensorEigenizer::getNormEigenHelicity(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                           FloatQELVector& out) const {
    evaluate<OfSwirl<normalHelicity>>({n_, *row1_, *row2_, *row3_}, out, swirl, realEigenvalue);
}

void TensorEigenizer::getSwirlNormal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                     TripletQELVector& out) const {
    evaluate<OfSwirl<scaledNormal>>({n_, *row1_, *row2_, *row3_}, out, swirl, realEigenvalue);
}

void TensorEigenizer::getEVecReal(FloatQELVector& swirl, FloatQELVector& realEigenvalue,
                                  TripletQELVector& out) const {
    evaluate<OfSwirl<scaledEigenvector>>({n_, *row1_, *row2_, *row3_}, out, swirl, realEigenvalue);
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
