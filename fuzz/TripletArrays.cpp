// Operations of the triplet array and of a view of one of its components in any order, compared
// with a plain vector and statistics that start from those before.

#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include <qel/FloatQELVectorComponent.h>
#include <qel/TripletQELVector.h>

#include "Input.h"
#include "Refusals.h"
#include "arrays/ReferenceStatistics.h"
#include "support/Bits.h"
#include "support/StandardStreams.h"

namespace {

using namespace qel_fuzz;
using qel::FloatQELVectorComponent;
using qel::TripletQELVector;
using qel_test::kUndef;
using qel_test::sameBits;
using Triplet = qel::TripletBase<float>;

struct Model {
    std::vector<Triplet> elements;
    bool valid = false;
    float min = kUndef, max = kUndef, sum = kUndef;
    Triplet low{kUndef, kUndef, kUndef}, high{kUndef, kUndef, kUndef};
    int count = 0;

    void update();
};

bool isDefined(const Triplet& t) {
    return t.x != kUndef && t.y != kUndef && t.z != kUndef;
}

float magnitude(const Triplet& t) {
    return std::sqrt(t.x * t.x + t.y * t.y + t.z * t.z);
}

void widen(float& low, float& high, float value) {
    low = low == kUndef || low > value ? value : low;
    high = high == kUndef || value > high ? value : high;
}

// Starts from the values of the computation before.
void Model::update() {
    if (valid) {
        return;
    }
    for (const Triplet& t : elements) {
        const float m = magnitude(t);
        if (isDefined(t) && m != kUndef) {
            widen(min, max, m);
            sum += m;
            ++count;
        }
        widen(low.x, high.x, t.x);
        widen(low.y, high.y, t.y);
        widen(low.z, high.z, t.z);
    }
    valid = true;
}

Triplet normalized(Triplet t) {
    const float m = isDefined(t) ? magnitude(t) : kUndef;
    if (m != 0.0f) {
        for (const int c : {0, 1, 2}) {
            t.getRef(c) =
                static_cast<float>(static_cast<double>(t.getRef(c)) / static_cast<double>(m));
        }
    }
    return t;
}

std::string expectedText(const std::vector<Triplet>& elements) {
    std::ostringstream text;
    text << std::scientific;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Triplet& t = elements[i];
        text << (i > 0 ? ", " : "");
        if (isDefined(t)) {
            text << t.x << ", " << t.y << ", " << t.z;
        } else {
            text << "UNDEF, UNDEF, UNDEF";
        }
    }
    return text.str();
}

class Pair {
public:
    void step(Input& input);
    void exchange(Pair& other);
    void compare() const;

private:
    void change(Input& input);
    void redefine(Input& input);
    void checkStatistics();
    void checkText(Input& input);
    void useComponent(Input& input);

    TripletQELVector array_;
    Model model_;
};

void Pair::compare() const {
    require(qel_test::sameBitsInAll<std::vector<Triplet>>(array_.getInternals(), model_.elements),
            "the elements are those of the model");
}

void Pair::checkStatistics() {
    model_.update();
    require(sameBits(array_.getMin(), model_.min) && sameBits(array_.getMax(), model_.max),
            "the extremes go on from those before");
    require(sameBits(array_.getSum(), model_.sum) && array_.getNvalid() == model_.count,
            "sum and count go on from those before");
    require(sameBits(array_.getMinExtents(), model_.low) &&
                sameBits(array_.getMaxExtents(), model_.high),
            "the extents go on from those before");
}

void Pair::checkText(Input& input) {
    require(array_.toString() == expectedText(model_.elements), "toString gives the elements");
    const std::size_t n = model_.elements.size();
    const std::size_t from = input.count(0, n + 2), to = input.count(0, n + 2);
    std::ostringstream written, expected;
    qel_test::standardOutputOf([&] { array_.write(written, from, to); });
    expected << "size=" << n << "\n";
    const std::size_t last = to == 0 ? n - 1 : to;
    for (std::size_t i = from; last < n && i <= last; ++i) {
        expected << model_.elements[i] << ",";
    }
    require(written.str() == expected.str(), "write gives the elements");
    model_.valid = false;
}

