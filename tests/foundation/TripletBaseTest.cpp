#include <qel/TripletBase.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Errors.h"
#include "support/Rounded.h"
#include "support/Samples.h"

namespace {

using qel::TripletBase;
using qel_test::product;
using qel_test::sameBits;
using qel_test::sum;
using qel_test::throwsInvalid;
using Double3 = TripletBase<double>;
using Float3 = TripletBase<float>;

template <typename T>
std::string text(const T& value) {
    std::ostringstream os;
    os << value;
    return os.str();
}

template <typename T>
class TripletBaseTest : public testing::Test {
protected:
    static constexpr T marker = std::numeric_limits<T>::max();
};
using Components = testing::Types<float, double>;
TYPED_TEST_SUITE(TripletBaseTest, Components);

// -- Building and components ----

TYPED_TEST(TripletBaseTest, StartsZero) {
    EXPECT_EQ(TripletBase<TypeParam>(), (TripletBase<TypeParam>(0, 0, 0)));
}

TYPED_TEST(TripletBaseTest, ComponentsAreXThenYThenZ) {
    TripletBase<TypeParam> t(1, 2, 3);
    const auto& constant = t;
    EXPECT_EQ(&t.getRef(0), &t.x);
    EXPECT_EQ(&t.getRef(1), &t.y);
    EXPECT_EQ(&t.getRef(2), &t.z);
    EXPECT_EQ(&constant.getRef(2), &t.z);
    t.getRef(1) = 9;
    EXPECT_EQ(t.y, TypeParam(9));
}

TYPED_TEST(TripletBaseTest, RefusesAnIndexOutsideZeroToTwo) {
    TripletBase<TypeParam> t(1, 2, 3);
    const auto& constant = t;
    EXPECT_THAT([&] { t.getRef(3); },
                throwsInvalid("Triplet", "getRef", "Index (3) out of range 0..2"));
    EXPECT_THAT([&] { constant.getRef(-1); },
                throwsInvalid("Triplet", "getRef", "Index (-1) out of range 0..2"));
    EXPECT_THAT([&] { t.getRef(INT_MAX); },
                throwsInvalid("Triplet", "getRef", "Index (2147483647) out of range 0..2"));
    EXPECT_EQ(t, (TripletBase<TypeParam>(1, 2, 3)));
}

TYPED_TEST(TripletBaseTest, ComponentsAreReachedByIndex) {
    TripletBase<TypeParam> t(1, 2, 3);
    const auto& constant = t;
    t[1] = TypeParam(9);
    EXPECT_EQ(t, (TripletBase<TypeParam>(1, 9, 3)));
    EXPECT_EQ(&constant[0], &t.x);
    EXPECT_EQ(&constant[2], &t.z);
    EXPECT_THAT([&] { t[3] = 0; },
                throwsInvalid("Triplet", "operator[]", "Index (3) out of range 0..2"));
    EXPECT_THAT([&] { static_cast<void>(constant[-1]); },
                throwsInvalid("Triplet", "operator[]", "Index (-1) out of range 0..2"));
    EXPECT_EQ(t, (TripletBase<TypeParam>(1, 9, 3)));
}

TYPED_TEST(TripletBaseTest, ArraysAreOneRunOfNumbers) {
    EXPECT_EQ(sizeof(TripletBase<TypeParam>[4]), 12 * sizeof(TypeParam));
    EXPECT_TRUE(std::is_trivially_copyable<TripletBase<TypeParam>>::value);
    EXPECT_TRUE(std::is_standard_layout<TripletBase<TypeParam>>::value);
}

TEST(TripletBase, ConvertsBetweenFloatAndDoubleOnRequestOnly) {
    EXPECT_EQ(Double3(Float3(0.1f, 2.0f, 3.0f)), Double3(static_cast<double>(0.1f), 2.0, 3.0));
    EXPECT_EQ(Float3(Double3(0.1, 1e-300, 3.0)), Float3(0.1f, 0.0f, 3.0f));
    // The marker of one type is an ordinary value of the other.
    EXPECT_EQ(Double3(Float3(FLT_MAX, 0, 0)).x, 3.4028234663852886e38);
    EXPECT_FALSE(Double3(Float3(FLT_MAX, 0, 0)).isUndefined());
    EXPECT_EQ(Float3(Double3(3.4028234663852886e38, 0, 0)).x, FLT_MAX);
    EXPECT_FALSE((std::is_convertible<Float3, Double3>::value));
    EXPECT_FALSE((std::is_convertible<Double3, Float3>::value));
}

// -- Length ----

TEST(TripletBase, LengthIsEuclidean) {
    EXPECT_EQ(Double3(3, 0, 4).length(), 5.0);
    EXPECT_EQ(Float3(3, 0, 4).length(), 5.0f);
    EXPECT_EQ(Double3(0, 0, 0).length(), 0.0);
    const float x = 0.1f, y = 0.2f, z = 0.3f;
    EXPECT_EQ(Float3(x, y, z).length(), std::sqrt(x * x + y * y + z * z));
}

// Large but finite, so that such lengths can be compared; the float marker also for doubles.
TEST(TripletBase, LengthOfAnUndefinedTripletIsTheLargestFloat) {
    constexpr double largestFloat = 3.4028234663852886e38;
    EXPECT_EQ(Double3(1.7976931348623157e308, 0, 0).length(), largestFloat);
    EXPECT_EQ(Double3(0, DBL_MAX, 0).length(), largestFloat);
    EXPECT_EQ(Double3(0, std::nan(""), DBL_MAX).length(), largestFloat);
    EXPECT_EQ(Float3(0, 0, FLT_MAX).length(), FLT_MAX);
    // Neither the negative marker nor the marker of the other type counts.
    EXPECT_EQ(Double3(-DBL_MAX, 0, 0).length(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Double3(FLT_MAX, 0, 0).length(), largestFloat);
    EXPECT_EQ(Double3(2.0 * FLT_MAX, 0, 0).length(), 2.0 * largestFloat);
}

TEST(TripletBase, LengthOfANaNIsNaN) {
    EXPECT_TRUE(std::isnan(Double3(NAN, 0, 0).length()));
}

TYPED_TEST(TripletBaseTest, KnowsWhetherItIsUndefined) {
    EXPECT_FALSE((TripletBase<TypeParam>(1, NAN, INFINITY).isUndefined()));
    EXPECT_TRUE((TripletBase<TypeParam>(1, this->marker, 0).isUndefined()));
}

// -- Normalising ----

TEST(TripletBase, NormalisesToUnitLength) {
    Double3 d(3, 0, 4);
    d.normalize();
    EXPECT_EQ(d, Double3(0.6, 0, 0.8));
    Float3 f(3, 0, 4);
    f.normalize();
    EXPECT_EQ(f, Float3(0.6f, 0.0f, 0.8f));
}

TYPED_TEST(TripletBaseTest, NormalisingZeroLeavesIt) {
    TripletBase<TypeParam> t;
    t.normalize();
    EXPECT_EQ(t, TripletBase<TypeParam>());
    // Too small to have a length: squares vanish.
    const TypeParam tiny = std::numeric_limits<TypeParam>::denorm_min();
    TripletBase<TypeParam> small(tiny, 0, -tiny);
    small.normalize();
    EXPECT_EQ(small, (TripletBase<TypeParam>(tiny, 0, -tiny)));
}

TEST(TripletBase, NormalisingAnUndefinedTripletDividesByTheLargestFloat) {
    constexpr double largestFloat = 3.4028234663852886e38;
    Double3 d(DBL_MAX, largestFloat, -2.0);
    d.normalize();
    EXPECT_EQ(d, Double3(DBL_MAX / largestFloat, 1.0, -2.0 / largestFloat));
    Float3 f(FLT_MAX, 1.0f, 0.0f);
    f.normalize();
    EXPECT_EQ(f, Float3(1.0f, 1.0f / FLT_MAX, 0.0f));
}

TEST(TripletBase, NormalisingNaNSpreadsIt) {
    Double3 d(NAN, 1.0, 0.0);
    d.normalize();
    EXPECT_TRUE(sameBits(d, Double3(NAN, NAN, NAN)));
}

// Each component is divided in double by the rounded length, and rounded.
TYPED_TEST(TripletBaseTest, LengthAndNormalisingFollowTheStatedOrder) {
    using T = TypeParam;
    using Triplet = TripletBase<T>;
    constexpr T largestFloat = std::numeric_limits<float>::max();
    qel_test::Samples<T> samples(20240118);
    int undefined = 0;
    for (int i = 0; i < 50000; ++i) {
        const Triplet t(samples.any(), samples.any(), samples.any());
        const bool isUndefined = t.x == this->marker || t.y == this->marker || t.z == this->marker;
        undefined += isUndefined;
        const T square = sum(sum(product(t.x, t.x), product(t.y, t.y)), product(t.z, t.z));
        const T length = isUndefined ? largestFloat : std::sqrt(square);
        ASSERT_TRUE(sameBits(t.length(), length)) << t;

        const auto divided = [&](T c) {
            return static_cast<T>(static_cast<double>(c) / static_cast<double>(length));
        };
        const Triplet expected =
            length == T(0) ? t : Triplet(divided(t.x), divided(t.y), divided(t.z));
        Triplet normalized = t;
        normalized.normalize();
        ASSERT_TRUE(sameBits(normalized, expected)) << t;
    }
    EXPECT_GT(undefined, 1000);
}

// -- Division ----

TYPED_TEST(TripletBaseTest, DividesComponentByComponent) {
    const TripletBase<TypeParam> t(2, 4, -8);
    EXPECT_EQ(t / 2.0, (TripletBase<TypeParam>(1, 2, -4)));
    TripletBase<TypeParam> changed = t;
    EXPECT_EQ(&(changed /= -2.0), &changed);
    EXPECT_EQ(changed, (TripletBase<TypeParam>(-1, -2, 4)));
}

TYPED_TEST(TripletBaseTest, RefusesToDivideByExactlyZeroAndStaysUnchanged) {
    TripletBase<TypeParam> t(1, 2, 3);
    for (const double zero : {0.0, -0.0}) {
        EXPECT_THAT([&] { t / zero; },
                    throwsInvalid("Triplet", "operator/", "Attempt to divide by zero."));
        EXPECT_THAT([&] { t /= zero; },
                    throwsInvalid("Triplet", "operator/=", "Attempt to divide by zero."));
        EXPECT_EQ(t, (TripletBase<TypeParam>(1, 2, 3)));
    }
}

TEST(TripletBase, DividesByAnythingElse) {
    EXPECT_EQ(Double3(1e-300, 0, 0) / 1e-300, Double3(1, 0, 0));
    EXPECT_EQ(Float3(1, 0, 0) / 1e-300, Float3(INFINITY, 0, 0));
    EXPECT_TRUE(sameBits(Double3(1, 0, 0) / NAN, Double3(NAN, NAN, NAN)));
    EXPECT_EQ(Double3(1, 0, 0) / INFINITY, Double3(0, 0, 0));
}

TEST(TripletBase, AFloatTripletIsDividedInDoubleAndRounded) {
    const double divisor = 0.1; // not a float
    const Float3 t(0.3f, 1.0f, 7.0f);
    EXPECT_EQ(t / divisor,
              Float3(static_cast<float>(0.3f / divisor), static_cast<float>(1.0f / divisor),
                     static_cast<float>(7.0f / divisor)));
}

// -- Other arithmetic ----

TYPED_TEST(TripletBaseTest, AddsAndSubtracts) {
    using Triplet = TripletBase<TypeParam>;
    Triplet t(1, 2, 3);
    EXPECT_EQ(t + Triplet(10, 20, 30), Triplet(11, 22, 33));
    EXPECT_EQ(t - Triplet(10, 20, 30), Triplet(-9, -18, -27));
    EXPECT_EQ(-t, Triplet(-1, -2, -3));
    EXPECT_EQ(&(t += Triplet(1, 1, 1)), &t);
    EXPECT_EQ(t, Triplet(2, 3, 4));
    EXPECT_EQ(&(t -= Triplet(2, 2, 2)), &t);
    EXPECT_EQ(t, Triplet(0, 1, 2));
}

TYPED_TEST(TripletBaseTest, Scales) {
    using Triplet = TripletBase<TypeParam>;
    Triplet t(1, -2, 3);
    EXPECT_EQ(t * 2.0, Triplet(2, -4, 6));
    EXPECT_EQ(2.0 * t, Triplet(2, -4, 6));
    EXPECT_EQ(&(t *= 0.5), &t);
    EXPECT_EQ(t, (Triplet(TypeParam(0.5), -1, TypeParam(1.5))));
}

TYPED_TEST(TripletBaseTest, Multiplies) {
    using Triplet = TripletBase<TypeParam>;
    EXPECT_EQ(Triplet(1, 2, 3).dot(Triplet(4, -5, 6)), TypeParam(12));
    EXPECT_EQ(Triplet(1, 0, 0).cross(Triplet(0, 1, 0)), Triplet(0, 0, 1));
    EXPECT_EQ(Triplet(1, 2, 3).cross(Triplet(4, 5, 6)), Triplet(-3, 6, -3));
}

// For a float factor or divisor, rounding the double result once gives the float operation.
TEST(TripletBase, ScalingAFloatTripletByAFloatIsFloatArithmetic) {
    std::mt19937 random(20240117);
    std::uniform_real_distribution<float> exponent(-60.0f, 60.0f);
    const auto value = [&] { return std::exp2(exponent(random)) * (random() % 2 ? 1.0f : -1.0f); };
    for (int i = 0; i < 20000; ++i) {
        const Float3 t(value(), value(), value());
        const float factor = value();
        ASSERT_EQ(t * static_cast<double>(factor),
                  Float3(t.x * factor, t.y * factor, t.z * factor));
        ASSERT_EQ(t / static_cast<double>(factor),
                  Float3(t.x / factor, t.y / factor, t.z / factor));
    }
}

TYPED_TEST(TripletBaseTest, ComparesExactly) {
    using Triplet = TripletBase<TypeParam>;
    EXPECT_TRUE(Triplet(0, 1, 2) == Triplet(TypeParam(-0.0), 1, 2));
    EXPECT_TRUE(Triplet(0, 1, 2) != Triplet(0, 1, std::nextafter(TypeParam(2), TypeParam(3))));
    const Triplet nan(0, std::numeric_limits<TypeParam>::quiet_NaN(), 0);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
}

// -- Text ----

TEST(TripletBase, WritesItsComponentsInParentheses) {
    EXPECT_EQ(text(Float3(1, 2, 3)), "(1, 2, 3)");
    EXPECT_EQ(text(Float3(0.1f, -1e10f, NAN)), "(0.1, -1e+10, nan)");
    EXPECT_EQ(text(Double3(1, 2.5, 3)), "(1, 2.5, 3)");
}

TEST(TripletBase, WritesUNDEFForAMarker) {
    EXPECT_EQ(text(Float3(1, FLT_MAX, 3)), "(1, UNDEF, 3)");
    EXPECT_EQ(text(Float3(FLT_MAX, FLT_MAX, FLT_MAX)), "(UNDEF, UNDEF, UNDEF)");
    EXPECT_EQ(text(Double3(DBL_MAX, FLT_MAX, 0)), "(UNDEF, 3.40282e+38, 0)");
    EXPECT_EQ(text(Float3(-FLT_MAX, 0, 0)), "(-3.40282e+38, 0, 0)");
}

TEST(TripletBase, WritesWithTheStreamsFormatting) {
    std::ostringstream os;
    os << std::scientific << std::setprecision(2) << Float3(1, FLT_MAX, 3);
    EXPECT_EQ(os.str(), "(1.00e+00, UNDEF, 3.00e+00)");
}

} // namespace
