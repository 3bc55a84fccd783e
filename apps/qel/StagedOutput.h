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
/// makes more files or folders beside path() has them moved as well.
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
/// @throws UserError  if no file can be made there
void checkWritable(const std::filesystem::path& target);

/// Writes a text file whole or not at all.
/// @throws UserError  if it cannot be written
void writeText(const std::filesystem::path& target, const std::string& text);

} // namespace program

#endif
