// Whether the parts of a data set fit together.
#include "reading/DataCheck.h"

#include <array>

#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkGenericCell.h>
#include <vtkIdTypeArray.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkRectilinearGrid.h>
#include <vtkStructuredData.h>
#include <vtkStructuredGrid.h>
#include <vtkUnsignedCharArray.h>
#include <vtkUnstructuredGrid.h>

#include "console/Messages.h"

namespace program {
namespace {

bool hasValues(vtkDataSetAttributes* arrays, vtkIdType count) {
    for (int i = 0; i < arrays->GetNumberOfArrays(); ++i) {
        if (arrays->GetAbstractArray(i)->GetNumberOfTuples() < count) {
            return false;
        }
    }
    return true;
}

bool hasPoints(vtkDataSet* data) {
    if (auto* grid = vtkStructuredGrid::SafeDownCast(data)) {
        return grid->GetNumberOfPoints() >= vtkStructuredData::GetNumberOfPoints(grid->GetExtent());
    }
    if (auto* grid = vtkRectilinearGrid::SafeDownCast(data)) {
        const int* n = grid->GetDimensions();
        return grid->GetXCoordinates()->GetNumberOfTuples() >= n[0] &&
               grid->GetYCoordinates()->GetNumberOfTuples() >= n[1] &&
               grid->GetZCoordinates()->GetNumberOfTuples() >= n[2];
    }
    return true;
}

bool hasCells(vtkCellArray* cells, vtkIdType points) {
    if (cells == nullptr || cells->GetNumberOfConnectivityIds() == 0) {
        return true;
    }
    double range[2];
    cells->GetConnectivityArray()->GetRange(range);
    return cells->IsValid() && range[0] >= 0.0 && range[1] < static_cast<double>(points);
}

// The least number of points of a cell of each type; none has so few where there is no such type.
std::array<vtkIdType, 256> minimumPoints() {
    std::array<vtkIdType, 256> minimum{};
    for (int type = 0; type < 256; ++type) {
        const auto cell = vtk::TakeSmartPointer(vtkGenericCell::InstantiateCell(type));
        minimum[static_cast<std::size_t>(type)] =
            cell != nullptr ? cell->GetNumberOfPoints() : VTK_ID_MAX;
    }
    return minimum;
}

// The faces of a polyhedron stand in one list: how many, and for each how many points, and which.
bool hasFaces(vtkIdTypeArray* list, vtkIdType at, vtkIdType points) {
    bool whole = true;
    const auto next = [&](vtkIdType limit) {
        whole = whole && at >= 0 && at < list->GetNumberOfTuples() && list->GetValue(at) >= 0 &&
                list->GetValue(at) < limit;
        return whole ? list->GetValue(at++) : 0;
    };
    for (vtkIdType faces = next(VTK_ID_MAX); whole && faces > 0; --faces) {
        for (vtkIdType corners = next(VTK_ID_MAX); whole && corners > 0; --corners) {
            next(points);
        }
    }
    return whole;
}

bool hasCells(vtkUnstructuredGrid* grid) {
    static const auto kMinPoints = minimumPoints();
    const vtkIdType cells = grid->GetNumberOfCells();
    const vtkIdType points = grid->GetNumberOfPoints();
    vtkUnsignedCharArray* types = grid->GetCellTypesArray();
    vtkIdTypeArray* places = grid->GetFaceLocations();
    const bool hasPlaces =
        places != nullptr && places->GetNumberOfTuples() >= cells && grid->GetFaces() != nullptr;
    if (!hasCells(grid->GetCells(), points) ||
        (cells > 0 && (types == nullptr || types->GetNumberOfTuples() < cells))) {
        return false;
    }
    for (vtkIdType i = 0; i < cells; ++i) {
        const unsigned char type = types->GetValue(i);
        if (grid->GetCells()->GetCellSize(i) < kMinPoints[type] ||
            (type == VTK_POLYHEDRON &&
             (!hasPlaces || !hasFaces(grid->GetFaces(), places->GetValue(i), points)))) {
            return false;
        }
    }
    return true;
}

bool hasCells(vtkDataSet* data) {
    const vtkIdType points = data->GetNumberOfPoints();
    if (auto* polygons = vtkPolyData::SafeDownCast(data)) {
        return hasCells(polygons->GetVerts(), points) && hasCells(polygons->GetLines(), points) &&
               hasCells(polygons->GetPolys(), points) && hasCells(polygons->GetStrips(), points);
    }
    auto* grid = vtkUnstructuredGrid::SafeDownCast(data);
    return grid == nullptr || hasCells(grid); // others are made of their extent
}

} // namespace

void checkData(vtkDataSet* data, const std::string& path) {
    refuseIf(!hasPoints(data), path, " is damaged: it has too few points");
    refuseIf(!hasCells(data), path, " is damaged: it has cells of points that are not there");
    refuseIf(!hasValues(data->GetPointData(), data->GetNumberOfPoints()) ||
                 !hasValues(data->GetCellData(), data->GetNumberOfCells()),
             path, " is damaged: it has too few values");
}

} // namespace program
