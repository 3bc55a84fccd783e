#ifndef QEL_QELEXCEPTION_H
#define QEL_QELEXCEPTION_H

/// @file
/// The exceptions that the library throws.

#include <memory>
#include <string>

#include <qel/QELSupportExport.h>

namespace qel {

/// Kind of an error.
enum errorType : int {
    argumentError = 4, ///< a failed argument check, thrown
    reportedError = 8, ///< a condition that is reported through ErrorReporter, not thrown
};

/// Root of the errors of the library: where it was raised, the finished message, and its kind.
///
/// Deliberately not a std::exception. Copies share the texts and never throw.
class QEL_SUPPORT_API Error {
public:
    Error(const std::string& className, std::string methodName, std::string message,
          errorType type);
    Error(const Error&) noexcept;
    Error& operator=(const Error&) noexcept;
    virtual ~Error();

    const std::string& getClassName() const noexcept;
    const std::string& getMethodName() const noexcept;
    const std::string& getMessage() const noexcept;
    errorType getType() const noexcept;

    /// The message, valid as long as this error or a copy of it lives.
    const char* what() const noexcept;

private:
    struct Texts;
    std::shared_ptr<const Texts> texts_;
    errorType type_;
};

namespace data {

/// Something is wrong with data that was handed in.
class QEL_SUPPORT_API error : public Error {
public:
    using Error::Error;
    error(const error&) noexcept;
    error& operator=(const error&) noexcept;
    ~error() override;
};

/// An argument that an operation refuses.
class QEL_SUPPORT_API invalid : public error {
public:
    invalid(const std::string& className, std::string methodName, std::string message,
            errorType type);
    invalid(const invalid&) noexcept;
    invalid& operator=(const invalid&) noexcept;
    ~invalid() override;
};

} // namespace data

namespace internal {

/// A request that the object's state does not allow. Not a data::error.
class QEL_SUPPORT_API error : public Error {
public:
    error(const std::string& className, std::string methodName, std::string message,
          errorType type);
    error(const error&) noexcept;
    error& operator=(const error&) noexcept;
    ~error() override;
};

} // namespace internal
} // namespace qel

#endif
