// Pieces between parameters and between indices.

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;

const Point A(0, 0, 0);
const Point B(1, 0, 0);
const Point C(1, 1, 0);
const Point D(1, 1, 1);

ParametricCurve withSvalues(const Points& points, const Values& s) {
    return ParametricCurve(points, s, ParametricCurve::dim3D);
}

// A, B, C, D at 0, 0.25, 0.5, 1: all of them floats, so that rounding s changes nothing.
ParametricCurve fourPoints() {
    return withSvalues({A, B, C, D}, {0.0, 0.25, 0.5, 1.0});
}

struct Piece {
    Points points;
    Values s;
};

Piece cut(const ParametricCurve& curve, double from, double to) {
    Piece piece{{A, A, A, A}, {7.0}}; // what was there must go
    curve.getCurve(from, to, piece.points, piece.s);
    return piece;
}

void expectPiece(const Piece& piece, const Points& points, const Values& s) {
    EXPECT_TRUE(sameBitsInAll(piece.points, points));
    EXPECT_TRUE(sameBitsInAll(piece.s, s));
}

const char kIdentical[] = "Start and end parametric value are identical.";
const char kGreater[] = "Parametric start value greater than end value.";

auto refusesRange(const char* message) {
    return throwsInternal("ParametricCurve", "getCurve", message);
}

// -- Between parameters, case by case ----

