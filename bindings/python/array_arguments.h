#ifndef QEL_PYTHON_ARRAY_ARGUMENTS_H
#define QEL_PYTHON_ARRAY_ARGUMENTS_H

/// @file
/// NumPy arrays as the library's views, without a copy, and the refusals that go with them.

#include <cstddef>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <qel/CurveView.h>
#include <qel/StridedView.h>

namespace qel::python {

namespace py = pybind11;

using Shape = std::vector<py::ssize_t>;

/// The object as an array, which it must be already. Throws TypeError for anything else, a masked
/// array included.
py::array requireArray(const py::object& object, const std::string& name);

/// Throws TypeError, with the conversion to write, for another dtype than T's.
void refuseDtype(const py::array& array, const std::string& name, const std::string& wanted);

/// Throws ValueError for another shape than wanted, where -1 stands for any length.
void requireShape(const py::array& array, const std::string& name, const Shape& wanted);

/// Throws ValueError unless an output may be written and shares no memory with an input.
void requireWritable(const py::array& out, const py::array& input);

template <typename T>
bool holds(const py::array& array) {
    return py::isinstance<py::array_t<T>>(array);
}

template <typename T>
ScalarView<const T> scalars(const py::array& a) {
    return {static_cast<const T*>(a.data()), static_cast<std::size_t>(a.shape(0)), a.strides(0)};
}

template <typename T>
TripletView<const T> triplets(const py::array& a) {
    return {static_cast<const T*>(a.data()), static_cast<std::size_t>(a.shape(0)), a.strides(0),
            a.strides(1)};
}

/// Returns visit(view) with the view of an (n, 3) array of float32 or float64.
template <typename Visit>
auto visitTriplets(const py::array& array, const std::string& name, Visit&& visit) {
    requireShape(array, name, {-1, 3});
    if (holds<double>(array)) {
        return visit(triplets<double>(array));
    }
    if (!holds<float>(array)) {
        refuseDtype(array, name, "float32 or float64");
    }
    return visit(triplets<float>(array));
}

/// An array of s-values: float64, one-dimensional.
ScalarView<const double> svaluesArgument(const py::array& array);

/// A curve, or an (n, 3) array of points, for the length of a call.
CurveView curveArgument(const py::object& object);

/// A sequence of three numbers.
TripletBase<double> pointArgument(const py::object& object, const std::string& name);

/// The three numbers as an array.
py::array_t<double> toArray(const TripletBase<double>& point);

} // namespace qel::python

#endif
