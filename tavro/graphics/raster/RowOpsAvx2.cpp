#include "tavro/graphics/raster/RowOpsInternal.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#include <cstring>

/// On every function that uses the instructions: the rest of the library must run without them.
#define VZ_AVX2 __attribute__((target("avx2")))
#define VZ_AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline

namespace Vz {

namespace {

// Eight pixels lie in one vector. Their channels are worked on as 16-bit numbers, "even" the blue and red
// ones, "odd" green and alpha.

struct TChannels {
    __m256i Even, Odd;
};

VZ_AVX2_INLINE __m256i Load(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}
VZ_AVX2_INLINE void Store(void* to, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(to), v); }

VZ_AVX2_INLINE TChannels Split(__m256i pixels) {
    return {_mm256_and_si256(pixels, _mm256_set1_epi16(0xFF)), _mm256_srli_epi16(pixels, 8)};
}

VZ_AVX2_INLINE __m256i Joined(const TChannels& c) {
    return _mm256_or_si256(c.Even, _mm256_slli_epi16(c.Odd, 8));
}

/// MulDiv255 of 16-bit numbers.
VZ_AVX2_INLINE __m256i Times(__m256i value, __m256i by) {
    const __m256i t = _mm256_add_epi16(_mm256_mullo_epi16(value, by), _mm256_set1_epi16(128));
    return _mm256_mulhi_epu16(t, _mm256_set1_epi16(257));
}

VZ_AVX2_INLINE TChannels Times(const TChannels& c, __m256i by) {
    return {Times(c.Even, by), Times(c.Odd, by)};
}

/// One number 0..255 a pixel, for both of its channels.
VZ_AVX2_INLINE __m256i Doubled(__m256i perPixel) {
    return _mm256_or_si256(perPixel, _mm256_slli_epi32(perPixel, 16));
}

VZ_AVX2_INLINE __m256i Over(const TChannels& over, __m256i under) {
    const __m256i alphas = _mm256_setr_epi8(2, -1, 2, -1, 6, -1, 6, -1, 10, -1, 10, -1, 14, -1, 14, -1, 2, -1,
                                            2, -1, 6, -1, 6, -1, 10, -1, 10, -1, 14, -1, 14, -1);
    const __m256i rest = _mm256_sub_epi16(_mm256_set1_epi16(0xFF), _mm256_shuffle_epi8(over.Odd, alphas));
    return _mm256_adds_epu8(Joined(over), Joined(Times(Split(under), rest)));
}

/// All ones in the first `count` of eight lanes.
VZ_AVX2_INLINE __m256i FirstLanes(int count) {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(count), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

VZ_AVX2_INLINE bool IsZero(__m256i v) { return _mm256_testz_si256(v, v); }

/// Whether 32 steps are.
VZ_AVX2_INLINE bool AreZero(const std::int32_t* steps) {
    return IsZero(_mm256_or_si256(_mm256_or_si256(Load(steps), Load(steps + 8)),
                                  _mm256_or_si256(Load(steps + 16), Load(steps + 24))));
}

/// Eight steps summed up, from the windings in `before` on.
VZ_AVX2_INLINE __m256i Summed(__m256i steps, __m256i before) {
    __m256i sum = _mm256_add_epi32(steps, _mm256_slli_si256(steps, 4));
    sum = _mm256_add_epi32(sum, _mm256_slli_si256(sum, 8));
    const __m256i lower = _mm256_permute2x128_si256(sum, sum, 0x08);
    sum = _mm256_add_epi32(sum, _mm256_shuffle_epi32(lower, 0xFF));
    return _mm256_add_epi32(sum, before);
}

/// Coverage 0..255, one a pixel, of eight windings.
template <TFillRule Rule> VZ_AVX2_INLINE __m256i CoverageOf(__m256i windings) {
    const __m256i one = _mm256_set1_epi32(TCoverage::One);
    __m256i area = _mm256_abs_epi32(windings);
    if constexpr (Rule == TFillRule::EvenOdd) {
        area = _mm256_and_si256(area, _mm256_set1_epi32(2 * TCoverage::One - 1));
        area = _mm256_min_epi32(area, _mm256_sub_epi32(_mm256_add_epi32(one, one), area));
    } else
        area = _mm256_min_epu32(area, one);
    const __m256i scaled = _mm256_sub_epi32(_mm256_slli_epi32(area, 8), area);
    return _mm256_srli_epi32(_mm256_add_epi32(scaled, _mm256_set1_epi32(TCoverage::One / 2)), 16);
}

// Paints: eight pixels from device column x on.

struct TSolidFetch {
    __m256i All;
    TChannels Channels;
    bool IsOpaque;
    VZ_AVX2_INLINE explicit TSolidFetch(std::uint32_t pixel)
        : All(_mm256_set1_epi32(static_cast<int>(pixel)))
        , Channels(Split(All))
        , IsOpaque(pixel >> 24 == 255) {}
    VZ_AVX2_INLINE void BeginRow(int) {}
    VZ_AVX2_INLINE __m256i Pixels(int) const { return All; }
    VZ_AVX2_INLINE TChannels ChannelsOf(__m256i) const { return Channels; }
};

/// What the others share.
struct TPixelFetch {
    VZ_AVX2_INLINE static TChannels ChannelsOf(__m256i pixels) { return Split(pixels); }
};

VZ_AVX2_INLINE __m256i Entries(const std::uint32_t* table, __m256i indices) {
    return _mm256_i32gather_epi32(reinterpret_cast<const int*>(table), indices, 4);
}

VZ_AVX2_INLINE __m256d Columns(int x) { return _mm256_add_pd(_mm256_set1_pd(x), _mm256_setr_pd(0, 1, 2, 3)); }

VZ_AVX2_INLINE __m256d Place(double first, double step, __m256d columns) {
    return _mm256_add_pd(_mm256_set1_pd(first), _mm256_mul_pd(columns, _mm256_set1_pd(step)));
}

/// RampEntry of four doubles.
template <TSpread Spread> VZ_AVX2_INLINE __m128i RampEntries(__m256d t) {
    const __m256d half = _mm256_set1_pd(0.5);
    if constexpr (Spread == TSpread::Repeat)
        t = _mm256_sub_pd(t, _mm256_floor_pd(t));
    else if constexpr (Spread == TSpread::Reflect) {
        t = _mm256_mul_pd(t, half);
        t = _mm256_sub_pd(t, _mm256_floor_pd(_mm256_add_pd(t, half)));
        t = _mm256_andnot_pd(_mm256_set1_pd(-0.0), t);
        t = _mm256_add_pd(t, t);
    }
    const __m256d last = _mm256_set1_pd(TGradientRamp::Size - 1);
    t = _mm256_add_pd(_mm256_mul_pd(t, last), half);
    t = _mm256_min_pd(_mm256_max_pd(t, _mm256_setzero_pd()), last);
    return _mm256_cvttpd_epi32(t);
}

/// RampEntry of eight floats.
template <TSpread Spread> VZ_AVX2_INLINE __m256i RampEntries(__m256 t) {
    const __m256 half = _mm256_set1_ps(0.5f);
    if constexpr (Spread == TSpread::Repeat)
        t = _mm256_sub_ps(t, _mm256_floor_ps(t));
    else if constexpr (Spread == TSpread::Reflect) {
        t = _mm256_mul_ps(t, half);
        t = _mm256_sub_ps(t, _mm256_floor_ps(_mm256_add_ps(t, half)));
        t = _mm256_andnot_ps(_mm256_set1_ps(-0.0f), t);
        t = _mm256_add_ps(t, t);
    }
    const __m256 last = _mm256_set1_ps(TGradientRamp::Size - 1);
    t = _mm256_add_ps(_mm256_mul_ps(t, last), half);
    t = _mm256_min_ps(_mm256_max_ps(t, _mm256_setzero_ps()), last);
    return _mm256_cvttps_epi32(t);
}

/// Eight places as floats.
VZ_AVX2_INLINE __m256 Places(double first, double step, int x) {
    const __m256d columns = Columns(x);
    const __m256d further = _mm256_add_pd(columns, _mm256_set1_pd(4));
    return _mm256_set_m128(_mm256_cvtpd_ps(Place(first, step, further)),
                           _mm256_cvtpd_ps(Place(first, step, columns)));
}

template <TSpread Spread> struct TLinearFetch : TPixelFetch {
    const TRampWalk& Walk;
    TPointD First;
    bool IsOpaque;
    VZ_AVX2_INLINE explicit TLinearFetch(const TRampWalk& walk)
        : Walk(walk)
        , IsOpaque(walk.IsOpaque) {}
    VZ_AVX2_INLINE void BeginRow(int y) { First = Walk.FirstOfRow(y); }
    VZ_AVX2_INLINE __m256i Pixels(int x) const {
        if constexpr (Spread == TSpread::Pad)
            return Entries(Walk.Table, RampEntries<Spread>(Places(First.X, Walk.ToRamp.A, x)));
        const __m256d columns = Columns(x);
        const __m256d further = _mm256_add_pd(columns, _mm256_set1_pd(4));
        const __m128i low = RampEntries<Spread>(Place(First.X, Walk.ToRamp.A, columns));
        const __m128i high = RampEntries<Spread>(Place(First.X, Walk.ToRamp.A, further));
        return Entries(Walk.Table, _mm256_set_m128i(high, low));
    }
};

template <TSpread Spread> struct TRadialFetch : TPixelFetch {
    const TRampWalk& Walk;
    TPointD First;
    bool IsOpaque;
    VZ_AVX2_INLINE explicit TRadialFetch(const TRampWalk& walk)
        : Walk(walk)
        , IsOpaque(walk.IsOpaque) {}
    VZ_AVX2_INLINE void BeginRow(int y) { First = Walk.FirstOfRow(y); }
    VZ_AVX2_INLINE __m256i Pixels(int x) const {
        const __m256 px = Places(First.X, Walk.ToRamp.A, x);
        const __m256 py = Places(First.Y, Walk.ToRamp.B, x);
        const __m256 t = _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(px, px), _mm256_mul_ps(py, py)));
        return Entries(Walk.Table, RampEntries<Spread>(t));
    }
};

