// Arrays of every kind, and outputs that share memory with inputs: always the result of the loop
// over the points in order, and the expiry of statistics that goes with it.

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "support/Bits.h"
#include "support/Errors.h"
#include "tensor/Fields.h"
#include "tensor/Operations.h"
#include "tensor/ReferenceFormulas.h"

namespace {

using namespace qel_test;
using qel::FloatQELVector;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

constexpr std::size_t kCount = 700; // several blocks

std::vector<Tensor> tensors() {
    return mixedTensors(kCount, 51);
}

// -- A caller's own kind ----

std::vector<std::size_t> upTo(std::size_t n) {
    std::vector<std::size_t> indices(n);
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    return indices;
}

TEST(CallersArrays, AreResizedAndWrittenThroughTheirOperationsInOrder) {
    const Field field(tensors());
    const TensorEigenizer t = field.eigenizer();
    TripletQELVector velocity = field.row3;
    CallersArray swirl, eigenvalue;
    t.getSwirlStrength(swirl, eigenvalue);
    for (const CallersArray* const out : {&swirl, &eigenvalue}) {
        EXPECT_EQ(out->resized, 1);
        EXPECT_EQ(out->asked, upTo(kCount));
    }
    for (const auto& operation : kFloatOperations) {
        SCOPED_TRACE(operation.name);
        CallersArray out;
        operation.run(t, {swirl, eigenvalue, velocity}, out);
        EXPECT_EQ(out.resized, 1);
        EXPECT_EQ(out.asked, upTo(kCount));
    }
}

TEST(CallersArrays, AreReadThroughTheirOperationsInOrder) {
    const Field field(tensors());
    const TensorEigenizer t = field.eigenizer();
    TripletQELVector velocity;
    forEachOperation<FloatQELVectorConcrete>([&](const auto& operation, auto& out) {
        if (!operation.takesSwirl) {
            return;
        }
        CallersArray swirl, eigenvalue;
        swirl.resize(kCount); // nothing swirls: the eigenvalues are read all the same
        eigenvalue.resize(kCount);
        operation.run(t, {swirl, eigenvalue, velocity}, out);
        EXPECT_EQ(swirl.asked, upTo(kCount));
        EXPECT_EQ(eigenvalue.asked, upTo(kCount));
        EXPECT_EQ(swirl.resized + eigenvalue.resized, 2) << "by this test";
    });
}

TEST(CallersArrays, OfNoPointsAreOnlyResized) {
    const Field field;
    CallersArray swirl, eigenvalue;
    TripletQELVector velocity;
    for (const auto& operation : kFloatOperations) {
        CallersArray out;
        operation.run(field.eigenizer(), {swirl, eigenvalue, velocity}, out);
        EXPECT_EQ(out.resized, 1) << operation.name;
        EXPECT_TRUE(out.asked.empty()) << operation.name;
    }
    EXPECT_EQ(swirl.resized + eigenvalue.resized, 0);
    EXPECT_TRUE(swirl.asked.empty() && eigenvalue.asked.empty());
}

// A class derived from the library's, with an operation of its own.
struct Negating : FloatQELVectorConcrete {
    using FloatQELVectorConcrete::operator[];
    float& operator[](std::size_t i) override {
        asked.push_back(i);
        return FloatQELVectorConcrete::operator[](i);
    }
    std::vector<std::size_t> asked;
};

TEST(CallersArrays, DerivedFromTheLibrarysAreTheirOwnKind) {
    const Field field(tensors());
    Negating out;
    field.eigenizer().getDivergence(out);
    EXPECT_EQ(out.asked.size(), kCount);
}

// A caller's array whose values lie among the components of a triplet array, in an order of its
// own.
class Scattered : public FloatQELVector {
public:
    Scattered(TripletQELVector& triplets, std::vector<std::size_t> places)
        : triplets_(triplets), places_(std::move(places)) {}
    const float& operator[](std::size_t i) const override { return at(i); }
    float& operator[](std::size_t i) override { return at(i); }
    void resize(std::size_t n) override { ASSERT_EQ(n, places_.size()); }
    std::size_t size() const override { return places_.size(); }
    Iterator Begin() override { return {}; }
    Iterator End() override { return {}; }

private:
    float& at(std::size_t i) const {
        const std::size_t place = places_.at(i);
        return triplets_[place / 3].getRef(static_cast<int>(place % 3));
    }
    int getStride() const override { return 1; }

