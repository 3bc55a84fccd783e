// qel curve on files that the tests make.
#include <cmath>

#include "Program.h"

#include <vtkCellArray.h>
#include <vtkDoubleArray.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkXMLPolyDataReader.h>
#include <vtkXMLPolyDataWriter.h>

namespace {

namespace fs = std::filesystem;

using Rows = std::vector<std::vector<double>>;

// Columns of the CSV that the program writes.
enum Column { number, x, y, z, s, firstData };

class CurveCommand : public qel_test::Program {
protected:
    // The rows of the result of operations on a file.
    Rows result(const std::string& arguments) const {
        const auto run = qel("curve " + arguments + " -o result.csv");
        EXPECT_EQ(run.status, 0) << run.err;
        return rows(text("result.csv"));
    }
    Rows resultOf(const std::string& content, const std::string& operations) const {
        write("in.csv", content);
        return result("in.csv " + operations);
    }
};

constexpr const char* kCorner = "x,y,t\n0,0,0\n2,0,20\n2,2,40\n";

// -- Reading ----

TEST_F(CurveCommand, ReadsColumnsWithAndWithoutHeaderAndTitle) {
    for (const char* content :
         {"0 0\n3 0\n3 1\n", "A Title\n0\t0\n3\t0\n3\t1\n", "x;y\n0;0\n3;0\n3;1\n",
          "# note\r\n0,0\r\n3,0\r\n3,1\r\n", "NACA 0012\n 0 0\n 3. +0\n 3e0 1\n\n",
          "y,x\n0,0\n0,3\n1,3\n",
          "\xEF\xBB\xBF"
          "0,0\n3,0\n3,1\n",
          "\xEF\xBB\xBF"
          "y;x\r\n0;0\r\n0;3\r\n1;3\r\n",
          "0.D0 0.0d+00\n0.3D+01 0.\n30.0D-1 1.0E0\n", "% note\n\t0\t0\n#\n\t3 \t 0\n  3\t1  \n"}) {
        SCOPED_TRACE(content);
        const Rows rows = resultOf(content, "");
        ASSERT_EQ(rows.size(), 3U);
        EXPECT_EQ(rows[1][x], 3.0);
        EXPECT_EQ(rows[1][y], 0.0);
        EXPECT_EQ(rows[1][s], 0.75);
    }
}

TEST_F(CurveCommand, TakesTheColumnsAskedFor) {
    EXPECT_EQ(resultOf("i z r\n1 0 5\n2 1 6\n", "--columns r,z")[1][x], 6.0);
    EXPECT_EQ(resultOf("1 0 5 8\n2 1 6 9\n", "--columns 3,4,1")[0][y], 8.0);
}

TEST_F(CurveCommand, BlankLinesPartCurvesAndSomeCanBeChosen) {
    const std::string two = "0 0\n1 0\n\n5 5\n6 5\n7 5\n";
    EXPECT_EQ(resultOf(two, "").size(), 5U);
    const Rows second = resultOf(two, "--curve 2");
    ASSERT_EQ(second.size(), 3U);
    EXPECT_EQ(second[0][x], 5.0);
}

// Writers need the same columns for all.
TEST_F(CurveCommand, KeepsThePointDataThatAllCurvesHave) {
    for (const char* content : {"x,y,t,p\n0,0,1,7\n1,0,2,7\n\nx,y,t\n5,5,3\n6,5,4\n",
                                "x,y,t\n0,0,1\n1,0,2\n\nx,y,p,t\n5,5,7,3\n6,5,7,4\n"}) {
        write("in.csv", content);
        for (const char* output : {"out.csv", "out.vtp", "out.vtk", "out.txt"}) {
            const auto run = qel("curve in.csv --resample 3 -o " + std::string(output));
            EXPECT_EQ(run.status, 0) << run.err;
            EXPECT_NE(run.err.find("the point data p are not on all curves"), std::string::npos);
        }
        EXPECT_EQ(text("out.csv").substr(0, 16), "curve,x,y,z,s,t\n");
        EXPECT_EQ(rows(text("out.csv"))[5], (std::vector<double>{2, 6, 5, 0, 1, 4}));
        EXPECT_EQ(result("out.vtp")[4][firstData], 3.5);
        // A curve alone keeps all of its own.
        EXPECT_EQ(qel("curve in.csv --curve 2 -o out.csv").err, "");
    }
}

TEST_F(CurveCommand, DataMayBeUndefinedWhereCoordinatesAreNot) {
    const Rows rows = resultOf("x y t\n0 0 1\n1 0 nan\n2 0 3\n3 0 1e400\n4 0 1e-400\n", "");
    EXPECT_EQ(rows[0][firstData], 1.0);
    EXPECT_TRUE(std::isnan(rows[1][firstData]));
    EXPECT_TRUE(std::isinf(rows[3][firstData]));
    EXPECT_EQ(rows[4][firstData], 0.0);
}

TEST_F(CurveCommand, TakesNumbersBelowZero) {
    const Rows rows = resultOf(kCorner, "--rotate -1,0,-5 0,0,1 -90 --extend -0.25");
    EXPECT_NEAR(rows[0][x], -1.0, 1e-12);
    EXPECT_NEAR(rows[0][y], -2.0, 1e-12);
}

TEST_F(CurveCommand, ReadsItsOwnTablesBack) {
    const Rows first = resultOf("0 0 1\n1 0 2\n\n5 5 3\n6 5.5 4\n7 5 1\n", "");
    fs::rename(folder / "result.csv", folder / "again.csv");
    EXPECT_EQ(result("again.csv"), first);
}

TEST_F(CurveCommand, ReadsGeoJson) {
    write("in.json", R"({"type": "FeatureCollection", "features": [
        {"type": "Feature", "geometry": null, "properties": {}},
        {"type": "Feature", "properties": {"name": "river"}, "geometry":
            {"type": "MultiLineString", "coordinates": [[[0, 0], [1, 1]], [[2, 2], [3, 3]]]}},
        {"type": "Feature", "properties": null, "geometry": {"type": "Polygon",
            "coordinates": [[[0, 0], [1, 0], [1, 1], [0, 0]]]}},
        {"type": "Feature", "properties": {}, "geometry": {"type": "Point",
            "coordinates": [9, 9]}}]})");
    EXPECT_EQ(result("in.json").size(), 8U);
    EXPECT_EQ(result("in.json --curve river").size(), 4U);
}

