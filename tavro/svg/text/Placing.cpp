#include "tavro/svg/text/LayoutInternal.h"

#include <cmath>
#include <numbers>

namespace Vz {
namespace {

constexpr double Radians = std::numbers::pi / 180;

/// The turn into a direction of length 1.
TAffine Turn(TPointD direction) { return {direction.X, direction.Y, -direction.Y, direction.X, 0, 0}; }

/// Walks over the chunks and keeps the current text position.
class TChunkPlacer {
public:
    TChunkPlacer(const TTextContent& content, TTextLines& lines)
        : FContent(content)
        , FLines(lines) {}

    void Place(const TTextChunk& chunk);

private:
    void SetOut(const TTextChunk& chunk);
    void AddShifts(const TTextChunk& chunk);
    double AnchorShift() const;
    void PlaceOnLine(const TTextChunk& chunk);
    void PlaceOnRail(const TTextChunk& chunk, const TTextRail& rail);
    bool FindRailPlace(const TTextRail& rail, double distance, TPathPlace& place) const;
    void PlaceGlyph(TTextGlyph& glyph, double along, double across, const TAffine& line) const;

    const TTextContent& FContent;
    TTextLines& FLines;
    TPointD FCurrent;                 ///< in user space
    const TTextRail* FRail = nullptr; ///< of the last chunk
    TPointD FOnRail;                  ///< the current position along the path and across it
    // Of the current chunk, in its line.
    double FLow = 0; ///< extent of the cells, without the shifts of dx
    double FHigh = 0;
    double FEnd = 0;     ///< where the last gap ends
    TPointD FFirstShift; ///< that of the first character
    TPointD FShift;      ///< the sum of all characters'
    bool FRightToLeft = false;
    double FAnchorPart = 0; ///< of the extent that lies before the anchor
};

void TChunkPlacer::Place(const TTextChunk& chunk) {
    const TTextNode& node = FContent.Nodes[FContent.Characters[chunk.Begin].Node];
    FRightToLeft = FContent.Nodes.front().Style.Text->Direction == TKeyword::Rtl;
    const TKeyword anchor = node.Style.Text->Anchor;
    FAnchorPart = anchor == TKeyword::Middle ? 0.5 : (anchor == TKeyword::End) != FRightToLeft ? 1 : 0;
    SetOut(chunk);
    AddShifts(chunk);
    if (node.Rail)
        PlaceOnRail(chunk, *node.Rail);
    else
        PlaceOnLine(chunk);
    FRail = node.Rail.get();
}

/// Sets the glyphs one behind the other. The gap of a glyph that runs to the left lies on its left.
void TChunkPlacer::SetOut(const TTextChunk& chunk) {
    double at = 0;
    FLow = FHigh = 0;
    for (std::size_t i = chunk.FirstGlyph; i < chunk.GlyphEnd; ++i) {
        TTextGlyph& glyph = FLines.Glyphs[i];
        if (glyph.RightToLeft) at += glyph.Gap;
        glyph.Along = at;
        if (i == chunk.FirstGlyph) FLow = at;
        at += glyph.Advance;
        FHigh = at;
        if (!glyph.RightToLeft) at += glyph.Gap;
    }
    FEnd = at;
}

/// dx and dy move a character and all behind it in the order of the text (SVG 2, 11.5).
void TChunkPlacer::AddShifts(const TTextChunk& chunk) {
    std::vector<TPointD> shifts;
    shifts.reserve(chunk.End - chunk.Begin);
    FShift = {};
    for (std::size_t i = chunk.Begin; i < chunk.End; ++i) {
        const TTextCharacter& character = FContent.Characters[i];
        FShift.X += FLines.IsVertical ? character.DY : character.DX;
        FShift.Y += FLines.IsVertical ? -character.DX : character.DY;
        shifts.push_back(FShift);
    }
    FFirstShift = shifts.front();
    for (std::size_t i = chunk.FirstGlyph; i < chunk.GlyphEnd; ++i) {
        TTextGlyph& glyph = FLines.Glyphs[i];
        const TPointD& shift = shifts[glyph.Character - chunk.Begin];
        glyph.Along += shift.X;
        glyph.Across = shift.Y;
    }
}

/// How far a chunk moves along its line for its anchor (SVG 1.1, 10.9.1). A gap behind the last glyph does
/// not count, nor does what dx gives the first character.
double TChunkPlacer::AnchorShift() const {
    return -FLow - FAnchorPart * (FHigh - FLow + FShift.X - FFirstShift.X);
}

void TChunkPlacer::PlaceOnLine(const TTextChunk& chunk) {
    const TTextCharacter& first = FContent.Characters[chunk.Begin];
    if (!std::isnan(first.X)) FCurrent.X = first.X;
    if (!std::isnan(first.Y)) FCurrent.Y = first.Y;
    const TAffine line = Turn(FLines.IsVertical ? TPointD{0, 1} : TPointD{1, 0})
                             .Then(TAffine::Translation(FCurrent.X, FCurrent.Y));
    const double shift = AnchorShift();
    for (std::size_t i = chunk.FirstGlyph; i < chunk.GlyphEnd; ++i) {
        TTextGlyph& glyph = FLines.Glyphs[i];
        glyph.Along += shift;
        PlaceGlyph(glyph, glyph.Along, glyph.Across, line);
    }
    FCurrent = line(shift + FShift.X + (FRightToLeft ? 0 : FEnd), FShift.Y);
}

/// Each glyph stands with its middle on the path and is turned with it (SVG 1.1, 10.13.3). An absolute
/// position along the line counts from the text's begin on the path; one across it does not count.
void TChunkPlacer::PlaceOnRail(const TTextChunk& chunk, const TTextRail& rail) {
    const TTextCharacter& first = FContent.Characters[chunk.Begin];
    const double position = FLines.IsVertical ? first.Y : first.X;
    if (FRail != &rail) FOnRail = {};
    if (!std::isnan(position)) FOnRail.X = position;
    const double start = rail.StartOffset + FOnRail.X + AnchorShift();
    for (std::size_t i = chunk.FirstGlyph; i < chunk.GlyphEnd; ++i) {
        TTextGlyph& glyph = FLines.Glyphs[i];
        glyph.Along += start;
        glyph.Across += FOnRail.Y;
        TPathPlace place;
        glyph.Visible = FindRailPlace(rail, glyph.Along + glyph.Advance / 2, place);
        const TAffine line = Turn(place.Direction).Then(TAffine::Translation(place.Point.X, place.Point.Y));
        PlaceGlyph(glyph, -glyph.Advance / 2, glyph.Across, line);
    }
    const double end = start + FShift.X + (FRightToLeft ? 0 : FEnd);
    FOnRail = {end - rail.StartOffset, FOnRail.Y + FShift.Y};
    const TPathPlace last = rail.Path().At(end);
    FCurrent = {last.Point.X - last.Direction.Y * FOnRail.Y, last.Point.Y + last.Direction.X * FOnRail.Y};
}

/// Finds a place on the path; false beyond its ends. A closed path goes on behind its seam for one round,
/// which the anchor places about the text's begin (SVG 2, 11.8.3).
bool TChunkPlacer::FindRailPlace(const TTextRail& rail, double distance, TPathPlace& place) const {
    const double length = rail.Path().GetLength();
    if (!(length > 0) || !std::isfinite(distance)) return false;
    if (!rail.Path().IsClosed()) {
        place = rail.Path().At(distance);
        return distance >= 0 && distance <= length;
    }
    const double way = distance - rail.StartOffset + FAnchorPart * length;
    place = rail.Path().At(distance - std::floor(distance / length) * length);
    return way >= 0 && way <= length;
}

void TChunkPlacer::PlaceGlyph(TTextGlyph& glyph, double along, double across, const TAffine& line) const {
    const double raise = FContent.Nodes[glyph.Node].Raise;
    const double angle = FContent.Characters[glyph.Character].RotationDeg;
    glyph.Place = TAffine::Translation(along, across - raise).Then(line);
    if (angle != 0) glyph.Place = TAffine::Rotation(angle * Radians).Then(glyph.Place);
    glyph.Visible = glyph.Visible && glyph.Place.IsFinite();
}

} // namespace

void PlaceChunks(const TTextContent& content, TTextLines& lines) {
    TChunkPlacer placer(content, lines);
    for (const TTextChunk& chunk : lines.Chunks)
        placer.Place(chunk);
}

TRectD CellOf(const TTextNode& node, const TTextGlyph& glyph, bool isVertical) {
    const TFontMetrics& font = node.Metrics;
    if (glyph.Upright) return {0, -node.Font.Size / 2, glyph.Advance, node.Font.Size / 2};
    const double down = isVertical ? (font.Ascent - font.Descent) / 2 : 0;
    return {0, down - font.Ascent, glyph.Advance, down + font.Descent};
}

} // namespace Vz