    TripletQELVector& triplets_;
    std::vector<std::size_t> places_;
};

using Places = std::vector<std::size_t>;

// Storing a value changes the tensor at points to come: each is computed from what is there then.
void checkOutputWithinRow(const Places& places,
                          void (TensorEigenizer::*operation)(FloatQELVector&) const) {
    const std::size_t n = places.size();
    Field field(mixedTensors(n, 52)), expected(mixedTensors(n, 52));
    Scattered out(field.row2, places), reference(expected.row2, places);
    (field.eigenizer().*operation)(out);
    for (std::size_t k = 0; k < n; ++k) {
        FloatQELVectorConcrete one;
        const TensorEigenizer all = expected.eigenizer();
        (all.*operation)(one);
        reference[k] = one[k];
    }
    EXPECT_TRUE(sameBitsInAll(field.row2.getInternals(), expected.row2.getInternals()));
}

TEST(CallersArrays, WithinTheMemoryOfARowChangeTheTensorPointByPoint) {
    constexpr std::size_t n = 300;
    Places reversed(n), ahead(n), swapped(n), behind(n);
    for (std::size_t k = 0; k < n; ++k) {
        reversed[k] = 3 * (n - 1 - k);
        ahead[k] = 3 * std::min(k + 1, n - 1) + 1;
        behind[k] = k;
        swapped[k] = 3 * (k ^ 1U) + 2;
    }
    for (const Places& places : {reversed, ahead, behind, swapped}) {
        checkOutputWithinRow(places, &TensorEigenizer::getDivergence);
        checkOutputWithinRow(places, &TensorEigenizer::get2ndEValSymmTT);
    }
}

TEST(CallersArrays, WithinTheMemoryOfTheVelocityChangeItPointByPoint) {
    constexpr std::size_t n = 300;
    const Field field(mixedTensors(n, 53));
    TripletQELVector velocity = field.row1;
    Places ahead(n);
    for (std::size_t k = 0; k < n; ++k) {
        ahead[k] = 3 * std::min(k + 1, n - 1);
    }
    Scattered out(velocity, ahead);
    field.eigenizer().getHelicity(velocity, out);
    Triplet u = field.row1[0];
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const float expected = reference::productYxz(u, reference::vorticity(field.at(k)));
        u = field.row1[k + 1];
        u.x = expected;
        ASSERT_TRUE(k + 2 == n || sameBits(velocity[k + 1].x, expected)) << k;
    }
}

// The outputs of every operation.
struct Results {
    std::vector<std::vector<float>> floats;
    std::vector<std::vector<Triplet>> triplets;
};

Results resultsOf(const TensorEigenizer& t, FloatQELVector& swirl, FloatQELVector& eigenvalue,
                  FloatQELVector& out, TripletQELVector velocity) {
    Results r;
    t.getSwirlStrength(swirl, eigenvalue);
    r.floats = {valuesOf(swirl), valuesOf(eigenvalue)};
    const Inputs in = {swirl, eigenvalue, velocity};
    for (const auto& operation : kFloatOperations) {
        operation.run(t, in, out);
        r.floats.push_back(valuesOf(out));
    }
    TripletQELVector triplets;
    for (const auto& operation : kTripletOperations) {
        operation.run(t, in, triplets);
        r.triplets.push_back(triplets.getInternals());
    }
    return r;
}

void expectSame(const Results& a, const Results& b) {
    ASSERT_EQ(a.floats.size(), b.floats.size());
    for (std::size_t i = 0; i < a.floats.size(); ++i) {
        EXPECT_TRUE(sameBitsInAll(a.floats[i], b.floats[i])) << "float output " << i;
    }
    ASSERT_EQ(a.triplets.size(), b.triplets.size());
    for (std::size_t i = 0; i < a.triplets.size(); ++i) {
        EXPECT_TRUE(sameBitsInAll(a.triplets[i], b.triplets[i])) << "triplet output " << i;
    }
}

TEST(SharedMemory, EveryKindOfArrayGivesTheSame) {
    const Field field(tensors());
    const TensorEigenizer t = field.eigenizer();
    CallersArray swirl, eigenvalue, out;
    const Results expected = resultsOf(t, swirl, eigenvalue, out, field.row2);

    FloatQELVectorConcrete ownSwirl, ownEigenvalue, ownOut;
    expectSame(resultsOf(t, ownSwirl, ownEigenvalue, ownOut, field.row2), expected);

    // All three outputs in one triplet array, in every order.
    for (int first = 0; first < 3; ++first) {
        TripletQELVector triplets;
        FloatQELVectorComponent a(triplets, first);
        FloatQELVectorComponent b(triplets, (first + 1) % 3);
        FloatQELVectorComponent c(triplets, (first + 2) % 3);
        expectSame(resultsOf(t, a, b, c, field.row2), expected);
    }
    CallersArray mixedOut;
    expectSame(resultsOf(t, ownSwirl, ownEigenvalue, mixedOut, field.row2), expected);
    CallersArray mixedSwirl;
    expectSame(resultsOf(t, mixedSwirl, ownEigenvalue, ownOut, field.row2), expected);
    TripletQELVector triplets;
    FloatQELVectorComponent view(triplets, 1);
    expectSame(resultsOf(t, ownSwirl, view, mixedOut, field.row2), expected);
    expectSame(resultsOf(t, view, mixedSwirl, ownOut, field.row2), expected);
}

