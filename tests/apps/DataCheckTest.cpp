// Files whose parts do not fit together, so that VTK's filters would read what is not there.
#include <string>
#include <tuple>

#include "Program.h"

namespace {

class DataCheck : public qel_test::Program {
protected:
    // A legacy file of 27 points, the corners of eight cubes, with a velocity.
    void writeLegacy(const std::string& file, const std::string& kind,
                     const std::string& cells) const {
        std::string points = "POINTS 27 float\n";
        std::string velocity = "POINT_DATA 27\nVECTORS velocity float\n";
        for (int i = 0; i < 27; ++i) {
            const int x = i % 3;
            const int y = i / 3 % 3;
            points += std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(i / 9);
            velocity += std::to_string(-y) + " " + std::to_string(x) + " 0";
            points += "\n";
            velocity += "\n";
        }
        const bool sizesFirst = cells.rfind("DIMENSIONS", 0) == 0;
        write(file, "# vtk DataFile Version 3.0\ntitle\nASCII\nDATASET " + kind + "\n" +
                        (sizesFirst ? cells + points : points + cells) + velocity);
    }

    void expectDamaged(const std::string& command, const std::string& kind,
                       const std::string& cells, const std::string& reason) const {
        writeLegacy("flow.vtk", kind, cells);
        expectRefused(command + " flow.vtk", "flow.vtk is damaged: " + reason);
    }
};

const std::string kCells = "it has cells of points that are not there";

TEST_F(DataCheck, WholeFilesPass) {
    for (const auto& [kind, cells, option] :
         {std::tuple("STRUCTURED_GRID", "DIMENSIONS 3 3 3\n", ""),
          std::tuple("UNSTRUCTURED_GRID", "CELLS 1 5\n4 0 1 3 9\nCELL_TYPES 1\n10\n", ""),
          std::tuple("POLYDATA", "POLYGONS 1 4\n3 0 1 26\n", "--in-plane")}) {
        SCOPED_TRACE(kind);
        writeLegacy("flow.vtk", kind, cells);
        const auto run = qel(std::string("vortex flow.vtk ") + option);
        EXPECT_EQ(run.status, 0) << run.err;
    }
}

TEST_F(DataCheck, GridsOfTooFewPoints) {
    expectDamaged("vortex", "STRUCTURED_GRID", "DIMENSIONS 30 30 30\n", "it has too few points");
}

TEST_F(DataCheck, CellsOfPointsThatAreNotThere) {
    for (const std::string point : {"27", "99999999", "-1"}) {
        expectDamaged("vortex", "UNSTRUCTURED_GRID",
                      "CELLS 1 5\n4 0 1 3 " + point + "\nCELL_TYPES 1\n10\n", kCells);
        for (const std::string cells : {"VERTICES", "LINES", "POLYGONS", "TRIANGLE_STRIPS"}) {
            expectDamaged("vortex", "POLYDATA", cells + " 1 4\n3 0 1 " + point + "\n", kCells);
        }
        expectDamaged("curve", "POLYDATA", "LINES 1 4\n3 0 1 " + point + "\n", kCells);
    }
}

TEST_F(DataCheck, CellsOfTooFewPointsAndOfNoKind) {
    for (const std::string type : {"12", "25", "200"}) {
        expectDamaged("vortex", "UNSTRUCTURED_GRID",
                      "CELLS 1 5\n4 0 1 3 9\nCELL_TYPES 1\n" + type + "\n", kCells);
    }
}

TEST_F(DataCheck, FacesOfPointsThatAreNotThere) {
    const auto polyhedron = [](const std::string& lastPoint) {
        const std::string array = R"(<DataArray format="ascii" type=")";
        const std::string corners = "0 0 0 1 0 0 0 1 0 0 0 1</DataArray>";
        return R"(<VTKFile type="UnstructuredGrid" version="1.0"><UnstructuredGrid>)"
               R"(<Piece NumberOfPoints="4" NumberOfCells="1"><PointData>)" +
               array + R"(Float32" Name="velocity" NumberOfComponents="3">)" + corners +
               "</PointData><Points>" + array + R"(Float32" NumberOfComponents="3">)" + corners +
               "</Points><Cells>" + array + R"(Int64" Name="connectivity">0 1 2 3</DataArray>)" +
               array + R"(Int64" Name="offsets">4</DataArray>)" + array +
               R"(UInt8" Name="types">42</DataArray>)" + array +
               R"(Int64" Name="faces">4 3 0 1 2 3 0 1 3 3 1 2 3 3 0 2 )" + lastPoint +
               "</DataArray>" + array + R"(Int64" Name="faceoffsets">17</DataArray>)" +
               "</Cells></Piece></UnstructuredGrid></VTKFile>";
    };
    write("flow.vtu", polyhedron("3"));
    EXPECT_EQ(qel("vortex flow.vtu --fields q").status, 0);
    for (const std::string point : {"4", "99999999", "-1"}) {
        write("flow.vtu", polyhedron(point));
        expectRefused("vortex flow.vtu", "flow.vtu is damaged: " + kCells);
    }
}

} // namespace
