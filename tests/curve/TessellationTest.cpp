// Inserting points: by step of s, by number, by rise in y, and by cosine.

#include <algorithm>
#include <cfloat>
#include <climits>

#include <qel/ParametricCurve.h>

#include "ReferenceCurve.h"
#include "support/Bits.h"
#include "support/Errors.h"

namespace {

using namespace qel_test;
using Spreads = std::vector<std::pair<double, double>>;

constexpr double kPi = 3.141592653589793;

ParametricCurve withSvalues(const Points& points, const Values& s) {
    return ParametricCurve(points, s, ParametricCurve::dim3D);
}

double allowance() {
    return qel::NumericalUtils::spacing(0.5);
}

// Calls the operation, expects the error and the curve as it was.
template <typename Operation, typename Refusal>
void expectRefusedUnchanged(ParametricCurve curve, Operation operation, Refusal refusal) {
    const CurveState before = stateOf(curve);
    EXPECT_THAT([&] { operation(curve); }, refusal);
    EXPECT_EQ(stateOf(curve), before);
}

// -- By step of s ----

TEST(Tessellation, SdistanceSplitsIntoEqualParts) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {8, 4, 0}}, {0.0, 1.0});
    curve.tesselateCurvebySdistance(0.25);
    EXPECT_EQ(curve.getSvalues(), Values({0, 0.25, 0.5, 0.75, 1}));
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {2, 1, 0}, {4, 2, 0}, {6, 3, 0}, {8, 4, 0}}));
}

TEST(Tessellation, SdistanceLeavesAStepOfExactlyThatSizeAlone) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}}, {0.0, 0.25, 1.0});
    curve.tesselateCurvebySdistance(0.25);
    EXPECT_EQ(curve.getSvalues(), Values({0, 0.25, 0.5, 0.75, 1}));
}

TEST(Tessellation, SdistanceAcceptsItsBoundsAndRefusesBeyond) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0});
    curve.tesselateCurvebySdistance(1.0);
    EXPECT_EQ(curve.getSize(), 2u);
    const auto step = [](double maxStep) {
        return [maxStep](ParametricCurve& c) { c.tesselateCurvebySdistance(maxStep); };
    };
    const auto refused = [](const std::string& shown) {
        return throwsInvalid("ParametricCurve", "tesselateCurvebySdistance",
                             "Parameter out of bounds. Minimum s distance requested =" + shown);
    };
    expectRefusedUnchanged(curve, step(1.5), refused("1.5"));
    expectRefusedUnchanged(curve, step(0.00009), refused("9e-05"));
    expectRefusedUnchanged(curve, step(0.0), refused("0"));
    expectRefusedUnchanged(curve, step(-0.5), refused("-0.5"));
    expectRefusedUnchanged(curve, step(std::nextafter(1.0, 2.0)), refused("1"));
    expectRefusedUnchanged(curve, step(kNaN), refused("nan")); // would split nothing in silence
    curve.tesselateCurvebySdistance(0.0001);
    EXPECT_EQ(curve.getSize(), 10001u);
}

// s is interpolated: supplied values, the length and where s came from all stay.
TEST(Tessellation, SdistanceKeepsParametrizationAndLength) {
    ParametricCurve supplied(FloatPoints{{0, 0, 0}, {3, 0, 0}, {3, 4, 0}}, Values{0.0, 0.5, 1.0},
                             ParametricCurve::dim2D);
    CurveState expected = stateOf(supplied);
    expected.points = {{0, 0, 0}, {1.5, 0, 0}, {3, 0, 0}, {3, 2, 0}, {3, 4, 0}};
    expected.svalues = {0.0, 0.25, 0.5, 0.75, 1.0};
    supplied.tesselateCurvebySdistance(0.25);
    EXPECT_EQ(stateOf(supplied), expected);
    EXPECT_EQ(supplied.getParametrization(), ParametricCurve::parametrizationSupplied);
    EXPECT_EQ(supplied.getLength(), 0.0); // never computed
    EXPECT_FALSE(supplied.isCurveCreatedAsDouble());
}

