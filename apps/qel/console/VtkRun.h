#pragma once
// VTK's work, with progress, and its messages as errors of this program.

#include <functional>
#include <string>
#include <vector>

class vtkAlgorithm;

namespace program {

/// From now on VTK's errors and warnings are kept instead of shown.
void keepVtkMessages();

/// Warnings of the last run, each as one line without VTK's file and object names.
const std::vector<std::string>& vtkWarnings();

/// Updates a VTK algorithm, or does some other work with it, under a progress bar.
///
/// @param what  the work in words, such as "reading a.vtu"
/// @throws UserError    with what and VTK's first message, if VTK reports an error
void run(vtkAlgorithm* algorithm, const std::string& what,
         const std::function<void()>& work = nullptr);

} // namespace program
