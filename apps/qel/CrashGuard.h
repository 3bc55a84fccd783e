#ifndef QEL_PROGRAM_CRASHGUARD_H
#define QEL_PROGRAM_CRASHGUARD_H

/// @file
/// Crashes of code that reads damaged files.

#include <array>
#include <memory>
#include <string>

#include <csignal>

namespace program {

/// While an object lives, a crash ends the program with a text on standard error and an exit code.
///
/// VTK's readers believe what a file says of itself, and some of them crash on one that ends too
/// early or nests too deeply. Made around their calls alone, so that a crash of this program's own
/// code is not blamed on a file. Nothing may be half-written meanwhile, since nothing is cleaned
/// up.
///
/// Guards may be nested; the innermost one speaks. What was in force before is so again afterwards.
/// The thread that makes one is guarded against a stack that overflows as well, unless memory is
/// too short for a stack to handle that on.
class CrashGuard {
public:
    CrashGuard(std::string lastWords, int exitCode) noexcept;
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;

private:
    static constexpr std::array<int, 5> kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

    static void onCrash(int);

    std::string lastWords_;
    int exitCode_;
    const CrashGuard* outer_;
    std::unique_ptr<char[]> stack_; // for the handler
    stack_t stackBefore_{};
    std::array<struct sigaction, kSignals.size()> before_{};
};

} // namespace program

#endif
