#include <qel/Doublet.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Rounded.h"
#include "support/Samples.h"

using qel::Doublet;
using qel_test::product;
using qel_test::sameBits;
using qel_test::Samples;
using qel_test::sum;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr int kSamples = 20000;

::testing::AssertionResult sameDoublet(const Doublet& a, const Doublet& b) {
    if (sameBits(a.x, b.x) && sameBits(a.y, b.y)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << a << " is not " << b;
}

float scaled(float a, double factor) {
    return static_cast<float>(product(static_cast<double>(a), factor));
}

} // namespace

TEST(Doublet, IsZeroWhenBuilt) {
    const Doublet d;
    EXPECT_TRUE(sameDoublet(d, Doublet(0.0f, 0.0f)));
}

TEST(Doublet, IsAPlainValue) {
    EXPECT_TRUE(std::is_trivially_copyable<Doublet>::value);
    EXPECT_FALSE(std::is_polymorphic<Doublet>::value);
    EXPECT_EQ(sizeof(Doublet), 2 * sizeof(float));
    EXPECT_TRUE(std::is_nothrow_copy_assignable<Doublet>::value);
}

TEST(Doublet, SetReplacesBothComponents) {
    Doublet d(1.0f, 2.0f);
    d.set(-3.5f, 4.5f);
    EXPECT_EQ(d.getX(), -3.5f);
    EXPECT_EQ(d.getY(), 4.5f);
    Doublet copy;
    copy = d;
    EXPECT_EQ(copy, d);
}

TEST(Doublet, LengthAndUnitOfThreeFour) {
    const Doublet d(3.0f, 4.0f);
    EXPECT_EQ(d.length(), 5.0);
    EXPECT_EQ(d.sqlength(), 25.0);
    EXPECT_TRUE(sameDoublet(d.unit(), Doublet(0.6f, 0.8f)));
}

TEST(Doublet, UnitOfZeroStaysZero) {
    EXPECT_TRUE(sameDoublet(Doublet(0.0f, 0.0f).unit(), Doublet(0.0f, 0.0f)));
    EXPECT_TRUE(sameDoublet(Doublet(-0.0f, 0.0f).unit(), Doublet(-0.0f, 0.0f)));
}

TEST(Doublet, UnitOfANanLengthIsAnUnchangedCopy) {
    EXPECT_TRUE(sameDoublet(Doublet(2.0f, kNan).unit(), Doublet(2.0f, kNan)));
}

TEST(Doublet, UnitOfAnUnderflowingLengthIsAnUnchangedCopy) {
    EXPECT_TRUE(sameDoublet(Doublet(1e-30f, 0.0f).unit(), Doublet(1e-30f, 0.0f)));
}

TEST(Doublet, NormalTurnsClockwise) {
    EXPECT_TRUE(sameDoublet(Doublet(1.0f, 2.0f).normal(), Doublet(2.0f, -1.0f)));
    EXPECT_TRUE(sameDoublet(Doublet(0.0f, 2.0f).normal(), Doublet(2.0f, -0.0f)));
}

TEST(Doublet, OnlyExactZerosAreZero) {
    EXPECT_TRUE(Doublet(-0.0f, 0.0f).isZero());
    EXPECT_FALSE(Doublet(1e-30f, 0.0f).isZero());
    EXPECT_FALSE(Doublet(0.0f, std::numeric_limits<float>::denorm_min()).isZero());
    EXPECT_FALSE(Doublet(kNan, 0.0f).isZero());
}

TEST(Doublet, ComparisonIsExactAndNanDiffers) {
    EXPECT_TRUE(Doublet(0.0f, 1.0f) == Doublet(-0.0f, 1.0f));
    EXPECT_FALSE(Doublet(0.0f, 1.0f) != Doublet(-0.0f, 1.0f));
    EXPECT_TRUE(Doublet(1.0f, 1.0f) != Doublet(1.0f, std::nextafter(1.0f, 2.0f)));
    EXPECT_TRUE(Doublet(2.0f, 1.0f) != Doublet(1.0f, 1.0f));
    const Doublet nan(kNan, 1.0f);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
}

