// One component of a triplet array as an array of floats.

#include <qel/FloatQELVectorComponent.h>

#include <iostream>

namespace qel {

FloatQELVectorComponent::FloatQELVectorComponent(TripletQELVector& triplets, int component)
    : triplets_(triplets), component_(component) {}
FloatQELVectorComponent::FloatQELVectorComponent(const FloatQELVectorComponent&) = default;
FloatQELVectorComponent::~FloatQELVectorComponent() = default;

float& FloatQELVectorComponent::component(std::size_t i) const {
    return triplets_[i].getRef(component_);
}

const float& FloatQELVectorComponent::operator[](std::size_t i) const {
    return component(i);
}

float& FloatQELVectorComponent::operator[](std::size_t i) {
    return component(i);
}

void FloatQELVectorComponent::resize(std::size_t n) {
    triplets_.resize(n);
}

std::size_t FloatQELVectorComponent::size() const {
    return triplets_.size();
}

// Through front(), which leaves the statistics of the triplet array in force.
FloatQELVector::Iterator FloatQELVectorComponent::Begin() {
    return {getStride(), empty() ? nullptr : &triplets_.front().getRef(component_)};
}

// One stride beyond the last value; of y and z that is past the storage's end, where nothing is
// read.
FloatQELVector::Iterator FloatQELVectorComponent::End() {
    return {getStride(), Begin().operator->() + static_cast<std::ptrdiff_t>(3 * size())};
}

int FloatQELVectorComponent::getStride() const {
    return 3;
}

void FloatQELVectorComponent::dbprint() const {
    write(std::cout);
}

} // namespace qel
