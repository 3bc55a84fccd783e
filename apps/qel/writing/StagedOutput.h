#pragma once
// Output that is whole or not there.

#include <filesystem>
#include <string>

namespace program {
namespace fs = std::filesystem;

/// A file that is written in a folder of its own beside its place and moved there when complete.
///
///     StagedOutput out("result.vtu");
///     write(out.path());
///     out.commit();
///
/// Without commit() nothing is left, and a file that was there before stays as it is. A writer that
/// makes more files beside path(), or a folder of pieces, has them moved as well. A link is written
/// through. One at a time is removed where the program is interrupted.
class StagedOutput {
public:
    /// @throws UserError  if the folder is not there or cannot be written
    explicit StagedOutput(const fs::path& target);
    ~StagedOutput();
    StagedOutput(const StagedOutput&) = delete;
    StagedOutput& operator=(const StagedOutput&) = delete;

    /// Where to write; it has the name that the file will have.
    std::string path() const { return (folder_ / target_.filename()).string(); }

    /// @throws UserError  if there is no file to move or it cannot be moved
    void commit();
    /// Writes the file itself, as a text.
    void commit(const std::string& text);

private:
    fs::path target_;
    fs::path folder_;
};

/// Fails early what a StagedOutput would refuse later; the folder can be checked before the name.
/// @throws UserError  if no file can be made there, or there is something that is no file
void checkWritable(const fs::path& target);
void checkFolder(const fs::path& target);

/// The blocks of x.vtm are written to a folder x as x_0.vtu and so on. One of an earlier run is
/// replaced; anything else of that name is the user's.
/// @throws UserError  if there is anything else
void checkPieceFolder(const fs::path& folder);

/// Writes a text file whole or not at all.
/// @throws UserError  if it cannot be written
void writeText(const fs::path& target, const std::string& text);

} // namespace program
