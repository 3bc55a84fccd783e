#ifndef QEL_TESTS_SUPPORT_STANDARDSTREAMS_H
#define QEL_TESTS_SUPPORT_STANDARDSTREAMS_H

// Collects what is written to std::cout or std::cerr while the object lives.

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

} // namespace qel_test

#endif
