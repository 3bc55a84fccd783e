#include <algorithm>
#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include <qel/ParametricCurve.h>

#include "bindings.h"
#include "curve_results.h"

namespace qel::python {

namespace {

using Curve = ParametricCurve;

// -- Building ----

Curve::dim dimensionArgument(int dimension) {
    if (dimension < 1 || dimension > 3) {
        throw py::value_error("dimension must be 1, 2 or 3");
    }
    return static_cast<Curve::dim>(dimension - 1);
}

Curve::normalization normalizationArgument(const std::string& name) {
    const std::string names[] = {"x", "y", "z", "arc"};
    for (int i = 0; i < 4; ++i) {
        if (name == names[i]) {
            return static_cast<Curve::normalization>(i);
        }
    }
    throw py::value_error("normalization must be 'x', 'y', 'z' or 'arc'");
}

// Setters that compute no length keep the one that was there: here 0, for none computed.
Curve withoutLength() {
    return Curve(Points(2), Svalues(2), Curve::dim3D);
}

template <typename Source>
Curve makeFrom(const std::vector<Source>& points, const std::optional<Svalues>& svalues,
               const std::optional<Curve::normalization>& norm, Curve::dim dimension) {
    if (svalues) {
        return Curve(points, *svalues, dimension);
    }
    if (norm) {
        Curve curve = withoutLength();
        curve.setPoints(points, *norm, dimension);
        return curve;
    }
    return Curve(points, dimension);
}

Curve makeCurve(const py::object& points, const py::object& svalues, int dimension,
                const std::optional<std::string>& normalization) {
    const Curve::dim dim = dimensionArgument(dimension);
    std::optional<Svalues> given;
    if (!svalues.is_none()) {
        given = numbersArgument(svalues, "svalues");
    }
    std::optional<Curve::normalization> norm;
    if (normalization) {
        if (given) {
            throw py::value_error("give svalues or normalization, not both");
        }
        norm = normalizationArgument(*normalization);
    }
    return visitTriplets(requireArray(points, "points"), "points", [&](const auto& view) {
        const py::gil_scoped_release unlocked;
        return makeFrom(copyOf(view), given, norm, dim);
    });
}

// One of setPointsX, setPointsY and setPointsZ, as a function that makes a curve.
using SetComponent = void (Curve::*)(const Svalues&);
using SetComponentAndSvalues = void (Curve::*)(const Svalues&, const Svalues&);

auto fromComponent(SetComponent set, SetComponentAndSvalues setBoth) {
    return [set, setBoth](const py::object& values, const py::object& svalues) {
        const Svalues numbers = numbersArgument(values, "values");
        Curve curve = withoutLength();
        if (svalues.is_none()) {
            (curve.*set)(numbers);
        } else {
            (curve.*setBoth)(numbers, numbersArgument(svalues, "svalues"));
        }
        return curve;
    };
}

Curve fromXUniform(const py::object& values) {
    Curve curve = withoutLength();
    curve.setPointsXnormalizeUniform(numbersArgument(values, "values"));
    return curve;
}

void bindBuilding(py::class_<Curve>& curve) {
    const char* const component =
        "Points along one axis at values (n,) float64, with s-values (n,) or None for arc length. "
        "Raises qel.InternalError for fewer than two values. O(n).";
    curve
        .def(py::init(&makeCurve), py::arg("points"), py::arg("svalues") = py::none(),
             py::arg("dimension") = 3, py::arg("normalization") = py::none(),
             "points: (n, 3) float32 or float64; svalues: (n,) float64 or None for arc length; "
             "dimension: 1, 2 or 3; normalization: 'x', 'y', 'z' or 'arc' for s-values from that "
             "component or arc length, kept as supplied. Copies both. Raises qel.InternalError for "
             "what makes no curve. O(n).")
        .def_static("from_x", fromComponent(&Curve::setPointsX, &Curve::setPointsX),
                    py::arg("values"), py::arg("svalues") = py::none(), component)
        .def_static("from_y", fromComponent(&Curve::setPointsY, &Curve::setPointsY),
                    py::arg("values"), py::arg("svalues") = py::none(), component)
        .def_static("from_z", fromComponent(&Curve::setPointsZ, &Curve::setPointsZ),
                    py::arg("values"), py::arg("svalues") = py::none(), component)
        .def_static("from_x_uniform", &fromXUniform, py::arg("values"),
                    "One-dimensional points at values (n,) float64 with equally spaced s. O(n).");
}

// -- Pickling ----

bool sameNumbers(const Svalues& a, const Svalues& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

bool sameState(const Curve& a, const Curve& b) {
    const auto same = [](const auto& p, const auto& q) {
        return p.x == q.x && p.y == q.y && p.z == q.z;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same) &&
           sameNumbers(a.getSvalues(), b.getSvalues()) && !(a.getLength() < b.getLength()) &&
           !(b.getLength() < a.getLength());
}

std::optional<std::vector<TripletBase<float>>> inSinglePrecision(const Points& points) {
    std::vector<TripletBase<float>> rounded;
    rounded.reserve(points.size());
    for (const TripletBase<double>& point : points) {
        const TripletBase<float> single(static_cast<float>(point.x), static_cast<float>(point.y),
                                        static_cast<float>(point.z));
        if (double{single.x} < point.x || double{single.x} > point.x ||
            double{single.y} < point.y || double{single.y} > point.y ||
            double{single.z} < point.z || double{single.z} > point.z) {
            return std::nullopt;
        }
        rounded.push_back(single);
    }
    return rounded;
}

// A curve with the same points, s-values and length. s is computed again if that gives the same
// values and length; if not, the curve is given them, over a line of the length, which setPoints
// keeps.
Curve rebuilt(const Points& points, const Svalues& svalues, Curve::dim dimension, double length,
              bool isComputed, bool createdAsDouble) {
    const auto single = createdAsDouble ? std::nullopt : inSinglePrecision(points);
    if (isComputed) {
        Curve curve = single ? Curve(*single, dimension) : Curve(points, dimension);
        const bool hasLength = !(curve.getLength() < length) && !(length < curve.getLength());
        if (hasLength && sameNumbers(curve.getSvalues(), svalues)) {
            return curve;
        }
    }
    Curve curve;
    curve.setPointsX({0.0, length});
    if (single) {
        curve.setPoints(*single, svalues, dimension);
    } else {
        curve.setPoints(points, svalues, dimension);
    }
    return curve;
}

py::tuple pickled(const py::object& self) {
    const auto& curve = self.cast<const Curve&>();
    const bool isComputed = curve.getParametrization() == Curve::parametrizationComputed;
    const Curve again = rebuilt(curve.getCurve(), curve.getSvalues(), curve.getDimension(),
                                curve.getLength(), isComputed, curve.isCurveCreatedAsDouble());
    if (!sameState(curve, again)) {
        throw py::value_error("this curve cannot be pickled: its points, s-values and length do "
                              "not make a curve of its dimension");
    }
    return py::make_tuple(self.attr("points").attr("copy")(), self.attr("svalues").attr("copy")(),
                          int{curve.getDimension()}, curve.getLength(), isComputed,
                          curve.isCurveCreatedAsDouble());
}

Curve unpickled(const py::tuple& state) {
    if (state.size() != 6) {
        throw py::value_error("not the state of a ParametricCurve");
    }
    return rebuilt(pointsArgument(state[0], "points"), numbersArgument(state[1], "svalues"),
                   dimensionArgument(state[2].cast<int>() + 1), state[3].cast<double>(),
                   state[4].cast<bool>(), state[5].cast<bool>());
}

// -- Views ----

// Read-only, and keeps the curve alive.
py::array viewOf(const py::object& curve, const double* first, const Shape& shape) {
    py::array view(py::dtype::of<double>(), shape, first, curve);
    view.attr("flags").attr("writeable") = false;
    return view;
}

py::array pointsOf(const py::object& self) {
    const Points& points = self.cast<const Curve&>().getCurve();
    return viewOf(self, points.empty() ? nullptr : &points.front().x,
                  {static_cast<py::ssize_t>(points.size()), 3});
}

py::array svaluesOf(const py::object& self) {
    const Svalues& svalues = self.cast<const Curve&>().getSvalues();
    return viewOf(self, svalues.data(), {static_cast<py::ssize_t>(svalues.size())});
}

// Column i of the points.
auto componentOf(int i) {
    return
        [i](const py::object& self) -> py::object { return pointsOf(self).attr("T")[py::int_(i)]; };
}

void bindProperties(py::class_<Curve>& curve) {
    const char* const view = "(n,) float64, a read-only view that keeps the curve.";
    curve
        .def_property_readonly("points", &pointsOf,
                               "(n, 3) float64, a read-only view that keeps the curve.")
        .def_property_readonly("svalues", &svaluesOf, view)
        .def_property_readonly("x", componentOf(0), view)
        .def_property_readonly("y", componentOf(1), view)
        .def_property_readonly("z", componentOf(2), view)
        .def_property_readonly("length", &Curve::getLength,
                               "Unit of the points; 0 if s-values were given or came from "
                               "normalization, which compute none.")
        .def_property_readonly(
            "dimension", [](const Curve& c) { return 1 + int{c.getDimension()}; }, "1, 2 or 3.")
        .def_property_readonly(
            "parametrization",
            [](const Curve& c) {
                return c.getParametrization() == Curve::parametrizationComputed ? "computed"
                                                                                : "supplied";
            },
            "'computed' or 'supplied': where the s-values came from.")
        .def_property_readonly("created_as_double", &Curve::isCurveCreatedAsDouble,
                               "False if the points were given as float32.")
        .def_property_readonly(
            "axis_point", [](const Curve& c) { return python::toArray(c.getAxisPoint()); },
            "Origin (3,) of the axis of the last conversion to axial coordinates.")
        .def_property_readonly(
            "axis_direction", [](const Curve& c) { return python::toArray(c.getAxisDirection()); },
            "Unit direction (3,) of the axis of the last conversion to axial coordinates.")
        .def_property_readonly(
            "first_point", [](const Curve& c) { return python::toArray(c.getFirstPoint()); },
            "(3,) float64.")
        .def_property_readonly(
            "last_point", [](const Curve& c) { return python::toArray(c.getLastPoint()); },
            "(3,) float64.");
}

std::string describe(const Curve& curve) {
    std::ostringstream text;
    text << "<qel.ParametricCurve of " << curve.getSize() << " points, length " << curve.getLength()
         << ">";
    return text.str();
}

} // namespace

void bindParametricCurve(py::module_& module) {
    py::class_<Curve> curve(module, "ParametricCurve",
                            "A polyline with a parameter s from 0 to 1. Immutable.");
    bindBuilding(curve);
    bindProperties(curve);
    curve.def("__len__", &Curve::getSize)
        .def("__iter__", [](const py::object& self) { return py::iter(pointsOf(self)); })
        .def("__repr__", &describe)
        .def(py::pickle(&pickled, &unpickled))
        .def("__copy__", [](const py::object& self) { return self; })
        .def("__deepcopy__", [](const py::object& self, const py::object&) { return self; });
    bindCurveQueries(curve);
    bindCurvePieces(curve);
    bindCurveEditing(curve);
}

} // namespace qel::python