// -- Outputs that are inputs ----

TEST(SharedMemory, AViewOfARowAsOutput) {
    const std::vector<Tensor> start = tensors();
    for (int row = 0; row < 3; ++row) {
        for (int component = 0; component < 3; ++component) {
            Field field(start);
            TripletQELVector* const rows[] = {&field.row1, &field.row2, &field.row3};
            FloatQELVectorComponent out(*rows[row], component);
            field.eigenizer().getDiscrim(out);
            for (std::size_t k = 0; k < kCount; ++k) {
                Tensor expected = start[k];
                expected[static_cast<std::size_t>(3 * row + component)] =
                    static_cast<float>(reference::cubic(start[k]).discriminant);
                const Tensor actual = field.at(k);
                for (std::size_t i = 0; i < 9; ++i) {
                    ASSERT_TRUE(sameBits(actual[i], expected[i])) << k << " " << i;
                }
            }
        }
    }
}

TEST(SharedMemory, ARowAsVorticityOutput) {
    const std::vector<Tensor> start = tensors();
    Field field(start);
    field.eigenizer().getVorticity(field.row2);
    for (std::size_t k = 0; k < kCount; ++k) {
        ASSERT_TRUE(sameBits(field.row2[k], reference::vorticity(start[k])));
    }
}

TEST(SharedMemory, TheVelocityAsHelicityOutput) {
    const Field field(tensors());
    TripletQELVector velocity = field.row3;
    FloatQELVectorComponent out(velocity, 0);
    field.eigenizer().getHelicity(velocity, out);
    for (std::size_t k = 0; k < kCount; ++k) {
        const Triplet u = field.row3[k];
        ASSERT_TRUE(
            sameBits(velocity[k].x, reference::productYxz(u, reference::vorticity(field.at(k)))));
        ASSERT_TRUE(sameBits(velocity[k].y, u.y));
    }
}

TEST(SharedMemory, ARowAsVelocity) {
    Field field(tensors());
    FloatQELVectorConcrete out;
    field.eigenizer().getHelicity(field.row1, out);
    for (std::size_t k = 0; k < kCount; ++k) {
        const Tensor t = field.at(k);
        ASSERT_TRUE(
            sameBits(out[k], reference::productYxz(field.row1[k], reference::vorticity(t))));
    }
}

TEST(SharedMemory, BothSwirlOutputsInOneArrayKeepTheEigenvalue) {
    const Field field(tensors());
    FloatQELVectorConcrete both;
    field.eigenizer().getSwirlStrength(both, both);
    TripletQELVector triplets;
    FloatQELVectorComponent view(triplets, 1), again(triplets, 1);
    field.eigenizer().getSwirlStrength(view, again);
    for (std::size_t k = 0; k < kCount; ++k) {
        ASSERT_TRUE(sameBits(both[k], reference::swirl(field.at(k)).eigenvalue));
        ASSERT_TRUE(sameBits(view[k], both[k]));
    }
}

TEST(SharedMemory, TheSwirlStrengthAsOutput) {
    const Field field(tensors());
    FloatQELVectorConcrete swirl, eigenvalue, expected;
    field.eigenizer().getSwirlStrength(swirl, eigenvalue);
    field.eigenizer().getSwirlStretchRate(swirl, eigenvalue, expected);
    FloatQELVectorConcrete inPlace(swirl);
    field.eigenizer().getSwirlStretchRate(inPlace, eigenvalue, inPlace);
    EXPECT_TRUE(sameBitsInAll(valuesOf(inPlace), valuesOf(expected)));
    FloatQELVectorConcrete replaced(eigenvalue);
    field.eigenizer().getSwirlStretchRate(swirl, replaced, replaced);
    EXPECT_TRUE(sameBitsInAll(valuesOf(replaced), valuesOf(expected)));
}

TEST(SharedMemory, AViewOfTheSwirlsArrayAsTripletOutput) {
    // Swirl and eigenvalue in components of the very array that takes the eigenvectors.
    const Field field(tensors());
    FloatQELVectorConcrete swirl, eigenvalue;
    TripletQELVector expected;
    field.eigenizer().getSwirlStrength(swirl, eigenvalue);
    field.eigenizer().getEVecReal(swirl, eigenvalue, expected);
    TripletQELVector triplets;
    FloatQELVectorComponent x(triplets, 0), z(triplets, 2);
    field.eigenizer().getSwirlStrength(x, z);
    field.eigenizer().getEVecReal(x, z, triplets);
    EXPECT_TRUE(sameBitsInAll(triplets.getInternals(), expected.getInternals()));
}

