#pragma once
// Whether the parts of a data set fit together.

#include <string>

class vtkDataSet;

namespace program {

/// Readers take over what a file says, and filters read beyond the end of arrays where it is wrong.
///
/// @throws UserError  if points or values are fewer than the data set is made of, or a cell is of
///                    points that are not there, of too few points or of a kind that is none
void checkData(vtkDataSet* data, const std::string& path);

} // namespace program
