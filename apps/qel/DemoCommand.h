#ifndef QEL_PROGRAM_DEMOCOMMAND_H
#define QEL_PROGRAM_DEMOCOMMAND_H

/// @file
/// qel demo

#include <string>

#include <CLI/CLI.hpp>

namespace program {

struct DemoOptions {
    std::string folder = "qel-demo";
    int size = 96;
    bool pictures = true;
};

/// Adds the command to the program's; it runs when it is parsed.
void addDemoCommand(CLI::App& program);

/// @throws UserError, Interrupted
void runDemo(const DemoOptions& options);

} // namespace program

#endif
