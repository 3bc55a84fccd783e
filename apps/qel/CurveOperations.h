#ifndef QEL_PROGRAM_CURVEOPERATIONS_H
#define QEL_PROGRAM_CURVEOPERATIONS_H

/// @file
/// The operations of qel curve.

#include <functional>
#include <string>
#include <vector>

#include "CurveSet.h"

namespace program {

using Words = std::vector<std::string>;

/// One operation as the command line offers it.
struct CurveOperation {
    std::string option;    ///< such as "--resample"
    int words;             ///< number of arguments
    std::string arguments; ///< their names for the help
    std::string help;
    /// Makes the step from the arguments, which are checked here, before any work.
    /// @throws UserError  if they are not what they should be
    std::function<std::function<void(NamedCurve&)>(const Words&)> make;
};

/// All of them, in the order of the help.
const std::vector<CurveOperation>& curveOperations();

} // namespace program

#endif
