#include <cstdint>
#include <vector>

#include <qel/CurveCrossings.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "array_arguments.h"
#include "bindings.h"

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

py::list crossings(const py::object& curve, const py::object& other) {
    const CurveView first = curveArgument(curve);
    const CurveView second = curveArgument(other);
    std::vector<CurveCrossing> found;
    {
        const py::gil_scoped_release unlocked;
        found = findCrossings(first, second);
    }
    return toList(found);
}

py::array_t<std::int64_t> keptByError(const py::object& curve, double tolerance) {
    const CurveView view = curveArgument(curve);
    std::vector<std::size_t> kept;
    {
        const py::gil_scoped_release unlocked;
        kept = simplifyToError(view, tolerance);
    }
    return toArray(kept);
}

py::dict curveShape(const py::object& curve) {
    const CurveView view = curveArgument(curve);
    const auto n = static_cast<py::ssize_t>(view.size());
    py::array_t<double> tangent(Shape{n, 3});
    py::array_t<double> curvature(n);
    py::array_t<double> turningAngle(n);
    const CurveShapeFields out{{tangent.mutable_data(), view.size()},
                               {curvature.mutable_data(), view.size()},
                               {turningAngle.mutable_data(), view.size()}};
    {
        const py::gil_scoped_release unlocked;
        computeCurveShape(view, out);
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

} // namespace

void bindCurveFunctions(py::module_& module) {
    module.def("find_crossings", &crossings, py::arg("curve"), py::arg("other"),
               "All crossings of two curves in the plane, in order: a list of dicts with kind "
               "('point' or 'overlap'), begin, end, s_begin, s_end, edge, other_begin, other_end "
               "and other_edge. A curve is a ParametricCurve or points (n, 3).");
    module.def("simplify_to_error", &keptByError, py::arg("curve"), py::arg("tolerance"),
               "Indices (int64) of the vertices to keep so that none is farther than the "
               "tolerance, in the points' unit. Raises qel.DataInvalid for one that is negative or "
               "NaN.");
    module.def("curve_shape", &curveShape, py::arg("curve"),
               "A dict of tangent (n, 3), curvature (n,), one over the points' unit, and "
               "turning_angle (n,) in radians at every vertex. O(n).");
    module.def("signed_area", &signedArea, py::arg("curve"),
               "Signed area of a closed curve in x and y, positive if counter-clockwise. O(n).");
}

} // namespace qel::python
