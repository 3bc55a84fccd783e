#ifndef QEL_FLOATQELVECTOR_H
#define QEL_FLOATQELVECTOR_H

/// @file
/// What the arrays of floats have in common.

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>

#include <qel/Export.h>

namespace qel {

/// A scalar field: one float per point, with cached statistics and text output.
///
/// FloatQELVectorConcrete owns its floats, FloatQELVectorComponent shows one component of a triplet
/// array; a caller's own kind implements the virtual operations, and everything here and in
/// TensorEigenizer works on it through them.
///
/// A value that equals the largest finite float is undefined: it prints as UNDEF and does not
/// count in the statistics. A NaN counts. Statistics are computed when asked for, from the start
/// each time, and kept until they expire: what expires them is stated with each kind.
///
/// Threads: getMin(), getMax(), getSum() and getNvalid() write what they compute and may not be
/// called concurrently, unless one of them has been called since the statistics expired. The kinds
/// say which of the others may.
class QEL_API FloatQELVector {
public:
    /// Walks over the values with a stride counted in floats.
    class Iterator {
    public:
        Iterator() = default;
        Iterator(int stride, float* current) : stride_(stride), current_(current) {}

        float& operator*() const { return *current_; }
        float* operator->() const { return current_; }
        Iterator& operator++() {
            current_ += stride_;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        /// Compares the pointers alone.
        bool operator==(const Iterator& other) const { return current_ == other.current_; }
        bool operator!=(const Iterator& other) const { return current_ != other.current_; }

    private:
        int stride_ = 0;
        float* current_ = nullptr;
    };

    virtual ~FloatQELVector();

    // -- Elements ----

    virtual const float& operator[](std::size_t i) const = 0;
    virtual float& operator[](std::size_t i) = 0;
    virtual void resize(std::size_t n) = 0;
    virtual std::size_t size() const = 0;
    /// Both ends carry a null pointer when the array is empty.
    virtual Iterator Begin() = 0;
    virtual Iterator End() = 0;

    // -- Text ----

    /// Writes from..to, inclusive, to standard output, as write() does.
    virtual void dbprint(std::size_t from, std::size_t to) const;
    /// The one-argument write() to standard output.
    virtual void dbprint() const;

    /// All values, in scientific notation, separated by ", ".
    /// @param precision  digits after the point, if positive
    std::string toString(int precision) const;

    /// Writes the values from..to, inclusive, eight to a line, with the stream's own formatting.
    /// A `to` of 0 is the last value; a bad range is said in place of the values.
    void write(std::ostream& os, std::size_t from, std::size_t to) const;
    /// Calls write(os, 0, size()), whose `to` is beyond the last value on purpose: it writes the
    /// size line alone.
    void write(std::ostream& os) const;

    // -- Statistics: O(n) when expired, else O(1) ----

    /// Smallest valid value; the undefined marker if there is none.
    float getMin() const;
    /// Largest valid value; the undefined marker if there is none.
    float getMax() const;
    /// Sum of the valid values, added up in double in index order and rounded at the end.
    float getSum() const;
    /// Number of valid values.
    int getNvalid() const;

    /// Expires the statistics.
    void invalidateCache() const { cacheValid_ = false; }

protected:
    FloatQELVector();
    FloatQELVector(const FloatQELVector&);
    FloatQELVector& operator=(const FloatQELVector&);

private:
    virtual int getStride() const = 0;
    virtual void updateCache() const;

    void ensureCache() const {
        if (!cacheValid_) {
            updateCache();
        }
    }

    static constexpr float kUndefined = std::numeric_limits<float>::max();

    mutable bool cacheValid_ = false;
    mutable float min_ = kUndefined;
    mutable float max_ = kUndefined;
    mutable double sum_ = static_cast<double>(kUndefined);
    mutable int nValid_ = 0;
};

} // namespace qel

#endif
