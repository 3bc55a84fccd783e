#include "bindings.h"

PYBIND11_MODULE(qel, module) {
    module.doc() = "Numerical and geometric data handling for flow-simulation post-processing.";
    module.attr("__version__") = QEL_VERSION;
    qel::python::bindErrors(module);
    qel::python::bindParametricCurve(module);
    qel::python::bindCurveLocator(module);
    qel::python::bindCurveFunctions(module);
    qel::python::bindCurveResampling(module);
    qel::python::bindNumericalUtils(module);
    qel::python::bindGradientAnalysis(module);
    qel::python::bindQuadtreeBucket(module);
    qel::python::bindViewStatistics(module);
}
