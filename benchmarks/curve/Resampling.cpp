// Points at given parameters, and lists of parameters.

#include "curve/BoostLine.h"
#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"

namespace qel_benchmark {
namespace {

Values sortedParameters(std::size_t n) {
    Values s = randomParameters(n);
    std::sort(s.begin(), s.end());
    return s;
}

void resampleEven(Row& row, const CurveInput& in) {
    Points a(in.n);
    Points b(in.n);
    row.add(kLibrary, [&] { in.curve.getCurveForEquidistantS(a, static_cast<int>(in.n)); });
    row.add(kPlain, [&] {
        plain::Walk walk(in.points, in.svalues());
        const double step = 1.0 / static_cast<double>(in.n - 1);
        b.clear();
        b.push_back(in.points.front());
        for (std::size_t k = 1; k + 1 < in.n; ++k) {
            b.push_back(walk.pointAt(static_cast<double>(k) * step));
        }
        b.push_back(in.points.back());
    });
#if defined(QEL_BENCHMARK_HAS_BOOST)
    namespace bg = boost::geometry;
    BoostLine line;
    bg::model::multi_point<BoostPoint> found;
    const double step = in.curve.getLength() / static_cast<double>(in.n - 1);
    if (in.isFinite() && step > 0.0) { // in one walk: what it offers for many points
        line = boostLine(in.points);
        row.add(kBoost, [&] {
            found.clear();
            bg::line_interpolate(line, step, found);
        });
    }
#endif
    row.measure();
    row.expectSame(sameBits(a, b));
}

void resampleSorted(Row& row, const CurveInput& in) {
    const Values s = sortedParameters(in.n);
    Points a(in.n);
    Points b(in.n);
    row.add(kLibrary, [&] { in.curve.getCurveBySvalues(a, s, false); });
    row.add(kPlain, [&] {
        plain::Walk walk(in.points, in.svalues());
        b.clear();
        for (const double at : s) {
            b.push_back(walk.pointAt(at));
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void resampleAnyOrder(Row& row, const CurveInput& in) {
    const Values s = randomParameters(in.n);
    Points a(in.n);
    Points b(in.n);
    row.add(kLibrary, [&] { in.curve.getCurveBySvalues(a, s, false); });
    row.add(kPlain, [&] {
        b.clear();
        for (const double at : s) {
            b.push_back(plain::pointAt(in.points, in.svalues(), at));
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void resampleX(Row& row, const CurveInput& in) {
    const Values s = sortedParameters(in.n);
    Values a(in.n);
    Values b(in.n);
    row.add(kLibrary, [&] { in.curve.getCurveXBySvalues(a, s, false); });
    row.add(kPlain, [&] {
        plain::Walk walk(in.points, in.svalues());
        b.clear();
        for (const double at : s) {
            b.push_back(walk.pointAt(at).x);
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void newCurve(Row& row, const CurveInput& in) {
    const Values s = sortedParameters(in.n);
    row.add(kLibrary, [&] {
        const std::unique_ptr<ParametricCurve> curve(in.curve.createNewCurveBySvalues(s, true));
        keep(curve.get());
    });
    row.add(kPlain, [&] {
        plain::Walk walk(in.points, in.svalues());
        Points points;
        points.reserve(in.n);
        for (const double at : s) {
            points.push_back(walk.pointAt(at));
        }
        points.front() = in.points.front();
        points.back() = in.points.back();
        Values values(in.n);
        keep(plain::arcValues(points, values));
    });
    row.measure();
}

// Points inserted wherever a step of s is larger than half of the average.
void withMinimumS(Row& row, const CurveInput& in) {
    const std::size_t count = 2 * in.n;
    const Values& s = in.svalues();
    Points a;
    Points b;
    Values t;
    Values u;
    row.add(kLibrary, [&] { in.curve.getCurveWithMinimumS(a, t, static_cast<int>(count)); });
    row.add(kPlain, [&] {
        const double step = 1.0 / static_cast<double>(count - 1);
        b.assign(1, in.points[0]);
        u.assign(1, 0.0);
        plain::Walk walk(in.points, s);
        for (std::size_t i = 1; i < in.n; ++i) {
            const double d = s[i] - s[i - 1];
            const double x = d / step;
            const auto inserted = x <= 1.0 || !(x < 1e9) ? 0 : static_cast<std::size_t>(x);
            for (std::size_t j = 1; j <= inserted; ++j) {
                const double at =
                    d * static_cast<double>(j) / static_cast<double>(inserted + 1) + s[i - 1];
                b.push_back(walk.pointAt(at));
                u.push_back(at);
            }
            b.push_back(in.points[i]);
            u.push_back(s[i]);
        }
    });
    row.measure();
    row.expectSame(!in.isFinite() || (sameBits(a, b) && sameBits(t, u)));
}

void ratios(Row& row, const CurveInput& in) {
    const Values& s = in.svalues();
    Values a;
    Values b;
    row.add(kLibrary, [&] { in.curve.getRatioForward(a); });
    row.add(kPlain, [&] {
        constexpr double kSmall = 1.1754943508222875e-38;
        b.assign(in.n, 0.0);
        for (std::size_t i = 1; i + 1 < in.n; ++i) {
            b[i] = (s[i] - s[i - 1]) / (s[i + 1] - s[i - 1] + kSmall);
        }
        if (in.n > 2) {
            b.front() = b[1];
            b.back() = b[in.n - 2];
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

// -- Lists of values: of no curve, so on one shape alone ----

void cosineSample(Row& row, const CurveInput& in) {
    if (&in.shape != &qel_test::curveShapes().front()) {
        return;
    }
    Values a;
    Values b;
    row.add(kLibrary, [&] { in.curve.getCosineCurveSample(static_cast<int>(in.n), 0.0, 3.0, a); });
    row.add(kPlain, [&] {
        const double h = (3.0 - 0.0) / static_cast<double>(in.n + 1);
        b.resize(in.n + 2);
        for (std::size_t k = 0; k < in.n + 2; ++k) {
            b[k] = std::cos(0.0 + static_cast<double>(k) * h);
        }
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

void linearSample(Row& row, const CurveInput& in) {
    if (&in.shape != &qel_test::curveShapes().front()) {
        return;
    }
    Values a;
    Values b;
    row.add(kLibrary, [&] { in.curve.getLinearCurveSample(static_cast<int>(in.n), 1.0, 3.0, a); });
    row.add(kPlain, [&] {
        const double h = (3.0 - 1.0) / static_cast<double>(in.n + 1);
        b.resize(in.n + 2);
        for (std::size_t k = 0; k < in.n + 2; ++k) {
            b[k] = static_cast<double>(k) * h + 1.0;
        }
        b.back() = 3.0;
    });
    row.measure();
    row.expectSame(sameBits(a, b));
}

const bool registered =
    addCurveWork("resample_even_s", resampleEven) &&
    addCurveWork("resample_ascending_s", resampleSorted) &&
    addCurveWork("resample_any_s", resampleAnyOrder) && addCurveWork("resample_x", resampleX) &&
    addCurveWork("new_curve_at_s", newCurve) && addCurveWork("with_minimum_s", withMinimumS) &&
    addCurveWork("ratios_of_s", ratios) && addCurveWork("cosine_sample", cosineSample) &&
    addCurveWork("linear_sample", linearSample);

} // namespace
} // namespace qel_benchmark
