// Inserting points in a curve, in place.

#include <utility>

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"

namespace qel_benchmark {
namespace {

using Spreads = std::vector<std::pair<double, double>>;

// What a plain loop leaves behind.
struct Refined {
    Points points;
    Values svalues;
};

// The library's refine(curve) beside the loop's, which fills points and s-values.
template <typename Refine, typename Loop>
void compareRefinements(Row& row, const CurveInput& in, const Refine& refine, const Loop& loop) {
    row.addOnCopies(kLibrary, in.curve, in.bytes(), refine);
    const Refined original{in.points, in.svalues()};
    row.addOnCopies(kPlain, original, in.bytes(), [&](Refined& r) {
        Refined result;
        result.points.reserve(2 * in.n);
        result.svalues.reserve(2 * in.n);
        loop(r, result);
        std::swap(r, result);
    });
    row.measure();
    if (row.canCompare()) {
        ParametricCurve curve(in.curve);
        refine(curve);
        Refined result;
        loop(original, result);
        row.expectSame(sameBits(curve.getCurve(), result.points) &&
                       sameBits(curve.getSvalues(), result.svalues));
    }
}

// Equal parts of every step of s that is longer than half of the average.
void byS(Row& row, const CurveInput& in) {
    const double step = std::max(1e-4, 0.5 / static_cast<double>(in.n));
    compareRefinements(
        row, in, [=](ParametricCurve& curve) { curve.tesselateCurvebySdistance(step); },
        [=](const Refined& from, Refined& to) {
            const double slack = qel::NumericalUtils::spacing(0.5);
            to.points.push_back(from.points[0]);
            to.svalues.push_back(from.svalues[0]);
            for (std::size_t i = 1; i < from.points.size(); ++i) {
                const double d = from.svalues[i] - from.svalues[i - 1];
                if (d > step) {
                    const Point edge = from.points[i] - from.points[i - 1];
                    double parts =
                        std::trunc((d + slack) / (step + std::numeric_limits<double>::min()));
                    parts += d / parts - slack > step ? 1.0 : 0.0;
                    for (double j = 1.0; j < parts; j += 1.0) {
                        const double t = j / parts;
                        to.points.push_back(from.points[i - 1] + edge * t);
                        to.svalues.push_back(from.svalues[i - 1] + t * d);
                    }
                }
                to.points.push_back(from.points[i]);
                to.svalues.push_back(from.svalues[i]);
            }
        });
}

// parts(i) - 1 points in the edge that ends at i, at j parts-ths of it.
template <typename Parts>
void insertInEdges(const Points& from, Points& to, const Parts& parts) {
    to.push_back(from[0]);
    for (std::size_t i = 1; i < from.size(); ++i) {
        const int count = parts(i);
        const Point edge = from[i] - from[i - 1];
        for (int j = 1; j < count; ++j) {
            to.push_back(from[i - 1] + edge * static_cast<double>(j) / static_cast<double>(count));
        }
        to.push_back(from[i]);
    }
}

void byNumber(Row& row, const CurveInput& in) {
    const double step = 0.25 / static_cast<double>(in.n);
    compareRefinements(
        row, in, [=](ParametricCurve& curve) { curve.tesselateCurvebyNumber(3, step); },
        [=](const Refined& from, Refined& to) {
            const double slack = qel::NumericalUtils::spacing(0.5);
            insertInEdges(from.points, to.points, [&](std::size_t i) {
                const double d = from.svalues[i] - from.svalues[i - 1];
                const double count = (d + slack) / step - 1.0;
                return count >= 3.0 ? 4 : count > 0.0 ? static_cast<int>(count) + 1 : 1;
            });
            keep(plain::arcValues(to.points, to.svalues));
        });
}

// Half of the average rise, so that about n points are inserted.
double riseOf(const Points& points) {
    double sum = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double rise = std::abs(points[i].y - points[i - 1].y);
        sum += rise > 0.0 ? rise : 0.0; // not NaN
    }
    return sum > 0.0 ? 0.5 * sum / static_cast<double>(points.size()) : 1.0;
}

void byMinimumY(Row& row, const CurveInput& in) {
    const double step = riseOf(in.points);
    compareRefinements(
        row, in, [=](ParametricCurve& curve) { curve.tesselateCurvebyMinYdistance(step); },
        [=](const Refined& from, Refined& to) {
            insertInEdges(from.points, to.points, [&](std::size_t i) {
                const double rise = from.points[i].y - from.points[i - 1].y;
                const double parts =
                    std::trunc(std::abs(rise + std::numeric_limits<double>::min()) / step);
                return parts > 1.0 ? static_cast<int>(parts) : 1;
            });
            keep(plain::arcValues(to.points, to.svalues));
        });
}

// x crowding towards both ends of each interval.
void byCosine(Row& row, const CurveInput& in) {
    constexpr int kCount = 3;
    compareRefinements(
        row, in, [=](ParametricCurve& curve) { curve.tesselateXCurvebyCosine(kCount); },
        [=](const Refined& from, Refined& to) {
            double c[kCount + 2];
            const double turn = 3.141592653589793 / (kCount + 1);
            for (int k = 0; k < kCount + 2; ++k) {
                c[k] = std::cos(0.0 + k * turn);
            }
            to.points.push_back(from.points[0]);
            to.svalues.push_back(from.svalues[0]);
            for (std::size_t i = 1; i < from.points.size(); ++i) {
                const double x = from.points[i - 1].x;
                const double width = from.points[i].x - x;
                const double s = from.svalues[i - 1];
                const double h = (from.svalues[i] - s) / (kCount + 1);
                for (int j = 1; j <= kCount; ++j) {
                    to.points.emplace_back(x - (c[j] - c[0]) * width * 0.5, 0.0, 0.0);
                    to.svalues.push_back(j * h + s);
                }
                to.points.push_back(from.points[i]);
                to.svalues.push_back(from.svalues[i]);
            }
        });
}

// No loop stands beside it: each interval is a small curve of its own.
void byCosineWithSpreads(Row& row, const CurveInput& in) {
    const Spreads spreads(in.n - 1, {0.2, 0.3});
    row.addOnCopies(kLibrary, in.curve, in.bytes(),
                    [&](ParametricCurve& curve) { curve.tesselateXCurvebyCosine(3, spreads); });
    row.measure();
}

const bool registered =
    addCurveWork("insert_by_s", byS) && addCurveWork("insert_by_number", byNumber) &&
    addCurveWork("insert_by_y", byMinimumY) && addCurveWork("insert_by_cosine", byCosine) &&
    addCurveWork("insert_by_cosine_and_spreads", byCosineWithSpreads);

} // namespace
} // namespace qel_benchmark
