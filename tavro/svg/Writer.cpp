#include "tavro/graphics/PathData.h"
#include "tavro/runtime/Utf8.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/TextElements.h"
#include "tavro/svg/text/Layout.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Appends a text with XML's escapes. What XML 1.0 cannot hold (its section 2.2) is left out: control
/// characters, and all from the first byte on that is no UTF-8.
void AppendEscaped(std::string& out, std::string_view text, bool inAttribute) {
    text = text.substr(0, FindBadUtf8(text));
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += inAttribute ? "&quot;" : "\"";
            break;
        case '\n':
        case '\t':
        case '\r':
            // White space of an attribute would come back as blanks.
            if (inAttribute || c == '\r')
                out += "&#" + std::to_string(static_cast<int>(c)) + ";";
            else
                out += c;
            break;
        default:
            if (static_cast<unsigned char>(c) >= ' ') out += c;
            break;
        }
    }
}

/// The feature that a viewer has which can lay text along a path (SVG 1.1, appendix N). Those that ignore the
/// attribute can.
constexpr std::string_view TextFeature = "http://www.w3.org/TR/SVG11/feature#Text";

bool HasTextPath(const TSVGElement& element) {
    return element.GetTag() == TSVGTag::TextPath ||
           std::ranges::any_of(element.Children(), [](const auto& child) { return HasTextPath(*child); });
}

bool IsTextOnPath(const TSVGElement& element) {
    return element.GetTag() == TSVGTag::Text && HasTextPath(element);
}

/// True for a group of nothing but texts on paths.
bool IsGroupOnPaths(const TSVGElement& element) {
    return element.GetTag() == TSVGTag::G && element.GetChildCount() > 0 &&
           std::ranges::all_of(element.Children(), [](const auto& child) { return IsTextOnPath(*child); });
}

/// True where the element is drawn in its own place, as far as its ancestors say.
bool IsInPicture(const TSVGElement& element) {
    for (const TSVGElement* at = &element; at; at = at->GetParent()) {
        const TSVGTag tag = at->GetTag();
        const auto* const graphic = at->AsGraphic();
        if (!graphic || !graphic->IsDisplayed()) return false;
        if (at != &element && tag != TSVGTag::Svg && tag != TSVGTag::G && tag != TSVGTag::A &&
            tag != TSVGTag::Switch)
            return false;
    }
    return true;
}

/// Texts on paths, with the group that holds nothing else, are written twice: as they are, and as outlines
/// for viewers that know no text on paths.
bool NeedsOutlines(const TSVGElement& element) {
    return (IsGroupOnPaths(element) || IsTextOnPath(element)) && IsInPicture(element);
}

/// True for outlines that were written for the element before it.
bool IsOutlines(const TSVGElement& element) {
    return element.GetTag() == TSVGTag::G && element.GetId().empty() &&
           std::ranges::all_of(element.Children(), [](const auto& child) {
               return child->GetTag() == TSVGTag::Path && child->GetId().empty();
           });
}

/// Moves the alpha of colours that stands in place of an opacity property into that property.
void SplitOwnAlphas(TSVGStyleSet& style) {
    using P = TSVGStyleProperty;
    for (const auto& [paint, opacity] : {std::pair{P::Fill, P::FillOpacity},
                                         {P::Stroke, P::StrokeOpacity},
                                         {P::StopColor, P::StopOpacity}}) {
        const TStyleValue* const own = style.Find(paint);
        if (!own || own->Kind != TStyleValue::TKind::Color || !own->HasOwnAlpha) continue;
        TStyleValue color = *own;
        TStyleValue number;
        number.Kind = TStyleValue::TKind::Number;
        number.Number = AlphaOf(color.Color) / 255.0;
        color.Color = WithAlpha(color.Color, 255);
        color.HasOwnAlpha = false;
        style.Put(paint, std::move(color));
        style.Put(opacity, std::move(number));
    }
}

/// What the elements from below an ancestor down to one of its descendants set, the inner ones over the
/// outer.
TSVGStyleSet StyleBelow(const TSVGElement& ancestor, const TSVGElement& element) {
    if (&element == &ancestor || !element.GetParent()) return {};
    TSVGStyleSet style = StyleBelow(ancestor, *element.GetParent());
    TSVGStyleSet own = element.GetStyle();
    SplitOwnAlphas(own);
    for (const auto& [property, value] : own.Entries())
        style.Put(property, value);
    return style;
}

std::string Indent(int depth) { return std::string(static_cast<std::size_t>(depth) * 2, ' '); }

/// Writes elements as text, two blanks a level; inside of text no blank is added.
class TSVGWriter final : public IAttributeSink {
public:
    void Write(const TSVGElement& element, int depth);
    std::string Take() { return std::move(FOut); }

    void Put(std::string_view name, std::string_view value) override {
        FOut += ' ';
        FOut += name;
        FOut += "=\"";
        AppendEscaped(FOut, value, true);
        FOut += '"';
    }

private:
    void WriteStyle(const TSVGElement& element) { WriteStyle(element.GetStyle(), element.GetTag()); }
    void WriteStyle(TSVGStyleSet style, TSVGTag tag);
    void WriteElement(const TSVGElement& element, int depth, bool isChoice);
    void WriteChoice(const TSVGElement& element, int depth);
    void WriteOutlines(const TSVGElement& element, int depth);
    void WriteTextOutlines(const TSVGCustomText& text, int depth);

    std::string FOut;
    bool FInChoice = false; ///< outlines of what is written follow
};

