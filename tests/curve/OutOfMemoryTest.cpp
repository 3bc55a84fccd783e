// What changes a curve changes all of it or nothing: each operation is run with memory that ends
// at its first allocation, its second, and so on until it has enough.

#include <new>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/AllocationLimit.h"
#include "support/Bits.h"

namespace {

using namespace qel_test;
using Spreads = std::vector<std::pair<double, double>>;

const FloatPoint kOrigin(1, 2, 3);
const FloatPoint kDirection(0, 3, 4);

// Supplied s-values, repeats, a point that turns back, floats: every part of the state can change.
ParametricCurve example() {
    return ParametricCurve(FloatPoints{{0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {0.5, 0, 0}, {3, 2, 0}},
                           Values{0.0, 0.25, 0.25, 0.5, 2.0}, ParametricCurve::dim2D);
}

// Returns how often the operation failed before it had memory enough.
template <typename Operation>
int failuresUntilDone(Operation operation) {
    const CurveState before = stateOf(example());
    for (int allowed = 0; allowed < 1000; ++allowed) {
        ParametricCurve curve = example();
        bool failed = false;
        {
            const AllocationLimit limit(allowed);
            try {
                operation(curve);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        if (!failed) {
            EXPECT_FALSE(stateOf(curve) == before) << "the operation shows nothing";
            return allowed;
        }
        EXPECT_EQ(stateOf(curve), before) << "with " << allowed << " allocations";
    }
    ADD_FAILURE() << "never done";
    return 0;
}

TEST(OutOfMemory, SettingMorePointsChangesAllOrNothing) {
    const Points points{{0, 0, 0}, {3, 4, 0}, {3, 4, 1}, {3, 4, 2}, {3, 4, 3}, {3, 4, 12}};
    const FloatPoints floats = narrowed(points);
    const Values values{0.0, 1.0, 4.0, 5.0, 6.0, 7.0};
    const std::vector<float> floatValues(values.begin(), values.end());
    const auto dim = ParametricCurve::dim3D;
    const auto norm = ParametricCurve::normalizeX;
    const auto expectAllOrNothing = [](auto set) { EXPECT_GT(failuresUntilDone(set), 0); };
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(points, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(floats, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(Points(points), dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(points, norm, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(floats, norm, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(points, values, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPoints(floats, values, dim); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPointsX(values); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPointsY(floatValues); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPointsZ(values, values); });
    expectAllOrNothing([&](ParametricCurve& c) { c.setPointsXnormalizeUniform(values); });
    const ParametricCurve other(points, dim);
    expectAllOrNothing([&](ParametricCurve& c) { c = other; });
}

// Memory that is large enough is used again.
TEST(OutOfMemory, SettingAsManyPointsNeedsNoMemory) {
    const Points points{{0, 0, 0}, {3, 4, 0}, {3, 4, 1}, {3, 4, 2}, {3, 4, 12}};
    const FloatPoints floats = narrowed(points);
    const Values values{0.0, 1.0, 4.0, 5.0, 6.0};
    const std::vector<float> fewValues{0.0f, 4.0f};
    const auto dim = ParametricCurve::dim1D;
    const auto norm = ParametricCurve::normalizeX;
    const auto expectNone = [](auto set) { EXPECT_EQ(failuresUntilDone(set), 0); };
    expectNone([&](ParametricCurve& c) { c.setPoints(points, dim); });
    expectNone([&](ParametricCurve& c) { c.setPoints(floats, dim); });
    expectNone([&](ParametricCurve& c) { c.setPoints(points, norm, dim); });
    expectNone([&](ParametricCurve& c) { c.setPoints(floats, norm, dim); });
    expectNone([&](ParametricCurve& c) { c.setPoints(points, values, dim); });
    expectNone([&](ParametricCurve& c) { c.setPoints(floats, values, dim); });
    expectNone([&](ParametricCurve& c) { c.setPointsX(values); });
    expectNone([&](ParametricCurve& c) { c.setPointsY(fewValues); });
    expectNone([&](ParametricCurve& c) { c.setPointsZ(values, values); });
    expectNone([&](ParametricCurve& c) { c.setPointsXnormalizeUniform(values); });
    const ParametricCurve other(points, dim);
    expectNone([&](ParametricCurve& c) { c = other; });
}

TEST(OutOfMemory, SimplificationChangesAllOrNothing) {
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.optimizeByNormalDistance(2, 0.1); }), 0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.optimizeByNormalDistance(3, 0.1); }), 0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.optimizeByNormalDistance(4, 0.0); }), 0);
}

// Here the caller's own lists are what changes.
template <typename List>
int failuresOfCleanEnds(List points) {
    const List before = points;
    const ParametricCurve any;
    const Values svalues{0.5, 0.5, 0.6, 0.7, 0.7};
    Values s = svalues;
    int failures = -1;
    for (bool failed = true; failed;) {
        EXPECT_EQ(points, before);
        EXPECT_EQ(s, svalues);
        ++failures;
        failed = false;
        const AllocationLimit limit(failures);
        try {
            any.getCurveCleanEnds(points, s, 0.0, 1.0);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    }
    EXPECT_EQ(points.size(), 4u);
    EXPECT_EQ(s, Values({0.0, 0.5, 0.6, 1.0}));
    return failures;
}

TEST(OutOfMemory, CleaningEndsChangesAllOrNothing) {
    EXPECT_EQ(failuresOfCleanEnds(Points(5, Point(1, 2, 3))), 0);
    EXPECT_GT(failuresOfCleanEnds(FloatPoints(5, FloatPoint(1, 2, 3))), 0);
}

TEST(OutOfMemory, InsertingPointsChangesAllOrNothing) {
    const Spreads spreads(4, {0.1, 0.2});
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.tesselateCurvebySdistance(0.1); }), 0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.tesselateCurvebyNumber(3, 0.1); }), 0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.tesselateCurvebyMinYdistance(0.2); }),
              0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.tesselateXCurvebyCosine(2); }), 0);
    EXPECT_GT(failuresUntilDone([&](ParametricCurve& c) { c.tesselateXCurvebyCosine(2, spreads); }),
              0);
}

