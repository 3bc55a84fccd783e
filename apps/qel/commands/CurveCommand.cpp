// qel curve
#include "commands/Commands.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include <qel/QELException.h>

#include "console/Messages.h"
#include "console/Progress.h"
#include "console/Text.h"
#include "curves/Axes.h"
#include "curves/CurveOperations.h"
#include "pictures/Pictures.h"
#include "reading/CurveReading.h"
#include "writing/CurveWriting.h"

namespace program {
namespace {

constexpr const char* kExamples = R"(
Operations are done in the order in which they are given, each as often as it is given. Values of s
run from 0 at the first point to 1 at the last, by length, and are computed anew after each
operation that changes the points. Point data are carried along by s. Angles are in degrees.

Examples:
  qel curve naca0012.dat --unique --resample 200 -o fine.csv --image fine.svg
  qel curve coastline.json --simplify-to 0.1 -o coarse.vtp
  qel curve slice.vtp --curve 1 --cut 0.25 0.75 --reverse -o piece.vtp
  qel curve blade.csv --columns z,r,theta --cylindrical --rotate 0,0,0 0,0,1 30 --print
  qel curve section.dat --project probes.csv
)";

struct CurveOptions {
    Words inputs;
    CurveSelection selection;
    bool prints = false; // whether a step does
    bool cylindrical = false;
    bool radians = false;
    std::vector<std::pair<std::string, CurveStep>> steps; // with their names, in order
    std::string output;
    std::string image;
};

void applySteps(NamedCurve& curve, const CurveOptions& options) {
    for (const auto& [name, step] : options.steps) {
        try {
            step(curve);
        } catch (const qel::Error& error) {
            refuse(curve.name, ", ", name, ": ", error.getMessage());
        } catch (const UserError& error) {
            refuse(curve.name, ", ", name, ": ", error.what());
        }
    }
}

// Whether points were moved within the same coordinates, which a picture can show.
bool areComparable(const Curves& before, const Curves& after) {
    return before.front().axes == after.front().axes &&
           !std::equal(before.begin(), before.end(), after.begin(), after.end(),
                       [](const NamedCurve& a, const NamedCurve& b) {
                           return a.curve.getCurve() == b.curve.getCurve();
                       });
}

// Says or changes what the coordinates mean.
void settleAxes(Curves& curves, const CurveOptions& options) {
    for (NamedCurve& curve : curves) {
        curve.angleUnit = options.radians ? 1.0 : kDegree;
        if (options.cylindrical) {
            toCartesian(curve);
        }
    }
    if (hasAngle(curves.front())) {
        warn("the coordinates ", listed(curves.front().axes),
             " are taken as if they were Cartesian; --cylindrical converts them");
    }
}

void runCurve(const CurveOptions& options) {
    if (!options.output.empty()) {
        checkCurveOutput(options.output);
    }
    if (!options.image.empty()) {
        checkCurvePicture(options.image);
    }
    Curves curves = readCurves(options.inputs, options.selection);
    settleAxes(curves, options);
    const Words axes = curves.front().axes;
    const Curves before = options.image.empty() ? Curves() : curves;
    ProgressBar bar("curves");
    double done = 0.0;
    for (NamedCurve& curve : curves) {
        applySteps(curve, options);
        bar.show(++done / static_cast<double>(curves.size()));
    }
    if (curves.front().axes != axes) {
        note("the coordinates are now ", listed(curves.front().axes), ", the angle in ",
             options.radians ? "radians" : "degrees", ", the others in the unit of the input");
    }
    if (!options.output.empty()) {
        writeCurves(curves, options.output);
    }
    if (!options.image.empty()) {
        drawCurves(areComparable(before, curves) ? before : Curves(), curves, options.image);
    }
    if (options.output.empty() && options.image.empty() && !options.steps.empty() &&
        !options.prints) {
        writeCurves(curves, "-");
    }
    if (options.output.empty() && options.image.empty() && options.steps.empty()) {
        for (const NamedCurve& curve : curves) {
            std::cout << curve.name << ": " << curve.curve.getSize() << " points, length "
                      << shortest(curve.curve.getLength()) << "\n";
        }
    }
}

void addOperation(CLI::App* command, const CurveOperation& operation,
                  const std::shared_ptr<CurveOptions>& options) {
    const auto take = [&operation, options](const Words& words) {
        try {
            options->steps.emplace_back(operation.option, operation.make(words));
            options->prints = options->prints || operation.prints;
        } catch (const UserError& error) {
            refuse(operation.option, ": ", error.what());
        }
        return true;
    };
    // Each occurrence is taken as it is read, so that the order of the line is kept.
    if (operation.argumentCount == 0) {
        command
            ->add_flag_function(
                operation.option, [take](std::int64_t) { take({}); }, operation.help)
            ->trigger_on_parse();
        return;
    }
    command->add_option(operation.option, take, operation.help)
        ->type_size(operation.argumentCount)
        ->type_name(operation.arguments)
        ->trigger_on_parse();
}

} // namespace

void addCurveCommand(CLI::App& program) {
    auto options = std::make_shared<CurveOptions>();
    CLI::App* command =
        program.add_subcommand("curve", "Clean, resample, cut, simplify and convert curves");
    const auto addList = [&](const char* name, Words& words, const char* help) {
        command->add_option_function<std::string>(
            name, [options, &words](const std::string& list) { words = splitAt(',', list); }, help);
    };
    command
        ->add_option("INPUT", options->inputs,
                     "Files of text columns, CSV, VTK lines, GeoJSON or GPX; - for standard input")
        ->required();
    command->add_option(
        "-o,--output", options->output,
        "File to write: .csv, .vtp, .vtk, or text as .txt or .dat; - for CSV on standard "
        "output, where changed curves go if nothing else is asked for");
    command->add_option("--image", options->image,
                        "Picture of the curves, and of those before the operations: .svg or .png");
    addList("--curve", options->selection.curves,
            "Names or numbers from 1 on of the curves to take (default: all)");
    addList(
        "--columns", options->selection.columns,
        "Names or numbers of the columns to take as coordinates; in GeoJSON and GPX x, y, z and "
        "the point data");
    command->add_flag("--cylindrical", options->cylindrical,
                      "The columns are cylindrical, such as z,r,theta: convert them to x, y and z "
                      "before anything else");
    command->add_flag("--radians", options->radians, "Angles are in radians, not in degrees");
    for (const CurveOperation& operation : curveOperations()) {
        addOperation(command, operation, options);
    }
    command->footer(kExamples);
    command->callback([options] { runCurve(*options); });
}

} // namespace program
