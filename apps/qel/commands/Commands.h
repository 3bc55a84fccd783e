#pragma once
// The commands of the program.

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace program {

/// Add a command to the program's; it runs when it is parsed.
/// @throws UserError  when it runs
void addVortexCommand(CLI::App& program);
void addCurveCommand(CLI::App& program);
void addNearestCommand(CLI::App& program);

/// @param runCommand  runs a command line of this program, given without the program's name
void addDemoCommand(CLI::App& program,
                    const std::function<void(const std::vector<std::string>&)>& runCommand);

} // namespace program
