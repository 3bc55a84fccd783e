// Formats of flow solutions for which the tests make small files.
#include "Flows.h"
#include "Program.h"

#include <vtkAppendFilter.h>
#include <vtkPDataSetWriter.h>
#include <vtkXMLPImageDataWriter.h>

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
    expectRefused("vortex case --velocity W", "there is no array W");
}

} // namespace
