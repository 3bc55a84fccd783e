// What the program says to its user, and how the user stops it.
#include "Console.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <map>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include <vtkAlgorithm.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkNew.h>

#include "VtkMessages.h"

namespace program {
namespace {

constexpr double kSilentSeconds = 0.5;
constexpr int kBarWidth = 40;
constexpr const char* kWipe = "\r\033[K"; // empties the line

enum class Bars { automatic, always, never };

Bars bars = Bars::automatic;
bool barStands = false;

volatile std::sig_atomic_t stopAsked = 0;

void onSignal(int number) {
    stopAsked = 1;
    std::signal(number, SIG_DFL);
}

double seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool mayShowBars() {
    static const bool terminal = isatty(STDERR_FILENO) != 0;
    return bars == Bars::always || (bars == Bars::automatic && terminal);
}

bool isBarDue(double start) {
    return mayShowBars() && (bars == Bars::always || seconds() - start >= kSilentSeconds);
}

// Shows how far an algorithm has come, and aborts it if the user asks for that.
class Watch {
public:
    Watch(vtkAlgorithm* algorithm, const std::string& what) : algorithm_(algorithm), bar_(what) {
        vtkNew<vtkCallbackCommand> command;
        command->SetClientData(&bar_);
        command->SetCallback([](vtkObject* caller, unsigned long, void* bar, void* share) {
            static_cast<ProgressBar*>(bar)->show(*static_cast<double*>(share));
            if (stopAsked != 0) {
                vtkAlgorithm::SafeDownCast(caller)->SetAbortExecute(1);
            }
        });
        observer_ = algorithm->AddObserver(vtkCommand::ProgressEvent, command);
    }
    ~Watch() { algorithm_->RemoveObserver(observer_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    vtkAlgorithm* algorithm_;
    ProgressBar bar_;
    unsigned long observer_;
};

std::string lineOf(const std::string& text) {
    return "qel: " + text + "\n";
}

void say(const std::string& text) {
    wipeBar();
    std::cerr << lineOf(text) << std::flush;
}

} // namespace

// -- Messages ----

void note(const std::string& text) {
    say(text);
}

void warn(const std::string& text) {
    say("warning: " + text);
}

void fail(const std::string& text) {
    say("error: " + text);
}

std::string lastWords(const std::string& text) {
    return (mayShowBars() ? kWipe : "") + lineOf("error: " + text);
}

// -- Stopping ----

void catchInterrupts() {
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    if (std::signal(SIGHUP, onSignal) == SIG_IGN) {
        std::signal(SIGHUP, SIG_IGN); // as nohup has it
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows beyond a limit is an error like others
}

void throwIfInterrupted() {
    if (stopAsked != 0) {
        throw Interrupted();
    }
}

// -- Progress ----

ProgressBar::ProgressBar(std::string label) : label_(std::move(label)), start_(seconds()) {}

ProgressBar::~ProgressBar() {
    wipeBar();
}

void ProgressBar::show(double share) {
    const int percent = static_cast<int>(100.0 * std::clamp(share, 0.0, 1.0));
    if (percent == shown_ || !isBarDue(start_)) {
        return;
    }
    shown_ = percent;
    barStands = true;
    const auto full = static_cast<std::size_t>(kBarWidth * percent / 100);
    std::cerr << kWipe << label_ << " [" << std::string(full, '#')
              << std::string(kBarWidth - full, '.') << "] " << percent << " %" << std::flush;
}

void wipeBar() {
    if (barStands) {
        barStands = false;
        std::cerr << kWipe << std::flush;
    }
}

void addProgressOption(CLI::App* command) {
    static const std::map<std::string, Bars> kChoices{
        {"auto", Bars::automatic}, {"always", Bars::always}, {"never", Bars::never}};
    command
        ->add_option_function<std::string>(
            "--progress", [](const std::string& choice) { bars = kChoices.at(choice); },
            "Bars of progress on standard error: auto (on a terminal, for what takes longer), "
            "always or never")
        ->check(CLI::IsMember(kChoices))
        ->type_name("WHEN")
        ->default_str("auto");
}

// -- VTK's work ----

void watched(vtkAlgorithm* algorithm, const std::string& what, const std::function<void()>& work) {
    throwIfInterrupted();
    VtkMessages& messages = VtkMessages::instance();
    messages.clear();
    {
        const Watch watch(algorithm, what);
        work();
    }
    throwIfInterrupted();
    if (!messages.errors().empty()) {
        throw UserError(what + ": " + messages.errors().front());
    }
}

void run(vtkAlgorithm* algorithm, const std::string& what) {
    watched(algorithm, what, [algorithm] { algorithm->Update(); });
}

} // namespace program
