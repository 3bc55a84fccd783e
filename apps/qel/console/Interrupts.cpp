// How the user stops the program.
#include "console/Interrupts.h"

#include <csignal>
#include <ctime>

namespace program {
namespace {

// A signal to all processes of a group comes twice: by itself, and passed on by the parent.
constexpr double kSecondsOfOneRequest = 0.2;

volatile std::sig_atomic_t stopRequested = 0;
volatile double requestTime = 0.0; // seconds

void onSignal(int number) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now); // safe in a signal handler
    const double time = static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
    if (stopRequested == 0) {
        requestTime = time;
        stopRequested = 1;
    } else if (time - requestTime > kSecondsOfOneRequest) {
        std::signal(number, SIG_DFL);
        std::raise(number);
    }
}

} // namespace

void catchInterrupts() {
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    if (std::signal(SIGHUP, onSignal) == SIG_IGN) {
        std::signal(SIGHUP, SIG_IGN); // as nohup has it
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows beyond a limit is an error like others
}

bool isInterrupted() {
    return stopRequested != 0;
}

void throwIfInterrupted() {
    if (isInterrupted()) {
        throw Interrupted();
    }
}

} // namespace program
