// A curve as text, in a file or on standard output.

#include <qel/ParametricCurve.h>

#include <charconv>
#include <iostream>

#include <qel/QELStream.h>

#include "curve/Conversions.h"

namespace qel {
namespace {

constexpr int kOpenForWriting = 2;
constexpr int kDigitsOfDoubles = 9; // after the point
constexpr int kDigitsOfFloats = 5;
constexpr std::size_t kChunk = 1u << 16;   // bytes that are written together
constexpr std::size_t kLongestNumber = 32; // sign, digits and exponent of any double

void appendAligned(std::string& text, const char* begin, const char* end, std::size_t width) {
    const auto size = static_cast<std::size_t>(end - begin);
    if (size < width) {
        text.append(width - size, ' ');
    }
    text.append(begin, end);
}

// "%<width>.<digits>e" of printf in the C locale, whatever the host's: to_chars is defined by it,
// and takes a third of its time.
void appendNumber(std::string& text, double value, std::size_t width, int digits) {
    char buffer[kLongestNumber];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, digits);
    appendAligned(text, buffer, result.ptr, width);
}

// "%<width>d"
void appendIndex(std::string& text, std::size_t value, std::size_t width) {
    char buffer[kLongestNumber];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    appendAligned(text, buffer, result.ptr, width);
}

// "%15.9e %15.9e %15.9e", or with five digits.
void appendPoint(std::string& text, const Point& point, int digits) {
    appendNumber(text, point.x, 15, digits);
    text += ' ';
    appendNumber(text, point.y, 15, digits);
    text += ' ';
    appendNumber(text, point.z, 15, digits);
}

int digitsFor(const ParametricCurve& curve) {
    return curve.isCurveCreatedAsDouble() ? kDigitsOfDoubles : kDigitsOfFloats;
}

// The stream's own formatting (a width that the host left set, say) does not enter.
void printLine(const std::string& line) {
    std::cout.write(line.data(), static_cast<std::streamsize>(line.size()));
    std::cout << std::endl;
}

// Prints one line for each of count items; append adds the text of item i.
template <typename Append>
void printLines(const std::string& title, std::size_t count, const Append& append) {
    if (!title.empty()) {
        printLine(title);
    }
    std::string line;
    for (std::size_t i = 0; i < count; ++i) {
        line.clear();
        append(line, i);
        printLine(line);
    }
}

} // namespace

// Lines go to the file in chunks: a flush at each would not show in the file, but in the time.
void ParametricCurve::exportToFile(const std::string& path) const {
    QELStream file(path, kOpenForWriting, false);
    const int digits = digitsFor(*this);
    std::string text;
    text.reserve(kChunk + 4 * kLongestNumber);
    const auto write = [&] {
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    };
    for (std::size_t i = 0; i < points_.size() && file.good(); ++i) {
        appendPoint(text, points_[i], digits);
        text += '\n';
        if (text.size() >= kChunk) {
            write();
        }
    }
    write();
    file.close(); // throws if anything did not reach the file
}

void ParametricCurve::printCurve(const std::string& title) const {
    const int digits = digitsFor(*this);
    printLines(title, points_.size(),
               [&](std::string& line, std::size_t i) { appendPoint(line, points_[i], digits); });
}

void ParametricCurve::printSvalues(const std::string& title) const {
    printLines(title, svalues_.size(),
               [&](std::string& line, std::size_t i) { appendNumber(line, svalues_[i], 18, 9); });
}

// "%3d %18.7e %18.7e %18.7e  %18.7e ": both the two blanks and the trailing one are deliberate.
void ParametricCurve::printCurveAndSvalues(const std::string& title) const {
    printLines(title, points_.size(), [&](std::string& line, std::size_t i) {
        appendIndex(line, i, 3);
        for (const double value : {points_[i].x, points_[i].y, points_[i].z}) {
            line += ' ';
            appendNumber(line, value, 18, 7);
        }
        line += "  ";
        appendNumber(line, svalues_[i], 18, 7);
        line += ' ';
    });
}

} // namespace qel
