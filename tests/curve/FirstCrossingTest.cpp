// First crossings by hierarchies of boxes against trying every pair of segments.

#include "curve/FirstCrossing.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/CurveShapes.h"
#include "support/Curves.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::Doublet;
using qel::LineSegment2D;

Doublet inPlane(const Point& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

struct Crossing {
    bool meet = false;
    std::size_t tried = 0;
    Doublet at{-1.0f, -2.0f};
};

Crossing crossingByPairs(const Points& walked, const Points& others) {
    Crossing crossing;
    for (std::size_t i = 1; i < walked.size(); ++i) {
        const LineSegment2D segment(inPlane(walked[i - 1]), inPlane(walked[i]));
        crossing.tried = i;
        for (std::size_t j = 1; j < others.size(); ++j) {
            const LineSegment2D other(inPlane(others[j - 1]), inPlane(others[j]));
            double t = 0.0;
            if (other.intersectWithLimits(segment, t)) {
                crossing.meet = true;
                crossing.at = other.getPointAt(t);
                return crossing;
            }
        }
    }
    return crossing;
}

// Returns whether they cross.
bool checkCurves(const Points& walked, const Points& others) {
    const Crossing expected = crossingByPairs(walked, others);
    onEveryVectorUnit([&] {
        Crossing actual;
        actual.meet = qel::findFirstCrossing(walked, others, actual.tried, actual.at);
        ASSERT_EQ(actual.meet, expected.meet);
        ASSERT_EQ(actual.tried, expected.tried);
        ASSERT_TRUE(sameBits(actual.at.x, expected.at.x) && sameBits(actual.at.y, expected.at.y));
    });
    Crossing reference;
    reference.meet = qel::findFirstCrossingByPairs(walked, others, reference.tried, reference.at);
    EXPECT_EQ(reference.meet, expected.meet);
    EXPECT_EQ(reference.tried, expected.tried);
    return expected.meet;
}

void checkSegment(const Points& points, const Point& from, const Point& to) {
    const Crossing expected = crossingByPairs({from, to}, points);
    onEveryVectorUnit([&] {
        Crossing actual;
        actual.meet =
            qel::findFirstCrossing(points, LineSegment2D(inPlane(from), inPlane(to)), actual.at);
        ASSERT_EQ(actual.meet, expected.meet);
        ASSERT_TRUE(sameBits(actual.at.x, expected.at.x) && sameBits(actual.at.y, expected.at.y));
    });
}

// A path of small steps in the plane that turns slowly, starting near an offset.
Points path(RandomCurves& random, std::size_t n, double step, const Point& start) {
    Points points{start};
    double heading = random.uniform(0.0, 6.3);
    while (points.size() < n) {
        heading += random.uniform(-0.3, 0.3);
        const double length = random.chance(0.05) ? 0.0 : step * random.uniform(0.2, 1.0);
        points.push_back(points.back() +
                         Point(length * std::cos(heading), length * std::sin(heading), 0.0));
    }
    return points;
}

Points wave(std::size_t n, double shift, double slope) {
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        const double x = 20.0 * static_cast<double>(i) / static_cast<double>(n - 1);
        points.emplace_back(x, std::sin(x) + shift + slope * x, 0.0);
    }
    return points;
}

Points scaled(Points points, double scale) {
    for (Point& p : points) {
        p *= scale;
    }
    return points;
}

