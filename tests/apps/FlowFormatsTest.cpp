// Formats of flow solutions for which the tests make small files.
#include <iomanip>
#include <sstream>

#include "Flows.h"
#include "Program.h"

#include <vtkAMRBox.h>
#include <vtkAppendFilter.h>
#include <vtkDataSetWriter.h>
#include <vtkExodusIIWriter.h>
#include <vtkOverlappingAMR.h>
#include <vtkPDataSetWriter.h>
#include <vtkRectilinearGrid.h>
#include <vtkUniformGrid.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLPImageDataWriter.h>
#include <vtkXMLUniformGridAMRWriter.h>

namespace {

namespace fs = std::filesystem;

class FlowFormats : public qel_test::Program {
protected:
    void expectRotation(const std::string& input, double valid) const {
        const auto run = qel("vortex " + input + " --fields vorticity --stats - -o out");
        ASSERT_EQ(run.status, 0) << run.err;
        const auto vorticity = statistics(run.out).at("Vorticity magnitude");
        EXPECT_NEAR(vorticity.minimum, 2.0, 1e-4);
        EXPECT_NEAR(vorticity.maximum, 2.0, 1e-4);
        EXPECT_EQ(static_cast<double>(vorticity.valid), valid);
    }
};

TEST_F(FlowFormats, PartitionedXml) {
    vtkNew<vtkXMLPImageDataWriter> writer;
    writer->SetInputData(qel_test::rotation(6, 5, 8));
    writer->SetFileName((folder / "flow.pvti").c_str());
    writer->SetNumberOfPieces(2);
    writer->SetEndPiece(1);
    writer->Write();
    ASSERT_TRUE(fs::exists(folder / "flow_1.vti"));
    expectRotation("flow.pvti", 6 * 5 * 8);
}

TEST_F(FlowFormats, PartitionedLegacy) {
    vtkNew<vtkAppendFilter> unstructured;
    unstructured->AddInputData(qel_test::rotation(6, 5, 8));
    vtkNew<vtkPDataSetWriter> writer;
    writer->SetInputConnection(unstructured->GetOutputPort());
    writer->SetFileName((folder / "flow.pvtk").c_str());
    writer->SetNumberOfPieces(2);
    writer->SetEndPiece(1);
    writer->Write();
    // The writer asks for pieces, and this input gives all of it for each.
    expectRotation("flow.pvtk", 2 * 6 * 5 * 8);
}

// VTK's own reader fails on image data and rectilinear grids in pieces.
TEST_F(FlowFormats, PartitionedLegacyOnAxes) {
    for (const bool image : {true, false}) {
        SCOPED_TRACE(image);
        std::string index = R"(<File version="pvtk-1.0" dataType=")" +
                            std::string(image ? "vtkImageData" : "vtkRectilinearGrid") +
                            R"(" wholeExtent="0 5 0 4 0 8" numberOfPieces="2">)";
        fs::create_directory(folder / "pieces");
        for (int piece = 0; piece < 2; ++piece) {
            auto part = qel_test::rotation(6, 5, 5);
            part->SetOrigin(-1.0, -1.0, 2.0 * piece);
            const std::string name = "pieces/" + std::to_string(piece) + ".vtk";
            vtkNew<vtkDataSetWriter> writer;
            if (image) {
                writer->SetInputData(part);
            } else {
                writer->SetInputData(qel_test::rectilinear(part));
            }
            writer->SetFileName((folder / name).c_str());
            writer->Write();
            index += R"(<Piece fileName=")" + name + R"(" extent="0 5 0 4 )" +
                     (piece == 0 ? "0 4" : "4 8") + R"("/>)";
        }
        write("flow.pvtk", index + "</File>\n");
        expectRotation("flow.pvtk", 2 * 6 * 5 * 5);
        EXPECT_TRUE(fs::exists(folder / "out.vtm"));

        fs::remove(folder / "pieces/1.vtk");
        expectRefused("vortex flow.pvtk -o out", "there is no file pieces/1.vtk");
        write("pieces/1.vtk", "something else");
        expectRefused("vortex flow.pvtk -o out", "pieces/1.vtk, a piece of flow.pvtk, is no");
    }
    write("short.pvtk", "<File version=\"pvtk-1.0\" dataType=\"vtkImageData\"");
    expectRefused("vortex short.pvtk", "short.pvtk is no partitioned VTK file, or damaged");
    write("none.pvtk", "<File version=\"pvtk-1.0\" dataType=\"vtkImageData\"></File>");
    expectRefused("vortex none.pvtk", "none.pvtk has no pieces");
}

