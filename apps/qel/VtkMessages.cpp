// VTK's errors and warnings, kept instead of shown.
#include "VtkMessages.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include <vtkLogger.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>
#include <vtksys/RegularExpression.hxx>

namespace program {
namespace {

class KeepingWindow : public vtkOutputWindow {
public:
    static KeepingWindow* New();
    vtkTypeMacro(KeepingWindow, vtkOutputWindow)

    void DisplayErrorText(const char* text) override { VtkMessages::instance().addError(text); }
    void DisplayWarningText(const char* text) override { VtkMessages::instance().addWarning(text); }
    void DisplayGenericWarningText(const char* text) override {
        VtkMessages::instance().addWarning(text);
    }
    void DisplayText(const char*) override {}
    void DisplayDebugText(const char*) override {}
};

vtkStandardNewMacro(KeepingWindow);

std::string without(std::string text, const char* pattern) {
    vtksys::RegularExpression found(pattern);
    while (found.find(text)) {
        text.erase(found.start(), found.end() - found.start());
    }
    return text;
}

// Bytes of a damaged file may be quoted in a message.
bool isNoText(char c) {
    const auto u = static_cast<unsigned char>(c);
    return (u < 0x20 && std::isspace(u) == 0) || u == 0x7F || u >= 0xF5; // never in UTF-8
}

std::string wordsInOneLine(std::string text) {
    std::replace_if(text.begin(), text.end(), isNoText, '?');
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        line += line.empty() ? word : " " + word;
    }
    return line;
}

// "ERROR: In file.cxx, line 12\nvtkReader (0x55d0): Cannot read.\n\n" becomes "Cannot read."
std::string oneLine(const std::string& text) {
    const std::string said =
        without(text, "(ERROR|Warning|Generic Warning): In [^\n]*, line [0-9]+[ \t\r\n]*");
    return wordsInOneLine(without(said, "[A-Za-z0-9_]+ \\(0x[0-9a-f]+\\): "));
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
    // A whole dump of VTK's state, which comes after the message that says why, if there is one.
    const bool dump = vtksys::RegularExpression("returned failure for request").find(text);
    errors_.push_back(dump ? "VTK fails without a reason" : oneLine(text));
}

void VtkMessages::addWarning(const char* text) {
    warnings_.push_back(oneLine(text));
}

} // namespace program
