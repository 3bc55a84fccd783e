// Operations of the owning float array in any order, compared with a plain vector, its statistics
// walked through value by value when they are asked for after they have expired.

#include <cstddef>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include <qel/FloatQELVectorConcrete.h>
#include <qel/IntQELVector.h>

#include "Input.h"
#include "Refusals.h"
#include "arrays/ReferenceStatistics.h"
#include "support/Bits.h"

namespace {

using namespace qel_fuzz;
using qel::FloatQELVectorConcrete;
using qel_test::kUndef;
using qel_test::sameBits;

struct Model {
    std::vector<float> values;
    bool valid = false;
    qel_test::Statistics statistics;
};

void writeValue(std::ostream& os, float value) {
    if (value == kUndef) {
        os << "UNDEF";
    } else {
        os << value;
    }
}

std::string expectedText(const std::vector<float>& values, int precision) {
    std::ostringstream text;
    text << std::scientific;
    if (precision > 0) {
        text << std::setprecision(precision);
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        text << (i > 0 ? ", " : "");
        writeValue(text, values[i]);
    }
    return text.str();
}

std::string expectedLines(const std::vector<float>& values, std::size_t from, std::size_t to) {
    std::ostringstream text;
    to = to == 0 ? values.size() - 1 : to;
    if (to < from) {
        text << to << "<" << from;
    } else if (to >= values.size()) {
        text << to << ">= size " << values.size();
    } else {
        text << from << ":";
        for (std::size_t i = from; i <= to; ++i) {
            writeValue(text, values[i]);
            text << ",";
            if ((i + 1) % 8 == 0 && i + 1 < to) {
                text << "\n" << i + 1 << ":";
            }
        }
    }
    text << "\n";
    return text.str();
}

// An array beside its model.
class Pair {
public:
    void step(Input& input);
    void compare() const;
    void exchange(Pair& other);
    void copy(const Pair& other);

private:
    void change(Input& input);
    void changeElement(Input& input);
    void checkStatistics();
    void checkText(Input& input) const;

    FloatQELVectorConcrete array_;
    Model model_;
};

void Pair::compare() const {
    require(qel_test::sameBitsInAll<std::vector<float>>(array_.getInternals(), model_.values),
            "the values are those of the model");
    require(array_.empty() == model_.values.empty(), "empty() tells whether there are values");
}

void Pair::checkStatistics() {
    if (!model_.valid) {
        model_.statistics = qel_test::valueByValue(model_.values);
        model_.valid = true;
    }
    const qel_test::Statistics& s = model_.statistics;
    require(sameBits(array_.getMin(), s.min) && sameBits(array_.getMax(), s.max),
            "the extremes are those of the values when they were last computed");
    require(sameBits(array_.getSum(), static_cast<float>(s.sum)) && array_.getNvalid() == s.count,
            "sum and count are those of the values when they were last computed");
}

void Pair::checkText(Input& input) const {
    const int precision = input.integer(-2, 20);
    require(array_.toString(precision) == expectedText(model_.values, precision),
            "toString gives the values");
    const std::size_t from = input.count(0, model_.values.size() + 2);
    const std::size_t to = input.count(0, model_.values.size() + 2);
    std::ostringstream written;
    array_.write(written, from, to);
    require(written.str() == expectedLines(model_.values, from, to), "write gives the values");
}

void Pair::changeElement(Input& input) {
    if (model_.values.empty()) {
        return;
    }
    const std::size_t i = input.count(0, model_.values.size() - 1);
    const float value = input.number<float>();
    if (input.flag()) {
        array_[i] = value;
        model_.valid = false;
    } else {
        *(array_.begin() + static_cast<std::ptrdiff_t>(i)) = value; // keeps the statistics
    }
    model_.values[i] = value;
}

void Pair::change(Input& input) {
    model_.valid = false;
    switch (input.integer(0, 6)) {
    case 0: {
        const float value = input.number<float>();
        array_.push_back(value);
        model_.values.push_back(value);
        break;
    }
    case 1:
        array_.pop_back();
        if (!model_.values.empty()) {
            model_.values.pop_back();
        }
        break;
    case 2:
        array_.erase();
        model_.values.clear();
        break;
    case 3: {
        const std::size_t n = input.count(0, 40);
        array_.resize(n);
        model_.values.resize(n);
        break;
    }
    case 4:
        if (!model_.values.empty()) { // a value of its own
            const std::size_t i = input.count(0, model_.values.size() - 1);
            array_.push_back(*(array_.getInternals().begin() + static_cast<std::ptrdiff_t>(i)));
            model_.values.push_back(float(model_.values[i]));
        }
        model_.valid = false;
        array_.invalidateCache();
        break;
    case 5:
        array_.invalidateCache();
        break;
    default:
        model_.values = input.numbers<float>(1, 40);
        array_.redefine(model_.values.data(), model_.values.size());
    }
}

void Pair::step(Input& input) {
    switch (input.integer(0, 5)) {
    case 0:
        checkStatistics();
        break;
    case 1:
        checkText(input);
        break;
    case 2:
        changeElement(input);
        break;
    case 3: {
        QELVector<float> values;
        model_.values = input.numbers<float>(0, 20);
        values.assign(model_.values.begin(), model_.values.end());
        array_.redefine(values); // keeps the statistics
        break;
    }
    case 4:
        require(
            refuses("FloatQELVectorConcrete", [&] { array_.redefine(nullptr, input.count(0, 3)); }),
            "a null pointer is refused");
        break;
    default:
        change(input);
    }
    compare();
}

// Expires the statistics of this array alone.
void Pair::exchange(Pair& other) {
    array_.swap(other.array_);
    model_.valid = false;
    model_.values.swap(other.model_.values);
}

void Pair::copy(const Pair& other) {
    array_ = other.array_;
    model_ = other.model_;
}

void checkIntegers(Input& input) {
    qel::IntQELVector array(input.count(0, 5));
    std::vector<int> expected(array.size());
    for (int step = 0; step < 8; ++step) {
        const int value = input.integer(-9, 9);
        switch (input.integer(0, 3)) {
        case 0:
            array.push_back(value);
            expected.push_back(value);
            break;
        case 1:
            array.resize(static_cast<std::size_t>(value + 9));
            expected.resize(static_cast<std::size_t>(value + 9));
            break;
        case 2:
            if (!expected.empty()) {
                array.pop_back();
                expected.pop_back();
            }
            break;
        default:
            array.clear();
            expected.clear();
        }
        require(static_cast<const std::vector<int>&>(array) == expected,
                "the integers are those of the model");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair pairs[2];
    for (int steps = 0; input.hasMore() && steps < 60; ++steps) {
        Pair& pair = pairs[input.count(0, 1)];
        switch (input.integer(0, 15)) {
        case 0:
            pair.exchange(pairs[0]);
            break;
        case 1:
            pair.copy(pairs[1]);
            break;
        case 2:
            checkIntegers(input);
            break;
        default:
            pair.step(input);
        }
        pairs[0].compare();
        pairs[1].compare();
    }
    return 0;
}
