// Crashes of code that reads damaged files.
#include "CrashGuard.h"

#include <atomic>
#include <new>
#include <utility>

#include <unistd.h>

namespace program {
namespace {

// Ample for the handler and for the registers that the system saves there.
constexpr std::size_t kStackSize = 64 * 1024;

std::atomic<const CrashGuard*> innermost{nullptr};
static_assert(std::atomic<const CrashGuard*>::is_always_lock_free, "a signal handler reads it");

} // namespace

// Runs in whatever state the crash has left: it asks for no memory, takes no lock and calls nothing
// but what is safe in a signal handler.
void CrashGuard::onCrash(int) {
    const CrashGuard* guard = innermost.load();
    const ssize_t ignored =
        write(STDERR_FILENO, guard->lastWords_.data(), guard->lastWords_.size());
    static_cast<void>(ignored);
    _exit(guard->exitCode_);
}

CrashGuard::CrashGuard(std::string lastWords, int exitCode) noexcept
    : lastWords_(std::move(lastWords)),
      exitCode_(exitCode),
      outer_(innermost.load()),
      stack_(new (std::nothrow) char[kStackSize]) {
    if (stack_ != nullptr) {
        stack_t stack{};
        stack.ss_sp = stack_.get();
        stack.ss_size = kStackSize;
        sigaltstack(&stack, &stackBefore_);
    }
    innermost.store(this);
    struct sigaction action {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK; // the usual stack may be what has run out
    sigfillset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &action, &before_[i]);
    }
}

CrashGuard::~CrashGuard() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &before_[i], nullptr);
    }
    innermost.store(outer_);
    if (stack_ != nullptr) {
        sigaltstack(&stackBefore_, nullptr);
    }
}

} // namespace program
