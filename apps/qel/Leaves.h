#ifndef QEL_PROGRAM_LEAVES_H
#define QEL_PROGRAM_LEAVES_H

/// @file
/// The data sets that a data object consists of.

#include <functional>
#include <string>
#include <vector>

#include <vtkDataObject.h>
#include <vtkDataSet.h>
#include <vtkSmartPointer.h>

namespace program {

struct Leaf {
    vtkDataSet* data = nullptr;
    std::string name; ///< of the block; empty for a data set that stands alone
};

/// The data set itself, or those of a composite one that have points.
std::vector<Leaf> leavesOf(vtkDataObject* object);

/// An object of the same structure with every leaf replaced by what change returns for it.
vtkSmartPointer<vtkDataObject>
changeLeaves(vtkDataObject* object,
             const std::function<vtkSmartPointer<vtkDataSet>(const Leaf&)>& change);

/// Largest dimension of the cells of a data set: 0 to 3; -1 if it has none.
int cellDimension(vtkDataSet* data);

/// Bounds of all leaves together.
void boundsOf(const std::vector<Leaf>& leaves, double bounds[6]);

/// Number of points of all leaves together.
vtkIdType pointsOf(const std::vector<Leaf>& leaves);

} // namespace program

#endif
