// Many threads read one object, and call the free functions on one curve: for ThreadSanitizer.

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qel/CurveCrossings.h>
#include <qel/CurveLocator.h>
#include <qel/CurveResampling.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "support/CurveShapes.h"

namespace {

using namespace qel_test;

template <typename Work>
void onFourThreads(const Work& work) {
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < 4; ++k) {
        threads.emplace_back([&work, k] { work(k); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Concurrency, ThreadsReadOneLocator) {
    const qel::CurveLocator locator(curveShape("spiral").make(5000));
    const CurvePoints probes =
        probesOf(curveShape("spiral"), curveShape("spiral").make(5000), 4000);
    std::vector<double> distance(4000), alone(4000);
    qel::CurveLocations all;
    all.distance = alone;
    locator.locate(probes, all);
    std::vector<std::size_t> places(4);
    onFourThreads([&](std::size_t k) {
        qel::CurveLocations out;
        out.distance = qel::ScalarView<double>(distance.data() + 1000 * k, 1000);
        locator.locate(qel::TripletView<const double>(probes.data() + 1000 * k, 1000), out);
        std::vector<qel::CurveLocation> within;
        locator.locateWithin(probes[k], 0.1, within);
        places[k] = within.size() + static_cast<std::size_t>(locator.locate(probes[k]).edge >= 0);
    });
    EXPECT_EQ(distance, alone);
    for (const std::size_t count : places) {
        EXPECT_GT(count, 1U);
    }
}

TEST(Concurrency, ThreadsCrossOneCurve) {
    const CurvePoints curve = curveShape("zig_zag").make(2000);
    const CurvePoints other = curveShape("zig_zag").makeBeside(3000);
    const std::size_t expected = qel::findCrossings(curve, other).size();
    EXPECT_GT(expected, 0U);
    std::vector<std::size_t> counts(4);
    onFourThreads([&](std::size_t k) {
        counts[k] = qel::findCrossings(curve, other).size();
        EXPECT_FALSE(qel::findCrossingsWithLine(curve, {0, 0.5, 0}, {1, 0.5, 0}).empty());
        EXPECT_FALSE(qel::findCrossingsWithPlane(curve, {0, 0.5, 0}, {0, 1, 0}).empty());
    });
    EXPECT_EQ(counts, std::vector<std::size_t>(4, expected));
}

TEST(Concurrency, ThreadsSimplifyAndResampleOneCurve) {
    const CurvePoints curve = curveShape("growing_zig_zag").make(3000);
    const std::size_t expected = qel::simplifyToError(curve, 1e-3).size();
    const std::vector<double> svalues(100, 0.25);
    std::vector<std::size_t> counts(4);
    onFourThreads([&](std::size_t k) {
        counts[k] = qel::simplifyToError(curve, 1e-3).size();
        CurvePoints points(100);
        qel::resampleCurve(curve, svalues, {}, points, {});
        std::vector<double> curvature(3000);
        qel::CurveShapeFields out;
        out.curvature = curvature;
        qel::computeCurveShape(curve, out);
        EXPECT_GT(curvature[10], 0.0);
        EXPECT_EQ(points[0], points[99]);
    });
    EXPECT_EQ(counts, std::vector<std::size_t>(4, expected));
}

} // namespace
