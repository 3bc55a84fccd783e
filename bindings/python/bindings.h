#ifndef QEL_PYTHON_BINDINGS_H
#define QEL_PYTHON_BINDINGS_H

/// @file
/// The parts of the module, one function for each file of bindings.

#include <pybind11/pybind11.h>

#include <qel/ParametricCurve.h>

namespace qel::python {

void bindErrors(pybind11::module_& module);
void bindParametricCurve(pybind11::module_& module);
void bindCurveQueries(pybind11::class_<ParametricCurve>& curve);
void bindCurvePieces(pybind11::class_<ParametricCurve>& curve);
void bindCurveEditing(pybind11::class_<ParametricCurve>& curve);
void bindCurveResampling(pybind11::module_& module);
void bindNumericalUtils(pybind11::module_& module);
void bindCurveLocator(pybind11::module_& module);
void bindCurveFunctions(pybind11::module_& module);
void bindGradientAnalysis(pybind11::module_& module);
void bindQuadtreeBucket(pybind11::module_& module);
void bindViewStatistics(pybind11::module_& module);

} // namespace qel::python

#endif