// All levels of a refined grid, though VTK's reader takes but the first by itself.
TEST_F(FlowFormats, EveryLevelOfRefinedGrids) {
    vtkNew<vtkOverlappingAMR> levels;
    const int blocks[2] = {1, 1};
    const double origin[3] = {-1.0, -1.0, 0.0};
    levels->Initialize(2, blocks);
    levels->SetOrigin(origin);
    levels->SetGridDescription(VTK_XYZ_GRID);
    const int cells[2] = {8, 4};
    for (unsigned level = 0; level < 2; ++level) {
        const int n = cells[level];
        const double step = level == 0 ? 0.5 : 0.25;
        auto image = qel_test::rotation(n + 1, n + 1, n + 1);
        vtkNew<vtkUniformGrid> grid;
        image->SetSpacing(step, step, step);
        grid->ShallowCopy(qel_test::turning(image));
        const double steps[3] = {step, step, step};
        levels->SetSpacing(level, steps);
        const int low[3] = {0, 0, 0};
        const int high[3] = {n - 1, n - 1, n - 1};
        levels->SetAMRBox(level, 0, vtkAMRBox(low, high));
        levels->SetDataSet(level, 0, grid);
        levels->SetRefinementRatio(level, 2);
    }
    levels->GenerateParentChildInformation();
    writeData<vtkXMLUniformGridAMRWriter>("flow.vth", levels);
    expectRotation("flow.vth", 9 * 9 * 9 + 5 * 5 * 5);
}

// -- Exodus and EnSight ----

TEST_F(FlowFormats, ExodusWholeAndTruncated) {
    vtkNew<vtkAppendFilter> unstructured;
    unstructured->AddInputData(qel_test::rotation(6, 5, 8));
    vtkNew<vtkExodusIIWriter> writer;
    writer->SetInputConnection(unstructured->GetOutputPort());
    writer->WriteOutBlockIdArrayOn();
    writer->SetFileName((folder / "flow.ex2").c_str());
    writer->Write();
    expectRotation("flow.ex2", 6 * 5 * 8);
    // What is missing at the end would be taken for zeros.
    const std::string whole = text("flow.ex2");
    for (const std::size_t size :
         {std::size_t{10}, std::size_t{200}, whole.size() / 2, whole.size() - 64}) {
        write("short.ex2", whole.substr(0, size));
        expectRefused("vortex short.ex2 -o out", "short.ex2");
    }
}

// A box of cells of unit size, in words.
std::string ensightGeometry(int n) {
    std::ostringstream out;
    const int m = n + 1;
    out << "A box\nof cells\nnode id assign\nelement id assign\npart\n"
        << std::setw(10) << 1 << "\nfluid\ncoordinates\n"
        << std::setw(10) << m * m * m << "\n";
    for (int axis = 0; axis < 3; ++axis) {
        for (int point = 0; point < m * m * m; ++point) {
            const int place[3] = {point % m, point / m % m, point / m / m};
            out << std::setw(12) << std::scientific << std::setprecision(5)
                << static_cast<double>(place[axis]) << "\n";
        }
    }
    out << "hexa8\n" << std::setw(10) << n * n * n << "\n";
    for (int cell = 0; cell < n * n * n; ++cell) {
        const int corner = 1 + cell % n + m * (cell / n % n + m * (cell / n / n));
        for (const int step : {0, 1, m + 1, m, m * m, m * m + 1, m * m + m + 1, m * m + m}) {
            out << std::setw(10) << corner + step;
        }
        out << "\n";
    }
    return out.str();
}

