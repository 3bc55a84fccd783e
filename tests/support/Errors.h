#ifndef QEL_TESTS_SUPPORT_ERRORS_H
#define QEL_TESTS_SUPPORT_ERRORS_H

// Matchers for the library's errors: all four values, and the exact class thrown.
//
//     EXPECT_THAT([&] { t.getRef(3); },
//                 throwsInvalid("Triplet", "getRef", "Index (3) out of range 0..2"));

#include <functional>
#include <string>
#include <typeinfo>

#include <gmock/gmock.h>

#include <qel/QELException.h>

namespace qel_test {

inline std::string describe(const qel::Error& error) {
    return std::string(typeid(error).name()) + " {" + error.getClassName() + ", " +
           error.getMethodName() + ", \"" + error.getMessage() + "\", kind " +
           std::to_string(error.getType()) + "}";
}

// Calls the action and compares what it throws.
template <typename Exception>
class Throws {
public:
    using is_gtest_matcher = void;

    Throws(std::string className, std::string methodName, std::string message, int kind)
        : className_(std::move(className)),
          methodName_(std::move(methodName)),
          message_(std::move(message)),
          kind_(kind) {}

    template <typename Action>
    bool MatchAndExplain(const Action& action, std::ostream* listener) const {
        try {
            action();
        } catch (const qel::Error& error) {
            if (listener != nullptr) {
                *listener << "which throws " << describe(error);
            }
            return typeid(error) == typeid(Exception) && error.getClassName() == className_ &&
                   error.getMethodName() == methodName_ && error.getMessage() == message_ &&
                   error.what() == message_ && error.getType() == kind_;
        }
        if (listener != nullptr) {
            *listener << "which throws nothing";
        }
        return false;
    }

    void DescribeTo(std::ostream* os) const {
        *os << "throws "
            << describe(Exception(className_, methodName_, message_,
                                  static_cast<qel::errorType>(kind_)));
    }
    void DescribeNegationTo(std::ostream* os) const {
        *os << "does not match: ";
        DescribeTo(os);
    }

private:
    std::string className_;
    std::string methodName_;
    std::string message_;
    int kind_;
};

inline Throws<qel::data::invalid> throwsInvalid(const std::string& className,
                                                const std::string& methodName,
                                                const std::string& message, int kind = 4) {
    return {className, methodName, message, kind};
}

inline Throws<qel::internal::error> throwsInternal(const std::string& className,
                                                   const std::string& methodName,
                                                   const std::string& message, int kind = 4) {
    return {className, methodName, message, kind};
}

} // namespace qel_test

#endif
