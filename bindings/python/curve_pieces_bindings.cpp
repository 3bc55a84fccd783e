#include <cstdint>
#include <utility>

#include <qel/ParametricCurve.h>

#include "bindings.h"
#include "curve_results.h"

namespace qel::python {

namespace {

using Curve = ParametricCurve;

py::tuple splitLoop(const Curve& curve, std::int64_t first, std::int64_t second) {
    Points forward;
    Points backward;
    {
        const py::gil_scoped_release unlocked;
        curve.getCurve(static_cast<std::size_t>(first), static_cast<std::size_t>(second), forward,
                       backward);
    }
    return py::make_tuple(pointsArray(std::move(forward)), pointsArray(std::move(backward)));
}

py::tuple cleanEnds(const py::object& points, const py::object& svalues, double sStart,
                    double sEnd) {
    Points cleaned = pointsArgument(points, "points");
    Svalues cleanedS = numbersArgument(svalues, "svalues");
    {
        const py::gil_scoped_release unlocked;
        Curve().getCurveCleanEnds(cleaned, cleanedS, sStart, sEnd);
    }
    return py::make_tuple(pointsArray(std::move(cleaned)), numbersArray(std::move(cleanedS)));
}

Curve resampled(const Curve& curve, const py::object& svalues, bool keepEnds) {
    const Svalues wanted = numbersArgument(svalues, "svalues");
    const py::gil_scoped_release unlocked;
    return *curve.makeCurveBySvalues(wanted, keepEnds);
}

void bindPieces(py::class_<Curve>& curve) {
    curve
        .def(
            "sub_curve",
            [](const Curve& c, double sStart, double sEnd) {
                return pointsFrom([&](Points& p) { c.getCurve(sStart, sEnd, p); });
            },
            py::arg("s_start"), py::arg("s_end"),
            "Points of the piece between two s-values, (m, 3) float64. Raises qel.InternalError. "
            "O(log n + m).")
        .def(
            "sub_curve_with_svalues",
            [](const Curve& c, double sStart, double sEnd) {
                return pointsAndSvaluesFrom(
                    [&](Points& p, Svalues& s) { c.getCurve(sStart, sEnd, p, s); });
            },
            py::arg("s_start"), py::arg("s_end"),
            "(points, svalues) of the piece between two s-values, (m, 3) and (m,) float64. Raises "
            "qel.InternalError. O(log n + m).")
        .def(
            "begin_to",
            [](const Curve& c, double s) {
                return pointsAndSvaluesFrom(
                    [&](Points& p, Svalues& sOut) { c.getCurveBegin(s, p, sOut); });
            },
            py::arg("s"), "(points, svalues) of the piece from the start of the curve to s.")
        .def(
            "end_from",
            [](const Curve& c, double s) {
                return pointsAndSvaluesFrom(
                    [&](Points& p, Svalues& sOut) { c.getCurveEnd(s, p, sOut); });
            },
            py::arg("s"), "(points, svalues) of the piece from s to the end of the curve.")
        .def("split_loop", &splitLoop, py::arg("first"), py::arg("second"),
             "(forward, backward): the arcs of the closed loop between two vertices, both with "
             "both ends. Raises qel.InternalError for an index that is not a point's or equal "
             "ones. O(n).")
        .def(
            "loop_from",
            [](const Curve& c, std::int64_t index) {
                return pointsFrom(
                    [&](Points& p) { c.getCurve(static_cast<std::size_t>(index), p); });
            },
            py::arg("index"), "The closed loop started and ended at a vertex, (n + 1, 3). O(n).")
        .def(
            "points_between",
            [](const Curve& c, std::int64_t first, std::int64_t second) {
                return pointsFrom([&](Points& p) { c.getCurve(first, second, p); });
            },
            py::arg("first"), py::arg("second"),
            "The points first to second, both included. Raises qel.InternalError for an index that "
            "is not a point's or first greater than second.")
        .def_static("clean_ends", &cleanEnds, py::arg("points"), py::arg("svalues"),
                    py::arg("s_start"), py::arg("s_end"),
                    "(points, svalues) without leading and trailing runs in which s does not "
                    "increase, widened to s_start..s_end. Raises qel.InternalError. O(n).");
}

void bindSampling(py::class_<Curve>& curve) {
    curve
        .def(
            "equidistant_points",
            [](const Curve& c, int count) {
                return pointsFrom([&](Points& p) { c.getCurveForEquidistantS(p, count); });
            },
            py::arg("count"),
            "Points at equal steps of s, (count, 3) float64. Raises qel.InternalError for count "
            "below 2. O(n + count).")
        .def(
            "points_at_svalues",
            [](const Curve& c, const py::object& svalues, bool keepEnds) {
                const Svalues s = numbersArgument(svalues, "svalues");
                return pointsFrom([&](Points& p) { c.getCurveBySvalues(p, s, keepEnds); });
            },
            py::arg("svalues"), py::arg("keep_ends") = false,
            "Points at s-values (m,) float64 in any order, (m, 3). keep_ends: the curve's end "
            "points instead of the first and the last. Raises qel.InternalError for m below 2.")
        .def(
            "x_at_svalues",
            [](const Curve& c, const py::object& svalues, bool keepEnds) {
                const Svalues s = numbersArgument(svalues, "svalues");
                return numbersFrom([&](Svalues& x) { c.getCurveXBySvalues(x, s, keepEnds); });
            },
            py::arg("svalues"), py::arg("keep_ends") = false,
            "The x components of points_at_svalues, (m,).")
        .def("resampled", &resampled, py::arg("svalues"), py::arg("keep_ends") = false,
             "The curve through points_at_svalues, with computed s.")
        .def(
            "points_with_minimum_s",
            [](const Curve& c, int count) {
                return pointsAndSvaluesFrom(
                    [&](Points& p, Svalues& s) { c.getCurveWithMinimumS(p, s, count); });
            },
            py::arg("count"),
            "(points, svalues) with points inserted so that no step of s is longer than "
            "1 / (count - 1). O(n + result).")
        .def(
            "ratio_forward",
            [](const Curve& c) { return numbersFrom([&](Svalues& r) { c.getRatioForward(r); }); },
            "(n,): at every vertex the step of s before it over the sum of both steps. O(n).")
        .def(
            "ratio_backward",
            [](const Curve& c) { return numbersFrom([&](Svalues& r) { c.getRatioBackward(r); }); },
            "(n,): at every vertex the step of s after it over the sum of both steps. O(n).")
        .def_static(
            "cosine_samples",
            [](int count, double from, double to) {
                return numbersFrom(
                    [&](Svalues& v) { Curve().getCosineCurveSample(count, from, to, v); });
            },
            py::arg("count"), py::arg("start"), py::arg("end"),
            "Cosines of count + 2 equally spaced angles in radians, both ends included. Raises "
            "qel.InternalError for a negative count.")
        .def_static(
            "linear_samples",
            [](int count, double from, double to) {
                return numbersFrom(
                    [&](Svalues& v) { Curve().getLinearCurveSample(count, from, to, v); });
            },
            py::arg("count"), py::arg("start"), py::arg("end"),
            "count + 2 equally spaced values, both ends included. Raises qel.InternalError for a "
            "negative count.");
}

} // namespace

void bindCurvePieces(py::class_<Curve>& curve) {
    bindPieces(curve);
    bindSampling(curve);
}

} // namespace qel::python
