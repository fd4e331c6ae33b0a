#pragma once

#include "tavro/graphics/Bitmap.h"

#include <cstring>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Bench {

using namespace Vz;

struct TBitmap {
    explicit TBitmap(int size)
        : Store(std::size_t(size) * std::size_t(size)) {
        Pixels = {Store.data(), size, size, size};
    }
    std::vector<std::uint32_t> Store;
    TPixels Pixels;
};

#if defined(__x86_64__)
__attribute__((target("avx2"), always_inline)) inline __m256i PlainOver(__m256i over, __m256i under) {
    const __m256i low = _mm256_set1_epi16(0x00FF);
    const __m256i half = _mm256_set1_epi16(128);
    const __m256i by257 = _mm256_set1_epi16(257);
    const __m256i alphas = _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1, 3, -1,
                                            3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1);
    const __m256i rest = _mm256_sub_epi16(low, _mm256_shuffle_epi8(over, alphas));
    __m256i even = _mm256_mullo_epi16(_mm256_and_si256(under, low), rest);
    __m256i odd = _mm256_mullo_epi16(_mm256_srli_epi16(under, 8), rest);
    even = _mm256_mulhi_epu16(_mm256_add_epi16(even, half), by257);
    odd = _mm256_mulhi_epu16(_mm256_add_epi16(odd, half), by257);
    return _mm256_add_epi8(over, _mm256_or_si256(even, _mm256_slli_epi16(odd, 8)));
}

/// Pixels over a row without looking at what they are.
__attribute__((target("avx2"))) inline void BlendPlain(std::uint32_t* row, const std::uint32_t* pixels,
                                                       int count) {
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i over = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + i));
        const __m256i under = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + i), PlainOver(over, under));
    }
    if (i == count) return;
    const __m256i lanes =
        _mm256_cmpgt_epi32(_mm256_set1_epi32(count - i), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const __m256i over = _mm256_maskload_epi32(reinterpret_cast<const int*>(pixels + i), lanes);
    const __m256i under = _mm256_maskload_epi32(reinterpret_cast<const int*>(row + i), lanes);
    _mm256_maskstore_epi32(reinterpret_cast<int*>(row + i), lanes, PlainOver(over, under));
}
#else
inline void Over(std::uint32_t& row, std::uint32_t pixel) {
    std::uint32_t sum = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t t = (row >> shift & 255) * (255 - (pixel >> 24)) + 128;
        sum |= ((pixel >> shift & 255) + ((t + (t >> 8)) >> 8)) << shift;
    }
    row = sum;
}

inline void BlendPlain(std::uint32_t* row, const std::uint32_t* pixels, int count) {
    for (int i = 0; i < count; ++i)
        Over(row[i], pixels[i]);
}
#endif

/// The least that a frame between two kept layers takes: one copy and two blends of the stale rectangle.
inline void PaintFloor(const TBitmap& frame, const TRect& stale, const TBitmap* const (&layers)[3]) {
    const auto width = static_cast<std::size_t>(stale.Width());
    for (int y = stale.Top; y < stale.Bottom; ++y)
        std::memcpy(frame.Pixels.Row(y) + stale.Left, layers[0]->Pixels.Row(y) + stale.Left, width * 4);
    for (const TBitmap* const layer : {layers[1], layers[2]})
        for (int y = stale.Top; y < stale.Bottom; ++y)
            BlendPlain(frame.Pixels.Row(y) + stale.Left, layer->Pixels.Row(y) + stale.Left, stale.Width());
}

} // namespace Bench
