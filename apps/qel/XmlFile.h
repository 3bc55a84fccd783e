#ifndef QEL_PROGRAM_XMLFILE_H
#define QEL_PROGRAM_XMLFILE_H

/// @file
/// XML files of any kind as trees.

#include <string>

#include <vtkSmartPointer.h>

class vtkXMLDataElement;

namespace program {

/// The outermost element, if it has this name; null otherwise and if the file is damaged or nests
/// its elements deeper than any of its kind.
vtkSmartPointer<vtkXMLDataElement> readXml(const std::string& path, const std::string& root);

} // namespace program

#endif
