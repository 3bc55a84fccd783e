// qel demo
#include "DemoCommand.h"

#include <filesystem>
#include <iostream>
#include <memory>

#include "Console.h"
#include "CurveCommand.h"
#include "CurveOperations.h"
#include "CurveWriting.h"
#include "DemoFlow.h"
#include "FlowWriting.h"
#include "VortexCommand.h"

namespace program {
namespace fs = std::filesystem;
namespace {

constexpr const char* kExamples = R"(
Example:
  qel demo -o demo
makes a flow and a blade section from formulas, runs qel vortex and qel curve on them, and leaves
data, tables and pictures in the folder demo.
)";

constexpr int kSectionPoints = 120; // on each side

void say(const std::string& text) {
    std::cout << text << std::endl;
}

void addStep(CurveOptions& options, const std::string& name, const Words& words) {
    for (const CurveOperation& operation : curveOperations()) {
        if (operation.option == name) {
            options.steps.emplace_back(name, operation.make(words));
        }
    }
}

void showVortices(const DemoOptions& demo, const fs::path& folder) {
    say("\n1. Two bent vortices of opposite sense beside a shear layer, from formulas.");
    writeFlow(demoFlow(demo.size), folder / "flow.vti");
    VortexOptions options;
    options.inputs = {(folder / "flow.vti").string()};
    options.output = (folder / "vortices.vti").string();
    options.stats = (folder / "vortices.csv").string();
    options.image = demo.pictures ? (folder / "vortices.png").string() : "";
    runVortex(options);
    say("flow.vti      the velocity");
    say("vortices.vti  with all fields: Q, lambda2, swirl strength, ...");
    say("vortices.csv  the table above");
    if (demo.pictures) {
        say("vortices.png  surface of lambda2 about the two cores, coloured by swirl strength;\n"
            "              the shear layer has vorticity as well, but does not swirl: it is not "
            "there");
    }
}

void showSection(const DemoOptions& demo, const fs::path& folder) {
    say("\n2. A blade section of " + std::to_string(2 * kSectionPoints - 1) +
        " points, reduced to 25 that keep its shape.");
    using Curve = qel::ParametricCurve;
    NamedCurve section{{Curve(demoSection(kSectionPoints), Curve::dim2D), pointDataOf({})},
                       "section"};
    writeCurves({section}, folder / "section.csv");
    CurveOptions options;
    options.input = (folder / "section.csv").string();
    addStep(options, "--dim", {"2"});
    addStep(options, "--unique", {});
    addStep(options, "--simplify", {"25"});
    options.output = (folder / "section-25.vtp").string();
    options.image = demo.pictures ? (folder / "section.svg").string() : "";
    runCurve(options);
    if (demo.pictures) {
        options.output.clear();
        options.image = (folder / "section.png").string();
        options.steps.clear();
        addStep(options, "--rotate", {"0.25,0,0", "0,0,1", "-20"});
        addStep(options, "--resample", {"60"});
        runCurve(options);
    }
    say("section.csv     the section with its values of s");
    say("section-25.vtp  the 25 points; most of them about the leading edge, where it curves");
    if (demo.pictures) {
        say("section.svg     the section before and after");
        say("section.png     the section turned by 20 degrees and resampled in equal steps");
    }
}

} // namespace

void runDemo(const DemoOptions& options) {
    std::error_code error;
    fs::create_directories(options.folder, error);
    if (error) {
        throw UserError("cannot make the folder " + options.folder + ": " + error.message());
    }
    say("The demonstration leaves its files in " + options.folder + ".");
    showVortices(options, options.folder);
    showSection(options, options.folder);
}

void addDemoCommand(CLI::App& program) {
    auto options = std::make_shared<DemoOptions>();
    CLI::App* command =
        program.add_subcommand("demo", "Show vortex and curve on a flow and a section made here");
    command->add_option("-o,--output", options->folder, "Folder for the files")
        ->capture_default_str();
    command->add_option("--size", options->size, "Points of the flow along an axis")
        ->check(CLI::Range(6, 2000))
        ->capture_default_str();
    command->add_flag("!--no-pictures", options->pictures, "Leave out the pictures");
    command->footer(kExamples);
    command->callback([options] { runDemo(*options); });
}

} // namespace program
