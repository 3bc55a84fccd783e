#include <qel/LineSegment2D.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Samples.h"

using qel::Doublet;
using qel::LineSegment2D;
using qel_test::sameBits;
using qel_test::Samples;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kFloatNan = std::numeric_limits<float>::quiet_NaN();
constexpr double kKept = -77.0; // what an output holds that must not be written
constexpr int kSamples = 20000;

LineSegment2D segment(float x1, float y1, float x2, float y2) {
    return LineSegment2D(Doublet(x1, y1), Doublet(x2, y2));
}

bool sameDoublet(const Doublet& a, const Doublet& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y);
}

// -- A plain model of its own: two floats and free functions ----

struct Pair {
    float x, y;
};

double dot(Pair a, Pair b) {
    return static_cast<double>(a.x * b.x + a.y * b.y);
}
double norm(Pair a) {
    return static_cast<double>(std::sqrt(a.x * a.x + a.y * a.y));
}
Pair unitOf(Pair a) {
    const double len = norm(a);
    return len > 0 ? Pair{static_cast<float>(static_cast<double>(a.x) / len),
                          static_cast<float>(static_cast<double>(a.y) / len)}
                   : a;
}

struct Model {
    Pair from, to;

    explicit Model(const LineSegment2D& s)
        : from{s.getStart().getX(), s.getStart().getY()},
          to{s.getToVector().getX(), s.getToVector().getY()} {}

    Pair at(double t) const {
        return {from.x + static_cast<float>(static_cast<double>(to.x) * t),
                from.y + static_cast<float>(static_cast<double>(to.y) * t)};
    }
    double parameter(Pair p) const {
        return dot({p.x - from.x, p.y - from.y}, unitOf(to)) / norm(to);
    }
    bool meets(const Model& other, double& t) const {
        const Pair n = unitOf({other.to.y, -other.to.x});
        const double a = -dot(other.from, n);
        const double denom = dot(n, to);
        if (denom == 0.0) {
            return false;
        }
        t = -((dot(n, from) + a) / denom);
        return true;
    }
    bool meetsWithin(const Model& other, double& t) const {
        if (!meets(other, t)) {
            return false;
        }
        if (-0.0001 > t || t > 1.0001) {
            return false;
        }
        const double s = other.parameter(at(t));
        return !(-0.0001 > s || s > 1.0001);
    }
    bool meetsCircle(Pair centre, double radius, double& t1, double& t2) const {
        if (to.x == 0.0f && to.y == 0.0f) {
            return false;
        }
        const Pair w{from.x - centre.x, from.y - centre.y};
        const Pair u = unitOf(to);
        const double a = dot(u, u), b = 2.0 * dot(u, w), c = dot(w, w) - radius * radius;
        const double d = b * b - c * (a * 4.0);
        if (0.0 > d) {
            return false;
        }
        t1 = (std::sqrt(d) - b) / (norm(to) * (2.0 * a));
        t2 = (-b - std::sqrt(d)) / (norm(to) * (2.0 * a));
        return true;
    }
};

LineSegment2D sampleSegment(Samples<float>& samples, int i) {
    switch (i % 4) {
    case 0: // small integers: parallel, touching and zero-length segments
        return segment(
            static_cast<float>(samples.integer(-2, 2)), static_cast<float>(samples.integer(-2, 2)),
            static_cast<float>(samples.integer(-2, 2)), static_cast<float>(samples.integer(-2, 2)));
    case 1:
        return segment(samples.any(), samples.any(), samples.any(), samples.any());
    default:
        return segment(samples.plain(), samples.plain(), samples.plain(), samples.plain());
    }
}

} // namespace

TEST(LineSegment2D, IsZeroWhenBuilt) {
    const LineSegment2D s;
    EXPECT_TRUE(sameDoublet(s.getStart(), Doublet(0.0f, 0.0f)));
    EXPECT_TRUE(sameDoublet(s.getToVector(), Doublet(0.0f, 0.0f)));
    EXPECT_TRUE(s.isZeroLength());
}

TEST(LineSegment2D, IsAPlainValue) {
    EXPECT_TRUE(std::is_trivially_copyable<LineSegment2D>::value);
    EXPECT_FALSE(std::is_polymorphic<LineSegment2D>::value);
    EXPECT_EQ(sizeof(LineSegment2D), 4 * sizeof(float));
}

TEST(LineSegment2D, ToleranceMatchesTheLimits) {
    const double& tolerance = LineSegment2D::intersectionTolerance; // has an address
    EXPECT_EQ(tolerance, 0.0001);
    EXPECT_EQ(1.0 + tolerance, 1.0001);
}

