#include <cstddef>
#include <optional>
#include <sstream>
#include <vector>

#include <pybind11/stl.h>

#include <qel/ParametricCurve.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

using Points = std::vector<TripletBase<double>>;

ParametricCurve::dim dimensionArgument(int dimension) {
    if (dimension < 1 || dimension > 3) {
        throw py::value_error("dimension must be 1, 2 or 3");
    }
    return static_cast<ParametricCurve::dim>(dimension - 1);
}

template <typename View>
auto copyOf(const View& view) {
    std::vector<typename View::value_type> copy(view.size());
    for (std::size_t i = 0; i < view.size(); ++i) {
        copy[i] = view[i];
    }
    return copy;
}

ParametricCurve makeCurve(const py::object& points, const py::object& svalues, int dimension) {
    const ParametricCurve::dim dim = dimensionArgument(dimension);
    std::optional<std::vector<double>> given;
    if (!svalues.is_none()) {
        given = copyOf(svaluesArgument(requireArray(svalues, "svalues")));
    }
    return visitTriplets(requireArray(points, "points"), "points", [&](const auto& view) {
        const py::gil_scoped_release unlocked;
        return given ? ParametricCurve(copyOf(view), *given, dim)
                     : ParametricCurve(copyOf(view), dim);
    });
}

// Read-only, and keeps the curve alive.
py::array viewOf(const py::object& curve, const double* first, const Shape& shape) {
    py::array view(py::dtype::of<double>(), shape, first, curve);
    view.attr("flags").attr("writeable") = false;
    return view;
}

py::array pointsOf(const py::object& self) {
    static_assert(sizeof(TripletBase<double>) == 3 * sizeof(double), "points lie side by side");
    const Points& points = self.cast<const ParametricCurve&>().getCurve();
    return viewOf(self, points.empty() ? nullptr : &points.front().x,
                  {static_cast<py::ssize_t>(points.size()), 3});
}

py::array svaluesOf(const py::object& self) {
    const std::vector<double>& svalues = self.cast<const ParametricCurve&>().getSvalues();
    return viewOf(self, svalues.data(), {static_cast<py::ssize_t>(svalues.size())});
}

py::array_t<double> toArray(const Points& points) {
    py::array_t<double> array(Shape{static_cast<py::ssize_t>(points.size()), 3});
    for (std::size_t i = 0; i < points.size(); ++i) {
        array.mutable_at(i, 0) = points[i].x;
        array.mutable_at(i, 1) = points[i].y;
        array.mutable_at(i, 2) = points[i].z;
    }
    return array;
}

// A method that changes a copy of the curve and returns it.
template <typename... Arguments>
auto changed(void (ParametricCurve::*change)(Arguments...)) {
    return [change](const ParametricCurve& curve, Arguments... arguments) {
        const py::gil_scoped_release unlocked;
        ParametricCurve result(curve);
        (result.*change)(arguments...);
        return result;
    };
}

py::array_t<double> subCurve(const ParametricCurve& curve, double sStart, double sEnd) {
    Points points;
    {
        const py::gil_scoped_release unlocked;
        curve.getCurve(sStart, sEnd, points);
    }
    return toArray(points);
}

py::array_t<double> equidistant(const ParametricCurve& curve, int count) {
    Points points;
    {
        const py::gil_scoped_release unlocked;
        curve.getCurveForEquidistantS(points, count);
    }
    return toArray(points);
}

std::string describe(const ParametricCurve& curve) {
    std::ostringstream text;
    text << "<qel.ParametricCurve of " << curve.getSize() << " points, length " << curve.getLength()
         << ">";
    return text.str();
}

void bindOperations(py::class_<ParametricCurve>& curve) {
    curve
        .def("sub_curve", &subCurve, py::arg("s_start"), py::arg("s_end"),
             "Points of the piece between two s-values, (m, 3) float64. Raises qel.Error. O(n).")
        .def("equidistant_points", &equidistant, py::arg("count"),
             "Points at equal steps of s, (m, 3) float64. Raises qel.Error. O(n + count).")
        .def("reversed", changed(&ParametricCurve::reverseCurve), "The curve run backwards. O(n).")
        .def("expanded", changed(&ParametricCurve::expandCurveBothEnds), py::arg("fraction"),
             "The curve with both ends extended along their segments by a fraction of its length. "
             "Raises qel.InternalError for a curve of no length. O(n).")
        .def("without_double_points", changed<int>(&ParametricCurve::eliminateDoublePoints),
             py::arg("exponent"), "The curve without repeated points. O(n).");
}

} // namespace

void bindParametricCurve(py::module_& module) {
    py::class_<ParametricCurve> curve(module, "ParametricCurve",
                                      "A polyline with a parameter s from 0 to 1. Immutable.");
    curve
        .def(py::init(&makeCurve), py::arg("points"), py::arg("svalues") = py::none(),
             py::arg("dimension") = 3,
             "points: (n, 3) float32 or float64; svalues: (n,) float64 or None for arc length; "
             "dimension: 1, 2 or 3. Copies both. Raises qel.Error for what makes no curve. O(n).")
        .def_property_readonly("points", &pointsOf,
                               "(n, 3) float64, a read-only view that keeps the curve.")
        .def_property_readonly("svalues", &svaluesOf,
                               "(n,) float64, a read-only view that keeps the curve.")
        .def_property_readonly("length", &ParametricCurve::getLength, "Unit of the points.")
        .def_property_readonly(
            "dimension", [](const ParametricCurve& c) { return 1 + int{c.getDimension()}; },
            "1, 2 or 3.")
        .def("__len__", &ParametricCurve::getSize)
        .def("__iter__", [](const py::object& self) { return py::iter(pointsOf(self)); })
        .def("__repr__", &describe)
        .def("__copy__", [](const py::object& self) { return self; })
        .def("__deepcopy__", [](const py::object& self, const py::object&) { return self; })
        .def(
            "point_at_parameter",
            [](const ParametricCurve& c, double s) {
                return python::toArray(c.getPointAtParameter(s));
            },
            py::arg("s"), "The point at s, (3,) float64. Raises qel.Error. O(log n).")
        .def(
            "project_point",
            [](const ParametricCurve& c, const py::object& probe) {
                double s = 0.0;
                const auto foot = c.projectPoint(pointArgument(probe, "probe"), s);
                return py::make_tuple(python::toArray(foot), s);
            },
            py::arg("probe"),
            "The nearest place on the edges at the nearest vertex, and its s. Raises qel.Error. "
            "O(n).")
        .def(
            "closest_point",
            [](const ParametricCurve& c, const py::object& probe) {
                return c.getClosestPoint(pointArgument(probe, "probe"));
            },
            py::arg("probe"), "Index of the nearest vertex. Raises qel.Error. O(n).");
    bindOperations(curve);
}

} // namespace qel::python
