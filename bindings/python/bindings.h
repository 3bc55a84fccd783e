#ifndef QEL_PYTHON_BINDINGS_H
#define QEL_PYTHON_BINDINGS_H

/// @file
/// The parts of the module, one function for each file of bindings.

#include <pybind11/pybind11.h>

namespace qel::python {

void bindErrors(pybind11::module_& module);
void bindParametricCurve(pybind11::module_& module);
void bindCurveLocator(pybind11::module_& module);
void bindCurveFunctions(pybind11::module_& module);
void bindGradientAnalysis(pybind11::module_& module);
void bindQuadtreeBucket(pybind11::module_& module);
void bindViewStatistics(pybind11::module_& module);

} // namespace qel::python

#endif
