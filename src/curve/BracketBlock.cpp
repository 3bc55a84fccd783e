#include "curve/BracketBlock.h"

#include "platform/Lanes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

QEL_KERNEL Point interpolated(const BracketBlock& block, const Point* points, std::size_t k) {
    const Point* const upper = points + block.above(k);
    return upper[-1] + (upper[0] - upper[-1]) * block.weight(k);
}

struct PlainKernel {
    QEL_KERNEL static void run(const BracketBlock* block, const Point* points, std::size_t count,
                               Point* out) {
        for (std::size_t k = 0; k < count; ++k) {
            out[k] = interpolated(*block, points, k);
        }
    }
};

#if defined(QEL_SHUFFLES)

// Four numbers at a time: a point and one that belongs to its neighbour. The lower point is read
// with the x after it, the upper one with the z before it, so that nothing beyond the two is read.
// The fourth number written is overwritten by the next point; the last point is written by itself.
struct RowsKernel {
    using Row = Lanes<double, 4>;

    QEL_KERNEL static void run(const BracketBlock* block, const Point* points, std::size_t count,
                               Point* out) {
        static_assert(sizeof(Point) == 3 * sizeof(double), "points lie side by side");
        for (std::size_t k = 0; k + 1 < count; ++k) {
            const Point* const lower = points + block->above(k) - 1;
            const Row lo = Row::read(reinterpret_cast<const char*>(&lower->x));
            const Row zAndUpper = Row::read(reinterpret_cast<const char*>(&lower->z));
            const Row hi = {__builtin_shufflevector(zAndUpper.value, zAndUpper.value, 1, 2, 3, 0)};
            (lo + (hi - lo) * block->weight(k)).write(reinterpret_cast<char*>(out + k));
        }
        if (count > 0) {
            out[count - 1] = interpolated(*block, points, count - 1);
        }
    }
};

#else

using RowsKernel = PlainKernel;

#endif

} // namespace

void BracketBlock::interpolate(const Point* points, std::size_t count, Point* out) const {
#if defined(QEL_VECTOR_UNITS)
    if (vectorUnit() != VectorUnit::portable) { // four numbers are one register of either unit
        return runAvx2<RowsKernel>(this, points, count, out);
    }
#endif
    runPortable<PlainKernel>(this, points, count, out);
}

} // namespace qel
