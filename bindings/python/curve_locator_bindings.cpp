#include <cstdint>

#include <qel/CurveLocator.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

CurveLocator makeLocator(const py::object& curve) {
    const CurveView view = curveArgument(curve);
    const py::gil_scoped_release unlocked;
    return CurveLocator(view);
}

py::dict locate(const CurveLocator& locator, const py::object& probes) {
    return visitTriplets(requireArray(probes, "probes"), "probes", [&](const auto& view) {
        const auto n = static_cast<py::ssize_t>(view.size());
        py::array_t<double> foot(Shape{n, 3});
        py::array_t<double> s(n);
        py::array_t<std::int64_t> edge(n);
        py::array_t<double> distance(n);
        const CurveLocations out{{foot.mutable_data(), view.size()},
                                 {s.mutable_data(), view.size()},
                                 {edge.mutable_data(), view.size()},
                                 {distance.mutable_data(), view.size()}};
        {
            const py::gil_scoped_release unlocked;
            locator.locate(view, out);
        }
        py::dict places;
        places["foot"] = foot;
        places["s"] = s;
        places["edge"] = edge;
        places["distance"] = distance;
        return places;
    });
}

} // namespace

void bindCurveLocator(py::module_& module) {
    py::class_<CurveLocator>(module, "CurveLocator",
                             "An index that finds the nearest place on a polyline. Immutable.")
        .def(py::init(&makeLocator), py::arg("curve"),
             "curve: a ParametricCurve, or points (n, 3) float32 or float64, which are copied. "
             "Raises qel.DataInvalid for a vertex that is not finite. O(n log n).")
        .def("__len__", &CurveLocator::size, "Number of edges.")
        .def("locate", &locate, py::arg("probes"),
             "Nearest places of probes (m, 3), float32 or float64: a dict of foot (m, 3), s (m,), "
             "edge (m,) int64, -1 for a probe that is not finite, and distance (m,). O(m log n) "
             "where few edges are about equally near.");
}

} // namespace qel::python
