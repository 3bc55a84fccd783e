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
    constexpr int kMaxRestarts = 1000;
    const std::string left = value + token.substr(kReplacedCharacters);
    int restarts = left.find(token) == std::string::npos ? kMaxRestarts : 0;
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

} // namespace

template <typename Value, typename>
SystemMsg& operator%(SystemMsg& message, Value value) {
    ++message.tokenCount;
    const std::string replacement = streamed(value);
    const std::string token = "%" + std::to_string(message.tokenCount);
    if (!replaceToken(message.text, token, replacement)) {
        warnOfUnusedToken(token, replacement);
    }
    return message;
}

template <typename Value, typename>
UserMsg& operator%(UserMsg& message, Value value) {
    message.shown % value;
    message.logged % value;
    return message;
}

template SystemMsg& operator%(SystemMsg&, int);
template SystemMsg& operator%(SystemMsg&, const char*);
template SystemMsg& operator%(SystemMsg&, std::size_t);
template SystemMsg& operator%(SystemMsg&, double);
template SystemMsg& operator%(SystemMsg&, float);
template UserMsg& operator%(UserMsg&, int);
template UserMsg& operator%(UserMsg&, const char*);
template UserMsg& operator%(UserMsg&, std::size_t);
template UserMsg& operator%(UserMsg&, double);
template UserMsg& operator%(UserMsg&, float);

} // namespace qel
