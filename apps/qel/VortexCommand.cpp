// qel vortex
#include "VortexCommand.h"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>

#include <vtkDataSetAttributes.h>

#include "Console.h"
#include "FlowAnalysis.h"
#include "FlowReading.h"
#include "FlowWriting.h"
#include "Leaves.h"
#include "StagedOutput.h"
#include "Text.h"
#include "VortexPicture.h"

namespace program {
namespace {

using vtkQELVortex::Field;

constexpr const char* kExamples = R"(
Examples:
  qel vortex wing.vtu -o vortices.vtu --image vortices.png
  qel vortex bluntfinxyz.bin bluntfinq.bin --fields q,lambda2,swirl --stats -
  qel vortex cavity.foam --velocity U --time 0.5 -o cavity-vortices
)";

// Prints how long each stage took, if asked to.
class Stages {
public:
    explicit Stages(bool wanted) : wanted_(wanted) {}

    void done(const std::string& stage) {
        const auto now = std::chrono::steady_clock::now();
        report(stage, std::chrono::duration<double>(now - last_).count());
        last_ = now;
    }

    void report(const std::string& stage, double seconds) const {
        if (wanted_) {
            note(formatted("%-20s %8.2f s", stage.c_str(), seconds));
        }
    }

private:
    bool wanted_;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

std::string fieldHelp() {
    std::string text = "\nFields (--fields takes these names separated by commas, or all):\n";
    for (const vtkQELVortex::FieldInfo& info : vtkQELVortex::fields()) {
        text += formatted("  %-22s %s\n", info.key, info.formula);
    }
    return text;
}

void checkOutputs(const VortexOptions& options) {
    if (!options.output.empty()) {
        checkFolder(options.output); // its ending may depend on the data
    }
    if (!options.image.empty()) {
        checkWritable(options.image);
    }
    if (!options.stats.empty() && options.stats != "-") {
        checkWritable(options.stats);
    }
    if (!options.image.empty() && std::filesystem::path(options.image).extension() != ".png") {
        throw UserError("the picture " + options.image + " has to end in .png");
    }
}

void writeStatistics(const std::string& target, const std::vector<Statistics>& statistics) {
    if (target == "-") {
        std::cout << asCsv(statistics) << std::flush;
        return;
    }
    if (!target.empty()) {
        writeText(target, asCsv(statistics));
    }
    std::cout << asTable(statistics) << std::flush;
}

// The data without some fields.
vtkSmartPointer<vtkDataObject> without(vtkDataObject* data, const std::set<Field>& fields,
                                       int association) {
    return changeLeaves(data, [&](const Leaf& leaf) {
        auto copy = vtk::TakeSmartPointer(leaf.data->NewInstance());
        copy->ShallowCopy(leaf.data);
        for (const Field field : fields) {
            copy->GetAttributes(association)->RemoveArray(vtkQELVortex::info(field).array);
        }
        return copy;
    });
}

// The data with these fields alone, so that the picture has the memory of the others.
vtkSmartPointer<vtkDataObject> only(vtkDataObject* data, const std::set<Field>& fields,
                                    int association) {
    return changeLeaves(data, [&](const Leaf& leaf) {
        auto copy = vtk::TakeSmartPointer(leaf.data->NewInstance());
        copy->CopyStructure(leaf.data);
        for (const Field field : fields) {
            const char* name = vtkQELVortex::info(field).array;
            if (vtkDataArray* array = leaf.data->GetAttributes(association)->GetArray(name)) {
                copy->GetAttributes(association)->AddArray(array);
            }
        }
        return copy;
    });
}

// What the picture needs beyond the fields that were asked for.
std::set<Field> extraFields(const VortexOptions& options, const std::set<Field>& fields,
                            const PictureChoice& choice) {
    std::set<Field> extra;
    if (!options.image.empty()) {
        extra = {choice.field, choice.colour};
    }
    for (const Field field : fields) {
        extra.erase(field);
    }
    return extra;
}

// The analysis computes the statistics of all its fields, in their order.
std::vector<Statistics> statisticsOf(const FlowAnalysis& analysis, const std::set<Field>& computed,
                                     const std::set<Field>& extra) {
    std::vector<Statistics> chosen;
    std::size_t i = 0;
    for (const Field field : computed) {
        if (extra.count(field) == 0) {
            chosen.push_back(analysis.statistics[i]);
        }
        ++i;
    }
    return chosen;
}

} // namespace

void runVortex(const VortexOptions& options) {
    const std::set<Field> fields = parseFields(options.fields);
    const PictureChoice choice = parsePictureChoice(options.iso);
    checkOutputs(options);

    Stages stages(options.timing);
    auto flow = readFlow(options.inputs, options.time);
    stages.done("reading");
    const std::filesystem::path output =
        options.output.empty() ? options.output : outputName(options.output, flow).string();
    const Velocity velocity = findVelocity(leavesOf(flow), options.velocity);
    note("the velocity is the " + velocity.origin);

    const std::set<Field> extra = extraFields(options, fields, choice);
    std::set<Field> computed = fields;
    computed.insert(extra.begin(), extra.end());
    FlowAnalysis analysis = analyse(flow, velocity, computed);
    flow = nullptr;
    stages.report("gradient", analysis.gradientTime);
    stages.report("analysis", analysis.analysisTime);
    stages.done("both and statistics");

    if (!output.empty()) {
        writeFlow(without(analysis.data, extra, velocity.association), output);
        stages.done("writing");
    }
    writeStatistics(options.stats, statisticsOf(analysis, computed, extra));
    if (!options.image.empty()) {
        analysis.data = only(analysis.data, {choice.field, choice.colour}, velocity.association);
        drawVortices(analysis.data, velocity.association, choice, options.image);
        stages.done("picture");
    }
}

void addVortexCommand(CLI::App& program) {
    auto options = std::make_shared<VortexOptions>();
    CLI::App* command = program.add_subcommand(
        "vortex", "Find vortices in a flow solution: fields, statistics, a picture");
    command
        ->add_option("INPUT", options->inputs,
                     "VTK (XML or legacy), EnSight, Exodus, OpenFOAM or CGNS file; or a PLOT3D "
                     "grid and its solution; several files become blocks")
        ->required();
    command->add_option("-o,--output", options->output, "XML VTK file to write, with the fields");
    command->add_option("--velocity", options->velocity, "Name of the velocity array");
    command->add_option("--fields", options->fields, "Fields to compute")->capture_default_str();
    command->add_option("--image", options->image, "Picture to draw (PNG)");
    command->add_option("--iso", options->iso,
                        "FIELD or FIELD=VALUE that the picture shows (default: lambda2)");
    command->add_option("--stats", options->stats,
                        "CSV file for the statistics; - for standard output");
    command->add_option("--time", options->time, "Time to read (default: the last)");
    command->add_flag("--timing", options->timing, "Tell how long each stage takes");
    command->footer(fieldHelp() + kExamples);
    command->callback([options] { runVortex(*options); });
}

} // namespace program