TEST_F(CurveCommand, ReadsGpxWithElevations) {
    write("in.gpx", R"(<?xml version="1.0"?><gpx version="1.1"><trk><name>walk</name><trkseg>
        <trkpt lat="45" lon="14"><ele>700</ele></trkpt><trkpt lat="46" lon="14"><ele>800</ele>
        </trkpt></trkseg><trkseg/></trk></gpx>)");
    const Rows rows = result("in.gpx --resample 3");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1][x], 14.0);
    EXPECT_EQ(rows[1][y], 45.5);
    EXPECT_EQ(rows[1][firstData], 750.0);
}

TEST_F(CurveCommand, TakesTheColumnsOfMapsAskedFor) {
    write("in.gpx", R"(<gpx><trk><trkseg><trkpt lat="45" lon="14"><ele>700</ele></trkpt>
        <trkpt lat="46" lon="15"><ele>800</ele></trkpt></trkseg></trk></gpx>)");
    const Rows track = result("in.gpx --columns x,y,ele");
    ASSERT_EQ(track.size(), 2U);
    EXPECT_EQ(track[1][x], 15.0);
    EXPECT_EQ(track[1][z], 800.0);
    EXPECT_EQ(result("in.gpx --columns ele,2")[1][x], 800.0);
    expectRefused("curve in.gpx --columns x,height",
                  "in.gpx has no column height; its columns are x, y, z, ele");
    write("in.json", R"({"type": "LineString", "coordinates": [[1, 2, 3], [4, 5, 6]]})");
    EXPECT_EQ(result("in.json --columns z,x")[1][x], 6.0);
    EXPECT_EQ(result("in.json --columns z,x")[1][y], 4.0);
    EXPECT_NE(qel("nearest in.json in.json --columns z,y").out.find("\n6,5,1,6,5,0\n"),
              std::string::npos);
    ASSERT_EQ(qel("curve in.json -o in.vtp").status, 0);
    expectRefused("curve in.vtp --columns z,x", "in.vtp is a VTK file: --columns is for tables");
    expectRefused("nearest in.vtp in.json --columns z,x", "in.vtp is a VTK file");
}

