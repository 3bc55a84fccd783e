// The qel program: command line, and what ends it.
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>

#include <CLI/CLI.hpp>

#include <qel/QELException.h>

#include "Console.h"
#include "CurveCommand.h"
#include "DemoCommand.h"
#include "NearestCommand.h"
#include "VortexCommand.h"
#include "VtkMessages.h"

namespace {

constexpr const char* kExamples = R"(
Examples:
  qel demo
  qel vortex wing.vtu -o vortices.vtu --image vortices.png
  qel curve naca0012.dat --unique --resample 200 -o smooth.csv --image smooth.svg
  qel nearest stations.csv probes.csv -o nearest.csv

qel COMMAND --help tells more. Exit codes: 0 done, 2 bad input or output, 130 interrupted,
1 anything else.
)";

int parseAndRun(int argc, char** argv) {
    CLI::App app("Vortices in flow solutions, and curves");
    app.name("qel");
    app.footer(kExamples);
    app.require_subcommand(1);
    app.set_version_flag("--version", QEL_PROGRAM_VERSION);
    program::addVortexCommand(app);
    program::addCurveCommand(app);
    program::addNearestCommand(app);
    program::addDemoCommand(app);
    for (CLI::App* command : app.get_subcommands(nullptr)) {
        program::addProgressOption(command);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        return app.exit(asked); // help or version
    } catch (const CLI::ParseError& error) {
        const std::string more = " (qel --help tells more)";
        if (app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-') {
            throw program::UserError("there is no command " + std::string(argv[1]) + more);
        }
        throw program::UserError(error.what() + more);
    }
    if (!std::cout.flush()) {
        throw program::UserError("cannot write to standard output");
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    program::catchInterrupts();
    program::VtkMessages::instance();
    try {
        return parseAndRun(argc, argv);
    } catch (const program::UserError& error) {
        program::fail(error.what());
        return program::kExitBadInput;
    } catch (const program::Interrupted& error) {
        program::fail(error.what());
        return program::kExitInterrupted;
    } catch (const qel::Error& error) {
        program::fail(error.getMessage());
        return program::kExitBadInput;
    } catch (const std::filesystem::filesystem_error& error) {
        program::fail(error.path1().string() + ": " + error.code().message());
        return program::kExitBadInput;
    } catch (const std::bad_alloc&) {
        program::fail("there is not enough memory");
        return 1;
    } catch (const std::exception& error) {
        program::fail(error.what());
        return 1;
    }
}