template <TSpread Spread> struct TFocalFetch : TPixelFetch {
    const TFocalWalk& Focal;
    TPointD First;
    TFocalTerms Terms;
    bool IsOpaque;
    VZ_AVX2_INLINE explicit TFocalFetch(const TFocalWalk& focal)
        : Focal(focal)
        , Terms(focal)
        , IsOpaque(focal.Walk.IsOpaque) {}
    VZ_AVX2_INLINE void BeginRow(int y) { First = Focal.Walk.FirstOfRow(y); }
    VZ_AVX2_INLINE __m256i Pixels(int x) const {
        const __m256 zero = _mm256_setzero_ps();
        const __m256 px = Places(First.X, Focal.Walk.ToRamp.A, x);
        const __m256 py = Places(First.Y, Focal.Walk.ToRamp.B, x);
        __m256 b = _mm256_add_ps(_mm256_mul_ps(px, _mm256_set1_ps(Focal.AxisX)),
                                 _mm256_mul_ps(py, _mm256_set1_ps(Focal.AxisY)));
        b = _mm256_add_ps(b, _mm256_set1_ps(Terms.Offset));
        __m256 c = _mm256_add_ps(_mm256_mul_ps(px, px), _mm256_mul_ps(py, py));
        c = _mm256_sub_ps(c, _mm256_set1_ps(Terms.Inner));
        const __m256 square = _mm256_sub_ps(_mm256_mul_ps(b, b), _mm256_mul_ps(_mm256_set1_ps(Terms.A), c));
        const __m256 root = _mm256_sqrt_ps(_mm256_max_ps(square, zero));
        const __m256 sum = _mm256_add_ps(_mm256_andnot_ps(_mm256_set1_ps(-0.0f), b), root);
        const __m256 ahead = _mm256_cmp_ps(b, zero, _CMP_GT_OQ);
        const __m256 upper = _mm256_blendv_ps(sum, c, ahead);
        const __m256 lower = _mm256_blendv_ps(_mm256_set1_ps(-Terms.A), sum, ahead);
        return Entries(Focal.Walk.Table, RampEntries<Spread>(_mm256_div_ps(upper, lower)));
    }
};

