#include "tavro/graphics/raster/CoverageTraceInternal.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#include <cmath>

#define VZ_AVX2 __attribute__((target("avx2")))
#define VZ_AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline

namespace Vz {

namespace {

// Eight rows lie in one vector. All arithmetic is that of TraceRow.

constexpr int Lanes = 8;

VZ_AVX2_INLINE __m256d AllD(double v) { return _mm256_set1_pd(v); }
VZ_AVX2_INLINE __m256 All(float v) { return _mm256_set1_ps(v); }
VZ_AVX2_INLINE __m256i All(int v) { return _mm256_set1_epi32(v); }
VZ_AVX2_INLINE __m256i Ints(__m256 v) { return _mm256_cvttps_epi32(v); }
VZ_AVX2_INLINE __m256 Whole(__m256 v) { return _mm256_round_ps(v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC); }

/// Where eight pieces lie: Left and Right count from Column on, and Part is how much of the row they cover.
struct TPieces {
    __m256i Column;
    __m256 Left, Right, Part;
};

/// What is constant along an edge.
struct TEdgeVectors {
    __m256d X0, Y0, Y1, Slope;
    __m256 Run; ///< how far it goes to the right in a row
    __m256 Rate;
    __m256 SignBit; ///< set where it rises
    VZ_AVX2_INLINE explicit TEdgeVectors(const TTraceEdge& edge)
        : X0(AllD(edge.X0))
        , Y0(AllD(edge.Y0))
        , Y1(AllD(edge.Y1))
        , Slope(AllD(edge.Slope))
        , Run(All(static_cast<float>(edge.Slope)))
        , Rate(All(edge.Rate))
        , SignBit(All(edge.Sign < 0 ? -0.0F : 0.0F)) {}
    VZ_AVX2_INLINE __m256 Signed(__m256 v) const { return _mm256_xor_ps(v, SignBit); }

