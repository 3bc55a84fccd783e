// The vortex filter over all data sets of a flow solution, and statistics of its fields.
#include "flows/FlowAnalysis.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

#include <vtkDataSetAttributes.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkQELVortexFilter.h>

#include "console/Messages.h"
#include "console/Text.h"
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
    result.belowNoiseFloor += filter->GetNumberBelowNoiseFloor();
    result.zeroedSwirls += filter->GetNumberOfZeroedSwirls();
    result.gradientTime += filter->GetGradientTime();
    result.analysisTime += filter->GetAnalysisTime();
    return output;
}

} // namespace

FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity, const Fields& fields,
                     double noiseFloor) {
    FlowAnalysis result;
    vtkNew<vtkQELVortexFilter> filter;
    filter->DisableAllFields();
    filter->SetNoiseFloor(noiseFloor);
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

vtkSmartPointer<vtkDataObject> dataWith(const Fields& wanted, const FlowAnalysis& analysis,
                                        int association) {
    return changeLeaves(analysis.data, [&](const Leaf& leaf) {
        auto copy = shallowCopy(leaf.data);
        for (const auto& computed : analysis.statistics) {
            if (wanted.count(computed.first) == 0) {
                copy->GetAttributes(association)
                    ->RemoveArray(vtkQELVortex::info(computed.first).array);
            }
        }
        return copy;
    });
}

void Statistics::add(vtkDataArray* array) {
    auto* floats = vtkFloatArray::FastDownCast(array);
    const int components = floats == nullptr ? 0 : floats->GetNumberOfComponents();
    for (vtkIdType i = 0; floats != nullptr && i < floats->GetNumberOfTuples(); ++i) {
        const float* value = floats->GetPointer(i * components);
        ++total;
        if (!std::all_of(value, value + components, [](float x) {
                return std::isfinite(x) && x != std::numeric_limits<float>::max();
            })) {
            continue;
        }
        const double squares = std::inner_product(value, value + components, value, 0.0,
                                                  std::plus<>(), std::multiplies<double>());
        const double measure = components == 1 ? double{value[0]} : std::sqrt(squares);
        minimum = valid == 0 ? measure : std::min(minimum, measure);
        maximum = valid == 0 ? measure : std::max(maximum, measure);
        sum += measure;
        ++valid;
    }
}

std::string asTable(const std::vector<Statistics>& all) {
    std::string text = formatted("%-26s %-6s %14s %14s %14s %12s %12s\n", "field", "unit",
                                 "minimum", "maximum", "mean", "valid", "undefined");
    for (const Statistics& one : all) {
        text += formatted("%-26s %-6s ", one.name.c_str(), one.unit.c_str());
        text += one.valid == 0
                    ? formatted("%14s %14s %14s", "-", "-", "-")
                    : formatted("%14.6g %14.6g %14.6g", one.minimum, one.maximum, one.mean());
        text += formatted(" %12lld %12lld\n", one.valid, one.total - one.valid);
    }
    return text;
}

std::string asCsv(const std::vector<Statistics>& all) {
    std::string text = "field,unit,minimum,maximum,mean,valid,undefined\n";
    for (const Statistics& one : all) {
        text += one.name + "," + one.unit + ",";
        text += one.valid == 0 ? ",,"
                               : formatted("%.9g,%.9g,%.9g", one.minimum, one.maximum, one.mean());
        text += formatted(",%lld,%lld\n", one.valid, one.total - one.valid);
    }
    return text;
}

} // namespace program
