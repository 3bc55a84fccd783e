#ifndef QEL_QELVECTOR_H
#define QEL_QELVECTOR_H

/// @file
/// The storage of every array of the library.

#include <initializer_list>
#include <stdexcept>
#include <utility>
#include <vector>

/// The standard growable array made polymorphic: it may be deleted through a base pointer, and
/// appending and swapping may be overridden. Everything else is std::vector's, and not virtual.
///
///     QELVector<float> pressures;
///     pressures.push_back(101325.0f);
///
/// An index at or beyond the size ends the process (std::vector's assertions, which stay on in
/// every build type); it is not an exception. Const members may be called on one array from many
/// threads.
template <typename T>
class QELVector : public std::vector<T> {
public:
    using Base = std::vector<T>;
    using typename Base::size_type;

    QELVector() = default;
    QELVector(const QELVector&) = default;
    QELVector& operator=(const QELVector&) = default;
    /// The source is left empty.
    QELVector(QELVector&& other) noexcept : Base(std::move(other)) {}
    QELVector& operator=(QELVector&& other) noexcept {
        Base::operator=(std::move(other));
        return *this;
    }
    QELVector(std::initializer_list<T> values) : Base(values) {}
    virtual ~QELVector() = default;

    /// Appends a copy. Amortised O(1).
    /// @throws std::length_error  "vector<T> too long" if the array cannot hold one more
    virtual void push_back(const T& value) {
        if (this->size() == this->max_size()) {
            refuseLength();
        }
        Base::push_back(value);
    }

    /// Exchanges storage, size and capacity with another array; with itself, nothing. O(1).
    virtual void swap(std::vector<T>& other) { Base::swap(other); }

    /// The standard operations; beyond the maximum length, the error of push_back().
    void reserve(size_type capacity) {
        checkLength(capacity);
        Base::reserve(capacity);
    }
    void resize(size_type size) {
        checkLength(size);
        Base::resize(size);
    }
    void resize(size_type size, const T& value) {
        checkLength(size);
        Base::resize(size, value);
    }
    using Base::assign;
    void assign(size_type size, const T& value) {
        checkLength(size);
        Base::assign(size, value);
    }
    using Base::insert;
    typename Base::iterator insert(typename Base::const_iterator position, size_type count,
                                   const T& value) {
        if (count > this->max_size() - this->size()) {
            refuseLength();
        }
        return Base::insert(position, count, value);
    }

private:
    void checkLength(size_type size) const {
        if (size > this->max_size()) {
            refuseLength();
        }
    }
    [[noreturn]] static void refuseLength() { throw std::length_error("vector<T> too long"); }
};

#endif
