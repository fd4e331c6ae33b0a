#include "tavro/svg/model/Document.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/Events.h"
#include "tavro/runtime/Updates.h"
#include "tavro/svg/model/ElementMemoryInternal.h"
#include "tavro/svg/model/Reader.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <iterator>
#include <utility>

namespace Vz {

namespace {

/// Calls f for the element and all below it, in document order.
template <class F> void ForTree(TSVGElement& element, F f) {
    f(element);
    for (const auto& child : element.Children())
        ForTree(*child, f);
}

} // namespace

TSVGDocument::TSVGDocument()
    : TSVGViewElement(*this, TSVGTag::Svg) {}

TSVGDocument::~TSVGDocument() { OnChange = nullptr; }

std::unique_ptr<TSVGElement> TSVGDocument::NewAlike(TSVGDocument&) const {
    return std::make_unique<TSVGDocument>();
}

// Content

void TSVGDocument::LoadEmbedded(std::string_view text, const TSVGDocument& outer) {
    FEmbeddingDepth = outer.FEmbeddingDepth + 1;
    FPictures = outer.FPictures;
    LoadFromText(text, "embedded SVG");
}

void TSVGDocument::LoadFromText(std::string_view text, std::string_view source) {
    TSVGDocument fresh;
    fresh.FEmbeddingDepth = FEmbeddingDepth;
    if (FEmbeddingDepth > 0) fresh.FPictures = FPictures;
    {
        const TElementBlocks blocks(0);
        ReadSvg(text, source, fresh);
    }
    const auto take = [this](TSVGElement& element) { element.FDocument = this; };
    for (const auto& child : fresh.FChildren)
        ForTree(*child, take);
    TakeContent(fresh, std::exchange(fresh.FChildren, {}), std::move(fresh.FIds));
    FDiagnostics = std::move(fresh.FDiagnostics);
}

void TSVGDocument::LoadFromStream(std::istream& stream, std::string_view source) {
    std::string text;
    char buffer[1 << 16];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0) {
        text.append(buffer, static_cast<std::size_t>(stream.gcount()));
        if (text.size() > MaxTextSize) break;
    }
    if (stream.bad()) throw EReadError("cannot be read", {std::string(source)});
    LoadFromText(text, source);
}

void TSVGDocument::LoadFromFile(const std::string& path) {
    LoadFromText(ReadWholeFile(path, MaxTextSize), path);
}

void TSVGDocument::TakeContent(const TSVGDocument& other, std::vector<std::unique_ptr<TSVGElement>> children,
                               TSVGIdTable ids) {
    const bool enabled = GetEnabled();
    const TUpdateScope update(*this);
    RemoveChildren();
    CopyFrom(other);
    FEnabled = enabled;
    FViewPlacement = GetOwnAspectRatio().value_or(TSVGPreserveAspectRatio());
    FDuplicateIds = other.FDuplicateIds;
    FPictures = other.FPictures;
    FDiagnostics.clear();
    FChildren = std::move(children);
    for (const auto& child : FChildren)
        child->FParent = this;
    FId = other.FId;
    FIdPlace = other.FIdPlace;
    FIds = std::move(ids);
    if (FIdPlace) FIds.Set(FIdPlace, this);
    Changed(TSVGChangeKind::Structure);
}

void TSVGDocument::AssignContent(const TSVGDocument& source) {
    TSVGIdTable ids = source.FIds.EmptyCopy();
    const TElementBlocks blocks(source.FCopySize);
    auto children = source.CloneChildren(*this, *this, &ids);
    FCopySize = blocks.Used();
    // Several threads may copy a prototype at once: its size is known already.
    if (source.FCopySize != FCopySize) source.FCopySize = FCopySize;
    TakeContent(source, std::move(children), std::move(ids));
}

void TSVGDocument::MakeSharedLasting() {
    ForTree(*this, [](TSVGElement& element) { element.MakeLasting(); });
}

void TSVGDocument::SaveToFile(const std::string& path) const { WriteFileAtomically(path, WriteText()); }

void TSVGDocument::AddDiagnostic(std::string text) {
    constexpr std::size_t most = 200;
    if (FDiagnostics.size() >= most) return;
    TSVGDiagnostic& note = FDiagnostics.emplace_back();
    note.Text = std::move(text);
    if (FReadPlace) FReadPlace(note);
}

// Ids

TSVGElement* TSVGDocument::FindElement(std::string_view id) const { return FIds.Find(id); }

void TSVGDocument::RaiseInvalidCast(std::string_view id, const TSVGElement& element) {
    throw EInvalidCast("the element \"" + std::string(id) + "\" is a <" + std::string(element.GetTagName()) +
                       ">, not of the class asked for");
}

namespace {

/// True where `a` stands before `b` in the document; both lie in it.
bool StandsBefore(const TSVGElement& a, const TSVGElement& b) {
    const auto path = [](const TSVGElement* at) {
        std::vector<const TSVGElement*> steps;
        for (; at; at = at->GetParent())
            steps.push_back(at);
        std::ranges::reverse(steps);
        return steps;
    };
    const auto pathA = path(&a);
    const auto pathB = path(&b);
    const auto [splitA, splitB] = std::ranges::mismatch(pathA, pathB);
    const auto atA = splitA, atB = splitB; // names that a lambda may capture
    if (atA == pathA.end() || atB == pathB.end()) return atA == pathA.end() && atB != pathB.end();
    const auto& siblings = (*atA)->GetParent()->Children();
    if (siblings.back().get() == *atA) return false; // what is read comes last
    const auto first =
        std::ranges::find_if(siblings, [&](const auto& s) { return s.get() == *atA || s.get() == *atB; });
    return first->get() == *atA;
}

} // namespace

