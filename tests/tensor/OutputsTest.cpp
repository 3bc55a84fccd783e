// What all operations do with their outputs: resized to the number of points, whatever they held.

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "tensor/Fields.h"
#include "tensor/Operations.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorComponent;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

const Tensor kRotation = {0, -1, 0, 1, 0, 0, 0, 0, 0};

// Of n points, from a field of three.
void expectOutputsOf(std::size_t n) {
    SCOPED_TRACE(n);
    const Field field(std::vector<Tensor>(3, kRotation));
    const TensorEigenizer all = field.eigenizer();
    const TensorEigenizer some(n, field.row1, field.row2, field.row3);
    TripletQELVector velocity = field.row1;
    FloatQELVectorConcrete swirl, eigenvalue;
    all.getSwirlStrength(swirl, eigenvalue);
    const Inputs in = {swirl, eigenvalue, velocity};
    for (const std::size_t before : {std::size_t{0}, std::size_t{1}, std::size_t{9}}) {
        forEachOperation<FloatQELVectorConcrete>([&](const auto& operation, auto& out) {
            out.resize(before);
            operation.run(some, in, out);
            EXPECT_EQ(out.size(), n);
        });
        FloatQELVectorConcrete newSwirl, newEigenvalue;
        newSwirl.resize(before);
        newEigenvalue.resize(2 * before);
        some.getSwirlStrength(newSwirl, newEigenvalue);
        EXPECT_EQ(newSwirl.size(), n);
        EXPECT_EQ(newEigenvalue.size(), n);
    }
    EXPECT_EQ(swirl.size(), 3u) << "an input";
    EXPECT_EQ(eigenvalue.size(), 3u) << "an input";
    EXPECT_EQ(velocity.size(), 3u) << "an input";
}

TEST(TensorOutputs, AreCutOrGrowToTheNumberOfPoints) {
    expectOutputsOf(1);
    expectOutputsOf(2);
    expectOutputsOf(3);
}

TEST(TensorOutputs, WithoutPointsAreEmptied) {
    expectOutputsOf(0);
}

TEST(TensorOutputs, OfAViewResizeItsTripletArray) {
    const Field field(std::vector<Tensor>(3, kRotation));
    TripletQELVector velocity = field.row1;
    FloatQELVectorConcrete swirl, eigenvalue;
    field.eigenizer().getSwirlStrength(swirl, eigenvalue);
    for (const auto& operation : kFloatOperations) {
        TripletQELVector triplets(std::vector<Triplet>{{7, 8, 9}});
        FloatQELVectorComponent view(triplets, 1);
        operation.run(field.eigenizer(), {swirl, eigenvalue, velocity}, view);
        ASSERT_EQ(triplets.size(), 3u) << operation.name;
        EXPECT_EQ(triplets[0].x, 7.0f) << operation.name;
        EXPECT_EQ(triplets[0].z, 9.0f) << operation.name;
        EXPECT_EQ(triplets[2].x, 0.0f) << "a new triplet";
        EXPECT_EQ(triplets[2].z, 0.0f) << "a new triplet";
    }
}

} // namespace