    VZ_AVX2_INLINE TPieces From(int row) const {
        const __m256d rows = _mm256_add_pd(AllD(row), _mm256_setr_pd(0, 1, 2, 3));
        const THalf low = HalfFrom(rows);
        const THalf high = HalfFrom(_mm256_add_pd(rows, AllD(4)));
        const __m256 from = _mm256_set_m128(high.From, low.From);
        const __m256 part = _mm256_set_m128(high.Part, low.Part);
        const __m256 run = _mm256_mul_ps(part, Run);
        const __m256 left = _mm256_add_ps(from, _mm256_min_ps(run, _mm256_setzero_ps()));
        const __m256 right = _mm256_add_ps(from, _mm256_max_ps(run, _mm256_setzero_ps()));
        const __m256 shift = _mm256_floor_ps(left);
        return {_mm256_add_epi32(_mm256_set_m128i(high.Column, low.Column), Ints(shift)),
                _mm256_sub_ps(left, shift), _mm256_sub_ps(right, shift), part};
    }

private:
    struct THalf {
        __m128i Column;
        __m128 From, Part;
    };
    VZ_AVX2_INLINE THalf HalfFrom(__m256d rows) const {
        const __m256d y = _mm256_max_pd(rows, Y0);
        const __m256d nextY = _mm256_min_pd(_mm256_add_pd(rows, AllD(1)), Y1);
        const __m256d x = _mm256_add_pd(X0, _mm256_mul_pd(_mm256_sub_pd(y, Y0), Slope));
        const __m256d column = _mm256_floor_pd(x);
        return {_mm256_cvttpd_epi32(column), _mm256_cvtpd_ps(_mm256_sub_pd(x, column)),
                _mm256_cvtpd_ps(_mm256_sub_pd(nextY, y))};
    }
};

/// Adds four numbers, each from its place on, to the first `count` of eight rows.
VZ_AVX2_INLINE void Scatter(std::int32_t* steps, std::ptrdiff_t stride, __m256i places, int count,
                            const __m256i (&columns)[4]) {
    const __m256i a = _mm256_unpacklo_epi32(columns[0], columns[1]);
    const __m256i b = _mm256_unpackhi_epi32(columns[0], columns[1]);
    const __m256i c = _mm256_unpacklo_epi32(columns[2], columns[3]);
    const __m256i d = _mm256_unpackhi_epi32(columns[2], columns[3]);
    const __m256i rows[4] = {_mm256_unpacklo_epi64(a, c), _mm256_unpackhi_epi64(a, c),
                             _mm256_unpacklo_epi64(b, d), _mm256_unpackhi_epi64(b, d)};
    alignas(32) std::int32_t place[Lanes];
    _mm256_store_si256(reinterpret_cast<__m256i*>(place), places);
    const auto add = [&](int row, __m128i numbers) VZ_AVX2 {
        __m128i* const at = reinterpret_cast<__m128i*>(steps + row * stride + place[row]);
        _mm_storeu_si128(at, _mm_add_epi32(_mm_loadu_si128(at), numbers));
    };
    for (int i = 0; i < 4; ++i) {
        if (i < count) add(i, _mm256_castsi256_si128(rows[i]));
    }
    for (int i = 0; i < 4; ++i) {
        if (i + 4 < count) add(i + 4, _mm256_extracti128_si256(rows[i], 1));
    }
}

/// Notes the columns that were touched. `inside` is all ones for the rows that count.
VZ_AVX2_INLINE void Note(TTraceBand& band, std::size_t row, __m256i first, __m256i last, __m256i sum,
                         __m256i inside) {
    const auto at = [row](auto& numbers) { return reinterpret_cast<__m256i*>(numbers.data() + row); };
    const auto update = [](__m256i* place, __m256i value) VZ_AVX2 { _mm256_storeu_si256(place, value); };
    update(at(band.First), _mm256_min_epi32(_mm256_loadu_si256(at(band.First)),
                                            _mm256_blendv_epi8(All(1 << 30), first, inside)));
    update(at(band.Last),
           _mm256_max_epi32(_mm256_loadu_si256(at(band.Last)), _mm256_blendv_epi8(All(-1), last, inside)));
    update(at(band.Sum), _mm256_add_epi32(_mm256_loadu_si256(at(band.Sum)), _mm256_and_si256(sum, inside)));
}

/// Adds narrow pieces whose first columns are in the box.
VZ_AVX2_INLINE void AddPieces(TTraceBand& band, const TEdgeVectors& edge, const TPieces& p, __m256i places,
                              int row, int count) {
    const __m256 zero = _mm256_setzero_ps();
    const __m256 one = All(1.0F);
    const __m256 half = All(0.5F);
    const __m256 height = _mm256_mul_ps(p.Part, All(float(TCoverage::One)));
    const auto heightAt = [&](float border) VZ_AVX2 {
        const __m256 there = _mm256_mul_ps(_mm256_sub_ps(All(border), p.Left), edge.Rate);
        return Whole(_mm256_add_ps(_mm256_min_ps(there, height), half));
    };
    const __m256 firstTwo = heightAt(2);
    // From here on numbers have the edge's sign.
    const __m256 signedHalf = edge.Signed(half);
    const auto passed = [&](__m256 here, __m256 ends) VZ_AVX2 {
        return Ints(_mm256_add_ps(_mm256_mul_ps(here, _mm256_mul_ps(ends, half)), signedHalf));
    };
    const auto reach = [&](float column) VZ_AVX2 {
        return _mm256_min_ps(_mm256_max_ps(_mm256_sub_ps(p.Right, All(column)), zero), one);
    };
    const __m256 heights[3] = {edge.Signed(heightAt(1)), edge.Signed(_mm256_sub_ps(firstTwo, heightAt(1))),
                               edge.Signed(_mm256_sub_ps(height, firstTwo))};
    const __m256i passes[3] = {passed(heights[0], _mm256_add_ps(p.Left, _mm256_min_ps(p.Right, one))),
                               passed(heights[1], reach(1)), passed(heights[2], reach(2))};
    const __m256i columns[4] = {
        _mm256_sub_epi32(Ints(heights[0]), passes[0]),
        _mm256_sub_epi32(_mm256_add_epi32(passes[0], Ints(heights[1])), passes[1]),
        _mm256_sub_epi32(_mm256_add_epi32(passes[1], Ints(heights[2])), passes[2]),
        passes[2],
    };
    const auto at = static_cast<std::size_t>(row - band.Top);
    Scatter(band.Steps + static_cast<std::ptrdiff_t>(at) * band.Stride, band.Stride, places, count, columns);
    const __m256i crossed = Ints(_mm256_max_ps(_mm256_ceil_ps(p.Right), one));
    const __m256i inside = _mm256_cmpgt_epi32(All(count), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    Note(band, at, places, _mm256_add_epi32(places, crossed), Ints(edge.Signed(height)), inside);
}

/// The same vector one lane further, with `first` in the first.
VZ_AVX2_INLINE __m256i Moved(__m256i v, __m256i first) {
    return _mm256_blend_epi32(_mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(7, 0, 1, 2, 3, 4, 5, 6)),
                              first, 1);
}
VZ_AVX2_INLINE __m256i LastOf(__m256i v) { return _mm256_permutevar8x32_epi32(v, All(7)); }
VZ_AVX2_INLINE __m256i Bits(__m256 v) { return _mm256_castps_si256(v); }
VZ_AVX2_INLINE __m256 Floats(__m256i v) { return _mm256_castsi256_ps(v); }

/// TraceWidePiece, eight columns at a time.
VZ_AVX2 void TraceWidePieceAvx2(const TTracePiece& piece, std::int64_t column, std::int64_t count, int sign,
                                std::int32_t* steps, int width) {
    constexpr std::int64_t mostExact = 1 << 24; // numbers of columns that floats hold
    if (count > mostExact) return TraceWidePiece(piece, column, count, sign, steps, width);
    const TWideStart start = StartWide(piece, -column, count);
    if (start.Column > 0) AddWinding(steps[0], sign * (static_cast<int>(start.Height) - start.Passed));
    const __m256 zero = _mm256_setzero_ps();
    const __m256 one = All(1.0F);
    const __m256 half = All(0.5F);
    const __m256 height = All(piece.Height);
    const __m256i signs = All(sign >> 31);
    __m256 before = All(start.Height);
    __m256i passed = All(start.Passed);
    const int end = static_cast<int>(std::min(count, width - column));
    for (int k = static_cast<int>(start.Column); k <= end; k += Lanes) {
        const __m256i columns = _mm256_add_epi32(All(k), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
        const __m256 place = _mm256_cvtepi32_ps(columns);
        const __m256 next = _mm256_add_ps(place, one);
        const __m256 there = _mm256_mul_ps(_mm256_sub_ps(next, All(piece.Left)), All(piece.Rate));
        const __m256 within = _mm256_cmp_ps(next, All(static_cast<float>(count)), _CMP_LT_OQ);
        const __m256 after =
            _mm256_blendv_ps(height, Whole(_mm256_add_ps(_mm256_min_ps(there, height), half)), within);
        const __m256 here = _mm256_sub_ps(after, Floats(Moved(Bits(after), Bits(before))));
        const __m256 ends =
            _mm256_add_ps(_mm256_max_ps(_mm256_sub_ps(All(piece.Left), place), zero),
                          _mm256_min_ps(_mm256_max_ps(_mm256_sub_ps(All(piece.Right), place), zero), one));
        const __m256i passedOn = Ints(_mm256_add_ps(_mm256_mul_ps(here, _mm256_mul_ps(ends, half)), half));
        const __m256i sum = _mm256_sub_epi32(_mm256_add_epi32(Moved(passedOn, passed), Ints(here)), passedOn);
        const __m256i inBox = _mm256_cmpgt_epi32(All(static_cast<int>(width - column)), columns);
        const __m256i change = _mm256_and_si256(_mm256_sub_epi32(_mm256_xor_si256(sum, signs), signs), inBox);
        __m256i* const at = reinterpret_cast<__m256i*>(steps + column + k);
        _mm256_storeu_si256(at, _mm256_add_epi32(_mm256_loadu_si256(at), change));
        before = Floats(LastOf(Bits(after)));
        passed = LastOf(passedOn);
    }
}

} // namespace

VZ_AVX2 void TraceEdgeAvx2(const TTraceEdge& edge, TTraceBand& band) {
    constexpr int fewRows = 2;
    constexpr double mostRun = 2; // columns a row: beyond it pieces are not narrow
    const int first = static_cast<int>(std::floor(std::max(edge.Y0, double(band.Top))));
    const int end = static_cast<int>(std::ceil(std::min(edge.Y1, double(band.Bottom))));
    if (end - first <= fewRows || std::abs(edge.Slope) > mostRun) {
        for (int row = first; row < end; ++row)
            TraceRow(edge, band, row, TraceWidePieceAvx2);
        return;
    }
    const TEdgeVectors vectors(edge);
    for (int row = first; row < end; row += Lanes) {
        const int count = std::min(end - row, Lanes);
        const TPieces pieces = vectors.From(row);
        const __m256i places = _mm256_sub_epi32(pieces.Column, All(band.Left));
        const __m256i within = _mm256_andnot_si256(_mm256_cmpgt_epi32(_mm256_setzero_si256(), places),
                                                   _mm256_cmpgt_epi32(All(band.Width), places));
        const __m256 narrow = _mm256_cmp_ps(pieces.Right, All(float(TTracePiece::Narrow)), _CMP_LE_OQ);
        const int wanted = (1 << count) - 1;
        const int fit = _mm256_movemask_ps(_mm256_and_ps(narrow, _mm256_castsi256_ps(within)));
        if ((fit & wanted) == wanted)
            AddPieces(band, vectors, pieces, places, row, count);
        else
            for (int i = 0; i < count; ++i)
                TraceRow(edge, band, row + i, TraceWidePieceAvx2);
    }
}

} // namespace Vz

#endif
