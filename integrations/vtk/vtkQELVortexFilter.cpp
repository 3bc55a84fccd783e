// The filter: finds its input, goes through slabs and blocks, and adds the arrays.
#include "vtkQELVortexFilter.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>

#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkDataSetAttributes.h>
#include <vtkFloatArray.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkSMPThreadLocal.h>
#include <vtkSMPTools.h>
#include <vtkStreamingDemandDrivenPipeline.h>

#include "GradientSlabs.h"
#include "HiddenTuples.h"
#include "VortexBlock.h"

vtkStandardNewMacro(vtkQELVortexFilter);

namespace {

using vtkQELVortex::GradientSlab;
using vtkQELVortex::GradientSlabs;
using vtkQELVortex::VortexBlock;

constexpr std::size_t kPointsNamed = 5;

// Adds the time from its birth to its end to a sum.
class Timer {
public:
    explicit Timer(double& sum) : sum_(sum) {}
    ~Timer() {
        sum_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

private:
    double& sum_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace

// What one run works on.
struct vtkQELVortexFilter::Job {
    vtkDataSet* input = nullptr;
    vtkDataArray* velocity = nullptr;
    vtkDataArray* gradient = nullptr; // where it is given
    int association = vtkDataObject::FIELD_ASSOCIATION_POINTS;
    std::vector<unsigned char> hidden;
    VortexBlock::Outputs outputs;
    std::optional<GradientSlabs> slabs;
    std::vector<vtkIdType> nonFinite; // the first few

    // A null pointer where nothing is hidden.
    const unsigned char* hiddenFrom(vtkIdType first) const {
        return hidden.empty() ? nullptr : hidden.data() + first;
    }
};

// Analyses the blocks of a slab, on as many threads as VTK has been given. Blocks write apart from
// each other, and no result depends on which thread takes which.
class vtkQELVortexFilter::BlockAnalysis {
public:
    BlockAnalysis(vtkQELVortexFilter* filter, const Job& job, const GradientSlab& slab)
        : filter_(filter), job_(job), slab_(slab) {}

    vtkIdType blocks() const {
        return (slab_.count + VortexBlock::kPoints - 1) / VortexBlock::kPoints;
    }

    // -- What vtkSMPTools::For calls ----

    void Initialize() {
        Findings& mine = findings_.Local();
        qel::GradientOptions options;
        options.isScaled = true;
        options.notANumber = qel::GradientOptions::NotANumber::zeroNegligible;
        options.noiseFloor = filter_->NoiseFloor;
        mine.block.emplace(job_.outputs, options);
    }

    void operator()(vtkIdType begin, vtkIdType end) {
        Findings& mine = findings_.Local();
        for (vtkIdType i = begin; i < end && !filter_->GetAbortExecute(); ++i) {
            analyse(i * VortexBlock::kPoints, mine);
        }
    }

    void Reduce() {
        for (const Findings& each : findings_) {
            belowFloor += each.belowFloor;
            zeroedSwirls += each.zeroedSwirls;
            nonFinite.insert(nonFinite.end(), each.nonFinite.begin(), each.nonFinite.end());
        }
        std::sort(nonFinite.begin(), nonFinite.end());
    }

    // -- Found ----
    std::size_t belowFloor = 0;
    std::size_t zeroedSwirls = 0;
    std::vector<vtkIdType> nonFinite;

private:
    struct Findings { // of one thread
        std::optional<VortexBlock> block;
        std::size_t belowFloor = 0;
        std::size_t zeroedSwirls = 0;
        std::vector<vtkIdType> nonFinite;
    };

    void analyse(vtkIdType done, Findings& mine) const {
        const vtkIdType first = slab_.first + done;
        const vtkIdType count = std::min(VortexBlock::kPoints, slab_.count - done);
        VortexBlock& block = *mine.block;
        block.loadGradient(slab_.gradient, slab_.offset + done, count, job_.hiddenFrom(first));
        if (job_.outputs[vtkQELVortex::Helicity] != nullptr) {
            block.loadVelocity(job_.velocity, first);
        }
        const qel::GradientReport report = block.store(first);
        mine.belowFloor += report.belowFloor;
        mine.zeroedSwirls += report.madeZero;
        markUndefined(first, mine);
    }

    // Goes over the points of the block that was analysed last.
    void markUndefined(vtkIdType first, Findings& mine) const {
        const unsigned char* const hidden = job_.hiddenFrom(first);
        vtkIdType point = first;
        for (const unsigned char finite : mine.block->finite()) {
            const bool isHidden = hidden != nullptr && hidden[point - first] != 0;
            if (isHidden || finite == 0) {
                writeUndefined(point);
            }
            if (!isHidden && finite == 0) {
                mine.nonFinite.push_back(point);
            }
            ++point;
        }
    }

    void writeUndefined(vtkIdType point) const {
        const float value =
            filter_->UndefinedIsNaN ? std::numeric_limits<float>::quiet_NaN() : GetUndefinedValue();
        for (const auto& array : job_.outputs) {
            if (array != nullptr) {
                const int components = array->GetNumberOfComponents();
                std::fill_n(array->GetPointer(point * components), components, value);
            }
        }
    }

    vtkQELVortexFilter* filter_;
    const Job& job_;
    const GradientSlab& slab_;
    vtkSMPThreadLocal<Findings> findings_;
};

vtkQELVortexFilter::vtkQELVortexFilter() {
    this->EnabledFields.set();
    this->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS_THEN_CELLS,
                                 vtkDataSetAttributes::VECTORS);
}

float vtkQELVortexFilter::GetUndefinedValue() {
    return std::numeric_limits<float>::max();
}

// -- Fields ----

void vtkQELVortexFilter::SetFieldEnabled(vtkQELVortex::Field field, bool enabled) {
    if (this->GetFieldEnabled(field) != enabled) {
        this->EnabledFields.set(static_cast<std::size_t>(field), enabled);
        this->Modified();
    }
}

bool vtkQELVortexFilter::GetFieldEnabled(vtkQELVortex::Field field) const {
    return this->EnabledFields.test(static_cast<std::size_t>(field));
}

void vtkQELVortexFilter::EnableAllFields() {
    this->EnabledFields.set();
    this->Modified();
}

void vtkQELVortexFilter::DisableAllFields() {
    this->EnabledFields.reset();
    this->Modified();
}

// -- Pipeline ----

// One layer of ghost cells gives the points at a piece's border the neighbours that they need.
int vtkQELVortexFilter::RequestUpdateExtent(vtkInformation* request,
                                            vtkInformationVector** inputVector,
                                            vtkInformationVector* outputVector) {
    using Pipeline = vtkStreamingDemandDrivenPipeline;
    if (!this->Superclass::RequestUpdateExtent(request, inputVector, outputVector)) {
        return 0;
    }
    vtkInformation* in = inputVector[0]->GetInformationObject(0);
    vtkInformation* out = outputVector->GetInformationObject(0);
    if (out->Get(Pipeline::UPDATE_NUMBER_OF_PIECES()) > 1) {
        in->Set(Pipeline::UPDATE_NUMBER_OF_GHOST_LEVELS(),
                out->Get(Pipeline::UPDATE_NUMBER_OF_GHOST_LEVELS()) + 1);
    }
    return 1;
}

int vtkQELVortexFilter::RequestData(vtkInformation*, vtkInformationVector** inputVector,
                                    vtkInformationVector* outputVector) {
    this->NumberOfHiddenTuples = this->NumberOfNonFiniteGradients = 0;
    this->NumberBelowNoiseFloor = this->NumberOfZeroedSwirls = 0;
    this->GradientTime = this->AnalysisTime = 0.0;

    Job job;
    job.input = vtkDataSet::GetData(inputVector[0], 0);
    vtkDataSet* output = vtkDataSet::GetData(outputVector, 0);
    output->ShallowCopy(job.input);
    if (job.input->GetNumberOfPoints() == 0) {
        return 1;
    }
    if (!this->Prepare(job, inputVector) || !this->Analyse(job)) {
        return 0;
    }
    if (this->GetAbortExecute()) {
        return 1;
    }
    for (const auto& array : job.outputs) {
        if (array != nullptr) {
            output->GetAttributes(job.association)->AddArray(array);
        }
    }
    this->Warn(job);
    return 1;
}

// -- One run ----

bool vtkQELVortexFilter::Prepare(Job& job, vtkInformationVector** inputVector) {
    job.velocity = this->GetInputArrayToProcess(0, inputVector, job.association);
    if (job.velocity == nullptr) {
        vtkErrorMacro("There is no such velocity array.");
        return false;
    }
    vtkDataSetAttributes* attributes = job.input->GetAttributes(job.association);
    const int components = job.velocity->GetNumberOfComponents();
    const char* name = job.velocity->GetName() == nullptr ? "" : job.velocity->GetName();
    if (attributes == nullptr || (components != 2 && components != 3)) {
        vtkErrorMacro("The velocity "
                      << name << " has " << components
                      << " components; two or three are needed, on points or cells.");
        return false;
    }
    if (!this->GradientArrayName.empty()) {
        job.gradient = attributes->GetArray(this->GradientArrayName.c_str());
        if (job.gradient == nullptr || job.gradient->GetNumberOfComponents() != 9) {
            vtkErrorMacro("There is no array " << this->GradientArrayName
                                               << " of nine components beside the velocity.");
            return false;
        }
    }
    job.hidden = vtkQELVortex::hiddenTuples(job.input, job.association);
    this->NumberOfHiddenTuples =
        std::count_if(job.hidden.begin(), job.hidden.end(), [](auto flag) { return flag != 0; });
    this->MakeOutputs(job);
    job.slabs.emplace(job.input, job.velocity, job.association, this->SlabSize);
    return true;
}

void vtkQELVortexFilter::MakeOutputs(Job& job) const {
    for (const vtkQELVortex::FieldInfo& info : vtkQELVortex::fields()) {
        if (this->GetFieldEnabled(info.field)) {
            auto array = vtkSmartPointer<vtkFloatArray>::New();
            array->SetName(info.array);
            array->SetNumberOfComponents(info.components);
            array->SetNumberOfTuples(job.velocity->GetNumberOfTuples());
            job.outputs[info.field] = array;
        }
    }
}

bool vtkQELVortexFilter::Analyse(Job& job) {
    const int count = job.gradient == nullptr ? job.slabs->count() : 1;
    for (int slab = 0; slab < count && !this->GetAbortExecute(); ++slab) {
        if (!this->AnalyseSlab(job, slab)) {
            return false;
        }
        this->UpdateProgress((slab + 1.0) / count);
    }
    return true;
}

bool vtkQELVortexFilter::AnalyseSlab(Job& job, int slab) {
    GradientSlab part;
    if (job.gradient != nullptr) {
        part.gradient = job.gradient;
        part.count = job.gradient->GetNumberOfTuples();
    } else {
        const Timer timer(this->GradientTime);
        part = job.slabs->compute(slab);
    }
    if (part.gradient == nullptr) {
        vtkErrorMacro("The gradient of the velocity cannot be computed.");
        return false;
    }
    const Timer timer(this->AnalysisTime);
    BlockAnalysis analysis(this, job, part);
    vtkSMPTools::For(0, analysis.blocks(), analysis);
    this->NumberBelowNoiseFloor += static_cast<vtkIdType>(analysis.belowFloor);
    this->NumberOfZeroedSwirls += static_cast<vtkIdType>(analysis.zeroedSwirls);
    this->NumberOfNonFiniteGradients += static_cast<vtkIdType>(analysis.nonFinite.size());
    const std::size_t named =
        std::min(analysis.nonFinite.size(), kPointsNamed - job.nonFinite.size());
    job.nonFinite.insert(job.nonFinite.end(), analysis.nonFinite.begin(),
                         analysis.nonFinite.begin() + static_cast<std::ptrdiff_t>(named));
    return true;
}

void vtkQELVortexFilter::Warn(const Job& job) {
    if (job.nonFinite.empty()) {
        return;
    }
    const bool onPoints = job.association == vtkDataObject::FIELD_ASSOCIATION_POINTS;
    std::ostringstream ids;
    for (const vtkIdType id : job.nonFinite) {
        ids << " " << id;
    }
    if (this->NumberOfNonFiniteGradients > static_cast<vtkIdType>(job.nonFinite.size())) {
        ids << " ...";
    }
    vtkWarningMacro(<< this->NumberOfNonFiniteGradients << " gradients are not finite and their "
                    << (onPoints ? "points" : "cells") << " undefined:" << ids.str());
}

void vtkQELVortexFilter::PrintSelf(ostream& os, vtkIndent indent) {
    this->Superclass::PrintSelf(os, indent);
    os << indent << "Fields:";
    for (const vtkQELVortex::FieldInfo& info : vtkQELVortex::fields()) {
        if (this->GetFieldEnabled(info.field)) {
            os << " " << info.array;
        }
    }
    os << "\n"
       << indent << "GradientArrayName: " << this->GradientArrayName << "\n"
       << indent << "SlabSize: " << this->SlabSize << "\n"
       << indent << "UndefinedIsNaN: " << this->UndefinedIsNaN << "\n"
       << indent << "NumberOfHiddenTuples: " << this->NumberOfHiddenTuples << "\n"
       << indent << "NumberOfNonFiniteGradients: " << this->NumberOfNonFiniteGradients << "\n"
       << indent << "NoiseFloor: " << this->NoiseFloor << "\n"
       << indent << "NumberBelowNoiseFloor: " << this->NumberBelowNoiseFloor << "\n"
       << indent << "NumberOfZeroedSwirls: " << this->NumberOfZeroedSwirls << "\n";
}
