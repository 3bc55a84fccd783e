#include "foundation/MessageTokens.h"

#include <iostream>
#include <sstream>
#include <string>

namespace qel {
namespace {

constexpr std::size_t kReplacedCharacters = 2; // also of tokens with more digits, on purpose

template <typename Value>
std::string streamed(Value value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

// Replaces the token until none is left, from the start each time, so that a token which a
// replacement completes is replaced too.
//
// Some values would be replaced for ever. One that is followed by its own token, in itself or with
// the digits that stay in the text, goes once into each token that the text had; one that goes on
// completing tokens, only so many times.
bool replaceToken(std::string& text, const std::string& token, const std::string& value) {
    constexpr int kMostRestarts = 1000;
    const std::string left = value + token.substr(kReplacedCharacters);
    int restarts = left.find(token) == std::string::npos ? kMostRestarts : 0;
    bool found = false;
    for (std::size_t at = text.find(token); at != std::string::npos;) {
        found = true;
        text.replace(at, kReplacedCharacters, value);
        at = text.find(token, restarts-- > 0 ? 0 : at + value.size());
    }
    return found;
}

// In one piece and as it is: the stream may have been left with any format.
void warnOfUnusedToken(const std::string& token, const std::string& value) {
    const std::string line =
        "Warning: token " + token + " was not used in the message: \"" + value + "\"";
    std::cerr.write(line.data(), static_cast<std::streamsize>(line.size()));
}

template <typename Value>
void fillNextToken(SystemMsg& message, Value value) {
    ++message.tokenCount;
    const std::string replacement = streamed(value);
    const std::string token = "%" + std::to_string(message.tokenCount);
    if (!replaceToken(message.text, token, replacement)) {
        warnOfUnusedToken(token, replacement);
    }
}

template <typename Value>
void fillNextToken(UserMsg& message, Value value) {
    fillNextToken(message.shown, value);
    fillNextToken(message.logged, value);
}

template <typename Message, typename Value>
Message& filled(Message& message, Value value) {
    fillNextToken(message, value);
    return message;
}

} // namespace

SystemMsg& operator%(SystemMsg& message, int value) {
    return filled(message, value);
}
SystemMsg& operator%(SystemMsg& message, const char* value) {
    return filled(message, value);
}
SystemMsg& operator%(SystemMsg& message, std::size_t value) {
    return filled(message, value);
}
SystemMsg& operator%(SystemMsg& message, double value) {
    return filled(message, value);
}
SystemMsg& operator%(SystemMsg& message, float value) {
    return filled(message, value);
}

UserMsg& operator%(UserMsg& message, int value) {
    return filled(message, value);
}
UserMsg& operator%(UserMsg& message, const char* value) {
    return filled(message, value);
}
UserMsg& operator%(UserMsg& message, std::size_t value) {
    return filled(message, value);
}
UserMsg& operator%(UserMsg& message, double value) {
    return filled(message, value);
}
UserMsg& operator%(UserMsg& message, float value) {
    return filled(message, value);
}

} // namespace qel
