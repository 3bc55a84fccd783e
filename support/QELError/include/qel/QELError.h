#ifndef QEL_QELERROR_H
#define QEL_QELERROR_H

/// @file
/// Message texts with numbered tokens, and the process-wide reporter of errors that are not
/// thrown.

#include <cstddef>
#include <string>

#include <qel/QELException.h>
#include <qel/QELSupportExport.h>

namespace qel {

/// A message for developers, with tokens "%1", "%2", ... that are filled in order.
///
/// Both members are public because the library's token step edits them.
class QEL_SUPPORT_API SystemMsg {
public:
    explicit SystemMsg(const std::string& text);

    /// The current text.
    operator std::string() const;

    int tokenCount = 0; ///< tokens filled so far
    std::string text;   ///< the template, filled so far
};

/// A message for the end user: the text shown and the text logged, which start alike. Every token
/// is filled in both.
class QEL_SUPPORT_API UserMsg {
public:
    /// @param text  the template of both texts
    /// @param flag  kept for callers of the interface; not used, null in this library
    UserMsg(const std::string& text, bool* flag);

    /// The text shown.
    operator std::string() const;

    SystemMsg shown;
    SystemMsg logged;
};

/// Takes errors that are reported instead of thrown. One for the whole process.
///
/// The built-in reporter counts them and writes one line for each to standard error; a host may
/// install its own. Not synchronised: install it before other threads call the library.
class QEL_SUPPORT_API ErrorReporter {
public:
    virtual ~ErrorReporter();

    /// Takes one error. The reference is valid during the call only.
    virtual void report(const Error& error);

    /// Number of errors that the built-in report() has taken.
    std::size_t getReportCount() const;

    /// The reporter in force; never null.
    static ErrorReporter* instance();

    /// Installs a reporter, which is not owned; null restores the built-in one.
    /// @return the reporter that was in force before
    static ErrorReporter* setInstance(ErrorReporter* reporter);

private:
    std::size_t reportCount_ = 0;
};

} // namespace qel

#endif
