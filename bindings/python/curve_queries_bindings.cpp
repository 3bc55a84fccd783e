#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/iostream.h>
#include <pybind11/stl.h>

#include <qel/ParametricCurve.h>

#include "bindings.h"
#include "curve_results.h"

namespace qel::python {

namespace {

using Curve = ParametricCurve;

std::size_t extremeIndex(const Curve& curve, const std::string& component, bool largest) {
    if (component == "x") {
        return largest ? curve.getMaxXid() : curve.getMinXid();
    }
    if (component == "y") {
        return largest ? curve.getMaxYid() : curve.getMinYid();
    }
    if (component == "z") {
        return largest ? curve.getMaxZid() : curve.getMinZid();
    }
    throw py::value_error("component must be 'x', 'y' or 'z'");
}

py::tuple bounds(const Curve& curve) {
    TripletBase<double> low;
    TripletBase<double> high;
    curve.getMinMax(low.x, high.x, low.y, high.y, low.z, high.z);
    return py::make_tuple(python::toArray(low), python::toArray(high));
}

py::tuple projectPoint(const Curve& curve, const py::object& probe) {
    double s = 0.0;
    const auto foot = curve.projectPoint(pointArgument(probe, "probe"), s);
    return py::make_tuple(python::toArray(foot), s);
}

py::array_t<double> svaluesOfPoints(const Curve& curve, const py::object& points, bool normalize) {
    const Points given = pointsArgument(points, "points");
    return numbersFrom([&](Svalues& svalues) { curve.getSvalues(given, svalues, normalize); });
}

py::tuple normalDistance(const Curve& curve, int first, int second) {
    const int size = static_cast<int>(curve.getSize());
    if (first < 0 || second < first || second >= size) {
        throw py::index_error("first and second must be vertices of the curve, in order");
    }
    double distance = 0.0;
    int index = 0;
    bool done = false;
    curve.calculateNormalDistanceFromTwoPoints(first, second, distance, index, done);
    return py::make_tuple(distance, index, done);
}

py::tuple sharpestCorners(const Curve& curve, std::int64_t first, std::int64_t second) {
    std::pair<double, std::size_t> a;
    std::pair<double, std::size_t> b;
    curve.findTwoPointsWithMinAngle(static_cast<std::size_t>(first),
                                    static_cast<std::size_t>(second), a, b);
    return py::make_tuple(a, b);
}

py::object crossingOrNone(bool crosses, const TripletBase<float>& point) {
    return crosses ? py::object(python::toArray({point.x, point.y, point.z})) : py::none();
}

// Two or three numbers, of which the first two count, in single precision.
Doublet planePoint(const py::object& object, const std::string& name) {
    const bool isPair = py::isinstance<py::sequence>(object) && py::len(object) == 2;
    const py::object triple =
        isPair ? py::make_tuple(object[py::int_(0)], object[py::int_(1)], 0.0) : object;
    const TripletBase<float> point = floatPointArgument(triple, name);
    return {point.x, point.y};
}

py::object crossingWithSegment(const Curve& curve, const py::object& start, const py::object& end) {
    TripletBase<float> point;
    const LineSegment2D segment(planePoint(start, "start"), planePoint(end, "end"));
    const bool crosses = curve.intersectWithSegment(segment, point);
    return crossingOrNone(crosses, point);
}

py::object crossingWithCurve(const Curve& curve, const Curve& other) {
    TripletBase<float> point;
    bool crosses = false;
    {
        const py::gil_scoped_release unlocked;
        crosses = curve.intersectWithCurve(other, point);
    }
    return crossingOrNone(crosses, point);
}

// A method that prints to Python's sys.stdout.
auto printing(void (Curve::*print)(const std::string&) const) {
    return [print](const Curve& curve, const std::string& title) {
        const py::scoped_ostream_redirect redirected;
        (curve.*print)(title);
    };
}

void bindReading(py::class_<Curve>& curve) {
    curve
        .def(
            "point_at_index",
            [](const Curve& c, int index) { return python::toArray(c.getPointAtIndex(index)); },
            py::arg("index"),
            "The vertex, (3,) float64. Raises qel.InternalError for an index that is not one's.")
        .def(
            "svalue_at_index", [](const Curve& c, int index) { return c.getSvalues(index); },
            py::arg("index"),
            "The s-value of a vertex. Raises qel.InternalError for an index that is not one's.")
        .def(
            "svalues_at_indices",
            [](const Curve& c, const std::vector<int>& indices) {
                return numbersArray(c.getSvalues(indices));
            },
            py::arg("indices"),
            "The s-values of a sequence of vertices, in its order. Raises qel.InternalError for an "
            "empty one or an index that is not a vertex's.")
        .def(
            "index_of_smallest",
            [](const Curve& c, const std::string& name) { return extremeIndex(c, name, false); },
            py::arg("component"), "The first vertex with the smallest 'x', 'y' or 'z'. O(n).")
        .def(
            "index_of_largest",
            [](const Curve& c, const std::string& name) { return extremeIndex(c, name, true); },
            py::arg("component"), "The first vertex with the largest 'x', 'y' or 'z'. O(n).")
        .def("bounds", &bounds,
             "(low, high): the smallest and largest components, (3,) each. O(n).")
        .def("nearest_to_svalue", &Curve::getClosestToSvaluePoint, py::arg("s"),
             "Index of the vertex whose s-value is nearest to s. O(log n).");
}

void bindProjection(py::class_<Curve>& curve) {
    curve
        .def(
            "point_at_parameter",
            [](const Curve& c, double s) { return python::toArray(c.getPointAtParameter(s)); },
            py::arg("s"), "The point at s, (3,) float64. O(log n).")
        .def("project_point", &projectPoint, py::arg("probe"),
             "(foot, s): the nearest place on the edges at the nearest vertex, and its s. O(n).")
        .def(
            "closest_point",
            [](const Curve& c, const py::object& probe) {
                return c.getClosestPoint(pointArgument(probe, "probe"));
            },
            py::arg("probe"), "Index of the nearest vertex, the first of equally near ones. O(n).")
        .def("svalues_of_points", &svaluesOfPoints, py::arg("points"), py::arg("normalize") = false,
             "s-values (m,) of points (m, 3) by projection. normalize: the first is set to 0 and "
             "the last to 1. Raises qel.InternalError for m below 2. O(m n).")
        .def("normal_distance_from_chord", &normalDistance, py::arg("first"), py::arg("second"),
             "(distance, index, done): the largest distance, in the points' unit, of the vertices "
             "between two from the line through these, where it is, and whether it is within "
             "rounding. Raises IndexError. O(second - first).")
        .def(
            "maximum_normal_distance",
            [](const Curve& c, const py::object& svalues) {
                const Svalues s = numbersArgument(svalues, "svalues");
                const py::gil_scoped_release unlocked;
                return c.getMaximumNormalDistance(s);
            },
            py::arg("svalues"),
            "Largest distance, in the points' unit, of the curve from the polyline through its "
            "points at the s-values. Raises qel.InternalError for fewer than two.")
        .def("sharpest_corners", &sharpestCorners, py::arg("first"), py::arg("second"),
             "The two sharpest corners between two vertices, the later first: pairs of angle in "
             "radians and index. Raises qel.InternalError for an index that is not a vertex's, "
             "equal ones, or fewer than two vertices between. O(second - first).");
}

void bindOutput(py::class_<Curve>& curve) {
    curve
        .def("intersect_with_segment", &crossingWithSegment, py::arg("start"), py::arg("end"),
             "The first crossing in x and y with the segment between two points, (3,) in single "
             "precision, or None. O(n).")
        .def("intersect_with_curve", &crossingWithCurve, py::arg("other"),
             "The first crossing in x and y with another curve, (3,) in single precision, or None. "
             "Near O(n + m).")
        .def(
            "export_to_file",
            [](const Curve& c, const std::string& path) {
                const py::gil_scoped_release unlocked;
                c.exportToFile(path);
            },
            py::arg("path"),
            "Writes a line of x, y and z for every vertex. Raises qel.DataInvalid where the file "
            "cannot be written.")
        .def("print_points", printing(&Curve::printCurve), py::arg("title") = "",
             "Prints the vertices to sys.stdout.")
        .def("print_svalues", printing(&Curve::printSvalues), py::arg("title") = "",
             "Prints the s-values to sys.stdout.")
        .def("print_points_and_svalues", printing(&Curve::printCurveAndSvalues),
             py::arg("title") = "", "Prints numbered vertices with s-values to sys.stdout.");
}

} // namespace

void bindCurveQueries(py::class_<Curve>& curve) {
    bindReading(curve);
    bindProjection(curve);
    bindOutput(curve);
}

} // namespace qel::python
