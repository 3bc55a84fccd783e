// What counts as nothing beside a length or a parameter: a hundred spacings, on the spot.

#include "curve/Tolerance.h"

#include <cmath>

#include <gtest/gtest.h>

#include <qel/NumericalUtils.h>

#include "support/Curves.h"

namespace {

using namespace qel_test;
using qel::NumericalUtils;

bool referenceIsSignificant(double length) {
    return length > 100.0 * NumericalUtils::spacing(length);
}

bool referenceCountAsEqual(double sLo, double sHi) {
    return 100.0 * NumericalUtils::spacing(sHi) > sHi - sLo;
}

// At every power of two and beside it, of both signs.
template <typename Check>
void forEveryMagnitude(Check check) {
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double magnitude = std::ldexp(1.0, exponent);
        for (const double x :
             {magnitude, std::nextafter(magnitude, 0.0), std::nextafter(magnitude, kInfinity)}) {
            check(x);
            check(-x);
        }
    }
    for (const double x : {0.0, -0.0, kMarker, kInfinity, -kInfinity, kNaN}) {
        check(x);
    }
}

TEST(Tolerance, InsignificantIsAHundredSpacings) {
    EXPECT_EQ(qel::insignificantAt(0.5), 100.0 * NumericalUtils::spacing(0.5));
    EXPECT_EQ(qel::insignificantAt(0.5f), 100.0f * NumericalUtils::spacing(0.5f));
    EXPECT_EQ(qel::insignificantAt(0.0), 100.0 * NumericalUtils::spacing(0.0));
    EXPECT_TRUE(std::isnan(qel::insignificantAt(kInfinity)));
}

TEST(Tolerance, SignificantLengthsMatchReferenceAtEveryMagnitude) {
    forEveryMagnitude([](double length) {
        ASSERT_EQ(qel::isSignificant(length), referenceIsSignificant(length)) << length;
    });
}

TEST(Tolerance, EqualSvaluesMatchReferenceAtEveryMagnitude) {
    RandomCurves make(62);
    forEveryMagnitude([&](double sHi) {
        const double tolerance = 100.0 * NumericalUtils::spacing(sHi);
        for (const double step :
             {0.0, tolerance, std::nextafter(tolerance, 0.0), std::nextafter(tolerance, 1.0),
              0.9 * tolerance, 1.1 * tolerance, make.uniform(0.0, 4.0) * tolerance, 1.0}) {
            const double sLo = sHi - step;
            ASSERT_EQ(qel::countAsEqual(sLo, sHi), referenceCountAsEqual(sLo, sHi))
                << sLo << " " << sHi;
        }
    });
}

} // namespace
