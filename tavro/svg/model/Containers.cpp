#include "tavro/svg/model/Containers.h"

#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <cmath>

namespace Vz {

// Groups

TSVGGroup::TSVGGroup(TSVGDocument& document, TSVGTag tag)
    : TSVGGraphicElement(document, tag) {}

std::unique_ptr<TSVGElement> TSVGGroup::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGGroup>(document, GetTag());
}

// View boxes

std::optional<TSVGViewBox> ParseViewBox(std::string_view text) {
    std::vector<double> n;
    if (!ParseNumbers(text, n, 5) || n.size() != 4 || !(n[2] > 0) || !(n[3] > 0)) return {};
    return TSVGViewBox{n[0], n[1], n[2], n[3]};
}

TAffine ViewBoxMap(const TSVGViewBox& box, const TSVGPreserveAspectRatio& ratio, double width,
                   double height) {
    double sx = width / box.Width;
    double sy = height / box.Height;
    if (ratio.GetAlign() == TSVGAlign::None) return {sx, 0, 0, sy, -box.X * sx, -box.Y * sy};
    sx = sy = ratio.GetSlice() ? std::max(sx, sy) : std::min(sx, sy);
    const int align = static_cast<int>(ratio.GetAlign()) - 1;
    const double x = (width - box.Width * sx) * (align % 3) / 2;
    const double y = (height - box.Height * sy) * (align / 3) / 2;
    return {sx, 0, 0, sy, x - box.X * sx, y - box.Y * sy};
}

// Elements with a view

void TSVGViewElement::SetViewBox(const std::optional<TSVGViewBox>& value) {
    const auto isUsable = [](const TSVGViewBox& b) {
        return std::isfinite(b.X) && std::isfinite(b.Y) && std::isfinite(b.Width) &&
               std::isfinite(b.Height) && b.Width > 0 && b.Height > 0;
    };
    if (value == FViewBox || (value && !isUsable(*value))) return;
    FViewBox = value;
    Changed(TSVGChangeKind::Shape);
}

void TSVGViewElement::SetWidthLength(const std::optional<TSVGLength>& value) {
    if (value == FWidth) return;
    FWidth = value;
    Changed(TSVGChangeKind::Shape);
}

void TSVGViewElement::SetHeightLength(const std::optional<TSVGLength>& value) {
    if (value == FHeight) return;
    FHeight = value;
    Changed(TSVGChangeKind::Shape);
}

bool TSVGViewElement::ReadAttribute(std::string_view name, std::string_view value) {
    if (name == "viewBox") {
        if (const auto box = ParseViewBox(value))
            FViewBox = box;
        else
            Refuse(name, value);
    } else if (name == "preserveAspectRatio") {
        TSVGPreserveAspectRatio ratio;
        if (ratio.Parse(value))
            FAspectRatio = ratio;
        else
            Refuse(name, value);
    } else if (name == "x" || name == "y" || name == "width" || name == "height") {
        TSVGLength length;
        const bool size = name == "width" || name == "height";
        if (size && Trimmed(value) == "auto") return true;
        if (!length.Parse(value) || (size && length.GetValue() < 0)) {
            Refuse(name, value);
            return true;
        }
        if (size)
            (name == "width" ? FWidth : FHeight) = length;
        else
            (name == "x" ? FX : FY) = length;
    } else {
        return TSVGGroup::ReadAttribute(name, value);
    }
    Changed(TSVGChangeKind::Shape);
    return true;
}

void TSVGViewElement::WriteAttributes(IAttributeSink& sink) const {
    TSVGGroup::WriteAttributes(sink);
    if (!(FX == TSVGLength{})) sink.Put("x", FX.ToText());
    if (!(FY == TSVGLength{})) sink.Put("y", FY.ToText());
    if (FWidth) sink.Put("width", FWidth->ToText());
    if (FHeight) sink.Put("height", FHeight->ToText());
    if (FViewBox)
        sink.Put("viewBox", NumberText(FViewBox->X) + " " + NumberText(FViewBox->Y) + " " +
                                NumberText(FViewBox->Width) + " " + NumberText(FViewBox->Height));
    if (FAspectRatio) sink.Put("preserveAspectRatio", FAspectRatio->ToText());
}

void TSVGViewElement::CopyFrom(const TSVGElement& source) {
    TSVGGroup::CopyFrom(source);
    const auto& other = static_cast<const TSVGViewElement&>(source);
    FViewBox = other.FViewBox;
    FAspectRatio = other.FAspectRatio;
    FX = other.FX;
    FY = other.FY;
    FWidth = other.FWidth;
    FHeight = other.FHeight;
}

TSVGView::TSVGView(TSVGDocument& document, TSVGTag tag)
    : TSVGViewElement(document, tag) {}

std::unique_ptr<TSVGElement> TSVGView::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGView>(document, GetTag());
}

// Use

TSVGUse::TSVGUse(TSVGDocument& document)
    : TSVGViewElement(document, TSVGTag::Use) {}

void TSVGUse::SetReference(std::string_view id) {
    if (id == FReference) return;
    FReference = id;
    Changed(TSVGChangeKind::Structure);
}

TSVGElement* TSVGUse::GetTarget() const { return GetDocument().FindElement(FReference); }

bool TSVGUse::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "href") return TSVGViewElement::ReadAttribute(name, value);
    const std::string_view uri = Trimmed(value);
    if (uri.starts_with('#'))
        SetReference(uri.substr(1));
    else
        Refuse(name, value);
    return true;
}

void TSVGUse::WriteAttributes(IAttributeSink& sink) const {
    TSVGViewElement::WriteAttributes(sink);
    if (!FReference.empty()) sink.Put("xlink:href", "#" + FReference);
}

std::unique_ptr<TSVGElement> TSVGUse::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGUse>(document);
}

void TSVGUse::CopyFrom(const TSVGElement& source) {
    TSVGViewElement::CopyFrom(source);
    FReference = static_cast<const TSVGUse&>(source).FReference;
}

} // namespace Vz
