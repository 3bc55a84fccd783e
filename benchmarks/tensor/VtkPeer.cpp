// VTK: Q and vorticity as its gradient filter gives them, from velocities on a regular grid. The
// filter forms the gradient by differences on the way, which the library is given; VTK has no
// other road to these quantities.

#include <memory>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkDataObject.h>
#include <vtkDataSetAttributes.h>
#include <vtkGradientFilter.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkSMPTools.h>
#include <vtkSmartPointer.h>

#include "tensor/TensorField.h"

namespace qel_benchmark {
namespace {

// A grid of the field's n points, with the field's velocity, shared.
vtkSmartPointer<vtkImageData> gridOf(const TensorField& f) {
    const int side = f.n < 1000000 ? 10 : 100;
    auto grid = vtkSmartPointer<vtkImageData>::New();
    grid->SetDimensions(static_cast<int>(f.n) / (side * side), side, side);
    vtkNew<vtkAOSDataArrayTemplate<float>> velocity;
    velocity->SetName("velocity");
    velocity->SetNumberOfComponents(3);
    velocity->SetArray(const_cast<float*>(f.velocity), static_cast<vtkIdType>(3 * f.n), 1);
    grid->GetPointData()->AddArray(velocity);
    return grid;
}

vtkSmartPointer<vtkGradientFilter> filterOn(const TensorField& f) {
    vtkSMPTools::Initialize(1); // one thread, as everything else here
    auto filter = vtkSmartPointer<vtkGradientFilter>::New();
    filter->SetInputData(gridOf(f));
    filter->SetInputScalars(vtkDataObject::FIELD_ASSOCIATION_POINTS, "velocity");
    filter->ComputeGradientOff();
    return filter;
}

const bool registered = [] {
    add("q", "vtk", [](const TensorField& f) {
        const auto filter = filterOn(f);
        filter->ComputeQCriterionOn();
        return [filter] {
            filter->Modified(); // else the result of the pass before would do
            filter->Update();
        };
    });
    add("vorticity", "vtk", [](const TensorField& f) {
        const auto filter = filterOn(f);
        filter->ComputeVorticityOn();
        return [filter] {
            filter->Modified();
            filter->Update();
        };
    });
    return true;
}();

} // namespace
} // namespace qel_benchmark