TEST(LineSegment2D, EndIsRecomputedFromTheDirection) {
    // The direction is rounded, and the end with it.
    const LineSegment2D s = segment(1e8f, 0.0f, 1.0f, 2.0f);
    EXPECT_TRUE(sameDoublet(s.getToVector(), Doublet(1.0f - 1e8f, 2.0f)));
    EXPECT_TRUE(sameDoublet(s.getEnd(), Doublet(1e8f + (1.0f - 1e8f), 2.0f)));
    EXPECT_NE(s.getEnd().getX(), 1.0f);
    LineSegment2D copy;
    copy = s;
    EXPECT_TRUE(sameDoublet(copy.getEnd(), s.getEnd()));
}

TEST(LineSegment2D, ZeroLengthIsExact) {
    EXPECT_TRUE(segment(3.0f, 4.0f, 3.0f, 4.0f).isZeroLength());
    EXPECT_FALSE(segment(0.0f, 0.0f, 1e-30f, 0.0f).isZeroLength());
    EXPECT_FALSE(segment(0.0f, 0.0f, kFloatNan, 0.0f).isZeroLength());
}

TEST(LineSegment2D, UnitNormalPointsToTheRight) {
    EXPECT_TRUE(sameDoublet(segment(1.0f, 1.0f, 4.0f, 5.0f).unitNormal(), Doublet(0.8f, -0.6f)));
}

TEST(LineSegment2D, NearOriginGivesTheNormalForm) {
    Doublet n;
    double c = kKept;
    segment(0.0f, 2.0f, 5.0f, 2.0f).nearOrigin(n, c);
    EXPECT_TRUE(sameDoublet(n, Doublet(0.0f, -1.0f)));
    EXPECT_EQ(c, 2.0); // the foot is -c*n = (0, 2)
}

TEST(LineSegment2D, NearOriginOfZeroLength) {
    Doublet n(7.0f, 7.0f);
    double c = kKept;
    segment(3.0f, 4.0f, 3.0f, 4.0f).nearOrigin(n, c);
    EXPECT_TRUE(sameDoublet(n, Doublet(0.0f, -0.0f)));
    EXPECT_EQ(c, 0.0);
}

TEST(LineSegment2D, NearOriginMayWriteToItsOwnStart) {
    LineSegment2D s = segment(0.0f, 2.0f, 5.0f, 2.0f);
    double c = kKept;
    s.nearOrigin(s.start, c);
    EXPECT_TRUE(sameDoublet(s.start, Doublet(0.0f, -1.0f)));
    EXPECT_EQ(c, 2.0);
}

TEST(LineSegment2D, ParameterOfAProjection) {
    const LineSegment2D s = segment(1.0f, 1.0f, 5.0f, 1.0f);
    EXPECT_EQ(s.getT(Doublet(2.0f, 9.0f)), 0.25);
    EXPECT_EQ(s.getT(Doublet(-3.0f, 0.0f)), -1.0);
    EXPECT_TRUE(std::isnan(segment(1.0f, 1.0f, 1.0f, 1.0f).getT(Doublet(2.0f, 2.0f))));
}

TEST(LineSegment2D, CrossingSegmentsMeetHalfWay) {
    const LineSegment2D s = segment(0.0f, 0.0f, 2.0f, 0.0f);
    const LineSegment2D other = segment(1.0f, -1.0f, 1.0f, 1.0f);
    double t = kKept;
    EXPECT_TRUE(s.intersect(other, t));
    EXPECT_EQ(t, 0.5);
    t = kKept;
    EXPECT_TRUE(s.intersectWithLimits(other, t));
    EXPECT_EQ(t, 0.5);
}

TEST(LineSegment2D, ParallelLinesLeaveTheParameter) {
    const LineSegment2D s = segment(0.0f, 0.0f, 2.0f, 0.0f);
    double t = kKept;
    EXPECT_FALSE(s.intersect(segment(0.0f, 1.0f, 2.0f, 1.0f), t));
    EXPECT_FALSE(s.intersectWithLimits(segment(0.0f, 1.0f, 2.0f, 1.0f), t));
    EXPECT_EQ(t, kKept);
}

TEST(LineSegment2D, ZeroLengthOnEitherSideDoesNotMeet) {
    const LineSegment2D s = segment(0.0f, 0.0f, 2.0f, 0.0f);
    const LineSegment2D point = segment(1.0f, 0.0f, 1.0f, 0.0f);
    double t = kKept;
    EXPECT_FALSE(s.intersect(point, t));
    EXPECT_FALSE(point.intersect(s, t));
    EXPECT_FALSE(point.intersectWithLimits(point, t));
    EXPECT_EQ(t, kKept);
}

