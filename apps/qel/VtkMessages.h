#ifndef QEL_PROGRAM_VTKMESSAGES_H
#define QEL_PROGRAM_VTKMESSAGES_H

/// @file
/// VTK's errors and warnings, kept instead of shown.

#include <string>
#include <vector>

namespace program {

/// Takes the place of VTK's message window, so that the program can say what went wrong in one
/// line of its own.
class VtkMessages {
public:
    static VtkMessages& instance();

    /// The messages since the last clear(), each as one line without VTK's file and object names.
    const std::vector<std::string>& errors() const { return errors_; }
    const std::vector<std::string>& warnings() const { return warnings_; }
    void clear();

    void addError(const char* text);
    void addWarning(const char* text);

private:
    VtkMessages();

    std::vector<std::string> errors_;
    std::vector<std::string> warnings_;
};

} // namespace program

#endif
