#ifndef QEL_FLOATQELVECTORCOMPONENT_H
#define QEL_FLOATQELVECTORCOMPONENT_H

/// @file
/// One component of a triplet array, seen as an array of floats.

#include <cstddef>

#include <qel/Export.h>
#include <qel/FloatQELVector.h>
#include <qel/TripletQELVector.h>

namespace qel {

/// A view of the x, y or z components of a triplet array, which it does not own and which must
/// outlive it.
///
///     FloatQELVectorComponent w(velocity, 2);
///     w[0] = 1.0f; // velocity[0].z
///
/// Access by index, for reading too, and resizing expire the statistics of the triplet array and
/// leave the view's own in force, on purpose: after writing through the view, call
/// invalidateCache() before asking it for statistics.
///
/// Threads: of the const members size() and empty() alone may be called on one view, or on several
/// of one triplet array, from many threads.
class QEL_API FloatQELVectorComponent : public FloatQELVector {
public:
    /// @param component  0 is x, 1 is y, 2 is z; any other is refused when the first element is
    ///                   asked for, with the error of TripletBase::getRef
    FloatQELVectorComponent(TripletQELVector& triplets, int component);
    FloatQELVectorComponent(const FloatQELVectorComponent&);
    ~FloatQELVectorComponent() override;

    const float& operator[](std::size_t i) const override;
    float& operator[](std::size_t i) override;
    /// Resizes the triplet array, all three components of it.
    void resize(std::size_t n) override;
    std::size_t size() const override;
    bool empty() const { return triplets_.empty(); }
    Iterator Begin() override;
    Iterator End() override;
    /// The same, for range-based loops.
    Iterator begin() { return Begin(); }
    Iterator end() { return End(); }

    using FloatQELVector::dbprint;
    void dbprint() const override;

private:
    int getStride() const override;

    float& component(std::size_t i) const;

    TripletQELVector& triplets_;
    int component_;
};

} // namespace qel

#endif