TEST(LineSegment2D, NearlyParallelLinesMeetFarAway) {
    double t = kKept;
    EXPECT_TRUE(
        segment(0.0f, 0.0f, 1.0f, 0.0f).intersect(segment(0.0f, 1.0f, 1.0f, 1.0f - 1e-6f), t));
    EXPECT_GT(std::abs(t), 1e5);
}

TEST(LineSegment2D, CrossingJustBeyondTheEndCounts) {
    const LineSegment2D s = segment(0.0f, 0.0f, 1.0f, 0.0f);
    double t = kKept;
    EXPECT_TRUE(s.intersectWithLimits(segment(1.00005f, -1.0f, 1.00005f, 1.0f), t));
    EXPECT_NEAR(t, 1.00005, 1e-7);
    EXPECT_TRUE(s.intersectWithLimits(segment(-0.00005f, -1.0f, -0.00005f, 1.0f), t));
    EXPECT_NEAR(t, -0.00005, 1e-7);
}

TEST(LineSegment2D, CrossingBeyondTheSlackKeepsItsParameter) {
    const LineSegment2D s = segment(0.0f, 0.0f, 1.0f, 0.0f);
    double t = kKept;
    EXPECT_FALSE(s.intersectWithLimits(segment(1.001f, -1.0f, 1.001f, 1.0f), t));
    EXPECT_NEAR(t, 1.001, 1e-7);
    EXPECT_FALSE(s.intersectWithLimits(segment(-0.001f, -1.0f, -0.001f, 1.0f), t));
    EXPECT_NEAR(t, -0.001, 1e-7);
}

TEST(LineSegment2D, SlackHoldsOnTheOtherSegmentToo) {
    const LineSegment2D s = segment(0.0f, 0.0f, 1.0f, 0.0f);
    double t = kKept;
    EXPECT_TRUE(s.intersectWithLimits(segment(0.5f, 0.00005f, 0.5f, 1.0f), t));
    EXPECT_EQ(t, 0.5);
    t = kKept;
    EXPECT_FALSE(s.intersectWithLimits(segment(0.5f, 0.001f, 0.5f, 1.0f), t));
    EXPECT_EQ(t, 0.5);
}

// 10001/10000 and -1/10000 round to the very limits.
TEST(LineSegment2D, LimitsBelongToTheRangeOnBothSegments) {
    const float length = 10000.0f;
    const auto meets = [&](float along, float across, double& t) {
        t = kKept;
        return segment(0.0f, 0.0f, length, 0.0f)
            .intersectWithLimits(segment(along, -across, along, length - across), t);
    };
    double t = kKept;
    for (const float along : {-1.0f, 0.0f, length, length + 1.0f}) {
        for (const float across : {-1.0f, 0.0f, length, length + 1.0f}) {
            EXPECT_TRUE(meets(along, across, t)) << along << " " << across;
            EXPECT_EQ(t, static_cast<double>(along) / 10000.0);
            EXPECT_FALSE(meets(along, std::nextafter(length + 1.0f, 2.0f * length), t));
            EXPECT_EQ(t, static_cast<double>(along) / 10000.0) << "written all the same";
            EXPECT_FALSE(meets(along, std::nextafter(-1.0f, -2.0f), t));
        }
    }
    EXPECT_FALSE(meets(std::nextafter(-1.0f, -2.0f), 0.0f, t));
    EXPECT_LT(t, -0.0001);
    EXPECT_FALSE(meets(std::nextafter(length + 1.0f, 2.0f * length), 0.0f, t));
    EXPECT_GT(t, 1.0001);
}

TEST(LineSegment2D, LimitsAcceptNan) {
    double t = kKept;
    EXPECT_TRUE(segment(0.0f, 0.0f, 1.0f, 0.0f)
                    .intersectWithLimits(segment(kFloatNan, 0.0f, 1.0f, 1.0f), t));
    EXPECT_TRUE(std::isnan(t));
}

TEST(LineSegment2D, CircleIsMetTwice) {
    double t1 = kKept, t2 = kKept;
    EXPECT_TRUE(
        segment(-2.0f, 0.0f, 2.0f, 0.0f).intersectWithCircle(Doublet(0.0f, 0.0f), 1.0, t1, t2));
    EXPECT_EQ(t1, 0.75);
    EXPECT_EQ(t2, 0.25);
}

