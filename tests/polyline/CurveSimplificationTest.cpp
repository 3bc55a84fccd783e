// Simplification to an error and to a count, compared with a recursion over plain loops.

#include <qel/CurveSimplification.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveShapes.h"
#include "support/Errors.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::simplifyToCount;
using qel::simplifyToError;
using Indices = std::vector<std::size_t>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// -- An independent implementation ----

double plainSquare(const CurvePoint& q, const CurvePoint& a, const CurvePoint& b) {
    const CurvePoint e = b - a;
    const double length2 = e.dot(e);
    const CurvePoint w = q - a;
    const double t = length2 > 0.0 ? w.dot(e) * (1.0 / length2) : 0.0;
    const CurvePoint d = t >= 1.0 ? q - b : t > 0.0 ? w - e * t : w;
    return d.dot(d);
}

struct Farthest {
    std::size_t vertex;
    double distance;
};

// From the middle outwards, so that of equally far ones the one nearest the middle is found first.
Farthest plainFarthest(const CurvePoints& curve, std::size_t from, std::size_t to) {
    std::size_t vertex = from;
    double largest = 0.0;
    const auto take = [&](std::size_t i) {
        if (i > from && i < to) {
            const double d2 = plainSquare(curve[i], curve[from], curve[to]);
            vertex = d2 > largest || vertex == from ? i : vertex;
            largest = std::max(largest, d2);
        }
    };
    const std::size_t middle = (from + to) / 2;
    const bool isBetween = (from + to) % 2 != 0; // of two vertices
    for (std::size_t k = 0; k <= to - from; ++k) {
        take(middle >= k ? middle - k : from);
        take(middle + k + (isBetween ? 1 : 0));
    }
    return {vertex, std::sqrt(largest)};
}

void plainSplit(const CurvePoints& curve, std::size_t from, std::size_t to, double tolerance,
                Indices& kept) {
    std::vector<std::pair<std::size_t, std::size_t>> open = {{from, to}};
    while (!open.empty()) {
        const auto [first, last] = open.back();
        open.pop_back();
        const Farthest farthest = plainFarthest(curve, first, last);
        if (farthest.distance > tolerance) {
            kept.push_back(farthest.vertex);
            open.emplace_back(first, farthest.vertex);
            open.emplace_back(farthest.vertex, last);
        }
    }
}

// The vertices that are kept always.
Indices plainAnchors(const CurvePoints& curve) {
    Indices anchors = {0, curve.size() - 1};
    for (int step = 0; step < 2 && curve.front() == curve.back(); ++step) {
        Farthest best{0, 0.0};
        for (std::size_t k = 1; k < anchors.size(); ++k) {
            const Farthest f = plainFarthest(curve, anchors[k - 1], anchors[k]);
            best = f.distance > best.distance ? f : best;
        }
        if (!(best.distance > 0.0)) {
            break;
        }
        anchors.insert(std::upper_bound(anchors.begin(), anchors.end(), best.vertex), best.vertex);
    }
    return anchors;
}

Indices plainToError(const CurvePoints& curve, double tolerance) {
    const Indices anchors = plainAnchors(curve);
    Indices kept = anchors;
    for (std::size_t k = 1; k < anchors.size(); ++k) {
        plainSplit(curve, anchors[k - 1], anchors[k], tolerance, kept);
    }
    std::sort(kept.begin(), kept.end());
    return kept;
}

// Always the part with the largest error, the first of equal ones.
Indices plainToCount(const CurvePoints& curve, std::size_t count, double& error) {
    Indices kept = plainAnchors(curve);
    for (;;) {
        Farthest best{0, 0.0};
        for (std::size_t k = 1; k < kept.size(); ++k) {
            const Farthest f = plainFarthest(curve, kept[k - 1], kept[k]);
            best = f.distance > best.distance ? f : best;
        }
        error = best.distance;
        if (kept.size() >= count || !(best.distance > 0.0)) {
            return kept;
        }
        kept.insert(std::upper_bound(kept.begin(), kept.end(), best.vertex), best.vertex);
    }
}

