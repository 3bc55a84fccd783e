#pragma once
// The data sets that a data object consists of.

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

/// The data set itself, or those of a composite one that have points; none for no object.
std::vector<Leaf> leavesOf(vtkDataObject* object);

/// An object of the same structure with every leaf replaced by what change returns for it.
vtkSmartPointer<vtkDataObject>
changeLeaves(vtkDataObject* object,
             const std::function<vtkSmartPointer<vtkDataSet>(const Leaf&)>& change);

/// Largest dimension of the cells of a data set: 0 to 3; -1 if it has none.
int cellDimension(vtkDataSet* data);

} // namespace program
