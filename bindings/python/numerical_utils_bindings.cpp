#include <string>

#include <qel/NumericalUtils.h>

#include "array_arguments.h"
#include "bindings.h"

namespace qel::python {

namespace {

double spacing(double x, const std::string& precision) {
    if (precision == "single") {
        return NumericalUtils::spacing(static_cast<float>(x));
    }
    if (precision != "double") {
        throw py::value_error("precision must be 'single' or 'double'");
    }
    return NumericalUtils::spacing(x);
}

// Four corners in the plane, (4, 2) float64.
void requireCorners(const py::array& corners) {
    requireShape(corners, "corners", {4, 2});
    if (!holds<double>(corners)) {
        refuseDtype(corners, "corners", "float64");
    }
}

py::dict parametersInQuad(double x, double y, const py::object& corners, int maxIterations,
                          double margin, double tolerance) {
    const py::array array = requireArray(corners, "corners");
    requireCorners(array);
    const auto corner = py::reinterpret_borrow<py::array_t<double>>(array).unchecked<2>();
    double s = 0.0;
    double t = 0.0;
    bool outside = false;
    bool converged = false;
    bool singular = false;
    NumericalUtils::searchForSTinQuadD(s, t, x, y, corner(0, 0), corner(0, 1), corner(1, 0),
                                       corner(1, 1), corner(2, 0), corner(2, 1), corner(3, 0),
                                       corner(3, 1), outside, converged, singular, maxIterations,
                                       margin, tolerance);
    py::dict found;
    found["s"] = s;
    found["t"] = t;
    found["outside"] = outside;
    found["converged"] = converged;
    found["singular"] = singular;
    return found;
}

} // namespace

void bindNumericalUtils(py::module_& module) {
    module.def("spacing", &spacing, py::arg("x"), py::arg("precision") = "double",
               "Machine epsilon of 'double' or 'single' precision, scaled to the decade of |x|. "
               "Raises ValueError for another precision.");
    module.def("value_in_quad", &NumericalUtils::calculateValueInQuadFromSTD, py::arg("s"),
               py::arg("t"), py::arg("f1"), py::arg("f2"), py::arg("f3"), py::arg("f4"),
               "Bilinear value of corner values at (s, t) = (0, 0), (1, 0), (0, 1), (1, 1).");
    module.def("parameters_in_quad", &parametersInQuad, py::arg("x"), py::arg("y"),
               py::arg("corners"), py::arg("max_iterations") = 50, py::arg("margin") = 0.0,
               py::arg("tolerance") = 1e-12,
               "The inverse of the bilinear map of corners (4, 2) float64, in the order of "
               "value_in_quad, by Newton steps: a dict of s, t, outside (of the corners' box "
               "enlarged by margin times its extent), converged and singular.");
}

} // namespace qel::python
