// An input and the kind of file that it is, told by its contents.
#include "reading/InputFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <utility>

#include <sys/mman.h>

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

// The path of a file in memory that holds standard input; it is gone when the program ends.
std::string heldInput() {
    const int memory = memfd_create("standard input", 0);
    refuseIf(memory < 0, "cannot hold standard input in memory");
    std::string path = "/proc/self/fd/" + std::to_string(memory);
    std::ofstream file(path, std::ios::binary);
    if (std::cin.peek() != std::istream::traits_type::eof()) {
        file << std::cin.rdbuf();
    }
    refuseIf(!file.flush(), "cannot hold standard input in memory");
    return path;
}

} // namespace

InputFile recognise(const std::string& path) {
    std::error_code error;
    if (path == "-") {
        const std::string held = heldInput();
        refuseIf(fs::file_size(held, error) == 0, "standard input is empty");
        return {held, kindOf(held, headOf(held)), true};
    }
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
