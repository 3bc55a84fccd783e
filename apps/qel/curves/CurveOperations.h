#pragma once
// The operations of qel curve.

#include <functional>

#include "curves/Curves.h"

namespace program {

using CurveStep = std::function<void(NamedCurve&)>;

/// One operation as the command line offers it.
struct CurveOperation {
    std::string option;    ///< such as "--resample"
    int argumentCount;     ///< number of arguments
    std::string arguments; ///< their names for the help
    std::string help;
    /// Makes the step from the arguments, which are checked here, before any work.
    /// @throws UserError  if they are not what they should be
    std::function<CurveStep(const Words&)> make;
    bool prints = false; ///< whether the step writes to standard output
};

/// All of them, in the order of the help.
const std::vector<CurveOperation>& curveOperations();

} // namespace program
