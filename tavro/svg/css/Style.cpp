#include "tavro/svg/css/Style.h"

#include "tavro/runtime/Lasting.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {

using P = TSVGStyleProperty;
using K = TStyleValue::TKind;

bool Before(const TSVGStyleSet::TEntry& entry, TSVGStyleProperty property) {
    return entry.Property < property;
}

const std::shared_ptr<const TComputedText>& InitialText() {
    static const auto text = std::make_shared<const TComputedText>();
    return text;
}

/// Absolute sizes, as factors of medium (CSS Fonts 4, 2.5).
double SizeFactor(TKeyword word) {
    switch (word) {
    case TKeyword::XxSmall:
        return 3.0 / 5;
    case TKeyword::XSmall:
        return 3.0 / 4;
    case TKeyword::Small:
        return 8.0 / 9;
    case TKeyword::Large:
        return 6.0 / 5;
    case TKeyword::XLarge:
        return 3.0 / 2;
    case TKeyword::XxLarge:
        return 2;
    case TKeyword::XxxLarge:
        return 3;
    default:
        return 1;
    }
}

double StretchOf(TKeyword word) {
    switch (word) {
    case TKeyword::UltraCondensed:
        return 50;
    case TKeyword::ExtraCondensed:
        return 62.5;
    case TKeyword::Condensed:
        return 75;
    case TKeyword::SemiCondensed:
        return 87.5;
    case TKeyword::SemiExpanded:
        return 112.5;
    case TKeyword::Expanded:
        return 125;
    case TKeyword::ExtraExpanded:
        return 150;
    case TKeyword::UltraExpanded:
        return 200;
    default:
        return 100;
    }
}

/// Relative weights (CSS Fonts 4, 2.4.1).
int BolderThan(int weight) { return weight < 350 ? 400 : weight < 550 ? 700 : std::max(weight, 900); }
int LighterThan(int weight) { return weight < 100 ? weight : weight < 550 ? 100 : weight < 750 ? 400 : 700; }

/// Applies declarations to a style, those first that others refer to.
class TResolver {
public:
    TResolver(TComputedStyle& style, const TComputedStyle& parent, const TSVGStyleSet& own,
              TLengthBasis basis)
        : S(style)
        , Parent(parent)
        , Own(own)
        , Basis(basis) {}

    void Run() {
        ApplyText();
        if (const TStyleValue* v = Own.Find(P::Color); v && v->Kind == K::Color) S.Color = v->Color;
        const double view[] = {Basis.ViewWidth, Basis.ViewHeight};
        Basis = BasisOf(S, view[0], view[1]);
        for (const auto& [property, value] : Own.Entries())
            Apply(property, value);
    }

private:
    static bool IsTextProperty(P p) {
        switch (p) {
        case P::FontFamily:
        case P::FontSize:
        case P::FontStretch:
        case P::FontStyle:
        case P::FontVariant:
        case P::FontWeight:
        case P::FontKerning:
        case P::Kerning:
        case P::LetterSpacing:
        case P::WordSpacing:
        case P::TextAnchor:
        case P::Direction:
        case P::WritingMode:
        case P::WhiteSpace:
            return true;
        default:
            return false;
        }
    }

    void ApplyText() {
        const auto entries = Own.Entries();
        if (std::none_of(entries.begin(), entries.end(),
                         [](const auto& e) { return IsTextProperty(e.Property); }))
            return;
        auto text = std::make_shared<TComputedText>(*S.Text);
        if (const TStyleValue* size = Own.Find(P::FontSize)) text->Font.Size = FontSize(*size);
        for (const auto& [property, value] : entries)
            ApplyTextProperty(*text, property, value);
        if (!(*text == *S.Text)) S.Text = std::move(text);
    }

    double FontSize(const TStyleValue& v) const {
        const double parent = Parent.Text->Font.Size;
        double size = parent;
        if (v.Kind == K::Keyword) {
            if (v.Word == TKeyword::Smaller || v.Word == TKeyword::Larger)
                size = v.Word == TKeyword::Larger ? parent * 1.2 : parent / 1.2;
            else
                size = InitialText()->Font.Size * SizeFactor(v.Word);
        } else if (v.Kind == K::Length) {
            TLengthBasis basis = Basis;
            basis.FontSize = parent;
            basis.XHeight = 0;
            basis.RootFontSize = Parent.RootFontSize;
            size = v.Unit == TSVGUnit::Percent ? parent * v.Number / 100
                                               : v.Length().Resolve(TAxis::Other, basis);
        }
        return std::isfinite(size) && size >= 0 ? size : parent;
    }

