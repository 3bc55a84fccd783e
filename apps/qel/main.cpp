// The qel program: command line, and what ends it.
#include <filesystem>
#include <iostream>
#include <new>

#include <qel/QELException.h>

#include "commands/Commands.h"
#include "console/ChildProcess.h"
#include "console/Messages.h"
#include "console/Progress.h"
#include "console/VtkRun.h"

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

using Words = std::vector<std::string>;

void runCommand(const Words& words) {
    CLI::App app("Vortices in flow solutions, and curves");
    app.name("qel");
    app.footer(kExamples);
    app.require_subcommand(1);
    app.set_version_flag("--version", QEL_PROGRAM_VERSION);
    program::addVortexCommand(app);
    program::addCurveCommand(app);
    program::addNearestCommand(app);
    program::addDemoCommand(app, runCommand);
    for (CLI::App* command : app.get_subcommands(nullptr)) {
        program::addProgressOption(command);
    }
    try {
        app.parse(Words(words.rbegin(), words.rend())); // the order in which CLI11 takes them
    } catch (const CLI::Success& asked) {
        app.exit(asked); // help or version
    } catch (const CLI::ParseError& error) {
        const bool unknown = app.get_subcommands().empty() && !words.empty() && words[0][0] != '-';
        program::refuse(unknown ? "there is no command " + words[0] : error.what(),
                        " (qel --help tells more)");
    }
    program::refuseIf(!std::cout.flush(), "cannot write to standard output");
}

int runProgram(const Words& words) {
    program::keepVtkMessages();
    try {
        runCommand(words);
        return 0;
    } catch (const program::UserError& error) {
        program::fail(error.what());
    } catch (const qel::Error& error) {
        program::fail(error.getMessage());
    } catch (const std::filesystem::filesystem_error& error) {
        program::fail(error.path1().string(), ": ", error.code().message());
    } catch (const std::bad_alloc&) {
        program::fail("there is not enough memory");
        return EXIT_FAILURE;
    } catch (const std::exception& error) {
        program::fail(error.what());
        return EXIT_FAILURE;
    }
    return program::kExitBadInput;
}

} // namespace

int main(int argc, char** argv) {
    const Words words(argv + 1, argv + argc);
    return program::runInChild([&] { return runProgram(words); });
}
