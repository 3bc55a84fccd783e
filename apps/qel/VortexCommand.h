#ifndef QEL_PROGRAM_VORTEXCOMMAND_H
#define QEL_PROGRAM_VORTEXCOMMAND_H

/// @file
/// qel vortex

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace program {

struct VortexOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string velocity;
    std::string fields = "all";
    std::string image;
    std::string iso;
    std::string stats;
    std::optional<double> time;
    bool timing = false;
};

/// Adds the command to the program's; it runs when it is parsed.
void addVortexCommand(CLI::App& program);

/// @throws UserError, Interrupted
void runVortex(const VortexOptions& options);

} // namespace program

#endif
