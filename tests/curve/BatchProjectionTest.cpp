// The s-values of many points, and the search of their nearest vertices.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/CurveShapes.h"
#include "support/Curves.h"
#include "support/Errors.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;

std::vector<double> svaluesOf(const ParametricCurve& curve, const Points& points, bool normalize) {
    std::vector<double> s{-1.0, -2.0, -3.0}; // replaced, whatever it held
    curve.getSvalues(points, s, normalize);
    return s;
}

// Each point projected alone.
std::vector<double> referenceSvalues(const ParametricCurve& curve, const Points& points) {
    std::vector<double> s(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        curve.projectPoint(points[i], s[i]);
    }
    return s;
}

TEST(BatchProjection, GivesTheSvaluesOfTheFeet) {
    const ParametricCurve curve(Points{{0, 0, 0}, {10, 0, 0}}, ParametricCurve::dim3D);
    EXPECT_EQ(svaluesOf(curve, {{4, 3, 0}, {-5, 1, 0}, {10, 0, 0}}, false),
              (std::vector<double>{0.4, 0.0, 1.0}));
}

TEST(BatchProjection, NormalizeSetsTheEndsAlone) {
    const ParametricCurve curve(Points{{0, 0, 0}, {10, 0, 0}}, ParametricCurve::dim3D);
    EXPECT_EQ(svaluesOf(curve, {{4, 3, 0}, {4, 1, 0}, {4.5, 0, 1}, {3, 0, 1}}, true),
              (std::vector<double>{0.0, 0.4, 0.45, 1.0}));
    EXPECT_EQ(svaluesOf(curve, {{4, 3, 0}, {3, 3, 0}}, true), (std::vector<double>{0.0, 1.0}));
}

TEST(BatchProjection, RefusesFewerThanTwo) {
    const ParametricCurve curve(Points{{0, 0, 0}, {10, 0, 0}}, ParametricCurve::dim3D);
    const CurveState before = stateOf(curve);
    for (const Points& points : {Points(), Points(1)}) {
        std::vector<double> s;
        EXPECT_THAT(
            [&] { curve.getSvalues(points, s, false); },
            throwsInternal("ParametricCurve", "getSvalues", "Points must have size at least two."));
    }
    EXPECT_EQ(stateOf(curve), before);
}

TEST(BatchProjection, ACurveOfTwoEqualPointsGivesZero) {
    const ParametricCurve curve(Points{{1, 2, 3}, {1, 2, 3}}, ParametricCurve::dim3D);
    EXPECT_EQ(svaluesOf(curve, {{4, 3, 0}, {1, 2, 3}, {0, 0, 0}}, false),
              (std::vector<double>{0.0, 0.0, 0.0}));
}

TEST(BatchProjection, TheCurvesOwnPointsGetTheirOwnSvalues) {
    const ParametricCurve curve(helixPath(700, 1.0), ParametricCurve::dim3D);
    EXPECT_TRUE(sameBitsInAll(svaluesOf(curve, curve.getCurve(), false), curve.getSvalues()));
}

// Few and many points on short and long curves: on either side of where hierarchies begin.
TEST(BatchProjection, ProjectsEachPointAsAloneMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        RandomCurves random(38);
        for (const std::size_t n :
             std::vector<std::size_t>{2, 3, 15, 16, 17, 120, 399, 400, 401, 2500}) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                const ParametricCurve curve(path.points, ParametricCurve::dim3D);
                for (const std::size_t m : std::vector<std::size_t>{2, 7, 8, 15, 16, 80}) {
                    SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points, " +
                                 std::to_string(m) + " probes");
                    const Points probes = probesOf(curve.getCurve(), m, random);
                    EXPECT_TRUE(sameBitsInAll(svaluesOf(curve, probes, false),
                                              referenceSvalues(curve, probes)));
                }
            }
        }
    });
}

// Enough probes on long enough curves of every shape that the hierarchy in space is chosen where it
// pays, at once or on the way.
TEST(BatchProjection, ProjectsOnEveryShapeMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            for (const std::size_t n : std::vector<std::size_t>{399, 400, 3000}) {
                for (const std::size_t m : std::vector<std::size_t>{3, 200, 2000}) {
                    SCOPED_TRACE(std::string(shape.name) + ", " + std::to_string(n) + " points, " +
                                 std::to_string(m) + " probes");
                    const Points points = shape.make(n);
                    const Points probes = probesOf(shape, points, m);
                    const ParametricCurve curve(points, ParametricCurve::dim3D);
                    EXPECT_TRUE(sameBitsInAll(svaluesOf(curve, probes, false),
                                              referenceSvalues(curve, probes)));
                }
            }
        }
    });
}

} // namespace
