#ifndef QEL_QELSTREAM_H
#define QEL_QELSTREAM_H

/// @file
/// The output file stream.

#include <fstream>
#include <string>

#include <qel/QELSupportExport.h>

namespace qel {

/// A text file opened for writing. What an ordinary file stream passes over in silence, a path
/// that cannot be opened and data that did not reach the file, is an exception here.
class QEL_SUPPORT_API QELStream : public std::ofstream {
public:
    /// Opens the file, emptying it if it exists.
    ///
    /// @param path  path of the file
    /// @param mode  2 opens for writing; no other mode exists
    /// @param systemLineEnds  false writes "\n" as it is, so that a file is the same on every
    ///     system; true translates it into the system's own line end
    /// @throws data::invalid  if the mode is another or the file cannot be opened
    QELStream(const std::string& path, int mode, bool systemLineEnds);

    /// Closes the file in silence, if close() was not called.
    ~QELStream() override;

    /// Writes what is still buffered and closes the file.
    /// @throws data::invalid  if anything written did not reach the file
    void close();

private:
    std::string path_;
};

} // namespace qel

#endif