// With more digits than the implementation has.
double preciseDistance(const CurvePoint& q, const CurvePoint& a, const CurvePoint& b) {
    using Wide = long double;
    const Wide e[] = {Wide{b.x} - a.x, Wide{b.y} - a.y, Wide{b.z} - a.z};
    const Wide w[] = {Wide{q.x} - a.x, Wide{q.y} - a.y, Wide{q.z} - a.z};
    const Wide length2 = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
    Wide t = length2 > 0 ? (w[0] * e[0] + w[1] * e[1] + w[2] * e[2]) / length2 : 0;
    t = std::clamp<Wide>(t, 0, 1);
    Wide d2 = 0;
    for (int k = 0; k < 3; ++k) {
        d2 += (w[k] - e[k] * t) * (w[k] - e[k] * t);
    }
    return static_cast<double>(std::sqrt(d2));
}

double errorOf(const CurvePoints& curve, const Indices& kept) {
    double error = 0.0;
    for (std::size_t k = 1; k < kept.size(); ++k) {
        for (std::size_t i = kept[k - 1]; i <= kept[k]; ++i) {
            error = std::max(error, preciseDistance(curve[i], curve[kept[k - 1]], curve[kept[k]]));
        }
    }
    return error;
}

bool isFinite(const CurveShape& shape) {
    return shape.name != std::string("nan_among");
}
// Squares of its coordinates are 0 without scaling.
bool isComparable(const CurveShape& shape) {
    return isFinite(shape) && shape.name != std::string("denormal");
}

const std::vector<std::size_t> kSizes = {2, 3, 4, 9, 66, 513, 700, 3000};

// -- To an error ----

TEST(SimplifyToError, KeepsWhatARecursionKeepsMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            for (const std::size_t n : kSizes) {
                if (!isComparable(shape)) {
                    continue;
                }
                const CurvePoints curve = shape.make(n);
                for (const double share : {0.0, 1e-9, 1e-4, 1e-2, 0.3, kInfinity}) {
                    SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(n) + " " +
                                 std::to_string(share));
                    const double tolerance = share == 0.0 ? 0.0 : share * extentOf(curve);
                    if (tolerance == tolerance) { // infinity times the extent of equal points
                        ASSERT_EQ(simplifyToError(curve, tolerance),
                                  plainToError(curve, tolerance));
                    }
                }
            }
        }
    });
}

TEST(SimplifyToError, LeavesNoVertexFartherThanTheTolerance) {
    for (const CurveShape& shape : curveShapes()) {
        if (!isFinite(shape)) {
            continue;
        }
        const CurvePoints curve = shape.make(2000);
        const double extent = extentOf(curve);
        for (const double share : {1e-6, 1e-3, 0.05}) {
            SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(share));
            const Indices kept = simplifyToError(curve, share * extent);
            // The least spacing of doubles is coarse beside the denormal curve.
            EXPECT_LE(errorOf(curve, kept), share * extent * (1 + 1e-9) + 1e-15 * extent + 1e-323);
            EXPECT_EQ(kept.front(), 0U);
            EXPECT_EQ(kept.back(), curve.size() - 1);
        }
    }
}

TEST(SimplifyToError, DropsOnlyVerticesOnTheirSegmentAtToleranceZero) {
    CurvePoints curve = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {2, 1, 0}, {2, 2, 1e-300}};
    EXPECT_EQ(simplifyToError(curve, 0.0), (Indices{0, 2, 5}));
    const std::vector<CurvePoint> straight = {{0, 0, 0}, {3, 3, 3}, {1, 1, 1}, {4, 4, 4}};
    EXPECT_EQ(simplifyToError(straight, 0.0), (Indices{0, 3}));
}

