#ifndef QEL_VTK_GRADIENTSLABS_H
#define QEL_VTK_GRADIENTSLABS_H

/// @file
/// The velocity gradient of a data set, slab by slab.

#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkSmartPointer.h>
#include <vtkType.h>

namespace vtkQELVortex {

/// The gradient of some consecutive tuples of a field: those from first on are found in the array
/// from offset on. A tuple holds the gradients of two or three velocity components, one by one.
struct GradientSlab {
    vtkSmartPointer<vtkDataArray> gradient;
    vtkIdType offset = 0;
    vtkIdType first = 0;
    vtkIdType count = 0;
};

/// Computes a gradient by vtkGradientFilter with bounded memory.
///
/// On image data, rectilinear and structured grids the filter sees one slab of layers at a time,
/// with one more layer on each inner side, and gives what it gives on the whole: its differences
/// reach no farther than to the next point. An unstructured grid is one slab.
class GradientSlabs {
public:
    /// @param association  vtkDataObject::FIELD_ASSOCIATION_POINTS or _CELLS
    /// @param wanted       tuples that a slab holds at least, where there are so many
    GradientSlabs(vtkDataSet* input, vtkDataArray* velocity, int association, vtkIdType wanted);

    int count() const { return count_; }

    /// @return without an array if VTK cannot compute the gradient
    GradientSlab compute(int slab) const;

private:
    vtkSmartPointer<vtkDataSet> cutGeometry(int firstLayer, int endLayer) const;
    GradientSlab whole() const;

    vtkDataSet* input_;
    vtkDataArray* velocity_;
    int association_;
    int count_ = 1;
    // Of a structured data set: points along each axis; the slowest axis with more than one point,
    // along which layers are counted; layers (of points or cells); tuples in one.
    int dimensions_[3] = {0, 0, 0};
    int axis_ = -1;
    int layers_ = 0;
    int layersInSlab_ = 0;
    vtkIdType layerSize_ = 0;
};

} // namespace vtkQELVortex

#endif
