// Apart from the tests, so that the compiler sees pairs of new and delete there, not their insides.

#include "support/AllocationLimit.h"

#include <cstdlib>
#include <new>

namespace {

int allocationsLeft = -1; // below zero there is no limit

void countAllocation() {
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
}

} // namespace

namespace qel_test {

AllocationLimit::AllocationLimit(int allowed) {
    allocationsLeft = allowed;
}

AllocationLimit::~AllocationLimit() {
    allocationsLeft = -1;
}

} // namespace qel_test

void* operator new(std::size_t size) {
    countAllocation();
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    countAllocation();
    const auto step = static_cast<std::size_t>(alignment);
    void* const memory = std::aligned_alloc(step, (size + step - 1) / step * step);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}