TEST(SimplifyToError, MeasuresTheDistanceFromTheSegmentAndNotFromItsLine) {
    // Beyond the end of the segment, but on its line.
    const CurvePoints curve = {{0, 0, 0}, {5, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(simplifyToError(curve, 3.9), (Indices{0, 1, 2}));
    EXPECT_EQ(simplifyToError(curve, 4.0), (Indices{0, 2}));
}

TEST(SimplifyToError, KeepsOfEquallyFarVerticesTheOneNearestTheMiddle) {
    const CurvePoints five = {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {3, 1, 0}, {4, 0, 0}};
    double error = 0.0;
    EXPECT_EQ(simplifyToCount(five, 3, error), (Indices{0, 2, 4}));
    const CurvePoints four = {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {3, 0, 0}};
    EXPECT_EQ(simplifyToCount(four, 3, error), (Indices{0, 1, 3}));
}

TEST(SimplifyToError, KeepsClosedCurvesClosedAndOpen) {
    const CurvePoints square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    EXPECT_EQ(simplifyToError(square, kInfinity), (Indices{0, 1, 2, 4}));
    const CurvePoints outAndBack = {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}, {1, 1, 0}, {0, 0, 0}};
    EXPECT_EQ(simplifyToError(outAndBack, kInfinity), (Indices{0, 2, 4}));
    EXPECT_EQ(simplifyToError(CurvePoints(5, CurvePoint(1, 2, 3)), 0.0), (Indices{0, 4}));
    CurvePoints circle = curveShape("circle").make(1000);
    circle.push_back(circle[0]);
    for (const double tolerance : {1e-3, 0.1, 10.0}) {
        EXPECT_EQ(simplifyToError(circle, tolerance), plainToError(circle, tolerance));
        EXPECT_GE(simplifyToError(circle, tolerance).size(), 4U);
    }
}

TEST(SimplifyToError, SurvivesTheLargestAndTheLeastCoordinates) {
    const double huge = std::numeric_limits<double>::max();
    const double tiny = std::numeric_limits<double>::denorm_min();
    const CurvePoints wide = {{-huge, 0, 0}, {0, 1, 0}, {0, huge, 0}, {huge, 0, 0}};
    EXPECT_EQ(simplifyToError(wide, 1e300), (Indices{0, 1, 2, 3}));
    EXPECT_EQ(simplifyToError(wide, huge), (Indices{0, 3}));
    const CurvePoints small = {{0, 0, 0}, {tiny, 2 * tiny, 0}, {2 * tiny, 0, 0}};
    EXPECT_EQ(simplifyToError(small, tiny), (Indices{0, 1, 2}));
    EXPECT_EQ(simplifyToError(small, 2 * tiny), (Indices{0, 2}));
}

TEST(SimplifyToError, ReadsFloatsOfAnyStrideAndAlignment) {
    const CurvePoints wide = curveShape("rough_wave").make(300);
    constexpr std::size_t kRecord = 13; // a byte and three floats
    std::vector<char> records(wide.size() * kRecord);
    CurvePoints rounded(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const float xyz[] = {static_cast<float>(wide[i].x), static_cast<float>(wide[i].y),
                             static_cast<float>(wide[i].z)};
        std::memcpy(&records[(wide.size() - 1 - i) * kRecord + 1], xyz, sizeof xyz); // backwards
        rounded[i] = {double{xyz[0]}, double{xyz[1]}, double{xyz[2]}};
    }
    const auto axis = [&](std::size_t k) {
        const char* last = &records[(wide.size() - 1) * kRecord + 1 + k * sizeof(float)];
        return qel::ScalarView<const float>(reinterpret_cast<const float*>(last), wide.size(),
                                            -static_cast<std::ptrdiff_t>(kRecord));
    };
    const qel::TripletView<const float> view(axis(0), axis(1), axis(2));
    EXPECT_EQ(simplifyToError(view, 0.01), simplifyToError(rounded, 0.01));
}

TEST(SimplifyToError, RefusesToleranceThatIsNegativeOrNaN) {
    const CurvePoints curve = {{0, 0, 0}, {1, 0, 0}};
    for (const double tolerance : {-1e-300, -kInfinity, std::nan("")}) {
        EXPECT_THAT([&] { simplifyToError(curve, tolerance); },
                    throwsInvalid("CurveSimplification", "simplifyToError",
                                  "The tolerance is negative or NaN."));
    }
}

TEST(SimplifyToError, ReportsProgressAndStops) {
    const CurvePoints curve = curveShape("rough_wave").make(20000);
    std::vector<double> fractions;
    const Indices kept = simplifyToError(curve, 0.0, [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    });
    EXPECT_GT(kept.size(), curve.size() / 2);
    ASSERT_GT(fractions.size(), 3U);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.front(), 0.0);
    EXPECT_EQ(fractions.back(), 1.0);
    int calls = 0;
    EXPECT_TRUE(simplifyToError(curve, 0.0, [&](double) { return ++calls < 2; }).empty());
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(simplifyToError(curve, 10.0, [](double) { return false; }).empty());
}

