#ifndef QEL_PROGRAM_CONSOLE_H
#define QEL_PROGRAM_CONSOLE_H

/// @file
/// What the program says to its user, and how the user stops it.

#include <functional>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}
class vtkAlgorithm;

namespace program {

constexpr int kExitBadInput = 2;
constexpr int kExitInterrupted = 130; // 128 + SIGINT, as shells have it

/// Something that the user can mend; its text is the one line that is shown.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Thrown where work stops because the user asked for it.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// Lines on standard error, after the program's name.
void note(const std::string& text);
void warn(const std::string& text);
void fail(const std::string& text);

/// The line that fail() would write, for a CrashGuard to write in its place; it wipes off a bar.
std::string lastWords(const std::string& text);

/// From now on Ctrl-C, a request to end and a terminal that is closed stop the work at its next
/// step; a second one ends the program at once. With nohup, a closed terminal has no effect.
void catchInterrupts();
void throwIfInterrupted();

/// A bar on standard error that is wiped at the end. Unless the user chooses otherwise it is shown
/// on a terminal alone, and only once the work has taken half a second.
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

/// Updates a VTK algorithm under a progress bar; Ctrl-C aborts it.
///
/// @param what  the work in words, such as "reading a.vtu"
/// @throws UserError    with what and VTK's first message, if VTK reports an error
/// @throws Interrupted  if the user stopped it
void run(vtkAlgorithm* algorithm, const std::string& what);

/// Does some other work with the algorithm under the same conditions.
void watched(vtkAlgorithm* algorithm, const std::string& what, const std::function<void()>& work);

} // namespace program

#endif