// Rows.

/// Whether eight pixels are covered wholly.
VZ_AVX2_INLINE bool IsFull(__m256i coverage) {
    return _mm256_testc_si256(coverage, _mm256_set1_epi32(255)) != 0;
}

/// Where the first `count` of eight pixels lie, to be read and written without touching the others.
struct TTail {
    std::uint32_t* Row;
    __m256i Lanes;
    VZ_AVX2_INLINE TTail(std::uint32_t* row, int count)
        : Row(row)
        , Lanes(FirstLanes(count)) {}
    VZ_AVX2_INLINE __m256i Of(const std::uint32_t* row) const {
        return _mm256_maskload_epi32(reinterpret_cast<const int*>(row), Lanes);
    }
    VZ_AVX2_INLINE void Put(__m256i pixels) const {
        _mm256_maskstore_epi32(reinterpret_cast<int*>(Row), Lanes, pixels);
    }
};

template <TFillRule Rule, class TFetch> VZ_AVX2 void FillRows(const TFillJob& job, TFetch fetch) {
    const __m256i last = _mm256_set1_epi32(7);
    for (const TCoverageRow& coverageRow : job.Rows) {
        std::int32_t* steps = coverageRow.Steps;
        std::uint32_t* row = job.PixelsOf(coverageRow);
        const std::uint8_t* clip = job.ClipOf(coverageRow);
        const int room = job.Right - coverageRow.X;
        __m256i winding = _mm256_setzero_si256();
        __m256i before = winding; // coverage of the last eight
        fetch.BeginRow(coverageRow.Y);
        for (int i = 0; i < coverageRow.Count; i += 8) {
            const __m256i change = Load(steps + i);
            // Amid a shape, or its hole, nothing changes for long.
            if (IsZero(change)) {
                if (IsZero(before)) {
                    while (i + 40 <= coverageRow.Count && AreZero(steps + i + 8))
                        i += 32;
                    continue;
                }
                if (IsFull(before) && room - i >= 8 && !clip) {
                    const __m256i pixels = fetch.Pixels(coverageRow.X + i);
                    Store(row + i, fetch.IsOpaque ? pixels : Over(fetch.ChannelsOf(pixels), Load(row + i)));
                    continue;
                }
            }
            const __m256i windings = Summed(change, winding);
            Store(steps + i, _mm256_setzero_si256());
            winding = _mm256_permutevar8x32_epi32(windings, last);
            __m256i coverage = CoverageOf<Rule>(windings);
            before = coverage;
            if (clip) {
                std::int64_t bytes;
                std::memcpy(&bytes, clip + i, sizeof bytes);
                coverage = Times(coverage, _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(bytes)));
            }
            if (IsZero(coverage)) continue;
            const __m256i pixels = fetch.Pixels(coverageRow.X + i);
            if (fetch.IsOpaque && IsFull(coverage) && room - i >= 8) {
                Store(row + i, pixels);
                continue;
            }
            const TChannels paint = Times(fetch.ChannelsOf(pixels), Doubled(coverage));
            if (room - i < 8) {
                const TTail tail(row + i, room - i);
                tail.Put(Over(paint, tail.Of(row + i)));
            } else
                Store(row + i, Over(paint, Load(row + i)));
        }
    }
}

