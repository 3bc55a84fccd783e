// qel nearest
#include "commands/Commands.h"

#include <cmath>
#include <iostream>
#include <memory>

#include <qel/QuadtreeBucket.h>

#include "console/Messages.h"
#include "console/Progress.h"
#include "console/Text.h"
#include "points/NearestPoints.h"
#include "reading/CurveReading.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

constexpr const char* kExamples = R"(
Distances are in space where both files have z, else in x and y; their unit is that of the
coordinates. The result has one line for each query: its coordinates, the number of the nearest point
of the cloud (from 0 on), that point's coordinates, its label if it has one, and the distance. Of
points at equal distance the first in the file is taken. With --k or --radius there are several lines
for a query or none, which start with its number (from 0 on).

Examples:
  qel nearest stations.csv probes.csv -o nearest.csv
  qel nearest cities.json track.gpx --k 3
  qel nearest cloud.vtu probes.csv --radius 0.01
)";

constexpr std::size_t kQueriesPerUpdate = 10000; // of the bar

struct NearestOptions {
    std::string cloud;
    std::string queries;
    std::vector<std::string> columns;
    std::string output;
    std::optional<std::size_t> count;
    std::optional<double> radius;
    bool single = false;

    bool manyForAQuery() const { return count.has_value() || radius.has_value(); }
};

/// The cloud and the queries, in the plane or in space together.
struct Task {
    PointCloud cloud;
    PointCloud queries;
    bool planar;
};

Task readTask(const NearestOptions& options) {
    Task task{readPoints(options.cloud, options.columns),
              readPoints(options.queries, options.columns), false};
    task.planar = task.cloud.planar || task.queries.planar || options.single;
    if (task.planar && !(task.cloud.planar && task.queries.planar)) {
        note("z plays no part: ", options.single      ? "--single is for the plane"
                                  : task.cloud.planar ? options.cloud + " has none"
                                                      : options.queries + " has none");
    }
    return task;
}

// -- Table of the result ----

std::string coordinatesOf(const Point& p, bool planar) {
    return shortest(p.x) + "," + shortest(p.y) + (planar ? "" : "," + shortest(p.z));
}

std::string headerOf(const Task& task, bool manyForAQuery) {
    const bool labelled = !task.cloud.labels.empty();
    return joined(manyForAQuery ? "query," : "", task.planar ? "x,y" : "x,y,z",
                  ",nearest,nearest_x,nearest_y", task.planar ? "" : ",nearest_z",
                  labelled ? ",nearest_label" : "", ",distance\n");
}

std::string rowOf(const Task& task, std::size_t query, const Neighbour& found) {
    const PointCloud& cloud = task.cloud;
    return joined(coordinatesOf(task.queries.points[query], task.planar), ",", found.index, ",",
                  coordinatesOf(cloud.points[found.index], task.planar),
                  cloud.labels.empty() ? "" : "," + quoted(cloud.labels[found.index]), ",",
                  shortest(found.distance), "\n");
}

// Adds the rows of every query. Find returns a query's neighbours.
template <typename Find>
std::string tableOf(const Task& task, bool manyForAQuery, Find find) {
    std::string table = headerOf(task, manyForAQuery);
    ProgressBar bar("nearest points");
    std::size_t without = 0;
    const std::size_t queries = task.queries.points.size();
    for (std::size_t i = 0; i < queries; ++i) {
        const std::vector<Neighbour> found = find(i);
        for (const Neighbour& neighbour : found) {
            table += (manyForAQuery ? joined(i, ",") : "") + rowOf(task, i, neighbour);
        }
        without += found.empty();
        if (i % kQueriesPerUpdate == 0) {
            bar.show(static_cast<double>(i) / static_cast<double>(queries));
        }
    }
    if (without > 0) {
        note(without, " of ", queries, " queries have no point within the radius");
    }
    return table;
}

std::string nearestInDouble(const Task& task, const NearestOptions& options) {
    const NearestPoints tree(task.cloud.points, task.queries.points, task.planar);
    const std::size_t all = task.cloud.points.size();
    if (options.count.value_or(1) > all) {
        note("the cloud has ", all, " points only");
    }
    const NeighbourLimits limits{options.count.value_or(options.radius.has_value() ? all : 1),
                                 options.radius.value_or(NeighbourLimits().radius)};
    return tableOf(task, options.manyForAQuery(),
                   [&](std::size_t query) { return tree.find(query, limits); });
}

// -- In single precision ----

// As the numbers that are left of them.
std::vector<qel::TripletBase<float>> narrow(Points& points, const std::string& path) {
    std::vector<qel::TripletBase<float>> narrowed;
    for (Point& point : points) {
        narrowed.emplace_back(point);
        point = Point(narrowed.back());
        refuseIf(!std::isfinite(point.x) || !std::isfinite(point.y), path,
                 " has a point that is not finite in single precision");
    }
    return narrowed;
}

std::string nearestInSingle(Task& task, const NearestOptions& options) {
    const auto cloud = narrow(task.cloud.points, options.cloud);
    const auto queries = narrow(task.queries.points, options.queries);
    qel::QuadtreeBucket bucket(24, 16);
    bucket.construct(cloud);
    return tableOf(task, false, [&](std::size_t i) {
        const std::size_t nearest = bucket.findNearestPoint(queries[i]);
        const Point difference = task.queries.points[i] - task.cloud.points[nearest];
        return std::vector<Neighbour>{{nearest, std::hypot(difference.x, difference.y)}};
    });
}

void runNearest(const NearestOptions& options) {
    refuseIf(options.single && options.manyForAQuery(),
             "--single finds one nearest point: it does not go with --k or --radius");
    refuseIf(!(options.radius.value_or(0.0) >= 0.0), "--radius is a distance of 0 or more");
    if (!options.output.empty()) {
        checkWritable(options.output);
    }
    Task task = readTask(options);
    const std::string table =
        options.single ? nearestInSingle(task, options) : nearestInDouble(task, options);
    if (options.output.empty()) {
        std::cout << table << std::flush;
    } else {
        writeText(options.output, table);
    }
}

} // namespace

void addNearestCommand(CLI::App& program) {
    auto options = std::make_shared<NearestOptions>();
    CLI::App* command = program.add_subcommand("nearest", "Find the nearest points of a cloud");
    command->add_option("CLOUD", options->cloud, "Points: text, CSV, VTK, GeoJSON or GPX file")
        ->required();
    command->add_option("QUERIES", options->queries, "Points to find the nearest of, likewise")
        ->required();
    command->add_option("-o,--output", options->output, "CSV file (default: standard output)");
    command->add_option_function<std::string>(
        "--columns", [options](const std::string& list) { options->columns = splitAt(',', list); },
        "Names or numbers of the columns of x, y and, if there is one, z in both files");
    command->add_option("--k", options->count, "The K nearest points of each query")
        ->check(CLI::PositiveNumber);
    command->add_option("--radius", options->radius,
                        "All points within a distance; with --k, at most K");
    command->add_flag("--single", options->single,
                      "By the library's quadtree: in the plane and in single precision");
    command->footer(kExamples);
    command->callback([options] { runNearest(*options); });
}

} // namespace program
