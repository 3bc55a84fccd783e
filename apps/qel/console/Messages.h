#pragma once
// Messages to the user, on standard error. Their parts, words and numbers, are joined.

#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "console/Progress.h"

namespace program {

template <typename... Parts>
std::string joined(const Parts&... parts) {
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

/// Something that the user can mend; its text is the one line that is shown.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// @throws UserError
template <typename... Parts>
[[noreturn]] void refuse(const Parts&... parts) {
    throw UserError(joined(parts...));
}

/// @throws UserError  if the condition holds
template <typename... Parts>
void refuseIf(bool condition, const Parts&... parts) {
    if (condition) {
        refuse(parts...);
    }
}

/// Writes a line after the program's name.
template <typename... Parts>
void note(const Parts&... parts) {
    wipeBar();
    std::cerr << "qel: " + joined(parts...) + "\n" << std::flush;
}

template <typename... Parts>
void warn(const Parts&... parts) {
    note("warning: ", parts...);
}

/// The last line of a run that fails.
template <typename... Parts>
void fail(const Parts&... parts) {
    note("error: ", parts...);
}

} // namespace program
