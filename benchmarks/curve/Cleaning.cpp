// Dropping points that repeat, crowd or turn back; reversing; lengthening the ends. In place, with
// new s-values.

#include "curve/CurveInput.h"
#include "curve/CurveLoops.h"

namespace qel_benchmark {
namespace {

// The library's change(curve) beside the loop's, which changes the points; s-values follow.
template <typename Change, typename Loop>
void compareChanges(Row& row, const CurveInput& in, const Change& change, const Loop& loop) {
    struct Plain {
        Points points;
        Values svalues;
    };
    const Plain original{in.points, in.svalues()};
    const auto changeByLoop = [&](Plain& c) {
        loop(c.points);
        keep(plain::arcValues(c.points, c.svalues));
    };
    row.addOnCopies(kLibrary, in.curve, in.bytes(), change);
    row.addOnCopies(kPlain, original, in.bytes(), changeByLoop);
    row.measure();
    if (row.canCompare()) {
        ParametricCurve curve(in.curve);
        change(curve);
        Plain copy = original;
        changeByLoop(copy);
        row.expectSame(sameBits(curve.getCurve(), copy.points) &&
                       sameBits(curve.getSvalues(), copy.svalues));
    }
}

void dropCrowded(const Points& points, Points& kept) {
    Values s;
    plain::arcValues(points, s);
    const double tolerance = qel::NumericalUtils::spacing(0.5) * 100.0;
    kept.push_back(points.front());
    std::size_t last = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        if (s[i] - s[last] > tolerance && s[i + 1] - s[i] > tolerance) {
            kept.push_back(points[i]);
            last = i;
        }
    }
    kept.push_back(points.back());
}

void eliminateDoublePoints(Row& row, const CurveInput& in) {
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.eliminateDoublePoints(2); },
        [](Points& points) {
            Points kept;
            kept.reserve(points.size());
            dropCrowded(points, kept);
            points.swap(kept);
        });
}

void makeUnique(Row& row, const CurveInput& in) {
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.makeUnique(); },
        [](Points& points) {
            points.erase(std::unique(points.begin(), points.end()), points.end());
            if (points.size() == 1) {
                points.push_back(Point(points.front()));
            }
        });
}

void makeContinuous(Row& row, const CurveInput& in) {
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.makeContinuous(); },
        [](Points& points) {
            Points kept;
            kept.reserve(points.size());
            kept.push_back(points.front());
            for (std::size_t i = 1; i + 1 < points.size(); ++i) {
                const Point d = points[i + 1] - kept.back();
                if (plain::dot(points[i] - kept.back(), d) > 0.0 &&
                    plain::dot(points[i] - points[i + 1], d) < 0.0) {
                    kept.push_back(points[i]);
                }
            }
            kept.push_back(points.back());
            points.swap(kept);
        });
}

void reverse(Row& row, const CurveInput& in) {
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.reverseCurve(); },
        [](Points& points) { std::reverse(points.begin(), points.end()); });
}

// Beyond an end by a tenth of the length, along its last step that is longer than the tolerance.
void expandBothEnds(Row& row, const CurveInput& in) {
    if (in.curve.getLength() == 0.0) {
        return; // refused
    }
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.expandCurveBothEnds(0.1); },
        [](Points& points) {
            Points kept;
            kept.reserve(points.size());
            dropCrowded(points, kept);
            Values s;
            const double distance = plain::arcValues(points, s) * 0.1;
            const std::size_t last = kept.size() - 1;
            points.front() = kept[0] + plain::unit(kept[0] - kept[1]) * distance;
            points.back() = kept[last] + plain::unit(kept[last] - kept[last - 1]) * distance;
        });
}

void expandByExtraPoints(Row& row, const CurveInput& in) {
    if (in.curve.getLength() == 0.0) {
        return; // refused
    }
    compareChanges(
        row, in, [](ParametricCurve& curve) { curve.expandCurveBothEndsExtraPoints(0.1); },
        [](Points& points) {
            Points kept;
            kept.reserve(points.size() + 2);
            dropCrowded(points, kept);
            Values s;
            const double distance = plain::arcValues(points, s) * 0.1;
            const std::size_t last = kept.size() - 1;
            const Point begin = kept[0] + plain::unit(kept[0] - kept[1]) * distance;
            const Point end = kept[last] + plain::unit(kept[last] - kept[last - 1]) * distance;
            points.insert(points.begin(), begin);
            points.push_back(end);
        });
}

const bool registered =
    addCurveWork("drop_crowded_points", eliminateDoublePoints) &&
    addCurveWork("drop_repeats", makeUnique) && addCurveWork("drop_turns", makeContinuous) &&
    addCurveWork("reverse", reverse) && addCurveWork("expand_ends", expandBothEnds) &&
    addCurveWork("expand_by_extra_points", expandByExtraPoints);

} // namespace
} // namespace qel_benchmark
