#ifndef QEL_INTQELVECTOR_H
#define QEL_INTQELVECTOR_H

/// @file
/// The array of 32-bit integers.

#include <cstddef>

#include <qel/Export.h>
#include <qel/QELVector.h>

namespace qel {

// push_back(int) stands beside the template's push_back(const int&) instead of overriding it: each
// has its own place among the virtual operations. The base's one is called through a base
// reference.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif

/// A QELVector<int> whose length can be changed through virtual operations. Const members may be
/// called on one array from many threads.
class QEL_API IntQELVector : public QELVector<int> {
public:
    IntQELVector();
    /// n zeros.
    explicit IntQELVector(std::size_t n);
    IntQELVector(const IntQELVector&);
    IntQELVector& operator=(const IntQELVector&);
    /// The source is left empty.
    IntQELVector(IntQELVector&&) noexcept;
    IntQELVector& operator=(IntQELVector&&) noexcept;
    ~IntQELVector() override;

    /// New elements are 0.
    virtual void resize(std::size_t n);
    virtual void push_back(int value);
    /// Removes the last element; the array must not be empty (ends the process otherwise).
    virtual void pop_back();
    virtual void clear();
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

} // namespace qel

#endif
