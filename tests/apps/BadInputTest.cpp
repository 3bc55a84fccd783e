// Bad input: one clear line, exit code 2, nothing left behind.
#include <cstdint>

#include "Flows.h"
#include "Program.h"

#include <vtkCellArray.h>
#include <vtkPolyData.h>
#include <vtkPolyDataWriter.h>
#include <vtkXMLImageDataWriter.h>

namespace {

std::string repeated(const std::string& part, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += part;
    }
    return text;
}

class BadInput : public qel_test::Program {
protected:
    void SetUp() override {
        qel_test::Program::SetUp();
        writeData<vtkXMLImageDataWriter>("flow.vti", qel_test::rotation(12, 12, 12));
        write("curve.csv", "x,y\n0,0\n1,0\n1,1\n");
        write("empty", "");
        write("words.txt", "nothing here\nbut words\n");
        write("noise", std::string("\x01\x02\x00\x07 noise", 10));
        const std::string flow = text("flow.vti");
        write("truncated.vti", flow.substr(0, flow.size() / 2));
    }
};

TEST_F(BadInput, Files) {
    for (const std::string command : {"vortex ", "curve ", "nearest curve.csv "}) {
        expectRefused(command + "missing.vtu", "there is no file missing.vtu");
        expectRefused(command + "empty", "empty is empty");
        expectRefused(command + "noise", "noise");
        expectRefused(command + "words.txt", "words.txt");
        expectRefused(command + ".", ". is a folder");
    }
    ASSERT_EQ(shell("mkfifo pipe").status, 0);
    expectRefused("curve pipe", "pipe is no ordinary file");
    expectRefused("vortex /dev/zero", "/dev/zero is no ordinary file");
    expectRefused("vortex truncated.vti -o out.vti", "truncated.vti");
    expectRefused("vortex curve.csv", "curve.csv is no flow solution");
}

TEST_F(BadInput, CommandLines) {
    expectRefused("", "A subcommand is required");
    expectRefused("nonsense", "there is no command nonsense");
    expectRefused("vortex", "INPUT is required");
    expectRefused("vortex flow.vti --nonsense", "--nonsense");
    expectRefused("vortex flow.vti --fields q,spin",
                  "there is no field \"spin\"; the fields are q");
    expectRefused("vortex flow.vti --image p.png --iso vorticity", "is no scalar field to draw");
    expectRefused("vortex flow.vti --image p.png --iso q=much", "no value of an iso-surface");
    expectRefused("curve curve.csv --straighten", "--straighten");
    expectRefused("curve curve.csv --resample many", "--resample: \"many\" is no number");
    expectRefused("curve curve.csv --cut 0.5", "--cut");
    expectRefused("curve curve.csv --rotate 0,0,0 0,0,0 5", "the axis 0,0,0 has no length");
    expectRefused("curve curve.csv --curve 2", "has no curve \"2\"");
    expectRefused("curve curve.csv --columns 1,9", "has no column 9");
}

TEST_F(BadInput, NumbersThatAreNone) {
    expectRefused("vortex flow.vti --image p.png --iso q=nan", "\"nan\" is no value");
    expectRefused("curve curve.csv --extend inf", "--extend: \"inf\" is no number");
    expectRefused("curve curve.csv --resample 2.5", "--resample: \"2.5\" is no whole number");
    expectRefused("curve curve.csv --columns 1,2,1,2", "at most three columns");
    expectRefused("curve curve.csv --columns 0", "has no column 0");
}

TEST_F(BadInput, OptionsThatWouldHaveNoEffect) {
    expectRefused("vortex flow.vti --iso q=1", "--iso is about the picture");
    for (const std::string ends : {"0.5 2", "-0.1 1"}) {
        expectRefused("curve curve.csv --cut " + ends, "reaches beyond the ends of the curve");
    }
    EXPECT_NE(qel("curve curve.csv --extend -0.1").err.find("--extend -0.1 shortens the curve"),
              std::string::npos);
}

// The library's own refusals come with the curve and the operation.
TEST_F(BadInput, Operations) {
    expectRefused("curve curve.csv --cut 0.7 0.2 -o out.csv", "curve, --cut: ");
    expectRefused("curve curve.csv --resample 1 -o out.csv", "curve, --resample: ");
    expectRefused("curve curve.csv --tessellate 7 -o out.csv", "curve, --tessellate: ");
    expectRefused("curve curve.csv --art 0,0,0 0,0,0 -o out.csv", "curve, --art: ");
}

TEST_F(BadInput, Outputs) {
    expectRefused("vortex flow.vti -o nowhere/out.vti", "there is no folder nowhere");
    expectRefused("vortex flow.vti -o out.vtu", "is written to a file that ends in .vti");
    expectRefused("vortex flow.vti --image p.jpg", "has to end in .png");
    expectRefused("vortex flow.vti --stats nowhere/s.csv", "there is no folder nowhere");
    expectRefused("curve curve.csv -o out.xyz", "curves are written to .csv");
    expectRefused("curve curve.csv --image p.gif", "has to end in .png or .svg");
    expectRefused("nearest curve.csv curve.csv -o nowhere/n.csv", "there is no folder nowhere");
    std::filesystem::create_symlink("round", folder / "round");
    expectRefused("curve curve.csv -o round/out.csv", "round/out.csv: Too many levels");
}

TEST_F(BadInput, SaysWhatToInstallWithoutADisplay) {
    const auto run = shell("export PATH=; unset DISPLAY; qel vortex flow.vti --image p.png");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("install the package xvfb"), std::string::npos) << run.err;
}

