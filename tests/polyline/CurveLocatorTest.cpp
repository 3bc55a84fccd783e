// The nearest place on a polyline, compared with one edge after the other.

#include <qel/CurveLocator.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qel/ParametricCurve.h>

#include "PlainLocator.h"
#include "support/CurveShapes.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::CurveLocation;
using qel::CurveLocations;
using qel::CurveLocator;
using qel::ParametricCurve;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void checkLocator(const Points& curve, const Points& probes) {
    const CurveLocator locator(curve);
    const std::vector<double> svalues = svaluesOf(curve);
    for (const Point& q : probes) {
        ASSERT_PRED2(samePlace, locator.locate(q), plainLocate(curve, svalues, q))
            << "probe " << q << " of " << curve.size() << " points";
    }
}

// Near the curve, on it, and anywhere around it.
Points manyProbesOf(const CurveShape& shape, const Points& curve, std::size_t m) {
    Points probes = probesOf(shape, curve, m);
    ShapeRandom random(11);
    for (std::size_t k = 0; k < m; ++k) {
        const std::size_t i = random.index(curve.size() - 1);
        probes.push_back(curve[i]);
        probes.push_back(curve[i] + (curve[i + 1] - curve[i]) * random.unit());
        probes.emplace_back(curve[i].x, curve[random.index(curve.size())].y,
                            curve[random.index(curve.size())].z);
        probes.push_back(probes.back() * 10.0);
    }
    return probes;
}

bool isComparable(const CurveShape& shape) {
    const std::string name = shape.name;
    return name != "nan_among" && name != "denormal"; // refused; squares underflow
}

// -- The nearest place ----

TEST(CurveLocator, FindsWhatAScanFindsMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            for (const std::size_t n :
                 std::vector<std::size_t>{2, 3, 5, 6, 9, 17, 18, 26, 65, 66, 129, 513, 600, 4200}) {
                if (isComparable(shape)) {
                    SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(n));
                    const Points curve = shape.make(n);
                    checkLocator(curve, manyProbesOf(shape, curve, n < 1000 ? 40 : 8));
                }
            }
        }
    });
}

// Many edges are exactly as near, on a lattice even from most probes.
TEST(CurveLocator, GivesTiesToTheLowestEdgeMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        std::mt19937 random(5);
        std::uniform_int_distribution<int> coordinate(-2, 2);
        for (int round = 0; round < 200; ++round) {
            Points curve(static_cast<std::size_t>(2 + round));
            for (Point& p : curve) {
                p = Point(coordinate(random), coordinate(random), coordinate(random) / 2);
            }
            Points probes(20);
            for (Point& q : probes) {
                q = Point(coordinate(random), 0.5 * coordinate(random), coordinate(random));
            }
            checkLocator(curve, probes);
        }
    });
}

TEST(CurveLocator, GivesTheFootOnAnEdgeItsEndsAndBeyondThem) {
    const CurveLocator locator(Points{{0, 0, 0}, {10, 0, 0}});
    EXPECT_PRED2(samePlace, locator.locate({4, 3, 0}), (CurveLocation{{4, 0, 0}, 0.4, 0, 3}));
    EXPECT_PRED2(samePlace, locator.locate({-3, 4, 0}), (CurveLocation{{0, 0, 0}, 0, 0, 5}));
    EXPECT_PRED2(samePlace, locator.locate({13, 0, -4}), (CurveLocation{{10, 0, 0}, 1, 0, 5}));
}

TEST(CurveLocator, FindsANearEdgeWhoseVerticesAreFar) {
    const CurveLocator locator(Points{{0, 0, 0}, {1, 5, 0}, {-50, 1, 0}, {50, 1, 0}});
    EXPECT_EQ(locator.locate({-20, 0, 0}).edge, 2) << locator.locate({-20, 0, 0});
}

TEST(CurveLocator, OnEdgesOfNoLengthTheFootIsTheirPoint) {
    const Point p(1, 2, 3);
    const CurveLocator locator(Points{p, p, p, p});
    EXPECT_PRED2(samePlace, locator.locate({1, 2, 5}), (CurveLocation{p, 0, 0, 2}));
    EXPECT_EQ(locator.size(), 3U);
}

