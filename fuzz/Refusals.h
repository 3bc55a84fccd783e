#ifndef QEL_FUZZ_REFUSALS_H
#define QEL_FUZZ_REFUSALS_H

// Calls operations that may refuse their arguments.

#include <string>

#include <qel/QELException.h>

#include "Input.h"

namespace qel_fuzz {

/// Calls the action; true if it threw an error of the library, which must name the class and a
/// method and give a reason.
template <typename Action>
bool refuses(const std::string& className, const Action& action) {
    try {
        action();
    } catch (const qel::Error& error) {
        require(error.getClassName() == className, "an error names the class");
        require(!error.getMethodName().empty(), "an error names the method");
        require(!error.getMessage().empty(), "an error gives a reason");
        require(error.getType() == qel::argumentError, "a thrown error is one of arguments");
        return true;
    }
    return false;
}

} // namespace qel_fuzz

#endif
