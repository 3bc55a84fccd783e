#ifndef QEL_PROGRAM_STAGEDOUTPUT_H
#define QEL_PROGRAM_STAGEDOUTPUT_H

/// @file
/// Output that is whole or not there.

#include <filesystem>
#include <string>

namespace program {

/// A file that is written in a folder of its own beside its place and moved there when complete.
///
///     StagedOutput out("result.vtu");
///     write(out.path());
///     out.commit();
///
/// Without commit() nothing is left, and a file that was there before stays as it is. A writer that
/// makes more files beside path(), or a folder of pieces, has them moved as well. A link is written
/// through.
class StagedOutput {
public:
    /// @throws UserError  if the folder is not there or cannot be written
    explicit StagedOutput(const std::filesystem::path& target);
    ~StagedOutput();
    StagedOutput(const StagedOutput&) = delete;
    StagedOutput& operator=(const StagedOutput&) = delete;

    /// Where to write; it has the name that the file will have.
    std::string path() const { return (folder_ / target_.filename()).string(); }

    /// @throws UserError  if there is no file to move or it cannot be moved
    void commit();

private:
    std::filesystem::path target_;
    std::filesystem::path folder_;
};

/// Fails early what a StagedOutput would refuse later.
/// @throws UserError  if no file can be made there, or there is something that is no file
void checkWritable(const std::filesystem::path& target);

/// The part of it that does not need the whole name of the file.
/// @throws UserError  if the folder of the file is not there or cannot be written
void checkFolder(const std::filesystem::path& target);

/// The blocks of x.vtm are written to a folder x as x_0.vtu and so on. One of an earlier run is
/// replaced; anything else of that name is the user's.
/// @throws UserError  if there is anything else
void checkPieceFolder(const std::filesystem::path& folder);

/// Writes a text file whole or not at all.
/// @throws UserError  if it cannot be written
void writeText(const std::filesystem::path& target, const std::string& text);

} // namespace program

#endif
