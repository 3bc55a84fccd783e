#ifndef QEL_STRIDEDVIEW_H
#define QEL_STRIDEDVIEW_H

/// @file
/// Borrowed views of arrays where they lie: scalars, triplets and 3x3 tensors, with strides in
/// bytes. Part of the batch interface (docs/batch-interface.md).

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/QELException.h>
#include <qel/TripletBase.h>
#include <qel/TripletQELVector.h>

namespace qel {

/// A view of n numbers, each a fixed number of bytes behind the one before.
///
///     ScalarView<const double> pressure(cells[0].pressure, cells.size(), sizeof(Cell));
///     double first = pressure[0];
///
/// T is an arithmetic type, const where the numbers are only read. A view owns nothing and is
/// copied like a pointer; the memory must outlive it. Strides may be negative or, for numbers that
/// are only read, zero. The numbers need no alignment. An index beyond the size ends the process.
/// Reading through a view is safe from any number of threads.
template <typename T>
class ScalarView {
    static_assert(std::is_arithmetic<T>::value, "a view shows numbers");

    template <typename Array>
    using Matching = std::conditional_t<std::is_const<T>::value, const Array, Array>;
    using Byte = Matching<char>;

public:
    using value_type = std::remove_const_t<T>;

    /// A view of nothing.
    constexpr ScalarView() = default;

    /// n numbers side by side.
    ScalarView(T* first, std::size_t n)
        : ScalarView(first, n, static_cast<std::ptrdiff_t>(sizeof(T))) {}

    /// @param stride  bytes from one number to the next
    /// @throws data::invalid  (class "ScalarView", method "constructor") for numbers at a null
    ///     pointer
    ScalarView(T* first, std::size_t n, std::ptrdiff_t stride)
        : first_(reinterpret_cast<Byte*>(first)), size_(n), stride_(stride) {
        if (first == nullptr && n > 0) {
            throw data::invalid("ScalarView", "constructor",
                                std::to_string(n) + " numbers at a null pointer.", argumentError);
        }
    }

    /// The numbers of an array; not explicit, so that arrays can stand where views are asked for.
    ScalarView(Matching<std::vector<value_type>>& array) : ScalarView(array.data(), array.size()) {}

    /// The same for the library's arrays of floats. A view that may write expires the array's
    /// statistics when it is made; after writing through it, call invalidateCache().
    template <typename V = value_type, typename = std::enable_if_t<std::is_same<V, float>::value>>
    ScalarView(Matching<FloatQELVectorConcrete>& array)
        : ScalarView(array.empty() ? nullptr : &array[0], array.size()) {}
    template <typename V = value_type, typename = std::enable_if_t<std::is_same<V, float>::value>>
    ScalarView(Matching<FloatQELVectorComponent>& array)
        : ScalarView(array.empty() ? nullptr : &array[0], array.size(), 3 * sizeof(float)) {}

    /// What may be written may be read.
    template <typename U, typename = std::enable_if_t<std::is_same<const U, T>::value>>
    ScalarView(const ScalarView<U>& other)
        : ScalarView(other.data(), other.size(), other.stride()) {}

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    /// The first number, and the bytes from one to the next.
    T* data() const { return reinterpret_cast<T*>(first_); }
    std::ptrdiff_t stride() const { return stride_; }

    /// True if the numbers lie side by side.
    bool isContiguous() const { return stride_ == static_cast<std::ptrdiff_t>(sizeof(T)); }

    value_type operator[](std::size_t i) const {
        value_type value;
        std::memcpy(&value, at(i), sizeof value);
        return value;
    }

    /// Writes number i. A view of numbers that are only read has no such member.
    template <typename U = T, typename = std::enable_if_t<!std::is_const<U>::value>>
    void set(std::size_t i, value_type value) const {
        std::memcpy(at(i), &value, sizeof value);
    }

    /// n numbers from a first one on; they must lie inside the view (else the process ends).
    ScalarView part(std::size_t first, std::size_t n) const {
        if (first > size_ || n > size_ - first) {
            std::abort();
        }
        return {reinterpret_cast<T*>(n == 0 ? first_ : at(first)), n, stride_};
    }

private:
    Byte* at(std::size_t i) const {
        if (i >= size_) {
            std::abort();
        }
        return first_ + static_cast<std::ptrdiff_t>(i) * stride_;
    }

