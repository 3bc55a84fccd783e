// The vector road moves four points as a matrix of four by four and compares whole points, their
// last two fields along: half the instructions. It moves and compares what the plain road does.

#include "spatial/BlockFill.h"

#include <limits>

#include "platform/VectorUnit.h"

#if defined(QEL_VECTOR_UNITS)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr PlanePoint kNoPoint = {kInfinity, kInfinity, 0, 0};

} // namespace

#if defined(QEL_VECTOR_UNITS)
namespace {

inline __m128 load(const PlanePoint& p) {
    static_assert(sizeof(PlanePoint) == sizeof(__m128), "a point is a row of the matrix");
    return _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&p)));
}

} // namespace

void fillBlock(PointBlock& block, const PlanePoint* points, int count) {
    const auto row = [=](int i) { return load(i < count ? points[i] : kNoPoint); };
    for (int i = 0; i < kLanes; i += 4) {
        __m128 x = row(i), y = row(i + 1), index = row(i + 2), leaf = row(i + 3);
        _MM_TRANSPOSE4_PS(x, y, index, leaf);
        _mm_store_ps(block.x + i, x);
        _mm_store_ps(block.y + i, y);
        _mm_store_si128(reinterpret_cast<__m128i*>(block.index + i), _mm_castps_si128(index));
        _mm_store_si128(reinterpret_cast<__m128i*>(block.leaf + i), _mm_castps_si128(leaf));
    }
}

QuadRectangle boxOf(const PlanePoint* points, std::size_t count) {
    __m128 low = load(points[0]), high = low;
    for (std::size_t i = 1; i < count; ++i) {
        const __m128 p = load(points[i]);
        low = _mm_min_ps(p, low);
        high = _mm_max_ps(p, high);
    }
    return {low[0], low[1], high[0], high[1]};
}
#else
void fillBlock(PointBlock& block, const PlanePoint* points, int count) {
    for (int i = 0; i < kLanes; ++i) {
        const PlanePoint& p = i < count ? points[i] : kNoPoint;
        block.x[i] = p.x;
        block.y[i] = p.y;
        block.index[i] = p.index;
        block.leaf[i] = p.group;
    }
}

QuadRectangle boxOf(const PlanePoint* points, std::size_t count) {
    QuadRectangle box = {points[0].x, points[0].y, points[0].x, points[0].y};
    for (std::size_t i = 1; i < count; ++i) {
        extend(box, {points[i].x, points[i].y, points[i].x, points[i].y});
    }
    return box;
}
#endif

} // namespace qel
