#include <qel/QELMatrix4.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Errors.h"
#include "support/Rounded.h"
#include "support/Samples.h"

using qel::QELMatrix3base;
using qel::QELMatrix4;
using qel_test::product;
using qel_test::sameBits;
using qel_test::Samples;
using qel_test::sum;
using qel_test::throwsInternal;
using qel_test::throwsInvalid;
using Point = qel::TripletBase<float>;

namespace {

constexpr int kSamples = 5000;

::testing::AssertionResult sameMatrix(const QELMatrix4& a, const QELMatrix4& b) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            if (!sameBits(a[i][j], b[i][j])) {
                return ::testing::AssertionFailure() << "element (" << i << ", " << j
                                                     << "): " << a[i][j] << " is not " << b[i][j];
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// Element (i, j) is 10 i + j + 1.
QELMatrix4 numbered() {
    QELMatrix4 m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            m[i][j] = static_cast<float>(10 * i + j + 1);
        }
    }
    return m;
}

QELMatrix4 identity() {
    QELMatrix4 m;
    m.setIdentity();
    return m;
}

QELMatrix4 sampled(Samples<float>& samples, bool ordinary) {
    QELMatrix4 m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            m[i][j] = ordinary ? samples.plain() : samples.any();
        }
    }
    return m;
}

// x*m0 + y*m1 + z*m2 + m3, every operation rounded to float.
float rowTimes(const float* row, const Point& p) {
    const float xy = sum(product(p.x, row[0]), product(p.y, row[1]));
    return sum(sum(xy, product(p.z, row[2])), row[3]);
}

Point transformed(const QELMatrix4& m, const Point& p) {
    const float w = rowTimes(m[3], p);
    return Point(rowTimes(m[0], p) / w, rowTimes(m[1], p) / w, rowTimes(m[2], p) / w);
}

} // namespace

TEST(QELMatrix4, IsZeroWhenBuilt) {
    const QELMatrix4 m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_TRUE(sameBits(m[i][j], 0.0f));
        }
    }
    EXPECT_EQ(sizeof(QELMatrix4), 16 * sizeof(float));
    EXPECT_TRUE(std::is_trivially_copyable<QELMatrix4>::value);
}

TEST(QELMatrix4, RowsFollowEachOther) {
    const QELMatrix4 m = numbered();
    EXPECT_EQ(m[1], m[0] + 4);
    EXPECT_EQ(m[3], m[0] + 12);
    EXPECT_EQ(m[2][3], 24.0f);
}

TEST(QELMatrix4, TakesA3x3MatrixInItsUpperLeft) {
    QELMatrix3base<float> a;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            a[i][j] = static_cast<float>(3 * i + j + 1);
        }
    }
    const QELMatrix4 m = a; // converts
    QELMatrix4 expected;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            expected[i][j] = a[i][j];
        }
    }
    expected[3][3] = 1.0f;
    EXPECT_TRUE(sameMatrix(m, expected));
}

TEST(QELMatrix4, SetZeroAndIdentityOverwriteEverything) {
    QELMatrix4 m = numbered();
    m.setIdentity();
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_TRUE(sameBits(m[i][j], i == j ? 1.0f : 0.0f));
        }
    }
    m = numbered();
    m.setZero();
    EXPECT_TRUE(sameMatrix(m, QELMatrix4()));
}