TEST(Doublet, ScalesInDoubleAndRounds) {
    // In float, 0.1 would be rounded before the product.
    const Doublet d(9.0f, 13.0f);
    EXPECT_TRUE(sameDoublet(d * 0.1, Doublet(0.9f, 1.3f)));
    EXPECT_NE(0.9f, 9.0f * 0.1f);
    EXPECT_TRUE(sameDoublet(0.1 * d, d * 0.1));
    // The product of huge factors fits although the factor does not fit a float.
    EXPECT_TRUE(sameDoublet(Doublet(1e-30f, 0.0f) * 1e40, Doublet(1e10f, 0.0f)));
}

TEST(Doublet, ProductsAndSumsStayInFloat) {
    // 1 + 2^-24 rounds to 1 in float.
    const Doublet d(1.0f, 0x1p-12f);
    EXPECT_EQ(d.sqlength(), 1.0);
    EXPECT_EQ(d.dotProduct(d), 1.0);
    EXPECT_EQ(d.length(), 1.0);
    // The float square root, not that of the widened sum.
    EXPECT_EQ(Doublet(1.0f, 1.0f).length(), static_cast<double>(std::sqrt(2.0f)));
    EXPECT_EQ(Doublet(3e38f, 3e38f).length(), std::numeric_limits<double>::infinity());
}

TEST(Doublet, WritesWithTheStreamsFormatting) {
    std::ostringstream os;
    Doublet(1.5f, -2.0f).write(os);
    EXPECT_EQ(os.str(), "(1.5,-2)");
    os.str("");
    os.precision(3);
    os << std::fixed << Doublet(1.0f, 0.25f) << "|";
    EXPECT_EQ(os.str(), "(1.000,0.250)|");
}

TEST(Doublet, OperationsFollowTheStatedOrder) {
    Samples<float> samples(101);
    for (int i = 0; i < kSamples; ++i) {
        const Doublet a(samples.any(), samples.any());
        const Doublet b(samples.any(), samples.any());
        const double factor = i % 2 == 0 ? 0.1 * samples.any() : samples.plain() / 3.0;
        SCOPED_TRACE(::testing::Message() << a << " " << b << " " << factor);

        const Doublet added(sum(a.x, b.x), sum(a.y, b.y));
        const Doublet subtracted(sum(a.x, -b.x), sum(a.y, -b.y));
        const Doublet times(scaled(a.x, factor), scaled(a.y, factor));
        ASSERT_TRUE(sameDoublet(a + b, added));
        ASSERT_TRUE(sameDoublet(a - b, subtracted));
        ASSERT_TRUE(sameDoublet(a * factor, times));
        ASSERT_TRUE(sameDoublet(factor * a, times));
        Doublet c = a;
        ASSERT_EQ(&(c += b), &c);
        ASSERT_TRUE(sameDoublet(c, added));
        c = a;
        ASSERT_EQ(&(c -= b), &c);
        ASSERT_TRUE(sameDoublet(c, subtracted));
        c = a;
        ASSERT_EQ(&(c *= factor), &c);
        ASSERT_TRUE(sameDoublet(c, times));

        const float square = sum(product(a.x, a.x), product(a.y, a.y));
        ASSERT_TRUE(sameBits(a.sqlength(), static_cast<double>(square)));
        ASSERT_TRUE(sameBits(a.length(), static_cast<double>(std::sqrt(square))));
        const float dot = sum(product(a.x, b.x), product(a.y, b.y));
        ASSERT_TRUE(sameBits(a.dotProduct(b), static_cast<double>(dot)));

        const double len = std::sqrt(square);
        const Doublet unit = len > 0.0 ? Doublet(static_cast<float>(static_cast<double>(a.x) / len),
                                                 static_cast<float>(static_cast<double>(a.y) / len))
                                       : a;
        ASSERT_TRUE(sameDoublet(a.unit(), unit));
    }
}
