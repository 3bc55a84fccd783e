// The array that owns its floats.

#include <qel/FloatQELVectorConcrete.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <utility>

#include "foundation/MessageTokens.h"

namespace qel {
namespace {

void refuseNull(const float* list, const char* methodName) {
    if (list == nullptr) {
        SystemMsg message("Null pointer to %1.");
        throw data::invalid("FloatQELVectorConcrete", methodName, message % "p_list",
                            argumentError);
    }
}

} // namespace

// -- Building ----

FloatQELVectorConcrete::FloatQELVectorConcrete() = default;
FloatQELVectorConcrete::FloatQELVectorConcrete(const FloatQELVectorConcrete&) = default;
FloatQELVectorConcrete::~FloatQELVectorConcrete() = default;

FloatQELVectorConcrete& FloatQELVectorConcrete::operator=(const FloatQELVectorConcrete& other) {
    storage_ = other.storage_; // first: it may fail
    FloatQELVector::operator=(other);
    return *this;
}

FloatQELVectorConcrete::FloatQELVectorConcrete(FloatQELVectorConcrete&& other) noexcept
    : FloatQELVector(other), storage_(std::move(other.storage_)) {
    other.invalidateCache();
}

FloatQELVectorConcrete& FloatQELVectorConcrete::operator=(FloatQELVectorConcrete&& other) noexcept {
    if (this != &other) {
        FloatQELVector::operator=(other);
        storage_ = std::move(other.storage_);
        other.invalidateCache();
    }
    return *this;
}

FloatQELVectorConcrete::FloatQELVectorConcrete(std::initializer_list<float> values)
    : storage_(values) {}

FloatQELVectorConcrete::FloatQELVectorConcrete(const float* p_list, std::size_t n) {
    refuseNull(p_list, "constructor");
    redefine(p_list, n);
}

FloatQELVectorConcrete::FloatQELVectorConcrete(const QELVector<float>& values) {
    redefine(values);
}

// -- Whole contents ----

bool FloatQELVectorConcrete::holds(const float* value) const {
    const float* const first = storage_.data();
    return std::less_equal<>()(first, value) && std::less<>()(value, first + storage_.size());
}

void FloatQELVectorConcrete::redefine(const float* p_list, std::size_t n) {
    refuseNull(p_list, "redefine");
    if (holds(p_list)) {
        const std::vector<float> copy(p_list, p_list + n);
        redefine(copy.data(), n);
        return;
    }
    storage_.reserve(n); // may fail, with nothing lost
    storage_.clear();
    resize(n);
    std::copy(p_list, p_list + n, storage_.begin());
}

void FloatQELVectorConcrete::redefine(const QELVector<float>& values) {
    storage_ = values;
}

void FloatQELVectorConcrete::swap(FloatQELVectorConcrete& other) {
    invalidateCache();
    storage_.swap(other.storage_);
}

// -- Length ----

void FloatQELVectorConcrete::pop_back() {
    invalidateCache();
    if (!storage_.empty()) {
        storage_.pop_back();
    }
}

void FloatQELVectorConcrete::erase() {
    invalidateCache();
    storage_.clear();
}

void FloatQELVectorConcrete::resize(std::size_t n) {
    invalidateCache();
    storage_.resize(n);
}

std::size_t FloatQELVectorConcrete::size() const {
    return storage_.size();
}

// -- Values ----

const float& FloatQELVectorConcrete::operator[](std::size_t i) const {
    return storage_[i];
}

float& FloatQELVectorConcrete::operator[](std::size_t i) {
    invalidateCache();
    return storage_[i];
}

FloatQELVector::Iterator FloatQELVectorConcrete::Begin() {
    return {getStride(), storage_.empty() ? nullptr : storage_.data()};
}

FloatQELVector::Iterator FloatQELVectorConcrete::End() {
    return {getStride(), storage_.empty() ? nullptr : storage_.data() + storage_.size()};
}

int FloatQELVectorConcrete::getStride() const {
    return 1;
}

// -- Text ----

void FloatQELVectorConcrete::dbprint() const {
    write(std::cout);
}

} // namespace qel
