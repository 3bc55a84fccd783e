#include <qel/NumericalUtils.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Rounded.h"
#include "support/Samples.h"

using qel::NumericalUtils;
using qel_test::product;
using qel_test::sameBits;
using qel_test::Samples;
using qel_test::sum;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kSamples = 30000;

// Corners at (s, t) = (0, 0), (1, 0), (0, 1), (1, 1).
struct Quad {
    double x[4], y[4];
};
constexpr Quad kUnitSquare = {{0, 1, 0, 1}, {0, 0, 1, 1}};
constexpr Quad kSkewed = {{0, 4, 1, 3.5}, {0, 0.5, 2, 3}};

struct Outcome {
    double s, t;
    bool outside, converged, singular;
};

::testing::AssertionResult sameOutcome(const Outcome& a, const Outcome& b) {
    if (sameBits(a.s, b.s) && sameBits(a.t, b.t) && a.outside == b.outside &&
        a.converged == b.converged && a.singular == b.singular) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "(" << a.s << ", " << a.t << ") " << a.outside << a.converged << a.singular
           << " is not (" << b.s << ", " << b.t << ") " << b.outside << b.converged << b.singular;
}

Outcome searchD(const Quad& q, double px, double py, int maxIterations = 20, double margin = 0.1,
                double tolerance = 1e-12) {
    Outcome o{kNan, kNan, true, true, true}; // the search has to set all five
    NumericalUtils::searchForSTinQuadD(o.s, o.t, px, py, q.x[0], q.y[0], q.x[1], q.y[1], q.x[2],
                                       q.y[2], q.x[3], q.y[3], o.outside, o.converged, o.singular,
                                       maxIterations, margin, tolerance);
    return o;
}

Outcome searchF(const Quad& q, float px, float py, int maxIterations = 20, float margin = 0.1f,
                float tolerance = 1e-6f) {
    float s = -1.0f, t = -1.0f;
    float x[4], y[4];
    for (int i = 0; i < 4; ++i) {
        x[i] = static_cast<float>(q.x[i]);
        y[i] = static_cast<float>(q.y[i]);
    }
    Outcome o{0, 0, true, true, true};
    NumericalUtils::searchForSTinQuad(s, t, px, py, x[0], y[0], x[1], y[1], x[2], y[2], x[3], y[3],
                                      o.outside, o.converged, o.singular, maxIterations, margin,
                                      tolerance);
    o.s = s;
    o.t = t;
    return o;
}

double bilinear(double s, double t, const double f[4]) {
    const double w1 = (1 - t) * (1 - s), w2 = (1 - t) * s, w3 = (1 - s) * t, w4 = s * t;
    double value = w1 * f[0];
    value = value + w2 * f[1];
    value = value + w3 * f[2];
    return value + w4 * f[3];
}

// The search as plain steps, without any short cut.
Outcome plainSearch(const Quad& q, double px, double py, int maxIterations, double margin,
                    double tolerance) {
    Outcome o{0.5, 0.5, false, false, false};
    const double xmin = *std::min_element(q.x, q.x + 4), xmax = *std::max_element(q.x, q.x + 4);
    const double ymin = *std::min_element(q.y, q.y + 4), ymax = *std::max_element(q.y, q.y + 4);
    const double ex = xmax - xmin, ey = ymax - ymin;
    if (px < xmin - ex * margin || px > xmax + ex * margin || py < ymin - ey * margin ||
        py > ymax + ey * margin) {
        o.outside = true;
        return o;
    }
    const double limit = tolerance * std::max(ex, ey);
    for (int i = 0; i < maxIterations; ++i) {
        const double rx = px - bilinear(o.s, o.t, q.x);
        const double ry = py - bilinear(o.s, o.t, q.y);
        if (std::abs(rx) < limit && std::abs(ry) < limit) {
            o.converged = true;
            return o;
        }
        const double xs = o.t * (q.x[3] - q.x[2]) + (1 - o.t) * (q.x[1] - q.x[0]);
        const double ys = o.t * (q.y[3] - q.y[2]) + (1 - o.t) * (q.y[1] - q.y[0]);
        const double xt = o.s * (q.x[3] - q.x[1]) + (1 - o.s) * (q.x[2] - q.x[0]);
        const double yt = o.s * (q.y[3] - q.y[1]) + (1 - o.s) * (q.y[2] - q.y[0]);
        const double d = xs * yt - xt * ys;
        const double ns = yt * rx - xt * ry;
        const double nt = xs * ry - ys * rx;
        const float largest = static_cast<float>(std::max(std::abs(ns), std::abs(nt)));
        if (std::abs(d) < 100 * static_cast<double>(NumericalUtils::spacing(largest))) {
            o.singular = true;
            return o;
        }
        o.s += ns / d;
        o.t += nt / d;
        if (std::abs(ns) < tolerance && std::abs(nt) < tolerance) {
            o.converged = true;
            return o;
        }
    }
    return o;
}

} // namespace

