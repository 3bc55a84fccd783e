#include "progress_argument.h"

namespace qel::python {

namespace py = pybind11;

Progress progressArgument(const py::object& callable) {
    if (!callable.is_none() && PyCallable_Check(callable.ptr()) == 0) {
        throw py::type_error("progress must be a callable");
    }
    // The handle: the caller holds the callable while the call lasts.
    return [callable = py::handle(callable), last = 0.0](double done) mutable {
        const py::gil_scoped_acquire locked;
        if (PyErr_CheckSignals() != 0) {
            throw py::error_already_set();
        }
        if (callable.is_none()) {
            return true;
        }
        const py::object answer = callable(done - last);
        last = done;
        return !(py::isinstance<py::bool_>(answer) && !answer.cast<bool>());
    };
}

} // namespace qel::python
