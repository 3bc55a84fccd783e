#include "foundation/MessageTokens.h"

#include <cstddef>
#include <iostream>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "support/StandardStreams.h"

namespace {

using qel::SystemMsg;
using qel::UserMsg;
using qel_test::standardErrorOf;

// The template with its tokens filled by the values, in order, the first of them as token number
// `first`.
template <typename... Values>
std::string filledFrom(int first, const std::string& text, Values... values) {
    SystemMsg message(text);
    message.tokenCount = first - 1;
    (message % ... % values);
    EXPECT_EQ(message.tokenCount, first - 1 + static_cast<int>(sizeof...(values)));
    return message;
}

template <typename... Values>
std::string filled(const std::string& text, Values... values) {
    return filledFrom(1, text, values...);
}

TEST(MessageTokens, FillsTokensInOrder) {
    EXPECT_EQ(filled("First id=%1, Second id=%2", 3, 7), "First id=3, Second id=7");
    EXPECT_EQ(filled("%1%2%3", "a", "b", "c"), "abc");
}

TEST(MessageTokens, ReturnsItsLeftOperand) {
    SystemMsg system("%1");
    EXPECT_EQ(&(system % 1), &system);
    UserMsg user("%1", nullptr);
    EXPECT_EQ(&(user % 1), &user);
}

TEST(MessageTokens, FillsEveryOccurrenceOfAToken) {
    EXPECT_EQ(filled("%1 and %1 again", 5), "5 and 5 again");
    EXPECT_EQ(filled("%1%1%1", "ab"), "ababab");
}

TEST(MessageTokens, FillsTheTokensOfAnyOrder) {
    EXPECT_EQ(filled("%2 before %1", "a", "b"), "b before a");
}

TEST(MessageTokens, StreamsValuesWithDefaultFormatting) {
    const auto text = [](auto value) { return filled("%1", value); };
    EXPECT_EQ(text(-12), "-12");
    EXPECT_EQ(text(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(text("0..3"), "0..3");
    EXPECT_EQ(text(""), "");
    EXPECT_EQ(text(std::size_t{12}), "12");
    EXPECT_EQ(text(~std::size_t{0}), "18446744073709551615");
    EXPECT_EQ(text(3.14159265), "3.14159");
    EXPECT_EQ(text(0.1), "0.1");
    EXPECT_EQ(text(-0.0), "-0");
    EXPECT_EQ(text(1234567.0), "1.23457e+06");
    EXPECT_EQ(text(std::numeric_limits<double>::max()), "1.79769e+308");
    EXPECT_EQ(text(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(text(0.1f), "0.1");
    EXPECT_EQ(text(1234567.0f), "1.23457e+06");
    EXPECT_EQ(text(std::numeric_limits<float>::max()), "3.40282e+38");
}

template <typename Message, typename Value, typename = void>
struct TakesToken : std::false_type {};
template <typename Message, typename Value>
struct TakesToken<Message, Value,
                  std::void_t<decltype(std::declval<Message&>() % std::declval<Value>())>>
    : std::true_type {};

TEST(MessageTokens, AStringIsNoValue) {
    EXPECT_TRUE((TakesToken<SystemMsg, const char*>::value));
    EXPECT_TRUE((TakesToken<UserMsg, const char*>::value));
    EXPECT_FALSE((TakesToken<SystemMsg, std::string>::value));
    EXPECT_FALSE((TakesToken<UserMsg, std::string>::value));
}

TEST(MessageTokens, AnUnusedTokenWarnsWithoutALineEndAndLeavesTheText) {
    EXPECT_EQ(standardErrorOf([] { EXPECT_EQ(filled("only %1", 1, 0.5), "only 1"); }),
              "Warning: token %2 was not used in the message: \"0.5\"");
    EXPECT_EQ(standardErrorOf([] { EXPECT_EQ(filled("", "a", std::size_t{7}), ""); }),
              "Warning: token %1 was not used in the message: \"a\""
              "Warning: token %2 was not used in the message: \"7\"");
}

TEST(MessageTokens, AUsedTokenDoesNotWarn) {
    EXPECT_EQ(standardErrorOf([] { filled("%1 %2", 1, 2); }), "");
}

// Two characters are replaced whatever the token: the second digit stays.
TEST(MessageTokens, ATokenOfTwoDigitsKeepsItsSecondDigit) {
    EXPECT_EQ(filled("%10", "X"), "X0");
    EXPECT_EQ(filledFrom(10, "%10", "X"), "X0");
    EXPECT_EQ(filledFrom(10, "%10 and %10", "X"), "X0 and X0");
    EXPECT_EQ(filledFrom(123, "%123", "X"), "X23");
}

TEST(MessageTokens, ATokenCompletedByAReplacementIsFilledToo) {
    EXPECT_EQ(filled("%%11", ""), "");
    EXPECT_EQ(filled("a %1 b", "%2", "x"), "a x b");
    EXPECT_EQ(filledFrom(12, "%1%12", ""), "2");
}

// Replaced until none is left, such a value would be replaced for ever.
TEST(MessageTokens, AValueThatHoldsItsOwnTokenIsInsertedOnce) {
    EXPECT_EQ(filled("<%1> <%1>", "%1!"), "<%1!> <%1!>");
}

// The digit that stays behind completes the token anew.
TEST(MessageTokens, AValueThatTheLeftDigitsMakeItsOwnTokenIsInsertedOnce) {
    EXPECT_EQ(filledFrom(10, "%10", "%1"), "%10");
    EXPECT_EQ(filledFrom(10, "%10", "x%1"), "x%10");
}

// Each replacement leaves more that the next one completes.
TEST(MessageTokens, AValueThatGoesOnCompletingTokensEnds) {
    EXPECT_GT(filled("%%11", "11%%").size(), 1000u);
}

TEST(MessageTokens, TheWarningDoesNotDependOnTheFormatOfTheStream) {
    const std::ios_base::fmtflags flags =
        std::cerr.setf(std::ios_base::hex, std::ios_base::basefield);
    std::cerr.width(12);
    const std::string warning = standardErrorOf([] { filledFrom(10, "text", 7); });
    std::cerr.flags(flags);
    std::cerr.width(0);
    EXPECT_EQ(warning, "Warning: token %10 was not used in the message: \"7\"");
}

TEST(MessageTokens, UserMessagesFillBothTexts) {
    UserMsg message("Axis vector= %1,%2,%3", nullptr);
    const std::string shown = message % 1.5f % 0.0f % -2.0f;
    EXPECT_EQ(shown, "Axis vector= 1.5,0,-2");
    EXPECT_EQ(message.shown.text, shown);
    EXPECT_EQ(message.logged.text, shown);
    EXPECT_EQ(message.shown.tokenCount, 3);
    EXPECT_EQ(message.logged.tokenCount, 3);
}

TEST(MessageTokens, UserMessagesKeepACounterForEachText) {
    UserMsg message("%1 %2", nullptr);
    message.logged.text = "%2";
    message.logged.tokenCount = 1;
    EXPECT_EQ(standardErrorOf([&] { message % "a"; }), "");
    EXPECT_EQ(message.shown.text, "a %2");
    EXPECT_EQ(message.logged.text, "a");
}

// Each text that has no such token is named, with the number that its own counter has reached.
TEST(MessageTokens, UserMessagesWarnForEachText) {
    UserMsg message("text", nullptr);
    message.logged.tokenCount = 4;
    EXPECT_EQ(standardErrorOf([&] { message % 8; }),
              "Warning: token %1 was not used in the message: \"8\""
              "Warning: token %5 was not used in the message: \"8\"");
    EXPECT_EQ(message.shown.text, "text");
    EXPECT_EQ(message.logged.text, "text");
}

TEST(MessageTokens, UserMessagesTakeEveryType) {
    UserMsg message("%1 %2 %3 %4 %5", nullptr);
    const std::string shown = message % 1 % "two" % std::size_t{3} % 4.5 % 5.5f;
    EXPECT_EQ(shown, "1 two 3 4.5 5.5");
}

} // namespace