TEST_F(CurveCommand, JoinsUnorderedSegments) {
    vtkNew<vtkPolyData> slice;
    vtkNew<vtkPoints> points;
    vtkNew<vtkCellArray> cells;
    for (int i = 0; i < 5; ++i) {
        points->InsertNextPoint(i * i, 0.0, 0.0);
    }
    for (const auto& [a, b] : {std::pair{3, 2}, {0, 1}, {4, 3}, {1, 2}}) {
        const vtkIdType ids[2] = {a, b};
        cells->InsertNextCell(2, ids);
    }
    slice->SetPoints(points);
    slice->SetLines(cells);
    writeData<vtkXMLPolyDataWriter>("slice.vtp", slice);
    const Rows rows = result("slice.vtp");
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3][x], 9.0);
}

TEST_F(CurveCommand, KeepsTheNamesOfStationsAndOfCurves) {
    write("in.csv", "station,x,y,t\nhub,0,0,1\n\"mid, low\",1,0,\ntip,3,0,3\n");
    EXPECT_EQ(qel("curve in.csv --reverse").out,
              "curve,x,y,z,s,t,station\n1,3,0,0,0,3,tip\n1,1,0,0,0.6666666666666666,nan,\"mid, "
              "low\"\n1,0,0,0,1,1,hub\n");
    write("named.txt", "upper side\n0 0\n1 0\nlower\n5 5\n6 5\n");
    for (const char* output : {"out.csv", "out.vtp", "out.vtk"}) {
        SCOPED_TRACE(output);
        ASSERT_EQ(qel("curve named.txt in.csv -o " + std::string(output)).status, 0);
        EXPECT_EQ(result(std::string(output) + " --curve lower").size(), 2U);
        ASSERT_EQ(qel("curve " + std::string(output) + " -o again.csv").status, 0);
        EXPECT_EQ(rows(text("again.csv")).size(), 7U);
        EXPECT_NE(text("again.csv").find("\n1,0,0,0,0,upper side\n"), std::string::npos);
        // Words go along in polydata, too.
        ASSERT_EQ(qel("curve in.csv --tessellate 0.25 -o " + std::string(output)).status, 0);
        EXPECT_NE(qel("curve " + std::string(output) + " --reverse").out.find("\"mid, low\""),
                  std::string::npos);
    }
}

TEST_F(CurveCommand, ReadsSeveralFilesAndStandardInput) {
    write("a.csv", "0 0\n1 0\n");
    write("b.csv", "5 0\n6 0\n\n7 0\n8 0\n");
    EXPECT_EQ(result("a.csv b.csv").size(), 6U);
    EXPECT_EQ(
        qel("curve a.csv b.csv").out,
        "a: 2 points, length 1\nb curve 1: 2 points, length 1\nb curve 2: 2 points, length 1\n");
    EXPECT_EQ(shell("cat b.csv | qel curve - --curve 2 --reverse").out,
              "curve,x,y,z,s\n1,8,0,0,0\n1,7,0,0,1\n");
    EXPECT_EQ(shell("qel curve a.csv --reverse -o - | qel curve -").out,
              "curve: 2 points, length 1\n");
    EXPECT_EQ(shell("printf '0 0\\n0\\n' | qel curve -").err,
              "qel: error: standard input, line 2: a row of 1 numbers after rows of 2\n");
    EXPECT_EQ(shell("qel curve - </dev/null").err, "qel: error: standard input is empty\n");
}

// -- Operations ----

TEST_F(CurveCommand, ResampledPointsTakeTheirDataByS) {
    const Rows rows = resultOf(kCorner, "--resample 5");
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3], (std::vector<double>{1, 2, 1, 0, 0.75, 30}));
}

TEST_F(CurveCommand, OperationsAreDoneInTheOrderGiven) {
    EXPECT_EQ(resultOf(kCorner, "--cut 0 0.5 --resample 3").size(), 3U);
    EXPECT_EQ(resultOf(kCorner, "--cut 0 0.5 --resample 3")[1][x], 1.0);
    EXPECT_EQ(resultOf(kCorner, "--resample 3 --cut 0.25 0.5")[0][firstData], 10.0);
    EXPECT_EQ(resultOf(kCorner, "--resample 9 --resample 3 --resample 5").size(), 5U);
    EXPECT_EQ(resultOf(kCorner, "--reverse --cut 0 0.25 --reverse")[1][y], 2.0);
}

