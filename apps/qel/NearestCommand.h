#ifndef QEL_PROGRAM_NEARESTCOMMAND_H
#define QEL_PROGRAM_NEARESTCOMMAND_H

/// @file
/// qel nearest

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace program {

struct NearestOptions {
    std::string cloud;
    std::string queries;
    std::vector<std::string> columns;
    std::string output;
};

/// Adds the command to the program's; it runs when it is parsed.
void addNearestCommand(CLI::App& program);

/// @throws UserError, Interrupted
void runNearest(const NearestOptions& options);

} // namespace program

#endif