TEST(Tessellation, SdistanceMatchesReferenceBitForBit) {
    RandomCurves make(31);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        CurveState expected = stateOf(curve);
        const Points p = expected.points;
        const Values s = expected.svalues;
        const double maxStep = make.index(3) == 0 ? 1.0 / static_cast<double>(1 + make.index(9))
                                                  : make.uniform(0.01, 1.0);
        if (s.back() - s.front() > 20000.0 * maxStep) {
            continue;
        }
        expected.points = {p[0]};
        expected.svalues = {s[0]};
        for (std::size_t i = 1; i < p.size(); ++i) {
            const double step = s[i] - s[i - 1];
            if (step > maxStep) {
                int m = static_cast<int>((step + allowance()) / (maxStep + DBL_MIN));
                m += step / m - allowance() > maxStep ? 1 : 0;
                for (int j = 1; j <= m - 1; ++j) {
                    const double t = static_cast<double>(j) / m;
                    expected.points.push_back(p[i - 1] + (p[i] - p[i - 1]) * t);
                    expected.svalues.push_back(s[i - 1] + t * step);
                }
            }
            expected.points.push_back(p[i]);
            expected.svalues.push_back(s[i]);
        }
        curve.tesselateCurvebySdistance(maxStep);
        EXPECT_EQ(stateOf(curve), expected);
    }
}

TEST(Tessellation, SdistanceRefusesAnAbsurdNumberOfPoints) {
    const Points p{{0, 0, 0}, {1, 0, 0}};
    const auto refused = throwsInternal("ParametricCurve", "tesselateCurvebySdistance",
                                        "Requested number of points exceeds 2147483647.");
    for (const double far : {1e12, 1e300, kInfinity}) {
        expectRefusedUnchanged(
            withSvalues(p, {0.0, far}),
            [](ParametricCurve& c) { c.tesselateCurvebySdistance(0.0001); }, refused);
    }
    expectRefusedUnchanged(
        withSvalues(p, {0.0, 4294967296.0}),
        [](ParametricCurve& c) { c.tesselateCurvebySdistance(1.0); }, refused);
}

TEST(Tessellation, SdistanceLeavesANaNStepAlone) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0.0, kNaN, 1.0});
    curve.tesselateCurvebySdistance(0.1);
    EXPECT_EQ(curve.getSize(), 3u);
}

// -- By number and by rise ----

TEST(Tessellation, NumberIsCapped) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {4, 0, 0}}, {0.0, 1.0});
    curve.tesselateCurvebyNumber(3, 0.1); // nine would fit
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}}));
    EXPECT_EQ(curve.getSvalues(), Values({0, 0.25, 0.5, 0.75, 1}));
}

// 0.3 / 0.1 rounds to a little less than 3; the allowance makes up for it.
TEST(Tessellation, NumberAllowsForRounding) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {3, 0, 0}, {10, 0, 0}}, {0.0, 0.3, 1.0});
    curve.tesselateCurvebyNumber(2, 0.1);
    EXPECT_EQ(curve.getCurve()[1], Point(1, 0, 0));
    EXPECT_EQ(curve.getCurve()[2], Point(2, 0, 0));
    EXPECT_EQ(curve.getCurve()[3], Point(3, 0, 0));
}

// Where s is large the allowance vanishes: two whole steps are two.
TEST(Tessellation, NumberCountsAStepThatFitsExactly) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {4, 0, 0}}, {0.0, 200.0});
    curve.tesselateCurvebyNumber(5, 100.0);
    EXPECT_EQ(curve.getCurve(), Points({{0, 0, 0}, {2, 0, 0}, {4, 0, 0}}));
}

