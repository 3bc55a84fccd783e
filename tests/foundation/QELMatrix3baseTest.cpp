#include <qel/QELMatrix3base.h>

#include <climits>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Errors.h"

namespace {

using qel_test::throwsInvalid;

template <typename T>
class QELMatrix3baseTest : public testing::Test {};
using Components = testing::Types<float, double>;
TYPED_TEST_SUITE(QELMatrix3baseTest, Components);

TYPED_TEST(QELMatrix3baseTest, StartsZero) {
    const qel::QELMatrix3base<TypeParam> m;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            EXPECT_EQ(m[row][column], TypeParam(0));
        }
    }
}

TYPED_TEST(QELMatrix3baseTest, RowsPointIntoOneBlockRowByRow) {
    qel::QELMatrix3base<TypeParam> m;
    EXPECT_EQ(m[1], m[0] + 3);
    EXPECT_EQ(m[2], m[0] + 6);
    m[2][1] = TypeParam(7);
    const qel::QELMatrix3base<TypeParam> copy = m;
    EXPECT_EQ(copy[2][1], TypeParam(7));
}

TYPED_TEST(QELMatrix3baseTest, RefusesARowOutsideZeroToTwo) {
    qel::QELMatrix3base<TypeParam> m;
    const auto& constant = m;
    EXPECT_THAT([&] { m[3][0] = 1; },
                throwsInvalid("QELMatrix3", "operator[]", "Index (3) out of range 0..2"));
    EXPECT_THAT([&] { return constant[-1][0]; },
                throwsInvalid("QELMatrix3", "operator[]", "Index (-1) out of range 0..2"));
    EXPECT_THAT([&] { return m[INT_MIN][0]; },
                throwsInvalid("QELMatrix3", "operator[]", "Index (-2147483648) out of range 0..2"));
}

TYPED_TEST(QELMatrix3baseTest, DeterminantExpandsAlongTheFirstRow) {
    qel::QELMatrix3base<TypeParam> m;
    EXPECT_EQ(m.determinant(), TypeParam(0));
    const int values[3][3] = {{2, -1, 3}, {0, 4, 5}, {-2, 1, 6}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            m[row][column] = static_cast<TypeParam>(values[row][column]);
        }
    }
    EXPECT_EQ(m.determinant(), TypeParam(72)); // 2*19 + 1*10 + 3*8
}

TYPED_TEST(QELMatrix3baseTest, IsWrittenRowByRow) {
    qel::QELMatrix3base<TypeParam> m;
    m[0][1] = TypeParam(1.5);
    m[2][2] = TypeParam(-4);
    std::ostringstream os;
    os << m;
    EXPECT_EQ(os.str(), "((0, 1.5, 0), (0, 0, 0), (0, 0, -4))");
}

} // namespace
