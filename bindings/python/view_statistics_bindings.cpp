#include <cstdint>
#include <string>

#include <qel/ViewStatistics.h>

#include "array_arguments.h"
#include "bindings.h"
#include "progress_argument.h"

namespace qel::python {

namespace {

template <typename T>
void bindScalar(py::module_& module, const char* name) {
    using Statistics = ScalarStatistics<T>;
    py::class_<Statistics>(module, name,
                           "Statistics of numbers, with sums that are exact: the same however a "
                           "field is split and merged.")
        .def(py::init<>(), "Of no numbers.")
        .def("merge", &Statistics::merge, py::arg("other"),
             "Makes these the statistics of both fields together. O(1).")
        .def_property_readonly("count", &Statistics::getCount, "All numbers.")
        .def_property_readonly("valid", &Statistics::getValid, "Neither undefined nor NaN.")
        .def_property_readonly("undefined", &Statistics::getUndefined,
                               "Equal to the largest finite value of the dtype.")
        .def_property_readonly("not_a_number", &Statistics::getNotANumber)
        .def_property_readonly("min", &Statistics::getMin, "NaN if no number is valid.")
        .def_property_readonly("max", &Statistics::getMax, "NaN if no number is valid.")
        .def_property_readonly("min_index", &Statistics::getMinIndex, "Lowest of equal ones.")
        .def_property_readonly("max_index", &Statistics::getMaxIndex, "Lowest of equal ones.")
        .def_property_readonly("sum", &Statistics::getSum, "Exact, rounded once.")
        .def_property_readonly("mean", &Statistics::getMean, "Exact, rounded once.")
        .def_property_readonly("variance", &Statistics::getVariance, "Divisor n.")
        .def("__copy__", [](const Statistics& self) { return Statistics(self); })
        .def(
            "__eq__", [](const Statistics& a, const Statistics& b) { return a == b; },
            py::is_operator())
        .def("__repr__", [](const Statistics& self) {
            return "<qel statistics: " + std::to_string(self.getValid()) + " valid of " +
                   std::to_string(self.getCount()) + ">";
        });
}

template <typename T>
void bindTriplet(py::module_& module, const char* name) {
    using Statistics = TripletStatistics<T>;
    py::class_<Statistics>(module, name, "Statistics of each component and of the length.")
        .def(py::init<>(), "Of no triplets.")
        .def("merge", &Statistics::merge, py::arg("other"),
             "Makes these the statistics of both fields together. O(1).")
        .def_property_readonly("x", &Statistics::getX)
        .def_property_readonly("y", &Statistics::getY)
        .def_property_readonly("z", &Statistics::getZ)
        .def_property_readonly("length", &Statistics::getLength)
        .def("__copy__", [](const Statistics& self) { return Statistics(self); })
        .def(
            "__eq__", [](const Statistics& a, const Statistics& b) { return a == b; },
            py::is_operator())
        .def("__repr__", [](const Statistics& self) {
            return "<qel statistics of triplets: " + std::to_string(self.getLength().getValid()) +
                   " valid of " + std::to_string(self.getLength().getCount()) + ">";
        });
}

template <typename T>
py::object statisticsOf(const py::array& values, std::uint64_t firstIndex,
                        const Progress& progress) {
    if (values.ndim() == 2) {
        requireShape(values, "values", {-1, 3});
        TripletStatistics<T> statistics;
        {
            const TripletView<const T> view = triplets<T>(values);
            const py::gil_scoped_release unlocked;
            statistics = TripletStatistics<T>(view, firstIndex, progress);
        }
        return py::cast(statistics);
    }
    requireShape(values, "values", {-1});
    ScalarStatistics<T> statistics;
    {
        const ScalarView<const T> view = scalars<T>(values);
        const py::gil_scoped_release unlocked;
        statistics = ScalarStatistics<T>(view, firstIndex, progress);
    }
    return py::cast(statistics);
}

py::object statistics(const py::object& values, std::uint64_t firstIndex,
                      const py::object& progress) {
    const py::array array = requireArray(values, "values");
    if (holds<double>(array)) {
        return statisticsOf<double>(array, firstIndex, progressArgument(progress));
    }
    if (!holds<float>(array)) {
        refuseDtype(array, "values", "float32 or float64");
    }
    return statisticsOf<float>(array, firstIndex, progressArgument(progress));
}

} // namespace

void bindViewStatistics(py::module_& module) {
    bindScalar<float>(module, "ScalarStatistics32");
    bindScalar<double>(module, "ScalarStatistics64");
    bindTriplet<float>(module, "TripletStatistics32");
    bindTriplet<double>(module, "TripletStatistics64");
    module.def(
        "statistics", &statistics, py::arg("values"), py::arg("first_index") = 0, py::kw_only(),
        py::arg("progress") = py::none(),
        "Statistics of numbers (n,) or of triplets (n, 3), float32 or float64: count, valid, "
        "min, max and where they stand, exact sum, mean and variance. first_index: of the "
        "first number in the whole field, where parts are to be merged. O(n).");
}

} // namespace qel::python