// -- Bilinear value ----

TEST(QuadrilateralValue, CornersAndMiddle) {
    const double f[4] = {3.0, -1.5, 7.25, 11.0};
    const double corners[4][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
    for (int i = 0; i < 4; ++i) {
        const double s = corners[i][0], t = corners[i][1];
        EXPECT_EQ(NumericalUtils::calculateValueInQuadFromSTD(s, t, f[0], f[1], f[2], f[3]), f[i]);
        EXPECT_EQ(NumericalUtils::calculateValueInQuadFromST(
                      static_cast<float>(s), static_cast<float>(t), 3.0f, -1.5f, 7.25f, 11.0f),
                  static_cast<float>(f[i]));
    }
    EXPECT_EQ(NumericalUtils::calculateValueInQuadFromSTD(0.5, 0.5, 3, -1.5, 7.25, 11), 4.9375);
    EXPECT_EQ(NumericalUtils::calculateValueInQuadFromST(0.5f, 0.5f, 3, -1.5f, 7.25f, 11), 4.9375f);
}

TEST(QuadrilateralValue, FollowsTheStatedOrder) {
    Samples<double> doubles(301);
    Samples<float> floats(302);
    for (int i = 0; i < kSamples; ++i) {
        const double s = doubles.any(), t = doubles.plain() / 7;
        const double f[4] = {doubles.any(), doubles.plain(), doubles.plain(), doubles.any()};
        ASSERT_TRUE(
            sameBits(NumericalUtils::calculateValueInQuadFromSTD(s, t, f[0], f[1], f[2], f[3]),
                     bilinear(s, t, f)));

        const float sf = floats.any(), tf = floats.plain() / 7;
        const float g[4] = {floats.any(), floats.plain(), floats.plain(), floats.any()};
        const float s1 = static_cast<float>(1.0 - static_cast<double>(sf));
        const float t1 = static_cast<float>(1.0 - static_cast<double>(tf));
        const float weights[4] = {product(t1, s1), product(t1, sf), product(s1, tf),
                                  product(sf, tf)};
        float value = product(weights[0], g[0]);
        for (int k = 1; k < 4; ++k) {
            value = sum(value, product(weights[k], g[k]));
        }
        ASSERT_TRUE(sameBits(
            NumericalUtils::calculateValueInQuadFromST(sf, tf, g[0], g[1], g[2], g[3]), value));
    }
}

// -- Inverse search ----

TEST(Quadrilateral, UnitSquareTakesOneStep) {
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.25, 0.75), {0.25, 0.75, false, true, false}));
    // One step reaches the place; the residuals are looked at before the second.
    EXPECT_TRUE(
        sameOutcome(searchD(kUnitSquare, 0.25, 0.75, 1), {0.25, 0.75, false, false, false}));
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.25, 0.75, 2), {0.25, 0.75, false, true, false}));
    EXPECT_TRUE(sameOutcome(searchF(kUnitSquare, 0.25f, 0.75f), {0.25, 0.75, false, true, false}));
}

TEST(Quadrilateral, FarPointIsOutside) {
    for (const double far : {-5.0, 5.0}) {
        EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, far, 0.5), {0.5, 0.5, true, false, false}));
        EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.5, far), {0.5, 0.5, true, false, false}));
        const float farF = static_cast<float>(far);
        EXPECT_TRUE(sameOutcome(searchF(kUnitSquare, farF, 0.5f), {0.5, 0.5, true, false, false}));
        EXPECT_TRUE(sameOutcome(searchF(kUnitSquare, 0.5f, farF), {0.5, 0.5, true, false, false}));
    }
}

