#ifndef QEL_TESTS_SUPPORT_STANDARDSTREAMS_H
#define QEL_TESTS_SUPPORT_STANDARDSTREAMS_H

// What is written to std::cout or std::cerr: while an object lives, or by an action.

#include <iostream>
#include <sstream>
#include <string>

namespace qel_test {

class CapturedStream {
public:
    explicit CapturedStream(std::ostream& stream)
        : stream_(stream), before_(stream.rdbuf(captured_.rdbuf())) {}
    ~CapturedStream() { stream_.rdbuf(before_); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    std::string text() const { return captured_.str(); }

private:
    std::ostringstream captured_;
    std::ostream& stream_;
    std::streambuf* before_;
};

struct CapturedStandardOutput : CapturedStream {
    CapturedStandardOutput() : CapturedStream(std::cout) {}
};

struct CapturedStandardError : CapturedStream {
    CapturedStandardError() : CapturedStream(std::cerr) {}
};

template <typename Action>
std::string standardOutputOf(const Action& action) {
    const CapturedStandardOutput captured;
    action();
    return captured.text();
}

template <typename Action>
std::string standardErrorOf(const Action& action) {
    const CapturedStandardError captured;
    action();
    return captured.text();
}

} // namespace qel_test

#endif
