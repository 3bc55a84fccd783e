#ifndef QEL_PROGRESS_H
#define QEL_PROGRESS_H

/// @file
/// Progress of long calls. Part of the batch interface (docs/batch-interface.md).

#include <functional>

namespace qel {

/// Called now and then by an operation on many elements, on the thread that called the operation.
///
/// Takes the fraction done, from 0 to 1, never decreasing; the last call of an operation that is
/// not stopped gives 1. Returns true to go on, false to stop: each operation says what it has
/// written by then. An exception that it throws stops the operation likewise and reaches the
/// caller. An empty function is never called.
using Progress = std::function<bool(double)>;

} // namespace qel

#endif