// s follows arc length afterwards, also where it had been supplied; only s and length change.
TEST(Tessellation, NumberComputesSAndLength) {
    ParametricCurve curve(FloatPoints{{0, 0, 0}, {3, 0, 0}, {3, 1, 0}}, Values{0.0, 0.5, 1.0},
                          ParametricCurve::dim2D);
    CurveState expected = stateOf(curve);
    recompute(expected, {{0, 0, 0}, {1.5, 0, 0}, {3, 0, 0}, {3, 0.5, 0}, {3, 1, 0}});
    curve.tesselateCurvebyNumber(1, 0.1);
    EXPECT_EQ(stateOf(curve), expected);
    EXPECT_EQ(curve.getLength(), 4.0);
    EXPECT_EQ(curve.getSvalues()[1], 0.375);
    EXPECT_EQ(curve.getParametrization(), ParametricCurve::parametrizationSupplied);
}

TEST(Tessellation, MinYdistanceLooksAtYAlone) {
    ParametricCurve curve(Points{{0, 1, 0}, {1000, 1, 500}, {1000, 3, 500}},
                          ParametricCurve::dim3D);
    curve.tesselateCurvebyMinYdistance(0.5);
    // Equal y is never split, however long; a rise of 2 holds 4 steps and gets 3 points.
    EXPECT_EQ(curve.getCurve(), Points({{0, 1, 0},
                                        {1000, 1, 500},
                                        {1000, 1.5, 500},
                                        {1000, 2, 500},
                                        {1000, 2.5, 500},
                                        {1000, 3, 500}}));
}

// The smallest normal number is added to the rise, sign and all, which only the tiniest steps show.
TEST(Tessellation, MinYdistanceAddsTheSmallestNumber) {
    ParametricCurve level(Points{{0, 1, 0}, {4, 1, 0}}, ParametricCurve::dim3D);
    level.tesselateCurvebyMinYdistance(DBL_MIN / 4);
    EXPECT_EQ(level.getSize(), 5u);
    ParametricCurve falling(Points{{0, DBL_MIN, 0}, {4, 0, 0}}, ParametricCurve::dim3D);
    falling.tesselateCurvebyMinYdistance(DBL_MIN / 4);
    EXPECT_EQ(falling.getSize(), 2u);
}

template <typename Inserted>
Points referenceRefined(const Points& p, Inserted inserted) {
    Points refined{p[0]};
    for (std::size_t i = 1; i < p.size(); ++i) {
        const double m = inserted(i);
        for (int j = 1; j <= m; ++j) {
            refined.push_back(p[i - 1] + (p[i] - p[i - 1]) * j / (m + 1.0));
        }
        refined.push_back(p[i]);
    }
    return refined;
}

TEST(Tessellation, NumberAndMinYdistanceMatchReferenceBitForBit) {
    RandomCurves make(32);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const Points p = curve.getCurve();
        const Values s = curve.getSvalues();
        const int most = static_cast<int>(make.index(9));
        const double step = std::pow(10.0, make.uniform(-3.0, 1.0));
        CurveState expected = stateOf(curve);
        recompute(expected, referenceRefined(p, [&](std::size_t i) {
                      double m = std::trunc((s[i] - s[i - 1] + allowance()) / step - 1.0);
                      m = m <= 0.0 ? 0.0 : m;
                      return m >= most ? most : m;
                  }));
        ParametricCurve byNumber(curve);
        byNumber.tesselateCurvebyNumber(most, step);
        EXPECT_EQ(stateOf(byNumber), expected);

        double tallest = 0.0;
        for (const Point& q : p) {
            tallest = std::max(tallest, std::abs(q.y));
        }
        const double rise = (tallest > 0.0 ? tallest : 1.0) * make.uniform(0.01, 0.4);
        if (!std::isfinite(tallest)) {
            continue;
        }
        expected = stateOf(curve);
        recompute(expected, referenceRefined(p, [&](std::size_t i) {
                      const double m =
                          std::trunc(std::abs(p[i].y - p[i - 1].y + DBL_MIN) / rise) - 1.0;
                      return m > 0.0 ? m : 0.0;
                  }));
        curve.tesselateCurvebyMinYdistance(rise);
        EXPECT_EQ(stateOf(curve), expected);
    }
}

