// Messages whose tokens are filled, compared with a search from the start after every replacement.

#include <cstddef>
#include <sstream>
#include <string>

#include <qel/QELError.h>

#include "Input.h"
#include "foundation/MessageTokens.h"
#include "support/StandardStreams.h"

namespace {

using namespace qel_fuzz;

template <typename Value>
std::string streamed(Value value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

// A value that holds its own token would be replaced without end.
bool fillsItself(const std::string& token, const std::string& value) {
    return value.find(token) != std::string::npos;
}

// Fills the next token, and writes what is to stand on standard error. Returns false if it does not
// come to an end: a value may complete the token anew, with digits that stay in the text.
bool fill(qel::SystemMsg& message, const std::string& value, std::string& warnings) {
    const std::string token = "%" + std::to_string(++message.tokenCount);
    std::size_t at = message.text.find(token);
    if (at == std::string::npos) {
        warnings += "Warning: token %" + std::to_string(message.tokenCount) +
                    " was not used in the message: \"" + value + "\"";
    }
    constexpr int kMaxReplacements = 500;
    int replacements = 0;
    for (; at != std::string::npos; at = message.text.find(token)) {
        if (++replacements > kMaxReplacements) {
            return false;
        }
        message.text.replace(at, 2, value);
    }
    return true;
}

// Returns false if the definition does not come to an end.
template <typename Value>
bool fillBoth(qel::UserMsg& message, qel::UserMsg& expected, Value value) {
    const std::string text = streamed(value);
    std::string warnings;
    if (!fill(expected.shown, text, warnings) || !fill(expected.logged, text, warnings)) {
        return false;
    }
    const std::string written = qel_test::standardErrorOf([&] { message % value; });
    require(written == warnings, "an unused value is named on standard error");
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string text = input.text(60);
    qel::UserMsg message(text, nullptr);
    qel::UserMsg expected(text, nullptr);
    const int before = input.integer(0, 12);
    for (qel::SystemMsg* part :
         {&message.shown, &message.logged, &expected.shown, &expected.logged}) {
        part->tokenCount = before;
    }
    for (int filled = 0; input.hasMore() && filled < 6; ++filled) {
        const std::string value = input.text(8);
        const std::string token = "%" + std::to_string(before + filled + 1);
        bool ends = true;
        switch (input.integer(0, 4)) {
        case 0:
            ends = fillBoth(message, expected, input.integer(-2000000000, 2000000000));
            break;
        case 1:
            ends = fillBoth(message, expected, input.count(0, static_cast<std::size_t>(-1)));
            break;
        case 2:
            ends = fillBoth(message, expected, input.number<double>());
            break;
        case 3:
            ends = fillBoth(message, expected, input.number<float>());
            break;
        default:
            ends = fillBoth(message, expected, fillsItself(token, value) ? "" : value.c_str());
        }
        if (!ends) {
            return 0;
        }
        require(message.shown.text == expected.shown.text, "the text shown is filled");
        require(message.logged.text == expected.logged.text, "the text logged is filled");
        require(message.shown.tokenCount == expected.shown.tokenCount, "tokens are counted");
    }
    return 0;
}