TEST(Extraction, RangesOutsideTheCurveAreIdentical) {
    const ParametricCurve curve = fourPoints();
    EXPECT_THAT([&] { cut(curve, -2.0, -1.0); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { cut(curve, 2.0, 3.0); }, refusesRange(kIdentical));
    // Also in falling order: both are clamped first.
    EXPECT_THAT([&] { cut(curve, -1.0, -2.0); }, refusesRange(kIdentical));
}

TEST(Extraction, ARangeAroundTheCurveGivesAllOfItOnce) {
    const ParametricCurve curve = fourPoints();
    expectPiece(cut(curve, -1.0, 2.0), curve.getCurve(), curve.getSvalues());
}

TEST(Extraction, ARangeWithinAnIntervalGivesTwoPoints) {
    const Piece piece = cut(fourPoints(), 0.625, 0.75);
    expectPiece(piece, {Point(1, 1, 0.25), Point(1, 1, 0.5)}, {0.625, 0.75});
}

TEST(Extraction, ACutOnAStoredPointDoesNotRepeatIt) {
    const ParametricCurve curve = fourPoints();
    expectPiece(cut(curve, 0.25, 0.75), {B, C, Point(1, 1, 0.5)}, {0.25, 0.5, 0.75});
    expectPiece(cut(curve, 0.125, 0.5), {Point(0.5, 0, 0), B, C}, {0.125, 0.25, 0.5});
    expectPiece(cut(curve, 0.25, 0.5), {B, C}, {0.25, 0.5});
}

TEST(Extraction, RefusesAFallingRange) {
    EXPECT_THAT([] { cut(fourPoints(), 0.5, 0.25); }, refusesRange(kGreater));
}

TEST(Extraction, RefusesEqualParameters) {
    EXPECT_THAT([] { cut(fourPoints(), 0.5, 0.5); }, refusesRange(kIdentical));
}

// The cut is evaluated at s rounded to float but keeps s as it was asked for.
TEST(Extraction, EvaluatesAtSRoundedToFloatAndReturnsSUnrounded) {
    const ParametricCurve curve = withSvalues({A, B, D}, {0.0, 0.3, 1.0});
    const Piece piece = cut(curve, 0.1, 0.3);
    std::size_t lo = 0;
    std::size_t hi = 0;
    const Point last = referenceInterpolated(curve.getCurve(), curve.getSvalues(), 0.3, lo, hi);
    EXPECT_EQ(lo, 1u); // 0.3f lies above 0.3, so the stored point is passed already
    EXPECT_NE(last, B);
    EXPECT_TRUE(sameBits(piece.points.back(), last));
    EXPECT_EQ(piece.s, Values({0.1, 0.3, 0.3}));
}

// s is copied: a recomputed one would run from 0 to 1.
TEST(Extraction, CopiesSvalues) {
    EXPECT_EQ(cut(fourPoints(), 0.125, 0.75).s, Values({0.125, 0.25, 0.5, 0.75}));
}

TEST(Extraction, DropsATrailingDuplicateOfThreePoints) {
    const ParametricCurve curve = withSvalues({A, B, B, C}, {0.0, 0.25, 0.5, 1.0});
    expectPiece(cut(curve, 0.0, 0.5), {A, B, B}, {0.0, 0.25, 0.5}); // one of three is dropped
}

// Two equal points are a piece all the same.
TEST(Extraction, KeepsTwoEqualPoints) {
    const ParametricCurve curve = withSvalues({A, B, B, C}, {0.0, 0.25, 0.5, 1.0});
    expectPiece(cut(curve, 0.3125, 0.375), {B, B}, {0.3125, 0.375});
}

// The s-value removed with the duplicate is the last one, also where the one before differs.
TEST(Extraction, TheSvalueOfTheDroppedPointGoesWithIt) {
    const ParametricCurve curve = withSvalues({A, B, B, C}, {0.0, 0.25, 0.5, 1.0});
    expectPiece(cut(curve, 0.125, 0.375), {Point(0.5, 0, 0), B}, {0.125, 0.25});
}

// A NaN is clamped to the first s-value, wherever it stands.
TEST(Extraction, NaNParametersFallOnTheStart) {
    const ParametricCurve curve = fourPoints();
    expectPiece(cut(curve, kNaN, 0.25), {A, B}, {0.0, 0.25});
    EXPECT_THAT([&] { cut(curve, 0.5, kNaN); }, refusesRange(kGreater));
    EXPECT_THAT([&] { cut(curve, kNaN, kNaN); }, refusesRange(kIdentical));
    Points points;
    EXPECT_THAT([&] { curve.getCurveBegin(kNaN, points); }, refusesRange(kIdentical));
    curve.getCurveEnd(kNaN, points);
    EXPECT_EQ(points, curve.getCurve());
}

TEST(Extraction, InfiniteParametersAreClamped) {
    const ParametricCurve curve = fourPoints();
    expectPiece(cut(curve, -kInfinity, kInfinity), curve.getCurve(), curve.getSvalues());
}

TEST(Extraction, NaNAmongSuppliedSvaluesReadsNothingOutside) {
    const Values kinds[] = {{kNaN, 0.25, 0.5, 1.0},
                            {0.0, kNaN, 0.5, 1.0},
                            {0.0, 0.25, 0.5, kNaN},
                            {kNaN, kNaN, kNaN, kNaN}};
    for (const Values& s : kinds) {
        const ParametricCurve curve = withSvalues({A, B, C, D}, s);
        for (const double from : {-1.0, 0.0, 0.3, 0.9}) {
            Points points;
            try {
                curve.getCurve(from, from + 0.4, points);
                EXPECT_LE(points.size(), 6u);
            } catch (const qel::internal::error& error) {
                EXPECT_EQ(error.getMethodName(), "getCurve");
            }
        }
    }
}

// -- From the start and to the end ----

TEST(Extraction, BeginRunsFromTheFirstPoint) {
    Piece piece;
    fourPoints().getCurveBegin(0.75, piece.points, piece.s);
    expectPiece(piece, {A, B, C, Point(1, 1, 0.5)}, {0.0, 0.25, 0.5, 0.75});
    fourPoints().getCurveBegin(0.125, piece.points, piece.s);
    expectPiece(piece, {A, Point(0.5, 0, 0)}, {0.0, 0.125});
    fourPoints().getCurveBegin(0.5, piece.points, piece.s);
    expectPiece(piece, {A, B, C}, {0.0, 0.25, 0.5});
    fourPoints().getCurveBegin(9.0, piece.points, piece.s);
    expectPiece(piece, {A, B, C, D}, {0.0, 0.25, 0.5, 1.0});
}

TEST(Extraction, EndRunsToTheLastPoint) {
    Piece piece;
    fourPoints().getCurveEnd(0.375, piece.points, piece.s);
    expectPiece(piece, {Point(1, 0.5, 0), C, D}, {0.375, 0.5, 1.0});
    fourPoints().getCurveEnd(0.5, piece.points, piece.s);
    expectPiece(piece, {C, D}, {0.5, 1.0});
    fourPoints().getCurveEnd(-9.0, piece.points, piece.s);
    expectPiece(piece, {A, B, C, D}, {0.0, 0.25, 0.5, 1.0});
}

TEST(Extraction, EndOfATwoPointCurveHasTwoPoints) {
    Piece piece;
    withSvalues({A, B}, {0.0, 1.0}).getCurveEnd(0.25, piece.points, piece.s);
    expectPiece(piece, {Point(0.25, 0, 0), B}, {0.25, 1.0});
}

TEST(Extraction, BeginAndEndFailUnderTheNameOfGetCurve) {
    const ParametricCurve curve = fourPoints();
    Points points;
    EXPECT_THAT([&] { curve.getCurveBegin(0.0, points); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveBegin(-1.0, points); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveEnd(1.0, points); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveEnd(3.0, points); }, refusesRange(kIdentical));
}

TEST(Extraction, EveryFormRefusesARangeInTheSameWords) {
    const ParametricCurve curve = fourPoints();
    Points points;
    FloatPoints narrow;
    Values s;
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.5, narrow, s); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.5, points); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.5, narrow); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.25, narrow, s); }, refusesRange(kGreater));
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.25, points); }, refusesRange(kGreater));
    EXPECT_THAT([&] { curve.getCurve(0.5, 0.25, narrow); }, refusesRange(kGreater));
    EXPECT_THAT([&] { curve.getCurve(9.0, -9.0, points, s); }, refusesRange(kGreater));
    EXPECT_THAT([&] { curve.getCurveBegin(0.0, points, s); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveBegin(0.0, narrow); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveEnd(1.0, points, s); }, refusesRange(kIdentical));
    EXPECT_THAT([&] { curve.getCurveEnd(1.0, narrow); }, refusesRange(kIdentical));
}

