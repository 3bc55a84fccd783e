// Every output is that of the reference implementation, in every bit, on every vector unit.

#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>

#include "platform/VectorUnit.h"
#include "support/Bits.h"
#include "support/VectorUnits.h"
#include "tensor/Fields.h"
#include "tensor/Operations.h"
#include "tensor/ReferenceFormulas.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;
using qel::VectorUnit;

class Kernels : public ::testing::TestWithParam<VectorUnit> {
protected:
    void SetUp() override { qel::forceVectorUnit(GetParam()); }
    void TearDown() override { qel::restoreVectorUnit(); }
};

std::vector<PointInputs> pointInputs(const Inputs& in) {
    std::vector<PointInputs> points;
    for (std::size_t k = 0; k < in.velocity.size(); ++k) {
        points.push_back({in.swirl[k], in.eigenvalue[k], in.velocity[k]});
    }
    return points;
}

template <typename Operation, typename Output>
void checkOperation(const Operation& operation, const std::vector<Tensor>& tensors,
                    const TensorEigenizer& t, const Inputs& in, Output& out) {
    const std::vector<PointInputs> points = pointInputs(in);
    operation.run(t, in, out);
    ASSERT_EQ(out.size(), tensors.size());
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const auto expected = operation.reference(tensors[k], points[k]);
        ASSERT_TRUE(sameBits(std::as_const(out)[k], expected)) << operation.name << " at " << k;
    }
}

// All outputs beside the reference implementation. `keep` tells at which points the strength is
// left as computed; elsewhere it is 0.
void checkAll(const std::vector<Tensor>& tensors,
              const std::function<bool(std::size_t)>& keep = nullptr) {
    const Field field(tensors);
    const TensorEigenizer t = field.eigenizer();
    TripletQELVector velocity = field.row3;
    FloatQELVectorConcrete swirl, eigenvalue;
    t.getSwirlStrength(swirl, eigenvalue);
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const reference::Swirl expected = reference::swirl(tensors[k]);
        ASSERT_TRUE(sameBits(swirl[k], expected.strength)) << "strength at " << k;
        ASSERT_TRUE(sameBits(eigenvalue[k], expected.eigenvalue)) << "eigenvalue at " << k;
        if (keep && !keep(k)) {
            swirl[k] = 0.0f;
        }
    }
    forEachOperation<FloatQELVectorConcrete>([&](const auto& operation, auto& out) {
        checkOperation(operation, tensors, t, {swirl, eigenvalue, velocity}, out);
    });
}

TEST_P(Kernels, RandomTensorsMatchReferenceBitForBit) {
    std::mt19937 random(61);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 20000; ++k) {
        tensors.push_back(normalTensor(random, 3.0f));
    }
    checkAll(tensors);
}

TEST_P(Kernels, DegenerateTensorsMatchReferenceBitForBit) {
    std::mt19937 random(62);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 10000; ++k) {
        tensors.push_back(degenerateTensor(random));
    }
    checkAll(tensors);
}

TEST_P(Kernels, ExtremeTensorsMatchReferenceBitForBit) {
    std::mt19937 random(63);
    std::vector<Tensor> tensors;
    for (int k = 0; k < 10000; ++k) {
        tensors.push_back(extremeTensor(random));
    }
    checkAll(tensors);
}