TEST_F(BadInput, DamagedCurveFiles) {
    write("mixed.csv", "x,y\n0,0\n1,abc\n");
    expectRefused("curve mixed.csv", "mixed.csv, line 3");
    write("ragged.txt", "0 0\n1 1\n2 2 2\n");
    expectRefused("curve ragged.txt", "ragged.txt, line 3: a row of 3 numbers after rows of 2");
    write("broken.json", "{\"type\": \"FeatureCollection\", \"features\": [");
    expectRefused("curve broken.json", "broken.json is no GeoJSON");
    write("other.json", "{\"a\": 1}");
    expectRefused("curve other.json", "other.json is no GeoJSON");
    write("broken.gpx", "<gpx><trk><trkseg>");
    expectRefused("curve broken.gpx", "broken.gpx is no GPX");
    write("hole.csv", "x,y,t\n0,0,nan\n1,nan,2\n2,2,3\n");
    expectRefused("curve hole.csv", "hole: point 2 has a coordinate that is not finite");
    expectRefused("nearest curve.csv hole.csv", "hole.csv: point 2 has a coordinate that is");
    write("start.csv", "0,N/A\n1,1\n2,2\n");
    expectRefused("curve start.csv",
                  "start.csv, start: point 1 has a coordinate that is not finite");
    write("point.csv", "x,y\n0,0\n");
    expectRefused("curve point.csv", "has no curve of at least two points");
}

// Some of VTK's readers crash on what is left of a file.
TEST_F(BadInput, EveryPartOfABinaryFile) {
    vtkNew<vtkPolyData> lines;
    vtkNew<vtkPoints> points;
    vtkNew<vtkCellArray> cells;
    cells->InsertNextCell(1000);
    for (int i = 0; i < 1000; ++i) {
        cells->InsertCellPoint(points->InsertNextPoint(i, i % 7, 0.0));
    }
    lines->SetPoints(points);
    lines->SetLines(cells);
    vtkNew<vtkPolyDataWriter> writer;
    writer->SetInputData(lines);
    writer->SetFileTypeToBinary();
    writer->SetFileName((folder / "lines.vtk").c_str());
    writer->Write();
    const std::string whole = text("lines.vtk");
    EXPECT_EQ(qel("curve lines.vtk").status, 0);
    for (std::size_t part = 1; part < 20; ++part) {
        write("part.vtk", whole.substr(0, part * whole.size() / 20));
        expectRefused("curve part.vtk -o out.csv", "part.vtk");
    }
}

// Numbers that are all but equal, and those that are too far apart for a difference.
TEST_F(BadInput, CurvesThatAreHardToDraw) {
    write("close.csv", "x,y\n1e20,0\n100000000000000016384,1\n");
    const auto run = qel("curve close.csv --image close.svg");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_LT(text("close.svg").size(), 200000U);
    write("far.csv", "x,y\n-1.7e308,0\n1.7e308,1\n");
    expectRefused("curve far.csv --image far.svg", "the curves are too large to draw");
}

// Whose length leads back to where it stands.
TEST_F(BadInput, NamesInExodusFilesThatNeverEnd) {
    const auto number = [](std::uint64_t value) {
        std::string bytes;
        for (int shift = 56; shift >= 0; shift -= 8) {
            bytes += static_cast<char>(value >> static_cast<unsigned>(shift));
        }
        return bytes;
    };
    const std::string header = std::string("CDF\5", 4) + number(1);
    const std::string dimensions = std::string("\0\0\0\12", 4) + number(std::uint64_t{1} << 60U);
    write("flow.ex2", header + dimensions + number(std::uint64_t(0) - 16) + number(5));
    expectRefused("vortex flow.ex2", "flow.ex2 is damaged: it ends too early");
}

// Trees of any depth cannot be taken apart by recursion, which is what VTK does.
TEST_F(BadInput, FilesThatNestTooDeeply) {
    constexpr int n = 100000;
    const std::string elements = repeated("<a>", n) + repeated("</a>", n);
    write("deep.vti", "<VTKFile type=\"ImageData\">" + elements +
                          "<ImageData WholeExtent=\"0 1 0 1 0 1\"/></VTKFile>");
    write("deep.pvtk", "<File version=\"pvtk-1.0\">" + elements + "</File>");
    write("deep.gpx", "<gpx>" + elements + "</gpx>");
    write("deep.json",
          repeated(R"({"type": "GeometryCollection", "geometries": [)", n) + repeated("]}", n));
    for (const auto& [arguments, reason] :
         {std::pair("vortex deep.vti", "deep.vti: the reader fails, the file is damaged"),
          std::pair("vortex deep.pvtk", "deep.pvtk is no partitioned VTK file, or damaged"),
          std::pair("curve deep.gpx", "deep.gpx has no curve of at least two points"),
          std::pair("curve deep.json", "deep.json: geometries are nested too deeply")}) {
        SCOPED_TRACE(arguments);
        const auto run = shell(std::string("ulimit -s 1024; qel ") + arguments); // 1 MiB
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.rfind("qel: error: ", 0), 0U) << run.err;
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
    }
}

TEST_F(BadInput, HelpAndVersionAreNoErrors) {
    const auto help = qel("vortex --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("Examples:"), std::string::npos);
    EXPECT_NE(help.out.find("  lambda2                middle eigenvalue"), std::string::npos);
    EXPECT_EQ(qel("--version").status, 0);
}

} // namespace
