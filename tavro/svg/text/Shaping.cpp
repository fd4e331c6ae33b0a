#include "tavro/svg/text/LayoutInternal.h"

#include "tavro/runtime/Utf8.h"

#include <algorithm>

namespace Vz {
namespace {

/// Below this code no character joins the one before it.
constexpr std::uint32_t FirstMark = 0x300;

/// What opens and closes an element of a unicode-bidi (CSS Writing Modes 3, 2.4.2): for left-to-right and for
/// right-to-left content.
struct TBidiRow {
    TKeyword Word;
    std::u32string_view Open[2];
    std::u32string_view Close;
};

constexpr TBidiRow BidiRows[] = {
    {TKeyword::Embed, {U"\u202A", U"\u202B"}, U"\u202C"},
    {TKeyword::BidiOverride, {U"\u202D", U"\u202E"}, U"\u202C"},
    {TKeyword::Isolate, {U"\u2066", U"\u2067"}, U"\u2069"},
    {TKeyword::IsolateOverride, {U"\u2066\u202D", U"\u2067\u202E"}, U"\u202C\u2069"},
    {TKeyword::Plaintext, {U"\u2068", U"\u2068"}, U"\u2069"},
};

const TBidiRow* FindBidiRow(const TTextNode& node) {
    const TStyleValue* const value = node.Element->GetStyle().Find(TSVGStyleProperty::UnicodeBidi);
    if (!value || value->Kind != TStyleValue::TKind::Keyword) return nullptr;
    const auto* const row = std::ranges::find(BidiRows, value->Word, &TBidiRow::Word);
    return row == std::end(BidiRows) ? nullptr : row;
}

/// Characters that stand upright in vertical text (Unicode, UAX 50, "U" and "Tu", the greater blocks).
bool IsUpright(std::uint32_t code) {
    constexpr std::uint32_t ranges[][2] = {
        {0x1100, 0x11FF},   {0x2460, 0x24FF},   {0x25A0, 0x27BF}, {0x2E80, 0x2FFF}, {0x3001, 0x3007},
        {0x3012, 0x3013},   {0x3020, 0x302F},   {0x3031, 0x309F}, {0x30A1, 0x30FB}, {0x30FD, 0xA4CF},
        {0xA960, 0xA97F},   {0xAC00, 0xD7FF},   {0xE000, 0xFAFF}, {0xFE10, 0xFE1F}, {0xFE30, 0xFE48},
        {0xFE50, 0xFE57},   {0xFF01, 0xFF07},   {0xFF0A, 0xFF0C}, {0xFF0E, 0xFF19}, {0xFF1F, 0xFF3A},
        {0xFF3C, 0xFF3C},   {0xFF3E, 0xFF3E},   {0xFF40, 0xFF5A}, {0xFFE0, 0xFFE2}, {0xFFE4, 0xFFE7},
        {0x1F000, 0x1FAFF}, {0x20000, 0x3FFFD},
    };
    return std::ranges::any_of(ranges, [&](const auto& r) { return code >= r[0] && code <= r[1]; });
}

/// Blanks that word-spacing applies to (CSS Text 3, 8.1).
bool IsWordSeparator(std::uint32_t code) {
    return code == ' ' || code == 0xA0 || code == 0x1361 || code == 0x10100 || code == 0x10101 ||
           code == 0x1039F;
}

class TChunkShaper {
public:
    TChunkShaper(const TTextContent& content, TTextLines& lines);
    void Run();

private:
    std::vector<std::size_t> FindBegins();
    void AddDoubtfulBegins(std::size_t begin, std::size_t end, std::vector<std::size_t>& begins);
    std::vector<TCluster> Shape(std::size_t begin, std::size_t end);
    void FillBuffer(std::size_t begin, std::size_t end);
    void ChangeNode(int node);
    void Append(std::u32string_view controls);
    void AddGlyph(TCluster& cluster);
    void TurnForVertical(TTextGlyph& glyph, const TTextNode& node, std::uint32_t code) const;
    const TTextNode& NodeOf(std::size_t character) const {
        return FContent.Nodes[FContent.Characters[character].Node];
    }

