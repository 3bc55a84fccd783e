#include <cstdint>
#include <vector>

#include <qel/CurveCrossings.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "array_arguments.h"
#include "bindings.h"
#include "progress_argument.h"

namespace qel::python {

namespace {

py::array_t<std::int64_t> toArray(const std::vector<std::size_t>& indices) {
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(indices.size()));
    for (std::size_t i = 0; i < indices.size(); ++i) {
        array.mutable_at(i) = static_cast<std::int64_t>(indices[i]);
    }
    return array;
}

py::list toList(const std::vector<CurveCrossing>& crossings) {
    py::list list;
    for (const CurveCrossing& crossing : crossings) {
        py::dict entry;
        entry["kind"] = crossing.kind == CurveCrossing::Kind::point ? "point" : "overlap";
        entry["begin"] = python::toArray(crossing.begin);
        entry["end"] = python::toArray(crossing.end);
        entry["s_begin"] = crossing.sBegin;
        entry["s_end"] = crossing.sEnd;
        entry["edge"] = crossing.edge;
        entry["other_begin"] = crossing.otherBegin;
        entry["other_end"] = crossing.otherEnd;
        entry["other_edge"] = crossing.otherEdge;
        list.append(entry);
    }
    return list;
}

py::list crossings(const py::object& curve, const py::object& other, const py::object& callable) {
    const CurveView first = curveArgument(curve);
    const CurveView second = curveArgument(other);
    const Progress progress = progressArgument(callable);
    std::vector<CurveCrossing> found;
    {
        const py::gil_scoped_release unlocked;
        found = findCrossings(first, second, progress);
    }
    return toList(found);
}

// The crossings with what two points or a point and a normal determine.
using FindByTwo = std::vector<CurveCrossing> (*)(const CurveView&, const TripletBase<double>&,
                                                 const TripletBase<double>&);

auto crossingsByTwo(FindByTwo find, const char* firstName, const char* secondName) {
    return [=](const py::object& curve, const py::object& first, const py::object& second) {
        const CurveView view = curveArgument(curve);
        const TripletBase<double> a = pointArgument(first, firstName);
        const TripletBase<double> b = pointArgument(second, secondName);
        std::vector<CurveCrossing> found;
        {
            const py::gil_scoped_release unlocked;
            found = find(view, a, b);
        }
        return toList(found);
    };
}

py::array_t<std::int64_t> keptByError(const py::object& curve, double tolerance,
                                      const py::object& callable) {
    const CurveView view = curveArgument(curve);
    const Progress progress = progressArgument(callable);
    std::vector<std::size_t> kept;
    {
        const py::gil_scoped_release unlocked;
        kept = simplifyToError(view, tolerance, progress);
    }
    return toArray(kept);
}

py::tuple keptByCount(const py::object& curve, std::size_t count, const py::object& callable) {
    const CurveView view = curveArgument(curve);
    const Progress progress = progressArgument(callable);
    std::vector<std::size_t> kept;
    double error = 0.0;
    {
        const py::gil_scoped_release unlocked;
        kept = simplifyToCount(view, count, error, progress);
    }
    return py::make_tuple(toArray(kept), error);
}

py::dict curveShape(const py::object& curve, const py::object& svalues) {
    const CurveView view = curveArgument(curve);
    ScalarView<const double> places;
    if (!svalues.is_none()) {
        places = svaluesArgument(requireArray(svalues, "svalues"));
    }
    const std::size_t count = svalues.is_none() ? view.size() : places.size();
    const auto n = static_cast<py::ssize_t>(count);
    py::array_t<double> tangent(Shape{n, 3});
    py::array_t<double> curvature(n);
    py::array_t<double> turningAngle(n);
    const CurveShapeFields out{{tangent.mutable_data(), count},
                               {curvature.mutable_data(), count},
                               {turningAngle.mutable_data(), count}};
    const bool atVertices = svalues.is_none();
    {
        const py::gil_scoped_release unlocked;
        if (atVertices) {
            computeCurveShape(view, out);
        } else {
            computeCurveShape(view, places, out);
        }
    }
    py::dict shape;
    shape["tangent"] = tangent;
    shape["curvature"] = curvature;
    shape["turning_angle"] = turningAngle;
    return shape;
}

double signedArea(const py::object& curve) {
    const CurveView view = curveArgument(curve);
    const py::gil_scoped_release unlocked;
    return computeSignedArea(view);
}

int orientation(const py::object& curve) {
    const CurveView view = curveArgument(curve);
    const py::gil_scoped_release unlocked;
    return computeOrientation(view);
}

void bindCrossings(py::module_& module) {
    module.def("find_crossings", &crossings, py::arg("curve"), py::arg("other"),
               py::arg("progress") = py::none(),
               "All crossings of two curves in the plane, in order: a list of dicts with kind "
               "('point' or 'overlap'), begin, end, s_begin, s_end, edge, other_begin, other_end "
               "and other_edge. A curve is a ParametricCurve or points (n, 3). Near "
               "O((n + m) log(n + m) + crossings).");
    module.def("find_crossings_with_segment",
               crossingsByTwo(&findCrossingsWithSegment, "start", "end"), py::arg("curve"),
               py::arg("start"), py::arg("end"),
               "All crossings of a curve in the plane with the segment between two points, as "
               "find_crossings; other_begin is the fraction of the segment. O(n).");
    module.def("find_crossings_with_line",
               crossingsByTwo(&findCrossingsWithLine, "first", "second"), py::arg("curve"),
               py::arg("first"), py::arg("second"),
               "The same with the endless line through two points. Raises qel.DataInvalid for "
               "equal ones.");
    module.def("find_crossings_with_plane",
               crossingsByTwo(&findCrossingsWithPlane, "point", "normal"), py::arg("curve"),
               py::arg("point"), py::arg("normal"),
               "All crossings of a curve in space with the plane through a point, square to a "
               "normal. Raises qel.DataInvalid for a normal of no length. O(n).");
}

} // namespace

void bindCurveFunctions(py::module_& module) {
    bindCrossings(module);
    module.def("simplify_to_error", &keptByError, py::arg("curve"), py::arg("tolerance"),
               py::arg("progress") = py::none(),
               "Indices (int64) of the vertices to keep so that none is farther than the "
               "tolerance, in the points' unit. Raises qel.DataInvalid for one that is negative or "
               "NaN. progress: stops the search where it returns False; the array is then empty.");
    module.def("simplify_to_count", &keptByCount, py::arg("curve"), py::arg("count"),
               py::arg("progress") = py::none(),
               "(indices, error): at most count vertices to keep, int64, and the largest distance "
               "of a vertex from its segment that remains, in the points' unit. Raises "
               "qel.DataInvalid for a count below 2, or below 3 or 4 for a closed curve.");
    module.def("curve_shape", &curveShape, py::arg("curve"), py::arg("svalues") = py::none(),
               "A dict of tangent (n, 3), curvature (n,), one over the points' unit, and "
               "turning_angle (n,) in radians at every vertex, or at s-values (n,) float64. "
               "Raises qel.DataInvalid for an s-value that is NaN.");
    module.def("signed_area", &signedArea, py::arg("curve"),
               "Signed area of a closed curve in x and y, positive if counter-clockwise. O(n).");
    module.def("orientation", &orientation, py::arg("curve"),
               "1 if a closed curve in x and y runs counter-clockwise, -1 if clockwise, 0 if its "
               "exact area is zero. O(n).");
}

} // namespace qel::python