void TSVGWriter::WriteStyle(TSVGStyleSet set, TSVGTag tag) {
    SplitOwnAlphas(set);
    // Parts of filters may have an attribute of the same name and another meaning.
    const bool isFilterPart = tag == TSVGTag::FilterPart;
    std::string style;
    for (const auto& [property, value] : set.Entries()) {
        const std::string_view name = GetStylePropertyName(property);
        const std::string text = StyleValueText(property, value);
        if (property == TSVGStyleProperty::WhiteSpace)
            Put("xml:space", text.starts_with("pre") ? "preserve" : "default");
        else if (IsPresentationAttribute(property) && !isFilterPart)
            Put(name, text);
        else
            style += (style.empty() ? "" : ";") + std::string(name) + ":" + text;
    }
    if (!style.empty()) Put("style", style);
}

void TSVGWriter::Write(const TSVGElement& element, int depth) {
    if (const auto* const characters = dynamic_cast<const TSVGCharacters*>(&element)) {
        AppendEscaped(FOut, characters->GetText(), false);
    } else if (FInChoice || !NeedsOutlines(element)) {
        WriteElement(element, depth, false);
    } else if (element.GetParent()->GetTag() == TSVGTag::Switch) {
        WriteChoice(element, depth);
    } else {
        const std::string indent = Indent(depth);
        FOut += indent + "<switch>\n";
        WriteChoice(element, depth + 1);
        FOut += indent + "</switch>\n";
    }
}

/// An element and its outlines, of which a viewer takes the first that it can draw.
void TSVGWriter::WriteChoice(const TSVGElement& element, int depth) {
    FInChoice = true;
    WriteElement(element, depth, true);
    FInChoice = false;
    WriteOutlines(element, depth);
}

void TSVGWriter::WriteOutlines(const TSVGElement& element, int depth) {
    FOut += Indent(depth) + "<g";
    if (const auto* const text = dynamic_cast<const TSVGCustomText*>(&element)) {
        FOut += ">\n";
        WriteTextOutlines(*text, depth + 1);
    } else {
        element.WriteAttributes(*this);
        WriteStyle(element);
        FOut += ">\n";
        for (const auto& child : element.Children())
            WriteTextOutlines(dynamic_cast<const TSVGCustomText&>(*child), depth + 1);
    }
    FOut += Indent(depth) + "</g>\n";
}

/// Outlines of a text, a path for each of its pieces, in the units of the text's parent.
void TSVGWriter::WriteTextOutlines(const TSVGCustomText& text, int depth) {
    const TSVGDocument& document = text.GetDocument();
    const auto& view = document.GetViewBox();
    const TComputedStyle style = text.GetComputedStyle();
    const TLengthBasis basis = BasisOf(style, view ? view->Width : double{document.GetWidth()},
                                       view ? view->Height : double{document.GetHeight()});
    // Three decimals in letters of ten units: finer than anything shows.
    const double steps =
        std::pow(10, std::clamp(std::ceil(4 - std::log10(style.Text->Font.Size)), 0.0, 12.0));
    for (TTextPiece& piece : LayOutText(text, style, basis).Pieces) {
        if (piece.Outline.IsEmpty()) continue;
        for (double& number : piece.Outline.Numbers)
            number = std::round(number * steps) / steps;
        TVZPathData data;
        data.SetFigures(std::move(piece.Outline));
        FOut += Indent(depth) + "<path";
        text.TSVGGraphicElement::WriteAttributes(*this);
        Put("d", data.GetPathString());
        WriteStyle(StyleBelow(*text.GetParent(), *piece.Element), TSVGTag::Path);
        FOut += "/>\n";
    }
}

void TSVGWriter::WriteElement(const TSVGElement& element, int depth, bool isChoice) {
    const bool inText = dynamic_cast<const TSVGCustomText*>(&element) != nullptr;
    const bool belowText = dynamic_cast<const TSVGCustomText*>(element.GetParent()) != nullptr;
    const std::string indent = belowText ? std::string() : Indent(depth);
    const std::string_view lineEnd = belowText ? "" : "\n";
    const std::string name(element.GetTag() == TSVGTag::TRef ? "tspan" : element.GetTagName());

    FOut += indent + "<" + name;
    if (depth == 0) {
        Put("xmlns", "http://www.w3.org/2000/svg");
        Put("xmlns:xlink", "http://www.w3.org/1999/xlink");
    }
    if (!element.GetId().empty()) Put("id", element.GetId());
    if (isChoice) Put("requiredFeatures", TextFeature);
    element.WriteAttributes(*this);
    WriteStyle(element);

    const auto* const plain = dynamic_cast<const TSVGPlainElement*>(&element);
    const std::string_view text = plain ? std::string_view(plain->GetText()) : std::string_view();
    if (element.GetChildCount() == 0 && text.empty()) {
        FOut += "/>";
        FOut += lineEnd;
        return;
    }
    FOut += '>';
    AppendEscaped(FOut, text, false);
    if (!inText && text.empty()) FOut += '\n';
    const TSVGElement* before = nullptr;
    for (const auto& child : element.Children()) {
        const bool isRenewed =
            element.GetTag() == TSVGTag::Switch && before && NeedsOutlines(*before) && IsOutlines(*child);
        if (!isRenewed) Write(*child, depth + 1);
        before = child.get();
    }
    if (!inText && text.empty()) FOut += indent;
    FOut += "</" + name + ">";
    FOut += lineEnd;
}

} // namespace

std::string TSVGDocument::WriteText() const {
    TSVGWriter writer;
    writer.Write(*this, 0);
    return writer.Take();
}

} // namespace Vz