TEST(Tessellation, StepsMustBePositive) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 9, 0}}, {0.0, 1.0});
    const std::pair<double, const char*> kinds[] = {
        {0.0, "0"}, {-0.0, "-0"}, {-1.0, "-1"}, {kNaN, "nan"}, {-kInfinity, "-inf"}};
    for (const auto& kind : kinds) {
        const double step = kind.first;
        const std::string message =
            std::string("Requested step is not positive. Step=") + kind.second;
        expectRefusedUnchanged(
            curve, [&](ParametricCurve& c) { c.tesselateCurvebyNumber(3, step); },
            throwsInternal("ParametricCurve", "tesselateCurvebyNumber", message));
        expectRefusedUnchanged(
            curve, [&](ParametricCurve& c) { c.tesselateCurvebyMinYdistance(step); },
            throwsInternal("ParametricCurve", "tesselateCurvebyMinYdistance", message));
    }
}

TEST(Tessellation, AnEndlessStepInsertsNothing) {
    ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 9, 0}}, {0.0, 1.0});
    curve.tesselateCurvebyNumber(3, kInfinity);
    curve.tesselateCurvebyMinYdistance(kInfinity);
    EXPECT_EQ(curve.getSize(), 2u);
}

TEST(Tessellation, NumberRefusesNegativeAndAbsurdCounts) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0});
    for (const int count : {-1, INT_MIN}) {
        expectRefusedUnchanged(
            curve, [&](ParametricCurve& c) { c.tesselateCurvebyNumber(count, 0.1); },
            throwsInternal("ParametricCurve", "tesselateCurvebyNumber",
                           "Requested number of points is negative. Count=" +
                               std::to_string(count)));
    }
    expectRefusedUnchanged(
        curve, [](ParametricCurve& c) { c.tesselateCurvebyNumber(INT_MAX, 1e-300); },
        throwsInternal("ParametricCurve", "tesselateCurvebyNumber",
                       "Requested number of points exceeds 2147483647."));
    // A high cap alone asks for nothing: what is inserted is counted first.
    ParametricCurve few(curve);
    few.tesselateCurvebyNumber(INT_MAX, 0.25);
    EXPECT_EQ(few.getSize(), 5u);
    few.tesselateCurvebyNumber(0, 1e-300);
    EXPECT_EQ(few.getSize(), 5u);
}

TEST(Tessellation, MinYdistanceRefusesAnAbsurdNumberOfPoints) {
    for (const double y : {1e300, kInfinity, 1e10}) {
        expectRefusedUnchanged(
            withSvalues({{0, 0, 0}, {1, y, 0}}, {0.0, 1.0}),
            [](ParametricCurve& c) { c.tesselateCurvebyMinYdistance(1e-3); },
            throwsInternal("ParametricCurve", "tesselateCurvebyMinYdistance",
                           "Requested number of points exceeds 2147483647."));
    }
    ParametricCurve nan = withSvalues({{0, 0, 0}, {1, kNaN, 0}}, {0.0, 1.0});
    nan.tesselateCurvebyMinYdistance(1e-3);
    EXPECT_EQ(nan.getSize(), 2u);
}

// -- By cosine ----

