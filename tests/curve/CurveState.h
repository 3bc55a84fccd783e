#ifndef QEL_TESTS_CURVE_CURVESTATE_H
#define QEL_TESTS_CURVE_CURVESTATE_H

// All that a curve holds, taken down and compared bit for bit.

#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "PlainCurve.h"
#include "support/Bits.h"

namespace qel_test {

struct CurveState {
    Points points;
    Values svalues;
    ParametricCurve::dim dimension;
    ParametricCurve::parametrization parametrization;
    double length;
    Point axisPoint;
    Point axisDirection;
    bool createdAsDouble;

    explicit CurveState(const ParametricCurve& curve)
        : points(curve.getCurve()),
          svalues(curve.getSvalues()),
          dimension(curve.getDimension()),
          parametrization(curve.getParametrization()),
          length(curve.getLength()),
          axisPoint(curve.getAxisPoint()),
          axisDirection(curve.getAxisDirection()),
          createdAsDouble(curve.isCurveCreatedAsDouble()) {}

    // These points from now on, with the s and length computed from them.
    void recompute(const Points& newPoints) {
        points = newPoints;
        length = plainArcValues(points, svalues);
    }
};

inline void expectState(const ParametricCurve& curve, const CurveState& expected) {
    const CurveState actual(curve);
    EXPECT_TRUE(sameBitsInAll(actual.points, expected.points));
    EXPECT_TRUE(sameBitsInAll(actual.svalues, expected.svalues));
    EXPECT_EQ(actual.dimension, expected.dimension);
    EXPECT_EQ(actual.parametrization, expected.parametrization);
    EXPECT_TRUE(sameBits(actual.length, expected.length))
        << actual.length << " is not " << expected.length;
    EXPECT_TRUE(sameBits(actual.axisPoint, expected.axisPoint));
    EXPECT_TRUE(sameBits(actual.axisDirection, expected.axisDirection));
    EXPECT_EQ(actual.createdAsDouble, expected.createdAsDouble);
}

} // namespace qel_test

#endif
