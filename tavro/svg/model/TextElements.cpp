#include "tavro/svg/model/TextElements.h"

#include "tavro/runtime/Updates.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <array>

namespace Vz {

// Characters

void TSVGCharacters::SetText(std::string_view text) {
    if (text == FText) return;
    FText = text;
    Changed(TSVGChangeKind::Shape);
}

std::unique_ptr<TSVGElement> TSVGCharacters::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGCharacters>(document);
}

void TSVGCharacters::CopyFrom(const TSVGElement& source) {
    TSVGElement::CopyFrom(source);
    FText = static_cast<const TSVGCharacters&>(source).FText;
}

// Elements of text

namespace {

constexpr std::array<std::string_view, 4> PositionNames = {"x", "y", "dx", "dy"};

template <class T, class F> std::string Joined(const std::vector<T>& items, F text) {
    std::string joined;
    for (const T& item : items)
        joined += (joined.empty() ? "" : " ") + text(item);
    return joined;
}

void CollectText(const TSVGElement& element, std::string& text) {
    for (const auto& child : element.Children())
        if (const auto* const characters = dynamic_cast<const TSVGCharacters*>(child.get()))
            text += characters->GetText();
        else
            CollectText(*child, text);
}

} // namespace

std::string TSVGCustomText::GetText() const {
    std::string text;
    CollectText(*this, text);
    return text;
}

void TSVGCustomText::SetText(std::string_view text) {
    if (GetChildCount() == 1)
        if (auto* const characters = dynamic_cast<TSVGCharacters*>(&GetChild(0))) {
            characters->SetText(text);
            return;
        }
    const TUpdateScope update(*this);
    RemoveChildren();
    if (!text.empty()) Add<TSVGCharacters>().SetText(text);
}

bool TSVGCustomText::ReadAttribute(std::string_view name, std::string_view value) {
    if (const auto at = std::ranges::find(PositionNames, name); at != PositionNames.end()) {
        std::vector<TSVGLength> lengths;
        if (ParseLengthList(value, lengths))
            FPlacing.Edit().Positions[at - PositionNames.begin()] = std::move(lengths);
        else
            Refuse(name, value);
    } else if (name == "rotate") {
        std::vector<double> angles;
        if (ParseNumbers(value, angles))
            FPlacing.Edit().Rotations = std::move(angles);
        else
            Refuse(name, value);
    } else if (name == "textLength") {
        TSVGLength length;
        if (length.Parse(value) && length.GetValue() >= 0)
            FPlacing.Edit().TextLength = length;
        else
            Refuse(name, value);
    } else if (name == "lengthAdjust") {
        FPlacing.Edit().AdjustGlyphs = value == "spacingAndGlyphs";
    } else {
        return TSVGGraphicElement::ReadAttribute(name, value);
    }
    Changed(TSVGChangeKind::Shape);
    return true;
}

void TSVGCustomText::WriteAttributes(IAttributeSink& sink) const {
    TSVGGraphicElement::WriteAttributes(sink);
    for (std::size_t i = 0; i < PositionNames.size(); ++i)
        if (!FPlacing->Positions[i].empty())
            sink.Put(PositionNames[i],
                     Joined(FPlacing->Positions[i], [](const TSVGLength& l) { return l.ToText(); }));
    if (!FPlacing->Rotations.empty()) sink.Put("rotate", Joined(FPlacing->Rotations, NumberText));
    if (FPlacing->TextLength) sink.Put("textLength", FPlacing->TextLength->ToText());
    if (FPlacing->AdjustGlyphs) sink.Put("lengthAdjust", "spacingAndGlyphs");
}

std::unique_ptr<TSVGElement> TSVGCustomText::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGCustomText>(document, GetTag());
}

void TSVGCustomText::CopyFrom(const TSVGElement& source) {
    TSVGGraphicElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGCustomText&>(source);
    FPlacing = other.FPlacing;
}

void TSVGCustomText::MakeLasting() {
    TSVGGraphicElement::MakeLasting();
    FPlacing.MakeLasting();
}

std::unique_ptr<TSVGElement> TSVGText::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGText>(document);
}

// Text on a path

void TSVGTextPath::SetReference(std::string_view id) {
    if (id == FReference) return;
    FReference = id;
    Changed(TSVGChangeKind::Shape);
}

void TSVGTextPath::SetStartOffset(TSVGLength value) {
    if (value == FStartOffset) return;
    FStartOffset = value;
    Changed(TSVGChangeKind::Shape);
}

bool TSVGTextPath::ReadAttribute(std::string_view name, std::string_view value) {
    if (name == "href") {
        const std::string_view uri = Trimmed(value);
        if (uri.starts_with('#'))
            SetReference(uri.substr(1));
        else
            Refuse(name, value);
        return true;
    }
    if (name == "startOffset") {
        TSVGLength length;
        if (length.Parse(value))
            SetStartOffset(length);
        else
            Refuse(name, value);
        return true;
    }
    return TSVGCustomText::ReadAttribute(name, value);
}

void TSVGTextPath::WriteAttributes(IAttributeSink& sink) const {
    TSVGCustomText::WriteAttributes(sink);
    if (!FReference.empty()) sink.Put("xlink:href", "#" + FReference);
    if (!(FStartOffset == TSVGLength{})) sink.Put("startOffset", FStartOffset.ToText());
}

std::unique_ptr<TSVGElement> TSVGTextPath::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGTextPath>(document);
}

void TSVGTextPath::CopyFrom(const TSVGElement& source) {
    TSVGCustomText::CopyFrom(source);
    const auto& other = static_cast<const TSVGTextPath&>(source);
    FReference = other.FReference;
    FStartOffset = other.FStartOffset;
}

} // namespace Vz