    void ApplyTextProperty(TComputedText& text, P property, const TStyleValue& v) const {
        if (v.Kind == K::Inherit) return;
        TTextStyle& font = text.Font;
        switch (property) {
        case P::FontFamily:
            if (v.Text) font.Family = *v.Text;
            break;
        case P::FontStretch:
            font.Stretch = v.Kind == K::Keyword  ? StretchOf(v.Word)
                           : v.Kind == K::Number ? v.Number
                                                 : font.Stretch;
            break;
        case P::FontStyle:
            font.Slant = v.Word == TKeyword::Italic    ? TFontSlant::Italic
                         : v.Word == TKeyword::Oblique ? TFontSlant::Oblique
                                                       : TFontSlant::Normal;
            break;
        case P::FontVariant:
            font.SmallCaps = v.Word == TKeyword::SmallCaps;
            break;
        case P::FontWeight:
            font.Weight = Weight(v, font.Weight);
            break;
        case P::FontKerning:
            font.Kerning = v.Word != TKeyword::None;
            break;
        case P::Kerning:
            font.Kerning = !(v.Kind == K::Length && v.Number == 0);
            break;
        case P::LetterSpacing:
            text.LetterSpacing = Spacing(text, v);
            break;
        case P::WordSpacing:
            text.WordSpacing = Spacing(text, v);
            break;
        case P::TextAnchor:
            text.Anchor = v.Word;
            break;
        case P::Direction:
            text.Direction = v.Word;
            break;
        case P::WritingMode:
            text.WritingMode = v.Word;
            break;
        case P::WhiteSpace:
            text.PreserveSpace =
                v.Word == TKeyword::Pre || v.Word == TKeyword::PreWrap || v.Word == TKeyword::BreakSpaces;
            break;
        default:
            break;
        }
    }

    static int Weight(const TStyleValue& v, int inherited) {
        if (v.Kind == K::Number) return static_cast<int>(std::clamp(v.Number, 1.0, 1000.0));
        switch (v.Word) {
        case TKeyword::Bold:
            return 700;
        case TKeyword::Bolder:
            return BolderThan(inherited);
        case TKeyword::Lighter:
            return LighterThan(inherited);
        default:
            return 400;
        }
    }

    double Spacing(const TComputedText& text, const TStyleValue& v) const {
        if (v.Kind != K::Length) return 0;
        TLengthBasis basis = Basis;
        basis.FontSize = text.Font.Size;
        basis.RootFontSize = S.RootFontSize;
        return v.Length().Resolve(TAxis::Other, basis);
    }

    double Length(const TStyleValue& v, double inherited) const {
        return v.Kind == K::Length   ? v.Length().Resolve(TAxis::Other, Basis)
               : v.Kind == K::Number ? v.Number
                                     : inherited;
    }

    TVZGPColor ColorValue(const TStyleValue& v, TVZGPColor inherited) const {
        return v.Kind == K::Color ? v.Color : v.Kind == K::CurrentColor ? S.Color : inherited;
    }

    TComputedPaint Paint(const TStyleValue& v) const {
        using T = TComputedPaint::TKind;
        TComputedPaint paint;
        switch (v.Kind) {
        case K::Color:
            paint.Kind = T::Color;
            paint.Color = v.Color;
            break;
        case K::CurrentColor:
            paint.Kind = T::CurrentColor;
            break; // inherited as the word
        case K::ContextFill:
            paint.Kind = T::ContextFill;
            break;
        case K::ContextStroke:
            paint.Kind = T::ContextStroke;
            break;
        case K::Url:
            paint.Kind = T::Server;
            paint.Server = v.Text;
            paint.HasFallback = v.Fallback == TStyleValue::TFallback::Color ||
                                v.Fallback == TStyleValue::TFallback::CurrentColor;
            paint.Color = v.Fallback == TStyleValue::TFallback::CurrentColor ? S.Color : v.Color;
            break;
        default:
            break;
        }
        return paint;
    }

