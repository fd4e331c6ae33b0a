#include "graphics/CoverageInternal.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#include <algorithm>
#include <cmath>

#define VZ_AVX2 __attribute__((target("avx2")))
#define VZ_AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline

namespace Vz {

namespace {

// Four rows lie in one vector. All arithmetic is that of TraceRow; whole numbers are kept in doubles, which
// hold them exactly.

constexpr double Fine = 4294967296.0;

VZ_AVX2_INLINE __m256d All(double v) { return _mm256_set1_pd(v); }
VZ_AVX2_INLINE __m256d Or(__m256d a, __m256d b, __m256d isB) { return _mm256_blendv_pd(a, b, isB); }
/// Heights without their 32 further places.
VZ_AVX2_INLINE __m256d Whole(__m256d fine) { return _mm256_floor_pd(_mm256_mul_pd(fine, All(1 / Fine))); }
VZ_AVX2_INLINE __m256d Rounded(__m256d v) { return _mm256_floor_pd(_mm256_add_pd(v, All(0.5))); }
VZ_AVX2_INLINE __m128i Ints(__m256d v) { return _mm256_cvttpd_epi32(v); }

/// Where four pieces lie.
struct TPieces {
    __m256d Left, Right, Column, Height;
};

/// What is constant along an edge.
struct TEdgeVectors {
    __m256d X0, Y0, Slope, Rate, Begin, End;
    __m128i Sign;
    VZ_AVX2_INLINE explicit TEdgeVectors(const TTraceJob& job)
        : X0(All(job.X0))
        , Y0(All(job.Y0))
        , Slope(All(job.Slope))
        , Rate(All(job.Rate))
        , Begin(All(job.Begin))
        , End(All(job.End))
        , Sign(_mm_set1_epi32(job.Sign >> 31)) {}
    VZ_AVX2_INLINE __m256d At(__m256d y) const {
        return _mm256_add_pd(X0, _mm256_mul_pd(_mm256_sub_pd(y, Y0), Slope));
    }
    VZ_AVX2_INLINE TPieces In(__m256d rows) const {
        const __m256d y = _mm256_max_pd(rows, Begin);
        const __m256d nextY = _mm256_min_pd(_mm256_add_pd(rows, All(1)), End);
        const __m256d x = At(y);
        const __m256d nextX = At(nextY);
        const __m256d left = _mm256_min_pd(x, nextX);
        const __m256d height = _mm256_mul_pd(_mm256_sub_pd(nextY, y), All(TCoverage::One));
        return {left, _mm256_max_pd(x, nextX), _mm256_floor_pd(left), _mm256_max_pd(height, All(0))};
    }
    VZ_AVX2_INLINE __m128i Signed(__m256d v) const {
        return _mm_sub_epi32(_mm_xor_si128(Ints(v), Sign), Sign);
    }
};

/// Adds four numbers, each from its place on, to the first `count` of four rows.
VZ_AVX2_INLINE void Scatter(std::int32_t* steps, std::ptrdiff_t stride, __m128i places, int count,
                            const __m128i (&columns)[4]) {
    const __m128i a = _mm_unpacklo_epi32(columns[0], columns[1]);
    const __m128i b = _mm_unpackhi_epi32(columns[0], columns[1]);
    const __m128i c = _mm_unpacklo_epi32(columns[2], columns[3]);
    const __m128i d = _mm_unpackhi_epi32(columns[2], columns[3]);
    const auto add = [&](int place, __m128i numbers) VZ_AVX2 {
        __m128i* const at = reinterpret_cast<__m128i*>(steps + place);
        _mm_storeu_si128(at, _mm_add_epi32(_mm_loadu_si128(at), numbers));
        steps += stride;
    };
    add(_mm_extract_epi32(places, 0), _mm_unpacklo_epi64(a, c));
    if (count > 1) add(_mm_extract_epi32(places, 1), _mm_unpackhi_epi64(a, c));
    if (count > 2) add(_mm_extract_epi32(places, 2), _mm_unpacklo_epi64(b, d));
    if (count > 3) add(_mm_extract_epi32(places, 3), _mm_unpackhi_epi64(b, d));
}

/// Notes the columns that were touched. `inside` is all ones for the rows that count.
VZ_AVX2_INLINE void Note(TBandSpans& spans, int row, __m128i first, __m128i last, __m128i sum,
                         __m128i inside) {
    const auto at = [row](auto& numbers) { return reinterpret_cast<__m128i*>(numbers.data() + row); };
    const __m128i noFirst = _mm_set1_epi32(1 << 30);
    const __m128i noLast = _mm_set1_epi32(-1);
    const auto update = [](__m128i* place, __m128i value) VZ_AVX2 { _mm_storeu_si128(place, value); };
    update(at(spans.First),
           _mm_min_epi32(_mm_loadu_si128(at(spans.First)), _mm_blendv_epi8(noFirst, first, inside)));
    update(at(spans.Last),
           _mm_max_epi32(_mm_loadu_si128(at(spans.Last)), _mm_blendv_epi8(noLast, last, inside)));
    update(at(spans.Sum), _mm_add_epi32(_mm_loadu_si128(at(spans.Sum)), sum));
}

/// Adds pieces that lie in the box and touch at most three columns each.
VZ_AVX2_INLINE void AddPieces(const TTraceJob& job, const TEdgeVectors& edge, const TPieces& p, int row,
                              int count) {
    const __m256d border = _mm256_add_pd(p.Column, All(1));
    const __m256d crosses =
        _mm256_cmp_pd(p.Right, _mm256_add_pd(border, All(1)), _CMP_GT_OQ); // a whole column
    const __m256d firstFine = _mm256_add_pd(
        _mm256_floor_pd(_mm256_mul_pd(
            _mm256_min_pd(_mm256_mul_pd(_mm256_sub_pd(border, p.Left), edge.Rate), p.Height), All(Fine))),
        All(Fine / 2));
    const __m256d first = Whole(firstFine);
    const __m256d step = _mm256_floor_pd(_mm256_mul_pd(edge.Rate, All(Fine)));
    const __m256d second = _mm256_min_pd(Whole(_mm256_add_pd(firstFine, step)), p.Height);
    const __m256d before = Or(first, second, crosses);
    const __m256d rest = _mm256_sub_pd(p.Height, before);
    const __m256d half = All(0.5);
    // What passes to the second column, to the third where one is crossed, and behind the last.
    const __m256d middle =
        _mm256_sub_pd(_mm256_mul_pd(_mm256_add_pd(p.Left, _mm256_min_pd(p.Right, border)), half), p.Column);
    const __m256d passed = Rounded(_mm256_mul_pd(first, middle));
    const __m256d part = _mm256_sub_pd(second, first);
    const __m256d passedHalf = _mm256_floor_pd(_mm256_mul_pd(_mm256_add_pd(part, All(1)), half));
    const __m256d lastColumn = _mm256_add_pd(border, _mm256_and_pd(crosses, All(1)));
    const __m256d reach = _mm256_min_pd(_mm256_max_pd(_mm256_sub_pd(p.Right, lastColumn), All(0)), All(1));
    const __m256d passedOn = Rounded(_mm256_mul_pd(rest, _mm256_mul_pd(reach, half)));
    const __m256d restHere = _mm256_sub_pd(rest, passedOn);
    const __m256d values[4] = {
        _mm256_sub_pd(first, passed),
        _mm256_add_pd(passed, Or(restHere, _mm256_sub_pd(part, passedHalf), crosses)),
        Or(passedOn, _mm256_add_pd(passedHalf, restHere), crosses),
        _mm256_and_pd(crosses, passedOn),
    };
    const __m128i columns[4] = {edge.Signed(values[0]), edge.Signed(values[1]), edge.Signed(values[2]),
                                edge.Signed(values[3])};
    const __m128i inside = _mm_cmpgt_epi32(_mm_set1_epi32(count), _mm_setr_epi32(0, 1, 2, 3));
    const __m128i places = _mm_sub_epi32(Ints(p.Column), _mm_set1_epi32(job.BoxLeft));
    const __m128i last =
        _mm_add_epi32(_mm_sub_epi32(Ints(lastColumn), _mm_set1_epi32(job.BoxLeft)), _mm_set1_epi32(1));
    Scatter(job.Steps + row * job.Stride, job.Stride, places, count, columns);
    Note(*job.Spans, row, places, last, _mm_and_si128(edge.Signed(p.Height), inside), inside);
}

} // namespace

VZ_AVX2 void TraceRowsAvx2(const TTraceJob& job) {
    const TEdgeVectors edge(job);
    const __m256d boxLeft = All(job.BoxLeft);
    const __m256d boxRight = All(job.BoxRight);
    const int end = static_cast<int>(std::ceil(job.End)) - job.Top;
    for (int row = static_cast<int>(job.Begin - job.Top); row < end; row += 4) {
        const int count = std::min(end - row, 4);
        const __m256d rows = _mm256_add_pd(All(job.Top + row), _mm256_setr_pd(0, 1, 2, 3));
        const TPieces pieces = edge.In(rows);
        const __m256d within = _mm256_and_pd(_mm256_cmp_pd(pieces.Left, boxLeft, _CMP_GE_OQ),
                                             _mm256_cmp_pd(pieces.Left, boxRight, _CMP_LT_OQ));
        const __m256d fits =
            _mm256_and_pd(_mm256_cmp_pd(pieces.Right, boxRight, _CMP_LE_OQ),
                          _mm256_cmp_pd(pieces.Right, _mm256_add_pd(pieces.Column, All(3)), _CMP_LE_OQ));
        const int wanted = (1 << count) - 1;
        if ((_mm256_movemask_pd(_mm256_and_pd(within, fits)) & wanted) == wanted)
            AddPieces(job, edge, pieces, row, count);
        else
            for (int i = 0; i < count; ++i)
                TraceRow(job, row + i);
    }
}

} // namespace Vz

#endif