TEST(Quadrilateral, MarginBelongsToTheBox) {
    const Quad q = {{0, 4, 0, 4}, {0, 0, 2, 2}};
    EXPECT_FALSE(searchD(q, -1.0, 1.0, 20, 0.25).outside);
    EXPECT_TRUE(searchD(q, std::nextafter(-1.0, -2.0), 1.0, 20, 0.25).outside);
    EXPECT_FALSE(searchD(q, 5.0, 1.0, 20, 0.25).outside);
    EXPECT_TRUE(searchD(q, std::nextafter(5.0, 6.0), 1.0, 20, 0.25).outside);
    EXPECT_FALSE(searchD(q, 2.0, 2.5, 20, 0.25).outside);
    EXPECT_TRUE(searchD(q, 2.0, std::nextafter(2.5, 3.0), 20, 0.25).outside);
    EXPECT_FALSE(searchD(q, 2.0, -0.5, 20, 0.25).outside);
    EXPECT_TRUE(searchD(q, 2.0, std::nextafter(-0.5, -1.0), 20, 0.25).outside);
}

TEST(Quadrilateral, ResultsAreNotClamped) {
    EXPECT_TRUE(
        sameOutcome(searchD(kUnitSquare, 1.0625, -0.0625), {1.0625, -0.0625, false, true, false}));
}

TEST(Quadrilateral, CornersOnOneLineAreSingular) {
    const Quad line = {{0, 1, 2, 3}, {0, 1, 2, 3}};
    EXPECT_TRUE(sameOutcome(searchD(line, 1.0, 1.25), {0.5, 0.5, false, false, true}));
    EXPECT_TRUE(sameOutcome(searchF(line, 1.0f, 1.25f), {0.5, 0.5, false, false, true}));
}

TEST(Quadrilateral, NoIterationsSetNoFlag) {
    for (const int none : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_TRUE(
            sameOutcome(searchD(kUnitSquare, 0.25, 0.75, none), {0.5, 0.5, false, false, false}));
        EXPECT_TRUE(
            sameOutcome(searchF(kUnitSquare, 0.25f, 0.75f, none), {0.5, 0.5, false, false, false}));
        EXPECT_TRUE(searchD(kUnitSquare, 9.0, 0.75, none).outside); // looked at before
    }
}

TEST(Quadrilateral, StartingPointConvergesWithoutAStep) {
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.5, 0.5), {0.5, 0.5, false, true, false}));
}

TEST(Quadrilateral, ResidualsAreMeasuredByTheExtent) {
    // The residual 2e-5 * 1e6 = 20 is below 1e-4 * 1e6, although the numerators are huge.
    const Quad huge = {{0, 1e6, 0, 1e6}, {0, 0, 1e6, 1e6}};
    EXPECT_TRUE(sameOutcome(searchD(huge, 0.50002e6, 0.5e6, 20, 0.1, 1e-4),
                            {0.5, 0.5, false, true, false}));
}

TEST(Quadrilateral, NumeratorsAreMeasuredByThePlainTolerance) {
    // Extents of 1e-3: the residual 2.5e-4 is not below 1e-2 * 1e-3, but the numerator 2.5e-7 is
    // below 1e-2, after the first step.
    const Quad small = {{0, 1e-3, 0, 1e-3}, {0, 0, 1e-3, 1e-3}};
    const Outcome o = searchD(small, 0.25e-3, 0.5e-3, 1, 0.1, 1e-2);
    EXPECT_TRUE(o.converged);
    EXPECT_NEAR(o.s, 0.25, 1e-12);
    EXPECT_EQ(o.t, 0.5);
}