// -- To a count ----

TEST(SimplifyToCount, SplitsTheLargestErrorFirstMatchesReferenceBitForBit) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            for (const std::size_t n : std::vector<std::size_t>{2, 3, 9, 200}) {
                const CurvePoints curve = shape.make(n);
                for (const std::size_t count : std::vector<std::size_t>{4, 7, 60, 1000}) {
                    if (!isComparable(shape)) {
                        continue;
                    }
                    SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(n) + " to " +
                                 std::to_string(count));
                    double error = -1.0, plainError = -1.0;
                    ASSERT_EQ(simplifyToCount(curve, count, error),
                              plainToCount(curve, count, plainError));
                    ASSERT_EQ(error, plainError);
                }
            }
        }
    });
}

TEST(SimplifyToCount, SaysTheErrorThatRemains) {
    const CurvePoints curve = curveShape("rough_wave").make(5000);
    for (const std::size_t count : std::vector<std::size_t>{2, 3, 40, 2500}) {
        double error = -1.0;
        const Indices kept = simplifyToCount(curve, count, error);
        EXPECT_EQ(kept.size(), count);
        EXPECT_NEAR(error, errorOf(curve, kept), 1e-12);
    }
    double error = -1.0;
    EXPECT_EQ(simplifyToCount(curveShape("line").make(4097), 4000, error).size(), 2U);
    EXPECT_EQ(error, 0.0);
}

TEST(SimplifyToCount, RefusesFewerVerticesThanAreKeptAlways) {
    double error = -1.0;
    const CurvePoints square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    EXPECT_THAT([&] { simplifyToCount(square, 3, error); },
                throwsInvalid("CurveSimplification", "simplifyToCount",
                              "The closed curve keeps 4 vertices at least, not 3."));
    for (const std::size_t count : std::vector<std::size_t>{0, 1}) {
        EXPECT_THAT(
            [&] { simplifyToCount(square, count, error); },
            throwsInvalid("CurveSimplification", "simplifyToCount",
                          "A curve keeps 2 vertices at least, not " + std::to_string(count) + "."));
    }
    EXPECT_EQ(error, -1.0);
}

TEST(SimplifyToCount, ReportsProgressAndStops) {
    const CurvePoints curve = curveShape("rough_wave").make(20000);
    std::vector<double> fractions;
    double error = -1.0;
    simplifyToCount(curve, 15000, error, [&](double fraction) {
        fractions.push_back(fraction);
        return true;
    });
    ASSERT_GT(fractions.size(), 3U);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1.0);
    error = -1.0;
    EXPECT_TRUE(simplifyToCount(curve, 15000, error, [](double) { return false; }).empty());
    const auto stopsAtTheEnd = [](double fraction) { return fraction < 1.0; };
    EXPECT_TRUE(simplifyToCount(curve, 15000, error, stopsAtTheEnd).empty());
    EXPECT_EQ(error, -1.0);
}

} // namespace
