// The vortex filter over all data sets of a flow solution.
#include "flows/FlowAnalysis.h"

#include <algorithm>

#include <vtkDataSetAttributes.h>
#include <vtkNew.h>
#include <vtkQELVortexFilter.h>

#include "console/Messages.h"
#include "console/VtkRun.h"

namespace program {
namespace {

using vtkQELVortex::Field;
using vtkQELVortex::FieldInfo;

vtkSmartPointer<vtkDataSet> shallowCopy(vtkDataSet* data) {
    auto copy = vtk::TakeSmartPointer(data->NewInstance());
    copy->ShallowCopy(data);
    return copy;
}

// What the filter and the user should know of one data set.
void report(vtkQELVortexFilter* filter, const std::string& of) {
    for (const std::string& text : vtkWarnings()) {
        warn(text, of);
    }
    if (filter->GetNumberOfHiddenTuples() > 0) {
        note(filter->GetNumberOfHiddenTuples(), " hidden or ghost points", of, " are undefined");
    }
    if (filter->GetScaleExponent() != 0) {
        note("gradients", of, " are tiny and were scaled by 2^", filter->GetScaleExponent(),
             " for the analysis");
    }
}

// Adds the fields to one data set, and what was found to the result.
vtkSmartPointer<vtkDataSet> analyseLeaf(const Leaf& leaf, vtkDataArray* velocity, int association,
                                        vtkQELVortexFilter* filter, FlowAnalysis& result) {
    const std::string of = leaf.name.empty() ? "" : " of " + leaf.name;
    auto input = shallowCopy(leaf.data);
    input->GetAttributes(association)->AddArray(velocity);
    for (const auto& entry : result.statistics) {
        const std::string name = vtkQELVortex::info(entry.first).array;
        if (input->GetAttributes(association)->HasArray(name.c_str()) != 0) {
            warn("the input's array ", name, of, " is replaced");
        }
    }
    filter->SetInputArrayToProcess(0, 0, 0, association, velocity->GetName());
    filter->SetInputData(input);
    run(filter, "analysis" + of);
    report(filter, of);

    auto output = shallowCopy(filter->GetOutput());
    filter->RemoveAllInputs();
    filter->GetOutput()->Initialize();
    for (auto& [field, statistics] : result.statistics) {
        statistics.add(
            output->GetAttributes(association)->GetArray(vtkQELVortex::info(field).array));
    }
    result.gradientTime += filter->GetGradientTime();
    result.analysisTime += filter->GetAnalysisTime();
    return output;
}

} // namespace

FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity, const Fields& fields) {
    FlowAnalysis result;
    vtkNew<vtkQELVortexFilter> filter;
    filter->DisableAllFields();
    for (const Field field : fields) {
        const FieldInfo& info = vtkQELVortex::info(field);
        filter->SetFieldEnabled(field, true);
        result.statistics[field].name =
            info.array + std::string(info.components > 1 ? " magnitude" : "");
        result.statistics[field].unit = info.unit;
    }
    const std::vector<Leaf> leaves = leavesOf(flow);
    int dimension = -1;
    for (const Leaf& leaf : leaves) {
        if (leaf.data->GetAttributes(velocity.association)->HasArray(velocity.name.c_str()) != 0) {
            dimension = std::max(dimension, cellDimension(leaf.data));
        }
    }
    refuseIf(dimension < 1, "the input has no cells to take gradients on");
    std::size_t kept = 0;
    result.data = changeLeaves(flow, [&](const Leaf& leaf) {
        const auto array = velocityOf(leaf.data, velocity);
        if (array == nullptr || cellDimension(leaf.data) < dimension) {
            ++kept;
            return shallowCopy(leaf.data);
        }
        return analyseLeaf(leaf, array, velocity.association, filter, result);
    });
    if (kept > 0) {
        note(kept, " of ", leaves.size(),
             " data sets are boundaries or without velocity and are kept as they are");
    }
    return result;
}

vtkSmartPointer<vtkDataObject> withoutFields(vtkDataObject* data, int association,
                                             const Fields& fields) {
    return changeLeaves(data, [&](const Leaf& leaf) {
        auto copy = shallowCopy(leaf.data);
        for (const Field field : fields) {
            copy->GetAttributes(association)->RemoveArray(vtkQELVortex::info(field).array);
        }
        return copy;
    });
}

} // namespace program