TEST(LineSegment2D, TouchedCircleGivesEqualParameters) {
    double t1 = kKept, t2 = kKept;
    EXPECT_TRUE(
        segment(-2.0f, 1.0f, 2.0f, 1.0f).intersectWithCircle(Doublet(0.0f, 0.0f), 1.0, t1, t2));
    EXPECT_EQ(t1, 0.5);
    EXPECT_EQ(t2, 0.5);
}

TEST(LineSegment2D, MissedCircleLeavesTheParameters) {
    double t1 = kKept, t2 = kKept;
    EXPECT_FALSE(
        segment(-2.0f, 2.0f, 2.0f, 2.0f).intersectWithCircle(Doublet(0.0f, 0.0f), 1.0, t1, t2));
    EXPECT_EQ(t1, kKept);
    EXPECT_EQ(t2, kKept);
}

TEST(LineSegment2D, ZeroLengthMeetsNoCircle) {
    double t1 = kKept, t2 = kKept;
    EXPECT_FALSE(
        segment(1.0f, 0.0f, 1.0f, 0.0f).intersectWithCircle(Doublet(0.0f, 0.0f), 1.0, t1, t2));
    EXPECT_EQ(t1, kKept);
    EXPECT_EQ(t2, kKept);
}

TEST(LineSegment2D, CircleParametersAreNotLimited) {
    double t1 = kKept, t2 = kKept;
    EXPECT_TRUE(
        segment(0.0f, 0.0f, 1.0f, 0.0f).intersectWithCircle(Doublet(0.0f, 0.0f), 10.0, t1, t2));
    EXPECT_EQ(t1, 10.0);
    EXPECT_EQ(t2, -10.0);
}

TEST(LineSegment2D, CircleTestLetsNanThrough) {
    double t1 = kKept, t2 = kKept;
    EXPECT_TRUE(
        segment(0.0f, 0.0f, 1.0f, 0.0f).intersectWithCircle(Doublet(0.0f, 0.0f), kNan, t1, t2));
    EXPECT_TRUE(std::isnan(t1));
    EXPECT_TRUE(std::isnan(t2));
}

TEST(LineSegment2D, WritesStartAndEnd) {
    std::ostringstream os;
    os << segment(0.0f, 0.0f, 1.0f, 2.0f) << "|";
    EXPECT_EQ(os.str(), "[(0,0) (1,2)]|");
    std::ostringstream written;
    segment(0.5f, 0.0f, 1.0f, 2.0f).write(written);
    EXPECT_EQ(written.str(), "[(0.5,0) (1,2)]");
}

TEST(LineSegment2D, OperationsFollowTheStatedOrder) {
    Samples<float> samples(103);
    int hits = 0, misses = 0;
    for (int i = 0; i < kSamples; ++i) {
        const LineSegment2D a = sampleSegment(samples, i);
        const LineSegment2D b = sampleSegment(samples, i);
        const Model modelA(a), modelB(b);
        SCOPED_TRACE(::testing::Message() << a << " " << b);

        const double at = samples.plain() / 3.0;
        const Pair point = modelA.at(at);
        ASSERT_TRUE(sameDoublet(a.getPointAt(at), Doublet(point.x, point.y)));
        ASSERT_TRUE(sameBits(a.getT(b.getStart()), modelA.parameter(modelB.from)));

        const Pair normal = unitOf({modelA.to.y, -modelA.to.x});
        Doublet n;
        double c = kKept;
        a.nearOrigin(n, c);
        ASSERT_TRUE(sameDoublet(n, Doublet(normal.x, normal.y)));
        ASSERT_TRUE(sameDoublet(n, a.unitNormal()));
        ASSERT_TRUE(sameBits(c, -dot(modelA.from, normal)));

        double t = kKept, expected = kKept;
        ASSERT_EQ(a.intersect(b, t), modelA.meets(modelB, expected));
        ASSERT_TRUE(sameBits(t, expected));
        t = expected = kKept;
        const bool hit = a.intersectWithLimits(b, t);
        ASSERT_EQ(hit, modelA.meetsWithin(modelB, expected));
        ASSERT_TRUE(sameBits(t, expected));
        ++(hit ? hits : misses);

        double t1 = kKept, t2 = kKept, expected1 = kKept, expected2 = kKept;
        const double radius = std::abs(samples.plain());
        ASSERT_EQ(a.intersectWithCircle(b.getStart(), radius, t1, t2),
                  modelA.meetsCircle(modelB.from, radius, expected1, expected2));
        ASSERT_TRUE(sameBits(t1, expected1));
        ASSERT_TRUE(sameBits(t2, expected2));
    }
    EXPECT_GT(hits, kSamples / 20);
    EXPECT_GT(misses, kSamples / 20);
}
