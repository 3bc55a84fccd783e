// Partitioned unstructured grids: their pieces become one grid, with the values of the whole.
#include "Flows.h"
#include "Program.h"

#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>

#include <vtkAppendFilter.h>
#include <vtkCellData.h>
#include <vtkIdTypeArray.h>
#include <vtkUnsignedCharArray.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLUnstructuredGridReader.h>
#include <vtkXMLUnstructuredGridWriter.h>

#include "reading/PieceJoining.h"

namespace {

using Grid = vtkSmartPointer<vtkUnstructuredGrid>;
using Place = std::array<double, 3>;

constexpr int kPieces = 3;

// Voxels, with a velocity whose gradients do not come out even.
Grid makeWhole() {
    vtkNew<vtkAppendFilter> append;
    append->SetInputData(qel_test::rotation(9, 8, 7));
    append->Update();
    Grid grid = append->GetOutput();
    vtkDataArray* velocity = grid->GetPointData()->GetArray("velocity");
    for (vtkIdType i = 0; i < grid->GetNumberOfPoints(); ++i) {
        Place x;
        grid->GetPoint(i, x.data());
        velocity->SetTuple3(i, std::sin(3 * x[0] + x[1]), std::cos(x[1] * x[2]),
                            std::sin(x[2] + 2 * x[0] * x[1]));
    }
    return grid;
}

vtkSmartPointer<vtkIdTypeArray> numbers(vtkIdType count) {
    auto ids = vtkSmartPointer<vtkIdTypeArray>::New();
    ids->SetName("Id");
    for (vtkIdType i = 0; i < count; ++i) {
        ids->InsertNextValue(1000 + i);
    }
    return ids;
}

void addGlobalIds(vtkUnstructuredGrid* grid) {
    grid->GetPointData()->SetGlobalIds(numbers(grid->GetNumberOfPoints()));
    grid->GetCellData()->SetGlobalIds(numbers(grid->GetNumberOfCells()));
}

vtkIdType idOf(vtkDataSetAttributes* attributes, vtkIdType tuple) {
    return static_cast<vtkIdType>(attributes->GetGlobalIds()->GetTuple1(tuple));
}

// A piece of some cells of the whole, with the points that they use.
template <typename Holds>
Grid extract(vtkUnstructuredGrid* whole, const Holds& holds) {
    std::vector<vtkIdType> number(static_cast<std::size_t>(whole->GetNumberOfPoints()), -1);
    vtkNew<vtkPoints> points;
    Grid piece = Grid::New();
    piece->SetPoints(points);
    piece->GetPointData()->CopyAllOn();
    piece->GetPointData()->CopyAllocate(whole->GetPointData());
    piece->GetCellData()->CopyAllOn();
    piece->GetCellData()->CopyAllocate(whole->GetCellData());
    piece->Allocate(whole->GetNumberOfCells());
    vtkNew<vtkIdList> corners;
    for (vtkIdType cell = 0; cell < whole->GetNumberOfCells(); ++cell) {
        if (!holds(cell)) {
            continue;
        }
        whole->GetCellPoints(cell, corners);
        for (vtkIdType& corner : *corners) {
            vtkIdType& mine = number[static_cast<std::size_t>(corner)];
            if (mine < 0) {
                mine = points->InsertNextPoint(whole->GetPoint(corner));
                piece->GetPointData()->CopyData(whole->GetPointData(), corner, mine);
            }
            corner = mine;
        }
        const vtkIdType copy = piece->InsertNextCell(whole->GetCellType(cell), corners);
        piece->GetCellData()->CopyData(whole->GetCellData(), cell, copy);
    }
    return piece;
}

std::vector<Grid> cutInRows(vtkUnstructuredGrid* whole) {
    std::vector<Grid> pieces;
    pieces.reserve(kPieces);
    const vtkIdType count = whole->GetNumberOfCells();
    for (int piece = 0; piece < kPieces; ++piece) {
        pieces.push_back(
            extract(whole, [&](auto cell) { return cell * kPieces / count == piece; }));
    }
    return pieces;
}

// Neighbouring cells lie in different pieces.
std::vector<Grid> cutInTurns(vtkUnstructuredGrid* whole) {
    std::vector<Grid> pieces;
    pieces.reserve(kPieces);
    for (int piece = 0; piece < kPieces; ++piece) {
        pieces.push_back(extract(whole, [&](auto cell) { return cell % kPieces == piece; }));
    }
    return pieces;
}

vtkSmartPointer<vtkUnsignedCharArray> noGhosts(vtkIdType count) {
    auto flags = vtkSmartPointer<vtkUnsignedCharArray>::New();
    flags->SetName(vtkDataSetAttributes::GhostArrayName());
    flags->SetNumberOfValues(count);
    flags->Fill(0);
    return flags;
}

// Every piece is the whole, with the cells of the others as ghosts. A point belongs to the last
// piece with a cell at it; the others hold a wrong velocity there.
std::vector<Grid> withGhosts(vtkUnstructuredGrid* whole) {
    std::vector<int> owner(static_cast<std::size_t>(whole->GetNumberOfPoints()));
    vtkNew<vtkIdList> corners;
    for (vtkIdType cell = 0; cell < whole->GetNumberOfCells(); ++cell) {
        whole->GetCellPoints(cell, corners);
        for (const vtkIdType corner : *corners) {
            int& at = owner[static_cast<std::size_t>(corner)];
            at = std::max(at, static_cast<int>(cell % kPieces));
        }
    }
    std::vector<Grid> pieces;
    pieces.reserve(kPieces);
    for (int piece = 0; piece < kPieces; ++piece) {
        Grid grid = Grid::New();
        grid->DeepCopy(whole);
        const auto cells = noGhosts(whole->GetNumberOfCells());
        const auto points = noGhosts(whole->GetNumberOfPoints());
        for (vtkIdType cell = 0; cell < whole->GetNumberOfCells(); ++cell) {
            cells->SetValue(cell,
                            cell % kPieces == piece ? 0 : vtkDataSetAttributes::DUPLICATECELL);
        }
        for (vtkIdType point = 0; point < whole->GetNumberOfPoints(); ++point) {
            if (owner[static_cast<std::size_t>(point)] != piece) {
                points->SetValue(point, vtkDataSetAttributes::DUPLICATEPOINT);
                grid->GetPointData()->GetArray("velocity")->SetTuple3(point, 1e3, -1e3, piece);
            }
        }
        grid->GetCellData()->AddArray(cells);
        grid->GetPointData()->AddArray(points);
        pieces.push_back(grid);
    }
    return pieces;
}

// Pieces one after another, as the reader hands them over.
Grid inOne(const std::vector<Grid>& pieces, std::vector<vtkIdType>& sizes) {
    vtkNew<vtkAppendFilter> append;
    for (const Grid& piece : pieces) {
        append->AddInputData(piece);
        sizes.push_back(piece->GetNumberOfPoints());
    }
    append->Update();
    Grid grid = append->GetOutput();
    grid->GetPointData()->SetActiveGlobalIds("Id");
    grid->GetCellData()->SetActiveGlobalIds("Id");
    return grid;
}

program::JoinedGrid join(const std::vector<Grid>& pieces) {
    std::vector<vtkIdType> sizes;
    const Grid grid = inOne(pieces, sizes);
    return program::joinPieces(grid, sizes);
}

Grid cubeAt(double x, bool asPolyhedron = false) {
    vtkNew<vtkPoints> points;
    for (int i = 0; i < 8; ++i) {
        points->InsertNextPoint(x + (i & 1), (i >> 1) & 1, i >> 2);
    }
    Grid grid = Grid::New();
    grid->SetPoints(points);
    const vtkIdType voxel[] = {0, 1, 2, 3, 4, 5, 6, 7};
    const vtkIdType faces[] = {6, 4, 0, 2, 3, 1, 4, 4, 5, 7, 6, 4, 0, 1, 5, 4,
                               4, 2, 6, 7, 3, 4, 0, 4, 6, 2, 4, 1, 3, 7, 5};
    grid->Allocate(1);
    if (asPolyhedron) {
        vtkNew<vtkIdList> stream;
        for (const vtkIdType number : faces) {
            stream->InsertNextId(number);
        }
        grid->InsertNextCell(VTK_POLYHEDRON, stream);
    } else {
        grid->InsertNextCell(VTK_VOXEL, 8, voxel);
    }
    return grid;
}

std::map<Place, Place> cornersByPlace(vtkUnstructuredGrid* grid, vtkIdType cell) {
    std::map<Place, Place> corners;
    vtkCell* it = grid->GetCell(cell);
    for (vtkIdType i = 0; i < it->GetNumberOfPoints(); ++i) {
        Place x;
        grid->GetPoint(it->GetPointId(static_cast<int>(i)), x.data());
        corners[x] = x;
    }
    return corners;
}

void expectSameCells(vtkUnstructuredGrid* actual, vtkUnstructuredGrid* expected) {
    ASSERT_EQ(actual->GetNumberOfPoints(), expected->GetNumberOfPoints());
    ASSERT_EQ(actual->GetNumberOfCells(), expected->GetNumberOfCells());
    for (vtkIdType cell = 0; cell < expected->GetNumberOfCells(); ++cell) {
        ASSERT_EQ(actual->GetCellType(cell), expected->GetCellType(cell));
        ASSERT_EQ(cornersByPlace(actual, cell), cornersByPlace(expected, cell)) << cell;
    }
}

TEST(PieceJoining, MakesOnePointOfThoseAtOnePlace) {
    const Grid whole = makeWhole();
    const auto pieces = cutInRows(whole);
    const auto joined = join(pieces);
    EXPECT_FALSE(joined.byGlobalIds);
    EXPECT_EQ(joined.ambiguousPoints, 0);
    vtkIdType all = 0;
    for (const Grid& piece : pieces) {
        all += piece->GetNumberOfPoints();
    }
    EXPECT_EQ(joined.joinedPoints, all - whole->GetNumberOfPoints());
    expectSameCells(joined.grid, whole);
}

TEST(PieceJoining, BringsPointsAndCellsWithGlobalIdsIntoTheOrderOfThese) {
    const Grid whole = makeWhole();
    addGlobalIds(whole);
    const auto joined = join(cutInTurns(whole));
    EXPECT_TRUE(joined.byGlobalIds);
    EXPECT_FALSE(joined.wrongGlobalIds);
    expectSameCells(joined.grid, whole);
    auto* velocity = joined.grid->GetPointData()->GetArray("velocity");
    auto* expected = whole->GetPointData()->GetArray("velocity");
    for (vtkIdType i = 0; i < whole->GetNumberOfPoints(); ++i) {
        EXPECT_EQ(idOf(joined.grid->GetPointData(), i), 1000 + i);
        for (int axis = 0; axis < 3; ++axis) {
            ASSERT_EQ(velocity->GetComponent(i, axis), expected->GetComponent(i, axis)) << i;
        }
    }
    for (vtkIdType i = 0; i < whole->GetNumberOfCells(); ++i) {
        ASSERT_EQ(idOf(joined.grid->GetCellData(), i), 1000 + i);
    }
}

TEST(PieceJoining, JoinsPointsOfOneGlobalIdThatAreRoundedDifferently) {
    std::vector<Grid> pieces{cubeAt(0.0), cubeAt(1.0 + 1e-12)};
    for (int piece = 0; piece < 2; ++piece) {
        addGlobalIds(pieces[static_cast<std::size_t>(piece)]);
    }
    auto* ids = vtkIdTypeArray::SafeDownCast(pieces[1]->GetPointData()->GetGlobalIds());
    for (vtkIdType i = 0; i < 8; ++i) {
        ids->SetValue(i, i % 2 == 0 ? 1000 + i + 1 : 2000 + i);
    }
    for (const Grid& piece : pieces) {
        piece->GetCellData()->Initialize();
        vtkNew<vtkPoints> exact; // floats would round both alike
        exact->SetDataTypeToDouble();
        exact->DeepCopy(piece->GetPoints());
        piece->SetPoints(exact);
    }
    pieces[1]->GetPoints()->SetPoint(0, 1.0 + 1e-12, 0.0, 0.0);
    const auto joined = join(pieces);
    EXPECT_TRUE(joined.byGlobalIds);
    EXPECT_EQ(joined.joinedPoints, 4);
    EXPECT_EQ(joined.grid->GetNumberOfPoints(), 12);
}

TEST(PieceJoining, DoesNotTrustIdsThatEachPieceCountsForItself) {
    const std::vector<Grid> pieces{cubeAt(0.0), cubeAt(1.0)};
    for (const Grid& piece : pieces) {
        addGlobalIds(piece);
    }
    const auto joined = join(pieces);
    EXPECT_TRUE(joined.wrongGlobalIds);
    EXPECT_FALSE(joined.byGlobalIds);
    EXPECT_EQ(joined.joinedPoints, 4);
    EXPECT_EQ(joined.grid->GetNumberOfPoints(), 12);
}

TEST(PieceJoining, LeavesGhostsOutAndKeepsThePointsOfTheirOwners) {
    const Grid whole = makeWhole();
    const auto joined = join(withGhosts(whole));
    EXPECT_EQ(joined.ghostCells, (kPieces - 1) * whole->GetNumberOfCells());
    ASSERT_EQ(joined.grid->GetNumberOfPoints(), whole->GetNumberOfPoints());
    EXPECT_EQ(joined.grid->GetPointGhostArray(), nullptr);
    EXPECT_EQ(joined.grid->GetCellGhostArray(), nullptr);
    std::map<Place, Place> expected;
    for (vtkIdType i = 0; i < whole->GetNumberOfPoints(); ++i) {
        Place x;
        whole->GetPoint(i, x.data());
        whole->GetPointData()->GetArray("velocity")->GetTuple(i, expected[x].data());
    }
    for (vtkIdType i = 0; i < joined.grid->GetNumberOfPoints(); ++i) {
        Place x;
        Place velocity;
        joined.grid->GetPoint(i, x.data());
        joined.grid->GetPointData()->GetArray("velocity")->GetTuple(i, velocity.data());
        ASSERT_EQ(velocity, expected.at(x)) << i;
    }
}

TEST(PieceJoining, KeepsBothSidesOfAWallApart) {
    std::vector<vtkIdType> sizes;
    const Grid twoSides = inOne({cubeAt(0.0), cubeAt(1.0)}, sizes);
    const auto joined = join({twoSides, cubeAt(2.0)});
    EXPECT_EQ(joined.ambiguousPoints, 0);
    EXPECT_EQ(joined.joinedPoints, 4); // with the last cube; the wall at 1 is within a piece
    EXPECT_EQ(joined.grid->GetNumberOfPoints(), 20);

    const auto unclear = join({twoSides, cubeAt(1.0)});
    EXPECT_EQ(unclear.ambiguousPoints, 12); // three at each corner of the wall
    EXPECT_EQ(unclear.joinedPoints, 4);
}

TEST(PieceJoining, TakesNoPointForAnotherWithoutFiniteCoordinates) {
    std::vector<Grid> pieces{cubeAt(0.0), cubeAt(1.0)};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    pieces[0]->GetPoints()->SetPoint(1, nan, 0.0, 0.0);
    pieces[1]->GetPoints()->SetPoint(0, nan, 0.0, 0.0);
    const auto joined = join(pieces);
    EXPECT_EQ(joined.joinedPoints, 3);
    EXPECT_EQ(joined.grid->GetNumberOfPoints(), 13);
}

TEST(PieceJoining, TakesBothZerosForOne) {
    std::vector<Grid> pieces{cubeAt(-1.0), cubeAt(0.0)};
    for (vtkIdType i = 0; i < 8; i += 2) {
        Place x;
        pieces[1]->GetPoint(i, x.data());
        pieces[1]->GetPoints()->SetPoint(i, -0.0, x[1], x[2]);
    }
    EXPECT_EQ(join(pieces).joinedPoints, 4);
}

TEST(PieceJoining, JoinsPolyhedraByTheirFaces) {
    const auto joined = join({cubeAt(0.0, true), cubeAt(1.0, true)});
    EXPECT_EQ(joined.joinedPoints, 4);
    expectSameCells(joined.grid, join({cubeAt(0.0, true), cubeAt(1.0, true)}).grid);
    for (const vtkIdType cell : {vtkIdType{0}, vtkIdType{1}}) {
        const auto corners = cornersByPlace(joined.grid, cell);
        EXPECT_EQ(corners, cornersByPlace(cubeAt(static_cast<double>(cell), true), 0));
        vtkNew<vtkIdList> stream;
        joined.grid->GetFaceStream(cell, stream);
        ASSERT_EQ(stream->GetNumberOfIds(), 31);
        EXPECT_EQ(stream->GetId(0), 6);
    }
}

// -- Through the program ----

class PiecesOfAFlow : public qel_test::Program {
protected:
    // The pieces and the file that names them.
    void writePieces(const std::vector<Grid>& pieces) const {
        std::ofstream file(folder / "flow.pvtu");
        const bool ids = pieces[0]->GetPointData()->GetGlobalIds() != nullptr;
        const std::string header = ids ? " GlobalIds=\"Id\"" : "";
        const std::string array = ids ? R"(<PDataArray type="Int64" Name="Id"/>)" : "";
        auto* velocity = pieces[0]->GetPointData()->GetArray("velocity");
        const std::string type = velocity->GetDataType() == VTK_FLOAT ? "Float32" : "Float64";
        file << R"(<VTKFile type="PUnstructuredGrid" version="0.1" byte_order="LittleEndian" )"
             << R"(header_type="UInt64"><PUnstructuredGrid GhostLevel="0"><PPointData)" << header
             << "><PDataArray type=\"" << type << R"(" Name="velocity" NumberOfComponents="3"/>)"
             << array << "</PPointData><PCellData" << header << ">" << array
             << R"(</PCellData><PPoints><PDataArray type="Float32" Name="Points" )"
             << R"(NumberOfComponents="3"/></PPoints>)";
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const std::string name = "flow" + std::to_string(i) + ".vtu";
            writeData<vtkXMLUnstructuredGridWriter>(name, pieces[i]);
            file << "<Piece Source=\"" << name << "\"/>";
        }
        file << "</PUnstructuredGrid></VTKFile>";
    }

    Grid read(const std::string& name) const {
        vtkNew<vtkXMLUnstructuredGridReader> reader;
        reader->SetFileName((folder / name).c_str());
        reader->Update();
        return reader->GetOutput();
    }

    using Values = std::map<Place, std::vector<double>>;

    // Of all fields, at each point.
    Values fieldsOf(const std::string& name) const {
        const Grid grid = read(name);
        Values values;
        for (vtkIdType i = 0; i < grid->GetNumberOfPoints(); ++i) {
            Place x;
            grid->GetPoint(i, x.data());
            for (int a = 0; a < grid->GetPointData()->GetNumberOfArrays(); ++a) {
                vtkDataArray* array = grid->GetPointData()->GetArray(a);
                for (int c = 0; c < array->GetNumberOfComponents(); ++c) {
                    values[x].push_back(array->GetComponent(i, c));
                }
            }
        }
        return values;
    }
};