TEST(SharedMemory, AnOutputThatResizesARow) {
    // The row grows with zeros to the length that the object asks of it.
    Field field(std::vector<Tensor>(3, Tensor{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    TripletQELVector row1(std::vector<Triplet>{{1, 2, 3}});
    FloatQELVectorComponent out(row1, 0);
    TensorEigenizer(3, row1, field.row2, field.row3).getDivergence(out);
    EXPECT_EQ(valuesOf(out), (std::vector<float>{15, 14, 14}));
}

// -- Expiry ----

// The maximum as computed after the first value was changed behind the array's back: the old one
// if the statistics are still in force.
template <typename Action>
bool expires(FloatQELVectorConcrete& array, const Action& action) {
    array.getMax();
    *array.begin() = 1e9f;
    action();
    return array.getMax() == 1e9f;
}

template <typename FloatOutput>
void expectInputsToExpire() {
    const Field field(std::vector<Tensor>(3, Tensor{0, -1, 0, 1, 0, 0, 0, 0, 0}));
    const TensorEigenizer t = field.eigenizer();
    const TensorEigenizer none(0, field.row1, field.row2, field.row3);
    TripletQELVector velocity;
    forEachOperation<FloatOutput>([&](const auto& operation, auto& out) {
        if (!operation.takesSwirl) {
            return;
        }
        FloatQELVectorConcrete swirl, eigenvalue;
        const Inputs in = {swirl, eigenvalue, velocity};
        t.getSwirlStrength(swirl, eigenvalue);
        EXPECT_TRUE(expires(swirl, [&] { operation.run(t, in, out); }));
        EXPECT_TRUE(expires(eigenvalue, [&] { operation.run(t, in, out); }));
        t.getSwirlStrength(swirl, eigenvalue);
        EXPECT_FALSE(expires(swirl, [&] { operation.run(none, in, out); }));
        EXPECT_FALSE(expires(eigenvalue, [&] { operation.run(none, in, out); }));
    });
}

TEST(SharedMemory, InputsReadByIndexExpire) {
    expectInputsToExpire<FloatQELVectorConcrete>();
    expectInputsToExpire<CallersArray>();
}

TEST(SharedMemory, VelocityExpiresAndRowsDoNot) {
    const Field field(std::vector<Tensor>(3, Tensor{0, -1, 0, 1, 0, 0, 0, 0, 0}));
    TripletQELVector velocity(std::vector<Triplet>(3, Triplet(1, 2, 3)));
    EXPECT_EQ(velocity.getNvalid(), 3);
    EXPECT_EQ(field.row1.getNvalid(), 3);
    FloatQELVectorConcrete out;
    field.eigenizer().getHelicity(velocity, out);
    EXPECT_EQ(velocity.getNvalid(), 6);
    EXPECT_EQ(field.row1.getNvalid(), 3);
    TensorEigenizer(0, field.row1, field.row2, field.row3).getHelicity(velocity, out);
    EXPECT_EQ(velocity.getNvalid(), 6);
}

TEST(SharedMemory, OutputsExpire) {
    const Field field(std::vector<Tensor>(3, Tensor{0, -1, 0, 1, 0, 0, 0, 0, 0}));
    FloatQELVectorConcrete out;
    out.resize(3);
    EXPECT_EQ(out.getMax(), 0.0f);
    field.eigenizer().getInvariantQ(out);
    EXPECT_EQ(out.getMax(), 1.0f);

    // A view keeps its own statistics, and its triplet array's expire.
    TripletQELVector triplets(std::vector<Triplet>(3));
    FloatQELVectorComponent view(triplets, 1);
    EXPECT_EQ(view.getMax(), 0.0f);
    EXPECT_EQ(triplets.getNvalid(), 3);
    field.eigenizer().getInvariantQ(view);
    EXPECT_EQ(view.getMax(), 0.0f);
    EXPECT_EQ(triplets.getNvalid(), 6);
    view.invalidateCache();
    EXPECT_EQ(view.getMax(), 1.0f);

    field.eigenizer().getVorticity(triplets);
    EXPECT_EQ(triplets.getNvalid(), 9);
}

TEST(SharedMemory, ABadComponentIsRefusedAtTheFirstPoint) {
    const Field field(std::vector<Tensor>(3, Tensor{}));
    TripletQELVector triplets;
    FloatQELVectorComponent view(triplets, 3);
    EXPECT_THAT([&] { field.eigenizer().getInvariantQ(view); },
                throwsInvalid("Triplet", "getRef", "Index (3) out of range 0..2"));
    EXPECT_EQ(triplets.size(), 3u) << "resized before";
}

} // namespace
