#ifndef QEL_TESTS_ARRAYS_LENGTHERRORS_H
#define QEL_TESTS_ARRAYS_LENGTHERRORS_H

// What arrays say to a length beyond the maximum.

#include <cstddef>
#include <stdexcept>
#include <string>

namespace qel_test {

constexpr std::size_t kEndlessLength = static_cast<std::size_t>(-1);

// The text of the standard length error that the action throws.
template <typename Action>
std::string lengthErrorOf(const Action& action) {
    try {
        action();
    } catch (const std::length_error& error) {
        return error.what();
    }
    return "no length error";
}

} // namespace qel_test

#endif
