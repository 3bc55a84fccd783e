// Output that is whole or not there.
#include "StagedOutput.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include <unistd.h>

#include "Console.h"

namespace program {
namespace fs = std::filesystem;
namespace {

UserError cannotWrite(const fs::path& target, const std::string& why) {
    return UserError("cannot write " + target.string() + ": " + why);
}

fs::path folderOf(const fs::path& target) {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// Moves one file or folder into its place; what is there gives way only when the move can follow.
void moveOver(const fs::path& from, const fs::path& to) {
    if (!fs::is_directory(from)) {
        fs::rename(from, to);
        return;
    }
    const fs::path old = from.string() + ".old";
    if (fs::exists(to)) {
        fs::rename(to, old);
    }
    fs::rename(from, to);
}

} // namespace

StagedOutput::StagedOutput(const fs::path& target) : target_(target) {
    checkWritable(target);
    std::string name = (folderOf(target) / ".qel-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw cannotWrite(target, std::strerror(errno));
    }
    folder_ = name;
}

StagedOutput::~StagedOutput() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void StagedOutput::commit() {
    if (!fs::exists(path())) {
        throw cannotWrite(target_, "nothing was written");
    }
    try {
        std::vector<fs::path> beside;
        for (const auto& entry : fs::directory_iterator(folder_)) {
            if (entry.path() != path()) {
                beside.push_back(entry.path());
            }
        }
        // The named file last: it refers to the others.
        for (const fs::path& file : beside) {
            moveOver(file, folderOf(target_) / file.filename());
        }
        moveOver(path(), target_);
    } catch (const fs::filesystem_error& error) {
        throw cannotWrite(target_, error.code().message());
    }
}

void checkWritable(const fs::path& target) {
    const fs::path folder = folderOf(target);
    if (!fs::is_directory(folder)) {
        throw cannotWrite(target, "there is no folder " + folder.string());
    }
    if (!target.has_filename() || fs::is_directory(target)) {
        throw cannotWrite(target, "it is a folder");
    }
    if (access(folder.c_str(), W_OK) != 0) {
        throw cannotWrite(target, std::strerror(errno));
    }
}

void writeText(const fs::path& target, const std::string& text) {
    StagedOutput staged(target);
    std::ofstream file(staged.path(), std::ios::binary);
    file << text << std::flush;
    if (!file) {
        throw cannotWrite(target, std::strerror(errno));
    }
    file.close();
    staged.commit();
}

} // namespace program
