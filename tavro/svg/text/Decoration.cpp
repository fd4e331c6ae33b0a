#include "tavro/svg/text/LayoutInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {
namespace {

/// Where a line lies about the base line, in the line's own frame.
struct TStripe {
    double Top = 0;
    double Bottom = 0;
};

/// Fonts state an underline's and a strike's place by one figure, which most of their makers mean for the
/// line's middle.
TStripe StripeOf(const TFontMetrics& font, TTextLineKind kind) {
    double middle = 0;
    switch (kind) {
    case TTextLineKind::Underline:
        middle = font.UnderlinePosition - font.UnderlineThickness / 2;
        break;
    case TTextLineKind::Overline:
        middle = -font.Ascent;
        break;
    case TTextLineKind::LineThrough:
        middle = -font.StrikePosition - font.StrikeThickness / 2;
        break;
    }
    return {middle - font.UnderlineThickness / 2, middle + font.UnderlineThickness / 2};
}

/// Appends the lines along one element's glyphs, as few and as long as they can be.
class TDecorator {
public:
    TDecorator(const TTextContent& content, const TTextLines& lines, TStripe stripe, TFigures& figures)
        : FContent(content)
        , FGlyphs(lines.Glyphs)
        , FStripe(stripe)
        , FFigures(figures) {}

    void Add(std::span<const std::size_t> glyphs);

private:
    const TTextGlyph& Glyph(std::size_t index) const { return FGlyphs[index]; }
    bool IsTurned(const TTextGlyph& glyph) const {
        return FContent.Characters[glyph.Character].RotationDeg != 0;
    }
    bool Joins(std::size_t left, std::size_t right) const;
    void AddStraight(const TTextGlyph& first, double end);
    void AddCurved(const TPathRuler& ruler, const TTextGlyph& first, double end);
    void AddBand(const std::vector<TPathPlace>& places, double across);

    const TTextContent& FContent;
    const std::vector<TTextGlyph>& FGlyphs;
    TStripe FStripe;
    TFigures& FFigures;
};

void TDecorator::Add(std::span<const std::size_t> glyphs) {
    for (std::size_t i = 0, next = 0; i < glyphs.size(); i = next) {
        next = i + 1;
        const TTextGlyph& first = Glyph(glyphs[i]);
        if (!first.Visible) continue;
        while (next < glyphs.size() && Joins(glyphs[next - 1], glyphs[next]))
            ++next;
        const TTextGlyph& last = Glyph(glyphs[next - 1]);
        const double end = last.Along + last.Advance;
        const auto& rail = FContent.Nodes[first.Node].Rail;
        if (rail && !IsTurned(first))
            AddCurved(rail->Path(), first, end);
        else
            AddStraight(first, end);
    }
}

/// True where one line goes on from a glyph to the next one.
bool TDecorator::Joins(std::size_t left, std::size_t right) const {
    const TTextGlyph& a = Glyph(left);
    const TTextGlyph& b = Glyph(right);
    return right == left + 1 && a.Chunk == b.Chunk && b.Visible && !IsTurned(a) && !IsTurned(b) &&
           a.Across == b.Across && b.Along >= a.Along;
}

void TDecorator::AddStraight(const TTextGlyph& first, double end) {
    TFigures rect;
    rect.AddRect(0, FStripe.Top, end - first.Along, FStripe.Bottom - FStripe.Top);
    FFigures.Append(rect, first.Place);
}

/// A band beside the path, in steps that are short against the letters.
void TDecorator::AddCurved(const TPathRuler& ruler, const TTextGlyph& first, double end) {
    constexpr double stepsInEm = 16;
    constexpr double maxSteps = 100'000;
    const TTextNode& node = FContent.Nodes[first.Node];
    const double length = ruler.GetLength();
    const double across = first.Across - node.Raise;
    double begin = first.Along;
    if (!ruler.IsClosed()) {
        begin = std::max(begin, 0.0);
        end = std::min(end, length);
    }
    const double count = std::ceil((end - begin) / node.Font.Size * stepsInEm);
    if (!(count > 0) || !(count <= maxSteps)) return;
    const double step = (end - begin) / count;
    std::vector<TPathPlace> places;
    for (double i = 0; i <= count; ++i) {
        double distance = begin + step * i;
        if (ruler.IsClosed()) distance -= std::floor(distance / length) * length;
        const TPathPlace place = ruler.At(distance);
        // From one sub-path to the next there is nothing to go along.
        if (!places.empty() && std::hypot(place.Point.X - places.back().Point.X,
                                          place.Point.Y - places.back().Point.Y) > step * 1.5) {
            AddBand(places, across);
            places.clear();
        }
        places.push_back(place);
    }
    AddBand(places, across);
}

void TDecorator::AddBand(const std::vector<TPathPlace>& places, double across) {
    const auto aside = [](const TPathPlace& place, double by) {
        return TPointD{place.Point.X - place.Direction.Y * by, place.Point.Y + place.Direction.X * by};
    };
    if (places.size() < 2) return;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const TPointD p = aside(places[i], across + FStripe.Top);
        i == 0 ? FFigures.MoveTo(p.X, p.Y) : FFigures.LineTo(p.X, p.Y);
    }
    for (std::size_t i = places.size(); i-- > 0;) {
        const TPointD p = aside(places[i], across + FStripe.Bottom);
        FFigures.LineTo(p.X, p.Y);
    }
    FFigures.Close();
}

} // namespace

void AppendDecoration(const TTextContent& content, const TTextLines& lines,
                      std::span<const std::size_t> glyphs, TTextLineKind kind, TFigures& figures) {
    const TFontMetrics& font = content.Nodes[lines.Glyphs[glyphs.front()].Node].Metrics;
    TStripe stripe = StripeOf(font, kind);
    const double middle = lines.IsVertical ? (font.Ascent - font.Descent) / 2 : 0;
    stripe.Top += middle;
    stripe.Bottom += middle;
    TDecorator(content, lines, stripe, figures).Add(glyphs);
}

} // namespace Vz