// Compared with itself, the first point of a curve is never added twice; a NaN does not change it.
TEST(Extraction, BeginHasTheFirstPointOnce) {
    Points points;
    withSvalues({Point(kNaN, 0, 0), B, C}, {0.0, 0.5, 1.0}).getCurveBegin(0.5, points);
    EXPECT_EQ(points.size(), 2u); // the end repeats the second, which is dropped
}

// A NaN point differs from itself and so stands twice where a cut meets it.
TEST(Extraction, ACutOnANaNPointRepeatsIt) {
    Piece piece;
    const Point nan(kNaN, 0, 0);
    const ParametricCurve curve = withSvalues({nan, B, C}, {0.0, 0.5, 1.0});
    curve.getCurve(0.0, 0.5, piece.points, piece.s);
    expectPiece(piece, {nan, nan, B}, {0.0, 0.0, 0.5});
}

// -- Against the reference ----

Piece referencePiece(const Points& p, const Values& s, const Point& from, double a, bool once,
                     std::size_t hiA, const Point& to, double b, std::size_t loB) {
    Piece piece;
    const Point& other = p[hiA];
    const bool differs = from.x != other.x || from.y != other.y || from.z != other.z;
    if (hiA > loB || (!once && differs)) {
        piece.points.push_back(from);
        piece.s.push_back(a);
    }
    for (std::size_t i = hiA; i <= loB; ++i) {
        piece.points.push_back(p[i]);
        piece.s.push_back(s[i]);
    }
    piece.points.push_back(to);
    piece.s.push_back(b);
    const std::size_t n = piece.points.size();
    if (n >= 3 && piece.points[n - 1] == piece.points[n - 2]) {
        piece.points.pop_back();
        piece.s.pop_back();
    }
    return piece;
}

double referenceClamp(const Values& s, double at) {
    const double below = at > s.back() ? s.back() : at;
    return below > s.front() ? below : s.front(); // a NaN falls on the start
}

// Calls the operation and expects what reference gives, or the error that its clamped range asks
// for.
template <typename Operation, typename Reference>
void expectRangeOrPiece(double a, double b, Operation operation, Reference reference) {
    Piece piece;
    if (a == b) {
        EXPECT_THAT([&] { operation(piece); }, refusesRange(kIdentical));
    } else if (a > b) {
        EXPECT_THAT([&] { operation(piece); }, refusesRange(kGreater));
    } else {
        operation(piece);
        const Piece expected = reference();
        expectPiece(piece, expected.points, expected.s);
    }
}

TEST(Extraction, PiecesBetweenParametersMatchReferenceBitForBit) {
    RandomCurves make(11);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const ParametricCurve curve = make.curve();
        const Points& p = curve.getCurve();
        const Values& s = curve.getSvalues();
        const double first = make.parameter(s);
        const double second = make.parameter(s);
        const double a = referenceClamp(s, first);
        const double b = referenceClamp(s, second);
        std::size_t loA = 0;
        std::size_t hiA = 0;
        std::size_t loB = 0;
        std::size_t hiB = 0;
        const Point from = referenceInterpolated(p, s, a, loA, hiA);
        const Point to = referenceInterpolated(p, s, b, loB, hiB);
        expectRangeOrPiece(
            a, b, [&](Piece& piece) { curve.getCurve(first, second, piece.points, piece.s); },
            [&] { return referencePiece(p, s, from, a, false, hiA, to, b, loB); });
        expectRangeOrPiece(
            s.front(), b, [&](Piece& piece) { curve.getCurveBegin(second, piece.points, piece.s); },
            [&] { return referencePiece(p, s, p[0], s[0], true, 0, to, b, loB); });
        expectRangeOrPiece(
            a, s.back(), [&](Piece& piece) { curve.getCurveEnd(first, piece.points, piece.s); },
            [&] {
                return referencePiece(p, s, from, a, false, hiA, p.back(), s.back(), p.size() - 1);
            });
    }
}