std::string ensightVelocity(int n) {
    std::ostringstream out;
    const int m = n + 1;
    out << "velocity\npart\n" << std::setw(10) << 1 << "\ncoordinates\n";
    for (int component = 0; component < 3; ++component) {
        for (int point = 0; point < m * m * m; ++point) {
            const double value[3] = {-1.0 * (point / m % m), 1.0 * (point % m), 0.0};
            out << std::setw(12) << std::scientific << std::setprecision(5) << value[component]
                << "\n";
        }
    }
    return out.str();
}

TEST_F(FlowFormats, EnSightInTextWithLinesOfWindows) {
    constexpr int n = 4;
    for (const bool windows : {false, true}) {
        const auto withEnds = [&](std::string lines) {
            for (std::size_t at = 0; windows && (at = lines.find('\n', at)) < lines.size();
                 at += 2) {
                lines.replace(at, 1, "\r\n");
            }
            return lines;
        };
        fs::create_directories(folder / "my case");
        write("my case/flow.case",
              withEnds("FORMAT\ntype: ensight gold\nGEOMETRY\nmodel: flow.geo\n"
                       "VARIABLE\nvector per node: velocity flow.vel\n"));
        write("my case/flow.geo", withEnds(ensightGeometry(n)));
        write("my case/flow.vel", withEnds(ensightVelocity(n)));
        expectRotation("'my case/flow.case'", (n + 1) * (n + 1) * (n + 1));
    }
    fs::remove(folder / "my case/flow.vel");
    expectRefused("vortex 'my case/flow.case'", "reading my case/flow.case");
}

// -- OpenFOAM ----

// A box of cells of unit size in the files of a case.
class FoamBox {
public:
    explicit FoamBox(int n) : n_(n) {}

    static std::string header(const std::string& type, const std::string& object) {
        return "FoamFile { version 2.0; format ascii; class " + type + "; object " + object +
               "; }\n";
    }

    std::string points() const {
        std::ostringstream out;
        const int m = n_ + 1;
        out << header("vectorField", "points") << m * m * m << "\n(\n";
        for (int k = 0; k < m; ++k) {
            for (int j = 0; j < m; ++j) {
                for (int i = 0; i < m; ++i) {
                    out << "(" << i << " " << j << " " << k << ")\n";
                }
            }
        }
        out << ")\n";
        return out.str();
    }

    // Inner faces first, with the cells on both sides; then those of the boundary.
    void makeFaces() {
        for (const bool inner : {true, false}) {
            for (int axis = 0; axis < 3; ++axis) {
                for (int k = 0; k <= n_; ++k) {
                    for (int j = 0; j < n_; ++j) {
                        for (int i = 0; i < n_; ++i) {
                            if ((k > 0 && k < n_) == inner) {
                                addFace(axis, k, j, i);
                            }
                        }
                    }
                }
            }
            innerFaces_ = inner ? owners_.size() : innerFaces_;
        }
    }

    std::string faces() const { return list("faceList", "faces", faces_); }
    std::string owner() const { return list("labelList", "owner", owners_); }
    std::string neighbour() const { return list("labelList", "neighbour", neighbours_); }
    std::string boundary() const {
        return header("polyBoundaryMesh", "boundary") + "1\n(\nwall { type wall; nFaces " +
               std::to_string(owners_.size() - innerFaces_) + "; startFace " +
               std::to_string(innerFaces_) + "; }\n)\n";
    }

