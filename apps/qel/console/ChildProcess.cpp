// The program's work in a child process, whose parent outlives a crash and stops it on request.
#include "console/ChildProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/Messages.h"

namespace program {
namespace {

constexpr const char* kOutOfMemory = ": there is not enough memory, or it is damaged";
constexpr std::array<int, 5> kCrashes{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

using Path = std::array<char, 4096>;

// What both processes see. Empty names stand for none.
struct State {
    Path pathRead;
    Path folderToRemove;
    volatile std::sig_atomic_t stopRequested;
    volatile std::sig_atomic_t cannotStop;
};

State* state = nullptr;
volatile pid_t child = -1;

void setPath(Path State::*path, const std::string& name) {
    if (state != nullptr) {
        (state->*path)[name.copy((state->*path).data(), std::tuple_size_v<Path> - 1)] = '\0';
    }
}

void stopChild(int) {
    state->stopRequested = 1;
    if (state->cannotStop == 0) {
        kill(child, SIGTERM);
    }
}

// Whether a child that was reading ended by the fault of the file. A normal end is one, too: the
// reader was to return. Where memory runs out, the system kills.
bool isCrash(int status) {
    const int number = WIFSIGNALED(status) ? WTERMSIG(status) : SIGABRT;
    return number == SIGKILL ||
           std::find(kCrashes.begin(), kCrashes.end(), number) != kCrashes.end();
}

[[noreturn]] void workAsChild(const std::function<int()>& work) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    for (const int number : kCrashes) {
        std::signal(number, SIG_DFL); // no report of a library but the parent's line
    }
    // A terminal sends the first two to both processes, but the parent decides; the last comes with
    // a file that grows beyond a limit, which is an error like others.
    for (const int number : {SIGINT, SIGHUP, SIGXFSZ}) {
        std::signal(number, SIG_IGN);
    }
    std::exit(work());
}

// Says why the child did not end by itself, and returns the exit code for that.
int afterKill(int status) {
    std::error_code ignored;
    if (state->folderToRemove[0] != '\0') {
        std::filesystem::remove_all(state->folderToRemove.data(), ignored);
    }
    std::cerr << (isatty(STDERR_FILENO) != 0 ? "\r\033[K" : ""); // wipes off a bar
    if (state->pathRead[0] != '\0' && isCrash(status)) {
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        fail("reading ", state->pathRead.data(),
             killed ? kOutOfMemory : ": the reader fails, the file is damaged");
        return kExitBadInput;
    }
    if (state->stopRequested != 0) {
        fail("interrupted");
        return kExitInterrupted;
    }
    std::signal(WTERMSIG(status), SIG_DFL);
    std::raise(WTERMSIG(status));
    return EXIT_FAILURE;
}

} // namespace

int runInChild(const std::function<int()>& work) {
    void* shared =
        mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    state = shared == MAP_FAILED ? nullptr : new (shared) State{};
    child = state == nullptr ? -1 : fork();
    if (child < 0) {
        fail("no process can be started");
        return EXIT_FAILURE;
    }
    if (child == 0) {
        workAsChild(work);
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, stopChild) == SIG_IGN && number == SIGHUP) {
            std::signal(number, SIG_IGN); // as nohup has it
        }
    }
    int status = 0;
    while (waitpid(child, &status, 0) != child) {
    }
    return WIFSIGNALED(status) || state->pathRead[0] != '\0' ? afterKill(status)
                                                             : WEXITSTATUS(status);
}

void whileReading(const std::string& path, const std::function<void()>& work) {
    struct Mark {
        explicit Mark(const std::string& path) { setPath(&State::pathRead, path); }
        ~Mark() { setPath(&State::pathRead, ""); }
    };
    const Mark mark(path);
    try {
        work();
    } catch (const std::bad_alloc&) {
        refuse("reading ", path, kOutOfMemory);
    } catch (const std::length_error&) {
        refuse("reading ", path, kOutOfMemory);
    }
}

void removeAtKill(const std::string& folder) {
    setPath(&State::folderToRemove, folder);
}

void withoutInterrupt(const std::function<void()>& work) {
    struct Guard {
        Guard() { state->cannotStop = 1; }
        ~Guard() {
            state->cannotStop = 0;
            if (state->stopRequested != 0) {
                std::raise(SIGTERM);
            }
        }
    };
    const auto guard = state != nullptr ? std::make_unique<Guard>() : nullptr;
    work();
}

} // namespace program
