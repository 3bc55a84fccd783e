// Each operation is run with memory that ends at its first allocation, its second, and so on until
// it has enough.

#include <new>
#include <vector>

#include <gtest/gtest.h>

#include <qel/CurveCrossings.h>
#include <qel/CurveLocator.h>
#include <qel/CurveResampling.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "support/AllocationLimit.h"
#include "support/CurveShapes.h"

namespace {

using namespace qel_test;
using qel::CurveLocation;
using qel::CurveLocator;

// Returns how often the operation failed before it had memory enough.
template <typename Operation, typename Check>
int failuresUntilDone(Operation operation, Check checkUnchanged) {
    for (int allowed = 0; allowed < 1000; ++allowed) {
        try {
            const AllocationLimit limit(allowed);
            operation();
            return allowed;
        } catch (const std::bad_alloc&) {
            checkUnchanged();
        }
    }
    ADD_FAILURE() << "never done";
    return 0;
}

TEST(OutOfMemory, ALocatorIsBuiltOrNot) {
    CurvePoints curve = curveShape("spiral").make(1000);
    curve.insert(curve.begin() + 500, 10, curve[500]); // repeats take memory of their own
    const auto build = [&] { EXPECT_EQ(CurveLocator(curve).size(), 1009U); };
    EXPECT_GT(failuresUntilDone(build, [] {}), 5);
}

TEST(OutOfMemory, TheListOfPlacesIsReplacedOrKept) {
    const CurveLocator locator(curveShape("spiral").make(1000));
    std::vector<CurveLocation> places(3);
    places[1].edge = 77;
    const auto list = [&] { locator.locateWithin({0, 0, 0}, 0.5, places); };
    const auto expectKept = [&] {
        EXPECT_EQ(places.size(), 3U);
        EXPECT_EQ(places[1].edge, 77);
    };
    EXPECT_GT(failuresUntilDone(list, expectKept), 0);
    EXPECT_GT(places.size(), 3U);
}

TEST(OutOfMemory, CrossingsAreFoundOrNot) {
    CurvePoints curve = curveShape("zig_zag").make(200);
    curve.insert(curve.begin() + 50, 3, curve[50]);
    const CurvePoints other = curveShape("zig_zag").makeBeside(100);
    curve.insert(curve.end(), other.begin() + 10, other.begin() + 20); // a shared stretch
    const auto none = [] {};
    const auto cross = [&] { EXPECT_GT(qel::findCrossings(curve, other).size(), 50U); };
    EXPECT_GT(failuresUntilDone(cross, none), 10);
    const auto crossSegment = [&] {
        EXPECT_FALSE(qel::findCrossingsWithSegment(curve, {0, 0.5, 0}, {1, 0.5, 0}).empty());
    };
    EXPECT_GT(failuresUntilDone(crossSegment, none), 5);
    const auto crossLine = [&] {
        EXPECT_FALSE(qel::findCrossingsWithLine(curve, {0, 0.5, 0}, {1, 0.5, 0}).empty());
    };
    EXPECT_GT(failuresUntilDone(crossLine, none), 3);
    const auto crossPlane = [&] {
        EXPECT_FALSE(qel::findCrossingsWithPlane(curve, {0, 0.5, 0}, {0, 1, 0}).empty());
    };
    EXPECT_GT(failuresUntilDone(crossPlane, none), 3);
}

TEST(OutOfMemory, CurvesAreSimplifiedOrNot) {
    const CurvePoints curve =
        curveShape("growing_zig_zag").make(3000); // long enough for a hierarchy
    double error = -1.0;
    const auto toError = [&] { EXPECT_GT(qel::simplifyToError(curve, 1e-4).size(), 50U); };
    EXPECT_GT(failuresUntilDone(toError, [] {}), 10);
    const auto toCount = [&] { EXPECT_EQ(qel::simplifyToCount(curve, 500, error).size(), 500U); };
    EXPECT_GT(failuresUntilDone(toCount, [&] { EXPECT_EQ(error, -1.0); }), 10);
}

TEST(OutOfMemory, ShapeAndSamplesAreWrittenOrNot) {
    const CurvePoints curve = curveShape("spiral").make(100);
    const std::vector<double> svalues(50, 0.5);
    std::vector<double> values(100, -1.0);
    CurvePoints points(50);
    qel::CurveShapeFields atVertices, atSvalues;
    atVertices.curvature = values;
    atSvalues.curvature = qel::ScalarView<double>(values.data(), 50);
    const auto expectUnchanged = [&] {
        EXPECT_EQ(values, std::vector<double>(100, -1.0));
        EXPECT_EQ(points, CurvePoints(50));
    };
    const auto reset = [&](int failures) {
        EXPECT_GT(failures, 0);
        values.assign(100, -1.0);
    };
    reset(failuresUntilDone([&] { qel::computeCurveShape(curve, atVertices); }, expectUnchanged));
    reset(failuresUntilDone([&] { qel::computeCurveShape(curve, svalues, atSvalues); },
                            expectUnchanged));
    const std::vector<double> data(200);
    const auto resample = [&] {
        qel::resampleCurve(curve, svalues, {data.data(), 100, 2}, points, {values.data(), 50, 2});
    };
    reset(failuresUntilDone(resample, expectUnchanged));
    CurvePoints flat = {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}; // exact arithmetic decides
    const auto orient = [&] { EXPECT_EQ(qel::computeOrientation(flat), 0); };
    EXPECT_GE(failuresUntilDone(orient, [] {}), 0);
}

TEST(OutOfMemory, LocatingTakesNone) {
    const CurveLocator locator(curveShape("spiral").make(1000));
    const CurvePoints probes = curveShape("circle").make(100);
    std::vector<double> distance(100);
    qel::CurveLocations out;
    out.distance = distance;
    const AllocationLimit limit(0);
    EXPECT_NO_THROW(locator.locate(CurvePoint(1, 2, 3)));
    EXPECT_NO_THROW(locator.locate(probes, out));
}

} // namespace
