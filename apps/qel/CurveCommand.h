#ifndef QEL_PROGRAM_CURVECOMMAND_H
#define QEL_PROGRAM_CURVECOMMAND_H

/// @file
/// qel curve

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "CurveReading.h"

namespace program {

struct CurveOptions {
    std::string input;
    CurveSelection selection;
    /// Name and step of each operation, in order.
    std::vector<std::pair<std::string, std::function<void(NamedCurve&)>>> steps;
    std::string output;
    std::string image;
};

/// Adds the command to the program's; it runs when it is parsed.
void addCurveCommand(CLI::App& program);

/// @throws UserError, Interrupted
void runCurve(const CurveOptions& options);

} // namespace program

#endif
