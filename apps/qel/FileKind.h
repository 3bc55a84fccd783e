#ifndef QEL_PROGRAM_FILEKIND_H
#define QEL_PROGRAM_FILEKIND_H

/// @file
/// What kind of file an input is, told by its contents.

#include <string>
#include <string_view>

namespace program {

/// What some programs put before the text of a file in UTF-8.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

enum class FileKind {
    xmlVtk,
    legacyVtk,
    partitionedLegacyVtk,
    ensight,
    openFoam,
    exodus,
    cgns,
    json,
    gpx,
    text,   ///< text of none of these kinds
    binary, ///< none of these kinds; PLOT3D perhaps
};

/// @throws UserError  if the file is missing, empty or unreadable
FileKind recognise(const std::string& path);

/// The data set type named in an XML VTK file, such as "PUnstructuredGrid"; empty if there is none.
std::string xmlVtkType(const std::string& path);

} // namespace program

#endif
