#include <qel/Vector.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Rounded.h"
#include "support/Samples.h"

using qel::Vector;
using qel_test::product;
using qel_test::sameBits;
using qel_test::Samples;
using qel_test::sum;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kSamples = 20000;

::testing::AssertionResult sameVector(const Vector& v, double x, double y, double z) {
    if (sameBits(v.getX(), x) && sameBits(v.getY(), y) && sameBits(v.getZ(), z)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "(" << v.x << ", " << v.y << ", " << v.z << ") is not ("
                                         << x << ", " << y << ", " << z << ")";
}

} // namespace

TEST(Vector, IsZeroWhenBuilt) {
    EXPECT_TRUE(sameVector(Vector(), 0.0, 0.0, 0.0));
}

TEST(Vector, IsAPlainValue) {
    EXPECT_TRUE(std::is_trivially_copyable<Vector>::value);
    EXPECT_FALSE(std::is_polymorphic<Vector>::value);
    EXPECT_EQ(sizeof(Vector), 3 * sizeof(double));
}

TEST(Vector, SetReplacesAllComponents) {
    Vector v(1.0, 2.0, 3.0);
    v.Set(4.0, -0.0, 6.0);
    EXPECT_TRUE(sameVector(v, 4.0, -0.0, 6.0));
    Vector copy;
    copy = v;
    EXPECT_TRUE(sameVector(copy, 4.0, -0.0, 6.0));
}

TEST(Vector, PerpTurnsCounterClockwiseAndKeepsZ) {
    EXPECT_TRUE(sameVector(Vector(1.0, 2.0, 3.0).perp(), -2.0, 1.0, 3.0));
}

TEST(Vector, NormalizeLeavesZeroAlone) {
    Vector v(0.0, 0.0, 0.0);
    v.normalize();
    EXPECT_TRUE(sameVector(v, 0.0, 0.0, 0.0));
    Vector negative(-0.0, 0.0, -0.0);
    negative.normalize();
    EXPECT_TRUE(sameVector(negative, -0.0, 0.0, -0.0));
}

TEST(Vector, NormalizeKeepsNan) {
    Vector v(1.0, std::nan(""), 2.0);
    v.normalize();
    EXPECT_TRUE(sameVector(v, std::nan(""), std::nan(""), std::nan("")));
}

TEST(Vector, NormalizeDividesByTheLength) {
    Vector v(3.0, 0.0, 4.0);
    v.normalize();
    EXPECT_TRUE(sameVector(v, 0.6, 0.0, 0.8));
}

TEST(Vector, DivisionByZeroGivesInfinities) {
    Vector v(1.0, 1.0, 1.0);
    EXPECT_EQ(&(v /= 0.0), &v);
    EXPECT_TRUE(sameVector(v, kInfinity, kInfinity, kInfinity));
    Vector mixed(-1.0, 0.0, 2.0);
    mixed /= 0.0;
    EXPECT_TRUE(sameVector(mixed, -kInfinity, std::nan(""), kInfinity));
}

TEST(Vector, CrossIsRightHanded) {
    EXPECT_TRUE(
        sameVector(Vector::cross(Vector(1.0, 0.0, 0.0), Vector(0.0, 1.0, 0.0)), 0.0, 0.0, 1.0));
    EXPECT_TRUE(
        sameVector(Vector::cross(Vector(0.0, 1.0, 0.0), Vector(0.0, 0.0, 1.0)), 1.0, 0.0, 0.0));
}

TEST(Vector, MayBeItsOwnOperand) {
    Vector v(1.0, -2.0, 3.0);
    const Vector& itself = v;
    v += itself;
    EXPECT_TRUE(sameVector(v, 2.0, -4.0, 6.0));
    v -= itself;
    EXPECT_TRUE(sameVector(v, 0.0, 0.0, 0.0));
}

TEST(Vector, OperationsFollowTheStatedOrder) {
    Samples<double> samples(102);
    for (int i = 0; i < kSamples; ++i) {
        const Vector a(samples.any(), samples.any(), samples.any());
        const Vector b(samples.any(), samples.any(), samples.any());
        const double f = samples.any();

        const double square = sum(sum(product(a.x, a.x), product(a.y, a.y)), product(a.z, a.z));
        const double len = std::sqrt(square);
        ASSERT_TRUE(sameBits(a.length(), len));
        ASSERT_TRUE(
            sameBits(a * b, sum(sum(product(a.x, b.x), product(a.y, b.y)), product(a.z, b.z))));
        ASSERT_TRUE(sameVector(a * f, a.x * f, a.y * f, a.z * f));
        ASSERT_TRUE(sameVector(a + b, a.x + b.x, a.y + b.y, a.z + b.z));
        ASSERT_TRUE(sameVector(a - b, a.x - b.x, a.y - b.y, a.z - b.z));
        ASSERT_TRUE(sameVector(-a, -a.x, -a.y, -a.z));
        ASSERT_TRUE(sameVector(Vector::cross(a, b), sum(product(a.y, b.z), -product(a.z, b.y)),
                               sum(product(a.z, b.x), -product(a.x, b.z)),
                               sum(product(a.x, b.y), -product(a.y, b.x))));
        Vector c = a;
        ASSERT_EQ(&(c *= f), &c);
        ASSERT_TRUE(sameVector(c, a.x * f, a.y * f, a.z * f));
        c = a;
        ASSERT_EQ(&(c /= f), &c);
        ASSERT_TRUE(sameVector(c, a.x / f, a.y / f, a.z / f));
        c = a;
        ASSERT_EQ(&(c += b), &c);
        ASSERT_TRUE(sameVector(c, a.x + b.x, a.y + b.y, a.z + b.z));
        c = a;
        ASSERT_EQ(&(c -= b), &c);
        ASSERT_TRUE(sameVector(c, a.x - b.x, a.y - b.y, a.z - b.z));
        c = a;
        c.normalize();
        if (len == 0.0) {
            ASSERT_TRUE(sameVector(c, a.x, a.y, a.z));
        } else {
            ASSERT_TRUE(sameVector(c, a.x / len, a.y / len, a.z / len));
        }
    }
}

TEST(Vector, IsWrittenWithTheStreamsFormatting) {
    std::ostringstream os;
    os << std::fixed << Vector(1.0, -0.25, 3.0);
    EXPECT_EQ(os.str(), "(1.000000, -0.250000, 3.000000)");
}
