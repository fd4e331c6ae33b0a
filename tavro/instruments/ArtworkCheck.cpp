#include "tavro/instruments/ArtworkCheck.h"

#include "tavro/instruments/Editing.h"

#include <algorithm>
#include <cctype>

namespace Vz {

namespace {

std::string Quoted(std::string_view id) { return '"' + std::string(id) + '"'; }

bool IsInComment(std::string_view svg, std::size_t at) {
    const std::size_t begin = svg.rfind("<!--", at);
    return begin != svg.npos && svg.find("-->", begin) > at;
}

/// Where the attribute stands that gives the id; npos where it is written in a way that is not found.
std::size_t FindId(std::string_view svg, std::string_view id) {
    for (std::size_t at = svg.find(id); at != svg.npos; at = svg.find(id, at + 1)) {
        const std::size_t after = at + id.size();
        if (at < 5 || after >= svg.size()) continue;
        const char quote = svg[at - 1];
        const bool isQuoted = (quote == '"' || quote == '\'') && svg[after] == quote;
        if (isQuoted && svg.substr(at - 4, 3) == "id=" &&
            std::isspace(static_cast<unsigned char>(svg[at - 5])) && !IsInComment(svg, at))
            return at - 4;
    }
    return svg.npos;
}

/// Where the root's tag begins: the first that is neither a declaration nor a comment.
std::size_t FindRoot(std::string_view svg) {
    std::size_t at = svg.find('<');
    while (at + 1 < svg.size() && (svg[at + 1] == '?' || svg[at + 1] == '!' || IsInComment(svg, at)))
        at = svg.find('<', at + 1);
    return at;
}

/// True for the first byte of a character in UTF-8.
bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

/// Holds one document against one table.
class TArtworkCheck {
public:
    TArtworkCheck(const TSVGDocument& document, std::string_view svg)
        : FDocument(document)
        , FSvg(svg) {}

    void CheckContract(const std::vector<TArtworkRow>& rows) {
        for (const TArtworkRow& row : rows) {
            const TSVGElement* const element = FDocument.FindElement(row.Id);
            if (!element)
                NoteMissing(row);
            else if (const std::string wish = Mismatch(row, *element); !wish.empty())
                Note(row.Id, Quoted(row.Id) + " is a " + std::string(element->GetTagName()) +
                                 " and should be " + wish);
            else
                CheckPlace(row, *element);
        }
        for (const TSVGDiagnostic& note : FDocument.GetDiagnostics())
            FFaults.push_back({note.Line, note.Column, note.Text});
    }

    /// Adds a warning where the element of that id cannot move between caches.
    void WarnOfMoving(std::string_view id) {
        const auto* const moving = dynamic_cast<const TSVGGraphicElement*>(FDocument.FindElement(id));
        const auto obstacle = moving ? FDocument.FindPartsObstacle(*moving) : std::nullopt;
        if (!obstacle) return;
        const std::string& name = obstacle->Element->GetId();
        std::string text = "the " + std::string(obstacle->Reason) + " of the " +
                           std::string(obstacle->Element->GetTagName());
        if (!name.empty()) text += ' ' + Quoted(name);
        Note(name.empty() ? id : name,
             text + " keeps what stands still around " + Quoted(id) + " from being cached");
        FFaults.back().IsWarning = true;
    }

    std::vector<TArtworkFault> TakeFaults() { return std::move(FFaults); }

private:
    void NoteMissing(const TArtworkRow& row) {
        const bool hasParent = !row.Parent.empty() && FDocument.FindElement(row.Parent);
        std::string text = "there is no element " + Quoted(row.Id);
        if (!row.Parent.empty()) text += ", which should lie in " + Quoted(row.Parent);
        NoteAt(hasParent ? FindId(FSvg, row.Parent) : FindRoot(FSvg), std::move(text));
    }

    void Note(std::string_view id, std::string text) { NoteAt(FindId(FSvg, id), std::move(text)); }

