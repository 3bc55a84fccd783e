#ifndef QEL_PLATFORM_BUFFER_H
#define QEL_PLATFORM_BUFFER_H

/// @file
/// Storage for the passes of an algorithm over many plain elements.
///
/// Unlike std::vector it does not write its elements before they have their values, which for
/// large arrays is a pass over memory. It begins with a cache line.

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace qel {

template <typename T>
class Buffer {
    static_assert(std::is_trivially_copyable<T>::value && std::is_trivially_destructible<T>::value,
                  "elements need no construction and no destruction");

public:
    Buffer() = default;
    /// Elements without values.
    explicit Buffer(std::size_t size) : elements_(allocate(size)), size_(size) {}

    /// The source is left empty.
    Buffer(Buffer&& other) noexcept
        : elements_(std::move(other.elements_)), size_(std::exchange(other.size_, 0)) {}
    Buffer& operator=(Buffer&& other) noexcept {
        elements_ = std::move(other.elements_);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }

    T* data() { return elements_.get(); }
    const T* data() const { return elements_.get(); }
    std::size_t size() const { return size_; }
    T* begin() { return data(); }
    T* end() { return data() + size_; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + size_; }
    /// Not checked.
    T& operator[](std::size_t i) { return elements_.get()[i]; }
    const T& operator[](std::size_t i) const { return elements_.get()[i]; }

private:
    static constexpr std::size_t kAlignment = 64;

    // Aligned here: aligned allocation is several times slower for small sizes.
    struct Free {
        void* memory = nullptr;
        void operator()(T*) const { ::operator delete(memory); }
    };

    static std::unique_ptr<T, Free> allocate(std::size_t size) {
        static_assert(alignof(T) <= kAlignment, "elements are aligned");
        if (size > static_cast<std::size_t>(-1) / 2 / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        const std::size_t bytes = size * sizeof(T);
        std::size_t room = bytes + kAlignment - 1;
        void* const memory = ::operator new(room);
        void* aligned = memory;
        return {static_cast<T*>(std::align(kAlignment, bytes, aligned, room)), Free{memory}};
    }

    std::unique_ptr<T, Free> elements_;
    std::size_t size_ = 0;
};

} // namespace qel

#endif