    static std::shared_ptr<const std::string> Reference(const TStyleValue& v) {
        return v.Kind == K::Url || v.Kind == K::Text ? v.Text : nullptr;
    }

    /// Null where the value is no list of lengths.
    static std::shared_ptr<const std::vector<TSVGLength>> Lengths(const TStyleValue& v) {
        if (v.Kind != K::Lengths || !v.Text) return nullptr;
        auto lengths = std::make_shared<std::vector<TSVGLength>>();
        ParseLengthList(*v.Text, *lengths);
        return lengths;
    }

    /// A dash list in user units, doubled where its count is odd; null where it paints solid (SVG 1.1, 11.4).
    std::shared_ptr<const std::vector<double>> Dashes(const TStyleValue& v) const {
        const auto lengths = Lengths(v);
        if (!lengths) return nullptr;
        auto dashes = std::make_shared<std::vector<double>>();
        double sum = 0;
        for (const TSVGLength& length : *lengths) {
            const double d = length.Resolve(TAxis::Other, Basis);
            if (!(d >= 0) || !std::isfinite(d)) return nullptr;
            dashes->push_back(d);
            sum += d;
        }
        if (!(sum > 0) || !std::isfinite(sum)) return nullptr;
        if (dashes->size() % 2) {
            dashes->reserve(dashes->size() * 2);
            dashes->insert(dashes->end(), dashes->begin(), dashes->end());
        }
        return dashes;
    }

    static bool IsOwnAlpha(const TStyleValue& v) { return v.Kind == K::Color && v.HasOwnAlpha; }
    bool HasOwnAlpha(P property) const {
        const TStyleValue* const v = Own.Find(property);
        return v && IsOwnAlpha(*v);
    }
    static void TakeAlpha(TVZGPColor& color, double& opacity) {
        opacity = AlphaOf(color) / 255.0;
        color = WithAlpha(color, 255);
    }

    void Apply(P property, const TStyleValue& v) {
        if (v.Kind == K::Inherit) {
            InheritExplicitly(property);
            return;
        }
        const TFillRule rule = v.Word == TKeyword::EvenOdd ? TFillRule::EvenOdd : TFillRule::NonZero;
        switch (property) {
        case P::Fill:
            S.Fill = Paint(v);
            if (IsOwnAlpha(v)) TakeAlpha(S.Fill.Color, S.FillOpacity);
            break;
        case P::Stroke:
            S.Stroke = Paint(v);
            if (IsOwnAlpha(v)) TakeAlpha(S.Stroke.Color, S.StrokeOpacity);
            break;
        case P::FillOpacity:
            if (!HasOwnAlpha(P::Fill)) S.FillOpacity = v.Number;
            break;
        case P::StrokeOpacity:
            if (!HasOwnAlpha(P::Stroke)) S.StrokeOpacity = v.Number;
            break;
        case P::FillRule:
            S.FillRule = rule;
            break;
        case P::ClipRule:
            S.ClipRule = rule;
            break;
        case P::StrokeWidth:
            S.StrokeWidth = Length(v, S.StrokeWidth);
            break;
        case P::StrokeDashArray:
            S.Dashes = Dashes(v);
            break;
        case P::StrokeDashOffset:
            S.DashOffset = Length(v, S.DashOffset);
            break;
        case P::StrokeMiterLimit:
            S.MiterLimit = v.Number;
            break;
        case P::StrokeLineCap:
            S.Cap = v.Word == TKeyword::Round    ? TLineCap::Round
                    : v.Word == TKeyword::Square ? TLineCap::Square
                                                 : TLineCap::Butt;
            break;
        case P::StrokeLineJoin:
            S.Join = Join(v.Word);
            break;
        case P::Visibility:
            S.Visibility = v.Word;
            break;
        case P::ImageRendering:
            S.ImageRendering = v.Word;
            break;
        case P::ShapeRendering:
            S.ShapeRendering = v.Word;
            break;
        case P::ColorInterpolation:
            S.ColorInterpolation = v.Word;
            break;
        case P::ColorInterpolationFilters:
            S.ColorInterpolationFilters = v.Word;
            break;
        case P::PointerEvents:
            S.PointerEvents = v.Word;
            break;
        case P::DominantBaseline:
            S.DominantBaseline = v.Word;
            break;
        case P::PaintOrder:
            S.PaintOrder = v.Text;
            break;
        case P::MarkerStart:
            S.MarkerStart = Reference(v);
            break;
        case P::MarkerMid:
            S.MarkerMid = Reference(v);
            break;
        case P::MarkerEnd:
            S.MarkerEnd = Reference(v);
            break;
        default:
            ApplyOwn(property, v);
            break;
        }
    }