template <class TFetch> VZ_AVX2 void FillRows(const TFillJob& job, const TFetch& fetch) {
    if (job.Rule == TFillRule::EvenOdd)
        FillRows<TFillRule::EvenOdd>(job, fetch);
    else
        FillRows<TFillRule::NonZero>(job, fetch);
}

VZ_AVX2 void FillSolid(const TFillJob& job, std::uint32_t pixel) { FillRows(job, TSolidFetch(pixel)); }

/// Fills by the fetcher of the walk's spread.
template <template <TSpread> class TFetch, class TWalk>
VZ_AVX2 void FillBySpread(const TFillJob& job, const TWalk& walk, TSpread spread) {
    switch (spread) {
    case TSpread::Pad:
        FillRows(job, TFetch<TSpread::Pad>(walk));
        break;
    case TSpread::Reflect:
        FillRows(job, TFetch<TSpread::Reflect>(walk));
        break;
    case TSpread::Repeat:
        FillRows(job, TFetch<TSpread::Repeat>(walk));
        break;
    }
}

VZ_AVX2 void FillLinear(const TFillJob& job, const TRampWalk& walk) {
    FillBySpread<TLinearFetch>(job, walk, walk.Spread);
}

VZ_AVX2 void FillRadial(const TFillJob& job, const TRampWalk& walk) {
    FillBySpread<TRadialFetch>(job, walk, walk.Spread);
}

VZ_AVX2 void FillFocal(const TFillJob& job, const TFocalWalk& focal) {
    FillBySpread<TFocalFetch>(job, focal, focal.Walk.Spread);
}

template <TFillRule Rule> VZ_AVX2 void ResolveRow(const TCoverageRow& row, std::uint8_t* coverage) {
    // The lowest byte of each pixel's lane, four in a row at each half's start.
    const __m256i lowest = _mm256_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 0, 4,
                                            8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m256i last = _mm256_set1_epi32(7);
    __m256i winding = _mm256_setzero_si256();
    for (int i = 0; i < row.Count; i += 8) {
        const __m256i windings = Summed(Load(row.Steps + i), winding);
        Store(row.Steps + i, _mm256_setzero_si256());
        winding = _mm256_permutevar8x32_epi32(windings, last);
        const __m256i bytes = _mm256_shuffle_epi8(CoverageOf<Rule>(windings), lowest);
        const __m128i packed =
            _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(coverage + i), packed);
    }
}