TEST(Quadrilateral, SingularityIsJudgedInSinglePrecision) {
    // The determinant is the area 1e-5, the numerator 0.25e-5: its decade is 1e-6, and 100 float
    // spacings of it are 1.2e-11. At an area of 1e-12 the decade is 1e-13.
    const auto strip = [](double height) { return Quad{{0, 1, 0, 1}, {0, 0, height, height}}; };
    EXPECT_TRUE(searchD(strip(1e-5), 0.25, 0.25e-5, 20, 0.1, 1e-9).converged);
    // A numerator of exactly zero counts as 1: an area below 100 float epsilons is singular ...
    EXPECT_TRUE(searchD(strip(1e-5), 0.5, 0.5e-5, 20, 0.1, 0.0).singular);
    // ... and one above is not, nor would the double epsilon call the first one singular.
    EXPECT_FALSE(searchD(strip(1e-4), 0.5, 0.5e-4, 20, 0.1, 0.0).singular);
}

// A determinant of exactly 100 spacings is not less.
TEST(Quadrilateral, SingularityEndsAtAHundredSpacings) {
    const auto isSingular = [](double height) {
        const Quad strip = {{0, 1, 0, 1}, {0, 0, height, height}};
        return searchD(strip, 0.5, 0.5 * height, 20, 0.1, 0.0).singular; // numerators of zero
    };
    const double threshold = 100.0 * 1.1920928955078125e-7;
    EXPECT_FALSE(isSingular(threshold));
    EXPECT_TRUE(isSingular(std::nextafter(threshold, 0.0)));
}

// The determinant of the unit square is 1: below 100 spacings of numerators in the decade above
// 1e5, not of those in the one below. Numerators are rounded to float first.
TEST(Quadrilateral, SingularityDependsOnTheDecadeOfTheLargerNumerator) {
    const auto singular = [](double rx, double ry) {
        const Outcome o = searchD(kUnitSquare, 0.5 + rx, 0.5 + ry, 1, 1e6, 1e-9);
        EXPECT_EQ(o.s, o.singular ? 0.5 : 0.5 + rx);
        EXPECT_EQ(o.t, o.singular ? 0.5 : 0.5 + ry);
        return o.singular;
    };
    const double border = 1e5, aboveInFloat = 100000.0078125;
    EXPECT_FALSE(singular(border, 0.0));
    EXPECT_FALSE(singular(border + 0.001953125, 0.0)) << "rounds down to the border";
    EXPECT_TRUE(singular(aboveInFloat, 0.0));
    EXPECT_TRUE(singular(-aboveInFloat, 1.0));
    EXPECT_TRUE(singular(1.0, aboveInFloat));
    EXPECT_FALSE(singular(-border, -border));
}

// Both tests of convergence are for strictly less.
TEST(Quadrilateral, WhatEqualsAToleranceHasNotConverged) {
    // Residual 0.25, extent 1.
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.75, 0.5, 1, 0.1, 0.25),
                            {0.75, 0.5, false, false, false}));
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.5, 0.75, 1, 0.1, 0.25),
                            {0.5, 0.75, false, false, false}));
    EXPECT_TRUE(sameOutcome(searchD(kUnitSquare, 0.75, 0.5, 1, 0.1, std::nextafter(0.25, 1.0)),
                            {0.5, 0.5, false, true, false}));
    // Residual 0.25, extent 0.5, numerator 0.125.
    const Quad half = {{0, 0.5, 0, 0.5}, {0, 0, 0.5, 0.5}};
    for (const double tolerance : {0.125, std::nextafter(0.125, 1.0)}) {
        const bool converged = tolerance > 0.125;
        EXPECT_TRUE(sameOutcome(searchD(half, 0.5, 0.25, 1, 0.1, tolerance),
                                {1.0, 0.5, false, converged, false}));
        EXPECT_TRUE(sameOutcome(searchD(half, 0.25, 0.5, 1, 0.1, tolerance),
                                {0.5, 1.0, false, converged, false}));
    }
}

TEST(Quadrilateral, SkewedMappingIsInverted) {
    for (int i = 0; i <= 10; ++i) {
        for (int j = 0; j <= 10; ++j) {
            const double s = i / 10.0, t = j / 10.0;
            const double px = bilinear(s, t, kSkewed.x), py = bilinear(s, t, kSkewed.y);
            const Outcome o = searchD(kSkewed, px, py);
            EXPECT_TRUE(o.converged);
            EXPECT_NEAR(o.s, s, 1e-10);
            EXPECT_NEAR(o.t, t, 1e-10);
            const Outcome single = searchF(kSkewed, static_cast<float>(px), static_cast<float>(py));
            EXPECT_TRUE(single.converged);
            EXPECT_NEAR(single.s, s, 1e-5);
            EXPECT_NEAR(single.t, t, 1e-5);
        }
    }
}

