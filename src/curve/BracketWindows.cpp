#include "curve/BracketWindows.h"

#include <algorithm>

#include "platform/VectorUnit.h"

#if defined(QEL_VECTOR_UNITS)

#include <immintrin.h>

namespace qel {
namespace {

constexpr std::size_t kWindow = 2 * kWindowGroup;

// Sixteen s-values in a row.
struct Window {
    __m512d low;
    __m512d high;

    QEL_AVX512 static Window at(const double* svalues) {
        return {_mm512_loadu_pd(svalues), _mm512_loadu_pd(svalues + kWindowGroup)};
    }

    QEL_AVX512 __m512d operator[](__m512i indices) const {
        return _mm512_permutex2var_pd(low, indices, high);
    }

    // How many of them are not above the parameter.
    QEL_AVX512 std::size_t countUpTo(double parameter) const {
        const __m512d s = _mm512_set1_pd(parameter);
        const unsigned ofLow = _mm512_cmp_pd_mask(low, s, _CMP_LE_OQ);
        const unsigned ofHigh = _mm512_cmp_pd_mask(high, s, _CMP_LE_OQ);
        return static_cast<std::size_t>(__builtin_popcount(ofLow | ofHigh << kWindowGroup));
    }

    // The last that is not above the parameter, for each lane; the first, if all are above.
    QEL_AVX512 __m512i lastUpTo(__m512d parameters) const {
        __m512i index = _mm512_setzero_si512();
        for (long long step = kWindowGroup; step > 0; step /= 2) {
            const __m512i probe = _mm512_add_epi64(index, _mm512_set1_epi64(step));
            const __mmask8 reached = _mm512_cmp_pd_mask((*this)[probe], parameters, _CMP_LE_OQ);
            index = _mm512_mask_mov_epi64(index, reached, probe);
        }
        return index;
    }
};

// Finds the brackets of one group in the window that begins at an s-value; false if not all are in
// it.
QEL_AVX512 bool findGroup(const Window& window, std::size_t begin, const double* parameters,
                          std::uint64_t* above, double* weights) {
    const __m512d s = _mm512_loadu_pd(parameters);
    const __m512i lo = window.lastUpTo(s);
    const __m512i hi = _mm512_add_epi64(lo, _mm512_set1_epi64(1)); // past the window, its begin
    const __m512d sLo = window[lo];
    const __m512d sHi = window[hi];
    const __mmask8 fromLow = _mm512_cmp_pd_mask(sLo, s, _CMP_LE_OQ);
    if (_mm512_mask_cmp_pd_mask(fromLow, s, sHi, _CMP_LT_OQ) != 0xff) {
        return false;
    }
    const __m512d weight = _mm512_div_pd(_mm512_sub_pd(s, sLo), _mm512_sub_pd(sHi, sLo));
    _mm512_storeu_pd(weights, weight);
    _mm512_storeu_si512(above,
                        _mm512_add_epi64(hi, _mm512_set1_epi64(static_cast<long long>(begin))));
    return true;
}

QEL_AVX512 std::size_t findGroups(const double* svalues, std::size_t size, std::size_t above,
                                  const double* parameters, std::size_t count,
                                  BracketBlock& block) {
    std::size_t found = 0;
    // Brackets of the first segment are left out: a parameter at the very start is none of it.
    for (std::size_t begin = above - 1;
         begin > 0 && begin + kWindow <= size && found + kWindowGroup <= count;
         found += kWindowGroup) {
        const Window window = Window::at(svalues + begin);
        if (!findGroup(window, begin, parameters + found, block.allAbove() + found,
                       block.weights() + found)) {
            break;
        }
        if (found + kWindowGroup < count) {
            begin += window.countUpTo(parameters[found + kWindowGroup]) - 1;
        }
    }
    return found;
}

} // namespace

std::size_t findInWindows(const double* svalues, std::size_t size, std::size_t above,
                          const double* parameters, std::size_t count, BracketBlock& block) {
    const std::size_t room = std::min(count, BracketBlock::kCount);
    return vectorUnit() == VectorUnit::avx512
               ? findGroups(svalues, size, above, parameters, room, block)
               : 0;
}

} // namespace qel

#else

namespace qel {

std::size_t findInWindows(const double*, std::size_t, std::size_t, const double*, std::size_t,
                          BracketBlock&) {
    return 0;
}

} // namespace qel

#endif