VZ_AVX2 void Resolve(const TCoverageRow& row, TFillRule rule, std::uint8_t* coverage) {
    if (rule == TFillRule::EvenOdd)
        ResolveRow<TFillRule::EvenOdd>(row, coverage);
    else
        ResolveRow<TFillRule::NonZero>(row, coverage);
}

VZ_AVX2 void MultiplyCoverage(std::uint8_t* coverage, const std::uint8_t* factor, int count) {
    int i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(coverage + i));
        const __m128i factors = _mm_loadu_si128(reinterpret_cast<const __m128i*>(factor + i));
        const __m256i product = Times(_mm256_cvtepu8_epi16(values), _mm256_cvtepu8_epi16(factors));
        const __m128i packed =
            _mm_packus_epi16(_mm256_castsi256_si128(product), _mm256_extracti128_si256(product, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(coverage + i), packed);
    }
    for (; i < count; ++i)
        coverage[i] = static_cast<std::uint8_t>(MulDiv255(coverage[i], factor[i]));
}

VZ_AVX2 void BlendCovered(std::uint32_t* row, int count, const std::uint32_t* pixels,
                          const std::uint8_t* coverage) {
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        std::int64_t bytes;
        std::memcpy(&bytes, coverage + i, sizeof bytes);
        if (bytes == 0) continue;
        const __m256i factors = _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(bytes));
        Store(row + i, Over(Times(Split(Load(pixels + i)), Doubled(factors)), Load(row + i)));
    }
    for (; i < count; ++i)
        row[i] = PixelOver(ScalePixel(pixels[i], coverage[i]), row[i]);
}

VZ_AVX2 void BlendRow(std::uint32_t* row, int count, const std::uint32_t* pixels, unsigned opacity) {
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    const __m256i factor = _mm256_set1_epi16(static_cast<short>(opacity));
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i over = Load(pixels + i);
        if (IsZero(over)) continue;
        if (opacity < 255)
            Store(row + i, Over(Times(Split(over), factor), Load(row + i)));
        else if (_mm256_testc_si256(over, alpha))
            Store(row + i, over);
        else
            Store(row + i, Over(Split(over), Load(row + i)));
    }
    if (i == count) return;
    const TTail tail(row + i, count - i);
    const __m256i over = tail.Of(pixels + i);
    if (!IsZero(over)) tail.Put(Over(Times(Split(over), factor), tail.Of(row + i)));
}

VZ_AVX2 void Average(std::uint32_t* pixels, int count, const TPixelBoxes& boxes, std::uint16_t* sums) {
    const int across = boxes.Across;
    const int total = count * across * 4;
    int i = 0;
    for (; i + 16 <= total; i += 16) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(boxes.Pixels) + i;
        __m256i sum = _mm256_setzero_si256();
        for (int y = 0; y < boxes.Down; ++y, bytes += boxes.Stride * 4)
            sum = _mm256_add_epi16(
                sum, _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))));
        Store(sums + i, sum);
    }
    for (; i < total; ++i) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(boxes.Pixels) + i;
        sums[i] = 0;
        for (int y = 0; y < boxes.Down; ++y, bytes += boxes.Stride * 4)
            sums[i] = static_cast<std::uint16_t>(sums[i] + *bytes);
    }
    const __m256d factor = _mm256_set1_pd(1.0 / (across * boxes.Down));
    const __m256d half = _mm256_set1_pd(0.5);
    for (int k = 0; k < count; ++k, sums += 4 * across) {
        __m128i sum = _mm_setzero_si128();
        for (int x = 0; x < across; ++x)
            sum = _mm_add_epi32(
                sum, _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(sums + 4 * x))));
        const __m256d mean = _mm256_add_pd(_mm256_mul_pd(_mm256_cvtepi32_pd(sum), factor), half);
        const __m128i words = _mm_packus_epi32(_mm256_cvttpd_epi32(mean), _mm_setzero_si128());
        pixels[k] = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    }
}

constexpr TRowOps Avx2{"AVX2",  FillSolid,        FillLinear,   FillRadial, FillFocal, TraceEdgeAvx2,
                       Resolve, MultiplyCoverage, BlendCovered, BlendRow,   Average};

} // namespace

const TRowOps* VectorRowOps() { return __builtin_cpu_supports("avx2") ? &Avx2 : nullptr; }

} // namespace Vz

#else

namespace Vz {

const TRowOps* VectorRowOps() { return nullptr; }

} // namespace Vz

#endif
