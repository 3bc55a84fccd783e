#pragma once
// Progress bars on standard error.

#include <string>

namespace CLI {
class App;
}

namespace program {

/// A bar that is wiped at the end. Unless the user chooses otherwise it is shown on a terminal
/// alone, and only once the work has taken half a second.
class ProgressBar {
public:
    explicit ProgressBar(std::string label);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(double share);

private:
    std::string label_;
    double start_;
    int shown_ = -1;
};

/// Wipes the bar off until its work has gone on, for what is written to standard output; messages
/// do so by themselves.
void wipeBar();

/// Gives a command the option by which the user chooses when bars are shown.
void addProgressOption(CLI::App* command);

} // namespace program
