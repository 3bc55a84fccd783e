// qel nearest
#include "commands/Commands.h"

#include <cmath>
#include <iostream>
#include <memory>

#include <qel/QuadtreeBucket.h>

#include "console/Messages.h"
#include "console/Progress.h"
#include "console/Text.h"
#include "reading/CurveReading.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

constexpr const char* kExamples = R"(
Distances are measured in x and y, in single precision; z plays no part. The result has one line for
each query: its coordinates, the number of the nearest point of the cloud (from 0 on), that point's
coordinates and the distance.

Examples:
  qel nearest stations.csv probes.csv -o nearest.csv
  qel nearest cities.json track.gpx
)";

constexpr int kDigits = 9;                       // every float comes back as it was
constexpr std::size_t kQueriesPerUpdate = 10000; // of the bar

struct NearestOptions {
    std::string cloud;
    std::string queries;
    std::vector<std::string> columns;
    std::string output;
};

// The search is in single precision, and a distance that is not finite has no meaning in it.
std::vector<qel::TripletBase<float>> readNarrow(const std::string& path,
                                                const std::vector<std::string>& columns) {
    std::vector<qel::TripletBase<float>> narrow;
    for (const Point& point : readPoints(path, columns)) {
        narrow.emplace_back(point);
        refuseIf(!std::isfinite(narrow.back().x) || !std::isfinite(narrow.back().y), path,
                 " has a point that is not finite in single precision");
    }
    return narrow;
}

void runNearest(const NearestOptions& options) {
    if (!options.output.empty()) {
        checkWritable(options.output);
    }
    const auto cloud = readNarrow(options.cloud, options.columns);
    const auto queries = readNarrow(options.queries, options.columns);
    qel::QuadtreeBucket bucket(24, 16);
    bucket.construct(cloud);

    std::ostringstream table;
    table.precision(kDigits);
    table << "x,y,nearest,nearest_x,nearest_y,distance\n";
    ProgressBar bar("nearest points");
    for (std::size_t i = 0; i < queries.size(); ++i) {
        const auto& query = queries[i];
        const std::size_t nearest = bucket.findNearestPoint(query);
        const auto& found = cloud[nearest];
        table << query.x << "," << query.y << "," << nearest << "," << found.x << "," << found.y
              << "," << std::hypot(double{query.x} - found.x, double{query.y} - found.y) << "\n";
        if (i % kQueriesPerUpdate == 0) {
            bar.show(static_cast<double>(i) / static_cast<double>(queries.size()));
        }
    }
    if (options.output.empty()) {
        std::cout << table.str() << std::flush;
    } else {
        writeText(options.output, table.str());
    }
}

} // namespace

void addNearestCommand(CLI::App& program) {
    auto options = std::make_shared<NearestOptions>();
    CLI::App* command =
        program.add_subcommand("nearest", "Find the nearest point of a cloud in the plane");
    command->add_option("CLOUD", options->cloud, "Points: text, CSV, VTK, GeoJSON or GPX file")
        ->required();
    command->add_option("QUERIES", options->queries, "Points to find the nearest of, likewise")
        ->required();
    command->add_option("-o,--output", options->output, "CSV file (default: standard output)");
    command->add_option_function<std::string>(
        "--columns", [options](const std::string& list) { options->columns = splitAt(',', list); },
        "Names or numbers of the columns of x and y in both files");
    command->footer(kExamples);
    command->callback([options] { runNearest(*options); });
}

} // namespace program
