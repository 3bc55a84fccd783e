#ifndef QEL_TENSOR_GRADIENTREADER_H
#define QEL_TENSOR_GRADIENTREADER_H

/// @file
/// Reads blocks of gradients from wherever a view shows them.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include <qel/StridedView.h>

#include "platform/Lanes.h"
#include "platform/Prefetch.h"
#include "platform/VectorDispatch.h"
#include "platform/VectorUnit.h"
#include "tensor/FieldMemory.h"
#include "tensor/GradientBlock.h"

namespace qel {

// -- Nine by nine ----

/// Tensors side by side, at any address.
template <typename Number>
struct NineByNine {
    static constexpr std::size_t kBytes = 9 * sizeof(Number);

    const char* first;

    QEL_KERNEL BasicGradient<Number> at(std::size_t k) const {
        Number t[9];
        std::memcpy(t, first + k * kBytes, sizeof t);
        return {t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8]};
    }
    QEL_KERNEL NineByNine after(std::size_t n) const { return {first + n * kBytes}; }
};

#if defined(QEL_SHUFFLES)

/// Nine registers in a row hold the tensors of as many points as one has lanes. An element stands
/// in every ninth of their numbers, and in every lane once, as nine and the number of lanes have no
/// common divisor. Of three registers in a row, two blends gather every third number, three
/// elements of different points; of three of these, two blends gather an element.
template <typename Number, std::size_t width>
class NineRegisters {
    using Lane = Lanes<Number, width>;
    using LaneIndices = std::make_index_sequence<width>;

public:
    QEL_KERNEL explicit NineRegisters(const char* from) {
        for (std::size_t i = 0; i < 9; ++i) {
            registers_[i] = Lane::read(from + i * Lane::kBytes);
        }
    }

    QEL_KERNEL BasicGradient<Lane> gradient() const {
        const Thirds x = thirds<0>(LaneIndices());
        const Thirds y = thirds<1>(LaneIndices());
        const Thirds z = thirds<2>(LaneIndices());
        return {element<0>(x, LaneIndices()), element<1>(y, LaneIndices()),
                element<2>(z, LaneIndices()), element<3>(x, LaneIndices()),
                element<4>(y, LaneIndices()), element<5>(z, LaneIndices()),
                element<6>(x, LaneIndices()), element<7>(y, LaneIndices()),
                element<8>(z, LaneIndices())};
    }

private:
    struct Thirds {
        Lane of[3];
    };

    /// Every third number from number `start` on.
    template <std::size_t start, std::size_t... lane>
    QEL_KERNEL Thirds thirds(std::index_sequence<lane...>) const {
        Thirds t;
        for (std::size_t i = 0; i < 3; ++i) {
            const auto two = __builtin_shufflevector(
                registers_[3 * i].value, registers_[3 * i + 1].value,
                blended(width, lane, registerWith(width, start, lane) == 1)...);
            t.of[i].value = __builtin_shufflevector(
                two, registers_[3 * i + 2].value,
                blended(width, lane, registerWith(width, start, lane) == 2)...);
        }
        return t;
    }

    /// The element of each point, in the order of memory.
    template <std::size_t which, std::size_t... lane>
    QEL_KERNEL static Lane element(const Thirds& t, std::index_sequence<lane...>) {
        const auto two = __builtin_shufflevector(t.of[0].value, t.of[1].value,
                                                 blended(width, lane, third<which>(lane) == 1)...);
        const auto gathered = __builtin_shufflevector(
            two, t.of[2].value, blended(width, lane, third<which>(lane) == 2)...);
        return {__builtin_shufflevector(gathered, gathered,
                                        static_cast<int>((9 * lane + which) % width)...)};
    }

    /// Which of the thirds holds the element in the lane.
    template <std::size_t which>
    static constexpr std::size_t third(std::size_t lane) {
        std::size_t i = 0;
        while (((3 * i + registerWith(width, which, lane)) * width + lane) % 9 != which) {
            ++i;
        }
        return i;
    }

    Lane registers_[9];
};

/// Asks for what lies ahead: the machine itself is slow to fetch one array where it could three.
template <std::size_t width, typename Number>
QEL_KERNEL BasicGradient<Lanes<Number, width>> groupAt(const NineByNine<Number>& tensors,
                                                       std::size_t from) {
    constexpr std::size_t kAhead = 4096;
    constexpr std::size_t kCacheLine = 64;
    const char* const group = tensors.after(from).first;
    for (std::size_t i = 0; i < width * tensors.kBytes; i += kCacheLine) {
        prefetchBehind(group, kAhead + i);
    }
    return NineRegisters<Number, width>(group).gradient();
}

template <std::size_t width, typename Number>
QEL_KERNEL void writeGroup(const BasicGradient<Lanes<Number, width>>& group, std::size_t from,
                           BasicGradientBlock<Number>& t) {
    const auto write =
        [from](const Lanes<Number, width>& lanes, Column<Number>& column)
            QEL_KERNEL_LAMBDA { lanes.write(reinterpret_cast<char*>(column.values + from)); };
    write(group.t11, t.t11), write(group.t12, t.t12), write(group.t13, t.t13);
    write(group.t21, t.t21), write(group.t22, t.t22), write(group.t23, t.t23);
    write(group.t31, t.t31), write(group.t32, t.t32), write(group.t33, t.t33);
}

