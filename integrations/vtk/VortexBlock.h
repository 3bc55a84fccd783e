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

#include <qel/GradientAnalysis.h>

#include "vtkQELVortexFields.h"

namespace vtkQELVortex {

/// Takes a block of gradients through analyzeGradients and into the arrays of the chosen fields.
/// One object serves all blocks of a thread, so that memory is asked for once.
class VortexBlock {
public:
    /// Points in a block: gradients and results stay in a second-level cache.
    static constexpr vtkIdType kPoints = 4096;

    /// Arrays of the whole field to fill; null for a field that is not wanted.
    using Outputs = std::array<vtkSmartPointer<vtkFloatArray>, kFieldCount>;

    VortexBlock(const Outputs& outputs, const qel::GradientOptions& options)
        : outputs_(outputs), options_(options) {}

    /// Reads tuples of gradients. Those not finite count as zero from here on, and so do those with
    /// a nonzero entry in the mask, if there is one.
    void loadGradient(vtkDataArray* gradient, vtkIdType first, vtkIdType count,
                      const unsigned char* mask);
    /// Reads tuples of the velocity, which helicity needs.
    void loadVelocity(vtkDataArray* velocity, vtkIdType first);

    /// For each point of the block, whether its gradient is finite.
    const std::vector<unsigned char>& finite() const { return finite_; }

    /// Stores the chosen fields from tuple `first` of the outputs on.
    qel::GradientReport store(vtkIdType first);

private:
    template <typename T>
    void readGradient(const T* tuples, int components, const unsigned char* mask);
    qel::ScalarView<float> scalars(Field field, vtkIdType first) const;
    qel::TripletView<float> triplets(Field field, vtkIdType first) const;

    Outputs outputs_;
    qel::GradientOptions options_;
    std::vector<float> gradients_; // nine for each point
    std::vector<float> velocity_;  // three for each point
    std::vector<unsigned char> finite_;
    std::vector<double> buffer_;
};

} // namespace vtkQELVortex

#endif