TEST(QELMatrix4, TranslationMovesTheOrigin) {
    QELMatrix4 m = numbered();
    m.setTranslationMatrix(Point(1.0f, 2.0f, 3.0f));
    QELMatrix4 expected = identity();
    expected[0][3] = 1.0f;
    expected[1][3] = 2.0f;
    expected[2][3] = 3.0f;
    EXPECT_TRUE(sameMatrix(m, expected));
    Point out;
    m.multVec(out, Point(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(sameBits(out, Point(1.0f, 2.0f, 3.0f)));
}

TEST(QELMatrix4, IsHomogeneousOnlyForAWeightOfExactlyOne) {
    QELMatrix4 m = numbered();
    m[3][3] = 1.0f;
    EXPECT_TRUE(m.isHomogeneous());
    m[3][3] = std::nextafter(1.0f, 2.0f);
    EXPECT_FALSE(m.isHomogeneous());
    m[3][3] = std::nanf("");
    EXPECT_FALSE(m.isHomogeneous());
}

TEST(QELMatrix4, HomogenizeHalvesAtWeightTwo) {
    QELMatrix4 m = identity();
    m[3][3] = 2.0f;
    const Point p(2.0f, 4.0f, 6.0f);
    EXPECT_TRUE(sameBits(m * p, Point(1.0f, 2.0f, 3.0f)));
    Point out;
    m.multVec(out, p);
    EXPECT_TRUE(sameBits(out, Point(1.0f, 2.0f, 3.0f)));
    EXPECT_EQ(m[3][3], 2.0f); // both leave the matrix alone

    EXPECT_EQ(&m.homogenize(), &m);
    QELMatrix4 expected;
    expected[0][0] = expected[1][1] = expected[2][2] = 0.5f;
    expected[3][3] = 1.0f;
    EXPECT_TRUE(sameMatrix(m, expected));
}

TEST(QELMatrix4, HomogenizeLeavesAHomogeneousMatrixAlone) {
    QELMatrix4 m = numbered();
    m[3][3] = 1.0f;
    m[1][2] = std::numeric_limits<float>::infinity();
    const QELMatrix4 before = m;
    m.homogenize();
    EXPECT_TRUE(sameMatrix(m, before));
}

TEST(QELMatrix4, HomogenizeByAZeroWeightIsNotChecked) {
    QELMatrix4 m = numbered();
    m[0][1] = 0.0f;
    m[3][3] = 0.0f;
    m.homogenize();
    EXPECT_EQ(m[0][0], std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(m[0][1]));
    EXPECT_EQ(m[3][3], 1.0f);
}

TEST(QELMatrix4, BothTransformationsAreKeptApart) {
    // Dividing before or after the sum rounds differently.
    Samples<float> samples(201);
    int differences = 0;
    for (int i = 0; i < 1000; ++i) {
        QELMatrix4 m = sampled(samples, true);
        const Point p(samples.plain(), samples.plain(), samples.plain());
        Point direct;
        m.multVec(direct, p);
        differences += sameBits(direct, m * p) ? 0 : 1;
    }
    EXPECT_GT(differences, 100);
}

TEST(QELMatrix4, TransformedPointMayReplaceItself) {
    const QELMatrix4 m = numbered();
    Point p(1.0f, 2.0f, 3.0f);
    const Point expected = transformed(m, p);
    m.multVec(p, p);
    EXPECT_TRUE(sameBits(p, expected));
}

TEST(QELMatrix4, ProductMayNotReplaceItsRightOperand) {
    const QELMatrix4 a = numbered();
    QELMatrix4 b = numbered();
    EXPECT_THAT([&] { a.multMat(b, b); },
                throwsInternal("QELMatrix4", "multMat", "Tried to write result to argument."));
    EXPECT_TRUE(sameMatrix(b, numbered()));
    EXPECT_THAT([&] { b.multMat(b, b); },
                throwsInternal("QELMatrix4", "multMat", "Tried to write result to argument."));
    EXPECT_TRUE(sameMatrix(b, numbered()));
}

TEST(QELMatrix4, ProductIntoItselfIsZero) {
    QELMatrix4 a = numbered();
    a.multMat(a, numbered());
    EXPECT_TRUE(sameMatrix(a, QELMatrix4()));
}

// Zero times infinity spreads along a row from the element where it arises.
TEST(QELMatrix4, ProductIntoItselfReadsWhatItHasWritten) {
    QELMatrix4 right = numbered();
    right[1][1] = std::numeric_limits<float>::infinity();
    QELMatrix4 a = numbered();
    a.multMat(a, right);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(a[i][0], 0.0f) << "row " << i;
        for (int j = 1; j < 4; ++j) {
            EXPECT_TRUE(std::isnan(a[i][j])) << "element " << i << ", " << j;
        }
    }
}

TEST(QELMatrix4, ProductMultipliesRowsByColumns) {
    QELMatrix4 shift;
    shift.setTranslationMatrix(Point(1.0f, 2.0f, 3.0f));
    QELMatrix4 scale;
    scale[0][0] = scale[1][1] = scale[2][2] = 2.0f;
    scale[3][3] = 1.0f;
    // Scaled first, then moved.
    EXPECT_TRUE(sameBits((shift * scale) * Point(1.0f, 1.0f, 1.0f), Point(3.0f, 4.0f, 5.0f)));
    EXPECT_TRUE(sameBits((scale * shift) * Point(1.0f, 1.0f, 1.0f), Point(4.0f, 6.0f, 8.0f)));
}

TEST(QELMatrix4, RowsOutOfRangeAreRefused) {
    QELMatrix4 m = numbered();
    const QELMatrix4& constant = m;
    EXPECT_THAT([&] { m[4]; },
                throwsInvalid("QELMatrix4", "operator[]", "Index (4) out of range 0..3"));
    EXPECT_THAT([&] { m[-1]; },
                throwsInvalid("QELMatrix4", "operator[]", "Index (-1) out of range 0..3"));
    EXPECT_THAT([&] { constant[4]; },
                throwsInvalid("QELMatrix4", "operator[]", "Index (4) out of range 0..3"));
    EXPECT_THAT([&] { constant[-1]; },
                throwsInvalid("QELMatrix4", "operator[]", "Index (-1) out of range 0..3"));
    EXPECT_TRUE(sameMatrix(m, numbered()));
}

TEST(QELMatrix4, MinorsOutOfRangeAreRefusedRowFirst) {
    const QELMatrix4 m = numbered();
    EXPECT_THAT([&] { m.subMatrix(-1, 0); },
                throwsInvalid("QELMatrix4", "subMatrix", "Index (-1) out of range 0..3"));
    EXPECT_THAT([&] { m.subMatrix(4, 0); },
                throwsInvalid("QELMatrix4", "subMatrix", "Index (4) out of range 0..3"));
    EXPECT_THAT([&] { m.subMatrix(0, -2); },
                throwsInvalid("QELMatrix4", "subMatrix", "Index (-2) out of range 0..3"));
    EXPECT_THAT([&] { m.subMatrix(0, 4); },
                throwsInvalid("QELMatrix4", "subMatrix", "Index (4) out of range 0..3"));
    EXPECT_THAT([&] { m.subMatrix(5, 6); },
                throwsInvalid("QELMatrix4", "subMatrix", "Index (5) out of range 0..3"));
}

TEST(QELMatrix4, MinorIsCyclic) {
    const QELMatrix4 m = numbered();
    const QELMatrix3base<float> minorOf12 = m.subMatrix(1, 2);
    EXPECT_EQ(minorOf12[0][0], m[2][3]);
    EXPECT_EQ(minorOf12[0][1], m[2][0]);
    EXPECT_EQ(minorOf12[0][2], m[2][1]);
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            const QELMatrix3base<float> rest = m.subMatrix(row, col);
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j) {
                    EXPECT_EQ(rest[i][j], m[(row + 1 + i) % 4][(col + 1 + j) % 4]);
                }
            }
        }
    }
}

