#include <cstdint>
#include <optional>
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
using Spreads = std::vector<std::pair<double, double>>;

// A method that changes a copy of the curve and returns it.
template <typename... Arguments>
auto changed(void (Curve::*change)(Arguments...)) {
    return [change](const Curve& curve, Arguments... arguments) {
        return changedBy(curve, [&](Curve& result) { (result.*change)(arguments...); });
    };
}

Curve tessellateXByCosine(const Curve& curve, int count, const std::optional<Spreads>& spreads) {
    return changedBy(curve, [&](Curve& result) {
        if (spreads) {
            result.tesselateXCurvebyCosine(count, *spreads);
        } else {
            result.tesselateXCurvebyCosine(count);
        }
    });
}

Curve withoutDoublePoints(const Curve& curve, int exponent,
                          const std::optional<std::string>& precision) {
    if (precision && *precision != "single" && *precision != "double") {
        throw py::value_error("precision must be 'single', 'double' or None");
    }
    return changedBy(curve, [&](Curve& result) {
        if (precision) {
            result.eliminateDoublePoints(exponent, *precision == "single" ? Curve::singlePrecision
                                                                          : Curve::doublePrecision);
        } else {
            result.eliminateDoublePoints(exponent);
        }
    });
}

py::tuple optimized(const Curve& curve, int count, double tolerance) {
    std::vector<int> ids;
    Curve result = changedBy(
        curve, [&](Curve& copy) { copy.optimizeByNormalDistance(count, ids, tolerance); });
    const std::vector<std::int64_t> kept(ids.begin(), ids.end());
    return py::make_tuple(std::move(result), numbersArray(std::vector<std::int64_t>(kept)));
}

Curve toAxialRadial(const Curve& curve, const py::object& point, const py::object& direction) {
    const TripletBase<float> origin = floatPointArgument(point, "point");
    const TripletBase<float> axis = floatPointArgument(direction, "direction");
    return changedBy(curve, [&](Curve& result) { result.convertToART0(origin, axis); });
}

Curve toAxialRadialAngle(const Curve& curve, const py::object& point, const py::object& direction,
                         int referenceIndex, double referenceAngle) {
    const TripletBase<float> origin = floatPointArgument(point, "point");
    const TripletBase<float> axis = floatPointArgument(direction, "direction");
    return changedBy(curve, [&](Curve& result) {
        result.convertToART(origin, axis, referenceIndex, referenceAngle);
    });
}

Curve rotated(const Curve& curve, const py::object& centre, const py::object& axis, double angle) {
    const TripletBase<double> origin = pointArgument(centre, "centre");
    const TripletBase<double> vector = pointArgument(axis, "axis");
    return changedBy(curve,
                     [&](Curve& result) { result.rotateAroundVector(origin, vector, angle); });
}

void bindInserting(py::class_<Curve>& curve) {
    curve
        .def("tessellated_by_s_distance", changed(&Curve::tesselateCurvebySdistance),
             py::arg("max_step"),
             "The curve with every step of s longer than max_step split into equal parts. s is "
             "interpolated. Raises qel.DataInvalid for max_step outside 0.0001..1. O(n + result).")
        .def("tessellated_by_number", changed(&Curve::tesselateCurvebyNumber),
             py::arg("max_inserted"), py::arg("step"),
             "The curve with as many equally spaced points in every interval as whole steps of s "
             "fit, less one, at most max_inserted. Raises qel.InternalError for a step that is not "
             "positive or a negative max_inserted. O(n + result).")
        .def("tessellated_by_min_y_distance", changed(&Curve::tesselateCurvebyMinYdistance),
             py::arg("step"),
             "The curve with as many equally spaced points in every interval as whole steps fit "
             "into its rise in y, less one. step: unit of the points. Raises qel.InternalError for "
             "a step that is not positive. O(n + result).")
        .def("tessellated_x_by_cosine", &tessellateXByCosine, py::arg("count"),
             py::arg("spreads") = py::none(),
             "The curve with count points (x, 0, 0) inserted into every interval, x spaced by "
             "cosine. spreads: n - 1 pairs, the shares of an interval over which x stays at its "
             "start and at its end. Raises qel.InternalError. O(n count).");
}

void bindCleaning(py::class_<Curve>& curve) {
    curve
        .def("without_double_points", &withoutDoublePoints, py::arg("exponent"),
             py::arg("precision") = py::none(),
             "The curve without inner points whose s is within 10**exponent spacings of a "
             "neighbour's. precision: 'single', 'double' or None for that of the points given. "
             "O(n).")
        .def("without_repeated_points", changed(&Curve::makeUnique),
             "The curve without points that equal the point before them. O(n).")
        .def("made_continuous", changed(&Curve::makeContinuous),
             "The curve without inner points that do not lie between the point kept before and "
             "the next one, along the chord between those. O(n).")
        .def("reversed", changed(&Curve::reverseCurve), "The curve run backwards. O(n).")
        .def("optimized_by_normal_distance", &optimized, py::arg("count"), py::arg("tolerance"),
             "(curve, ids): the curve of at most count of its points, none dropped farther than "
             "the tolerance (unit of the points) from the chords if count allows, and the indices "
             "kept, int64. Raises qel.InternalError. About O(n log count).");
}

void bindMoving(py::class_<Curve>& curve) {
    curve
        .def("expanded", changed(&Curve::expandCurveBothEnds), py::arg("fraction"),
             "The curve with both ends moved outward along their segments by a fraction of its "
             "length. Raises qel.InternalError for a curve of no length. O(n).")
        .def("expanded_at_begin", changed(&Curve::expandCurveBegin), py::arg("fraction"),
             "The same at the first point alone.")
        .def("expanded_at_end", changed(&Curve::expandCurveEnd), py::arg("fraction"),
             "The same at the last point alone.")
        .def("expanded_by_extra_points", changed(&Curve::expandCurveBothEndsExtraPoints),
             py::arg("fraction"), "The curve with a point added beyond either end.")
        .def("to_axial_radial", &toAxialRadial, py::arg("point"), py::arg("direction"),
             "The curve in (axial, radial, 0) about the axis through point along direction, which "
             "are rounded to single precision. Raises qel.DataInvalid for a direction of no "
             "length. O(n).")
        .def("to_axial_radial_angle", &toAxialRadialAngle, py::arg("point"), py::arg("direction"),
             py::arg("reference_index") = 0, py::arg("reference_angle") = 0.0,
             "The curve in (axial, radial, angle in radians); the angle is reference_angle at "
             "point reference_index and follows the curve without wrapping; s and length stay. "
             "Raises qel.DataInvalid for a direction of no length, qel.InternalError for an index "
             "that is not a point's. O(n).")
        .def("rotated", &rotated, py::arg("centre"), py::arg("axis"), py::arg("angle"),
             "The curve turned about the axis through centre by an angle in radians, right-handed. "
             "s and length stay. O(n).")
        .def("with_s_as_x_and_x_as_y", changed(&Curve::storeSvaluetoXandXToY),
             "The curve of points (s, x, z); s and length stay. O(n).");
}

} // namespace

void bindCurveEditing(py::class_<Curve>& curve) {
    bindInserting(curve);
    bindCleaning(curve);
    bindMoving(curve);
}

} // namespace qel::python