    Byte* first_ = nullptr;
    std::size_t size_ = 0;
    std::ptrdiff_t stride_ = sizeof(T);
};

/// A view of n triplets: three views of numbers, one for each component, wherever they lie.
///
///     TripletView<const float> fromSolver(xyz, n);        // x y z x y z ...
///     TripletView<const float> fromColumns({x, n}, {y, n}, {z, n});
///
/// T is float or double, const where the triplets are only read. As ScalarView otherwise.
template <typename T>
class TripletView {
    static_assert(std::is_floating_point<T>::value, "a triplet holds floats or doubles");

    template <typename Array>
    using Matching = std::conditional_t<std::is_const<T>::value, const Array, Array>;

    static constexpr std::ptrdiff_t kNumber = sizeof(T);

public:
    using number_type = std::remove_const_t<T>;
    using value_type = TripletBase<number_type>;

    /// A view of nothing.
    constexpr TripletView() = default;

    /// n triplets side by side, x, y and z of each in turn.
    TripletView(T* first, std::size_t n) : TripletView(first, n, 3 * kNumber) {}

    /// @param stride           bytes from one triplet to the next
    /// @param componentStride  bytes from x to y and from y to z
    TripletView(T* first, std::size_t n, std::ptrdiff_t stride,
                std::ptrdiff_t componentStride = kNumber)
        : x_(first, n, stride),
          y_(behind(first, componentStride), n, stride),
          z_(behind(first, 2 * componentStride), n, stride) {}

    /// Components that lie apart.
    /// @throws data::invalid  (class "TripletView", method "constructor") if their sizes differ
    TripletView(const ScalarView<T>& x, const ScalarView<T>& y, const ScalarView<T>& z)
        : x_(x), y_(y), z_(z) {
        if (x.size() != y.size() || x.size() != z.size()) {
            throw data::invalid("TripletView", "constructor",
                                "The components have different sizes: " + std::to_string(x.size()) +
                                    ", " + std::to_string(y.size()) + " and " +
                                    std::to_string(z.size()) + ".",
                                argumentError);
        }
    }

    /// The triplets of an array; not explicit, so that arrays can stand where views are asked for.
    TripletView(Matching<value_type>* first, std::size_t n)
        : TripletView(reinterpret_cast<T*>(first), n) {}
    TripletView(Matching<std::vector<value_type>>& array)
        : TripletView(array.data(), array.size()) {}

    /// The same for the library's array of float triplets. A view that may write expires the
    /// array's statistics when it is made; after writing through it, expire them again by a call
    /// of the array's operator[].
    template <typename N = number_type, typename = std::enable_if_t<std::is_same<N, float>::value>>
    TripletView(Matching<TripletQELVector>& array)
        : TripletView(array.empty() ? nullptr : &array[0], array.size()) {}

    /// What may be written may be read.
    template <typename U, typename = std::enable_if_t<std::is_same<const U, T>::value>>
    TripletView(const TripletView<U>& other) : x_(other.x()), y_(other.y()), z_(other.z()) {}

    std::size_t size() const { return x_.size(); }
    bool empty() const { return x_.empty(); }

    const ScalarView<T>& x() const { return x_; }
    const ScalarView<T>& y() const { return y_; }
    const ScalarView<T>& z() const { return z_; }

    /// True if x, y and z of a triplet lie side by side, and each triplet the same number of bytes
    /// behind the one before.
    bool isInterleaved() const {
        return x_.stride() == y_.stride() && x_.stride() == z_.stride() && bytesTo(y_) == kNumber &&
               bytesTo(z_) == 2 * kNumber;
    }

    /// True if all numbers lie side by side.
    bool isContiguous() const { return isInterleaved() && x_.stride() == 3 * kNumber; }

    value_type operator[](std::size_t i) const { return {x_[i], y_[i], z_[i]}; }

    /// Writes triplet i. A view of triplets that are only read has no such member.
    template <typename U = T, typename = std::enable_if_t<!std::is_const<U>::value>>
    void set(std::size_t i, const value_type& value) const {
        x_.set(i, value.x);
        y_.set(i, value.y);
        z_.set(i, value.z);
    }

    /// n triplets from a first one on; they must lie inside the view (else the process ends).
    TripletView part(std::size_t first, std::size_t n) const {
        TripletView view;
        view.x_ = x_.part(first, n);
        view.y_ = y_.part(first, n);
        view.z_ = z_.part(first, n);
        return view;
    }

private:
    static T* behind(T* first, std::ptrdiff_t bytes) {
        using Byte = std::conditional_t<std::is_const<T>::value, const char, char>;
        return first == nullptr ? nullptr
                                : reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + bytes);
    }

