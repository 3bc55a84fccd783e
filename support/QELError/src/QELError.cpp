#include <qel/QELError.h>

#include <iostream>

namespace qel {
namespace {

ErrorReporter& builtInReporter() {
    static ErrorReporter reporter;
    return reporter;
}

ErrorReporter*& currentReporter() {
    static ErrorReporter* current = &builtInReporter();
    return current;
}

} // namespace

// -- Messages ----

SystemMsg::SystemMsg(const std::string& messageText) : text(messageText) {}

SystemMsg::operator std::string() const {
    return text;
}

UserMsg::UserMsg(const std::string& text, bool*) : shown(text), logged(text) {}

UserMsg::operator std::string() const {
    return shown.text;
}

// -- Reporter ----

ErrorReporter::~ErrorReporter() = default;

void ErrorReporter::report(const Error& error) {
    ++reportCount_;
    std::cerr << error.getClassName() << "::" << error.getMethodName() << ": " << error.getMessage()
              << " (kind " << static_cast<int>(error.getType()) << ")\n";
}

std::size_t ErrorReporter::getReportCount() const {
    return reportCount_;
}

ErrorReporter* ErrorReporter::instance() {
    return currentReporter();
}

ErrorReporter* ErrorReporter::setInstance(ErrorReporter* reporter) {
    ErrorReporter* const before = currentReporter();
    currentReporter() = reporter != nullptr ? reporter : &builtInReporter();
    return before;
}

} // namespace qel
