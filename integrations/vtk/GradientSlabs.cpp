// The velocity gradient of a data set, slab by slab.
//
// Points and cells of structured data are numbered with the slowest axis last, so that layers
// along that axis are consecutive tuples of every array.
#include "GradientSlabs.h"

#include <algorithm>

#include <vtkCellData.h>
#include <vtkGradientFilter.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkRectilinearGrid.h>
#include <vtkStructuredGrid.h>

namespace vtkQELVortex {
namespace {

constexpr const char* kVelocity = "velocity";
constexpr const char* kGradient = "gradient";

vtkSmartPointer<vtkDataArray> cutTuples(vtkDataArray* source, vtkIdType first, vtkIdType count) {
    auto part = vtkSmartPointer<vtkDataArray>::Take(source->NewInstance());
    part->SetNumberOfComponents(source->GetNumberOfComponents());
    part->SetNumberOfTuples(count);
    part->InsertTuples(0, count, first, source);
    return part;
}

bool structuredDimensions(vtkDataSet* input, int dimensions[3]) {
    if (auto* image = vtkImageData::SafeDownCast(input)) {
        image->GetDimensions(dimensions);
    } else if (auto* rectilinear = vtkRectilinearGrid::SafeDownCast(input)) {
        rectilinear->GetDimensions(dimensions);
    } else if (auto* structured = vtkStructuredGrid::SafeDownCast(input)) {
        structured->GetDimensions(dimensions);
    } else {
        return false;
    }
    return true;
}

vtkSmartPointer<vtkDataArray> gradientOf(vtkDataSet* geometry, vtkDataArray* velocity,
                                         int association) {
    auto field = vtkSmartPointer<vtkDataSet>::Take(geometry->NewInstance());
    field->CopyStructure(geometry);
    vtkDataSetAttributes* attributes = field->GetAttributes(association);
    vtkSmartPointer<vtkDataArray> named = velocity;
    if (velocity->GetName() == nullptr) {
        // The gradient filter finds its input by name.
        named = cutTuples(velocity, 0, velocity->GetNumberOfTuples());
        named->SetName(kVelocity);
    }
    attributes->AddArray(named);
    vtkNew<vtkGradientFilter> filter;
    filter->SetInputData(field);
    filter->SetInputArrayToProcess(0, 0, 0, association, named->GetName());
    filter->SetResultArrayName(kGradient);
    // A cell of a wall in the same data set has no gradient across the wall.
    filter->SetContributingCellOption(vtkGradientFilter::DataSetMax);
    filter->Update();
    auto* output = vtkDataSet::SafeDownCast(filter->GetOutput());
    return output == nullptr ? nullptr : output->GetAttributes(association)->GetArray(kGradient);
}

} // namespace

GradientSlabs::GradientSlabs(vtkDataSet* input, vtkDataArray* velocity, int association,
                             vtkIdType wanted)
    : input_(input), velocity_(velocity), association_(association) {
    if (!structuredDimensions(input, dimensions_)) {
        return;
    }
    axis_ = 2;
    while (axis_ > 0 && dimensions_[axis_] == 1) {
        --axis_;
    }
    const bool onCells = association == vtkDataObject::FIELD_ASSOCIATION_CELLS;
    layers_ = std::max(dimensions_[axis_] - (onCells ? 1 : 0), 1);
    layerSize_ = velocity->GetNumberOfTuples() / layers_;
    const vtkIdType full = wanted / std::max<vtkIdType>(layerSize_, 1);
    layersInSlab_ = full < layers_ ? static_cast<int>(full) + 1 : layers_;
    count_ = (layers_ + layersInSlab_ - 1) / layersInSlab_;
}

GradientSlab GradientSlabs::compute(int slab) const {
    if (count_ == 1) {
        return whole();
    }
    const int first = slab * layersInSlab_;
    const int end = std::min(first + layersInSlab_, layers_);
    const int firstSeen = std::max(first - 1, 0);
    const int endSeen = std::min(end + 1, layers_);
    const auto part =
        cutTuples(velocity_, firstSeen * layerSize_, (endSeen - firstSeen) * layerSize_);
    part->SetName(kVelocity);

    GradientSlab result;
    const bool onCells = association_ == vtkDataObject::FIELD_ASSOCIATION_CELLS;
    result.gradient =
        gradientOf(cutGeometry(firstSeen, endSeen + (onCells ? 1 : 0)), part, association_);
    result.offset = (first - firstSeen) * layerSize_;
    result.first = first * layerSize_;
    result.count = (end - first) * layerSize_;
    return result;
}

GradientSlab GradientSlabs::whole() const {
    GradientSlab result;
    result.gradient = gradientOf(input_, velocity_, association_);
    result.count = velocity_->GetNumberOfTuples();
    return result;
}

// Layers of points from firstLayer to the one before endLayer.
vtkSmartPointer<vtkDataSet> GradientSlabs::cutGeometry(int firstLayer, int endLayer) const {
    int extent[6];
    const auto cutExtent = [&](const int* from) {
        std::copy(from, from + 6, extent);
        extent[2 * axis_] = from[2 * axis_] + firstLayer;
        extent[2 * axis_ + 1] = from[2 * axis_] + endLayer - 1;
    };
    const vtkIdType count = endLayer - firstLayer;
    if (auto* image = vtkImageData::SafeDownCast(input_)) {
        // The extent keeps its numbers, so that coordinates come out the same to the last bit.
        cutExtent(image->GetExtent());
        auto part = vtkSmartPointer<vtkImageData>::New();
        part->SetExtent(extent);
        part->SetOrigin(image->GetOrigin());
        part->SetSpacing(image->GetSpacing());
        part->SetDirectionMatrix(image->GetDirectionMatrix());
        return part;
    }
    if (auto* rectilinear = vtkRectilinearGrid::SafeDownCast(input_)) {
        cutExtent(rectilinear->GetExtent());
        auto part = vtkSmartPointer<vtkRectilinearGrid>::New();
        vtkSmartPointer<vtkDataArray> along[3] = {rectilinear->GetXCoordinates(),
                                                  rectilinear->GetYCoordinates(),
                                                  rectilinear->GetZCoordinates()};
        along[axis_] = cutTuples(along[axis_], firstLayer, count);
        part->SetExtent(extent);
        part->SetXCoordinates(along[0]);
        part->SetYCoordinates(along[1]);
        part->SetZCoordinates(along[2]);
        return part;
    }
    auto* structured = vtkStructuredGrid::SafeDownCast(input_);
    cutExtent(structured->GetExtent());
    auto part = vtkSmartPointer<vtkStructuredGrid>::New();
    vtkIdType layer = 1;
    for (int axis = 0; axis < axis_; ++axis) {
        layer *= dimensions_[axis];
    }
    vtkNew<vtkPoints> points;
    points->SetData(
        cutTuples(structured->GetPoints()->GetData(), firstLayer * layer, count * layer));
    part->SetExtent(extent);
    part->SetPoints(points);
    return part;
}

} // namespace vtkQELVortex
