#ifndef QEL_BATCH_ARGUMENTCHECK_H
#define QEL_BATCH_ARGUMENTCHECK_H

/// @file
/// What every batch function checks before it writes: sizes of outputs, and that no output shares
/// memory with an input, with itself or with another output.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include <qel/StridedView.h>

namespace qel {

/// Memory as a view takes it up: groups of bytes, each a fixed number of bytes behind the one
/// before.
class StridedRange {
public:
    StridedRange() = default;
    StridedRange(const void* first, std::size_t count, std::ptrdiff_t stride, std::size_t width);

    /// True if two groups of this range may share a byte.
    bool overlapsItself() const;

    /// True if a group of this range may share a byte with one of the other. Ranges that lie apart
    /// do not, nor do columns of one table or record; what is neither is taken to.
    bool overlaps(const StridedRange& other) const;

private:
    std::uintptr_t low_ = 0;  // the lowest byte
    std::uintptr_t high_ = 0; // one beyond the highest
    std::uintptr_t step_ = 0; // bytes between groups, without sign
    std::size_t count_ = 0;
    std::size_t width_ = 0; // bytes of a group
};

/// Checks the arguments of one call. Each function throws data::invalid with the class and the
/// method of the call.
///
///     ArgumentCheck check("CurveLocator", "locate");
///     check.input(probes);
///     check.output("foot", out.foot, probes.size());
///     check.output("s", out.s, probes.size());
class ArgumentCheck {
public:
    ArgumentCheck(const char* className, const char* methodName)
        : className_(className), methodName_(methodName) {}

    /// All inputs come before all outputs.
    template <typename T>
    void input(const ScalarView<T>& view) {
        addInput(rangeOf(view));
    }
    template <typename T>
    void input(const TripletView<T>& view) {
        forEachRange(view, [this](const StridedRange& range) { addInput(range); });
    }
    template <typename T>
    void input(const TensorView<T>& view) {
        if (view.isInterleaved()) {
            const ScalarView<T>& first = view.row(0).x();
            addInput({first.data(), first.size(), first.stride(), 9 * sizeof(T)});
            return;
        }
        for (int i = 0; i < 3; ++i) {
            input(view.row(i));
        }
    }
    void input(const StridedRange& range) { addInput(range); }

    /// An output that is not empty must have the size, and memory of its own.
    template <typename View>
    void output(const char* name, const View& view, std::size_t size) {
        if (view.empty()) {
            return;
        }
        if (view.size() != size) {
            refuseSize(name, view.size(), size);
        }
        forEachRange(view, [this, name](const StridedRange& range) { addOutput(name, range); });
    }

    void output(const char* name, const StridedRange& range) { addOutput(name, range); }

    [[noreturn]] void refuse(const std::string& reason) const;

private:
    // Nine elements of a tensor and three of a velocity; and all outputs there are.
    static constexpr std::size_t kMaxRanges = 64;

    template <typename T>
    static StridedRange rangeOf(const ScalarView<T>& view) {
        return {view.data(), view.size(), view.stride(), sizeof(T)};
    }

    template <typename T, typename Take>
    static void forEachRange(const ScalarView<T>& view, const Take& take) {
        take(rangeOf(view));
    }
    template <typename T, typename Take>
    static void forEachRange(const TripletView<T>& view, const Take& take) {
        if (view.isInterleaved()) {
            take(StridedRange(view.x().data(), view.size(), view.x().stride(), 3 * sizeof(T)));
            return;
        }
        take(rangeOf(view.x()));
        take(rangeOf(view.y()));
        take(rangeOf(view.z()));
    }

    void addInput(const StridedRange& range);
    void addOutput(const char* name, const StridedRange& range);
    [[noreturn]] void refuseSize(const char* name, std::size_t size, std::size_t expected) const;

    const char* className_;
    const char* methodName_;
    struct Named {
        StridedRange range;
        const char* name = nullptr; // of an output; null for an input
    };
    std::array<Named, kMaxRanges> ranges_;
    std::size_t count_ = 0;
};

} // namespace qel

#endif