TEST_P(Kernels, TensorsOfEveryScaleMatchReferenceBitForBit) {
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
TEST_P(Kernels, NearlyDegenerateTensorsMatchReferenceBitForBit) {
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

TEST_P(Kernels, FlowsInOnePlaneMatchReferenceBitForBit) {
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
TEST_P(Kernels, EigenvaluesThatVanishMatchReferenceBitForBit) {
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
TEST_P(Kernels, EveryLengthMatchesReferenceBitForBit) {
    const std::size_t lengths[] = {1,  2,  3,  4,  7,   8,   9,   15,  16,  17,
                                   23, 24, 31, 33, 255, 256, 257, 271, 511, 513};
    for (const std::size_t n : lengths) {
        SCOPED_TRACE(n);
        checkAll(mixedTensors(n, 67 + static_cast<unsigned>(n)));
    }
}

// Every third float as output, at lengths that leave some over on both sides of whole groups.
TEST_P(Kernels, OutputsWithinTripletsMatchReferenceBitForBit) {
    const std::size_t lengths[] = {5, 8, 40, 75, 300, 1000};
    for (const std::size_t n : lengths) {
        SCOPED_TRACE(n);
        const std::vector<Tensor> tensors = mixedTensors(n, 71);
        const Field field(tensors);
        const TensorEigenizer t = field.eigenizer();
        TripletQELVector triplets = field.row1, velocity = field.row2;
        qel::FloatQELVectorComponent view(triplets, 1);
        FloatQELVectorConcrete swirl, eigenvalue;
        t.getSwirlStrength(swirl, eigenvalue);
        for (const auto& operation : kFloatOperations) {
            checkOperation(operation, tensors, t, {swirl, eigenvalue, velocity}, view);
        }
    }
}

// Inputs, too, may be components of triplets.
TEST_P(Kernels, InputsWithinTripletsMatchReferenceBitForBit) {
    const std::vector<Tensor> tensors = mixedTensors(1000, 72);
    const Field field(tensors);
    const TensorEigenizer t = field.eigenizer();
    TripletQELVector triplets, velocity = field.row2;
    qel::FloatQELVectorComponent swirl(triplets, 2), eigenvalue(triplets, 0);
    t.getSwirlStrength(swirl, eigenvalue);
    forEachOperation<FloatQELVectorConcrete>([&](const auto& operation, auto& out) {
        checkOperation(operation, tensors, t, {swirl, eigenvalue, velocity}, out);
    });
}

// Blocks of which all, most, half, few or none of the points swirl.
TEST_P(Kernels, BlocksThatSwirlInPartMatchReferenceBitForBit) {
    const std::vector<Tensor> tensors = mixedTensors(2000, 73);
    std::mt19937 random(74);
    for (const unsigned share : {0U, 1U, 10U, 50U, 99U}) {
        SCOPED_TRACE(share);
        checkAll(tensors, [&](std::size_t) { return random() % 100 < share; });
    }
    checkAll(tensors, [](std::size_t k) { return k / 256 % 2 == 0; });
    checkAll(tensors, [](std::size_t k) { return k % 256 == 255; });
}

TEST_P(Kernels, AnyBitsMatchReferenceBitForBit) {
    std::mt19937 random(75);
    std::vector<Tensor> tensors(20000);
    for (Tensor& t : tensors) {
        for (float& v : t) {
            const auto bits = static_cast<std::uint32_t>(random());
            std::memcpy(&v, &bits, sizeof v);
        }
    }
    checkAll(tensors);
}

TEST_P(Kernels, FieldsOfOneValueMatchReferenceBitForBit) {
    for (const float value : {0.0f, -0.0f, 1.0f, kNan, kInf, -kInf, kUndef, -kUndef, 1e-45f}) {
        SCOPED_TRACE(value);
        Tensor tensor;
        tensor.fill(value);
        checkAll(std::vector<Tensor>(300, tensor));
        checkAll(std::vector<Tensor>(300, {value, 0, 0, 0, value, 0, 0, 0, value}));
        checkAll(std::vector<Tensor>(300, {0, -value, 0, value, 0, 0, 0, 0, 0}));
        checkAll(std::vector<Tensor>(300, {value, 0, 0, 0, -value, 0, 0, 0, 0}));
    }
}

std::string nameOf(const ::testing::TestParamInfo<VectorUnit>& unit) {
    const char* const names[] = {"Portable", "Avx2", "Avx512"};
    return names[static_cast<int>(unit.param)];
}

INSTANTIATE_TEST_SUITE_P(All, Kernels, ::testing::ValuesIn(qel_test::vectorUnitsOfThisMachine()),
                         nameOf);

} // namespace
