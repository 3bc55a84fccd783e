#ifndef QEL_FLOATQELVECTORCONCRETE_H
#define QEL_FLOATQELVECTORCONCRETE_H

/// @file
/// The array that owns its floats.

#include <cstddef>
#include <initializer_list>
#include <vector>

#include <qel/Export.h>
#include <qel/FloatQELVector.h>
#include <qel/QELVector.h>

namespace qel {

/// A scalar field that owns its values.
///
///     FloatQELVectorConcrete pressure(values, count);
///     float mean = pressure.getSum() / static_cast<float>(pressure.getNvalid());
///
/// Every operation that changes it or gives write access by index expires the statistics before it
/// acts, except redefine() from a QELVector. Copies and moves take values and statistics.
///
/// Threads: the const members but the statistics may be called on one array from many threads.
class QEL_API FloatQELVectorConcrete : public FloatQELVector {
public:
    using iterator = std::vector<float>::iterator;
    using const_iterator = std::vector<float>::const_iterator;

    // -- Building ----

    FloatQELVectorConcrete();
    FloatQELVectorConcrete(const FloatQELVectorConcrete&);
    FloatQELVectorConcrete& operator=(const FloatQELVectorConcrete&);
    /// The source is left empty, its statistics expired.
    FloatQELVectorConcrete(FloatQELVectorConcrete&& other) noexcept;
    FloatQELVectorConcrete& operator=(FloatQELVectorConcrete&& other) noexcept;
    FloatQELVectorConcrete(std::initializer_list<float> values);
    /// @throws data::invalid  if p_list is null
    FloatQELVectorConcrete(const float* p_list, std::size_t n);
    /// Not explicit: a plain array of floats is one of these.
    FloatQELVectorConcrete(const QELVector<float>& values);
    ~FloatQELVectorConcrete() override;

    // -- Whole contents ----

    /// Replaces the values by n others, which may lie in this array. Resizes through resize().
    /// @throws data::invalid  if p_list is null; nothing is changed then
    void redefine(const float* p_list, std::size_t n);
    /// Replaces the values but leaves the statistics in force, on purpose: those of the values
    /// before hold until something else expires them.
    void redefine(const QELVector<float>& values);
    /// Exchanges the values. Expires the statistics of this array only, not of the other. O(1).
    void swap(FloatQELVectorConcrete& other);

    // -- Length ----

    void push_back(const float& value) {
        invalidateCache();
        storage_.push_back(value);
    }
    /// Does nothing to an empty array.
    void pop_back();
    /// Removes all values.
    void erase();
    /// New values are 0.
    void resize(std::size_t n) override;
    std::size_t size() const override;
    bool empty() const { return storage_.empty(); }

    // -- Values; an index beyond the size ends the process ----

    const float& operator[](std::size_t i) const override;
    /// Expires the statistics, since the caller may write.
    float& operator[](std::size_t i) override;
    // The iterators leave the statistics in force.
    const_iterator begin() const { return storage_.begin(); }
    iterator begin() { return storage_.begin(); }
    const_iterator end() const { return storage_.end(); }
    iterator end() { return storage_.end(); }
    Iterator Begin() override;
    Iterator End() override;

    /// The storage itself; valid while this array lives and is not resized.
    const QELVector<float>& getInternals() const { return storage_; }

    // -- Text ----

    using FloatQELVector::dbprint;
    void dbprint() const override;

private:
    int getStride() const override;

    bool holds(const float* value) const;

    QELVector<float> storage_;
};

} // namespace qel

#endif
