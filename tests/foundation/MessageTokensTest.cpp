#include "foundation/MessageTokens.h"

#include <cstddef>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "support/StandardStreams.h"

namespace {

using qel::SystemMsg;
using qel::UserMsg;
using qel_test::CapturedStandardError;

std::string filled(SystemMsg& message) {
    return message;
}

TEST(MessageTokens, FillsTokensInOrder) {
    SystemMsg message("First id=%1, Second id=%2");
    EXPECT_EQ(filled(message % 3 % 7), "First id=3, Second id=7");
    EXPECT_EQ(message.tokenCount, 2);
}

TEST(MessageTokens, ReturnsItsLeftOperand) {
    SystemMsg system("%1");
    EXPECT_EQ(&(system % 1), &system);
    UserMsg user("%1", nullptr);
    EXPECT_EQ(&(user % 1), &user);
}

TEST(MessageTokens, FillsEveryOccurrenceOfAToken) {
    SystemMsg message("%1 and %1 again");
    EXPECT_EQ(filled(message % 5), "5 and 5 again");
}

TEST(MessageTokens, FillsTheTokensOfAnyOrder) {
    SystemMsg message("%2 before %1");
    EXPECT_EQ(filled(message % "a" % "b"), "b before a");
}

TEST(MessageTokens, StreamsValuesWithDefaultFormatting) {
    const auto text = [](auto value) {
        SystemMsg message("%1");
        return filled(message % value);
    };
    EXPECT_EQ(text(-12), "-12");
    EXPECT_EQ(text("0..3"), "0..3");
    EXPECT_EQ(text(std::size_t{12}), "12");
    EXPECT_EQ(text(~std::size_t{0}), "18446744073709551615");
    EXPECT_EQ(text(3.14159265), "3.14159");
    EXPECT_EQ(text(0.1), "0.1");
    EXPECT_EQ(text(1234567.0), "1.23457e+06");
    EXPECT_EQ(text(0.1f), "0.1");
    EXPECT_EQ(text(1234567.0f), "1.23457e+06");
}

TEST(MessageTokens, AnUnusedTokenWarnsWithoutALineEndAndLeavesTheText) {
    SystemMsg message("only %1");
    CapturedStandardError standardError;
    EXPECT_EQ(filled(message % 1 % 0.5), "only 1");
    EXPECT_EQ(standardError.text(), "Warning: token %2 was not used in the message: \"0.5\"");
    EXPECT_EQ(message.tokenCount, 2);
}

TEST(MessageTokens, AUsedTokenDoesNotWarn) {
    SystemMsg message("%1 %2");
    CapturedStandardError standardError;
    message % 1 % 2;
    EXPECT_EQ(standardError.text(), "");
}

// Two characters are replaced whatever the token: the second digit stays.
TEST(MessageTokens, ATokenOfTwoDigitsKeepsItsSecondDigit) {
    SystemMsg first("%10");
    EXPECT_EQ(filled(first % "X"), "X0");

    SystemMsg tenth("%10");
    tenth.tokenCount = 9;
    EXPECT_EQ(filled(tenth % "X"), "X0");
}

TEST(MessageTokens, ATokenCompletedByAReplacementIsFilledToo) {
    SystemMsg message("%%11");
    EXPECT_EQ(filled(message % ""), "");
    SystemMsg inserted("a %1 b");
    EXPECT_EQ(filled(inserted % "%2" % "x"), "a x b");
}

// Replaced until none is left, such a value would be replaced for ever.
TEST(MessageTokens, AValueThatHoldsItsOwnTokenIsInsertedOnce) {
    SystemMsg message("<%1> <%1>");
    EXPECT_EQ(filled(message % "%1!"), "<%1!> <%1!>");
}

// The digit that stays behind completes the token anew.
TEST(MessageTokens, AValueThatTheLeftDigitsMakeItsOwnTokenIsInsertedOnce) {
    SystemMsg message("%10");
    message.tokenCount = 9;
    EXPECT_EQ(filled(message % "%1"), "%10");
    SystemMsg growing("%10");
    growing.tokenCount = 9;
    EXPECT_EQ(filled(growing % "x%1"), "x%10");
}

// Each replacement leaves more that the next one completes.
TEST(MessageTokens, AValueThatGoesOnCompletingTokensEnds) {
    SystemMsg message("%%11");
    EXPECT_GT(filled(message % "11%%").size(), 1000u);
}

TEST(MessageTokens, TheWarningDoesNotDependOnTheFormatOfTheStream) {
    CapturedStandardError captured;
    const std::ios_base::fmtflags flags =
        std::cerr.setf(std::ios_base::hex, std::ios_base::basefield);
    std::cerr.width(12);
    SystemMsg message("text");
    message.tokenCount = 9;
    message % 7;
    std::cerr.flags(flags);
    std::cerr.width(0);
    EXPECT_EQ(captured.text(), "Warning: token %10 was not used in the message: \"7\"");
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
    CapturedStandardError standardError;
    const std::string shown = message % "a";
    EXPECT_EQ(shown, "a %2");
    EXPECT_EQ(message.logged.text, "a");
    EXPECT_EQ(standardError.text(), "");
}

TEST(MessageTokens, UserMessagesTakeEveryType) {
    UserMsg message("%1 %2 %3 %4 %5", nullptr);
    const std::string shown = message % 1 % "two" % std::size_t{3} % 4.5 % 5.5f;
    EXPECT_EQ(shown, "1 two 3 4.5 5.5");
}

} // namespace
