#ifndef QEL_PROGRAM_CRASHGUARD_H
#define QEL_PROGRAM_CRASHGUARD_H

/// @file
/// Crashes of code that reads damaged files.

#include <array>
#include <string>

#include <csignal>

namespace program {

/// While an object lives, a crash ends the program with one line on standard error and the exit
/// code of bad input.
///
/// VTK's readers believe what a file says of itself, and some of them crash on one that ends too
/// early. Nothing may be half-written meanwhile, since nothing is cleaned up. One at a time.
class CrashGuard {
public:
    explicit CrashGuard(const std::string& message);
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;

private:
    static constexpr std::array<int, 4> kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGABRT};
    std::array<struct sigaction, kSignals.size()> before_{};
};

} // namespace program

#endif
