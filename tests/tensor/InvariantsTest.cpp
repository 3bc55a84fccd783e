// Q, divergence, discriminant, vorticity, helicity and lambda-2.

#include <qel/TensorEigenizer.h>

#include <cmath>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "tensor/Fields.h"
#include "tensor/ReferenceFormulas.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

const Tensor kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
const Tensor kRotation = {0, -1, 0, 1, 0, 0, 0, 0, 0};
const Tensor kStrain = {1, 0, 0, 0, -1, 0, 0, 0, 0};

using FloatOperation = void (TensorEigenizer::*)(qel::FloatQELVector&) const;

float atOnePoint(const Tensor& t, FloatOperation operation) {
    const Field field({t});
    FloatQELVectorConcrete out;
    (field.eigenizer().*operation)(out);
    EXPECT_EQ(out.size(), 1u);
    return out[0];
}

Triplet vorticityOf(const Tensor& t) {
    const Field field({t});
    TripletQELVector out;
    field.eigenizer().getVorticity(out);
    EXPECT_EQ(out.size(), 1u);
    return out[0];
}

TEST(Invariants, OfTheIdentity) {
    EXPECT_EQ(atOnePoint(kIdentity, &TensorEigenizer::getInvariantQ), 3.0f);
    EXPECT_EQ(atOnePoint(kIdentity, &TensorEigenizer::getDivergence), 3.0f);
    EXPECT_EQ(vorticityOf(kIdentity), Triplet(0, 0, 0));
    EXPECT_EQ(atOnePoint(kIdentity, &TensorEigenizer::get2ndEValSymmTT), 1.0f);
}

TEST(Invariants, OfAPureRotation) {
    EXPECT_EQ(vorticityOf(kRotation), Triplet(0, 0, 2));
    EXPECT_EQ(atOnePoint(kRotation, &TensorEigenizer::getInvariantQ), 1.0f);
    EXPECT_EQ(atOnePoint(kRotation, &TensorEigenizer::getDivergence), 0.0f);
    EXPECT_EQ(atOnePoint(kRotation, &TensorEigenizer::getDiscrim), static_cast<float>(1.0 / 27.0));
    EXPECT_EQ(atOnePoint(kRotation, &TensorEigenizer::get2ndEValSymmTT), -1.0f);
}

TEST(Invariants, OfAPureStrain) {
    EXPECT_EQ(atOnePoint(kStrain, &TensorEigenizer::getInvariantQ), -1.0f);
    EXPECT_EQ(atOnePoint(kStrain, &TensorEigenizer::getDiscrim), static_cast<float>(-1.0 / 27.0));
    EXPECT_EQ(atOnePoint(kStrain, &TensorEigenizer::get2ndEValSymmTT), 1.0f);
}

TEST(Invariants, HelicityOfARotationAlongItsAxis) {
    const Field field({kRotation, kRotation});
    TripletQELVector velocity(std::vector<Triplet>{{7, 8, 3}, {1, 1, -1}});
    FloatQELVectorConcrete out;
    field.eigenizer().getHelicity(velocity, out);
    EXPECT_EQ(valuesOf(out), (std::vector<float>{6.0f, -2.0f}));
}

TEST(Invariants, MultiplesOfTheIdentityTakeTheMedian) {
    // M = T T here, with a spread below 1e-36.
    const Tensor small = {1e-10f, 0, 0, 0, 2e-10f, 0, 0, 0, 3e-10f};
    EXPECT_EQ(atOnePoint(small, &TensorEigenizer::get2ndEValSymmTT),
              static_cast<float>(static_cast<double>(2e-10f) * static_cast<double>(2e-10f)));
    EXPECT_EQ(atOnePoint({}, &TensorEigenizer::get2ndEValSymmTT), 0.0f);
}

TEST(Invariants, ASpreadAtTheThresholdIsSolvedFor) {
    // M = (a^2, ac, ae/2; ac, a^2, 0; ae/2, 0, 0), e tiny. Its diagonal has the median a^2; its
    // middle eigenvalue is a^2 - ac.
    const float a = 0x1.029fc8p-30f, c = 0x1.39d51ap-32f, at = 0x1.a07e4p-43f;
    const float below = std::nextafter(at, 0.0f);
    const auto spread = [&](double e) {
        const double m11 = double{a} * double{a};
        const double m12 = 0.5 * (double{a} * double{c} + double{c} * double{a});
        const double m13 = 0.5 * (e * double{a});
        return 0.5 * (m11 * m11 + m11 * m11) + 3.0 * (m12 * m12 + m13 * m13);
    };
    ASSERT_EQ(spread(double{at}), 1e-36);
    ASSERT_LT(spread(double{below}), 1e-36);
    const auto lambda2 = [&](float e) {
        return atOnePoint({a, c, e, 0, a, 0, 0, 0, 0}, &TensorEigenizer::get2ndEValSymmTT);
    };
    EXPECT_NEAR(lambda2(at), double{a} * double{a} - double{a} * double{c}, 1e-24);
    EXPECT_EQ(lambda2(below), static_cast<float>(double{a} * double{a}));
    EXPECT_EQ(lambda2(at), reference::secondEigenvalue({a, c, at, 0, a, 0, 0, 0, 0}));
}