TEST(Extraction, OtherOverloadsNarrowOrDropTheirResults) {
    RandomCurves make(12);
    for (int round = 0; round < 500 && !HasFailure(); ++round) {
        const ParametricCurve curve = make.curve();
        const double from = curve.getSvalues().front();
        const double to = curve.getSvalues().back();
        if (!(from < to)) {
            continue;
        }
        const double a = from + 0.2 * (to - from);
        const double b = from + 0.9 * (to - from);
        Piece piece;
        Points points;
        FloatPoints narrow;
        Values s;
        curve.getCurve(a, b, piece.points, piece.s);
        curve.getCurve(a, b, narrow, s);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(piece.points)));
        EXPECT_TRUE(sameBitsInAll(s, piece.s));
        curve.getCurve(a, b, points);
        EXPECT_TRUE(sameBitsInAll(points, piece.points));
        narrow.clear();
        curve.getCurve(a, b, narrow);
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(piece.points)));

        curve.getCurveBegin(b, piece.points, piece.s);
        curve.getCurveBegin(b, points);
        curve.getCurveBegin(b, narrow);
        EXPECT_TRUE(sameBitsInAll(points, piece.points));
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(piece.points)));

        curve.getCurveEnd(a, piece.points, piece.s);
        curve.getCurveEnd(a, points);
        curve.getCurveEnd(a, narrow);
        EXPECT_TRUE(sameBitsInAll(points, piece.points));
        EXPECT_TRUE(sameBitsInAll(narrow, narrowed(piece.points)));
    }
}

// -- Between indices ----

TEST(Extraction, ArcsFromFirstToLastPointAreTheCurveAndTheClosingSegment) {
    Points forward{A};
    Points backward{A};
    fourPoints().getCurve(0, 3, forward, backward);
    EXPECT_EQ(forward, Points({A, B, C, D}));
    EXPECT_EQ(backward, Points({D, A}));
    fourPoints().getCurve(3, 0, forward, backward);
    EXPECT_EQ(forward, Points({D, A}));
    EXPECT_EQ(backward, Points({A, B, C, D}));
}

TEST(Extraction, ArcsRunWithTheIndexAndWrap) {
    Points forward;
    Points backward;
    fourPoints().getCurve(1, 2, forward, backward);
    EXPECT_EQ(forward, Points({B, C}));
    EXPECT_EQ(backward, Points({C, D, A, B}));
    fourPoints().getCurve(2, 1, forward, backward);
    EXPECT_EQ(forward, Points({C, D, A, B}));
    EXPECT_EQ(backward, Points({B, C}));
    fourPoints().getCurve(2, 0, forward, backward);
    EXPECT_EQ(forward, Points({C, D, A}));
    EXPECT_EQ(backward, Points({A, B, C}));
}

TEST(Extraction, EveryPairOfArcsClosesTheLoop) {
    RandomCurves make(13);
    const ParametricCurve curve(make.points(), ParametricCurve::dim3D);
    const Points& p = curve.getCurve();
    const std::size_t n = p.size();
    for (std::size_t first = 0; first < n; ++first) {
        for (std::size_t second = 0; second < n; ++second) {
            if (first == second) {
                continue;
            }
            Points expectedForward{p[first]};
            for (std::size_t i = first; i != second;) {
                i = (i + 1) % n;
                expectedForward.push_back(p[i]);
            }
            Points expectedBackward{p[second]};
            for (std::size_t i = second; i != first;) {
                i = (i + 1) % n;
                expectedBackward.push_back(p[i]);
            }
            Points forward;
            Points backward;
            curve.getCurve(first, second, forward, backward);
            EXPECT_TRUE(sameBitsInAll(forward, expectedForward));
            EXPECT_TRUE(sameBitsInAll(backward, expectedBackward));
            FloatPoints narrowForward;
            FloatPoints narrowBackward;
            curve.getCurve(first, second, narrowForward, narrowBackward);
            EXPECT_TRUE(sameBitsInAll(narrowForward, narrowed(expectedForward)));
            EXPECT_TRUE(sameBitsInAll(narrowBackward, narrowed(expectedBackward)));
        }
    }
}

