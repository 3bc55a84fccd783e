#ifndef QEL_TRIPLETQELVECTOR_H
#define QEL_TRIPLETQELVECTOR_H

/// @file
/// The array of float triplets: a vector field, point by point.

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <limits>
#include <string>
#include <vector>

#include <qel/Export.h>
#include <qel/QELVector.h>
#include <qel/TripletBase.h>

namespace qel {

/// An array of float triplets (velocities, gradients, normals) with cached statistics of their
/// magnitudes and of the extents of each component.
///
///     TripletQELVector velocity(flatValues, 3 * pointCount);
///     float fastest = velocity.getMax();
///
/// The statistics are computed when asked for and kept until an operation marked "expires the
/// statistics". A new computation starts from the values of the one before: it widens minimum,
/// maximum and extents, and adds to sum and count. The sum starts at the undefined marker.
/// Copies and moves take elements and statistics.
///
/// Threads: the const members that read elements, toString() and getInternals() may be called on
/// one array from many threads. The statistics write what they compute and may not, unless one of
/// them has been called since they expired; write() and dbprint() may not, as they expire them.
class QEL_API TripletQELVector {
public:
    using value_type = TripletBase<float>;
    using iterator = std::vector<TripletBase<float>>::iterator;
    using const_iterator = std::vector<TripletBase<float>>::const_iterator;

    // -- Building ----

    TripletQELVector();
    TripletQELVector(const TripletQELVector&);
    TripletQELVector& operator=(const TripletQELVector&);
    /// The source is left empty, with the statistics of a new array.
    TripletQELVector(TripletQELVector&& other) noexcept;
    TripletQELVector& operator=(TripletQELVector&& other) noexcept;
    TripletQELVector(std::initializer_list<TripletBase<float>> list);
    /// Not explicit: a plain array of triplets is one of these.
    TripletQELVector(const std::vector<TripletBase<float>>& list);
    /// From a flat list x, y, z, x, y, z, ... of n floats.
    /// @throws data::invalid  if p_list is null or n is not a multiple of three
    TripletQELVector(const float* p_list, std::size_t n);
    virtual ~TripletQELVector();

    // -- Whole contents; all of these expire the statistics, after the change ----

    /// Replaces the elements by those of a flat list, as the constructor takes it. Errors name the
    /// method "constructor".
    /// @throws data::invalid  if p_list is null or n is not a multiple of three
    void redefine(const float* p_list, std::size_t n);
    void redefine(const std::vector<TripletBase<float>>& list);
    /// Exchanges the elements, not the statistics. O(1).
    void swap(std::vector<TripletBase<float>>& other);
    /// The statistics of both arrays expire.
    void swap(TripletQELVector& other);

    // -- Length; all but reserve() expire the statistics, before the change ----

    void push_back(const TripletBase<float>& value) {
        statistics_.valid = false;
        storage_.push_back(value);
    }
    /// Does nothing to an empty array.
    void pop_back();
    /// New elements are (0, 0, 0).
    void resize(std::size_t n);
    void clear();
    void reserve(std::size_t n);
    std::size_t size() const { return storage_.size(); }
    bool empty() const { return storage_.empty(); }

    // -- Elements; an index beyond the size, or an end of an empty array, ends the process ----

    const TripletBase<float>& operator[](std::size_t i) const { return storage_[i]; }
    /// Expires the statistics, since the caller may write.
    TripletBase<float>& operator[](std::size_t i) {
        statistics_.valid = false;
        return storage_[i];
    }
    // These leave the statistics in force, also where they give write access.
    const TripletBase<float>& front() const { return storage_.front(); }
    TripletBase<float>& front() { return storage_.front(); }
    const TripletBase<float>& back() const { return storage_.back(); }
    TripletBase<float>& back() { return storage_.back(); }
    const_iterator begin() const { return storage_.begin(); }
    iterator begin() { return storage_.begin(); }
    const_iterator end() const { return storage_.end(); }
    iterator end() { return storage_.end(); }

    /// The storage itself; valid while this array lives and is not resized.
    const QELVector<TripletBase<float>>& getInternals() const { return storage_; }

    /// Divides every element by its length; zero elements stay, undefined ones are divided by the
    /// undefined marker. Expires the statistics.
    void normalize();

    // -- Statistics: O(n) when expired, else O(1) ----

    /// Smallest magnitude of the defined triplets; the undefined marker if there is none.
    float getMin() const;
    /// Largest magnitude of the defined triplets; the undefined marker if there is none.
    float getMax() const;
    /// Sum of the magnitudes of the defined triplets, in single precision, on top of the undefined
    /// marker.
    float getSum() const;
    /// Number of defined triplets, added up over all computations.
    int getNvalid() const;
    /// Smallest x, y and z, of defined and undefined triplets alike.
    TripletBase<float> getMinExtents() const;
    /// Largest x, y and z, of defined and undefined triplets alike.
    TripletBase<float> getMaxExtents() const;

    // -- Text ----

    /// All components, in scientific notation, separated by ", "; UNDEF, UNDEF, UNDEF stands for
    /// an undefined triplet.
    std::string toString() const;

    /// Writes the elements from..to, inclusive, four to a line; `to` 0 is the last element.
    ///
    /// Only the size line, the elements and the commas behind them go to the stream; line starts,
    /// line ends and the messages about a bad range go to standard output. Expires the statistics.
    void write(std::ostream& os, std::size_t from, std::size_t to) const;

    /// Writes the whole array to standard output.
    void dbprint() const;
    /// Writes from..to to standard output; a negative value is a very large index.
    void dbprint(int from, int to) const;

private:
    static constexpr float kUndefined = std::numeric_limits<float>::max();

    struct Statistics {
        bool valid = false;
        float min = kUndefined;
        float max = kUndefined;
        float sum = kUndefined;
        TripletBase<float> minExtents{kUndefined, kUndefined, kUndefined};
        TripletBase<float> maxExtents{kUndefined, kUndefined, kUndefined};
        int nValid = 0;
    };

    const Statistics& current() const {
        if (!statistics_.valid) {
            updateCache();
        }
        return statistics_;
    }
    void updateCache() const;

    mutable Statistics statistics_;
    QELVector<TripletBase<float>> storage_;
};

} // namespace qel

#endif