TEST_F(CurveCommand, CleaningKeepsTheDataOfTheRemainingPoints) {
    const std::string repeated = "x,y,t\n0,0,1\n1,0,2\n1,0,3\n2,0,4\n2,0,5\n";
    const Rows unique = resultOf(repeated, "--unique");
    ASSERT_EQ(unique.size(), 3U);
    EXPECT_EQ(unique[1][firstData], 2.0);
    EXPECT_EQ(unique[2][firstData], 5.0);
    EXPECT_EQ(resultOf(repeated, "--clean").size(), 3U);
    EXPECT_EQ(resultOf("x,y\n0,0\n2,0\n1,0\n3,0\n", "--continuous").size(), 3U);
}

TEST_F(CurveCommand, ReversesDataWithThePoints) {
    const Rows rows = resultOf(kCorner, "--reverse");
    EXPECT_EQ(rows[0][y], 2.0);
    EXPECT_EQ(rows[0][firstData], 40.0);
}

TEST_F(CurveCommand, TessellatesExtendsTurnsAndConverts) {
    EXPECT_EQ(resultOf(kCorner, "--tessellate 0.25").size(), 5U);
    EXPECT_EQ(resultOf(kCorner, "--tessellate 0.25")[1][firstData], 10.0);
    EXPECT_NEAR(resultOf(kCorner, "--extend 0.5")[0][x], -2.0, 1e-12);
    EXPECT_NEAR(resultOf(kCorner, "--rotate 0,0,0 0,0,2 90")[1][y], 2.0, 1e-12);
    const Rows art = resultOf("x,y,z\n1,0,5\n0,1,6\n", "--art 0,0,0 0,0,1");
    EXPECT_NEAR(art[1][x], 6.0, 1e-6);
    EXPECT_NEAR(art[1][y], 1.0, 1e-6);
    EXPECT_NEAR(art[1][z], 90.0, 1e-6);
    EXPECT_EQ(resultOf(kCorner, "--dim 1")[2][y], 0.0);
}

// The points stand at 210 and 240 degrees about the axis, 3 along it and 2 from it.
TEST_F(CurveCommand, AxialCoordinatesKeepTheAbsoluteAngle) {
    const double c = std::sqrt(3.0);
    std::ostringstream content;
    content.precision(17);
    content << "x,y,z\n" << 10.1 - c << ",-1,3\n" << 9.1 << "," << -c << ",3\n";
    const Rows degrees = resultOf(content.str(), "--art 10.1,0,0 0,0,1");
    EXPECT_NEAR(degrees[0][z], -150.0, 1e-12);
    EXPECT_NEAR(degrees[1][z], -120.0, 1e-12);
    EXPECT_NEAR(degrees[1][y], 2.0, 1e-12);
    EXPECT_EQ(text("result.csv").substr(0, 27), "curve,axial,radial,theta,s\n");
    const auto run = qel("curve in.csv --radians --art 10.1,0,0 0,0,1 -o result.csv");
    EXPECT_NE(run.err.find("now axial, radial, theta_rad, the angle in radians"), std::string::npos)
        << run.err;
    EXPECT_NEAR(rows(text("result.csv"))[0][z], -5.0 / 6.0 * std::acos(-1.0), 1e-12);
    // About x angles are counted from y, about y from z.
    EXPECT_NEAR(resultOf("0,0,5\n1,0,5\n", "--art 0,0,0 1,0,0")[0][z], 90.0, 1e-12);
    EXPECT_NEAR(resultOf("5,0,0\n5,1,0\n", "--art 0,0,0 0,1,0")[0][z], 90.0, 1e-12);
    // A point on the axis has the angle of its neighbour.
    EXPECT_NEAR(resultOf("0,0,0\n0,5,0\n", "--art 0,0,0 0,0,1")[0][z], 90.0, 1e-12);
}

