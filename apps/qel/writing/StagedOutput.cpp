// Output that is whole or not there.
#include "writing/StagedOutput.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include <unistd.h>

#include "console/ChildProcess.h"
#include "console/Messages.h"

namespace program {
namespace {

void failIf(bool condition, const fs::path& target, const std::string& why) {
    refuseIf(condition, "cannot write ", target.string(), ": ", why);
}

fs::path folderOf(const fs::path& target) {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// Where a link leads to: it is to stay a link.
fs::path withoutLinks(const fs::path& target) {
    std::error_code error;
    const fs::path place = fs::is_symlink(target) ? fs::canonical(target, error) : target;
    return error ? target : place;
}

bool isPiece(const fs::path& file, const std::string& name) {
    const std::string stem = file.stem().string();
    return file.extension().string().rfind(".vt", 0) == 0 && stem.rfind(name + "_", 0) == 0 &&
           stem.find_first_not_of("0123456789", name.size() + 1) == std::string::npos;
}

// Moves one file or folder into its place; what is there gives way only when the move can follow.
void moveOver(const fs::path& from, const fs::path& to) {
    if (fs::is_directory(from)) {
        checkPieceFolder(to);
        if (fs::exists(to)) {
            fs::rename(to, from.string() + ".old");
        }
    }
    fs::rename(from, to);
}

} // namespace

StagedOutput::StagedOutput(const fs::path& target) : target_(withoutLinks(target)) {
    checkWritable(target_);
    std::string name = (folderOf(target_) / ".qel-XXXXXX").string();
    const bool made = mkdtemp(name.data()) != nullptr;
    failIf(!made, target_, std::strerror(errno));
    folder_ = name;
    removeAtKill(fs::absolute(folder_).string());
}

StagedOutput::~StagedOutput() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
    removeAtKill("");
}

void StagedOutput::commit() {
    failIf(!fs::exists(path()), target_, "nothing was written");
    try {
        std::vector<fs::path> files{fs::directory_iterator(folder_), fs::directory_iterator()};
        // The named file last: it refers to the others.
        std::partition(files.begin(), files.end(),
                       [this](const fs::path& file) { return file != path(); });
        withoutInterrupt([&] {
            for (const fs::path& file : files) {
                moveOver(file, folderOf(target_) / file.filename());
            }
        });
    } catch (const fs::filesystem_error& error) {
        failIf(true, target_, error.code().message());
    }
}

void checkFolder(const fs::path& target) {
    const fs::path folder = folderOf(target);
    failIf(!fs::is_directory(folder), target, "there is no folder " + folder.string());
    const bool open = access(folder.c_str(), W_OK) == 0;
    failIf(!open, target, std::strerror(errno));
}

void checkWritable(const fs::path& target) {
    const fs::path place = withoutLinks(target);
    checkFolder(place);
    failIf(!place.has_filename() || fs::is_directory(place), target, "it is a folder");
    failIf(fs::exists(place) && !fs::is_regular_file(place), target, "it is no ordinary file");
}

void checkPieceFolder(const fs::path& folder) {
    const auto holdsOnlyPieces = [&] {
        const fs::directory_iterator entries(folder);
        return std::all_of(begin(entries), end(entries), [&](const fs::directory_entry& entry) {
            return isPiece(entry.path(), folder.filename().string());
        });
    };
    refuseIf(fs::exists(folder) && (!fs::is_directory(folder) || !holdsOnlyPieces()),
             "cannot write blocks to the folder ", folder.string(),
             ": there is something else of that name");
}

void StagedOutput::commit(const std::string& text) {
    std::ofstream file(path(), std::ios::binary);
    file << text << std::flush;
    failIf(!file, target_, std::strerror(errno));
    file.close();
    commit();
}

void writeText(const fs::path& target, const std::string& text) {
    StagedOutput(target).commit(text);
}

} // namespace program
