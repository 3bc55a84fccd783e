// Flow on surfaces.
#include "flows/SurfaceFlow.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <vtkDataSetAttributes.h>
#include <vtkDataSetSurfaceFilter.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataNormals.h>
#include <vtkQELVortexFilter.h>

#include "console/Messages.h"
#include "console/VtkRun.h"

namespace program {
namespace {

constexpr double kRounding = 1e-6; // of single precision, with some steps of calculation
constexpr const char* kNormals = "Normals";

using Vector = std::array<double, 3>;

// Largest magnitude of each component among the finite tuples.
Vector largestComponents(vtkDataArray* array) {
    Vector largest{};
    for (vtkIdType i = 0; i < array->GetNumberOfTuples(); ++i) {
        double tuple[3] = {}; // there may be two components
        array->GetTuple(i, tuple);
        for (std::size_t c = 0; c < 3; ++c) {
            largest[c] = std::isfinite(tuple[c]) && std::abs(tuple[c]) < 1e38
                             ? std::max(largest[c], std::abs(tuple[c]))
                             : largest[c];
        }
    }
    return largest;
}

// The axis along which a data set has no extent; -1 if there is none.
int flatAxis(vtkDataSet* data) {
    double bounds[6];
    data->GetBounds(bounds);
    for (int axis = 0; axis < 3; ++axis) {
        if (bounds[2 * axis + 1] - bounds[2 * axis] <= kRounding * data->GetLength()) {
            return axis;
        }
    }
    return -1;
}

int largestDimension(const std::vector<Leaf>& leaves, const Velocity& velocity) {
    int dimension = -1;
    for (const Leaf& leaf : leaves) {
        if (velocityOf(leaf.data, velocity) != nullptr) {
            dimension = std::max(dimension, cellDimension(leaf.data));
        }
    }
    return dimension;
}

vtkSmartPointer<vtkPolyData> surfaceOf(const Leaf& leaf, vtkDataArray* velocity, int association) {
    auto copy = vtk::TakeSmartPointer(leaf.data->NewInstance());
    copy->ShallowCopy(leaf.data);
    copy->GetAttributes(association)->AddArray(velocity);
    vtkNew<vtkDataSetSurfaceFilter> surface;
    surface->SetInputData(copy);
    run(surface, "surface of " + leaf.name);
    vtkNew<vtkPolyDataNormals> normals;
    normals->SetInputConnection(surface->GetOutputPort());
    normals->SplittingOff();
    normals->ConsistencyOn();
    normals->ComputePointNormalsOn();
    normals->ComputeCellNormalsOn();
    run(normals, "normals of " + leaf.name);
    vtkSmartPointer<vtkPolyData> result = normals->GetOutput();
    return result;
}

// 1 or -1: what makes the normals of a plane point along the axis to which they are closest.
double orientationOf(vtkDataArray* normals) {
    double first[3] = {0.0, 0.0, 1.0};
    for (vtkIdType i = 0; i < normals->GetNumberOfTuples(); ++i) {
        double normal[3];
        normals->GetTuple(i, normal);
        if (i == 0) {
            std::copy(normal, normal + 3, first);
        }
        const double cosine = first[0] * normal[0] + first[1] * normal[1] + first[2] * normal[2];
        if (cosine < 1.0 - kRounding) {
            return 1.0; // no plane
        }
    }
    const double* const largest = std::max_element(
        first, first + 3, [](double a, double b) { return std::abs(a) < std::abs(b); });
    return *largest < 0.0 ? -1.0 : 1.0;
}

vtkSmartPointer<vtkFloatArray> alongNormals(vtkDataArray* vorticity, vtkDataArray* normals) {
    auto along = vtkSmartPointer<vtkFloatArray>::New();
    along->SetName("VorticityNormal");
    along->SetNumberOfTuples(vorticity->GetNumberOfTuples());
    const double orientation = orientationOf(normals);
    for (vtkIdType i = 0; i < vorticity->GetNumberOfTuples(); ++i) {
        double w[3];
        double n[3];
        vorticity->GetTuple(i, w);
        normals->GetTuple(i, n);
        along->SetValue(
            i, static_cast<float>(orientation * (w[0] * n[0] + w[1] * n[1] + w[2] * n[2])));
    }
    return along;
}

vtkSmartPointer<vtkPolyData> analyseSurface(vtkPolyData* surface, const std::string& velocity,
                                            int association, InPlaneAnalysis& analysis) {
    vtkNew<vtkQELVortexFilter> filter;
    filter->DisableAllFields();
    filter->SetFieldEnabled(vtkQELVortex::Divergence, true);
    filter->SetFieldEnabled(vtkQELVortex::Vorticity, true);
    filter->SetInputData(surface);
    filter->SetInputArrayToProcess(0, 0, 0, association, velocity.c_str());
    run(filter, "analysis in the plane");
    auto result = vtkSmartPointer<vtkPolyData>::New();
    result->ShallowCopy(filter->GetOutput());
    vtkDataSetAttributes* data = result->GetAttributes(association);
    const auto along =
        alongNormals(data->GetArray(vtkQELVortex::info(vtkQELVortex::Vorticity).array),
                     data->GetArray(kNormals));
    vtkNew<vtkFloatArray> divergence;
    divergence->DeepCopy(data->GetArray(vtkQELVortex::info(vtkQELVortex::Divergence).array));
    divergence->SetName("DivergenceInPlane");
    for (const auto field : {vtkQELVortex::Vorticity, vtkQELVortex::Divergence}) {
        data->RemoveArray(vtkQELVortex::info(field).array);
    }
    data->AddArray(along);
    data->AddArray(divergence);
    analysis.statistics[0].add(along);
    analysis.statistics[1].add(divergence);
    return result;
}

} // namespace

std::string reasonAgainstGradient(const std::vector<Leaf>& leaves, const Velocity& velocity) {
    const int dimension = largestDimension(leaves, velocity);
    for (const Leaf& leaf : leaves) {
        const auto array = velocityOf(leaf.data, velocity);
        if (array == nullptr || dimension > 2 || cellDimension(leaf.data) < dimension) {
            continue;
        }
        if (dimension == 1) {
            return "its cells are lines: derivatives across them are missing";
        }
        const int axis = flatAxis(leaf.data);
        if (axis < 0) {
            return "its cells are surfaces in space: derivatives out of them are missing";
        }
        const Vector largest = largestComponents(array);
        if (largest[static_cast<std::size_t>(axis)] >
            kRounding * *std::max_element(largest.begin(), largest.end())) {
            return joined("its cells lie in a plane that the velocity leaves (component ",
                          "xyz"[axis], "): derivatives along ", "xyz"[axis], " are missing");
        }
    }
    return "";
}

InPlaneAnalysis analyseInPlane(vtkDataObject* flow, const Velocity& velocity) {
    InPlaneAnalysis analysis;
    analysis.statistics.resize(2);
    analysis.statistics[0].name = "VorticityNormal";
    analysis.statistics[1].name = "DivergenceInPlane";
    const std::vector<Leaf> leaves = leavesOf(flow);
    refuseIf(largestDimension(leaves, velocity) != 2, "--in-plane is for surfaces");
    for (Statistics& statistics : analysis.statistics) {
        statistics.unit = "1/t";
    }
    analysis.data = changeLeaves(flow, [&](const Leaf& leaf) -> vtkSmartPointer<vtkDataSet> {
        const auto array = velocityOf(leaf.data, velocity);
        if (array == nullptr || cellDimension(leaf.data) != 2) {
            return leaf.data;
        }
        return analyseSurface(surfaceOf(leaf, array, velocity.association), array->GetName(),
                              velocity.association, analysis);
    });
    return analysis;
}

} // namespace program
