// The program's work in a child process, whose parent outlives a crash.
#include "console/ChildProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/Messages.h"

namespace program {
namespace {

constexpr const char* kOutOfMemory = ": there is not enough memory, or it is damaged";
constexpr std::size_t kPathSize = 4096;
constexpr std::array<int, 5> kCrashes{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// What the child is reading, in memory that the parent sees as well; empty in between.
char* pathRead = nullptr;

void setPathRead(const std::string& path) {
    if (pathRead != nullptr) {
        pathRead[path.copy(pathRead, kPathSize - 1)] = '\0';
    }
}

volatile pid_t child = -1;

void passOn(int number) {
    kill(child, number);
}

// Whether a child that was reading ended by the fault of the file. A normal end is one, too: the
// reader was to return. Where memory runs out, the system kills.
bool isCrash(int status) {
    const int number = WIFSIGNALED(status) ? WTERMSIG(status) : SIGABRT;
    return number == SIGKILL ||
           std::find(kCrashes.begin(), kCrashes.end(), number) != kCrashes.end();
}

} // namespace

int runInChild(const std::function<int()>& work) {
    void* shared =
        mmap(nullptr, kPathSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    child = shared == MAP_FAILED ? -1 : fork();
    if (child < 0) {
        fail("no process can be started");
        return EXIT_FAILURE;
    }
    pathRead = static_cast<char*>(shared);
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        for (const int number : kCrashes) {
            std::signal(number, SIG_DFL); // no report of a library but the parent's line
        }
        std::exit(work());
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(number, passOn);
    }
    int status = 0;
    while (waitpid(child, &status, 0) != child) {
    }
    if (*pathRead != '\0' && isCrash(status)) {
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        std::cerr << (isatty(STDERR_FILENO) != 0 ? "\r\033[K" : ""); // wipes off a bar
        fail("reading ", pathRead,
             killed ? kOutOfMemory : ": the reader fails, the file is damaged");
        return kExitBadInput;
    }
    if (WIFSIGNALED(status)) {
        std::signal(WTERMSIG(status), SIG_DFL);
        std::raise(WTERMSIG(status));
    }
    return WEXITSTATUS(status);
}

void whileReading(const std::string& path, const std::function<void()>& work) {
    struct Mark {
        explicit Mark(const std::string& path) { setPathRead(path); }
        ~Mark() { setPathRead(""); }
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

} // namespace program
