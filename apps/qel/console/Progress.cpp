// Progress bars on standard error.
#include "console/Progress.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include <unistd.h>

#include <CLI/CLI.hpp>

namespace program {
namespace {

constexpr double kSilentSeconds = 0.5;
constexpr int kBarWidth = 40;
constexpr const char* kWipe = "\r\033[K"; // empties the line

std::string choice = "auto";
bool barStands = false;

double seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

ProgressBar::ProgressBar(std::string label) : label_(std::move(label)), start_(seconds()) {}

ProgressBar::~ProgressBar() {
    wipeBar();
}

void ProgressBar::show(double share) {
    static const bool terminal = isatty(STDERR_FILENO) != 0;
    const bool due = choice == "always" ||
                     (choice == "auto" && terminal && seconds() - start_ >= kSilentSeconds);
    const int percent = static_cast<int>(100.0 * std::clamp(share, 0.0, 1.0));
    if (percent == shown_ || !due) {
        return;
    }
    shown_ = percent;
    barStands = true;
    std::string bar(kBarWidth, '.');
    std::fill_n(bar.begin(), kBarWidth * percent / 100, '#');
    std::cerr << kWipe << label_ << " [" << bar << "] " << percent << " %" << std::flush;
}

void wipeBar() {
    if (barStands) {
        barStands = false;
        std::cerr << kWipe << std::flush;
    }
}

void addProgressOption(CLI::App* command) {
    command
        ->add_option("--progress", choice,
                     "Bars of progress on standard error: auto (on a terminal, for what takes "
                     "longer), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN")
        ->capture_default_str();
}

} // namespace program
