// Swirl strength and what is built on it.

#include <qel/TensorEigenizer.h>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "tensor/Fields.h"
#include "tensor/ReferenceFormulas.h"

namespace {

using namespace qel_test;
using qel::FloatQELVectorConcrete;
using qel::TensorEigenizer;
using qel::TripletQELVector;

const Tensor kRotation = {0, -1, 0, 1, 0, 0, 0, 0, 0};
const Tensor kReversed = {0, 1, 0, -1, 0, 0, 0, 0, 0};

// All outputs of one field.
struct Analysis {
    FloatQELVectorConcrete swirl, eigenvalue, stretch, realHelicity, normalHelicity;
    TripletQELVector normal, vector;

    explicit Analysis(const TensorEigenizer& t) {
        t.getSwirlStrength(swirl, eigenvalue);
        build(t);
    }
    // With swirl strengths and eigenvalues of the caller's making.
    Analysis(const TensorEigenizer& t, const FloatQELVectorConcrete& strengths,
             const FloatQELVectorConcrete& eigenvalues)
        : swirl(strengths), eigenvalue(eigenvalues) {
        build(t);
    }
    void build(const TensorEigenizer& t) {
        t.getSwirlStretchRate(swirl, eigenvalue, stretch);
        t.getRealEigenHelicity(swirl, eigenvalue, realHelicity);
        t.getNormEigenHelicity(swirl, eigenvalue, normalHelicity);
        t.getSwirlNormal(swirl, eigenvalue, normal);
        t.getEVecReal(swirl, eigenvalue, vector);
    }
};

void expectRotation(const Tensor& t, float sign) {
    const Field field({t});
    Analysis a(field.eigenizer());
    EXPECT_EQ(a.swirl[0], 1.0f);
    EXPECT_EQ(a.eigenvalue[0], 0.0f);
    EXPECT_EQ(a.vector[0], Triplet(0, 0, sign));
    EXPECT_EQ(a.normal[0], Triplet(0, 0, sign));
    EXPECT_EQ(a.realHelicity[0], 2.0f);
    EXPECT_EQ(a.normalHelicity[0], 2.0f);
    EXPECT_EQ(a.stretch[0], 1.0f);
    const TensorEigenizer helpers = field.eigenizer();
    const Triplet axis(0, 0, sign);
    EXPECT_EQ(helpers.realeigenvec(field.row1[0], field.row2[0], field.row3[0], 0.0f), axis);
    EXPECT_EQ(helpers.swirlnormal(field.row1[0], field.row2[0], field.row3[0], 0.0f, 1.0f), axis);
}

TEST(EigenAnalysis, OfARigidRotation) {
    expectRotation(kRotation, 1.0f);
}

TEST(EigenAnalysis, OfTheReversedRotation) {
    expectRotation(kReversed, -1.0f);
}

void expectNothingSwirls(const Tensor& t) {
    const Field field({t});
    Analysis a(field.eigenizer());
    EXPECT_TRUE(sameBits(a.swirl[0], 0.0f));
    EXPECT_TRUE(sameBits(a.stretch[0], 0.0f));
    EXPECT_TRUE(sameBits(a.realHelicity[0], 0.0f));
    EXPECT_TRUE(sameBits(a.normalHelicity[0], 0.0f));
    EXPECT_TRUE(sameBits(a.normal[0], Triplet(0, 0, 0)));
    EXPECT_TRUE(sameBits(a.vector[0], Triplet(0, 0, 0)));
}

TEST(EigenAnalysis, OfAPureStrain) {
    expectNothingSwirls({1, 0, 0, 0, -1, 0, 0, 0, 0});
}

TEST(EigenAnalysis, OfTheZeroTensor) {
    expectNothingSwirls({});
    const Field field({Tensor{}});
    Analysis a(field.eigenizer());
    EXPECT_TRUE(sameBits(a.eigenvalue[0], 0.0f));
}

TEST(EigenAnalysis, RepeatedRootFormulaWhereAllEigenvaluesAreReal) {
    // diag(2, 2, -1): the discriminant vanishes and the formula is exact for the simple root.
    const Field field({Tensor{2, 0, 0, 0, 2, 0, 0, 0, -1}});
    Analysis a(field.eigenizer());
    EXPECT_EQ(a.swirl[0], 0.0f);
    EXPECT_EQ(a.eigenvalue[0], -1.0f);
}

// Exponents differ in the fifteenth digit, results by some 1e-14: seen where little else is left.
TEST(EigenAnalysis, TheCubeRootsExponentIsNotAThird) {
    EXPECT_NE(reference::cubeRoot(1e30), std::pow(1e30, 1.0 / 3.0));
    const Field field({Tensor{1e20f, 0, 0, 0, 1e20f, 0, 0, 0, -2e20f}});
    Analysis a(field.eigenizer());
    const reference::Swirl expected = reference::swirl(field.at(0));
    EXPECT_TRUE(sameBits(a.eigenvalue[0], expected.eigenvalue));
}

TEST(EigenAnalysis, VectorOutputsAreScaledByTheSwirlStrength) {
    const Field field({Tensor{0, -3, 0, 3, 0, 0, 0, 0, 5}});
    Analysis a(field.eigenizer());
    EXPECT_EQ(a.swirl[0], 3.0f);
    EXPECT_EQ(a.eigenvalue[0], 5.0f);
    EXPECT_EQ(a.vector[0], Triplet(0, 0, 3));
    EXPECT_EQ(a.normal[0], Triplet(0, 0, 3));
    EXPECT_EQ(a.stretch[0], 3.0f);
    EXPECT_EQ(a.realHelicity[0], 6.0f) << "not scaled";
    EXPECT_EQ(a.normalHelicity[0], 6.0f) << "not scaled";
}

TEST(EigenAnalysis, SwirlThatIsNotPositiveGivesZero) {
    const Field field(std::vector<Tensor>(5, kRotation));
    const float strengths[] = {0.0f, -0.0f, -1.0f, kNan, 1.0f};
    const float eigenvalues[] = {0, 0, 0, 0, 0};
    Analysis a(field.eigenizer(), {strengths, 5}, {eigenvalues, 5});
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_TRUE(sameBits(a.stretch[k], 0.0f));
        EXPECT_TRUE(sameBits(a.realHelicity[k], 0.0f));
        EXPECT_TRUE(sameBits(a.normalHelicity[k], 0.0f));
        EXPECT_TRUE(sameBits(a.normal[k], Triplet(0, 0, 0)));
        EXPECT_TRUE(sameBits(a.vector[k], Triplet(0, 0, 0)));
    }
    EXPECT_EQ(a.vector[4].z, 1.0f);
}