    std::string velocity() const {
        std::ostringstream out;
        out << header("volVectorField", "U") << "dimensions [0 1 -1 0 0 0 0];\n"
            << "internalField nonuniform List<vector> " << n_ * n_ * n_ << "\n(\n";
        for (int cell = 0; cell < n_ * n_ * n_; ++cell) {
            out << "(" << -(cell / n_ % n_ + 0.5) << " " << cell % n_ + 0.5 << " 0)\n";
        }
        out << ");\nboundaryField { wall { type zeroGradient; } }\n";
        return out.str();
    }

private:
    int cell(const int c[3]) const { return c[0] + n_ * (c[1] + n_ * c[2]); }
    int point(const int p[3]) const { return p[0] + (n_ + 1) * (p[1] + (n_ + 1) * p[2]); }

    void addFace(int axis, int at, int b, int c) {
        const int second = (axis + 1) % 3;
        const int third = (axis + 2) % 3;
        int low[3];
        low[axis] = at - 1;
        low[second] = b;
        low[third] = c;
        int high[3] = {low[0], low[1], low[2]};
        high[axis] = at;
        const bool first = at == 0;
        std::ostringstream face;
        face << "4(";
        const int corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        for (int i = 0; i < 4; ++i) {
            int p[3];
            p[axis] = at;
            p[second] = b + corners[first ? 3 - i : i][0]; // normals point out of the owner
            p[third] = c + corners[first ? 3 - i : i][1];
            face << point(p) << (i < 3 ? " " : ")");
        }
        faces_.push_back(face.str());
        owners_.push_back(std::to_string(cell(first ? high : low)));
        if (at > 0 && at < n_) {
            neighbours_.push_back(std::to_string(cell(high)));
        }
    }

    static std::string list(const std::string& type, const std::string& object,
                            const std::vector<std::string>& items) {
        std::string text = header(type, object) + std::to_string(items.size()) + "\n(\n";
        for (const std::string& item : items) {
            text += item + "\n";
        }
        return text + ")\n";
    }

    int n_;
    std::size_t innerFaces_ = 0;
    std::vector<std::string> faces_;
    std::vector<std::string> owners_;
    std::vector<std::string> neighbours_;
};

TEST_F(FlowFormats, OpenFoamAtTheLastTime) {
    FoamBox box(6);
    box.makeFaces();
    for (const char* sub : {"system", "constant/polyMesh", "0", "2"}) {
        fs::create_directories(folder / "case" / sub);
    }
    write("case/system/controlDict", FoamBox::header("dictionary", "controlDict") +
                                         "startTime 0;\nendTime 2;\ndeltaT 1;\n"
                                         "writeControl timeStep;\nwriteInterval 2;\n");
    write("case/constant/polyMesh/points", box.points());
    write("case/constant/polyMesh/faces", box.faces());
    write("case/constant/polyMesh/owner", box.owner());
    write("case/constant/polyMesh/neighbour", box.neighbour());
    write("case/constant/polyMesh/boundary", box.boundary());
    write("case/2/U", box.velocity());
    const auto run = qel("vortex case --fields vorticity --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("time 2.0"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("array U"), std::string::npos) << run.err;
    EXPECT_GT(statistics(run.out).at("Vorticity magnitude").valid, 0);
    EXPECT_NEAR(statistics(run.out).at("Vorticity magnitude").maximum, 2.0, 0.3);
    for (const char* name : {"case/system/controlDict", "case/flow.foam"}) {
        write("case/flow.foam", "");
        EXPECT_EQ(qel(std::string("vortex ") + name + " --fields vorticity --stats -").out,
                  run.out);
    }
    expectRefused("vortex case --velocity W", "there is no array W");
    expectRefused("vortex case --time 99", "there is no time 99; the times are 0, 2");
    expectRefused("vortex case --time -1", "there is no time -1; the times are 0, 2");
    EXPECT_NE(qel("vortex case --time 1.5 --fields q").err.find("time 2.0"), std::string::npos);
    write("case/constant/polyMesh/faces", box.faces().substr(0, 500));
    expectRefused("vortex case", "reading case");
}

} // namespace
