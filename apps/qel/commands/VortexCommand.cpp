// qel vortex
#include "commands/Commands.h"

#include <chrono>
#include <iostream>
#include <memory>

#include <vtkSMPTools.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "flows/FlowAnalysis.h"
#include "flows/SurfaceFlow.h"
#include "pictures/Pictures.h"
#include "reading/FlowReading.h"
#include "writing/FlowWriting.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

using vtkQELVortex::FieldInfo;

constexpr int kMostThreads = 4096;

constexpr const char* kExamples = R"(
Examples:
  qel vortex wing.vtu -o vortices.vtu --image vortices.png
  qel vortex bluntfinxyz.bin bluntfinq.bin --fields q,lambda2,swirl --stats -
  qel vortex cavity.foam --velocity U --time 0.5 -o cavity-vortices
)";

struct VortexOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string velocity;
    std::string fields = "all";
    std::string image;
    std::string iso;
    std::string stats;
    std::optional<double> time;
    int threads = 0;          // as many as VTK takes
    double noiseFloor = 1e-6; // what rounding of floats makes of a shear
    bool timing = false;
    bool inPlane = false;
};

std::string fieldHelp() {
    std::string text = "\nFields (--fields takes these names separated by commas, or all):\n";
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        text += formatted("  %-22s %s\n", info.key, info.formula);
    }
    return text;
}

Fields parseFields(const std::string& list) {
    std::string keys;
    Fields all;
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        keys += (keys.empty() ? "" : ", ") + std::string(info.key);
        all.insert(info.field);
    }
    Fields chosen;
    for (const std::string& word : splitAt(',', list)) {
        const FieldInfo* info = vtkQELVortex::findField(word);
        if (word == "all" || list.empty()) {
            chosen = all;
        } else if (info == nullptr) {
            refuse("there is no field \"", word, "\"; the fields are ", keys);
        } else {
            chosen.insert(info->field);
        }
    }
    return chosen;
}

void checkOutputs(const VortexOptions& options) {
    if (!options.output.empty()) {
        checkFolder(options.output); // its ending may depend on the data
    }
    for (const std::string& target : {options.image, options.stats}) {
        if (!target.empty() && target != "-") {
            checkWritable(target);
        }
    }
    refuseIf(!options.iso.empty() && options.image.empty(),
             "--iso is about the picture; name one with --image");
    const fs::path image = options.image;
    refuseIf(!image.empty() && image.extension() != ".png", "the picture ", options.image,
             " has to end in .png");
}

std::vector<Statistics> statisticsOf(const FlowAnalysis& analysis, const Fields& fields) {
    std::vector<Statistics> wanted;
    for (const vtkQELVortex::Field field : fields) {
        wanted.push_back(analysis.statistics.at(field));
    }
    return wanted;
}

void writeStatistics(const std::vector<Statistics>& wanted, const std::string& target) {
    if (!target.empty() && target != "-") {
        writeText(target, asCsv(wanted));
    }
    std::cout << (target == "-" ? asCsv(wanted) : asTable(wanted)) << std::flush;
}

// Tells how long each stage took, if asked to.
struct Stopwatch {
    using Clock = std::chrono::steady_clock;

    bool shown;
    Clock::time_point start = Clock::now();

    void show(const char* stage, double seconds) const {
        if (shown) {
            note(formatted("%-20s %8.2f s", stage, seconds));
        }
    }
    void endStage(const char* stage) {
        const Clock::time_point before = std::exchange(start, Clock::now());
        show(stage, std::chrono::duration<double>(start - before).count());
    }
};

// The last lines of the table; beside one for programs, messages.
void showNegligible(const FlowAnalysis& analysis, const VortexOptions& options) {
    const auto show = [&](long long points, const std::string& text) {
        if (points == 0) {
            return;
        }
        if (options.stats == "-") {
            note(text, ": ", points, " points");
        } else {
            std::cout << text << ": " << points << " points\n" << std::flush;
        }
    };
    show(analysis.belowNoiseFloor,
         joined("set to 0 below the noise floor of ", shortest(options.noiseFloor)));
    show(analysis.zeroedSwirls, "swirl of rounding alone, set to 0");
}

void runInPlane(const VortexOptions& options) {
    refuseIf(!options.image.empty() || options.fields != "all",
             "--in-plane has two fields of its own: it does not go with --fields or --image");
    checkOutputs(options);
    const auto flow = readFlow(options.inputs, options.time);
    const Velocity velocity = findVelocity(leavesOf(flow), options.velocity);
    note("the velocity is the ", velocity.origin);
    const InPlaneAnalysis analysis = analyseInPlane(flow, velocity);
    if (!options.output.empty()) {
        writeFlow(analysis.data, outputName(options.output, analysis.data));
    }
    writeStatistics(analysis.statistics, options.stats);
}

void runVortex(const VortexOptions& options) {
    if (options.inPlane) {
        runInPlane(options);
        return;
    }
    const Fields fields = parseFields(options.fields);
    const PictureChoice choice = parsePictureChoice(options.iso);
    const Fields drawn = options.image.empty() ? Fields() : Fields{choice.field, choice.colour};
    checkOutputs(options);
    if (options.threads > 0) {
        vtkSMPTools::Initialize(options.threads);
    }

    Stopwatch watch{options.timing};
    auto flow = readFlow(options.inputs, options.time);
    watch.endStage("reading");
    const fs::path output = options.output.empty() ? "" : outputName(options.output, flow);
    const Velocity velocity = findVelocity(leavesOf(flow), options.velocity);
    note("the velocity is the ", velocity.origin);
    const std::string reason = reasonAgainstGradient(leavesOf(flow), velocity);
    refuseIf(!reason.empty(), options.inputs[0], " has no whole velocity gradient: ", reason,
             "; --in-plane gives what they do not need");

    Fields computed = fields;
    computed.insert(drawn.begin(), drawn.end());
    FlowAnalysis analysis = analyse(flow, velocity, computed, options.noiseFloor);
    flow = nullptr;
    watch.show("gradient", analysis.gradientTime);
    watch.show("analysis", analysis.analysisTime);
    watch.endStage("both and statistics");

    if (!output.empty()) {
        writeFlow(dataWith(fields, analysis, velocity.association), output);
        watch.endStage("writing");
    }
    writeStatistics(statisticsOf(analysis, fields), options.stats);
    showNegligible(analysis, options);
    if (!options.image.empty()) {
        // Frees memory for the picture.
        analysis.data = dataWith(drawn, analysis, velocity.association);
        drawVortices(analysis.data, velocity.association, choice, options.image);
        watch.endStage("picture");
    }
}

} // namespace

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
    command
        ->add_option("--threads", options->threads,
                     "Threads to compute on (default: VTK_SMP_MAX_THREADS, or one for each core)")
        ->check(CLI::Range(1, kMostThreads));
    command
        ->add_option(
            "--noise-floor", options->noiseFloor,
            "Share of the squared norm of the gradient below which lambda2, discriminant and "
            "swirl are 0; 0 for none")
        ->check(CLI::Range(0.0, 1.0))
        ->capture_default_str();
    command->add_flag("--in-plane", options->inPlane,
                      "On surfaces: vorticity about the normal and divergence within the surface");
    command->add_flag("--timing", options->timing, "Tell how long each stage takes");
    command->footer(fieldHelp() + kExamples);
    command->callback([options] { runVortex(*options); });
}

} // namespace program