TEST(Extraction, RefusesArcsInTheStatedOrder) {
    const ParametricCurve curve = fourPoints();
    Points forward;
    Points backward;
    const auto arcs = [&](std::size_t first, std::size_t second) {
        return [&curve, &forward, &backward, first, second] {
            curve.getCurve(first, second, forward, backward);
        };
    };
    EXPECT_THAT(arcs(4, 9), refusesRange("Requested index out of bounds =4"));
    EXPECT_THAT(arcs(1, 9), refusesRange("Requested index out of bounds =9"));
    EXPECT_THAT(arcs(5, 5), refusesRange("Requested index out of bounds =5"));
    EXPECT_THAT(arcs(2, 2), refusesRange("First and second index must be different."));
    FloatPoints narrow;
    EXPECT_THAT([&] { curve.getCurve(std::size_t{1}, std::size_t{9}, narrow, narrow); },
                refusesRange("Requested index out of bounds =9"));
    EXPECT_THAT([&] { curve.getCurve(std::size_t{2}, std::size_t{2}, narrow, narrow); },
                refusesRange("First and second index must be different."));
    // Streamed as an unsigned number.
    EXPECT_THAT(arcs(static_cast<std::size_t>(-1), 0),
                refusesRange("Requested index out of bounds =18446744073709551615"));
}

TEST(Extraction, TheLoopStartsAndEndsAtTheIndex) {
    const ParametricCurve curve = fourPoints();
    Points points{D, D};
    curve.getCurve(std::size_t{0}, points);
    EXPECT_EQ(points, Points({A, B, C, D, A}));
    curve.getCurve(std::size_t{2}, points);
    EXPECT_EQ(points, Points({C, D, A, B, C}));
    curve.getCurve(std::size_t{3}, points);
    EXPECT_EQ(points, Points({D, A, B, C, D}));
    FloatPoints narrow;
    curve.getCurve(std::size_t{2}, narrow);
    EXPECT_EQ(narrow, narrowed({C, D, A, B, C}));
    EXPECT_THAT([&] { curve.getCurve(std::size_t{4}, points); },
                refusesRange("Requested index out of bounds =4"));
    EXPECT_THAT([&] { curve.getCurve(std::size_t{4}, narrow); },
                refusesRange("Requested index out of bounds =4"));
}

TEST(Extraction, ARangeOfIndicesIncludesBothEnds) {
    const ParametricCurve curve = fourPoints();
    const auto range = [&](std::size_t first, std::size_t second) {
        Points points{D, D, D};
        curve.getCurve(first, second, points);
        return points;
    };
    EXPECT_EQ(range(1, 3), Points({B, C, D}));
    EXPECT_EQ(range(0, 3), Points({A, B, C, D}));
    EXPECT_EQ(range(2, 2), Points({C})); // one point, on purpose
    FloatPoints narrow;
    curve.getCurve(std::size_t{1}, std::size_t{3}, narrow);
    EXPECT_EQ(narrow, narrowed({B, C, D}));
}

TEST(Extraction, RefusesRangesOfIndices) {
    const ParametricCurve curve = fourPoints();
    Points points;
    const auto range = [&](std::size_t first, std::size_t second) {
        return [&curve, &points, first, second] { curve.getCurve(first, second, points); };
    };
    EXPECT_THAT(range(4, 1),
                refusesRange("Requested indicies out of bounds. First id=4, Second id=1"));
    EXPECT_THAT(range(3, 1), refusesRange("Second index must be greater than first index. "
                                          "First id=3, Second id=1"));
    FloatPoints narrow;
    EXPECT_THAT([&] { curve.getCurve(std::size_t{4}, std::size_t{4}, narrow); },
                refusesRange("Requested indicies out of bounds. First id=4, Second id=4"));
    EXPECT_THAT([&] { curve.getCurve(std::size_t{2}, std::size_t{0}, narrow); },
                refusesRange("Second index must be greater than first index. "
                             "First id=2, Second id=0"));
    // A second index beyond the end is refused too, in the words for the first.
    EXPECT_THAT(range(1, 4),
                refusesRange("Requested indicies out of bounds. First id=1, Second id=4"));
}

} // namespace
