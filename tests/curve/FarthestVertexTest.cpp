// The bounds on distances from a chord against the stated arithmetic on every vertex.

#include "curve/FarthestVertex.h"
#include "curve/DeviationBounds.h"

#include <cmath>

#include <gtest/gtest.h>

#include <qel/NumericalUtils.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::Chord;
using qel::FarthestVertex;
using qel::takeFarthest;

Chord chordOf(const Points& points, std::size_t i, std::size_t j) {
    Chord chord;
    chord.start = points[i];
    chord.direction = points[i] - points[j];
    chord.length = chord.direction.length();
    chord.tolerance = 1000.0 * qel::NumericalUtils::spacing(chord.length);
    return chord;
}

// Written out from the formula, in the stated order.
FarthestVertex referenceFarthest(const Points& p, std::size_t first, std::size_t last,
                                 const Chord& chord) {
    FarthestVertex farthest;
    for (std::size_t k = first; k < last; ++k) {
        const Point w = p[k] - chord.start;
        const double along = referenceDot(w, chord.direction) / chord.length;
        const double h = std::sqrt(referenceLength(w) * referenceLength(w) - along * along);
        if (h > farthest.distance && h > chord.tolerance) {
            farthest.distance = h;
            farthest.index = k;
        }
    }
    return farthest;
}

void checkChord(const Points& points, std::size_t first, std::size_t last, const Chord& chord) {
    const FarthestVertex expected = referenceFarthest(points, first, last, chord);
    onEveryVectorUnit([&] {
        FarthestVertex actual;
        takeFarthest(points, first, last, chord, actual);
        FarthestVertex byRuns;
        takeFarthest(points, qel::DeviationBounds(points), first, last, chord, byRuns);
        ASSERT_TRUE(sameBits(byRuns.distance, expected.distance))
            << byRuns.distance << " by runs is not " << expected.distance;
        ASSERT_EQ(byRuns.index, expected.index) << "by runs";
        ASSERT_TRUE(sameBits(actual.distance, expected.distance))
            << actual.distance << " is not " << expected.distance;
        ASSERT_EQ(actual.index, expected.index);
    });
}

void checkWhole(const Points& points) {
    const std::size_t last = points.size() - 1;
    checkChord(points, 1, last, chordOf(points, 0, last));
}

TEST(FarthestVertex, OnCurvesOfEveryKindMatchesReferenceBitForBit) {
    RandomCurves random(61);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        ASSERT_NO_FATAL_FAILURE(checkWhole(random.points(400)));
    }
}

TEST(FarthestVertex, OverManyGroupsMatchesReferenceBitForBit) {
    RandomCurves random(62);
    for (const std::size_t n : {4096U, 4098U, 4099U, 8193U, 20000U}) {
        SCOPED_TRACE(n);
        Points walk{Point()};
        Points arch;
        Points flat;
        for (std::size_t i = 0; i < n; ++i) {
            const double u = static_cast<double>(i) / static_cast<double>(n);
            walk.push_back(walk.back() + random.point(1.0));
            arch.emplace_back(u, u * (1.0 - u), 0.1 * u);  // distances that rise, then fall
            flat.emplace_back(0.1 * u, 0.7 * u, -0.3 * u); // nothing but rounding
        }
        checkWhole(walk);
        checkWhole(arch);
        checkWhole(flat);
    }
}

// Distances that differ, if at all, in the last bits: the first of the largest, after rounding.
TEST(FarthestVertex, OfDistancesEqualAfterRoundingTheFirstIsTaken) {
    RandomCurves random(63);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        const double scale = std::pow(10.0, random.uniform(-12.0, 12.0));
        const std::size_t n = random.count(60, 700);
        const double height = scale * random.uniform(0.1, 3.0);
        Points points;
        for (std::size_t i = 0; i < n; ++i) {
            const double x = scale * random.uniform(0.0, 10.0);
            double y = height;
            for (std::size_t step = random.count(0, 6); step > 0; --step) {
                y = std::nextafter(y, round % 2 == 0 ? 1e300 : 0.0);
            }
            points.emplace_back(x, y, 0.0);
        }
        points.front() = Point();
        points.back() = Point(10.0 * scale, 0.0, 0.0);
        ASSERT_NO_FATAL_FAILURE(checkWhole(points));
    }
}

TEST(FarthestVertex, GridTiesGoToTheFirst) {
    RandomCurves random(64);
    for (int round = 0; round < 300; ++round) {
        Points points;
        for (std::size_t i = random.count(60, 5000); i > 0; --i) {
            points.push_back(random.gridPoint());
        }
        points.push_back(Point(7, 7, 7));
        ASSERT_NO_FATAL_FAILURE(checkWhole(points));
    }
}

TEST(FarthestVertex, SpecialValuesAnywhereAreTreatedAsStated) {
    RandomCurves random(65);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        Points points;
        const double scale = std::pow(10.0, random.uniform(-200.0, 200.0));
        for (std::size_t i = random.count(60, 500); i > 0; --i) {
            points.push_back(random.point(scale));
        }
        for (std::size_t i = random.count(0, 5); i > 0; --i) {
            points[random.count(0, points.size() - 1)].getRef(
                static_cast<int>(random.count(0, 2))) = random.specialValue();
        }
        ASSERT_NO_FATAL_FAILURE(checkWhole(points));
    }
}

// Chords of all lengths beside points of all scales, and tolerances that leave nothing or all.
TEST(FarthestVertex, ExtremeChordsAreTreatedAsStated) {
    RandomCurves random(66);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        Points points;
        const double scale = std::pow(10.0, random.uniform(-320.0, 308.0));
        for (std::size_t i = random.count(60, 300); i > 0; --i) {
            points.push_back(random.point(scale));
        }
        Chord chord;
        chord.start = points[0];
        chord.direction = random.point(std::pow(10.0, random.uniform(-320.0, 308.0)));
        chord.length = chord.direction.length();
        const double tolerances[] = {0.0, 1000.0 * qel::NumericalUtils::spacing(chord.length),
                                     scale, std::numeric_limits<double>::quiet_NaN(), 1e-30};
        chord.tolerance = tolerances[random.count(0, 4)];
        ASSERT_NO_FATAL_FAILURE(checkChord(points, 1, points.size(), chord));
    }
}

// Points about as far from the chord as it is long, where squares lose digits to underflow: a bound
// computed from them would pass over vertices.
TEST(FarthestVertex, ChordsWhoseSquaresUnderflowAreTreatedAsStated) {
    RandomCurves random(67);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        const double scale = std::pow(10.0, random.uniform(-162.5, -158.0));
        Points points;
        for (std::size_t i = 0; i < 1000; ++i) {
            points.push_back(random.point(scale));
        }
        Chord chord = chordOf(points, 0, 999);
        chord.tolerance = chord.length * std::pow(10.0, random.uniform(-6.0, -1.0));
        ASSERT_NO_FATAL_FAILURE(checkChord(points, 1, 999, chord));
    }
}

TEST(FarthestVertex, KeepsAVertexFoundBeforeUnlessOneIsFarther) {
    Points points(200, Point(1, 2, 0));
    points.front() = Point();
    points.back() = Point(5, 0, 0);
    const Chord chord = chordOf(points, 0, 199);
    for (const double before : {1.5, 2.0, 2.5}) {
        FarthestVertex farthest{before, 777};
        takeFarthest(points, 1, 199, chord, farthest);
        EXPECT_EQ(farthest.index, before < 2.0 ? 1U : 777U);
    }
}

} // namespace
