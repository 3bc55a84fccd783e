#include "array_arguments.h"

#include <algorithm>
#include <array>
#include <string>

namespace qel::python {

py::array requireArray(const py::object& object, const std::string& name) {
    if (!py::isinstance<py::array>(object)) {
        throw py::type_error(name + " must be a NumPy array; write numpy.asarray(" + name +
                             ", dtype=...)");
    }
    if (py::isinstance(object, py::module_::import("numpy.ma").attr("MaskedArray"))) {
        throw py::type_error(name + " is a masked array; write " + name + ".filled(...)");
    }
    return py::reinterpret_borrow<py::array>(object);
}

void refuseDtype(const py::array& array, const std::string& name, const std::string& wanted) {
    const std::string first = wanted.substr(0, wanted.find(' '));
    const py::object native = array.dtype().attr("newbyteorder")("=");
    const std::string nativeName = py::str(native);
    if (!native.equal(array.dtype()) && wanted.find(nativeName) != std::string::npos) {
        throw py::type_error(name + " is not in native byte order; write " + name +
                             ".astype(numpy." + nativeName + ")");
    }
    throw py::type_error(name + " has dtype " + std::string(py::str(array.dtype())) + ", not " +
                         wanted + "; write " + name + ".astype(numpy." + first + ")");
}

void requireShape(const py::array& array, const std::string& name, const Shape& wanted) {
    bool fits = array.ndim() == static_cast<py::ssize_t>(wanted.size());
    std::string text;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        fits = fits && (wanted[i] < 0 || array.shape(static_cast<py::ssize_t>(i)) == wanted[i]);
        text += (i == 0 ? "" : ", ") + (wanted[i] < 0 ? "n" : std::to_string(wanted[i]));
    }
    if (!fits) {
        throw py::value_error(name + " has shape " + std::string(py::str(array.attr("shape"))) +
                              ", not (" + text + (wanted.size() == 1 ? ",)" : ")"));
    }
}

void requireWritable(const py::array& out, const py::array& input) {
    if (!out.writeable()) {
        throw py::value_error("out is read-only");
    }
    if (py::module_::import("numpy").attr("may_share_memory")(out, input).cast<bool>()) {
        throw py::value_error("out overlaps the input");
    }
}

ScalarView<const double> svaluesArgument(const py::array& array) {
    requireShape(array, "svalues", {-1});
    if (!holds<double>(array)) {
        refuseDtype(array, "svalues", "float64");
    }
    return scalars<double>(array);
}

CurveView curveArgument(const py::object& object) {
    if (py::isinstance<ParametricCurve>(object)) {
        return {object.cast<const ParametricCurve&>()};
    }
    return visitTriplets(requireArray(object, "points"), "points",
                         [](const auto& view) { return CurveView(view); });
}

TripletBase<double> pointArgument(const py::object& object, const std::string& name) {
    std::array<double, 3> numbers{};
    if (!py::isinstance<py::sequence>(object) && !py::isinstance<py::array>(object)) {
        throw py::type_error(name + " must be a sequence of three numbers");
    }
    if (py::len(object) != numbers.size()) {
        throw py::value_error(name + " has " + std::to_string(py::len(object)) +
                              " elements, not 3");
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        try {
            numbers[i] = object[py::int_(i)].cast<double>();
        } catch (const py::cast_error&) {
            throw py::type_error(name + " must be a sequence of three numbers");
        }
    }
    return {numbers[0], numbers[1], numbers[2]};
}

py::array_t<double> toArray(const TripletBase<double>& point) {
    py::array_t<double> array(3);
    array.mutable_at(0) = point.x;
    array.mutable_at(1) = point.y;
    array.mutable_at(2) = point.z;
    return array;
}

} // namespace qel::python
