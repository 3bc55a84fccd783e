// The data behind the picture of a flow.
#include "VortexScene.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <vtkCellData.h>
#include <vtkCellDataToPointData.h>
#include <vtkContourFilter.h>
#include <vtkDataArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkDataSetSurfaceFilter.h>
#include <vtkFeatureEdges.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkOutlineFilter.h>
#include <vtkPointData.h>
#include <vtkStructuredGrid.h>
#include <vtkStructuredGridOutlineFilter.h>
#include <vtkThreshold.h>
#include <vtkUnstructuredGrid.h>

#include "Console.h"

namespace program {
namespace {

constexpr double kSharpAngle = 30.0; // degrees
constexpr vtkIdType kSampleSize = 200000;
constexpr double kDefined = 1e38; // every defined value is below this

bool hasUndefined(vtkDataArray* array) {
    auto* floats = vtkFloatArray::FastDownCast(array);
    if (floats == nullptr) {
        return false;
    }
    const float* first = floats->GetPointer(0);
    return std::any_of(first, first + floats->GetNumberOfValues(), [](float value) {
        return !(std::abs(value) < std::numeric_limits<float>::max());
    });
}

vtkSmartPointer<vtkDataSet> withoutUndefined(vtkDataSet* data, int association,
                                             const std::string& field) {
    vtkNew<vtkThreshold> defined;
    defined->SetInputData(data);
    defined->SetInputArrayToProcess(0, 0, 0, association, field.c_str());
    defined->SetThresholdFunction(vtkThreshold::THRESHOLD_BETWEEN);
    defined->SetLowerThreshold(-kDefined);
    defined->SetUpperThreshold(kDefined);
    run(defined, "hiding undefined points");
    return defined->GetOutput();
}

} // namespace

vtkSmartPointer<vtkDataSet> drawable(vtkDataSet* data, int association,
                                     const std::vector<std::string>& fields) {
    auto bare = vtk::TakeSmartPointer(data->NewInstance());
    bare->CopyStructure(data);
    vtkSmartPointer<vtkDataSet> result = bare;
    for (const std::string& field : fields) {
        bare->GetAttributes(association)
            ->AddArray(data->GetAttributes(association)->GetArray(field.c_str()));
    }
    for (const std::string& field : fields) {
        if (hasUndefined(result->GetAttributes(association)->GetArray(field.c_str()))) {
            result = withoutUndefined(result, association, field);
        }
    }
    if (association == vtkDataObject::FIELD_ASSOCIATION_CELLS) {
        vtkNew<vtkCellDataToPointData> toPoints;
        toPoints->SetInputData(result);
        run(toPoints, "averaging at points");
        result = toPoints->GetOutput();
    }
    return result;
}

vtkSmartPointer<vtkPolyData> isoSurface(vtkDataSet* data, const std::string& field, double value) {
    vtkNew<vtkContourFilter> contour;
    contour->SetInputData(data);
    contour->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS,
                                    field.c_str());
    contour->SetValue(0, value);
    contour->ComputeScalarsOff();
    run(contour, "iso-surface");
    return contour->GetOutput();
}

vtkSmartPointer<vtkPolyData> surfaceOf(vtkDataSet* data) {
    vtkNew<vtkDataSetSurfaceFilter> surface;
    surface->SetInputData(data);
    run(surface, "surface");
    return surface->GetOutput();
}

vtkSmartPointer<vtkPolyData> outlineOf(vtkDataSet* data) {
    if (vtkStructuredGrid::SafeDownCast(data) != nullptr) {
        vtkNew<vtkStructuredGridOutlineFilter> outline;
        outline->SetInputData(data);
        run(outline, "outline");
        return outline->GetOutput();
    }
    if (data->IsA("vtkImageData") != 0 || data->IsA("vtkRectilinearGrid") != 0) {
        vtkNew<vtkOutlineFilter> outline;
        outline->SetInputData(data);
        run(outline, "outline");
        return outline->GetOutput();
    }
    vtkNew<vtkFeatureEdges> edges;
    edges->SetInputData(surfaceOf(data));
    edges->SetFeatureAngle(kSharpAngle);
    edges->ManifoldEdgesOff();
    edges->NonManifoldEdgesOff();
    edges->ColoringOff();
    run(edges, "outline");
    return edges->GetOutput();
}

std::vector<double> sortedSample(const std::vector<vtkSmartPointer<vtkDataSet>>& pieces,
                                 const std::string& field) {
    vtkIdType total = 0;
    for (const auto& piece : pieces) {
        total += piece->GetNumberOfPoints();
    }
    const vtkIdType stride = total / kSampleSize + 1;
    std::vector<double> values;
    for (const auto& piece : pieces) {
        vtkDataArray* array = piece->GetPointData()->GetArray(field.c_str());
        for (vtkIdType i = 0; array != nullptr && i < array->GetNumberOfTuples(); i += stride) {
            values.push_back(array->GetComponent(i, 0));
        }
    }
    std::sort(values.begin(), values.end());
    return values;
}

double quantile(const std::vector<double>& sorted, double share) {
    if (sorted.empty()) {
        return 0.0;
    }
    const double place = share * static_cast<double>(sorted.size() - 1);
    return sorted[static_cast<std::size_t>(place)];
}

} // namespace program
