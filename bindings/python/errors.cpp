#include <exception>
#include <string>

#include <pybind11/pybind11.h>

#include <qel/QELException.h>

#include "bindings.h"

namespace qel::python {

namespace py = pybind11;

namespace {

// The classes live as long as the interpreter.
struct Classes {
    PyObject* error = nullptr;
    PyObject* dataInvalid = nullptr;
    PyObject* internalError = nullptr;
};

Classes& classes() {
    static Classes instance;
    return instance;
}

void raise(PyObject* type, const Error& error) {
    const py::object instance = py::reinterpret_borrow<py::object>(type)(error.getMessage());
    instance.attr("class_name") = error.getClassName();
    instance.attr("method_name") = error.getMethodName();
    instance.attr("message") = error.getMessage();
    instance.attr("kind") = static_cast<int>(error.getType());
    PyErr_SetObject(type, instance.ptr());
}

void translate(std::exception_ptr thrown) {
    try {
        if (thrown) {
            std::rethrow_exception(thrown);
        }
    } catch (const data::invalid& error) {
        raise(classes().dataInvalid, error);
    } catch (const internal::error& error) {
        raise(classes().internalError, error);
    } catch (const Error& error) {
        raise(classes().error, error);
    }
}

PyObject* makeClass(py::module_& module, const char* name, PyObject* base) {
    const std::string fullName = std::string("qel.") + name;
    PyObject* type = PyErr_NewException(fullName.c_str(), base, nullptr);
    if (type == nullptr) {
        throw py::error_already_set();
    }
    module.attr(name) = py::handle(type);
    return type;
}

} // namespace

void bindErrors(py::module_& module) {
    classes().error = makeClass(module, "Error", PyExc_Exception);
    classes().dataInvalid = makeClass(module, "DataInvalid", classes().error);
    classes().internalError = makeClass(module, "InternalError", classes().error);
    py::register_exception_translator(&translate);
}

} // namespace qel::python
