#ifndef QEL_VTK_VORTEXBLOCK_H
#define QEL_VTK_VORTEXBLOCK_H

/// @file
/// The analysis of one block of points, from a gradient to the chosen fields.

#include <array>
#include <cstddef>
#include <vector>

#include <vtkDataArray.h>
#include <vtkFloatArray.h>
#include <vtkSmartPointer.h>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletQELVector.h>

#include "vtkQELVortexFields.h"

namespace vtkQELVortex {

/// Takes a block of gradients through TensorEigenizer and into the arrays of the chosen fields.
/// One object serves all blocks of a thread, so that memory is asked for once.
class VortexBlock {
public:
    /// Points in a block: rows and results stay in a second-level cache.
    static constexpr vtkIdType kPoints = 4096;

    /// Arrays of the whole field to fill; null for a field that is not wanted.
    using Outputs = std::array<vtkSmartPointer<vtkFloatArray>, kFieldCount>;

    explicit VortexBlock(const Outputs& outputs) : outputs_(outputs) {}

    /// Computes with gradients 2^exponent times as large, and takes the factor out of the results.
    void setScaleExponent(int exponent) { exponent_ = exponent; }

    /// Reads tuples of gradients; those not finite count as zero from here on.
    void loadGradient(vtkDataArray* gradient, vtkIdType first, vtkIdType count);
    /// Reads tuples of the velocity, which helicity needs.
    void loadVelocity(vtkDataArray* velocity, vtkIdType first);

    /// For each point of the block, whether its gradient is finite.
    const std::vector<unsigned char>& finite() const { return finite_; }
    /// Largest magnitude of a finite gradient component in the block, not scaled; points with a
    /// nonzero entry in the mask are left out.
    double largest(const unsigned char* mask) const;

    /// Stores the chosen fields from tuple `first` of the outputs on.
    void store(vtkIdType first);

private:
    template <typename T>
    void readGradient(const T* tuples, int components, std::size_t count);
    void storeInvariants(const qel::TensorEigenizer& tensor, vtkIdType first);
    void storeEigenAnalysis(const qel::TensorEigenizer& tensor, vtkIdType first);
    void computeQCriterion();
    void put(Field field, const qel::FloatQELVectorConcrete& values, vtkIdType first);
    void put(Field field, const qel::TripletQELVector& values, vtkIdType first);
    void put(Field field, const float* values, std::size_t count, vtkIdType first);
    bool wants(Field field) const { return outputs_[field] != nullptr; }

    Outputs outputs_;
    int exponent_ = 0;
    std::array<qel::TripletQELVector, 3> rows_;
    qel::TripletQELVector velocity_;
    std::vector<unsigned char> finite_;
    std::vector<double> buffer_;
    qel::FloatQELVectorConcrete scalar_;
    qel::FloatQELVectorConcrete swirl_;
    qel::FloatQELVectorConcrete realEigenvalue_;
    qel::TripletQELVector triplet_;
};

} // namespace vtkQELVortex

#endif
