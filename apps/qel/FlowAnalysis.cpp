// The vortex filter over all data sets of a flow solution.
#include "FlowAnalysis.h"

#include <algorithm>

#include <vtkDataSetAttributes.h>
#include <vtkNew.h>
#include <vtkQELVortexFilter.h>

#include "Console.h"
#include "Leaves.h"
#include "ListOption.h"
#include "VtkMessages.h"

namespace program {
namespace {

using vtkQELVortex::Field;
using vtkQELVortex::FieldInfo;

std::string keys() {
    std::string text;
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        text += (text.empty() ? "" : ", ") + std::string(info.key);
    }
    return text;
}

std::vector<Statistics> emptyStatistics(const std::set<Field>& fields) {
    std::vector<Statistics> all;
    for (const Field field : fields) {
        const FieldInfo& info = vtkQELVortex::info(field);
        Statistics one;
        one.name = info.array + std::string(info.components > 1 ? " magnitude" : "");
        one.unit = info.unit;
        all.push_back(one);
    }
    return all;
}

// What the filter and the user should know of one data set.
void report(vtkQELVortexFilter* filter, const std::string& of) {
    for (const std::string& text : VtkMessages::instance().warnings()) {
        warn(text + of);
    }
    if (filter->GetNumberOfHiddenTuples() > 0) {
        note(std::to_string(filter->GetNumberOfHiddenTuples()) + " hidden or ghost points" + of +
             " are undefined");
    }
    if (filter->GetScaleExponent() != 0) {
        note("gradients" + of + " are tiny and were scaled by 2^" +
             std::to_string(filter->GetScaleExponent()) + " for the analysis");
    }
}

class Analyser {
public:
    Analyser(const Velocity& velocity, const std::set<Field>& fields, int dimension,
             FlowAnalysis& result)
        : velocity_(velocity), fields_(fields), dimension_(dimension), result_(result) {
        filter_->DisableAllFields();
        for (const Field field : fields) {
            filter_->SetFieldEnabled(field, true);
        }
    }

    std::size_t analysed() const { return analysed_; }

    vtkSmartPointer<vtkDataSet> operator()(const Leaf& leaf) {
        auto input = vtk::TakeSmartPointer(leaf.data->NewInstance());
        input->ShallowCopy(leaf.data);
        const auto array = velocityOf(leaf.data, velocity_);
        if (array == nullptr || cellDimension(leaf.data) < dimension_) {
            return input;
        }
        const std::string of = leaf.name.empty() ? "" : " of " + leaf.name;
        input->GetAttributes(velocity_.association)->AddArray(array);
        warnOfReplaced(input, of);
        filter_->SetInputArrayToProcess(0, 0, 0, velocity_.association, array->GetName());
        filter_->SetInputData(input);
        run(filter_, "analysis" + of);
        report(filter_, of);

        vtkDataSet* output = filter_->GetOutput();
        auto result = vtk::TakeSmartPointer(output->NewInstance());
        result->ShallowCopy(output);
        filter_->RemoveAllInputs();
        filter_->GetOutput()->Initialize();
        collect(result);
        return result;
    }

private:
    void warnOfReplaced(vtkDataSet* input, const std::string& of) const {
        for (const Field field : fields_) {
            const char* name = vtkQELVortex::info(field).array;
            if (input->GetAttributes(velocity_.association)->HasArray(name) != 0) {
                warn("the input's array " + std::string(name) + of + " is replaced");
            }
        }
    }

    void collect(vtkDataSet* data) {
        std::size_t i = 0;
        for (const Field field : fields_) {
            const char* name = vtkQELVortex::info(field).array;
            add(result_.statistics[i++],
                data->GetAttributes(velocity_.association)->GetArray(name));
        }
        result_.gradientTime += filter_->GetGradientTime();
        result_.analysisTime += filter_->GetAnalysisTime();
        ++analysed_;
    }

    Velocity velocity_;
    std::set<Field> fields_;
    int dimension_;
    FlowAnalysis& result_;
    std::size_t analysed_ = 0;
    vtkNew<vtkQELVortexFilter> filter_;
};

} // namespace

std::set<Field> parseFields(const std::string& list) {
    std::set<Field> chosen;
    for (const std::string& word : splitAtCommas(list.empty() ? "all" : list)) {
        if (word == "all") {
            for (const FieldInfo& info : vtkQELVortex::fields()) {
                chosen.insert(info.field);
            }
            continue;
        }
        const FieldInfo* info = vtkQELVortex::findField(word);
        if (info == nullptr) {
            throw UserError("there is no field \"" + word + "\"; the fields are " + keys());
        }
        chosen.insert(info->field);
    }
    return chosen;
}

FlowAnalysis analyse(vtkDataObject* flow, const Velocity& velocity, const std::set<Field>& fields) {
    FlowAnalysis result;
    result.statistics = emptyStatistics(fields);
    const std::vector<Leaf> leaves = leavesOf(flow);
    int dimension = -1;
    for (const Leaf& leaf : leaves) {
        if (leaf.data->GetAttributes(velocity.association)->HasArray(velocity.name.c_str()) != 0) {
            dimension = std::max(dimension, cellDimension(leaf.data));
        }
    }
    if (dimension < 1) {
        throw UserError("the input has no cells to take gradients on");
    }
    Analyser analyser(velocity, fields, dimension, result);
    result.data = changeLeaves(flow, std::ref(analyser));
    const std::size_t kept = leaves.size() - analyser.analysed();
    if (kept > 0) {
        note(std::to_string(kept) + " of " + std::to_string(leaves.size()) +
             " data sets are boundaries or without velocity and are kept as they are");
    }
    return result;
}

} // namespace program
