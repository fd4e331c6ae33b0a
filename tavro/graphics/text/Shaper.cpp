#include "tavro/graphics/text/ShaperInternal.h"
#include "tavro/runtime/Utf8.h"

#include <glib.h>
#include <hb-ot.h>

#include <algorithm>
#include <array>

namespace Vz {
namespace {

constexpr std::size_t NoSpan = static_cast<std::size_t>(-1);
constexpr std::uint32_t Replacement = 0xFFFD;
/// Advance of a character for which there is no font at all, in em.
constexpr double BlankAdvance = 0.5;
/// Size of a capital that stands for a small one.
constexpr double SmallCapitalScale = 0.8;
/// Marks in a row that are shaped at once; more on one letter than any writing has.
constexpr std::size_t MaxMarks = 64;

/// A text as characters, with the place of each in what was given.
struct TCharacters {
    std::vector<std::uint32_t> Codes;
    std::vector<std::size_t> Offsets;      ///< one more than there are characters
    std::vector<std::size_t> CleanOffsets; ///< the same in Clean
    std::string Clean;                     ///< the same as faultless UTF-8 without control characters
    std::vector<std::size_t> Spans;        ///< index of each character's span, or NoSpan
    std::vector<std::size_t> Pieces;       ///< index of each character's style among the runs of one style
};

/// Reads the character at text[i] and moves i behind it. A fault is U+FFFD for its longest part that could
/// have begun a character (Unicode, 3.9, "substitution of maximal subparts").
std::uint32_t ReadCharacter(std::string_view text, std::size_t& i) {
    const auto byteAt = [&](std::size_t place) {
        return place < text.size() ? static_cast<unsigned char>(text[place]) : 0u;
    };
    const unsigned lead = byteAt(i++);
    if (lead < 0x80) return lead;
    if (lead < 0xC2 || lead > 0xF4) return Replacement;
    const int following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    // The second byte's range keeps out what is too long, a surrogate or too great.
    unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    std::uint32_t code = lead & (0x3Fu >> following);
    for (int k = 0; k < following; ++k) {
        const unsigned next = byteAt(i);
        if (next < low || next > high) return Replacement;
        code = code << 6 | (next & 0x3F);
        low = 0x80;
        high = 0xBF;
        ++i;
    }
    return code;
}

bool IsBlank(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

void AssignSpans(TCharacters& characters, std::span<const TTextSpan> spans) {
    const auto& offsets = characters.Offsets;
    const auto last = offsets.end() - 1;
    for (std::size_t s = 0; s < spans.size(); ++s) {
        const auto begin = std::lower_bound(offsets.begin(), last, spans[s].Begin) - offsets.begin();
        const auto end = std::lower_bound(offsets.begin(), last, spans[s].End) - offsets.begin();
        for (auto i = begin; i < end; ++i) {
            std::size_t& span = characters.Spans[static_cast<std::size_t>(i)];
            if (span == NoSpan) span = s;
        }
    }
}

TCharacters ReadCharacters(std::string_view text, std::span<const TTextSpan> spans) {
    TCharacters result;
    for (std::size_t i = 0; i < text.size();) {
        result.Offsets.push_back(i);
        std::uint32_t code = ReadCharacter(text, i);
        if (IsBlank(code)) code = ' ';
        result.Codes.push_back(code);
        result.CleanOffsets.push_back(result.Clean.size());
        AppendUtf8(result.Clean, code);
    }
    result.Offsets.push_back(text.size());
    result.CleanOffsets.push_back(result.Clean.size());
    result.Spans.resize(result.Codes.size(), NoSpan);
    AssignSpans(result, spans);
    return result;
}

const TTextStyle& GetStyle(std::span<const TTextSpan> spans, std::size_t span) {
    static const TTextStyle byDefault;
    return span < spans.size() && spans[span].Style ? *spans[span].Style : byDefault;
}

/// The text in pieces of one style: neighbouring spans of the same style and size are shaped together, so
/// that letters kern over the seam.
std::vector<TStyledBytes> MakePieces(TCharacters& characters, std::span<const TTextSpan> spans) {
    std::vector<TStyledBytes> pieces;
    for (std::size_t i = 0; i < characters.Codes.size(); ++i) {
        const std::size_t span = characters.Spans[i];
        const bool isSameSpan = i > 0 && span == characters.Spans[i - 1];
        if (!isSameSpan) {
            const TTextStyle& style = GetStyle(spans, span);
            const bool isSame =
                !pieces.empty() && (pieces.back().Style == &style || *pieces.back().Style == style);
            if (!isSame) pieces.push_back({characters.CleanOffsets[i], 0, &style});
        }
        pieces.back().End = characters.CleanOffsets[i + 1];
        characters.Pieces.push_back(pieces.size() - 1);
    }
    return pieces;
}

/// Scripts whose letters join their neighbours (CSS Text 3, appendix D, "cursive scripts").
bool IsConnected(std::uint32_t code) {
    constexpr GUnicodeScript scripts[] = {
        G_UNICODE_SCRIPT_ARABIC,  G_UNICODE_SCRIPT_SYRIAC,          G_UNICODE_SCRIPT_MONGOLIAN,
        G_UNICODE_SCRIPT_NKO,     G_UNICODE_SCRIPT_MANDAIC,         G_UNICODE_SCRIPT_PHAGS_PA,
        G_UNICODE_SCRIPT_ADLAM,   G_UNICODE_SCRIPT_MANICHAEAN,      G_UNICODE_SCRIPT_PSALTER_PAHLAVI,
        G_UNICODE_SCRIPT_SOGDIAN, G_UNICODE_SCRIPT_HANIFI_ROHINGYA,
    };
    return code >= 0x600 &&
           std::find(std::begin(scripts), std::end(scripts), g_unichar_get_script(code)) != std::end(scripts);
}

bool IsMark(std::uint32_t code) { return code >= 0x300 && g_unichar_ismark(code); }

/// Shapes the runs of one text one after the other.
class TShaper {
public:
    TShaper(const TCharacters& characters, std::span<const TStyledBytes> pieces)
        : FCharacters(characters)
        , FPieces(pieces)
        , FBuffer(hb_buffer_create()) {}

    void Shape(const TFontRun& run);
    TShapedText TakeResult();

private:
    /// A part of a run that is shaped at once.
    struct TPart {
        std::size_t Begin = 0;
        std::size_t End = 0;
        bool IsRaised = false; ///< small letters shown as smaller capitals
    };

    std::vector<TPart> Split(const TFontRun& run) const;
    void ShapePart(const TFontRun& run, const TPart& part);
    void FillBuffer(const TFontRun& run, const TPart& part);
    std::vector<hb_feature_t> MakeFeatures(const TTextStyle& style) const;
    bool ForbidLigaturesOverSeams(const TPart& part, std::vector<hb_feature_t>& features) const;
    void TakeClusters(const TFontRun& run, const TPart& part);
    void AddCluster(const TFontRun& run, std::size_t begin, std::size_t end);
    void AddBlanks(const TFontRun& run);
    void MergeMarks();

    const TCharacters& FCharacters;
    std::span<const TStyledBytes> FPieces;
    THbBufferPtr FBuffer;
    TShapedText FResult;
};

/// The character as capitals: more than one for some.
std::u32string GetCapitals(std::uint32_t code) {
    std::string small;
    AppendUtf8(small, code);
    const std::unique_ptr<char, TRelease<g_free>> great(g_utf8_strup(small.c_str(), -1));
    std::u32string result;
    for (const char* c = great.get(); *c; c = g_utf8_next_char(c))
        result += g_utf8_get_char(c);
    return result;
}

bool IsSmallLetter(std::uint32_t code) {
    return g_unichar_islower(code) && GetCapitals(code) != std::u32string(1, code);
}

void TShaper::Shape(const TFontRun& run) {
    if (run.Face->IsBlank()) return AddBlanks(run);
    for (const TPart& part : Split(run))
        ShapePart(run, part);
}

/// Cuts a run at the seams between small letters and others where small capitals have to be made up, and in
/// the midst of senselessly many marks, which would take quadratic time; visual order.
std::vector<TShaper::TPart> TShaper::Split(const TFontRun& run) const {
    const bool isMadeUp =
        FPieces[run.Piece].Style->SmallCaps && !run.Face->HasFeature(HB_TAG('s', 'm', 'c', 'p'));
    std::vector<TPart> parts;
    std::size_t markCount = 0;
    for (std::size_t i = run.FirstChar; i < run.FirstChar + run.CharCount; ++i) {
        const std::uint32_t code = FCharacters.Codes[i];
        const bool isMark = IsMark(code);
        const bool isRaised =
            isMark && !parts.empty() ? parts.back().IsRaised : isMadeUp && IsSmallLetter(code);
        markCount = isMark ? markCount + 1 : 0;
        const bool isTooLong = markCount > 0 && markCount % MaxMarks == 0;
        if (parts.empty() || isTooLong || isRaised != parts.back().IsRaised)
            parts.push_back({i, i, isRaised});
        parts.back().End = i + 1;
    }
    if (run.IsRightToLeft()) std::reverse(parts.begin(), parts.end());
    return parts;
}

void TShaper::FillBuffer(const TFontRun& run, const TPart& part) {
    hb_buffer_t* buffer = FBuffer.get();
    hb_buffer_clear_contents(buffer);
    const auto& codes = FCharacters.Codes;
    if (!part.IsRaised) {
        hb_buffer_add_codepoints(buffer, codes.data(), static_cast<int>(codes.size()),
                                 static_cast<unsigned>(part.Begin), static_cast<int>(part.End - part.Begin));
    } else {
        for (std::size_t i = part.Begin; i < part.End; ++i)
            for (char32_t code : GetCapitals(codes[i]))
                hb_buffer_add(buffer, code, static_cast<unsigned>(i));
        hb_buffer_set_content_type(buffer, HB_BUFFER_CONTENT_TYPE_UNICODE);
    }
    unsigned flags = HB_BUFFER_FLAG_DEFAULT;
    if (part.Begin == 0) flags |= HB_BUFFER_FLAG_BOT;
    if (part.End == codes.size()) flags |= HB_BUFFER_FLAG_EOT;
    hb_buffer_set_flags(buffer, static_cast<hb_buffer_flags_t>(flags));
    hb_buffer_set_direction(buffer, run.IsRightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, run.Script);
    hb_buffer_set_language(buffer, run.Language);
}

std::vector<hb_feature_t> TShaper::MakeFeatures(const TTextStyle& style) const {
    std::vector<hb_feature_t> features;
    const auto add = [&](const char* tag, std::uint32_t value) {
        features.push_back(
            {hb_tag_from_string(tag, 4), value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    };
    if (!style.Kerning) add("kern", 0);
    if (style.SmallCaps) add("smcp", 1);
    if (!style.Ligatures) {
        add("liga", 0);
        add("clig", 0);
    }
    return features;
}

/// A ligature of letters from two spans could show only one span's paint: adds features that take such
/// ligatures apart. False where there is none.
bool TShaper::ForbidLigaturesOverSeams(const TPart& part, std::vector<hb_feature_t>& features) const {
    const auto& spans = FCharacters.Spans;
    if (spans[part.Begin] == spans[part.End - 1]) return false;
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(FBuffer.get(), &count);
    std::vector<unsigned> starts;
    for (unsigned i = 0; i < count; ++i)
        starts.push_back(infos[i].cluster);
    starts.push_back(static_cast<unsigned>(part.End));
    std::sort(starts.begin(), starts.end());
    const std::size_t before = features.size();
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
        if (starts[i] == starts[i + 1] || spans[starts[i]] == spans[starts[i + 1] - 1]) continue;
        for (const char* tag : {"liga", "clig"})
            features.push_back({hb_tag_from_string(tag, 4), 0, starts[i], starts[i + 1]});
    }
    return features.size() > before;
}

void TShaper::ShapePart(const TFontRun& run, const TPart& part) {
    std::vector<hb_feature_t> features = MakeFeatures(*FPieces[run.Piece].Style);
    FillBuffer(run, part);
    hb_shape(run.Face->GetFont(), FBuffer.get(), features.data(), static_cast<unsigned>(features.size()));
    if (ForbidLigaturesOverSeams(part, features)) {
        FillBuffer(run, part);
        hb_shape(run.Face->GetFont(), FBuffer.get(), features.data(), static_cast<unsigned>(features.size()));
    }
    TakeClusters(run, part);
}

void TShaper::AddCluster(const TFontRun& run, std::size_t begin, std::size_t end) {
    TShapedCluster cluster;
    cluster.Begin = FCharacters.Offsets[begin];
    cluster.End = FCharacters.Offsets[end];
    cluster.Span = FCharacters.Spans[begin];
    cluster.FirstGlyph = FResult.Glyphs.size();
    cluster.RightToLeft = run.IsRightToLeft();
    cluster.Connected = IsConnected(FCharacters.Codes[begin]);
    cluster.StartsWithMark = IsMark(FCharacters.Codes[begin]);
    FResult.Clusters.push_back(cluster);
}

/// Takes the shaped glyphs over, those of one cluster together.
void TShaper::TakeClusters(const TFontRun& run, const TPart& part) {
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(FBuffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(FBuffer.get(), &count);
    const double scale = part.IsRaised ? SmallCapitalScale : 1;
    const double unit = run.Face->GetUnit() * scale;
    const double extra = run.Face->GetExtraAdvance() * scale;
    unsigned next = 0;
    for (unsigned first = 0; first < count; first = next) {
        next = first;
        while (next < count && infos[next].cluster == infos[first].cluster)
            ++next;
        const std::size_t end = run.IsRightToLeft() ? (first > 0 ? infos[first - 1].cluster : part.End)
                                                    : (next < count ? infos[next].cluster : part.End);
        AddCluster(run, infos[first].cluster, end);
        TShapedCluster& cluster = FResult.Clusters.back();
        for (unsigned i = first; i < next; ++i) {
            const hb_glyph_position_t& at = positions[i];
            const double offset = (at.x_offset + run.Face->GetLean() * at.y_offset) * unit;
            FResult.Glyphs.push_back(
                {run.Face, infos[i].codepoint, scale, cluster.Advance + offset, -at.y_offset * unit});
            cluster.Advance += at.x_advance * unit + (at.x_advance != 0 ? extra : 0);
        }
        cluster.GlyphCount = next - first;
    }
}

void TShaper::AddBlanks(const TFontRun& run) {
    std::size_t end = 0;
    for (std::size_t i = run.FirstChar; i < run.FirstChar + run.CharCount; i = end) {
        end = i + 1;
        while (end < run.FirstChar + run.CharCount && IsMark(FCharacters.Codes[end]))
            ++end;
        AddCluster(run, i, end);
        FResult.Clusters.back().Advance = BlankAdvance;
    }
}

/// A mark that its base's font lacks comes from another font, in a run of its own; it joins its base's
/// cluster here.
void TShaper::MergeMarks() {
    auto& clusters = FResult.Clusters;
    std::size_t kept = 0;
    for (std::size_t i = 1; i < clusters.size(); ++i) {
        TShapedCluster& left = clusters[kept];
        const TShapedCluster& right = clusters[i];
        const bool isSameKind = left.RightToLeft == right.RightToLeft && left.Span == right.Span;
        const bool isMarkRight =
            isSameKind && !right.RightToLeft && right.StartsWithMark && left.End == right.Begin;
        const bool isMarkLeft =
            isSameKind && right.RightToLeft && left.StartsWithMark && right.End == left.Begin;
        if (!isMarkRight && !isMarkLeft) {
            clusters[++kept] = right;
            continue;
        }
        for (std::size_t g = right.FirstGlyph; g < right.FirstGlyph + right.GlyphCount; ++g)
            FResult.Glyphs[g].X += left.Advance;
        left.Advance += right.Advance;
        left.GlyphCount += right.GlyphCount;
        if (isMarkRight) {
            left.End = right.End;
        } else {
            left.Begin = right.Begin;
            left.Connected = right.Connected;
            left.StartsWithMark = right.StartsWithMark;
        }
    }
    if (!clusters.empty()) clusters.resize(kept + 1);
}

TShapedText TShaper::TakeResult() {
    MergeMarks();
    std::erase_if(FResult.Clusters, [](const TShapedCluster& c) { return c.Span == NoSpan; });
    return std::move(FResult);
}

} // namespace

TShapedText ShapeSpans(TFontLibrary& library, std::string_view text, std::span<const TTextSpan> spans,
                       TTextDirection direction) {
    TCharacters characters = ReadCharacters(text, spans);
    if (characters.Codes.empty()) return {};
    const std::vector<TStyledBytes> pieces = MakePieces(characters, spans);
    TShaper shaper(characters, pieces);
    for (const TFontRun& run : library.Itemize(characters.Clean, pieces, direction))
        shaper.Shape(run);
    return shaper.TakeResult();
}

} // namespace Vz
