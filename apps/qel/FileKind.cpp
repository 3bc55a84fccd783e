// What kind of file an input is, told by its contents.
#include "FileKind.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <vtksys/RegularExpression.hxx>

#include "Console.h"

namespace program {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kHeadSize = 4096;

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

bool startsWith(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

std::string headOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string head(kHeadSize, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    if (file.bad() || !file.is_open()) {
        throw UserError("cannot read " + path);
    }
    head.resize(static_cast<std::size_t>(file.gcount()));
    return head;
}

bool isText(const std::string& head) {
    return std::none_of(head.begin(), head.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return u < 0x20 && std::isspace(u) == 0;
    });
}

bool isFoamCase(const std::string& path) {
    const fs::path name(path);
    return fs::is_directory(name / "system") ||
           (fs::is_directory(name.parent_path() / "system") && name.extension() == ".foam") ||
           name.filename() == "controlDict";
}

FileKind textKind(const std::string& head) {
    if (startsWith(head, "# vtk DataFile")) {
        return FileKind::legacyVtk;
    }
    if (contains(head, "<VTKFile")) {
        return FileKind::xmlVtk;
    }
    if (contains(head, "pvtk-")) {
        return FileKind::partitionedLegacyVtk;
    }
    if (contains(head, "FORMAT") && contains(head, "ensight")) {
        return FileKind::ensight;
    }
    if (contains(head, "<gpx")) {
        return FileKind::gpx;
    }
    const std::size_t first = head.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && head[first] == '{') {
        return FileKind::json;
    }
    return FileKind::text;
}

} // namespace

FileKind recognise(const std::string& path) {
    std::error_code error;
    if (!fs::exists(path, error)) {
        throw UserError("there is no file " + path);
    }
    if (isFoamCase(path)) {
        return FileKind::openFoam;
    }
    if (fs::is_directory(path, error)) {
        throw UserError(path + " is a folder, not an OpenFOAM case");
    }
    if (!fs::is_regular_file(path, error)) {
        throw UserError(path + " is no ordinary file; pipes and devices are not read");
    }
    std::string head = headOf(path);
    if (startsWith(head, kByteOrderMark)) {
        head.erase(0, kByteOrderMark.size());
    }
    if (head.empty()) {
        throw UserError(path + " is empty");
    }
    const bool hdf5 = startsWith(head, "\x89HDF");
    if (startsWith(head, "ADF") || contains(head.substr(0, 64), "ADF Database") ||
        (hdf5 && (contains(head, "CGNSLibraryVersion") || fs::path(path).extension() == ".cgns"))) {
        return FileKind::cgns;
    }
    if (hdf5 || startsWith(head, "CDF")) {
        return FileKind::exodus;
    }
    // VTK's files may hold binary data behind a first part of text.
    const FileKind kind = textKind(head);
    if (kind == FileKind::text || kind == FileKind::json) {
        return isText(head) ? kind : FileKind::binary;
    }
    return kind;
}

std::string xmlVtkType(const std::string& path) {
    vtksys::RegularExpression type("<VTKFile[^>]*[ \t\r\n]type=\"([^\"]*)\"");
    return type.find(headOf(path)) ? type.match(1) : std::string();
}

} // namespace program
