#include <qel/QELException.h>

#include <utility>

namespace qel {

struct Error::Texts {
    std::string className;
    std::string methodName;
    std::string message;
};

Error::Error(const std::string& className, std::string methodName, std::string message,
             errorType type)
    : texts_(std::make_shared<const Texts>(
          Texts{className, std::move(methodName), std::move(message)})),
      type_(type) {}

Error::Error(const Error&) noexcept = default;
Error& Error::operator=(const Error&) noexcept = default;
Error::~Error() = default;

const std::string& Error::getClassName() const noexcept {
    return texts_->className;
}
const std::string& Error::getMethodName() const noexcept {
    return texts_->methodName;
}
const std::string& Error::getMessage() const noexcept {
    return texts_->message;
}
errorType Error::getType() const noexcept {
    return type_;
}
const char* Error::what() const noexcept {
    return texts_->message.c_str();
}

namespace data {

error::error(const error&) noexcept = default;
error& error::operator=(const error&) noexcept = default;
error::~error() = default;

invalid::invalid(const std::string& className, std::string methodName, std::string message,
                 errorType type)
    : error(className, std::move(methodName), std::move(message), type) {}
invalid::invalid(const invalid&) noexcept = default;
invalid& invalid::operator=(const invalid&) noexcept = default;
invalid::~invalid() = default;

} // namespace data

namespace internal {

error::error(const std::string& className, std::string methodName, std::string message,
             errorType type)
    : Error(className, std::move(methodName), std::move(message), type) {}
error::error(const error&) noexcept = default;
error& error::operator=(const error&) noexcept = default;
error::~error() = default;

} // namespace internal
} // namespace qel