TEST(Tessellation, OnePointByCosineIsTheMiddle) {
    ParametricCurve curve = withSvalues({{0, 5, 5}, {2, 5, 5}, {6, 5, 5}}, {0.0, 0.25, 1.0});
    curve.tesselateXCurvebyCosine(1);
    ASSERT_EQ(curve.getSize(), 5u);
    EXPECT_NEAR(curve.getCurve()[1].x, 1.0, 1e-15);
    EXPECT_NEAR(curve.getCurve()[3].x, 4.0, 1e-15);
    // Inserted points carry x alone, with s in the middle of the interval's.
    EXPECT_EQ(curve.getCurve()[1].y, 0.0);
    EXPECT_EQ(curve.getCurve()[1].z, 0.0);
    EXPECT_EQ(curve.getCurve()[2], Point(2, 5, 5));
    EXPECT_EQ(curve.getSvalues(), Values({0.0, 0.125, 0.25, 0.625, 1.0}));
}

CurveState referenceCosine(const ParametricCurve& curve, int count) {
    CurveState state = stateOf(curve);
    const Points p = state.points;
    const Values s = state.svalues;
    state.points = {p[0]};
    state.svalues = {s[0]};
    for (std::size_t i = 1; i < p.size(); ++i) {
        const double angle = (kPi - 0.0) / (count + 1);
        const double h = (s[i] - s[i - 1]) / (count + 1);
        for (int j = 1; j <= count; ++j) {
            const double c = std::cos(0.0 + j * angle);
            const double c0 = std::cos(0.0 + 0 * angle);
            state.points.emplace_back(p[i - 1].x - (c - c0) * (p[i].x - p[i - 1].x) * 0.5, 0.0,
                                      0.0);
            state.svalues.push_back(j * h + s[i - 1]);
        }
        state.points.push_back(p[i]);
        state.svalues.push_back(s[i]);
    }
    return state;
}

// Neither s nor length is brought in line with the new points, and no flag is touched.
TEST(Tessellation, CosineMatchesReferenceBitForBit) {
    RandomCurves make(33);
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const int count = static_cast<int>(make.index(7));
        const CurveState expected = referenceCosine(curve, count);
        curve.tesselateXCurvebyCosine(count);
        EXPECT_EQ(stateOf(curve), expected);
    }
}

TEST(Tessellation, CosineRefusesNegativeAndAbsurdCounts) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0});
    expectRefusedUnchanged(
        curve, [](ParametricCurve& c) { c.tesselateXCurvebyCosine(-1); },
        throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                       "Requested number of points is negative. Count=-1"));
    expectRefusedUnchanged(
        curve, [](ParametricCurve& c) { c.tesselateXCurvebyCosine(INT_MAX); },
        throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                       "Requested number of points exceeds 2147483647."));
    expectRefusedUnchanged(
        curve,
        [](ParametricCurve& c) {
            c.tesselateXCurvebyCosine(-2, Spreads{{0.1, 0.1}});
        },
        throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                       "Requested number of points is negative. Count=-2"));
    expectRefusedUnchanged(
        curve,
        [](ParametricCurve& c) {
            c.tesselateXCurvebyCosine(INT_MAX, Spreads{{0.1, 0.1}});
        },
        throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                       "Requested number of points exceeds 2147483647."));
}

TEST(Tessellation, SpreadsMustLeaveSomethingBetweenThem) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0});
    const auto spread = [](double a, double b) {
        return [a, b](ParametricCurve& c) { c.tesselateXCurvebyCosine(3, Spreads{{a, b}}); };
    };
    const auto refused = [](const std::string& values) {
        return throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                              "Not appropriate spread values. " + values + " ");
    };
    expectRefusedUnchanged(curve, spread(0.5, 0.5), refused("First = 0.5, second = 0.5"));
    expectRefusedUnchanged(curve, spread(-0.1, 0.2), refused("First = -0.1, second = 0.2"));
    expectRefusedUnchanged(curve, spread(0.2, 1.0), refused("First = 0.2, second = 1"));
    expectRefusedUnchanged(curve, spread(0.2, -0.1), refused("First = 0.2, second = -0.1"));
    expectRefusedUnchanged(curve, spread(1.0, 0.0), refused("First = 1, second = 0"));
    expectRefusedUnchanged(curve, spread(kNaN, 0.0), refused("First = nan, second = 0"));
    ParametricCurve accepted(curve);
    spread(0.2, 0.3)(accepted);
    EXPECT_EQ(accepted.getSize(), 5u);
    spread(0.0, 0.0)(accepted = curve);
    EXPECT_EQ(accepted.getSize(), 5u);
}

