// Whether the parts of a data set fit together.
#include "DataCheck.h"

#include <algorithm>
#include <array>

#include <vtkCell.h>
#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkDataArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkGenericCell.h>
#include <vtkIdTypeArray.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkRectilinearGrid.h>
#include <vtkSmartPointer.h>
#include <vtkStructuredData.h>
#include <vtkStructuredGrid.h>
#include <vtkUnsignedCharArray.h>
#include <vtkUnstructuredGrid.h>

#include "Console.h"

namespace program {
namespace {

// Each of these holds if there is nothing wrong.

// -- Values and points ----

bool areLongEnough(vtkDataSetAttributes* arrays, vtkIdType count) {
    for (int i = 0; i < arrays->GetNumberOfArrays(); ++i) {
        if (arrays->GetAbstractArray(i)->GetNumberOfTuples() < count) {
            return false;
        }
    }
    return true;
}

bool hasAllPoints(vtkDataSet* data) {
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

// -- Cells ----

bool refersTo(vtkIdType points, vtkCellArray* cells) {
    if (cells == nullptr || cells->GetNumberOfConnectivityIds() == 0) {
        return true;
    }
    double range[2];
    cells->GetConnectivityArray()->GetRange(range);
    return cells->IsValid() && range[0] >= 0.0 && range[1] < static_cast<double>(points);
}

bool cellsFit(vtkPolyData* data) {
    const vtkIdType points = data->GetNumberOfPoints();
    return refersTo(points, data->GetVerts()) && refersTo(points, data->GetLines()) &&
           refersTo(points, data->GetPolys()) && refersTo(points, data->GetStrips());
}

// The fewest points of a cell of each type; none has so few where there is no such type.
std::array<vtkIdType, 256> fewestPoints() {
    std::array<vtkIdType, 256> fewest{};
    for (int type = 0; type < 256; ++type) {
        const auto cell = vtk::TakeSmartPointer(vtkGenericCell::InstantiateCell(type));
        fewest[static_cast<std::size_t>(type)] =
            cell != nullptr ? cell->GetNumberOfPoints() : VTK_ID_MAX;
    }
    return fewest;
}

bool haveTheirPoints(vtkUnstructuredGrid* grid) {
    static const auto kFewest = fewestPoints();
    vtkUnsignedCharArray* types = grid->GetCellTypesArray();
    const vtkIdType cells = grid->GetNumberOfCells();
    if (cells > 0 && (types == nullptr || types->GetNumberOfTuples() < cells)) {
        return false;
    }
    for (vtkIdType i = 0; i < cells; ++i) {
        if (grid->GetCells()->GetCellSize(i) < kFewest[types->GetValue(i)]) {
            return false;
        }
    }
    return true;
}

// The faces of a polyhedron stand in one list: how many, and for each how many points, and which.
bool areFaces(vtkIdTypeArray* list, vtkIdType at, vtkIdType points) {
    const vtkIdType size = list->GetNumberOfTuples();
    const auto isCount = [&](vtkIdType place) {
        return place >= 0 && place < size && list->GetValue(place) >= 0;
    };
    if (!isCount(at)) {
        return false;
    }
    for (vtkIdType faces = list->GetValue(at++); faces > 0; --faces) {
        if (!isCount(at) || list->GetValue(at) >= size - at) {
            return false;
        }
        for (vtkIdType corners = list->GetValue(at++); corners > 0; --corners, ++at) {
            if (list->GetValue(at) < 0 || list->GetValue(at) >= points) {
                return false;
            }
        }
    }
    return true;
}

bool polyhedraFit(vtkUnstructuredGrid* grid) {
    vtkIdTypeArray* places = grid->GetFaceLocations();
    for (vtkIdType i = 0; i < grid->GetNumberOfCells(); ++i) {
        if (grid->GetCellType(i) == VTK_POLYHEDRON &&
            (places == nullptr || places->GetNumberOfTuples() <= i || grid->GetFaces() == nullptr ||
             !areFaces(grid->GetFaces(), places->GetValue(i), grid->GetNumberOfPoints()))) {
            return false;
        }
    }
    return true;
}

bool cellsFit(vtkDataSet* data) {
    if (auto* polygons = vtkPolyData::SafeDownCast(data)) {
        return cellsFit(polygons);
    }
    if (auto* grid = vtkUnstructuredGrid::SafeDownCast(data)) {
        return refersTo(grid->GetNumberOfPoints(), grid->GetCells()) && haveTheirPoints(grid) &&
               polyhedraFit(grid);
    }
    return true; // made of its extent
}

} // namespace

void checkData(vtkDataSet* data, const std::string& path) {
    if (!hasAllPoints(data)) {
        throw UserError(path + " is damaged: it has too few points");
    }
    if (!cellsFit(data)) {
        throw UserError(path + " is damaged: it has cells of points that are not there");
    }
    if (!areLongEnough(data->GetPointData(), data->GetNumberOfPoints()) ||
        !areLongEnough(data->GetCellData(), data->GetNumberOfCells())) {
        throw UserError(path + " is damaged: it has too few values");
    }
}

} // namespace program