#endif

template <typename Number, std::size_t floatLanes>
struct ReadNineByNine {
    QEL_KERNEL static std::size_t run(const NineByNine<Number>& tensors, std::size_t count,
                                      BasicGradientBlock<Number>* t) {
        std::size_t k = 0;
#if defined(QEL_SHUFFLES)
        constexpr std::size_t width = floatLanes * sizeof(float) / sizeof(Number);
        for (; count - k >= width; k += width) {
            writeGroup<width>(groupAt<width>(tensors, k), k, *t);
        }
#endif
        return k;
    }
};

// -- Three arrays of rows ----

template <std::size_t width>
struct ReadRows {
    QEL_KERNEL static std::size_t run(const GradientRows& rows, std::size_t count,
                                      GradientBlock* t) {
        load<width>(rows, count, *t);
        return count;
    }
};

// -- Any layout ----

/// The numbers of the view from a first one on.
template <typename Number>
void readColumn(const ScalarView<const Number>& view, std::size_t first, std::size_t count,
                Column<Number>& column) {
    const char* from = reinterpret_cast<const char*>(view.data()) +
                       static_cast<std::ptrdiff_t>(first) * view.stride();
    for (std::size_t k = 0; k < count; ++k, from += view.stride()) {
        std::memcpy(&column[k], from, sizeof(Number));
    }
}

template <typename Number>
void readColumns(const TripletView<const Number>& view, std::size_t first, std::size_t count,
                 Column<Number>& x, Column<Number>& y, Column<Number>& z) {
    readColumn(view.x(), first, count, x);
    readColumn(view.y(), first, count, y);
    readColumn(view.z(), first, count, z);
}

/// True if a C++ array could have these elements.
template <typename T>
bool isArray(const ScalarView<T>& view) {
    return view.isContiguous() && reinterpret_cast<std::uintptr_t>(view.data()) % alignof(T) == 0;
}
template <typename T>
bool isArray(const TripletView<T>& view) {
    return view.isContiguous() &&
           reinterpret_cast<std::uintptr_t>(view.x().data()) % alignof(T) == 0;
}

/// Of a view that is an array.
inline Elements<float> elementsOf(const ScalarView<float>& view) {
    return {view.data()};
}
inline Elements<TripletBase<float>> elementsOf(const TripletView<float>& view) {
    return {reinterpret_cast<TripletBase<float>*>(view.x().data())};
}
inline Triplets tripletsOf(const TripletView<const float>& view) {
    return {reinterpret_cast<const TripletBase<float>*>(view.x().data())};
}

template <typename Number>
class GradientReader {
public:
    explicit GradientReader(const TensorView<const Number>& view)
        : view_(view), layout_(layoutOf(view)) {}

    /// @param count  up to kBlock
    void read(std::size_t first, std::size_t count, BasicGradientBlock<Number>& t) const {
        if (layout_ == Layout::nineByNine) {
            const NineByNine<Number> tensors = nineByNine().after(first);
            for (std::size_t k = onFloatLanes<Kernel>(tensors, count, &t); k < count; ++k) {
                t.set(k, tensors.at(k));
            }
            return;
        }
        if constexpr (std::is_same_v<Number, float>) {
            if (layout_ == Layout::rows &&
                onFloatLanes<ReadRows>(rows().after(first), count, &t) > 0) {
                return;
            }
        }
        readColumns(view_.row(0), first, count, t.t11, t.t12, t.t13);
        readColumns(view_.row(1), first, count, t.t21, t.t22, t.t23);
        readColumns(view_.row(2), first, count, t.t31, t.t32, t.t33);
    }

    /// Calls use(memory), for memory that kernels read; returns false for other layouts. Of floats.
    template <typename Use>
    bool useMemory(const Use& use) const {
        if (layout_ == Layout::nineByNine) {
            use(nineByNine());
        } else if (layout_ == Layout::rows) {
            use(rows());
        }
        return layout_ != Layout::other;
    }

private:
    enum class Layout { nineByNine, rows, other };

    template <std::size_t floatLanes>
    using Kernel = ReadNineByNine<Number, floatLanes>;

    static Layout layoutOf(const TensorView<const Number>& view) {
        constexpr std::ptrdiff_t kTensor = 9 * sizeof(Number);
        if (view.isInterleaved() && view.row(0).x().stride() == kTensor) {
            return Layout::nineByNine;
        }
        const bool areRows = std::is_same_v<Number, float> && isArray(view.row(0)) &&
                             isArray(view.row(1)) && isArray(view.row(2));
        return areRows ? Layout::rows : Layout::other;
    }

    NineByNine<Number> nineByNine() const {
        return {reinterpret_cast<const char*>(view_.row(0).x().data())};
    }
    GradientRows rows() const {
        return {tripletsOf(view_.row(0)), tripletsOf(view_.row(1)), tripletsOf(view_.row(2))};
    }

    TensorView<const Number> view_;
    Layout layout_;
};

} // namespace qel

#endif
