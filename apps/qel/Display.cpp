// An X display to draw on.
#include "Display.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xlib.h>

#include "Console.h"

namespace program {
namespace {

constexpr int kStartMilliseconds = 20000;

bool displayWorks() {
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || *name == '\0') {
        return false;
    }
    ::Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return false;
    }
    XCloseDisplay(display);
    return true;
}

// The child's part: becomes Xvfb, which writes the number of its display to the descriptor.
[[noreturn]] void becomeServer(int numberTo) {
    setpgid(0, 0);                    // Ctrl-C goes to the program, which then ends the server
    prctl(PR_SET_PDEATHSIG, SIGTERM); // and so does the program's death
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    const std::string number = std::to_string(numberTo);
    execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1920x1200x24",
           "-nolisten", "tcp", static_cast<char*>(nullptr));
    _exit(127);
}

// What the server writes, until the end of the line or of its patience.
std::string readNumber(int from) {
    std::string text;
    pollfd ready{from, POLLIN, 0};
    while (poll(&ready, 1, kStartMilliseconds) > 0) {
        char c = '\0';
        if (read(from, &c, 1) != 1) {
            return "";
        }
        if (c == '\n') {
            return text;
        }
        text += c;
    }
    return "";
}

} // namespace

Display::Display() {
    if (!displayWorks()) {
        startServer();
    }
}

Display::~Display() {
    if (server_ > 0) {
        kill(server_, SIGTERM);
        waitpid(server_, nullptr, 0);
        unsetenv("DISPLAY");
    }
}

void Display::startServer() {
    int channel[2];
    if (pipe(channel) != 0) {
        throw UserError("no picture can be drawn: no pipe to Xvfb");
    }
    server_ = fork();
    if (server_ == 0) {
        close(channel[0]);
        becomeServer(channel[1]);
    }
    close(channel[1]);
    const std::string number = server_ < 0 ? "" : readNumber(channel[0]);
    close(channel[0]);
    if (number.empty()) {
        if (server_ > 0) {
            kill(server_, SIGTERM);
            waitpid(server_, nullptr, 0);
            server_ = -1;
        }
        throwIfInterrupted();
        throw UserError(
            "no picture can be drawn: there is no X display, and Xvfb, which would "
            "stand in for one, is missing or does not start (install the package xvfb)");
    }
    setenv("DISPLAY", (":" + number).c_str(), 1);
}

} // namespace program
