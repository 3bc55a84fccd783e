// VTK's errors and warnings, kept instead of shown.
#include "VtkMessages.h"

#include <regex>

#include <vtkLogger.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>

namespace program {
namespace {

class KeepingWindow : public vtkOutputWindow {
public:
    static KeepingWindow* New();
    vtkTypeMacro(KeepingWindow, vtkOutputWindow)

        void DisplayErrorText(const char* text) override {
        VtkMessages::instance().addError(text);
    }
    void DisplayWarningText(const char* text) override { VtkMessages::instance().addWarning(text); }
    void DisplayGenericWarningText(const char* text) override {
        VtkMessages::instance().addWarning(text);
    }
    void DisplayText(const char*) override {}
    void DisplayDebugText(const char*) override {}
};

vtkStandardNewMacro(KeepingWindow);

// "ERROR: In file.cxx, line 12\nvtkReader (0x55d0): Cannot read.\n\n" becomes "Cannot read."
std::string oneLine(const std::string& text) {
    static const std::regex origin(R"((ERROR|Warning|Generic Warning): In [^\n]*, line \d+\s*)");
    static const std::regex object(R"(\w+ \(0x[0-9a-f]+\): )");
    static const std::regex space(R"(\s+)");
    std::string line = std::regex_replace(text, origin, "");
    line = std::regex_replace(line, object, "");
    line = std::regex_replace(line, space, " ");
    line.erase(0, line.find_first_not_of(' '));
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

VtkMessages::VtkMessages() {
    vtkLogger::SetStderrVerbosity(vtkLogger::VERBOSITY_OFF);
    vtkNew<KeepingWindow> window;
    vtkOutputWindow::SetInstance(window);
}

VtkMessages& VtkMessages::instance() {
    static VtkMessages messages;
    return messages;
}

void VtkMessages::clear() {
    errors_.clear();
    warnings_.clear();
}

void VtkMessages::addError(const char* text) {
    errors_.push_back(oneLine(text));
}

void VtkMessages::addWarning(const char* text) {
    warnings_.push_back(oneLine(text));
}

} // namespace program
