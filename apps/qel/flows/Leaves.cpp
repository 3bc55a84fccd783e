// The data sets that a data object consists of.
#include "flows/Leaves.h"

#include <algorithm>

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

using Visit = std::function<void(vtkCompositeDataIterator*, const Leaf&)>;

void forEachLeaf(vtkCompositeDataSet* composite, const Visit& visit) {
    auto at = vtk::TakeSmartPointer(composite->NewIterator());
    for (at->InitTraversal(); !at->IsDoneWithTraversal(); at->GoToNextItem()) {
        auto* data = vtkDataSet::SafeDownCast(at->GetCurrentDataObject());
        if (data != nullptr && data->GetNumberOfPoints() > 0) {
            const char* name = at->HasCurrentMetaData() != 0
                                   ? at->GetCurrentMetaData()->Get(vtkCompositeDataSet::NAME())
                                   : nullptr;
            const std::string number = std::to_string(at->GetCurrentFlatIndex());
            visit(at, {data, name != nullptr ? name : "block " + number});
        }
    }
}

} // namespace

std::vector<Leaf> leavesOf(vtkDataObject* object) {
    std::vector<Leaf> leaves;
    auto* data = vtkDataSet::SafeDownCast(object);
    if (auto* composite = vtkCompositeDataSet::SafeDownCast(object)) {
        forEachLeaf(composite,
                    [&](vtkCompositeDataIterator*, const Leaf& leaf) { leaves.push_back(leaf); });
    } else if (data != nullptr && data->GetNumberOfPoints() > 0) {
        leaves.push_back({data, ""});
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
    if (auto* image = vtkImageData::SafeDownCast(data)) {
        return image->GetDataDimension();
    }
    if (auto* rectilinear = vtkRectilinearGrid::SafeDownCast(data)) {
        return rectilinear->GetDataDimension();
    }
    if (auto* structured = vtkStructuredGrid::SafeDownCast(data)) {
        return structured->GetDataDimension();
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

} // namespace program
