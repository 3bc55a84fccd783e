// The vector road moves four points as a matrix of four by four and compares whole points, their
// last two fields along: half the instructions. It moves and compares what the plain road does.
// Where a block ends could not be foreseen, so the places behind get the last point, and only then
// infinity.

#include "spatial/BlockFill.h"

#include <algorithm>
#include <limits>

#include "platform/VectorUnit.h"

#if defined(QEL_VECTOR_UNITS)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

} // namespace

#if defined(QEL_VECTOR_UNITS)
namespace {

inline __m128 load(const PlanePoint& p) {
    static_assert(sizeof(PlanePoint) == sizeof(__m128), "a point is a row of the matrix");
    return _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&p)));
}

inline void store(std::uint32_t* place, __m128 values) {
    _mm_store_si128(reinterpret_cast<__m128i*>(place), _mm_castps_si128(values));
}

// The box of rows of the matrix.
struct Extremes {
    __m128 low, high;

    void takeIn(__m128 lowOfOther, __m128 highOfOther) {
        low = _mm_min_ps(lowOfOther, low);
        high = _mm_max_ps(highOfOther, high);
    }
    QuadRectangle box() const { return {low[0], low[1], high[0], high[1]}; }
};

} // namespace

QuadRectangle fillBlock(PointBlock& block, const PlanePoint* points, int count) {
    const auto row = [=](int i) { return load(points[std::min(i, count - 1)]); };
    const __m128 infinity = _mm_set1_ps(kInfinity);
    const __m128i end = _mm_set1_epi32(count);
    Extremes extremes = {row(0), row(0)};
    for (int i = 0; i < kLanes; i += 4) {
        __m128 x = row(i), y = row(i + 1), index = row(i + 2), leaf = row(i + 3);
        extremes.takeIn(_mm_min_ps(_mm_min_ps(x, y), _mm_min_ps(index, leaf)),
                        _mm_max_ps(_mm_max_ps(x, y), _mm_max_ps(index, leaf)));
        _MM_TRANSPOSE4_PS(x, y, index, leaf);
        const __m128i lanes = _mm_add_epi32(_mm_set_epi32(3, 2, 1, 0), _mm_set1_epi32(i));
        const __m128 isThere = _mm_castsi128_ps(_mm_cmplt_epi32(lanes, end));
        const __m128 beyond = _mm_andnot_ps(isThere, infinity);
        _mm_store_ps(block.x + i, _mm_or_ps(_mm_and_ps(isThere, x), beyond));
        _mm_store_ps(block.y + i, _mm_or_ps(_mm_and_ps(isThere, y), beyond));
        store(block.index + i, index);
        store(block.leaf + i, leaf);
    }
    return extremes.box();
}

QuadRectangle boxOf(const PlanePoint* points, std::size_t count) {
    Extremes extremes = {load(points[0]), load(points[0])};
    for (std::size_t i = 1; i < count; ++i) {
        extremes.takeIn(load(points[i]), load(points[i]));
    }
    return extremes.box();
}
#else
QuadRectangle fillBlock(PointBlock& block, const PlanePoint* points, int count) {
    for (int i = 0; i < kLanes; ++i) {
        const PlanePoint& p = points[std::min(i, count - 1)];
        block.x[i] = i < count ? p.x : kInfinity;
        block.y[i] = i < count ? p.y : kInfinity;
        block.index[i] = p.index;
        block.leaf[i] = p.group;
    }
    return boxOf(points, static_cast<std::size_t>(count));
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