TEST(Quadrilateral, NonFiniteInputEndsSoon) {
    // As many steps as there are ints: only a search that knows when to stop gets through.
    const int endless = std::numeric_limits<int>::max();
    for (const double bad : {kNan, kInfinity, -kInfinity}) {
        for (int corner = 0; corner < 4; ++corner) {
            Quad q = kSkewed;
            q.x[corner] = bad;
            searchD(q, 1.0, 1.0, endless);
            searchF(q, 1.0f, 1.0f, endless);
        }
        searchD(kSkewed, bad, 1.0, endless);
        searchF(kSkewed, 1.0f, static_cast<float>(bad), endless);
    }
    const Outcome o = searchD(kSkewed, kNan, 1.0, endless);
    EXPECT_TRUE(sameOutcome(o, {kNan, kNan, false, false, false}));
}

TEST(Quadrilateral, StandingStillEndsSoonWithoutAFlag) {
    // No residual is strictly below a tolerance of zero.
    const Outcome o = searchD(kUnitSquare, 0.25, 0.75, std::numeric_limits<int>::max(), 0.1, 0.0);
    EXPECT_TRUE(sameOutcome(o, {0.25, 0.75, false, false, false}));
}

TEST(Quadrilateral, SearchFollowsTheStatedSteps) {
    Samples<double> samples(303);
    int converged = 0, outside = 0, singular = 0, unfinished = 0;
    for (int i = 0; i < kSamples; ++i) {
        Quad q;
        const double scale = std::pow(10.0, samples.integer(-8, 8));
        for (int k = 0; k < 4; ++k) {
            const double noise = i % 3 == 0 ? 0.0 : 0.1 * samples.plain();
            q.x[k] = i % 7 == 0 ? samples.any() : scale * (kUnitSquare.x[k] + noise);
            q.y[k] = i % 5 == 0 ? samples.integer(-1, 1) : scale * (kUnitSquare.y[k] + noise / 2);
        }
        const double px = scale * samples.plain() / 8, py = scale * samples.plain() / 8;
        const int iterations = samples.integer(0, 30);
        const double margin = samples.integer(0, 2) * 0.3;
        const double tolerance = std::pow(10.0, samples.integer(-14, -2));
        const Outcome expected = plainSearch(q, px, py, iterations, margin, tolerance);
        ASSERT_TRUE(sameOutcome(searchD(q, px, py, iterations, margin, tolerance), expected));
        converged += expected.converged;
        outside += expected.outside;
        singular += expected.singular;
        unfinished += !expected.converged && !expected.outside && !expected.singular;
    }
    for (const int count : {converged, outside, singular, unfinished}) {
        EXPECT_GT(count, kSamples / 200);
    }
}

TEST(Quadrilateral, FloatSearchAgreesWithTheDoubleSearch) {
    Samples<float> samples(304);
    int compared = 0;
    for (int i = 0; i < kSamples; ++i) {
        Quad q;
        for (int k = 0; k < 4; ++k) {
            q.x[k] = static_cast<float>(kUnitSquare.x[k]) + 0.02f * samples.plain();
            q.y[k] = static_cast<float>(kUnitSquare.y[k]) + 0.02f * samples.plain();
            q.x[k] = static_cast<float>(q.x[k]);
            q.y[k] = static_cast<float>(q.y[k]);
        }
        const float px = 0.5f + samples.plain() / 20, py = 0.5f + samples.plain() / 20;
        const Outcome wide = searchD(q, px, py, 20, 0.0, 1e-12);
        const Outcome single = searchF(q, px, py, 20, 0.0f, 1e-6f);
        ASSERT_EQ(single.outside, wide.outside);
        if (wide.converged) {
            ++compared;
            ASSERT_TRUE(single.converged);
            ASSERT_NEAR(single.s, wide.s, 1e-5);
            ASSERT_NEAR(single.t, wide.t, 1e-5);
        }
    }
    EXPECT_GT(compared, kSamples / 2);
}
