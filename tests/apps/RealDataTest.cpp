// The program on data of others, against values found independently: gradients by VTK, the rest by
// general eigenvalue routines.
#include <cmath>

#include "Pictures.h"
#include "Program.h"

namespace {

namespace fs = std::filesystem;

using RealData = qel_test::Program;
using Statistics = std::map<std::string, qel_test::StatisticsLine>;

void expectRange(const Statistics& stats, const std::string& field, double minimum,
                 double maximum) {
    SCOPED_TRACE(field);
    const double tolerance = 1e-4 * std::max(std::abs(minimum), std::abs(maximum));
    EXPECT_NEAR(stats.at(field).minimum, minimum, tolerance);
    EXPECT_NEAR(stats.at(field).maximum, maximum, tolerance);
}

struct FlowCase {
    const char* files;
    long long points;
    double q[2];
    double criterion[2];
    double divergence[2];
    double lambda2[2];
    double swirl;
};

TEST_F(RealData, FlowsHaveTheReferenceRanges) {
    QEL_NEED_DATA("cfd")
    const FlowCase cases[] = {
        {"bluntfinxyz.bin {}bluntfinq.bin",
         40960,
         {-733.795, 1583.51},
         {-25069.1, 1542.6},
         {-223.916, 94.6816},
         {-801.597, 716.487},
         39.4811},
        {"carotid.vtk",
         167580,
         {-87.0861, 38.9806},
         {-137.658, 25.5883},
         {-13.0193, 11.6858},
         {-25.0745, 37.679},
         5.46155},
        {"disk_out_ref.ex2",
         8499,
         {-68.6704, 64.1159},
         {-72.0358, 63.9205},
         {-7.00769, 3.6344},
         {-73.3374, 64.4809},
         8.7323},
        {"cylinder_Re35/cylinder_Re35.case",
         14831,
         {-4774.65, 12023.5},
         {-4775.32, 11950.6},
         {-41.2883, 42.0222},
         {-10296.3, 4696.35},
         109.485},
    };
    for (const FlowCase& flow : cases) {
        SCOPED_TRACE(flow.files);
        const std::string flows = data + "/cfd/";
        std::string inputs = flows + flow.files;
        const std::size_t second = inputs.find("{}");
        if (second != std::string::npos) {
            inputs.replace(second, 2, flows);
        }
        const auto run = qel("vortex " + inputs + " --stats - --image p.png");
        ASSERT_EQ(run.status, 0) << run.err;
        const auto stats = statistics(run.out);
        EXPECT_EQ(stats.at("Q").valid, flow.points);
        expectRange(stats, "Q", flow.q[0], flow.q[1]);
        expectRange(stats, "QCriterion", flow.criterion[0], flow.criterion[1]);
        expectRange(stats, "Divergence", flow.divergence[0], flow.divergence[1]);
        expectRange(stats, "Lambda2", flow.lambda2[0], flow.lambda2[1]);
        expectRange(stats, "SwirlStrength", 0.0, flow.swirl);
        qel_test::expectPicture((folder / "p.png").string());
    }
}

TEST_F(RealData, TruncatedFlowsAreRefused) {
    QEL_NEED_DATA("cfd")
    for (const char* name :
         {"carotid.vtk", "disk_out_ref.ex2", "cylinder_Re35/cylinder_Re35.vel"}) {
        const fs::path source = data + "/cfd/" + name;
        fs::remove_all(folder / "case");
        fs::create_directory(folder / "case");
        if (source.parent_path().filename() == "cylinder_Re35") {
            for (const auto& entry : fs::directory_iterator(source.parent_path())) {
                fs::copy(entry.path(), folder / "case");
            }
        } else {
            fs::copy(source, folder / "case");
        }
        const fs::path copy = folder / "case" / source.filename();
        fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
        fs::resize_file(copy, fs::file_size(copy) / 2);
        const std::string input = source.extension() == ".vel" ? "case/cylinder_Re35.case"
                                                               : "case/" + copy.filename().string();
        expectRefused("vortex " + input + " -o out", "case");
    }
}

struct SectionCase {
    const char* file;
    std::size_t points;
    double length;
};

TEST_F(RealData, SectionsHaveTheReferenceLengths) {
    QEL_NEED_DATA("sections")
    const SectionCase cases[] = {
        {"clarky", 121, 2.0440225},   {"e387", 61, 2.0284561},       {"ls417", 75, 2.0691446},
        {"naca0012", 69, 2.0388738},  {"naca23012", 61, 2.0420183},  {"naca2412", 69, 2.0408720},
        {"naca4412", 69, 2.0469163},  {"naca632615", 51, 2.0532843}, {"nlr7301", 79, 2.0784091},
        {"phonix10", 495, 2.0303946}, {"rae2822", 129, 2.0321230},   {"sc20714", 205, 2.0586102},
        {"whitcomb", 73, 2.0460630}};
    for (const SectionCase& section : cases) {
        SCOPED_TRACE(section.file);
        const auto run =
            qel("curve " + data + "/sections/airfoils/" + section.file + ".dat -o r.csv");
        ASSERT_EQ(run.status, 0) << run.err;
        const auto points = rows(text("r.csv"));
        ASSERT_EQ(points.size(), section.points);
        double length = 0.0;
        for (std::size_t i = 1; i < points.size(); ++i) {
            length += std::hypot(points[i][1] - points[i - 1][1], points[i][2] - points[i - 1][2]);
        }
        EXPECT_NEAR(length, section.length, 1e-7);
        EXPECT_EQ(points.front()[4], 0.0);
        EXPECT_EQ(points.back()[4], 1.0);
    }
}

TEST_F(RealData, TracksCoastsAndRiversAreReadWhole) {
    QEL_NEED_DATA("polylines")
    const auto count = [&](const std::string& file) {
        const auto run = qel("curve " + data + "/polylines/" + file + " -o r.csv");
        EXPECT_EQ(run.status, 0) << run.err;
        const auto points = rows(text("r.csv"));
        return std::pair(points.size(), static_cast<int>(points.back()[0]));
    };
    EXPECT_EQ(count("ne_110m_coastline.json"), std::pair(std::size_t{5128}, 134));
    EXPECT_EQ(count("ne_50m_rivers_lake_centerlines.json"), std::pair(std::size_t{25641}, 895));
    EXPECT_EQ(count("korita-zbevnica.gpx"), std::pair(std::size_t{358 + 176 + 337}, 3));
    EXPECT_EQ(count("track-with-empty-segment.gpx"), std::pair(std::size_t{9}, 1));
    EXPECT_EQ(count("track1.binary.vtk"), std::pair(std::size_t{16267}, 1));
}

TEST_F(RealData, EveryCityIsNearestToItself) {
    QEL_NEED_DATA("points")
    const std::string cities = data + "/points/ne_110m_populated_places_simple.json";
    const auto run = qel("nearest " + cities + " " + cities);
    ASSERT_EQ(run.status, 0) << run.err;
    const auto result = rows(run.out);
    ASSERT_EQ(result.size(), 243U);
    for (std::size_t i = 0; i < result.size(); ++i) {
        EXPECT_EQ(result[i][2], static_cast<double>(i));
        EXPECT_EQ(result[i][5], 0.0);
    }
}

} // namespace