// Repeats are passed over; what is behind them keeps its number.
TEST(CurveLocator, NumbersEdgesThroughRepeatsMatchesReferenceBitForBit) {
    std::mt19937 random(6);
    std::uniform_int_distribution<int> repeats(1, 6);
    std::uniform_real_distribution<double> coordinate(-1, 1);
    for (int round = 0; round < 60; ++round) {
        Points curve;
        while (curve.size() < 3 + 4 * static_cast<std::size_t>(round)) {
            const Point p(coordinate(random), coordinate(random), coordinate(random));
            curve.insert(curve.end(), static_cast<std::size_t>(repeats(random)), p);
        }
        Points probes(curve.begin(), curve.begin() + 3);
        probes.push_back(curve.back());
        for (int k = 0; k < 30; ++k) {
            probes.emplace_back(coordinate(random), coordinate(random), coordinate(random));
        }
        checkLocator(curve, probes);
    }
}

TEST(CurveLocator, InterpolatesSuppliedSvalues) {
    const Points points{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    const std::vector<double> svalues{-3.0, 5.0, 5.0};
    const CurveLocator locator(qel::CurveView(points, svalues));
    EXPECT_EQ(locator.locate({0.25, -1, 0}).s, -1.0);
    EXPECT_EQ(locator.locate({2, 0.5, 0}).s, 5.0);
    EXPECT_EQ(locator.locate({-1, 0, 0}).s, -3.0);
}

TEST(CurveLocator, InterpolatesSvaluesWhoseDifferenceOverflows) {
    const std::vector<double> svalues{-1.5e308, 1.5e308};
    const Points points{{0, 0, 0}, {4, 0, 0}};
    const CurveLocator locator(qel::CurveView(points, svalues));
    EXPECT_EQ(locator.locate({1, 1, 0}).s, -0.75e308);
    EXPECT_EQ(locator.locate({0, 1, 0}).s, -1.5e308);
    EXPECT_EQ(locator.locate({4, 1, 0}).s, 1.5e308);
}

TEST(CurveLocator, TakesTheSvaluesOfACurve) {
    const Points points{{0, 0, 0}, {1, 0, 0}, {1, 3, 0}};
    ParametricCurve curve;
    curve.setPoints(points, ParametricCurve::normalizeY, ParametricCurve::dim2D);
    const CurveLocator locator(curve);
    EXPECT_EQ(locator.locate({2, 1.5, 0}).s, 0.5);
}

// -- Sizes of numbers ----

// Curves and probes times a power of two have the same places, times it.
TEST(CurveLocator, FindsTheSameOnTinyAndOnHugeCurves) {
    const CurveShape& shape = curveShape("rough_wave");
    const Points curve = shape.make(300);
    const Points probes = manyProbesOf(shape, curve, 20);
    const CurveLocator locator(curve);
    for (const int exponent : {-1000, -700, -310, 310, 600, 1010}) {
        SCOPED_TRACE(exponent);
        const double factor = std::ldexp(1.0, exponent);
        Points scaled = curve;
        std::for_each(scaled.begin(), scaled.end(), [&](Point& p) { p *= factor; });
        const CurveLocator scaledLocator(scaled);
        for (const Point& q : probes) {
            CurveLocation expected = locator.locate(q);
            const CurveLocation actual = scaledLocator.locate(q * factor);
            expected.foot = expected.foot * factor;
            expected.distance *= factor;
            expected.s = actual.s; // the arc length's own affair
            ASSERT_PRED2(samePlace, actual, expected);
        }
    }
}

// Subnormal coordinates have few bits, but those are right.
TEST(CurveLocator, FindsTheNearestOfASubnormalCurve) {
    const Points curve = curveShape("denormal").make(200);
    Points large = curve;
    std::for_each(large.begin(), large.end(), [](Point& p) { p = p * 0x1p1000; });
    const CurveLocator locator(curve);
    const std::vector<double> svalues = svaluesOf(curve);
    for (const Point& q : manyProbesOf(curveShape("denormal"), curve, 20)) {
        const CurveLocation expected = plainLocate(large, svalues, q * 0x1p1000);
        const CurveLocation actual = locator.locate(q);
        ASSERT_EQ(actual.edge, expected.edge);
        ASSERT_TRUE(sameBits(actual.foot, expected.foot * 0x1p-1000));
        ASSERT_TRUE(sameBits(actual.distance, expected.distance * 0x1p-1000));
    }
}

TEST(CurveLocator, AnswersProbesWhoseSquaredDistanceOverflows) {
    const CurveLocator locator(curveShape("smooth_section").make(100));
    const CurveLocation right = locator.locate({3e300, 4e300, 0});
    EXPECT_EQ(right.edge, 0);
    EXPECT_DOUBLE_EQ(right.distance, 5e300);
    EXPECT_TRUE(std::isfinite(right.s) && std::isfinite(right.foot.x));
    EXPECT_DOUBLE_EQ(locator.locate({0, 0, -1.7e308}).distance, 1.7e308);
    const CurveLocator tiny(curveShape("denormal").make(100));
    EXPECT_DOUBLE_EQ(tiny.locate({3, 0, 4}).distance, 5.0);
}

TEST(CurveLocator, MeasuresAcrossHugeCurves) {
    const CurveLocator locator(Points{{-1e308, 0, 0}, {1e308, 0, 0}});
    EXPECT_EQ(locator.locate({0, 1e308, 0}).distance, 1e308);
    EXPECT_EQ(locator.locate({5e307, 0, 1}).s, 0.75);
    EXPECT_EQ(locator.locate({1.5e308, 0, 0}).foot.x, 1e308);
}

// -- Values that are no numbers ----

bool isNowhere(const CurveLocation& place) {
    return place.edge == -1 && std::isnan(place.s) && std::isnan(place.distance) &&
           std::isnan(place.foot.x) && std::isnan(place.foot.y) && std::isnan(place.foot.z);
}

TEST(CurveLocator, HasNoPlaceForAProbeThatIsNotFinite) {
    for (const std::size_t n : std::vector<std::size_t>{2, 10, 300}) {
        const CurveLocator locator(curveShape("circle").make(n));
        for (const double bad : {kNaN, kInf, -kInf}) {
            EXPECT_PRED1(isNowhere, locator.locate({bad, 0, 0}));
            EXPECT_PRED1(isNowhere, locator.locate({0, bad, 0}));
            EXPECT_PRED1(isNowhere, locator.locate({0, 0, bad}));
        }
    }
}

TEST(CurveLocator, RefusesAVertexThatBecameInfinite) {
    Points points = curveShape("helix").make(10);
    const qel::CurveView view(points);
    points[7].z = kInf;
    EXPECT_THAT([&] { CurveLocator{view}; },
                throwsInvalid("CurveLocator", "constructor", "Point 7 is not finite."));
}

// -- Many probes ----

struct Outputs {
    explicit Outputs(std::size_t n) : foot(n), s(n), edge(n), distance(n) {}
    CurveLocations views() { return {foot, s, edge, distance}; }
    CurveLocation operator[](std::size_t i) const { return {foot[i], s[i], edge[i], distance[i]}; }

    Points foot;
    std::vector<double> s;
    std::vector<std::int64_t> edge;
    std::vector<double> distance;
};

// Sizes around those of lanes, curves around those of few edges, some probes without a place.
TEST(CurveLocator, AnswersManyProbesAsEachAlone) {
    onEveryVectorUnit([] {
        for (const std::size_t n : std::vector<std::size_t>{2, 4, 6, 25, 26, 300}) {
            const CurveShape& shape = curveShape("rough_wave");
            const Points curve = shape.make(n);
            const CurveLocator locator(curve);
            for (std::size_t count = 0; count < 40; ++count) {
                Points probes = probesOf(shape, curve, count);
                for (std::size_t k = 5; k < count; k += 17) {
                    probes[k].y = k % 2 == 0 ? kNaN : 1e200;
                }
                Outputs out(count);
                EXPECT_EQ(locator.locate(probes, out.views()), count);
                for (std::size_t k = 0; k < count; ++k) {
                    ASSERT_PRED2(samePlace, out[k], locator.locate(probes[k]));
                }
            }
        }
    });
}

TEST(CurveLocator, WritesWhatIsWantedAlone) {
    const CurveLocator locator(curveShape("helix").make(50));
    const Points probes = curveShape("circle").make(20);
    Outputs all(20);
    locator.locate(probes, all.views());
    Outputs some(20);
    CurveLocations out;
    out.s = some.s;
    locator.locate(probes, out);
    EXPECT_TRUE(sameBitsInAll(some.s, all.s));
    EXPECT_EQ(some.edge, std::vector<std::int64_t>(20));
    out = {};
    out.edge = some.edge;
    out.distance = some.distance;
    locator.locate(probes, out);
    EXPECT_EQ(some.edge, all.edge);
    EXPECT_TRUE(sameBitsInAll(some.distance, all.distance));
    EXPECT_EQ(locator.locate(probes, CurveLocations()), 20U);
}

TEST(CurveLocator, WidensFloats) {
    std::vector<qel::TripletBase<float>> points, probes;
    for (const Point& p : curveShape("helix").make(70)) {
        points.emplace_back(p);
        probes.emplace_back(p * 1.1);
    }
    const CurveLocator locator(points);
    const CurveLocator wide(Points(points.begin(), points.end()));
    Outputs out(70);
    locator.locate(probes, out.views());
    for (std::size_t k = 0; k < 70; ++k) {
        EXPECT_PRED2(samePlace, out[k], wide.locate(Point(probes[k])));
    }
}

// Probes and outputs behind each other in records of odd length, and backwards.
TEST(CurveLocator, ReadsAndWritesAnyLayout) {
    constexpr std::size_t kCount = 33, kRecord = 67;
    const CurveLocator locator(curveShape("helix").make(50));
    const Points probes = curveShape("rough_wave").make(kCount);
    std::vector<char> memory(1 + kCount * kRecord, 0);
    char* const last = memory.data() + 1 + (kCount - 1) * kRecord;
    const std::ptrdiff_t back = -static_cast<std::ptrdiff_t>(kRecord);
    for (std::size_t k = 0; k < kCount; ++k) {
        std::memcpy(last - k * kRecord, &probes[k], sizeof(Point));
    }
    const auto doubles = [&](std::size_t offset) {
        return reinterpret_cast<double*>(last + offset);
    };
    const qel::TripletView<const double> probeView(doubles(0), kCount, back);
    CurveLocations out;
    out.foot = {doubles(24), kCount, back};
    out.s = {doubles(48), kCount, back};
    out.distance = {doubles(56), kCount, back};
    EXPECT_EQ(locator.locate(probeView, out), kCount);
    for (std::size_t k = 0; k < kCount; ++k) {
        const CurveLocation expected = locator.locate(probes[k]);
        EXPECT_TRUE(sameBits(out.foot[k], expected.foot));
        EXPECT_TRUE(sameBits(out.s[k], expected.s));
        EXPECT_TRUE(sameBits(out.distance[k], expected.distance));
    }
}

// A curve that lies in such memory.
TEST(CurveLocator, ReadsACurveOfAnyLayout) {
    constexpr std::size_t kCount = 40, kRecord = 29;
    const Points points = curveShape("helix").make(kCount);
    std::vector<char> memory(3 + kCount * kRecord, 0);
    for (std::size_t k = 0; k < kCount; ++k) {
        std::memcpy(memory.data() + 3 + k * kRecord, &points[k], sizeof(Point));
    }
    const auto* const last =
        reinterpret_cast<const double*>(memory.data() + 3 + (kCount - 1) * kRecord);
    const qel::TripletView<const double> backwards(last, kCount,
                                                   -static_cast<std::ptrdiff_t>(kRecord));
    const Points turned(points.rbegin(), points.rend());
    const CurveLocator locator{qel::CurveView(backwards)}, expected(turned);
    for (const Point& q : curveShape("rough_wave").make(50)) {
        EXPECT_PRED2(samePlace, locator.locate(q), expected.locate(q));
    }
}

// -- Refusals ----

TEST(CurveLocator, RefusesOutputsOfAnotherSizeBeforeWriting) {
    const CurveLocator locator(curveShape("circle").make(10));
    const Points probes(5);
    Outputs out(5);
    std::vector<double> four(4, 7.0);
    CurveLocations views = out.views();
    views.distance = four;
    EXPECT_THAT([&] { locator.locate(probes, views); },
                throwsInvalid("CurveLocator", "locate",
                              "The output distance has 4 elements where 5 are needed."));
    EXPECT_EQ(four, std::vector<double>(4, 7.0));
    EXPECT_EQ(out.edge, std::vector<std::int64_t>(5));
}

TEST(CurveLocator, RefusesOutputsThatShareMemory) {
    const CurveLocator locator(curveShape("circle").make(10));
    Points probes(5);
    Outputs out(5);
    CurveLocations views = out.views();
    views.foot = probes;
    EXPECT_THAT(
        [&] { locator.locate(probes, views); },
        throwsInvalid("CurveLocator", "locate", "The output foot shares memory with an input."));
    views = out.views();
    views.distance = out.s;
    EXPECT_THAT([&] { locator.locate(probes, views); },
                throwsInvalid("CurveLocator", "locate",
                              "The output distance shares memory with the output s."));
    views = out.views();
    views.edge = {out.edge.data(), 5, 0};
    EXPECT_THAT(
        [&] { locator.locate(probes, views); },
        throwsInvalid("CurveLocator", "locate", "The elements of the output edge share memory."));
}

// -- Progress ----

TEST(CurveLocator, ReportsProgressUpToOne) {
    const CurveLocator locator(curveShape("circle").make(10));
    for (const std::size_t count : std::vector<std::size_t>{0, 1, 4096, 20000}) {
        const Points probes(count);
        Outputs out(count);
        std::vector<double> fractions;
        locator.locate(probes, out.views(), [&](double fraction) {
            fractions.push_back(fraction);
            return true;
        });
        ASSERT_FALSE(fractions.empty());
        EXPECT_EQ(fractions.back(), 1.0);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GT(fractions.size(), count / 8192);
    }
}

TEST(CurveLocator, LeavesTheRestWhenItIsStopped) {
    const CurveLocator locator(curveShape("circle").make(10));
    const Points probes(20000, Point(2, 0, 0));
    Outputs out(20000);
    const std::size_t answered =
        locator.locate(probes, out.views(), [](double fraction) { return fraction < 0.5; });
    EXPECT_GE(answered, 10000U);
    EXPECT_LT(answered, 20000U);
    EXPECT_EQ(std::count(out.distance.begin(), out.distance.end(), 1.0),
              static_cast<std::ptrdiff_t>(answered));
    EXPECT_EQ(out.distance[answered - 1], 1.0);
}

TEST(CurveLocator, AnErrorInProgressReachesTheCaller) {
    const CurveLocator locator(curveShape("circle").make(10));
    const Points probes(20000);
    Outputs out(20000);
    const auto throwing = [](double) -> bool { throw 7; };
    EXPECT_THROW(locator.locate(probes, out.views(), throwing), int);
}

// -- Within a distance ----

void checkWithin(const CurveLocator& locator, const Points& curve,
                 const std::vector<double>& svalues, const Point& q, double distance) {
    std::vector<CurveLocation> places{CurveLocation()};
    locator.locateWithin(q, distance, places);
    std::size_t found = 0;
    for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
        const CurveLocation place = placeOnEdge(curve, svalues, i, q);
        if (place.distance <= distance) {
            ASSERT_LT(found, places.size());
            ASSERT_PRED2(samePlace, places[found], place);
            ++found;
        }
    }
    ASSERT_EQ(found, places.size());
}