TEST(Invariants, UndefinedInputsFlowThroughAsNumbers) {
    const Tensor t = {kUndef, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(atOnePoint(t, &TensorEigenizer::getDivergence), kUndef);
    EXPECT_EQ(vorticityOf({0, kUndef, 0, 0, 0, 0, 0, 0, 0}), Triplet(0, 0, -kUndef));
}

TEST(Invariants, OnlyTheFirstPointsOfLongerRowsAreTaken) {
    const Field field({kIdentity, kRotation, kStrain});
    FloatQELVectorConcrete out;
    TensorEigenizer(2, field.row1, field.row2, field.row3).getInvariantQ(out);
    EXPECT_EQ(valuesOf(out), (std::vector<float>{3.0f, 1.0f}));
}

TEST(Invariants, AssignmentRefersToTheOthersRows) {
    const Field ones({kIdentity});
    const Field rotations({kRotation, kRotation});
    TensorEigenizer eigenizer = ones.eigenizer();
    eigenizer = rotations.eigenizer();
    FloatQELVectorConcrete out;
    eigenizer.getInvariantQ(out);
    EXPECT_EQ(valuesOf(out), (std::vector<float>{1.0f, 1.0f}));
    const TensorEigenizer copy(eigenizer);
    copy.getDivergence(out);
    EXPECT_EQ(valuesOf(out), (std::vector<float>{0.0f, 0.0f}));
}

TEST(Invariants, EveryBitOverManyTensors) {
    const std::vector<Tensor> tensors = mixedTensors(5000, 31);
    const Field field(tensors);
    const TensorEigenizer eigenizer = field.eigenizer();
    FloatQELVectorConcrete q, divergence, discriminant, second, helicity;
    TripletQELVector vorticity;
    std::mt19937 random(32);
    TripletQELVector velocity;
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const Tensor t = k % 7 == 0 ? extremeTensor(random) : normalTensor(random, 5.0f);
        velocity.push_back({t[0], t[1], t[2]});
    }
    eigenizer.getInvariantQ(q);
    eigenizer.getDivergence(divergence);
    eigenizer.getDiscrim(discriminant);
    eigenizer.get2ndEValSymmTT(second);
    eigenizer.getVorticity(vorticity);
    eigenizer.getHelicity(velocity, helicity);
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const Tensor& t = tensors[k];
        SCOPED_TRACE(k);
        ASSERT_TRUE(sameBits(q[k], reference::invariantQ(t)));
        ASSERT_TRUE(sameBits(divergence[k], reference::divergence(t)));
        ASSERT_TRUE(sameBits(vorticity[k], reference::vorticity(t)));
        ASSERT_TRUE(
            sameBits(helicity[k], reference::productYxz(velocity[k], reference::vorticity(t))));
        ASSERT_TRUE(
            sameBits(discriminant[k], static_cast<float>(reference::cubic(t).discriminant)));
        ASSERT_TRUE(sameBits(second[k], reference::secondEigenvalue(t)))
            << second[k] << " " << reference::secondEigenvalue(t);
    }
}

// -- Arrays that are too short ----

TEST(InvariantsDeathTest, ShortRowsAreFatal) {
    const Field field({kIdentity, kRotation});
    FloatQELVectorConcrete out;
    TripletQELVector triplets;
    const TensorEigenizer tooMany(3, field.row1, field.row2, field.row3);
    EXPECT_DEATH(tooMany.getInvariantQ(out), "");
    EXPECT_DEATH(tooMany.getDivergence(out), "");
    EXPECT_DEATH(tooMany.getDiscrim(out), "");
    EXPECT_DEATH(tooMany.get2ndEValSymmTT(out), "");
    EXPECT_DEATH(tooMany.getVorticity(triplets), "");
    CallersArray callers;
    EXPECT_DEATH(tooMany.getInvariantQ(callers), "");
    const TripletQELVector shorter(std::vector<Triplet>(1));
    EXPECT_DEATH(TensorEigenizer(2, field.row1, field.row2, shorter).getInvariantQ(out), "");
}

TEST(InvariantsDeathTest, ShortVelocityIsFatal) {
    const Field field({kIdentity, kRotation});
    TripletQELVector velocity(std::vector<Triplet>(1));
    FloatQELVectorConcrete out;
    EXPECT_DEATH(field.eigenizer().getHelicity(velocity, out), "");
}

} // namespace
