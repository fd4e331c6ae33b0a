#include "tavro/graphics/text/Outlines.h"

#include "tavro/graphics/text/ShaperInternal.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cmath>
#include <mutex>

namespace Vz {
namespace {

/// Only short texts in few styles are kept shaped: numerals and captions, which come again with each frame or
/// change. A longer key is not kept; keys are bounded because families may have names of any length.
constexpr std::size_t LongestKept = 64;
constexpr std::size_t LongestKey = 1024;
constexpr std::size_t MaxKept = 1024;
/// Beyond this size of the em no outline can be drawn.
constexpr double MaxSize = 1e9;

/// What is kept from one text to the next.
struct TTextState {
    std::mutex Mutex;
    TFontLibrary Library;
    std::unordered_map<std::string, TShapedText> Texts;
    std::unordered_map<std::string, TFontMetrics> Metrics;
    std::string Key; ///< kept for its memory

    void Forget();
    void TidyUp();
};

TTextState& GetState() {
    static TTextState state;
    return state;
}

void TTextState::Forget() {
    Texts.clear();
    Metrics.clear();
}

void TTextState::TidyUp() {
    if (Library.TidyUp() || Texts.size() >= MaxKept || Metrics.size() >= MaxKept) Forget();
}

/// Nothing is shown of a size that is no number or not above 0.
double GetUsableSize(double size) { return size > 0 && std::isfinite(size) ? std::min(size, MaxSize) : 0; }

template <class T> void AppendBytes(std::string& key, const T& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void AppendStyle(std::string& key, const TTextStyle& style) {
    AppendBytes(key, style.Weight);
    AppendBytes(key, style.Stretch);
    key += static_cast<char>(static_cast<int>(style.Slant) | style.SmallCaps << 2 | style.Kerning << 3 |
                             style.Ligatures << 4);
    AppendBytes(key, style.Family.size());
    key += style.Family;
    AppendBytes(key, style.Language.size());
    key += style.Language;
}

const TTextStyle& GetStyle(const TTextSpan& span) {
    static const TTextStyle byDefault;
    return span.Style ? *span.Style : byDefault;
}

/// All that a shaped text depends on. Sizes are in it because neighbours of one size are shaped together.
void MakeKey(std::string& key, std::string_view text, std::span<const TTextSpan> spans,
             TTextDirection direction) {
    key.assign(text);
    key += static_cast<char>(direction);
    for (const TTextSpan& span : spans) {
        AppendBytes(key, span.Begin);
        AppendBytes(key, span.End);
        if (spans.size() > 1) AppendBytes(key, GetStyle(span).Size);
        AppendStyle(key, GetStyle(span));
    }
    AppendBytes(key, text.size());
}

std::vector<TCluster> Scale(const TShapedText& shaped, std::span<const TTextSpan> spans) {
    std::vector<TCluster> result;
    result.reserve(shaped.Clusters.size());
    std::size_t numbers = 0;
    for (const TShapedCluster& cluster : shaped.Clusters) {
        const double size = GetUsableSize(GetStyle(spans[cluster.Span]).Size);
        TCluster& made = result.emplace_back();
        made.Begin = cluster.Begin;
        made.End = cluster.End;
        made.Span = cluster.Span;
        made.Advance = cluster.Advance * size;
        made.RightToLeft = cluster.RightToLeft;
        made.Connected = cluster.Connected;
        if (size == 0) continue;
        for (std::size_t i = cluster.FirstGlyph; i < cluster.FirstGlyph + cluster.GlyphCount; ++i) {
            const TPlacedGlyph& glyph = shaped.Glyphs[i];
            const double scale = size * glyph.Scale;
            const TFigures& outline = glyph.Face->GetOutline(glyph.Glyph);
            if ((numbers += outline.Numbers.size()) > MostTextNumbers) break;
            made.Outline.Append(outline, {scale, 0, 0, scale, glyph.X * size, glyph.Y * size});
        }
    }
    return result;
}

TFontMetrics Scale(TFontMetrics metrics, double size) {
    for (double* figure : {&metrics.Ascent, &metrics.Descent, &metrics.XHeight, &metrics.CapHeight,
                           &metrics.UnderlinePosition, &metrics.UnderlineThickness, &metrics.StrikePosition,
                           &metrics.StrikeThickness, &metrics.SubscriptDrop, &metrics.SuperscriptRise})
        *figure *= size;
    return metrics;
}

} // namespace

std::vector<TCluster> ShapeText(std::string_view text, std::span<const TTextSpan> spans,
                                TTextDirection direction) {
    TTextState& state = GetState();
    const std::lock_guard lock(state.Mutex);
    const bool isShort = text.size() <= LongestKept;
    if (isShort) MakeKey(state.Key, text, spans, direction);
    if (!isShort || state.Key.size() > LongestKey) {
        state.TidyUp();
        return Scale(ShapeSpans(state.Library, text, spans, direction), spans);
    }
    auto place = state.Texts.find(state.Key);
    if (place == state.Texts.end()) {
        state.TidyUp();
        place = state.Texts.emplace(state.Key, ShapeSpans(state.Library, text, spans, direction)).first;
    }
    return Scale(place->second, spans);
}

TFontMetrics GetFontMetrics(const TTextStyle& style) {
    TTextState& state = GetState();
    const std::lock_guard lock(state.Mutex);
    state.Key.clear();
    AppendStyle(state.Key, style);
    if (state.Key.size() > LongestKey) {
        state.TidyUp();
        return Scale(state.Library.GetFirstFace(style).GetMetrics(), GetUsableSize(style.Size));
    }
    auto place = state.Metrics.find(state.Key);
    if (place == state.Metrics.end()) {
        state.TidyUp();
        place = state.Metrics.emplace(state.Key, state.Library.GetFirstFace(style).GetMetrics()).first;
    }
    return Scale(place->second, GetUsableSize(style.Size));
}

void SetFontConfiguration(const std::string& file) {
    TTextState& state = GetState();
    const std::lock_guard lock(state.Mutex);
    if (!state.Library.Configure(file)) throw EReadError("not a usable font configuration", {.Name = file});
    state.Forget();
}

} // namespace Vz
