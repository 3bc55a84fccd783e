// Many threads read one curve: for ThreadSanitizer.

#include <cstddef>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"
#include "support/Curves.h"

namespace {

using namespace qel_test;

TEST(Concurrency, ThreadsReadOneCurve) {
    constexpr std::size_t kThreads = 4;
    const Points points = curveShape("spiral").make(3000);
    const ParametricCurve curve(points, ParametricCurve::dim3D);
    const CurveState before = stateOf(curve);
    const auto read = [&curve, &points] {
        Values found, ratios;
        Points piece, samples;
        double s = 0.0, low = 0.0, high = 0.0;
        curve.getSvalues(points, found, false);
        curve.getCurve(0.2, 0.7, piece);
        curve.getCurveForEquidistantS(samples, 500);
        curve.getRatioForward(ratios);
        curve.getMinMaxX(low, high);
        found.push_back(curve.projectPoint(Point(0.3, 0.2, 0.1), s).x);
        found.push_back(s);
        found.push_back(curve.getPointAtParameter(0.3).y);
        found.push_back(curve.getMaximumNormalDistance({0.0, 0.4, 1.0}));
        found.push_back(low + high + static_cast<double>(piece.size() + samples.size()));
        return found;
    };
    const Values alone = read();
    std::vector<Values> results(kThreads);
    std::vector<std::thread> threads;
    for (Values& result : results) {
        threads.emplace_back([&result, &read] { result = read(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Values& result : results) {
        EXPECT_TRUE(sameBitsInAll(result, alone));
    }
    EXPECT_EQ(stateOf(curve), before);
}

} // namespace