// The shares are compared as a < 1 - b and 1 - b <= 1, as they round: not as a sum, and a b that
// 1 swallows is none.
TEST(Tessellation, SpreadsAreComparedWithTheRoundedEnd) {
    const auto accepts = [](double a, double b) {
        ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}}, {0.0, 1.0});
        try {
            curve.tesselateXCurvebyCosine(2, Spreads{{a, b}});
        } catch (const qel::internal::error&) {
            return false;
        }
        return true;
    };
    EXPECT_TRUE(accepts(0.3, 0.7)); // 1 - 0.7 rounds to a little more than 0.3
    EXPECT_FALSE(accepts(0.1, 0.9));
    EXPECT_TRUE(accepts(0.2, -1e-17));
    EXPECT_TRUE(accepts(-0.0, 0.0));
    EXPECT_FALSE(accepts(-5e-324, 0.0));
}

TEST(Tessellation, SpreadsMustBeOneForEachInterval) {
    const ParametricCurve curve = withSvalues({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0.0, 0.5, 1.0});
    for (const std::size_t size : {0u, 1u, 3u}) {
        // The count comes before the pairs, which are all wrong here.
        expectRefusedUnchanged(
            curve,
            [&](ParametricCurve& c) {
                c.tesselateXCurvebyCosine(3, Spreads(size, {2.0, 2.0}));
            },
            throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                           "SpreadValues must have size of 2"));
    }
    // The first wrong pair is named, and the curve is unchanged though the one before was right.
    expectRefusedUnchanged(
        curve,
        [](ParametricCurve& c) {
            c.tesselateXCurvebyCosine(3, Spreads{{0.1, 0.1}, {0.9, 0.9}});
        },
        throwsInternal("ParametricCurve", "tesselateXCurvebyCosine",
                       "Not appropriate spread values. First = 0.9, second = 0.9 "));
}

TEST(Tessellation, CosineWithSpreadsMatchesReferenceBitForBit) {
    RandomCurves make(34);
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        ParametricCurve curve = make.curve();
        const int count = static_cast<int>(make.index(7));
        CurveState expected = stateOf(curve);
        const Points p = expected.points;
        const Values s = expected.svalues;
        Spreads spreads;
        expected.points = {p[0]};
        expected.svalues = {s[0]};
        for (std::size_t i = 1; i < p.size(); ++i) {
            const double a = make.index(4) == 0 ? 0.0 : make.uniform(0.0, 0.5);
            const double b = make.index(4) == 0 ? 0.0 : make.uniform(0.0, 0.49);
            spreads.emplace_back(a, b);
            const double x0 = p[i - 1].x;
            const double x1 = p[i].x;
            const CurveState section = referenceCosine(
                withSvalues({{x0, 0, 0}, {x0, 0, 0}, {x1, 0, 0}, {x1, 0, 0}}, {0, a, 1.0 - b, 1}),
                count);
            const double h = 1.0 / (count + 2 - 1);
            const double hs = (s[i] - s[i - 1]) / (count + 1);
            for (int j = 1; j <= count; ++j) {
                expected.points.emplace_back(referenceAt(section.points, section.svalues, j * h).x,
                                             0.0, 0.0);
                expected.svalues.push_back(j * hs + s[i - 1]);
            }
            expected.points.push_back(p[i]);
            expected.svalues.push_back(s[i]);
        }
        curve.tesselateXCurvebyCosine(count, spreads);
        EXPECT_EQ(stateOf(curve), expected);
    }
}

} // namespace