    void NoteAt(std::size_t at, std::string text) {
        TArtworkFault fault;
        fault.Text = std::move(text);
        if (at != FSvg.npos) {
            const std::string_view before = FSvg.substr(0, at);
            const std::string_view line = before.substr(before.rfind('\n') + 1);
            fault.Line = 1 + static_cast<int>(std::ranges::count(before, '\n'));
            fault.Column = 1 + static_cast<int>(std::ranges::count_if(line, BeginsCharacter));
        }
        FFaults.push_back(std::move(fault));
    }

    /// What the element should be and is not; empty where it serves.
    static std::string Mismatch(const TArtworkRow& row, const TSVGElement& element) {
        const auto* const gradient = dynamic_cast<const TSVGCustomGradient*>(&element);
        switch (row.Kind) {
        case TArtworkKind::Graphic:
            return dynamic_cast<const TSVGGraphicElement*>(&element) ? "" : "something that is drawn";
        case TArtworkKind::Group:
            return dynamic_cast<const TSVGGroup*>(&element) ? "" : "a group";
        case TArtworkKind::Path:
            return dynamic_cast<const TSVGPath*>(&element) ? "" : "a path";
        case TArtworkKind::Text:
            return dynamic_cast<const TSVGCustomText*>(&element) ? "" : "a text";
        case TArtworkKind::Texts:
            return HoldsTexts(element) ? "" : "a group or text that holds texts and nothing else";
        case TArtworkKind::Rect:
            return element.GetTag() == TSVGTag::Rect ? "" : "a rect";
        case TArtworkKind::Use:
            return element.GetTag() == TSVGTag::Use ? "" : "a use";
        case TArtworkKind::Gradient:
            return gradient ? "" : "a gradient";
        case TArtworkKind::Stops:
            if (!gradient || gradient->GetStopCount() == 0) return "a gradient with stops of its own";
            return gradient->GetStopCount() >= row.Stops
                       ? ""
                       : "a gradient with at least " + std::to_string(row.Stops) + " stops of its own";
        }
        return "";
    }

    static bool HoldsTexts(const TSVGElement& element) {
        return dynamic_cast<const TSVGGraphicElement*>(&element) && element.GetChildCount() > 0 &&
               std::ranges::all_of(element.Children(), [](const auto& child) {
                   return dynamic_cast<const TSVGCustomText*>(child.get()) != nullptr;
               });
    }

    /// An element in the wrong group, and texts of one group in the wrong order.
    void CheckPlace(const TArtworkRow& row, const TSVGElement& element) {
        const TSVGElement* const parent = row.Parent.empty() ? nullptr : FDocument.FindElement(row.Parent);
        if (!parent) return;
        if (!element.HasAncestor(parent)) {
            Note(row.Id, Quoted(row.Id) + " should lie in " + Quoted(row.Parent));
            return;
        }
        if (row.Kind != TArtworkKind::Text) return;
        const auto at = std::ranges::find_if(parent->Children(),
                                             [&](const auto& child) { return child.get() == &element; });
        const auto index = at - parent->Children().begin();
        if (parent == FLastParent && index < FLastIndex)
            Note(row.Id, Quoted(row.Id) + " stands before its predecessor in " + Quoted(row.Parent));
        FLastParent = parent;
        FLastIndex = index;
    }

    const TSVGDocument& FDocument;
    std::string_view FSvg;
    std::vector<TArtworkFault> FFaults;
    const TSVGElement* FLastParent = nullptr;
    std::ptrdiff_t FLastIndex = 0;
};

} // namespace

std::vector<TArtworkFault> CheckArtwork(const TVZSVGCustomInstrument& instrument, std::string_view svg,
                                        const std::string& name) {
    TSVGDocument document;
    document.LoadFromText(svg, name);
    TArtworkCheck check(document, svg);
    check.CheckContract(instrument.GetArtworkContract());
    if (const TSVGGraphicElement* const active = instrument.GetActiveSVGElement())
        check.WarnOfMoving(active->GetId());
    return check.TakeFaults();
}

} // namespace Vz