TEST(FirstCrossing, OnCurvesOfEveryKindMatchesReferenceBitForBit) {
    RandomCurves random(71);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        const Points walked = random.points(round % 10 == 0 ? 300 : 50);
        const Points others = random.points(round % 10 == 0 ? 300 : 50);
        checkCurves(walked, others);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(FirstCrossing, OnPathsThatMayMeetMatchesReferenceBitForBit) {
    RandomCurves random(72);
    int met = 0;
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(round);
        const double scale = std::pow(10.0, random.uniform(-12.0, 12.0));
        const double offset = random.chance(0.3) ? std::pow(10.0, random.uniform(0.0, 7.0)) : 0.0;
        const Point start(offset, -offset, 0.0);
        const Points walked = path(random, random.count(2, 500), 1.0, start);
        const Points others = path(random, random.count(2, 500), 1.0, start + random.point(20.0));
        met += checkCurves(scaled(walked, scale), scaled(others, scale)) ? 1 : 0;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(met, 300);
    EXPECT_LT(met, 1200);
}

TEST(FirstCrossing, OnCurvesSideBySideMatchesReferenceBitForBit) {
    for (const double shift : {2.5, 0.01, 1e-4, 0.0}) {
        for (const double slope : {0.0, -shift / 19.9, -shift / 30.0}) {
            SCOPED_TRACE(shift);
            checkCurves(wave(1500, 0.0, 0.0), wave(1700, shift, slope));
        }
    }
}

// Steps of a grid: shared vertices, overlapping and parallel segments, repeats.
TEST(FirstCrossing, OnGridsMatchesReferenceBitForBit) {
    RandomCurves random(73);
    int met = 0;
    for (int round = 0; round < 800; ++round) {
        SCOPED_TRACE(round);
        const auto steps = [&](double x, double y) {
            Points points{Point(x, y, 0)};
            for (std::size_t i = random.count(20, 120); i > 0; --i) {
                const double way = random.chance(0.5) ? 1.0 : -1.0;
                points.push_back(points.back() + (random.chance(0.2)   ? Point()
                                                  : random.chance(0.5) ? Point(way, 0, 0)
                                                                       : Point(0, way, 0)));
            }
            return points;
        };
        met += checkCurves(steps(0, 0), steps(9, random.chance(0.5) ? 5.0 : 5.5)) ? 1 : 0;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(met, 50);
}

// Values for which no box holds: they must be met, or missed, as by the plain loop.
TEST(FirstCrossing, WithSpecialValuesAmongThePointsMatchesReferenceBitForBit) {
    RandomCurves random(74);
    const float tiny[] = {1e-45f, 1e-30f, 3e-19f, 1e-18f};
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(round);
        Points walked = path(random, random.count(20, 300), 1.0, Point());
        Points others = path(random, random.count(20, 300), 1.0, random.point(30.0));
        for (Points* points : {&walked, &others}) {
            for (std::size_t k = random.count(0, 3); k > 0; --k) {
                const std::size_t i = random.count(1, points->size() - 1);
                double& value = (*points)[i].getRef(static_cast<int>(random.count(0, 1)));
                switch (random.count(0, 3)) {
                case 0:
                    value = random.specialValue();
                    break;
                case 1:
                    value = std::pow(10.0, random.uniform(15.0, 39.0));
                    break;
                default: // a segment of hardly any length
                    (*points)[i] = (*points)[i - 1] = Point();
                    (*points)[i].x = static_cast<double>(tiny[random.count(0, 3)]);
                }
            }
        }
        checkCurves(walked, others);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(FirstCrossing, WhereTheMarkerIsFrequentMatchesReferenceBitForBit) {
    RandomCurves random(75);
    for (int round = 0; round < 200; ++round) {
        Points walked = path(random, 200, 1.0, Point());
        Points others = path(random, 200, 1.0, Point(15.0, 0.0, 0.0));
        for (std::size_t i = random.count(0, 40); i < 200; i += random.count(1, 40)) {
            const double marker = static_cast<double>(std::numeric_limits<float>::max());
            (random.chance(0.5) ? walked : others)[i] = Point(marker, marker, marker);
        }
        checkCurves(walked, others);
        ASSERT_FALSE(HasFailure());
    }
}

// The length of such a segment underflows to zero: every parameter on it is a NaN, which counts as
// a hit, so that it is met by whatever crosses its line, at any distance.
TEST(FirstCrossing, SegmentOfHardlyAnyLengthIsMetFromAfar) {
    Points walked{{0, 0, 0}, {1.4e-45, 0, 0}};
    Points others{{0.25, -0.5, 0}, {0.25, 0.5, 0}};
    for (int i = 1; i < 60; ++i) {
        walked.emplace_back(-i, 0, 0);
        others.emplace_back(0.25, 0.5 + i, 0);
    }
    ASSERT_TRUE(crossingByPairs(walked, others).meet);
    checkCurves(walked, others);
    checkSegment(others, walked[0], walked[1]);
    // Wherever the run stands in the curves.
    walked.insert(walked.begin(), 300, Point(0, -9, 0));
    others.insert(others.begin(), 300, Point(0.25, -0.5, 0));
    EXPECT_EQ(crossingByPairs(walked, others).tried, 301U);
    checkCurves(walked, others);
}

TEST(FirstCrossing, OfASegmentMatchesReferenceBitForBit) {
    RandomCurves random(76);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        const Points points =
            round % 3 == 0 ? random.points(600) : path(random, random.count(2, 900), 1.0, Point());
        const Point from = points[random.count(0, points.size() - 1)] + random.point(3.0);
        const Point to = from + random.point(random.chance(0.1) ? 0.0 : 5.0);
        ASSERT_NO_FATAL_FAILURE(checkSegment(points, from, to));
    }
}

// A segment whose fields were set apart: its direction is lost in its end.
TEST(FirstCrossing, SegmentMayBeShorterThanItsPlaceResolves) {
    const Points points{{100, -1, 0}, {100, 1, 0}};
    LineSegment2D segment;
    segment.start = Doublet(100.0f, 0.0f);
    segment.toVector = Doublet(1e-7f, 0.0f);
    double t = 0.0;
    ASSERT_TRUE(
        LineSegment2D(inPlane(points[0]), inPlane(points[1])).intersectWithLimits(segment, t));
    Doublet at;
    EXPECT_TRUE(qel::findFirstCrossing(points, segment, at));
}

TEST(FirstCrossing, CurvesWithoutSegmentsMeetNothing) {
    const Points line{{0, 0, 0}, {1, 1, 0}};
    for (const Points& none : {Points{}, Points{{0, 0, 0}}}) {
        Crossing crossing;
        EXPECT_FALSE(qel::findFirstCrossing(none, line, crossing.tried, crossing.at));
        EXPECT_EQ(crossing.tried, 0U);
        EXPECT_FALSE(qel::findFirstCrossing(line, none, crossing.tried, crossing.at));
        EXPECT_EQ(crossing.tried, 1U);
        EXPECT_FALSE(qel::findFirstCrossing(none, LineSegment2D({0, 0}, {1, 0}), crossing.at));
    }
}

// Interleaved strokes, teeth in gaps, curves beside themselves.
TEST(FirstCrossing, OnEveryShapeMatchesReferenceBitForBit) {
    for (const CurveShape& shape : curveShapes()) {
        for (const std::size_t n : std::vector<std::size_t>{2, 9, 40, 300, 700}) {
            SCOPED_TRACE(std::string(shape.name) + ", " + std::to_string(n) + " points");
            const Points points = shape.make(n);
            checkCurves(points, shape.makeBeside(n));
            checkCurves(points, shape.makeBeside(n / 3 + 2));
            checkCurves(points, points);
            checkSegment(points, points.back() + Point(-1, -1, 0), points.back());
        }
    }
}

} // namespace