TEST(OutOfMemory, CleaningChangesAllOrNothing) {
    // In place, with no need of memory at all.
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.eliminateDoublePoints(2); }), 0);
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.makeUnique(); }), 0);
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.makeContinuous(); }), 0);
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.reverseCurve(); }), 0);
}

// After a refused setter there are fewer s-values than points, and cleaning needs memory for more.
TEST(OutOfMemory, CleaningACurveShortOfSvaluesChangesAllOrNothing) {
    ParametricCurve refused;
    const Points points{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    EXPECT_ANY_THROW(refused.setPoints(points, Values{0.0, 1.0, 0.5, 1.0}, ParametricCurve::dim3D));
    const CurveState before = stateOf(refused);
    using Operation = void (ParametricCurve::*)();
    for (const Operation operation : {static_cast<Operation>(&ParametricCurve::makeUnique),
                                      static_cast<Operation>(&ParametricCurve::makeContinuous),
                                      static_cast<Operation>(&ParametricCurve::reverseCurve)}) {
        ParametricCurve curve(refused);
        bool failed = false;
        {
            const AllocationLimit limit(0);
            try {
                (curve.*operation)();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        EXPECT_TRUE(failed);
        EXPECT_EQ(stateOf(curve), before);
    }
}

TEST(OutOfMemory, ExtrapolationChangesAllOrNothing) {
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.expandCurveBothEnds(0.1); }), 0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) { c.expandCurveBothEndsExtraPoints(0.1); }),
              0);
}

// The axis is part of the state, also where a const conversion stores it.
TEST(OutOfMemory, ConversionChangesAllOrNothing) {
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.convertToART0(kOrigin, kDirection); }),
              0);
    EXPECT_EQ(
        failuresUntilDone([](ParametricCurve& c) { c.convertToART(kOrigin, kDirection, 1, 2.0); }),
        0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) {
                  Points out;
                  c.convertToART(kOrigin, kDirection, out);
              }),
              0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) {
                  FloatPoints out;
                  c.convertToART(kOrigin, kDirection, out);
              }),
              0);
    EXPECT_GT(failuresUntilDone([](ParametricCurve& c) {
                  FloatPoints out;
                  c.convertToART0(kOrigin, kDirection, out);
              }),
              0);
}

TEST(OutOfMemory, RotatingNeedsNoMemory) {
    EXPECT_EQ(failuresUntilDone(
                  [](ParametricCurve& c) { c.rotateAroundVector(Point(), Point(0, 1, 1), 0.5); }),
              0);
    EXPECT_EQ(failuresUntilDone([](ParametricCurve& c) { c.storeSvaluetoXandXToY(); }), 0);
}

} // namespace
