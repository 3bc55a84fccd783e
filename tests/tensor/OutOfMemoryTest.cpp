// Outputs are computed, or hold what they held where memory for them runs out.

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "support/AllocationFailures.h"
#include "tensor/Fields.h"
#include "tensor/Operations.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TripletQELVector;

template <typename Output>
auto contentsOf(const Output& out) {
    const auto& values = out.getInternals();
    return std::vector<std::decay_t<decltype(values[0])>>(values);
}

const std::vector<float> kBefore(3, -7.0f);

FloatQELVectorConcrete outputOf(const qel::FloatQELVector* /*kind*/) {
    return {kBefore.data(), 3};
}

TripletQELVector outputOf(const TripletQELVector* /*kind*/) {
    return {kBefore.data(), 3};
}

class TensorOutOfMemory : public ::testing::Test {
protected:
    TensorOutOfMemory() { all.getSwirlStrength(swirl, eigenvalue); }

    template <typename Output, typename Value>
    void check(const Operation<Output, Value>& operation) {
        SCOPED_TRACE(operation.name);
        const Inputs in = {swirl, eigenvalue, velocity};
        const int failures =
            allocationFailures([] { return outputOf(static_cast<const Output*>(nullptr)); },
                               [](const auto& out) { return contentsOf(out); },
                               [&](auto& out) { operation.run(all, in, out); });
        EXPECT_GT(failures, 0);
    }

    Field field{mixedTensors(40, 5)};
    qel::TensorEigenizer all = field.eigenizer();
    FloatQELVectorConcrete swirl, eigenvalue;
    TripletQELVector velocity = field.row1;
};

TEST_F(TensorOutOfMemory, AnOutputIsComputedOrStays) {
    for (const auto& operation : kFloatOperations) {
        check(operation);
    }
    for (const auto& operation : kTripletOperations) {
        check(operation);
    }
}

TEST_F(TensorOutOfMemory, BothOutputsOfTheSwirlAreComputedOrStay) {
    using Both = std::pair<FloatQELVectorConcrete, FloatQELVectorConcrete>;
    const std::vector<float> many(50, -8.0f);
    for (const std::size_t size : {3u, 50u}) { // the first grows, or shrinks
        const int failures = allocationFailures(
            [&] {
                return Both({many.data(), size}, {kBefore.data(), 3});
            },
            [](const Both& both) {
                return std::make_pair(contentsOf(both.first), contentsOf(both.second));
            },
            [&](Both& both) { all.getSwirlStrength(both.first, both.second); });
        EXPECT_GT(failures, 0);
    }
}

} // namespace
