// The exception classes: who catches what, what an error carries, and that copies never throw.

#include <qel/QELException.h>

#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <gtest/gtest.h>

namespace {

using qel::argumentError;
using qel::reportedError;

template <typename Base, typename Derived>
constexpr bool kCatches = std::is_base_of<Base, Derived>::value;

template <typename T>
class QELException : public ::testing::Test {};
using Thrown = ::testing::Types<qel::data::invalid, qel::data::error, qel::internal::error>;

struct NameOfThrown {
    template <typename T>
    static std::string GetName(int i) {
        const char* const names[] = {"DataInvalid", "DataError", "InternalError"};
        return names[i];
    }
};
TYPED_TEST_SUITE(QELException, Thrown, NameOfThrown);

TYPED_TEST(QELException, CarriesClassMethodMessageAndKind) {
    const TypeParam error("ParametricCurve", "getCurve", "Curve is empty", argumentError);
    EXPECT_EQ(error.getClassName(), "ParametricCurve");
    EXPECT_EQ(error.getMethodName(), "getCurve");
    EXPECT_EQ(error.getMessage(), "Curve is empty");
    EXPECT_EQ(error.getType(), argumentError);
    EXPECT_STREQ(error.what(), "Curve is empty");
}

TYPED_TEST(QELException, CarriesEmptyTexts) {
    const TypeParam error("", "", "", reportedError);
    EXPECT_EQ(error.getClassName(), "");
    EXPECT_EQ(error.getMethodName(), "");
    EXPECT_EQ(error.getMessage(), "");
    EXPECT_EQ(error.getType(), reportedError);
    EXPECT_STREQ(error.what(), "");
}

// A handler must be able to copy the error while memory is short.
TYPED_TEST(QELException, CopiesWithoutThrowing) {
    EXPECT_TRUE(std::is_nothrow_copy_constructible<TypeParam>::value);
    EXPECT_TRUE(std::is_nothrow_copy_assignable<TypeParam>::value);
    EXPECT_TRUE(std::is_nothrow_destructible<TypeParam>::value);
    EXPECT_TRUE(std::has_virtual_destructor<TypeParam>::value);
}

TYPED_TEST(QELException, CopyOutlivesTheOriginal) {
    const char* text = nullptr;
    TypeParam assigned("", "", "", reportedError);
    {
        const TypeParam original("A", "b", std::string(100, 'm'), argumentError);
        const TypeParam copy(original);
        EXPECT_EQ(copy.getMessage(), original.getMessage());
        assigned = copy;
        text = assigned.what();
    }
    EXPECT_EQ(text, std::string(100, 'm'));
    EXPECT_EQ(assigned.getClassName(), "A");
    EXPECT_EQ(assigned.getMethodName(), "b");
    EXPECT_EQ(assigned.getType(), argumentError);
}

TYPED_TEST(QELException, IsCaughtAsError) {
    try {
        throw TypeParam("A", "b", "c", argumentError);
    } catch (const qel::Error& error) {
        EXPECT_EQ(error.getMessage(), "c");
        EXPECT_EQ(typeid(error), typeid(TypeParam));
    }
}

TYPED_TEST(QELException, IsNoStandardException) {
    EXPECT_FALSE((kCatches<std::exception, TypeParam>));
    bool asError = false;
    try {
        throw TypeParam("A", "b", "c", argumentError);
    } catch (const std::exception&) {
        FAIL() << "caught as a standard exception";
    } catch (const qel::Error&) {
        asError = true;
    }
    EXPECT_TRUE(asError);
}

TEST(QELExceptionHierarchy, InvalidDataIsADataError) {
    EXPECT_TRUE((kCatches<qel::data::error, qel::data::invalid>));
    EXPECT_THROW(throw qel::data::invalid("A", "b", "c", argumentError), qel::data::error);
}

TEST(QELExceptionHierarchy, InternalErrorIsNoDataError) {
    EXPECT_FALSE((kCatches<qel::data::error, qel::internal::error>));
    bool asInternal = false;
    try {
        throw qel::internal::error("A", "b", "c", argumentError);
    } catch (const qel::data::error&) {
        FAIL() << "caught as a data error";
    } catch (const qel::internal::error&) {
        asInternal = true;
    }
    EXPECT_TRUE(asInternal);
}

TEST(QELExceptionHierarchy, RootIsCopiedWithoutThrowing) {
    EXPECT_TRUE(std::is_nothrow_copy_constructible<qel::Error>::value);
    const qel::Error original("A", "b", "c", reportedError);
    const qel::Error copy(original);
    EXPECT_EQ(copy.getClassName(), "A");
    EXPECT_EQ(copy.getType(), reportedError);
}

TEST(QELExceptionKinds, HaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(argumentError), 4);
    EXPECT_EQ(static_cast<int>(reportedError), 8);
    EXPECT_EQ(sizeof(qel::errorType), sizeof(int));
}

} // namespace