TEST(EigenAnalysis, DegenerateSystemsGiveTheZeroVector) {
    const Field field({Tensor{}});
    const TensorEigenizer t = field.eigenizer();
    EXPECT_EQ(t.realeigenvec({}, {}, {}, 0.0f), Triplet(0, 0, 0));
    EXPECT_EQ(t.swirlnormal({}, {}, {}, 0.0f, 0.0f), Triplet(0, 0, 0));
    const float one[] = {1.0f};
    const float zero[] = {0.0f};
    Analysis a(t, {one, 1}, {zero, 1});
    EXPECT_EQ(a.realHelicity[0], 0.0f);
    EXPECT_EQ(a.vector[0], Triplet(0, 0, 0));
}

TEST(EigenAnalysis, ASquaredLengthAtTheThresholdIsTooShort) {
    // The only candidate is a1 x a2 = (pq - rs, -aq, as), of a squared length that rounds to the
    // threshold; with a greater a it is beyond.
    const float p = 0x1.6148a8p-30f, q = 0x1.abbef8p-31f, r = 0x1.e44c5p-43f, s = 0x1.58fcbcp-46f;
    const auto squaredLength = [&](double a) {
        const double x = double{p} * double{q} - double{r} * double{s};
        const double y = -a * double{q}, z = a * double{s};
        return x * x + y * y + z * z;
    };
    const float at = 0x1p-56f, beyond = 0x1p-55f;
    ASSERT_EQ(squaredLength(double{at}), 1e-36);
    ASSERT_GT(squaredLength(double{beyond}), 1e-36);
    const Field field({Tensor{}});
    const TensorEigenizer t = field.eigenizer();
    EXPECT_EQ(t.realeigenvec({at, p, r}, {0, s, q}, {}, 0.0f), Triplet(0, 0, 0));
    EXPECT_NEAR(t.realeigenvec({beyond, p, r}, {0, s, q}, {}, 0.0f).length(), 1.0, 1e-6);
}

