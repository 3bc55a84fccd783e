// qel demo
#include "commands/Commands.h"

#include <cmath>
#include <iostream>
#include <memory>

#include <vtkDoubleArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "writing/CurveWriting.h"
#include "writing/FlowWriting.h"

namespace program {
namespace {

constexpr const char* kExamples = R"(
Example:
  qel demo -o demo
makes a flow and a blade section from formulas, runs qel vortex and qel curve on them, and leaves
data, tables and pictures in the folder demo.
)";

constexpr const char* kVortexFiles = R"(
flow.vti      the velocity
vortices.vti  with all fields: Q, lambda2, swirl strength, ...
vortices.csv  the table above
)";
constexpr const char* kVortexPictures =
    R"(vortices.png  surface of lambda2 about the two cores, coloured by swirl strength;
              the shear layer has vorticity as well, but does not swirl: it is not there
)";
constexpr const char* kSectionFiles = R"(
section.csv     the section with its values of s
section-25.vtp  the 25 points; most of them about the leading edge, where it curves
)";
constexpr const char* kSectionPictures = R"(section.svg     the section before and after
section.png     the section turned by 20 degrees and resampled in equal steps
)";

constexpr double kPi = 3.14159265358979323846;

// -- Flow ----

struct Vortex {
    double x;
    double y;
    double circulation;
    double bend;  // the axis sways by this
    double taper; // the circulation varies by this share
};

constexpr Vortex kVortices[] = {{-1.0, 0.6, 6.0, 0.35, 0.3}, {1.1, 0.9, -4.0, 0.2, -0.4}};
constexpr double kStrain = 0.2; // stretching dw/dz along the vortices
constexpr double kViscosity = 0.012;
constexpr double kShearSpeed = 1.0; // half the difference across the layer
constexpr double kShearWidth = 0.25;
constexpr double kShearPlace = -2.0; // y of its middle

// Two vortices of opposite sense above a layer of shear with a tanh profile. In each plane of z
// they are Burgers vortices (1948), whose swirl is G / (2 pi r) (1 - exp(-a r^2 / (4 nu))). Place
// and circulation may vary with z: the divergence stays zero.
Point velocityAt(const Point& p) {
    Point u(-0.5 * kStrain * p.x, -0.5 * kStrain * p.y, kStrain * p.z);
    u.x += kShearSpeed * std::tanh((p.y - kShearPlace) / kShearWidth);
    for (const Vortex& vortex : kVortices) {
        const double dx = p.x - vortex.x - vortex.bend * std::sin(0.5 * kPi * p.z);
        const double dy = p.y - vortex.y - vortex.bend * std::cos(0.5 * kPi * p.z);
        const double r2 = dx * dx + dy * dy;
        const double k = kStrain / (4.0 * kViscosity);
        // -expm1 keeps its digits near the axis, where the quotient tends to k.
        const double quotient = r2 > 0.0 ? -std::expm1(-k * r2) / r2 : k;
        const double circulation = vortex.circulation * (1.0 + 0.5 * vortex.taper * p.z);
        const double rate = circulation / (2.0 * kPi) * quotient;
        u.x -= rate * dy;
        u.y += rate * dx;
    }
    return u;
}

// On [-3, 3] x [-3, 3] x [-2, 2], with two thirds of the size as points along z.
vtkSmartPointer<vtkImageData> demoFlow(int size) {
    auto flow = vtkSmartPointer<vtkImageData>::New();
    const int depth = 2 * size / 3;
    flow->SetDimensions(size, size, depth);
    flow->SetOrigin(-3.0, -3.0, -2.0);
    flow->SetSpacing(6.0 / (size - 1), 6.0 / (size - 1), 4.0 / (depth - 1));
    vtkNew<vtkDoubleArray> velocity;
    velocity->SetName("velocity");
    velocity->SetNumberOfComponents(3);
    velocity->SetNumberOfTuples(flow->GetNumberOfPoints());
    for (vtkIdType i = 0; i < flow->GetNumberOfPoints(); ++i) {
        const double* p = flow->GetPoint(i);
        const Point u = velocityAt({p[0], p[1], p[2]});
        velocity->SetTuple3(i, u.x, u.y, u.z);
    }
    flow->GetPointData()->AddArray(velocity);
    return flow;
}

// -- Section ----

// The four-digit section 2412, all lengths in those of the chord.
constexpr double kThickness = 0.12;
constexpr double kCamber = 0.02;
constexpr double kCamberPlace = 0.4;
constexpr int kSectionPoints = 120; // on each side, dense at both edges

Point sectionPoint(double x, double side) {
    const double half = 5.0 * kThickness * side *
                        (0.2969 * std::sqrt(x) +
                         x * (-0.1260 + x * (-0.3516 + x * (0.2843 - 0.1036 * x)))); // closed end
    // The camber line is a parabola on each side of its highest point.
    const double p = kCamberPlace;
    const double scale = kCamber / (x < p ? p * p : (1.0 - p) * (1.0 - p));
    const double camber = kCamber - scale * (x - p) * (x - p);
    const double slope = std::atan(2.0 * scale * (p - x));
    return {x - half * std::sin(slope), camber + half * std::cos(slope), 0.0};
}

// From the trailing edge over the upper side to the leading edge and back.
NamedCurve demoSection() {
    using Curve = qel::ParametricCurve;
    Points points;
    for (int i = 1 - kSectionPoints; i < kSectionPoints; ++i) {
        const double x = 0.5 * (1.0 - std::cos(kPi * i / (kSectionPoints - 1)));
        points.push_back(sectionPoint(x, i < 0 ? 1.0 : -1.0));
    }
    return {{Curve(points, Curve::dim2D), vtkSmartPointer<vtkPointData>::New()}, "section"};
}

// -- The command ----

struct DemoOptions {
    std::string folder = "qel-demo";
    int size = 96;
    bool pictures = true;
};

using RunCommand = std::function<void(const std::vector<std::string>&)>;

void runDemo(const DemoOptions& options, const RunCommand& runCommand) {
    const auto run = [&](const std::string& command, const char* picture) {
        const std::string line = command + (options.pictures ? picture : "");
        std::cout << "$ qel " << line << std::endl;
        runCommand(splitAt(' ', line));
    };
    std::error_code error;
    fs::create_directories(options.folder, error);
    if (!error) {
        fs::current_path(options.folder, error);
    }
    refuseIf(!!error, "cannot make the folder ", options.folder, ": ", error.message());
    std::cout << "The demonstration leaves its files in " << options.folder << ".\n\n"
              << "1. Two bent vortices of opposite sense beside a shear layer, from formulas."
              << std::endl;
    writeFlow(demoFlow(options.size), "flow.vti");
    run("vortex flow.vti -o vortices.vti --stats vortices.csv", " --image vortices.png");
    std::cout << kVortexFiles << (options.pictures ? kVortexPictures : "");

    std::cout << "\n2. A blade section of " << 2 * kSectionPoints - 1
              << " points, reduced to 25 that keep its shape." << std::endl;
    writeCurves({demoSection()}, "section.csv");
    run("curve section.csv --dim 2 --unique --simplify 25 -o section-25.vtp",
        " --image section.svg");
    if (options.pictures) {
        run("curve section.csv --rotate 0.25,0,0 0,0,1 -20 --resample 60", " --image section.png");
    }
    std::cout << kSectionFiles << (options.pictures ? kSectionPictures : "") << std::flush;
}

} // namespace

void addDemoCommand(CLI::App& program, const RunCommand& runCommand) {
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
    command->callback([options, runCommand] { runDemo(*options, runCommand); });
}

} // namespace program