TEST_F(CurveCommand, AxialCoordinatesComeBackAsCartesian) {
    const std::string helix = "x,y,z\n1,0,0\n0,2,0.5\n-3,0,1\n0,-4,1.5\n5,0,2\n";
    for (const std::string unit : {"", "--radians "}) {
        resultOf(helix, unit + "--art 0,0,0 0,0,1");
        fs::rename(folder / "result.csv", folder / "art.csv");
        const Rows back = result("art.csv --cylindrical");
        ASSERT_EQ(back.size(), 5U);
        EXPECT_NEAR(back[3][y], -4.0, 1e-12);
        EXPECT_NEAR(back[4][x], 5.0, 1e-12);
        EXPECT_NEAR(back[4][z], 2.0, 1e-12);
    }
}

TEST_F(CurveCommand, CylindricalColumnsAreConvertedBeforeTheyAreTurned) {
    const std::string blade = "z,r,theta\n7,2,30\n8,2,60\n";
    write("in.csv", blade);
    const std::string columns = "curve in.csv --columns z,r,theta ";
    expectRefused(columns + "--rotate 0,0,0 0,0,1 30",
                  "the coordinates are z, r, theta, which cannot be turned as if they were "
                  "Cartesian; --cylindrical converts them");
    expectRefused(columns + "--art 0,0,0 0,0,1", "the coordinates are z, r, theta already");
    EXPECT_NE(qel(columns + "--print").err.find("taken as if they were Cartesian"),
              std::string::npos);
    const Rows turned =
        resultOf(blade, "--columns z,r,theta --cylindrical --rotate 0,0,0 0,0,1 30");
    EXPECT_NEAR(turned[0][x], 1.0, 1e-12);
    EXPECT_NEAR(turned[0][y], std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(turned[1][x], 0.0, 1e-12);
    EXPECT_NEAR(turned[1][z], 8.0, 1e-12);
    const Rows radians = resultOf("theta_rad,r,x\n1,2,3\n0,2,3\n", "--cylindrical");
    EXPECT_NEAR(radians[0][x], 3.0, 1e-12);
    EXPECT_NEAR(radians[0][z], 2.0 * std::sin(1.0), 1e-12);
    EXPECT_EQ(resultOf("7 2 0\n8 3 0\n", "--cylindrical")[1][x], 3.0);
    EXPECT_NEAR(resultOf("2 90\n3 90\n", "--cylindrical --rotate 0,0,0 0,0,1 -90")[1][x], 3.0,
                1e-12);
    write("in.csv", blade);
    expectRefused("curve in.csv --columns z,theta --cylindrical", "in: none of the coordinates");
}

TEST_F(CurveCommand, SimplifyPrintsTheKeptIndices) {
    write("in.csv", "x,y\n0,0\n1,0.1\n2,1\n3,0.1\n4,0\n");
    const auto run = qel("curve in.csv --simplify 3 -o result.csv");
    EXPECT_NE(run.out.find("in: kept 3 of 5 points: 0 2 4"), std::string::npos) << run.out;
    EXPECT_EQ(rows(text("result.csv")).size(), 3U);
}

TEST_F(CurveCommand, SimplifyKeepsToTheTolerance) {
    // Off the line from (0,0) to (2,1), (1,0.1) stands by 0.36.
    write("in.csv", "x,y\n0,0\n1,0.1\n2,1\n3,0.1\n4,0\n");
    for (const std::string step : {"--simplify 5,0.4", "--simplify 3,0.4", "--simplify-to 0.4"}) {
        EXPECT_NE(qel("curve in.csv " + step).out.find("kept 3 of 5 points: 0 2 4"),
                  std::string::npos)
            << step;
    }
    EXPECT_NE(qel("curve in.csv --simplify-to 0.3").out.find("kept 5 of 5"), std::string::npos);
    const auto few = qel("curve in.csv --simplify 3,0.3");
    EXPECT_EQ(few.status, 0);
    EXPECT_NE(few.out.find("kept 3 of 5"), std::string::npos) << few.out;
    EXPECT_NE(few.err.find("warning: in: 3 points leave an error of 0.3577"), std::string::npos)
        << few.err;
    expectRefused("curve in.csv --simplify-to -1", "the tolerance -1 is below zero");
    expectRefused("curve in.csv --simplify 3,-1", "the tolerance -1 is below zero");
}

TEST_F(CurveCommand, SimplifyLeavesClosedLinesClosed) {
    write("in.csv", "x,y,t\n0,0,1\n1,0,2\n2,0,3\n2,2,4\n0,2,5\n0,0,6\n");
    EXPECT_NE(qel("curve in.csv --simplify-to 0.1 -o out.csv").out.find("6 points: 0 2 3 4 5"),
              std::string::npos);
    const Rows kept = rows(text("out.csv"));
    ASSERT_EQ(kept.size(), 5U);
    EXPECT_EQ(kept[1][firstData], 3.0);
    EXPECT_NE(qel("curve in.csv --simplify-to 1e9").out.find("kept 4 of 6"), std::string::npos);
    EXPECT_NE(qel("curve in.csv --simplify 4").out.find("kept 4 of 6"), std::string::npos);
    expectRefused("curve in.csv --simplify 3", "in, --simplify: ");
}

// The nearest vertex of the duct is the tip of its upper wall, the nearest place is on the lower.
TEST_F(CurveCommand, ProjectsToTheNearestPlaceOfAllEdges) {
    write("duct.csv", "x,y\n0,0\n10,0\n10,2\n6,2\n5,1\n4,2\n0,2\n");
    write("probe.csv", "x,y\n5,0.4\n");
    const auto run = qel("curve duct.csv --project probe.csv");
    EXPECT_NE(run.out.find("\n5,0.4,0,5,0,0,0.2"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(",0.4\n"), std::string::npos) << run.out;
}

TEST_F(CurveCommand, ProjectsIntersectsAndPrints) {
    write("in.csv", "x,y\n0,0\n10,0\n");
    write("probes.csv", "x,y\n4,3\n");
    EXPECT_NE(qel("curve in.csv --project probes.csv").out.find("4,3,0,4,0,0,0.4,3"),
              std::string::npos);
    write("other.csv", "x,y\n5,-1\n5,1\n");
    EXPECT_NE(qel("curve in.csv --intersect other.csv").out.find("in x other: 5,0,0"),
              std::string::npos);
    write("far.csv", "x,y\n50,-1\n50,1\n");
    EXPECT_NE(qel("curve in.csv --intersect far.csv").out.find("no crossing"), std::string::npos);
    EXPECT_NE(qel("curve in.csv --print").out.find("1.0000000e+01"), std::string::npos);
}

// A square from 0 to 2, run through clockwise, with a repeated point.
constexpr const char* kSquare = "x,y\n0,0\n0,2\n0,2\n2,2\n2,0\n0,0\n";

TEST_F(CurveCommand, TellsWhatACurveIs) {
    write("square.csv", kSquare);
    const auto run = qel("curve square.csv --info");
    EXPECT_EQ(run.out, "# square\npoints: 6\nlength: 8\nclosed: yes\narea: -4\n"
                       "lower corner: 0,0,0\nupper corner: 2,2,0\nrepeated points: 1\n"
                       "smallest step: 0 (from point 1)\nlargest step: 2 (from point 0)\n");
    EXPECT_NE(qel("curve square.csv --dim 1 --info").out.find("\narea: 0\n"), std::string::npos);
    write("open.csv", "x,y,z\n0,0,0\n0.1,0,1\n");
    EXPECT_NE(qel("curve open.csv --info").out.find("closed: no\n"), std::string::npos);
}

TEST_F(CurveCommand, MeasuresThicknessAtPlanes) {
    write("duct.csv", "x,y\n0,0\n10,0\n10,2\n6,2\n5,1\n4,2\n0,2\n0,0\n");
    EXPECT_EQ(qel("curve duct.csv --thickness x,5,1,12").out,
              "# duct\nx,crossings,thickness,from_x,from_y,from_z,to_x,to_y,to_z\n"
              "5,2,1,5,1,0,5,0,0\n1,2,2,1,2,0,1,0,0\n12,0,,,,,,,\n");
    // Along an edge, and across the notch.
    EXPECT_NE(qel("curve duct.csv --thickness y,2").out.find("\n2,2,10,"), std::string::npos);
    EXPECT_NE(qel("curve duct.csv --thickness Y,1.5").out.find("\n1.5,4,10,"), std::string::npos);
    // A section that lies across the axis planes.
    write("space.csv", "x,y,z\n0,0,0\n3,3,0\n3,3,4\n0,0,4\n0,0,0\n");
    EXPECT_NE(qel("curve space.csv --thickness x,1").out.find("\n1,2,4,"), std::string::npos);
    for (const std::string bad : {"x", "w,1", "1,2", "x,here"}) {
        expectRefused("curve duct.csv --thickness " + bad, "--thickness: \"");
    }
}

TEST_F(CurveCommand, ListsAllCrossingsWithBothValuesOfS) {
    write("square.csv", kSquare);
    write("line.csv", "x,y\n-1,1\n3,1\n");
    const auto run = qel("curve line.csv --crossings square.csv");
    EXPECT_EQ(run.out, "# line\n"
                       "other,kind,x,y,z,s,other_s,end_x,end_y,end_z,end_s,end_other_s\n"
                       "square,point,0,1,0,0.25,0.125,0,1,0,0.25,0.125\n"
                       "square,point,2,1,0,0.75,0.625,2,1,0,0.75,0.625\n");
    write("edge.csv", "x,y\n-2,2\n2,2\n");
    EXPECT_NE(
        qel("curve edge.csv --crossings square.csv").out.find("square,overlap,0,2,0,0.5,0.25,"),
        std::string::npos);
    write("space.csv", "x,y,z\n0,0,0\n1,1,1\n");
    expectRefused("curve space.csv --crossings line.csv", "but there is z; --dim 2 drops it");
}

TEST_F(CurveCommand, AddsCurvatureAndTangentToThePointData) {
    std::ostringstream circle;
    circle.precision(17);
    for (int i = 0; i <= 36; ++i) {
        const double angle = std::acos(-1.0) / 18.0 * (i % 36);
        circle << 4.0 * std::cos(angle) << " " << 4.0 * std::sin(angle) << "\n";
    }
    const Rows rows = resultOf(circle.str(), "--curvature --tangent");
    EXPECT_EQ(text("result.csv").substr(0, 54),
              "curve,x,y,z,s,Curvature,Tangent:0,Tangent:1,Tangent:2\n");
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 9U);
        EXPECT_NEAR(row[5], 0.25, 1e-12);
        EXPECT_NEAR(row[6], -row[y] / 4.0, 1e-12);
        EXPECT_NEAR(row[7], row[x] / 4.0, 1e-12);
    }
}

