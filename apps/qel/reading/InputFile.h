#pragma once
// An input and the kind of file that it is, told by its contents.

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
    classicExodus, ///< in a classic format of netCDF
    cgns,
    json,
    gpx,
    text,   ///< text of none of these kinds
    binary, ///< none of these kinds; PLOT3D perhaps
};

/// A file, or the folder of an OpenFOAM case, that is there and not empty.
struct InputFile {
    std::string path;
    FileKind kind;
    bool isStandardInput = false; ///< held in memory, where the path leads

    std::string name() const { return isStandardInput ? "standard input" : path; }
    bool isVtk() const { return kind <= FileKind::partitionedLegacyVtk; }
    bool mayBePlot3d() const { return kind >= FileKind::text; }
};

/// The path - is standard input, which is read whole.
/// @throws UserError  if the file is missing, empty or unreadable
InputFile recognise(const std::string& path);

} // namespace program