TEST(CurveLocator, ListsAllEdgesWithinADistance) {
    for (const CurveShape& shape : curveShapes()) {
        for (const std::size_t n : std::vector<std::size_t>{2, 10, 100, 700}) {
            if (!isComparable(shape)) {
                continue;
            }
            SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(n));
            const Points curve = shape.make(n);
            const std::vector<double> svalues = svaluesOf(curve);
            const CurveLocator locator(curve);
            for (const Point& q : manyProbesOf(shape, curve, 3)) {
                const double nearest = locator.locate(q).distance;
                for (const double distance : {0.0, nearest, 1.5 * nearest, 0.05, 10.0, 1e300, kInf,
                                              std::nextafter(nearest, 0.0)}) {
                    checkWithin(locator, curve, svalues, q, distance);
                }
            }
        }
    }
}

TEST(CurveLocator, ListsEachEdgeOfNoLength) {
    const Point a(0, 0, 0), b(1, 0, 0), c(5, 5, 5);
    const Points curve{a, b, b, b, b, c, c, c};
    const CurveLocator locator(curve);
    const std::vector<double> svalues = svaluesOf(curve);
    for (const Point& q : {b, c, a, Point(1, 1, 0), Point(6, 5, 5)}) {
        for (const double distance : {0.0, 1.0, 3.0, 100.0}) {
            checkWithin(locator, curve, svalues, q, distance);
        }
    }
}

