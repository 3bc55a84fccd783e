#ifndef QEL_PYTHON_CURVE_RESULTS_H
#define QEL_PYTHON_CURVE_RESULTS_H

/// @file
/// What the bindings of curves share: results as arrays, and copies of array arguments.

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <qel/ParametricCurve.h>

#include "array_arguments.h"

namespace qel::python {

using Points = std::vector<TripletBase<double>>;
using Svalues = std::vector<double>;

/// An array of the shape that takes over the vector's memory.
template <typename T, typename Number>
py::array_t<Number> adopt(std::vector<T>&& values, const Shape& shape) {
    auto owned = std::make_unique<std::vector<T>>(std::move(values));
    const auto* first = reinterpret_cast<const Number*>(owned->data());
    const py::capsule owner(owned.get(),
                            [](void* memory) { delete static_cast<std::vector<T>*>(memory); });
    static_cast<void>(owned.release());
    return py::array_t<Number>(shape, first, owner);
}

/// The points as (n, 3), without a copy.
inline py::array_t<double> pointsArray(Points&& points) {
    static_assert(sizeof(TripletBase<double>) == 3 * sizeof(double), "points lie side by side");
    const Shape shape{static_cast<py::ssize_t>(points.size()), 3};
    return adopt<TripletBase<double>, double>(std::move(points), shape);
}

/// The numbers as (n,), without a copy.
template <typename T>
py::array_t<T> numbersArray(std::vector<T>&& numbers) {
    const Shape shape{static_cast<py::ssize_t>(numbers.size())};
    return adopt<T, T>(std::move(numbers), shape);
}

/// The elements of a view, as a vector.
template <typename View>
auto copyOf(const View& view) {
    std::vector<typename View::value_type> copy(view.size());
    for (std::size_t i = 0; i < view.size(); ++i) {
        copy[i] = view[i];
    }
    return copy;
}

/// A copy of an array (n,) of float64.
inline std::vector<double> numbersArgument(const py::object& object, const std::string& name) {
    const py::array array = requireArray(object, name);
    requireShape(array, name, {-1});
    if (!holds<double>(array)) {
        refuseDtype(array, name, "float64");
    }
    return copyOf(scalars<double>(array));
}

/// A copy of an array (n, 3) of float32 or float64, in double.
inline Points pointsArgument(const py::object& object, const std::string& name) {
    return visitTriplets(requireArray(object, name), name, [](const auto& view) {
        Points points;
        points.reserve(view.size());
        for (std::size_t i = 0; i < view.size(); ++i) {
            const auto point = view[i];
            points.emplace_back(point.x, point.y, point.z);
        }
        return points;
    });
}

/// Three numbers, rounded to single precision.
inline TripletBase<float> floatPointArgument(const py::object& object, const std::string& name) {
    const TripletBase<double> point = pointArgument(object, name);
    return {static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z)};
}

/// A copy of the curve after change(copy), without the interpreter's lock.
template <typename Change>
ParametricCurve changedBy(const ParametricCurve& curve, const Change& change) {
    const py::gil_scoped_release unlocked;
    ParametricCurve result(curve);
    change(result);
    return result;
}

/// The points that fill(points) writes, without the interpreter's lock.
template <typename Fill>
py::array_t<double> pointsFrom(const Fill& fill) {
    Points points;
    {
        const py::gil_scoped_release unlocked;
        fill(points);
    }
    return pointsArray(std::move(points));
}

/// The points and numbers that fill(points, numbers) writes, as a pair of arrays.
template <typename Fill>
py::tuple pointsAndSvaluesFrom(const Fill& fill) {
    Points points;
    Svalues svalues;
    {
        const py::gil_scoped_release unlocked;
        fill(points, svalues);
    }
    return py::make_tuple(pointsArray(std::move(points)), numbersArray(std::move(svalues)));
}

/// The numbers that fill(numbers) writes.
template <typename Fill>
py::array_t<double> numbersFrom(const Fill& fill) {
    Svalues numbers;
    {
        const py::gil_scoped_release unlocked;
        fill(numbers);
    }
    return numbersArray(std::move(numbers));
}

} // namespace qel::python

#endif