void TSVGDocument::ChangeId(TSVGElement& element, std::string_view id) {
    const bool lost = DropId(element);
    element.FId = TCopyOnWrite(std::string(id));
    if (element.IsInTree()) TakeId(element);
    if (lost) FindIdsAgain();
}

/// Where several elements have the same id the first in the document is the one that is found.
void TSVGDocument::TakeId(TSVGElement& element) {
    if (element.GetId().empty()) return;
    const TSVGIdTable::TPlace place = FIds.Add(element.GetId());
    if (TSVGElement* const other = FIds.Get(place)) {
        FDuplicateIds = true;
        if (!StandsBefore(element, *other)) return;
        other->FIdPlace = 0;
    }
    FIds.Set(place, &element);
    element.FIdPlace = place;
}

/// True where the id was found by this element.
bool TSVGDocument::DropId(TSVGElement& element) {
    if (!element.FIdPlace) return false;
    FIds.Drop(std::exchange(element.FIdPlace, 0), element.GetId());
    return true;
}

/// Another element may have waited behind an id that was dropped.
void TSVGDocument::FindIdsAgain() {
    if (!FDuplicateIds) return;
    ForTree(*this, [this](TSVGElement& element) {
        if (!FIds.Find(element.GetId())) TakeId(element);
    });
}

void TSVGDocument::Register(TSVGElement& root) {
    if (root.IsInTree()) ForTree(root, [this](TSVGElement& element) { TakeId(element); });
}

/// Forgets the ids of trees that were taken out of the document, and the watched element.
void TSVGDocument::Unregister(std::span<const std::unique_ptr<TSVGElement>> roots) {
    bool lost = false;
    for (const auto& root : roots)
        ForTree(*root, [&](TSVGElement& element) {
            lost = DropId(element) || lost;
            if (&element == FWatched) FWatched = nullptr;
        });
    if (lost) FindIdsAgain();
}

void TSVGDocument::Watch(TSVGGraphicElement* element) {
    FWatched = element && element->FDocument == this && element->IsInTree() ? element : nullptr;
}

void TSVGDocument::SetOpacityUntold(float value) {
    const bool wasTelling = std::exchange(FIsTelling, true);
    const bool wasPending = FPending;
    const TSVGChange change = FPendingChange;
    SetOpacity(value);
    FPendingChange = change;
    FPending = wasPending;
    FIsTelling = wasTelling;
}

void TSVGDocument::Notify(const TSVGChange& change) {
    ++FChangeCount;
    if (change.Kind != TSVGChangeKind::Place) ++FEpoch;
    if (change.Kind == TSVGChangeKind::Structure) ++FStructureEpoch;
    FPending = true;
    FPendingChange = change;
    if (FUpdateCount == 0) Tell();
}

/// Tells the change that waits, and those that the handler makes, one after the other.
void TSVGDocument::Tell() {
    if (FIsTelling) return;
    struct TTelling {
        bool& Flag;
        explicit TTelling(bool& flag)
            : Flag(flag) {
            Flag = true;
        }
        ~TTelling() { Flag = false; }
    } const telling(FIsTelling);
    for (int notice = 0; FPending && FUpdateCount == 0; ++notice) {
        FPending = false;
        if (notice == MaxNotices)
            throw EInvalidOperation(
                "a handler of OnChange edits the document each time that it is told of an "
                "edit; it was told " +
                std::to_string(MaxNotices) + " times");
        const TSVGChange change = FPendingChange;
        Raise(OnChange, change);
    }
}

// Size and place

namespace {

/// A size of the outermost svg in pixels; nothing where it is given in per cent or not at all.
std::optional<double> AbsoluteSize(const std::optional<TSVGLength>& length) {
    if (!length || length->GetUnit() == TSVGUnit::Percent) return {};
    const double size = length->Resolve(TAxis::Other, {});
    return std::isfinite(size) && size > 0 ? std::optional(size) : std::nullopt;
}

constexpr double DefaultExtent = 100;

/// A side of the natural size, in single precision and within bounds.
float Extent(double size) {
    constexpr double least = 1e-6;
    constexpr double most = 1e6;
    return static_cast<float>(std::clamp(size, least, most));
}

} // namespace

float TSVGDocument::GetWidth() const {
    if (const auto width = AbsoluteSize(GetWidthLength())) return Extent(*width);
    const auto& box = GetViewBox();
    if (!box) return Extent(DefaultExtent);
    const auto height = AbsoluteSize(GetHeightLength());
    return Extent(height ? *height * box->Width / box->Height : box->Width);
}

float TSVGDocument::GetHeight() const {
    if (const auto height = AbsoluteSize(GetHeightLength())) return Extent(*height);
    const auto& box = GetViewBox();
    if (!box) return Extent(DefaultExtent);
    const auto width = AbsoluteSize(GetWidthLength());
    return Extent(width ? *width * box->Height / box->Width : box->Height);
}

void TSVGElement::FitToRect(const TRectF& rect) {
    TSVGDocument& document = *FDocument;
    TSVGPreserveAspectRatio whole;
    whole.SetAlign(document.FPlacement.GetAlign());
    document.FDrawMatrix =
        ViewBoxMap({0, 0, document.GetWidth(), document.GetHeight()}, whole, rect.Width(), rect.Height())
            .Then(TAffine::Translation(rect.Left, rect.Top));
}

bool TSVGDocument::ReadAttribute(std::string_view name, std::string_view value) {
    const bool isKnown = TSVGViewElement::ReadAttribute(name, value);
    if (name == "preserveAspectRatio") FViewPlacement = GetOwnAspectRatio().value_or(FViewPlacement);
    return isKnown;
}

} // namespace Vz
