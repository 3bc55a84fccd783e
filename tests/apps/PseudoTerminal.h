#ifndef QEL_TESTS_APPS_PSEUDOTERMINAL_H
#define QEL_TESTS_APPS_PSEUDOTERMINAL_H

// A terminal without a screen, to see what the program shows on one.

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace qel_test {

// What is written to device() is kept, some kilobytes of it, until it is read.
class PseudoTerminal {
public:
    PseudoTerminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
            throw std::runtime_error("no pseudo-terminal can be opened");
        }
        device_ = ptsname(screen_);
        // Held open, so that the screen outlives the program.
        keyboard_ = open(device_.c_str(), O_RDWR | O_NOCTTY);
        fcntl(screen_, F_SETFL, O_NONBLOCK);
    }
    ~PseudoTerminal() {
        close(keyboard_);
        close(screen_);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const std::string& device() const { return device_; }

    // All that has come since the last call.
    std::string shown() const {
        std::string text;
        char buffer[4096];
        for (ssize_t count = 0; (count = read(screen_, buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }

private:
    int screen_;
    int keyboard_ = -1;
    std::string device_;
};

} // namespace qel_test

#endif