TEST(CurveLocator, ListsNothingForWhatIsNoDistanceOrNoProbe) {
    const CurveLocator locator(curveShape("circle").make(30));
    for (const double distance : {-1.0, -0x1p-1074, kNaN, -kInf}) {
        std::vector<CurveLocation> places(3);
        locator.locateWithin({0, 0, 0}, distance, places);
        EXPECT_TRUE(places.empty());
    }
    std::vector<CurveLocation> places(3);
    locator.locateWithin({kNaN, 0, 0}, kInf, places);
    EXPECT_TRUE(places.empty());
    places.resize(3);
    locator.locateWithin({0, -kInf, 0}, kInf, places);
    EXPECT_TRUE(places.empty());
}

TEST(CurveLocator, ListsByDistanceFromFarAwayAndOnSubnormalCurves) {
    const CurveLocator locator(curveShape("circle").make(30));
    std::vector<CurveLocation> places;
    locator.locateWithin({1e300, 0, 0}, 1e299, places);
    EXPECT_TRUE(places.empty());
    locator.locateWithin({1e300, 0, 0}, 1.1e300, places);
    EXPECT_EQ(places.size(), 29U);
    const CurveLocator tiny(Points{{0, 0, 0}, {0, 0x1p-1070, 0}, {0x1p-1070, 0x1p-1070, 0}});
    tiny.locateWithin({0x1p-1073, 0, 0}, 0x1p-1073, places);
    ASSERT_EQ(places.size(), 1U);
    EXPECT_EQ(places[0].distance, 0x1p-1073);
    tiny.locateWithin({0x1p-1073, 0, 0}, 0x1p-1074, places);
    EXPECT_TRUE(places.empty());
}

// -- The object ----

TEST(CurveLocator, MovesItsIndex) {
    CurveLocator first(Points{{0, 0, 0}, {1, 0, 0}});
    CurveLocator second(std::move(first));
    EXPECT_EQ(second.locate({1, 2, 0}).distance, 2.0);
    first = CurveLocator(Points{{0, 0, 0}, {9, 0, 0}, {9, 9, 0}});
    EXPECT_EQ(first.size(), 2U);
    second = std::move(first);
    EXPECT_EQ(second.locate({9, 0, 3}).distance, 3.0);
}

TEST(CurveLocator, DoesNotNeedTheCurveAfterwards) {
    auto points = std::make_unique<Points>(Points{{0, 0, 0}, {1, 0, 0}});
    const CurveLocator locator(*points);
    points->assign(2, Point(7, 7, 7));
    points.reset();
    EXPECT_EQ(locator.locate({0.5, 1, 0}).distance, 1.0);
}

} // namespace