    static TLineJoin Join(TKeyword word) {
        switch (word) {
        case TKeyword::Round:
            return TLineJoin::Round;
        case TKeyword::Bevel:
            return TLineJoin::Bevel;
        case TKeyword::MiterClip:
            return TLineJoin::MiterClip;
        case TKeyword::Arcs:
            return TLineJoin::Arcs;
        default:
            return TLineJoin::Miter;
        }
    }

    /// Properties that are not inherited.
    void ApplyOwn(P property, const TStyleValue& v) {
        switch (property) {
        case P::ClipPath:
            S.ClipPath = Reference(v);
            break;
        case P::Mask:
            S.Mask = Reference(v);
            break;
        case P::Filter:
            S.Filter = v.Kind == K::Url ? std::make_shared<const std::string>("url(#" + *v.Text + ")")
                                        : Reference(v);
            break;
        case P::StopColor:
            S.StopColor = ColorValue(v, S.StopColor);
            if (IsOwnAlpha(v)) TakeAlpha(S.StopColor, S.StopOpacity);
            break;
        case P::StopOpacity:
            if (!HasOwnAlpha(P::StopColor)) S.StopOpacity = v.Number;
            break;
        case P::FloodColor:
            S.FloodColor = ColorValue(v, S.FloodColor);
            break;
        case P::FloodOpacity:
            S.FloodOpacity = v.Number;
            break;
        case P::LightingColor:
            S.LightingColor = ColorValue(v, S.LightingColor);
            break;
        case P::Overflow:
            S.Overflow = v.Word;
            S.HasOverflow = true;
            break;
        case P::AlignmentBaseline:
            S.AlignmentBaseline = v.Word;
            break;
        case P::BaselineShift:
            S.BaselineShift = v;
            break;
        case P::TextDecoration:
            S.TextDecoration = v.Text;
            break;
        case P::MaskType:
            S.MaskType = v.Word;
            break;
        case P::MixBlendMode:
            S.Blend = v.Word;
            break;
        case P::Isolation:
            S.Isolation = v.Word;
            break;
        case P::VectorEffect:
            S.NonScalingStroke = v.Word == TKeyword::NonScalingStroke;
            break;
        case P::TransformOrigin:
            S.TransformOrigin = Lengths(v);
            break;
        default:
            break;
        }
    }

    void InheritExplicitly(P property) {
        switch (property) {
        case P::ClipPath:
            S.ClipPath = Parent.ClipPath;
            break;
        case P::Mask:
            S.Mask = Parent.Mask;
            break;
        case P::Filter:
            S.Filter = Parent.Filter;
            break;
        case P::StopColor:
            S.StopColor = Parent.StopColor;
            break;
        case P::StopOpacity:
            S.StopOpacity = Parent.StopOpacity;
            break;
        case P::FloodColor:
            S.FloodColor = Parent.FloodColor;
            break;
        case P::FloodOpacity:
            S.FloodOpacity = Parent.FloodOpacity;
            break;
        case P::LightingColor:
            S.LightingColor = Parent.LightingColor;
            break;
        case P::Overflow:
            S.Overflow = Parent.HasOverflow ? Parent.Overflow : TKeyword::Visible;
            S.HasOverflow = true;
            break;
        case P::AlignmentBaseline:
            S.AlignmentBaseline = Parent.AlignmentBaseline;
            break;
        case P::BaselineShift:
            S.BaselineShift = Parent.BaselineShift;
            break;
        case P::TextDecoration:
            S.TextDecoration = Parent.TextDecoration;
            break;
        case P::MaskType:
            S.MaskType = Parent.MaskType;
            break;
        case P::MixBlendMode:
            S.Blend = Parent.Blend;
            break;
        case P::Isolation:
            S.Isolation = Parent.Isolation;
            break;
        case P::TransformOrigin:
            S.TransformOrigin = Parent.TransformOrigin;
            break;
        default:
            break; // an inherited property has the parent's value already
        }
    }