    std::ptrdiff_t bytesTo(const ScalarView<T>& component) const {
        return static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(component.data()) -
                                           reinterpret_cast<std::uintptr_t>(x_.data()));
    }

    ScalarView<T> x_;
    ScalarView<T> y_;
    ScalarView<T> z_;
};

/// A view of n 3x3 tensors: three views of triplets, one for each row, wherever they lie.
///
///     TensorView<const double> gradients(solver.gradU, n);          // double gradU[n][9]
///     TensorView<const float> fromRows(gradU, gradV, gradW);        // three arrays of triplets
///
/// Row i of a velocity gradient is the gradient of velocity component i: element (0, 1) is du/dy.
/// Where du/dy lies in the place of dv/dx, transposed() reads it the right way round. T is float or
/// double, const where the tensors are only read. As ScalarView otherwise.
template <typename T>
class TensorView {
    static constexpr std::ptrdiff_t kNumber = sizeof(T);

public:
    using number_type = std::remove_const_t<T>;

    /// A view of nothing.
    constexpr TensorView() = default;

    /// n tensors side by side, the nine elements of each row by row.
    TensorView(T* first, std::size_t n) : TensorView(first, n, 9 * kNumber) {}

    /// @param stride        bytes from one tensor to the next
    /// @param rowStride     bytes from one row to the next
    /// @param columnStride  bytes from one element of a row to the next
    TensorView(T* first, std::size_t n, std::ptrdiff_t stride,
               std::ptrdiff_t rowStride = 3 * kNumber, std::ptrdiff_t columnStride = kNumber) {
        for (int i = 0; i < 3; ++i) {
            T* const row = first == nullptr
                               ? nullptr
                               : reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(first) +
                                                      static_cast<std::uintptr_t>(i * rowStride));
            rows_[i] = TripletView<T>(row, n, stride, columnStride);
        }
    }

    /// Rows that lie apart.
    /// @throws data::invalid  (class "TensorView", method "constructor") if their sizes differ
    TensorView(const TripletView<T>& row1, const TripletView<T>& row2, const TripletView<T>& row3)
        : rows_{row1, row2, row3} {
        if (row1.size() != row2.size() || row1.size() != row3.size()) {
            throw data::invalid("TensorView", "constructor",
                                "The rows have different sizes: " + std::to_string(row1.size()) +
                                    ", " + std::to_string(row2.size()) + " and " +
                                    std::to_string(row3.size()) + ".",
                                argumentError);
        }
    }

    /// What may be written may be read.
    template <typename U, typename = std::enable_if_t<std::is_same<const U, T>::value>>
    TensorView(const TensorView<U>& other) : rows_{other.row(0), other.row(1), other.row(2)} {}

    std::size_t size() const { return rows_[0].size(); }
    bool empty() const { return rows_[0].empty(); }

    /// Row 0, 1 or 2; any other ends the process.
    const TripletView<T>& row(int i) const {
        if (i < 0 || i > 2) {
            std::abort();
        }
        return rows_[i];
    }

    /// The same tensors with rows and columns exchanged.
    TensorView transposed() const {
        return {TripletView<T>(rows_[0].x(), rows_[1].x(), rows_[2].x()),
                TripletView<T>(rows_[0].y(), rows_[1].y(), rows_[2].y()),
                TripletView<T>(rows_[0].z(), rows_[1].z(), rows_[2].z())};
    }

    /// True if the nine elements of a tensor lie side by side, row by row, and each tensor the same
    /// number of bytes behind the one before.
    bool isInterleaved() const {
        const auto place = [this](int i) {
            return reinterpret_cast<std::uintptr_t>(rows_[i].x().data());
        };
        const auto stride = [this](int i) { return rows_[i].x().stride(); };
        return rows_[0].isInterleaved() && rows_[1].isInterleaved() && rows_[2].isInterleaved() &&
               place(1) - place(0) == 3 * sizeof(T) && place(2) - place(0) == 6 * sizeof(T) &&
               stride(1) == stride(0) && stride(2) == stride(0);
    }

    /// n tensors from a first one on; they must lie inside the view (else the process ends).
    TensorView part(std::size_t first, std::size_t n) const {
        return {rows_[0].part(first, n), rows_[1].part(first, n), rows_[2].part(first, n)};
    }

private:
    TripletView<T> rows_[3];
};

} // namespace qel

#endif
