// Apart from the tests, so that the compiler sees pairs of new and delete there, not their insides.

#include "support/AllocationLimit.h"

#include <cstdlib>
#include <new>

#if defined(_WIN32)
#include <malloc.h>
#endif

namespace {

// Windows frees aligned memory by a function of its own.
#if defined(_WIN32)
void* allocateAligned(std::size_t size, std::size_t alignment) {
    return _aligned_malloc(size, alignment);
}
void freeAligned(void* memory) {
    _aligned_free(memory);
}
#else
void* allocateAligned(std::size_t size, std::size_t alignment) {
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}
void freeAligned(void* memory) {
    std::free(memory);
}
#endif

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

// Without one of its own, AddressSanitizer would allocate what the delete below frees.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    countAllocation();
    void* const memory = allocateAligned(size, static_cast<std::size_t>(alignment));
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
    freeAligned(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    freeAligned(memory);
}
