// VTK's work, with progress, and its messages as errors of this program.
#include "console/VtkRun.h"

#include <algorithm>

#include <vtkAlgorithm.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkLogger.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>
#include <vtksys/RegularExpression.hxx>

#include "console/Messages.h"
#include "console/Progress.h"

namespace program {
namespace {

// "ERROR: In file.cxx, line 12\nvtkReader (0x55d0): Cannot read.\n\n" becomes "Cannot read."
std::string oneLine(std::string text) {
    for (const char* origin : {"(ERROR|Warning|Generic Warning): In [^\n]*, line [0-9]+[ \t\r\n]*",
                               "[A-Za-z0-9_]+ \\(0x[0-9a-f]+\\): "}) {
        vtksys::RegularExpression found(origin);
        while (found.find(text)) {
            text.erase(found.start(), found.end() - found.start());
        }
    }
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        line += line.empty() ? word : " " + word;
    }
    // Bytes of a damaged file may be quoted; some are in no text, and some never in UTF-8.
    const auto isNoText = [](unsigned char c) { return c < 0x20 || c == 0x7F || c >= 0xF5; };
    std::replace_if(line.begin(), line.end(), isNoText, '?');
    return line;
}

class KeptMessages : public vtkOutputWindow {
public:
    static KeptMessages* New();
    vtkTypeMacro(KeptMessages, vtkOutputWindow)

    void DisplayErrorText(const char* text) override {
        // A dump of VTK's state, which comes after the message that says why, if there is one.
        const bool dump = vtksys::RegularExpression("returned failure for request").find(text);
        errors.push_back(dump ? "VTK fails without a reason" : oneLine(text));
    }
    void DisplayWarningText(const char* text) override { warnings.push_back(oneLine(text)); }
    void DisplayGenericWarningText(const char* text) override { DisplayWarningText(text); }
    void DisplayText(const char*) override {}
    void DisplayDebugText(const char*) override {}

    std::vector<std::string> errors;
    std::vector<std::string> warnings;
};

vtkStandardNewMacro(KeptMessages);

KeptMessages& messages() {
    static const vtkNew<KeptMessages> kept;
    return *kept;
}

void onProgress(vtkObject*, unsigned long, void* bar, void* share) {
    static_cast<ProgressBar*>(bar)->show(*static_cast<double*>(share));
}

} // namespace

void keepVtkMessages() {
    vtkLogger::SetStderrVerbosity(vtkLogger::VERBOSITY_OFF);
    vtkOutputWindow::SetInstance(&messages());
}

const std::vector<std::string>& vtkWarnings() {
    return messages().warnings;
}

void run(vtkAlgorithm* algorithm, const std::string& what, const std::function<void()>& work) {
    messages().errors.clear();
    messages().warnings.clear();
    ProgressBar bar(what);
    vtkNew<vtkCallbackCommand> observer;
    observer->SetClientData(&bar);
    observer->SetCallback(onProgress);
    algorithm->AddObserver(vtkCommand::ProgressEvent, observer);
    work != nullptr ? work() : algorithm->Update();
    algorithm->RemoveObserver(observer);
    if (!messages().errors.empty()) {
        refuse(what, ": ", messages().errors.front());
    }
}

} // namespace program