TEST(QELMatrix4, DeterminantOfSimpleMatrices) {
    EXPECT_EQ(identity().determinant(), 1.0f);
    QELMatrix4 zeroRow = numbered();
    for (int j = 0; j < 4; ++j) {
        zeroRow[2][j] = 0.0f;
    }
    EXPECT_EQ(zeroRow.determinant(), 0.0f);
    QELMatrix4 triangular;
    const float diagonal[] = {2.0f, 3.0f, 5.0f, 7.0f};
    for (int i = 0; i < 4; ++i) {
        triangular[i][i] = diagonal[i];
        triangular[0][i] += 1.0f;
    }
    EXPECT_EQ(triangular.determinant(), 3.0f * 3.0f * 5.0f * 7.0f);
    QELMatrix4 swapped = identity(); // rows 0 and 3 exchanged
    swapped[0][0] = swapped[3][3] = 0.0f;
    swapped[0][3] = swapped[3][0] = 1.0f;
    EXPECT_EQ(swapped.determinant(), -1.0f);
}

TEST(QELMatrix4, OperationsFollowTheStatedOrder) {
    Samples<float> samples(202);
    for (int n = 0; n < kSamples; ++n) {
        const QELMatrix4 a = sampled(samples, n % 2 == 0);
        const QELMatrix4 b = sampled(samples, n % 2 == 0);
        const Point p(samples.any(), samples.any(), samples.any());

        Point out;
        a.multVec(out, p);
        ASSERT_TRUE(sameBits(out, transformed(a, p)));

        QELMatrix4 homogeneous = a;
        if (!(a[3][3] == 1.0f)) {
            for (int i = 0; i < 4; ++i) {
                for (int j = 0; j < 4; ++j) {
                    homogeneous[i][j] = static_cast<float>(static_cast<double>(a[i][j]) /
                                                           static_cast<double>(a[3][3]));
                }
            }
            homogeneous[3][3] = 1.0f;
        }
        QELMatrix4 copy = a;
        ASSERT_TRUE(sameMatrix(copy.homogenize(), homogeneous));
        ASSERT_TRUE(sameBits(a * p, transformed(homogeneous, p)));

        QELMatrix4 expected;
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) {
                for (int k = 0; k < 4; ++k) {
                    expected[i][j] = sum(expected[i][j], product(a[i][k], b[k][j]));
                }
            }
        }
        QELMatrix4 result = numbered();
        a.multMat(result, b);
        ASSERT_TRUE(sameMatrix(result, expected));
        ASSERT_TRUE(sameMatrix(a * b, expected));

        double terms[4];
        for (int j = 0; j < 4; ++j) {
            terms[j] =
                static_cast<double>(a[0][j]) * static_cast<double>(a.subMatrix(0, j).determinant());
        }
        const double det = ((terms[0] - terms[1]) + terms[2]) - terms[3];
        ASSERT_TRUE(sameBits(a.determinant(), static_cast<float>(det)));
    }
}

TEST(QELMatrix4, IsWrittenRowByRow) {
    std::ostringstream os;
    QELMatrix4 shift;
    shift.setTranslationMatrix(Point(0.5f, -2.0f, 3.0f));
    os << shift;
    EXPECT_EQ(os.str(), "((1, 0, 0, 0.5), (0, 1, 0, -2), (0, 0, 1, 3), (0, 0, 0, 1))");
}