    TComputedStyle& S;
    const TComputedStyle& Parent;
    const TSVGStyleSet& Own;
    TLengthBasis Basis;
};

} // namespace

/// Where the property stands, or would stand.
TSVGStyleSet::TEntry* TSVGStyleSet::Place(TSVGStyleProperty property) const {
    TEntry* const first = FEntries.get();
    return std::lower_bound(first, first + FCount, property, Before);
}

/// An entry on its way to another block; it stays where others share this one.
TSVGStyleSet::TEntry TSVGStyleSet::TakeOrCopy(std::size_t index) {
    return IsSoleHolder(FEntries) ? std::move(FEntries[index]) : FEntries[index];
}

const TStyleValue* TSVGStyleSet::Find(TSVGStyleProperty property) const {
    const TEntry* const at = Place(property);
    return at != FEntries.get() + FCount && at->Property == property ? &at->Value : nullptr;
}

void TSVGStyleSet::Put(TSVGStyleProperty property, TStyleValue value) {
    const auto place = static_cast<std::size_t>(Place(property) - FEntries.get());
    const bool isThere = place < FCount && FEntries[place].Property == property;
    if (isThere && IsSoleHolder(FEntries)) {
        FEntries[place].Value = std::move(value);
        return;
    }
    const std::size_t count = FCount + (isThere ? 0u : 1u);
    auto entries = std::make_shared<TEntry[]>(count);
    for (std::size_t i = 0; i < place; ++i)
        entries[i] = TakeOrCopy(i);
    entries[place] = {property, std::move(value)};
    for (std::size_t i = place + 1; i < count; ++i)
        entries[i] = TakeOrCopy(i + FCount - count);
    FEntries = std::move(entries);
    FCount = static_cast<std::uint8_t>(count);
}

void TSVGStyleSet::MakeLasting() { Vz::MakeLasting(FEntries); }

bool TSVGStyleSet::Remove(TSVGStyleProperty property) {
    if (!Contains(property)) return false;
    const auto place = static_cast<std::size_t>(Place(property) - FEntries.get());
    auto entries = FCount > 1 ? std::make_shared<TEntry[]>(FCount - 1) : nullptr;
    for (std::size_t i = 0; i + 1 < FCount; ++i)
        entries[i] = TakeOrCopy(i < place ? i : i + 1);
    FEntries = std::move(entries);
    --FCount;
    return true;
}

bool TSVGStyleSet::operator==(const TSVGStyleSet& other) const {
    return FEntries == other.FEntries || std::ranges::equal(Entries(), other.Entries());
}

const TComputedStyle& TComputedStyle::Initial() {
    static const TComputedStyle initial = [] {
        TComputedStyle s;
        s.Text = InitialText();
        return s;
    }();
    return initial;
}

TLengthBasis BasisOf(const TComputedStyle& style, double viewWidth, double viewHeight) {
    return {viewWidth, viewHeight, style.Text->Font.Size, style.RootFontSize, 0};
}

TComputedStyle ComputeStyle(const TComputedStyle& parent, const TSVGStyleSet& own, TLengthBasis view) {
    TComputedStyle s = parent;
    const TComputedStyle& initial = TComputedStyle::Initial();
    s.ClipPath = s.Mask = s.Filter = s.TextDecoration = nullptr;
    s.TransformOrigin = nullptr;
    s.StopColor = initial.StopColor;
    s.StopOpacity = s.FloodOpacity = 1;
    s.FloodColor = initial.FloodColor;
    s.LightingColor = initial.LightingColor;
    s.Overflow = initial.Overflow;
    s.HasOverflow = false;
    s.AlignmentBaseline = initial.AlignmentBaseline;
    s.MaskType = initial.MaskType;
    s.Blend = initial.Blend;
    s.Isolation = initial.Isolation;
    s.NonScalingStroke = false;
    s.BaselineShift = initial.BaselineShift;
    if (!own.IsEmpty()) TResolver(s, parent, own, view).Run();
    return s;
}

} // namespace Vz