    const TTextContent& FContent;
    TTextLines& FLines;
    std::vector<const TBidiRow*> FBidiRows; ///< one a node; empty where no node has one
    std::string FBuffer;                    ///< what is shaped: characters and what directs their order
    std::vector<std::size_t> FCharacterAt;  ///< one a byte of FBuffer
    std::vector<TTextSpan> FSpans;
    std::vector<int> FOpen;       ///< nodes that are opened in FBuffer
    std::size_t FNumberCount = 0; ///< of the outlines so far
};

TChunkShaper::TChunkShaper(const TTextContent& content, TTextLines& lines)
    : FContent(content)
    , FLines(lines) {
    const auto hasRow = [](const TTextNode& node) { return FindBidiRow(node) != nullptr; };
    if (std::ranges::none_of(content.Nodes, hasRow)) return;
    for (const TTextNode& node : content.Nodes)
        FBidiRows.push_back(FindBidiRow(node));
}

void TChunkShaper::Run() {
    if (FContent.Characters.empty()) return;
    std::vector<std::size_t> begins = FindBegins();
    begins.push_back(FContent.Characters.size());
    for (std::size_t i = 0; i + 1 < begins.size(); ++i) {
        TTextChunk chunk{begins[i], begins[i + 1], FLines.Glyphs.size(), 0};
        for (TCluster& cluster : Shape(chunk.Begin, chunk.End))
            AddGlyph(cluster);
        chunk.GlyphEnd = FLines.Glyphs.size();
        FLines.Chunks.push_back(chunk);
    }
}

/// Where chunks begin: at absolute positions and where a path begins or ends. An absolute position in the
/// middle of a cluster (on a mark, say) is left out of account (SVG 2, 11.5).
std::vector<std::size_t> TChunkShaper::FindBegins() {
    std::vector<std::size_t> begins;
    bool isDoubtful = false;
    std::size_t last = 0;
    for (std::size_t i = 0; i < FContent.Characters.size(); ++i) {
        const TTextCharacter& character = FContent.Characters[i];
        const bool isNewNode = i == 0 || character.Node != FContent.Characters[i - 1].Node;
        const bool isNewRail = i == 0 || (isNewNode && NodeOf(i).Rail != NodeOf(i - 1).Rail);
        const bool hasPosition = FContent.HasPosition(i);
        if (!isNewRail && !hasPosition) continue;
        if (!isNewRail && !isNewNode && character.Code >= FirstMark) {
            isDoubtful = true;
            continue;
        }
        if (isDoubtful) AddDoubtfulBegins(last, i, begins);
        isDoubtful = false;
        begins.push_back(last = i);
    }
    if (isDoubtful) AddDoubtfulBegins(last, FContent.Characters.size(), begins);
    return begins;
}

void TChunkShaper::AddDoubtfulBegins(std::size_t begin, std::size_t end, std::vector<std::size_t>& begins) {
    std::vector<std::size_t> found;
    for (const TCluster& cluster : Shape(begin, end))
        if (const std::size_t i = FCharacterAt[cluster.Begin]; i != begin && FContent.HasPosition(i))
            found.push_back(i);
    std::ranges::sort(found);
    begins.insert(begins.end(), found.begin(), found.end());
}

std::vector<TCluster> TChunkShaper::Shape(std::size_t begin, std::size_t end) {
    FillBuffer(begin, end);
    const bool isRightToLeft = FContent.Nodes.front().Style.Text->Direction == TKeyword::Rtl;
    return ShapeText(FBuffer, FSpans,
                     isRightToLeft ? TTextDirection::RightToLeft : TTextDirection::LeftToRight);
}

void TChunkShaper::FillBuffer(std::size_t begin, std::size_t end) {
    FBuffer.clear();
    FCharacterAt.clear();
    FSpans.clear();
    FOpen.clear();
    for (std::size_t i = begin; i < end; ++i) {
        const std::uint32_t node = FContent.Characters[i].Node;
        const bool isNewNode = i == begin || node != FContent.Characters[i - 1].Node;
        if (isNewNode) ChangeNode(static_cast<int>(node));
        const std::size_t at = FBuffer.size();
        FBuffer += FContent.BytesOf(i);
        FCharacterAt.resize(FBuffer.size(), i);
        if (!(FContent.Nodes[node].Font.Size > 0)) continue;
        if (isNewNode || FSpans.empty()) FSpans.push_back({at, at, &FContent.Nodes[node].Font});
        FSpans.back().End = FBuffer.size();
    }
}

/// Closes and opens what lies between the current node and the next one in the order of the text.
void TChunkShaper::ChangeNode(int node) {
    if (FBidiRows.empty()) return;
    std::vector<int> wanted;
    for (int n = node; n >= 0; n = FContent.Nodes[static_cast<std::size_t>(n)].Parent)
        if (FBidiRows[static_cast<std::size_t>(n)]) wanted.push_back(n);
    std::ranges::reverse(wanted);
    const auto same = std::ranges::mismatch(FOpen, wanted);
    for (auto i = FOpen.end(); i != same.in1;)
        Append(FBidiRows[static_cast<std::size_t>(*--i)]->Close);
    for (auto i = same.in2; i != wanted.end(); ++i) {
        const auto n = static_cast<std::size_t>(*i);
        Append(FBidiRows[n]->Open[FContent.Nodes[n].Style.Text->Direction == TKeyword::Rtl]);
    }
    FOpen = std::move(wanted);
}

void TChunkShaper::Append(std::u32string_view controls) {
    for (const char32_t code : controls)
        AppendUtf8(FBuffer, code);
    FCharacterAt.resize(FBuffer.size());
}

void TChunkShaper::AddGlyph(TCluster& cluster) {
    TTextGlyph& glyph = FLines.Glyphs.emplace_back();
    glyph.Character = FCharacterAt[cluster.Begin];
    const TTextCharacter& character = FContent.Characters[glyph.Character];
    const TTextNode& node = FContent.Nodes[character.Node];
    FNumberCount += cluster.Outline.Numbers.size();
    if (FNumberCount <= MostTextNumbers) glyph.Outline = std::move(cluster.Outline);
    glyph.Node = character.Node;
    glyph.Chunk = static_cast<std::uint32_t>(FLines.Chunks.size());
    glyph.RightToLeft = cluster.RightToLeft;
    glyph.Advance = cluster.Advance;
    if (!cluster.Connected) glyph.Gap += node.Style.Text->LetterSpacing;
    if (IsWordSeparator(character.Code)) glyph.Gap += node.Style.Text->WordSpacing;
    if (FLines.IsVertical) TurnForVertical(glyph, node, character.Code);
}

/// In a vertical line the glyphs stand about its middle: turned with it, or upright in a square
/// (SVG 1.1, 10.7.3).
void TChunkShaper::TurnForVertical(TTextGlyph& glyph, const TTextNode& node, std::uint32_t code) const {
    const double middle = (node.Metrics.Ascent - node.Metrics.Descent) / 2;
    glyph.Upright = IsUpright(code);
    if (!glyph.Upright) {
        glyph.Outline.Transform(TAffine::Translation(0, middle));
        return;
    }
    glyph.Outline.Transform({0, -1, 1, 0, node.Font.Size / 2 + middle, glyph.Advance / 2});
    glyph.Advance = node.Font.Size;
}

} // namespace

bool IsVerticalMode(TKeyword writingMode) {
    switch (writingMode) {
    case TKeyword::Tb:
    case TKeyword::TbRl:
    case TKeyword::VerticalRl:
    case TKeyword::VerticalLr:
        return true;
    default:
        return false;
    }
}

TTextLines ShapeChunks(const TTextContent& content) {
    TTextLines lines;
    lines.IsVertical = IsVerticalMode(content.Nodes.front().Style.Text->WritingMode);
    TChunkShaper(content, lines).Run();
    return lines;
}

} // namespace Vz
