// Crashes of code that reads damaged files.
#include "CrashGuard.h"

#include <unistd.h>

#include "Console.h"

namespace program {
namespace {

// What the handler writes; it may not ask for memory.
std::string lastWords;

void onCrash(int) {
    const ssize_t ignored = write(STDERR_FILENO, lastWords.data(), lastWords.size());
    static_cast<void>(ignored);
    _exit(kExitBadInput);
}

} // namespace

CrashGuard::CrashGuard(const std::string& message) {
    const char* wipe = isatty(STDERR_FILENO) != 0 ? "\r\033[K" : ""; // of a progress bar
    lastWords = wipe + ("qel: error: " + message + "\n");
    struct sigaction action {};
    action.sa_handler = onCrash;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &action, &before_[i]);
    }
}

CrashGuard::~CrashGuard() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &before_[i], nullptr);
    }
}

} // namespace program
