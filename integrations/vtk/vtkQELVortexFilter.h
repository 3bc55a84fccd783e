#ifndef vtkQELVortexFilter_h
#define vtkQELVortexFilter_h

/// @file
/// Vortex quantities of a velocity field.

#include <bitset>
#include <string>
#include <vector>

#include <vtkDataSetAlgorithm.h>

#include "vtkQELVortexFields.h"

class vtkDataArray;

/// Adds fields that show vortices to a data set with a velocity on points or cells.
///
///     vtkNew<vtkQELVortexFilter> vortices;
///     vortices->SetInputConnection(reader->GetOutputPort());
///     vortices->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS, "U");
///     vortices->SetFieldEnabled(vtkQELVortex::Lambda2, true);
///     vortices->Update();
///
/// The velocity has two or three components of any real type; without SetInputArrayToProcess() the
/// active vectors are taken. The gradient is computed by vtkGradientFilter, on structured data slab
/// by slab, or taken from an array. Results are arrays of floats with the names of
/// vtkQELVortex::fields() and the velocity's association; an array of the input with the same name
/// is replaced in the output. All fields are enabled at first.
///
/// Hidden (blanked) and ghost points or cells, and those with a gradient that is not finite, get
/// GetUndefinedValue(), or NaN where SetUndefinedIsNaN() asks for it. Each gradient is analysed
/// scaled by a power of two, since absolute thresholds of the analysis act on its fourth powers;
/// where rounding alone would make the swirl strength NaN it is 0 (qel/GradientAnalysis.h).
///
/// Works on each piece of a composite input. A run that is aborted leaves no array. Gradients and
/// their analysis run on the threads of vtkSMPTools; the values do not depend on how many there
/// are.
class vtkQELVortexFilter : public vtkDataSetAlgorithm {
public:
    static vtkQELVortexFilter* New();
    vtkTypeMacro(vtkQELVortexFilter, vtkDataSetAlgorithm)

    void PrintSelf(ostream& os, vtkIndent indent) override;

    vtkQELVortexFilter(const vtkQELVortexFilter&) = delete;
    vtkQELVortexFilter& operator=(const vtkQELVortexFilter&) = delete;

    // -- Fields ----
    void SetFieldEnabled(vtkQELVortex::Field field, bool enabled);
    bool GetFieldEnabled(vtkQELVortex::Field field) const;
    void EnableAllFields();
    void DisableAllFields();

    // -- Gradient ----
    /// Name of an array of nine components, du/dx, du/dy, du/dz, dv/dx, ..., with the velocity's
    /// association, to take as the gradient. Empty: computed.
    vtkSetMacro(GradientArrayName, std::string);
    vtkGetMacro(GradientArrayName, std::string);

    /// Points that a slab of structured data holds at least while gradients are computed.
    vtkSetClampMacro(SlabSize, vtkIdType, 1, VTK_ID_MAX);
    vtkGetMacro(SlabSize, vtkIdType);

    /// NaN in place of GetUndefinedValue(), which colour maps and ranges leave out. Off at first.
    vtkSetMacro(UndefinedIsNaN, bool);
    vtkGetMacro(UndefinedIsNaN, bool);
    vtkBooleanMacro(UndefinedIsNaN, bool);

    /// Share of the square of the gradient's norm below which lambda2, the discriminant and the
    /// swirl strength are set to 0, as qel::GradientOptions has it: 1e-6 takes away what rounding
    /// makes of a shear at a wall. Off (0) at first.
    vtkSetClampMacro(NoiseFloor, double, 0.0, 1.0);
    vtkGetMacro(NoiseFloor, double);

    // -- What the last run found ----
    /// Of a composite input, the last piece's.
    vtkGetMacro(NumberOfHiddenTuples, vtkIdType);
    vtkGetMacro(NumberOfNonFiniteGradients, vtkIdType);
    /// Points or cells at which the noise floor set something to 0.
    vtkGetMacro(NumberBelowNoiseFloor, vtkIdType);
    /// Those at which a swirl strength that rounding made NaN became 0.
    vtkGetMacro(NumberOfZeroedSwirls, vtkIdType);
    /// Seconds of the last run that went into gradients and into the analysis of them.
    vtkGetMacro(GradientTime, double);
    vtkGetMacro(AnalysisTime, double);

    /// What stands where there is no value: the largest finite float.
    static float GetUndefinedValue();

protected:
    vtkQELVortexFilter();
    ~vtkQELVortexFilter() override = default;

    int RequestUpdateExtent(vtkInformation*, vtkInformationVector**,
                            vtkInformationVector*) override;
    int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector*) override;

private:
    struct Job;
    class BlockAnalysis;
    bool Prepare(Job& job, vtkInformationVector** inputVector);
    void MakeOutputs(Job& job) const;
    bool Analyse(Job& job);
    bool AnalyseSlab(Job& job, int slab);
    void Warn(const Job& job);

    std::bitset<vtkQELVortex::kFieldCount> EnabledFields;
    std::string GradientArrayName;
    vtkIdType SlabSize = 1000000;
    bool UndefinedIsNaN = false;
    double NoiseFloor = 0.0;

    vtkIdType NumberOfHiddenTuples = 0;
    vtkIdType NumberOfNonFiniteGradients = 0;
    vtkIdType NumberBelowNoiseFloor = 0;
    vtkIdType NumberOfZeroedSwirls = 0;
    double GradientTime = 0.0;
    double AnalysisTime = 0.0;
};

#endif