TEST_F(PiecesOfAFlow, GiveTheValuesOfTheWholeAtEveryPoint) {
    const Grid whole = makeWhole();
    writeData<vtkXMLUnstructuredGridWriter>("whole.vtu", whole);
    writePieces(cutInRows(whole));
    ASSERT_EQ(qel("vortex whole.vtu -o expected.vtu").status, 0);
    const auto run = qel("vortex flow.pvtu -o out.vtu");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("3 pieces of flow.pvtu are joined at"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("points by equal coordinates"), std::string::npos) << run.err;
    const Values expected = fieldsOf("expected.vtu");
    EXPECT_EQ(expected.size(), 9U * 8U * 7U);
    EXPECT_EQ(fieldsOf("out.vtu"), expected);
}

TEST_F(PiecesOfAFlow, GiveTheSameTableForAnyCutIfTheyHaveGlobalIds) {
    const Grid whole = makeWhole();
    addGlobalIds(whole);
    writeData<vtkXMLUnstructuredGridWriter>("whole.vtu", whole);
    const auto expected = qel("vortex whole.vtu -o expected.vtu --stats -");
    ASSERT_EQ(expected.status, 0) << expected.err;
    for (const auto& pieces : {cutInRows(whole), cutInTurns(whole)}) {
        writePieces(pieces);
        const auto run = qel("vortex flow.pvtu -o out.vtu --stats -");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.err.find("by global ids"), std::string::npos) << run.err;
        EXPECT_EQ(run.out, expected.out);
        EXPECT_EQ(fieldsOf("out.vtu"), fieldsOf("expected.vtu"));
    }
}

TEST_F(PiecesOfAFlow, SayWhereTheyCannotBeJoined) {
    std::vector<vtkIdType> sizes;
    std::vector<Grid> pieces{inOne({cubeAt(0.0), cubeAt(1.0)}, sizes), cubeAt(1.0)};
    for (const Grid& piece : pieces) {
        qel_test::addArray(piece, "velocity", 3, 1.0);
    }
    writePieces(pieces);
    const auto run = qel("vortex flow.pvtu");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("12 points at borders between pieces of flow.pvtu share their place"),
              std::string::npos)
        << run.err;
}

TEST_F(PiecesOfAFlow, AreRefusedIfOneIsMissing) {
    writePieces(cutInRows(makeWhole()));
    std::filesystem::remove(folder / "flow1.vtu");
    const auto run = qel("vortex flow.pvtu -o out.vtu");
    EXPECT_EQ(run.status, 2) << run.err;
    EXPECT_NE(run.err.find("flow.pvtu: File for piece 1 cannot be read"), std::string::npos)
        << run.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "out.vtu"));
}

} // namespace
