#ifndef QEL_PYTHON_PROGRESS_ARGUMENT_H
#define QEL_PYTHON_PROGRESS_ARGUMENT_H

/// @file
/// A Python callable as the library's progress function.

#include <pybind11/pybind11.h>

#include <qel/Progress.h>

namespace qel::python {

/// Calls the callable, if it is not None, with the share done since its last call, so that
/// tqdm(total=1).update fits; what it returns stops the call if it is False. Also without a
/// callable Ctrl-C stops the call.
Progress progressArgument(const pybind11::object& callable);

} // namespace qel::python

#endif
