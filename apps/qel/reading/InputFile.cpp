// An input and the kind of file that it is, told by its contents.
#include "reading/InputFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <utility>

#include "console/Messages.h"

namespace program {
namespace fs = std::filesystem;
namespace {

// The first part of a file, without a byte order mark.
std::string headOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string head(4096, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    refuseIf(file.bad() || !file.is_open(), "cannot read ", path);
    head.resize(static_cast<std::size_t>(file.gcount()));
    if (head.rfind(kByteOrderMark, 0) == 0) {
        head.erase(0, kByteOrderMark.size());
    }
    refuseIf(head.empty(), path, " is empty");
    return head;
}

bool isFoamCase(const fs::path& path) {
    return fs::is_directory(path / "system") ||
           (fs::is_directory(path.parent_path() / "system") && path.extension() == ".foam") ||
           path.filename() == "controlDict";
}

FileKind kindOf(const std::string& path, const std::string& head) {
    const auto starts = [&](std::string_view start) { return head.rfind(start, 0) == 0; };
    const auto has = [&](std::string_view part) { return head.find(part) != std::string::npos; };
    const bool hdf5 = starts("\x89HDF");
    if (starts("ADF") || head.substr(0, 64).find("ADF Database") != std::string::npos ||
        (hdf5 && (has("CGNSLibraryVersion") || fs::path(path).extension() == ".cgns"))) {
        return FileKind::cgns;
    }
    if (hdf5 || starts("CDF")) {
        return hdf5 ? FileKind::exodus : FileKind::classicExodus;
    }
    // These may hold binary data behind a first part of text.
    const std::array<std::pair<bool, FileKind>, 5> marked{
        {{starts("# vtk DataFile"), FileKind::legacyVtk},
         {has("<VTKFile"), FileKind::xmlVtk},
         {has("pvtk-"), FileKind::partitionedLegacyVtk},
         {has("FORMAT") && has("ensight"), FileKind::ensight},
         {has("<gpx"), FileKind::gpx}}};
    for (const auto& [isOfKind, kind] : marked) {
        if (isOfKind) {
            return kind;
        }
    }
    const auto isNoText = [](unsigned char c) { return c < 0x20 && std::isspace(c) == 0; };
    if (std::any_of(head.begin(), head.end(), isNoText)) {
        return FileKind::binary;
    }
    const std::size_t first = head.find_first_not_of(" \t\r\n");
    return first != std::string::npos && head[first] == '{' ? FileKind::json : FileKind::text;
}

} // namespace

InputFile recognise(const std::string& path) {
    std::error_code error;
    refuseIf(!fs::exists(path, error), "there is no file ", path);
    if (isFoamCase(path)) {
        return {path, FileKind::openFoam};
    }
    refuseIf(fs::is_directory(path, error), path, " is a folder, not an OpenFOAM case");
    refuseIf(!fs::is_regular_file(path, error), path,
             " is no ordinary file; pipes and devices are not read");
    return {path, kindOf(path, headOf(path))};
}

} // namespace program
