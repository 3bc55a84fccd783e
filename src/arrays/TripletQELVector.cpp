// Arrays of float triplets: contents, statistics, text.

#include <qel/TripletQELVector.h>

#include <cstring>
#include <iostream>
#include <sstream>
#include <utility>

#include "arrays/Statistics.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

constexpr std::size_t kElementsPerLine = 4;

void checkFlatList(const float* list, std::size_t n) {
    if (list == nullptr) {
        SystemMsg message("Null pointer to %1.");
        throw data::invalid("TripletQELVector", "constructor", message % "p_list", argumentError);
    }
    if (n % 3 != 0) {
        SystemMsg message("Number of elements provided (%1) not divisible by three.");
        throw data::invalid("TripletQELVector", "constructor", message % n, argumentError);
    }
}

} // namespace

// -- Building ----

TripletQELVector::TripletQELVector() = default;
TripletQELVector::TripletQELVector(const TripletQELVector&) = default;
TripletQELVector::~TripletQELVector() = default;

TripletQELVector& TripletQELVector::operator=(const TripletQELVector& other) {
    storage_ = other.storage_; // first: it may fail
    statistics_ = other.statistics_;
    return *this;
}

TripletQELVector::TripletQELVector(TripletQELVector&& other) noexcept
    : statistics_(std::exchange(other.statistics_, {})), storage_(std::move(other.storage_)) {}

TripletQELVector& TripletQELVector::operator=(TripletQELVector&& other) noexcept {
    if (this != &other) {
        statistics_ = std::exchange(other.statistics_, {});
        storage_ = std::move(other.storage_);
    }
    return *this;
}

TripletQELVector::TripletQELVector(std::initializer_list<TripletBase<float>> list)
    : storage_(list) {}

TripletQELVector::TripletQELVector(const std::vector<TripletBase<float>>& list) {
    redefine(list);
}

TripletQELVector::TripletQELVector(const float* p_list, std::size_t n) {
    redefine(p_list, n);
}

// -- Whole contents ----

void TripletQELVector::redefine(const float* p_list, std::size_t n) {
    checkFlatList(p_list, n);
    const std::size_t count = n / 3;
    // A list inside this array is no longer than the array, and lies still until it is copied.
    if (count > storage_.size()) {
        storage_.resize(count);
    }
    if (count > 0) {
        std::memmove(&storage_[0].x, p_list, count * sizeof(TripletBase<float>));
    }
    storage_.resize(count);
    statistics_.valid = false;
}

void TripletQELVector::redefine(const std::vector<TripletBase<float>>& list) {
    static_cast<std::vector<TripletBase<float>>&>(storage_) = list;
    statistics_.valid = false;
}

void TripletQELVector::swap(std::vector<TripletBase<float>>& other) {
    storage_.swap(other);
    statistics_.valid = false;
}

void TripletQELVector::swap(TripletQELVector& other) {
    storage_.swap(other.storage_);
    statistics_.valid = false;
    other.statistics_.valid = false;
}

// -- Length ----

void TripletQELVector::pop_back() {
    statistics_.valid = false;
    if (!storage_.empty()) {
        storage_.pop_back();
    }
}

void TripletQELVector::resize(std::size_t n) {
    statistics_.valid = false;
    storage_.resize(n);
}

void TripletQELVector::clear() {
    statistics_.valid = false;
    storage_.clear();
}

void TripletQELVector::reserve(std::size_t n) {
    storage_.reserve(n);
}

void TripletQELVector::normalize() {
    statistics_.valid = false;
    for (TripletBase<float>& element : storage_) {
        element.normalize();
    }
}

// -- Statistics ----

// Starts from the values held, on purpose (TripletStatistics tests hold this).
void TripletQELVector::updateCache() const {
    Statistics& held = statistics_;
    TripletStatistics s = {held.min,        held.max,        held.sum,
                           held.minExtents, held.maxExtents, held.nValid};
    s.add(storage_.data(), storage_.size());
    held = {true, s.min, s.max, s.sum, s.minExtents, s.maxExtents, s.count};
}

float TripletQELVector::getMin() const {
    return current().min;
}

float TripletQELVector::getMax() const {
    return current().max;
}

float TripletQELVector::getSum() const {
    return current().sum;
}

int TripletQELVector::getNvalid() const {
    return current().nValid;
}

TripletBase<float> TripletQELVector::getMinExtents() const {
    return current().minExtents;
}

TripletBase<float> TripletQELVector::getMaxExtents() const {
    return current().maxExtents;
}

// -- Text ----

std::string TripletQELVector::toString() const {
    std::ostringstream os;
    os << std::scientific;
    const char* separator = "";
    for (const TripletBase<float>& t : storage_) {
        os << separator;
        if (t.isUndefined()) {
            os << "UNDEF, UNDEF, UNDEF";
        } else {
            os << t.x << ", " << t.y << ", " << t.z;
        }
        separator = ", ";
    }
    return os.str();
}

void TripletQELVector::write(std::ostream& os, std::size_t from, std::size_t to) const {
    statistics_.valid = false;
    const std::size_t count = storage_.size();
    if (to == 0) {
        to = count - 1; // of an empty array, the largest index, which is refused below
    }
    os << "size=" << count << std::endl;
    if (from > to) {
        std::cout << to << "<" << from << std::endl;
    } else if (to < count) {
        std::cout << from << ":";
        for (std::size_t i = from; i <= to; ++i) {
            os << storage_[i] << ",";
            if ((i + 1) % kElementsPerLine == 0 && i + 1 < to) {
                std::cout << std::endl << i + 1 << ":";
            }
        }
        std::cout << std::endl;
    } else {
        std::cout << to << ">= size " << count << std::endl;
    }
}

void TripletQELVector::dbprint() const {
    write(std::cout, 0, 0);
}

void TripletQELVector::dbprint(int from, int to) const {
    write(std::cout, static_cast<std::size_t>(from), static_cast<std::size_t>(to));
}

} // namespace qel
