#include <cstdint>

#include <qel/CurveResampling.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

// A table (n, k) of float64.
TableView<const double> tableArgument(const py::array& array) {
    requireShape(array, "data", {-1, -1});
    if (!holds<double>(array)) {
        refuseDtype(array, "data", "float64");
    }
    return {static_cast<const double*>(array.data()), static_cast<std::size_t>(array.shape(0)),
            static_cast<std::size_t>(array.shape(1)), array.strides(0), array.strides(1)};
}

py::object resample(const py::object& curve, const py::object& svalues, const py::object& data) {
    const CurveView view = curveArgument(curve);
    const ScalarView<const double> s = svaluesArgument(requireArray(svalues, "svalues"));
    const auto count = static_cast<py::ssize_t>(s.size());
    py::array_t<double> points(Shape{count, 3});
    const TripletView<double> outPoints(points.mutable_data(), s.size());
    if (data.is_none()) {
        const py::gil_scoped_release unlocked;
        resampleCurve(view, s, {}, outPoints, {});
        return std::move(points);
    }
    const TableView<const double> table = tableArgument(requireArray(data, "data"));
    py::array_t<double> resampled(Shape{count, static_cast<py::ssize_t>(table.columns)});
    const TableView<double> outTable(resampled.mutable_data(), s.size(), table.columns);
    {
        const py::gil_scoped_release unlocked;
        resampleCurve(view, s, table, outPoints, outTable);
    }
    return py::make_tuple(points, resampled);
}

} // namespace

void bindCurveResampling(py::module_& module) {
    module.def("resample_curve", &resample, py::arg("curve"), py::arg("svalues"),
               py::arg("data") = py::none(),
               "Points (m, 3) at s-values (m,) float64 in any order; with data (n, k) float64 that "
               "the vertices carry, (points, resampled) with resampled (m, k), linear in s. Raises "
               "qel.DataInvalid for sizes that do not match or an s-value that is NaN. "
               "O(n + m (log n + k)).");
}

} // namespace qel::python
