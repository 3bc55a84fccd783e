#ifndef QEL_TESTS_SUPPORT_CAPTURE_H
#define QEL_TESTS_SUPPORT_CAPTURE_H

// What an action writes to standard output.

#include <iostream>
#include <sstream>
#include <string>

namespace qel_test {

template <typename Action>
std::string standardOutputOf(const Action& action) {
    std::ostringstream captured;
    std::streambuf* const before = std::cout.rdbuf(captured.rdbuf());
    try {
        action();
    } catch (...) {
        std::cout.rdbuf(before);
        throw;
    }
    std::cout.rdbuf(before);
    return captured.str();
}

} // namespace qel_test

#endif
