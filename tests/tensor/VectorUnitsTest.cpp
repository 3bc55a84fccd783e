// Every output is the same in every bit on every vector unit and in the point by point loop.

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "platform/VectorUnit.h"
#include "support/Bits.h"
#include "support/VectorUnits.h"
#include "tensor/Fields.h"
#include "tensor/Operations.h"
#include "tensor/PlainFormulas.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;
using qel::VectorUnit;

class VectorUnits : public ::testing::TestWithParam<VectorUnit> {
protected:
    void SetUp() override { qel::forceVectorUnit(GetParam()); }
    void TearDown() override { qel::restoreVectorUnit(); }
};

TripletQELVector plainVorticity(const std::vector<Tensor>& tensors) {
    TripletQELVector vorticity;
    for (const Tensor& tensor : tensors) {
        vorticity.push_back(plain::vorticity(tensor));
    }
    return vorticity;
}

// Compares all outputs with those that go point by point: into arrays of a caller's kind, or from
// them.
void checkAll(const std::vector<Tensor>& tensors) {
    const Field field(tensors);
    const TensorEigenizer t = field.eigenizer();
    TripletQELVector velocity = field.row3;
    FloatQELVectorConcrete swirl, eigenvalue;
    CallersArray callersSwirl, callersEigenvalue;
    t.getSwirlStrength(swirl, eigenvalue);
    t.getSwirlStrength(callersSwirl, callersEigenvalue);
    EXPECT_TRUE(sameBitsInAll(valuesOf(swirl), valuesOf(callersSwirl)));
    EXPECT_TRUE(sameBitsInAll(valuesOf(eigenvalue), valuesOf(callersEigenvalue)));
    const Inputs in = {swirl, eigenvalue, velocity};
    const Inputs callersIn = {callersSwirl, callersEigenvalue, velocity};
    for (const auto& operation : kFloatOperations) {
        FloatQELVectorConcrete own;
        CallersArray callers;
        operation.run(t, in, own);
        operation.run(t, in, callers);
        EXPECT_TRUE(sameBitsInAll(valuesOf(own), valuesOf(callers))) << operation.name;
    }

    TripletQELVector fast, plain;
    for (const auto& operation : kTripletOperations) {
        operation.run(t, in, fast);
        if (operation.takesSwirl) {
            operation.run(t, callersIn, plain);
        } else {
            plain = plainVorticity(tensors);
        }
        EXPECT_TRUE(sameBitsInAll(fast.getInternals(), plain.getInternals())) << operation.name;
    }
}

TEST_P(VectorUnits, RandomTensors) {
    std::mt19937 random(61);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 20000; ++k) {
        tensors.push_back(normalTensor(random, 3.0f));
    }
    checkAll(tensors);
}

TEST_P(VectorUnits, DegenerateTensors) {
    std::mt19937 random(62);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 10000; ++k) {
        tensors.push_back(degenerateTensor(random));
    }
    checkAll(tensors);
}

TEST_P(VectorUnits, ExtremeTensors) {
    std::mt19937 random(63);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 10000; ++k) {
        tensors.push_back(extremeTensor(random));
    }
    checkAll(tensors);
}

TEST_P(VectorUnits, TensorsOfEveryScale) {
    std::mt19937 random(64);
    std::vector<Tensor> tensors;
    for (int exponent = -148; exponent < 128; ++exponent) {
        for (int k = 0; k < 20; ++k) {
            tensors.push_back(normalTensor(random, std::ldexp(1.0f, exponent)));
        }
    }
    checkAll(tensors);
}

// Near repeated eigenvalues, where the cosine is near its ends and the discriminant near zero.
TEST_P(VectorUnits, NearlyDegenerateTensors) {
    std::mt19937 random(65);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 10000; ++k) {
        Tensor t = degenerateTensor(random);
        const Tensor noise =
            normalTensor(random, std::ldexp(1.0f, -static_cast<int>(random() % 30)));
        for (std::size_t i = 0; i < 9; ++i) {
            t[i] += noise[i];
        }
        tensors.push_back(t);
    }
    checkAll(tensors);
}

TEST_P(VectorUnits, FlowsInOnePlane) {
    std::mt19937 random(66);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 3000; ++k) {
        const Tensor t = normalTensor(random, 1.0f);
        tensors.push_back({t[0], t[1], 0, t[3], k % 2 == 0 ? t[4] : -t[0], 0, 0, 0, 0});
    }
    checkAll(tensors);
}

// Eigenvalues about as small as a float can be: the ends of the real one, which is near 0, round to
// zeros of both signs, or to the least float and zero.
TEST_P(VectorUnits, EigenvaluesThatVanish) {
    std::mt19937 random(68);
    std::uniform_real_distribution<float> mantissa(1.0f, 2.0f);
    std::vector<Tensor> tensors;
    for (int exponent = -149; exponent < -90; ++exponent) {
        for (int k = 0; k < 20; ++k) {
            const float x = std::ldexp(mantissa(random), exponent);
            tensors.push_back({x, -x, 0, x, x, 0, 0, 0, 0});
            tensors.push_back({-x, -x, 0, x, -x, 0, 0, 0, 0});
        }
    }
    checkAll(tensors);
}

// Lengths around those of lanes and blocks.
TEST_P(VectorUnits, EveryLength) {
    const std::size_t lengths[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 33, 255, 256, 257, 511, 513};
    for (const std::size_t n : lengths) {
        SCOPED_TRACE(n);
        checkAll(mixedTensors(n, 67 + static_cast<unsigned>(n)));
    }
}

// Every third float as output, at lengths that leave some over on both sides of whole groups.
TEST_P(VectorUnits, OutputsWithinTriplets) {
    const std::size_t lengths[] = {5, 40, 75, 300, 1000};
    for (const std::size_t n : lengths) {
        SCOPED_TRACE(n);
        const Field field(mixedTensors(n, 71));
        const TensorEigenizer t = field.eigenizer();
        TripletQELVector triplets = field.row1, velocity = field.row2;
        qel::FloatQELVectorComponent view(triplets, 1);
        FloatQELVectorConcrete own, swirl, eigenvalue;
        t.getSwirlStrength(swirl, eigenvalue);
        for (const auto& operation : kFloatOperations) {
            operation.run(t, {swirl, eigenvalue, velocity}, own);
            operation.run(t, {swirl, eigenvalue, velocity}, view);
            EXPECT_TRUE(sameBitsInAll(valuesOf(own), valuesOf(view))) << operation.name;
        }
    }
}

std::string nameOf(const ::testing::TestParamInfo<VectorUnit>& unit) {
    const char* const names[] = {"Portable", "Avx2", "Avx512"};
    return names[static_cast<int>(unit.param)];
}

INSTANTIATE_TEST_SUITE_P(All, VectorUnits,
                         ::testing::ValuesIn(qel_test::vectorUnitsOfThisMachine()), nameOf);

} // namespace
