// The data sets that a data object consists of.
#include "Leaves.h"

#include <algorithm>

#include <vtkBoundingBox.h>
#include <vtkCellTypes.h>
#include <vtkCompositeDataIterator.h>
#include <vtkCompositeDataSet.h>
#include <vtkFieldData.h>
#include <vtkGenericCell.h>
#include <vtkImageData.h>
#include <vtkInformation.h>
#include <vtkNew.h>
#include <vtkRectilinearGrid.h>
#include <vtkStructuredGrid.h>

namespace program {
namespace {

std::string nameOf(vtkCompositeDataIterator* at) {
    if (at->HasCurrentMetaData() &&
        at->GetCurrentMetaData()->Has(vtkCompositeDataSet::NAME()) != 0) {
        return at->GetCurrentMetaData()->Get(vtkCompositeDataSet::NAME());
    }
    return "block " + std::to_string(at->GetCurrentFlatIndex());
}

void forEachLeaf(vtkCompositeDataSet* composite,
                 const std::function<void(vtkCompositeDataIterator*, const Leaf&)>& visit) {
    auto at = vtk::TakeSmartPointer(composite->NewIterator());
    for (at->InitTraversal(); !at->IsDoneWithTraversal(); at->GoToNextItem()) {
        auto* data = vtkDataSet::SafeDownCast(at->GetCurrentDataObject());
        if (data != nullptr && data->GetNumberOfPoints() > 0) {
            visit(at, {data, nameOf(at)});
        }
    }
}

int axesOf(const int dimensions[3]) {
    return static_cast<int>(std::count_if(dimensions, dimensions + 3, [](int n) { return n > 1; }));
}

} // namespace

std::vector<Leaf> leavesOf(vtkDataObject* object) {
    std::vector<Leaf> leaves;
    if (auto* composite = vtkCompositeDataSet::SafeDownCast(object)) {
        forEachLeaf(composite,
                    [&](vtkCompositeDataIterator*, const Leaf& leaf) { leaves.push_back(leaf); });
    } else if (auto* data = vtkDataSet::SafeDownCast(object)) {
        if (data->GetNumberOfPoints() > 0) {
            leaves.push_back({data, ""});
        }
    }
    return leaves;
}

vtkSmartPointer<vtkDataObject>
changeLeaves(vtkDataObject* object,
             const std::function<vtkSmartPointer<vtkDataSet>(const Leaf&)>& change) {
    auto* composite = vtkCompositeDataSet::SafeDownCast(object);
    if (composite == nullptr) {
        return change({vtkDataSet::SafeDownCast(object), ""});
    }
    auto result = vtk::TakeSmartPointer(composite->NewInstance());
    result->CopyStructure(composite);
    result->GetFieldData()->ShallowCopy(composite->GetFieldData());
    forEachLeaf(composite, [&](vtkCompositeDataIterator* at, const Leaf& leaf) {
        result->SetDataSet(at, change(leaf));
    });
    return result;
}

int cellDimension(vtkDataSet* data) {
    int dimensions[3];
    if (auto* image = vtkImageData::SafeDownCast(data)) {
        image->GetDimensions(dimensions);
        return axesOf(dimensions);
    }
    if (auto* rectilinear = vtkRectilinearGrid::SafeDownCast(data)) {
        rectilinear->GetDimensions(dimensions);
        return axesOf(dimensions);
    }
    if (auto* structured = vtkStructuredGrid::SafeDownCast(data)) {
        structured->GetDimensions(dimensions);
        return axesOf(dimensions);
    }
    vtkNew<vtkCellTypes> types;
    data->GetCellTypes(types);
    vtkNew<vtkGenericCell> cell;
    int most = -1;
    for (vtkIdType i = 0; i < types->GetNumberOfTypes(); ++i) {
        cell->SetCellType(types->GetCellType(i));
        most = std::max(most, cell->GetCellDimension());
    }
    return most;
}

void boundsOf(const std::vector<Leaf>& leaves, double bounds[6]) {
    vtkBoundingBox box;
    for (const Leaf& leaf : leaves) {
        box.AddBounds(leaf.data->GetBounds());
    }
    box.GetBounds(bounds);
}

vtkIdType pointsOf(const std::vector<Leaf>& leaves) {
    vtkIdType count = 0;
    for (const Leaf& leaf : leaves) {
        count += leaf.data->GetNumberOfPoints();
    }
    return count;
}

} // namespace program