TEST(EigenAnalysis, TiesGoToTheEarlierCandidate) {
    // Rows of A = T: c1 = c2 = c3 in length, in different directions.
    const Field field({Tensor{}});
    const TensorEigenizer t = field.eigenizer();
    EXPECT_EQ(t.realeigenvec({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, 0.0f), Triplet(0, 0, 1));
    // c1 shorter, c2 and c3 alike.
    EXPECT_EQ(t.realeigenvec({1, 0, 0}, {0, 1, 0}, {0, 0, 2}, 0.0f), Triplet(0, -1, 0));
}

TEST(EigenAnalysis, HelpersCanBeCalledOnAConstObject) {
    const Field field({kRotation});
    const TensorEigenizer t = field.eigenizer();
    EXPECT_EQ(t.realeigenvec({0, -1, 0}, {1, 0, 0}, {0, 0, 0}, 0.0f), Triplet(0, 0, 1));
}

TEST(EigenAnalysis, EveryBitOverManyTensors) {
    const std::vector<Tensor> tensors = mixedTensors(5000, 41);
    const Field field(tensors);
    Analysis a(field.eigenizer());
    for (std::size_t k = 0; k < tensors.size(); ++k) {
        const Tensor& t = tensors[k];
        SCOPED_TRACE(k);
        const reference::Swirl s = reference::swirl(t);
        ASSERT_TRUE(sameBits(a.swirl[k], s.strength)) << a.swirl[k] << " " << s.strength;
        ASSERT_TRUE(sameBits(a.eigenvalue[k], s.eigenvalue))
            << a.eigenvalue[k] << " " << s.eigenvalue;
        Triplet e, n;
        Triplet vector, normal;
        float stretch = 0, realHelicity = 0, normalHelicity = 0;
        if (s.strength > 0) {
            e = reference::realEigenvector(t, s.eigenvalue);
            n = reference::swirlNormal(t, s.eigenvalue, s.strength);
            vector = {e.x * s.strength, e.y * s.strength, e.z * s.strength};
            normal = {n.x * s.strength, n.y * s.strength, n.z * s.strength};
            stretch = (e.x * n.x + e.y * n.y + e.z * n.z) * s.strength;
            realHelicity = reference::productYxz(e, reference::vorticity(t));
            normalHelicity = reference::productYxz(n, reference::vorticity(t));
        }
        ASSERT_TRUE(sameBits(a.vector[k], vector)) << a.vector[k] << " " << vector;
        ASSERT_TRUE(sameBits(a.normal[k], normal)) << a.normal[k] << " " << normal;
        ASSERT_TRUE(sameBits(a.stretch[k], stretch));
        ASSERT_TRUE(sameBits(a.realHelicity[k], realHelicity));
        ASSERT_TRUE(sameBits(a.normalHelicity[k], normalHelicity));
    }
}

TEST(EigenAnalysis, HelpersOverManyTensors) {
    std::mt19937 random(42);
    const Field field({kRotation});
    const TensorEigenizer t = field.eigenizer();
    for (const Tensor& tensor : mixedTensors(3000, 43)) {
        const Field one({tensor});
        const Tensor more = normalTensor(random, 2.0f);
        const Triplet &r1 = one.row1[0], &r2 = one.row2[0], &r3 = one.row3[0];
        ASSERT_TRUE(sameBits(t.realeigenvec(r1, r2, r3, more[0]),
                             reference::realEigenvector(tensor, more[0])));
        ASSERT_TRUE(sameBits(t.swirlnormal(r1, r2, r3, more[0], more[1]),
                             reference::swirlNormal(tensor, more[0], more[1])));
    }
}

// -- Arrays that are too short ----

TEST(EigenAnalysisDeathTest, ShortArraysAreFatal) {
    const Field field({kRotation, kRotation});
    FloatQELVectorConcrete swirl, eigenvalue, out, shorter;
    TripletQELVector triplets;
    const TensorEigenizer good = field.eigenizer();
    good.getSwirlStrength(swirl, eigenvalue);
    shorter.resize(1);
    EXPECT_DEATH(good.getSwirlStretchRate(shorter, eigenvalue, out), "");
    EXPECT_DEATH(good.getRealEigenHelicity(swirl, shorter, out), "");
    EXPECT_DEATH(good.getNormEigenHelicity(shorter, eigenvalue, out), "");
    EXPECT_DEATH(good.getSwirlNormal(swirl, shorter, triplets), "");
    EXPECT_DEATH(good.getEVecReal(shorter, eigenvalue, triplets), "");
    const TensorEigenizer tooMany(3, field.row1, field.row2, field.row3);
    EXPECT_DEATH(tooMany.getSwirlStrength(swirl, eigenvalue), "");
    // Nothing swirls, and yet the eigenvalues must be there.
    FloatQELVectorConcrete still;
    still.resize(2);
    EXPECT_DEATH(good.getEVecReal(still, shorter, triplets), "");
}

} // namespace