void Pair::useComponent(Input& input) {
    const int component = input.integer(-1, 3);
    FloatQELVectorComponent view(array_, component);
    require(view.size() == model_.elements.size(), "a view is as long as its array");
    if (model_.elements.empty()) {
        return;
    }
    const std::size_t i = input.count(0, model_.elements.size() - 1);
    const float value = input.number<float>();
    const bool refused = refuses("Triplet", [&] { view[i] = value; });
    require(refused == (component < 0 || component > 2), "a component is 0, 1 or 2");
    model_.valid = false; // the element was reached, also where there is no such component
    if (refused) {
        return;
    }
    model_.elements[i].getRef(component) = value;
    std::vector<float> values;
    for (const Triplet& t : model_.elements) {
        values.push_back(t.getRef(component));
    }
    const qel_test::Statistics s = qel_test::valueByValue(values);
    require(sameBits(view.getMin(), s.min) && sameBits(view.getMax(), s.max) &&
                sameBits(view.getSum(), static_cast<float>(s.sum)) && view.getNvalid() == s.count,
            "the statistics of a view are those of its component");
}

void Pair::redefine(Input& input) {
    std::vector<float> flat = input.numbers<float>(1, 40);
    const bool refused =
        refuses("TripletQELVector", [&] { array_.redefine(flat.data(), flat.size()); });
    require(refused == (flat.size() % 3 != 0), "a flat list has three numbers for each element");
    if (refused) {
        return;
    }
    model_.elements.clear();
    for (std::size_t i = 0; i < flat.size(); i += 3) {
        model_.elements.emplace_back(flat[i], flat[i + 1], flat[i + 2]);
    }
    model_.valid = false;
}

void Pair::change(Input& input) {
    model_.valid = false;
    switch (input.integer(0, 6)) {
    case 0: {
        const Triplet value = input.triplet<float>();
        array_.push_back(value);
        model_.elements.push_back(value);
        break;
    }
    case 1:
        array_.pop_back();
        if (!model_.elements.empty()) {
            model_.elements.pop_back();
        }
        break;
    case 2: {
        const std::size_t n = input.count(0, 20);
        array_.resize(n);
        model_.elements.resize(n);
        break;
    }
    case 3:
        array_.clear();
        model_.elements.clear();
        break;
    case 4:
        array_.normalize();
        for (Triplet& t : model_.elements) {
            t = normalized(t);
        }
        break;
    case 5:
        model_.elements = input.triplets<float>(0, 20);
        array_.redefine(model_.elements);
        break;
    default: {
        std::vector<Triplet> other = input.triplets<float>(0, 20);
        std::vector<Triplet> expected = other;
        array_.swap(other);
        model_.elements.swap(expected);
        require(qel_test::sameBitsInAll(other, expected), "swap gives the elements away");
    }
    }
}

void Pair::step(Input& input) {
    switch (input.integer(0, 6)) {
    case 0:
        checkStatistics();
        break;
    case 1:
        checkText(input);
        break;
    case 2:
        useComponent(input);
        break;
    case 3:
        redefine(input);
        break;
    case 4: {
        const TripletQELVector copy = array_; // takes the statistics along
        array_ = copy;
        break;
    }
    default:
        change(input);
    }
    compare();
}

void Pair::exchange(Pair& other) {
    array_.swap(other.array_);
    model_.elements.swap(other.model_.elements);
    model_.valid = other.model_.valid = false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair pairs[2];
    for (int steps = 0; input.hasMore() && steps < 60; ++steps) {
        if (input.integer(0, 15) == 0) {
            pairs[0].exchange(pairs[1]);
        }
        pairs[input.count(0, 1)].step(input);
        pairs[0].compare();
        pairs[1].compare();
    }
    return 0;
}