TEST_F(CurveCommand, WhatIsNotWrittenElsewhereGoesToStandardOutput) {
    write("in.csv", kCorner);
    const std::string table = "curve,x,y,z,s,t\n1,2,2,0,0,40\n1,2,0,0,0.5,20\n1,0,0,0,1,0\n";
    EXPECT_EQ(qel("curve in.csv --reverse").out, table);
    EXPECT_EQ(qel("curve in.csv --reverse -o -").out, table);
    EXPECT_EQ(qel("curve in.csv --reverse -o out.csv").out, "");
    EXPECT_EQ(text("out.csv"), table);
    EXPECT_EQ(qel("curve in.csv").out, "in: 3 points, length 4\n");
}

TEST_F(CurveCommand, WritesTheFewestDigitsThatGiveTheNumberBack) {
    EXPECT_EQ(resultOf("0.1 0.3\n1e-300 0.30000000000000004\n", "")[1][y], 0.1 + 0.2);
    EXPECT_NE(text("result.csv").find("\n1,0.1,0.3,0,0\n1,1e-300,0.30000000000000004,0,1\n"),
              std::string::npos);
}

// -- Writing ----

TEST_F(CurveCommand, WritesPolydataAndTheTextExport) {
    write("in.csv", kCorner);
    ASSERT_EQ(qel("curve in.csv --resample 4 -o out.vtp").status, 0);
    vtkNew<vtkXMLPolyDataReader> reader;
    reader->SetFileName((folder / "out.vtp").c_str());
    reader->Update();
    EXPECT_EQ(reader->GetOutput()->GetNumberOfLines(), 1);
    EXPECT_NE(reader->GetOutput()->GetPointData()->GetArray("t"), nullptr);

    ASSERT_EQ(qel("curve in.csv -o out.txt").status, 0);
    EXPECT_EQ(text("out.txt").substr(0, 47), "0.000000000e+00 0.000000000e+00 0.000000000e+00");
    ASSERT_EQ(qel("curve out.txt --unique -o out.vtk").status, 0);
    EXPECT_EQ(result("out.vtk").size(), 3U);
    EXPECT_EQ(files(),
              (std::vector<std::string>{"in.csv", "out.txt", "out.vtk", "out.vtp", "result.csv"}));
}

} // namespace
