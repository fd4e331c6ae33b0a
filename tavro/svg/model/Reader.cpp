#include "tavro/svg/model/Reader.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Updates.h"
#include "tavro/svg/css/StyleSheet.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/ElementFactory.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/TextElements.h"
#include "tavro/svg/values/Scan.h"

#include <expat.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <span>
#include <unordered_map>

namespace Vz {

namespace {

constexpr std::string_view SvgNamespace = "http://www.w3.org/2000/svg";
constexpr std::string_view XLinkNamespace = "http://www.w3.org/1999/xlink";

/// An attribute as it is handed over, for as long as its element is being opened.
struct TSourceAttribute {
    std::string_view Name;
    std::string_view Value;
};
using TSourceAttributes = std::span<const TSourceAttribute>;

struct TAttribute {
    std::string Name;
    std::string Value;
};

/// What of an element's source the style sheet must see once it is complete.
struct TPending final : IStyledElement {
    TSVGElement* Element = nullptr;
    TSVGDiagnostic Place; ///< where it begins
    std::string Type;
    std::vector<TAttribute> Attributes;
    const TPending* Above = nullptr;
    const TPending* Before = nullptr;
    const TPending* LastChild = nullptr;

    std::string_view TypeName() const override { return Type; }
    std::string_view Id() const override { return Attribute("id").value_or(std::string_view()); }
    std::string_view Classes() const override { return Attribute("class").value_or(std::string_view()); }
    std::optional<std::string_view> Attribute(std::string_view name) const override {
        for (const TAttribute& a : Attributes)
            if (a.Name == name) return a.Value;
        return {};
    }
    const IStyledElement* Parent() const override { return Above; }
    const IStyledElement* Previous() const override { return Before; }
};

bool IsCss(TSourceAttributes attributes) {
    for (const auto& [name, value] : attributes)
        if (name == "type" && !value.empty()) return EqualsNoCase(Trimmed(value), "text/css");
    return true;
}

bool IsTextTag(TSVGTag tag) {
    return tag == TSVGTag::Text || tag == TSVGTag::TSpan || tag == TSVGTag::TextPath;
}

/// Parts of filters have attributes of their own that are called like style properties of other meaning.
std::optional<TSVGStyleProperty> FilterPartProperty(std::string_view name) {
    constexpr std::string_view styles[] = {"flood-color", "flood-opacity", "lighting-color",
                                           "color-interpolation-filters"};
    return std::ranges::find(styles, name) != std::end(styles) ? FindStyleProperty(name) : std::nullopt;
}

/// How many characters all references to texts together may bring in: each may refer to others.
constexpr std::size_t MaxReferencedText = std::size_t{1} << 20;
/// How many steps the search for matching rules may take in a document.
constexpr std::int64_t MaxMatchSteps = 8'000'000;

void CollectCharacters(const TSVGElement& element, std::string& text) {
    if (text.size() > MaxReferencedText) return;
    if (const auto* const characters = dynamic_cast<const TSVGCharacters*>(&element))
        text += characters->GetText();
    for (const auto& child : element.Children())
        CollectCharacters(*child, text);
}

} // namespace

/// Builds a document from expat's events.
class TSVGReader {
public:
    TSVGReader(std::string_view source, TSVGDocument& document, bool hasSheets)
        : FSource(source)
        , FDocument(document)
        , FHasSheets(hasSheets) {}

    void Run(std::string_view text);

private:
    /// An element that is open: what its content goes to.
    struct TOpen {
        TSVGElement* Element = nullptr; ///< null: skipped with all below it
        TPending* Pending = nullptr;
        std::size_t Namespaces = 0; ///< how many prefixes were bound before it
        bool IsSheet = false;
    };
    static TSVGReader& Self(void* data) { return *static_cast<TSVGReader*>(data); }
    void Start(const char* name, const char** attributes);
    void End();
    void Text(std::string_view text);
    void FlushText();
    [[noreturn]] void Fail(const std::string& reason) const;

    bool CountContent(std::size_t size);
    TSVGDiagnostic Here() const;
    bool TakeAttributes(const char** attributes);
    void BindNamespaces();
    void ReleaseNamespaces(std::size_t count);
    std::string_view UriOf(std::string_view prefix) const;
    /// The name in SVG's own namespace (or in none); nothing for a foreign element.
    std::optional<std::string_view> SvgName(std::string_view name) const;
    TOpen OpenChild(std::string_view name);
    void StartElement(TOpen& open, std::string_view name);
    std::string_view LocalAttribute(std::string_view name) const;
    void ApplyAttribute(TSVGElement& element, std::string_view name, std::string_view value);
    void ApplyDeclarations(TSVGElement& element, const std::vector<TDeclaration>& declarations,
                           bool important);
    void ApplyStyleAttribute(TSVGElement& element, std::string_view text);
    void ApplySheets();
    void ResolveTextReferences();
    void Note(std::string text) { FDocument.AddDiagnostic(std::move(text)); }

    std::string_view FSource;
    TSVGDocument& FDocument;
    bool FHasSheets;
    XML_Parser FParser = nullptr;
    std::vector<TOpen> FOpen;
    std::unordered_map<std::string_view, std::vector<std::string>>
        FNamespaces;                           ///< by prefix, the innermost last
    std::deque<std::string> FPrefixes;         ///< in the order in which they were bound
    std::size_t FContentSize = 0;              ///< of all attributes and characters, entities expanded
    std::vector<TSourceAttribute> FAttributes; ///< of the element that is being opened
    std::string FSheetText;
    std::string FCharacters;
    TStyleSheet FSheet;
    std::deque<TPending> FPending;
    std::vector<std::pair<TSVGCustomText*, std::string>> FTextReferences;
    bool FHasRoot = false;
    std::string FFault;
};

void TSVGReader::Fail(const std::string& reason) const {
    throw EReadError(reason, {std::string(FSource), static_cast<int>(XML_GetCurrentLineNumber(FParser)),
                              static_cast<int>(XML_GetCurrentColumnNumber(FParser)) + 1});
}

void TSVGReader::Run(std::string_view text) {
    FParser = XML_ParserCreate(nullptr);
    if (!FParser) throw EReadError("not enough memory", {std::string(FSource)});
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> guard(FParser, XML_ParserFree);
    XML_SetUserData(FParser, this);
    FDocument.FReadPlace = [this](TSVGDiagnostic& note) {
        const TSVGDiagnostic here = Here();
        note.Line = here.Line;
        note.Column = here.Column;
    };
    XML_SetElementHandler(
        FParser,
        [](void* data, const XML_Char* name, const XML_Char** attributes) {
            Self(data).Start(name, attributes);
        },
        [](void* data, const XML_Char*) { Self(data).End(); });
    XML_SetCharacterDataHandler(FParser, [](void* data, const XML_Char* content, int length) {
        Self(data).Text({content, static_cast<std::size_t>(length)});
    });

    // Expat takes lengths as int.
    constexpr std::size_t piece = std::size_t{1} << 20;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t size = std::min(piece, text.size() - at);
        const bool last = at + size == text.size();
        if (XML_Parse(FParser, text.data() + at, static_cast<int>(size), last) != XML_STATUS_OK) {
            if (!FFault.empty()) Fail(FFault);
            Fail(std::string("not well-formed XML: ") + XML_ErrorString(XML_GetErrorCode(FParser)));
        }
        if (last) break;
        at += size;
    }
    if (FHasSheets) ApplySheets();
    FDocument.FReadPlace = nullptr;
    ResolveTextReferences();
}

TSVGDiagnostic TSVGReader::Here() const {
    return {static_cast<int>(XML_GetCurrentLineNumber(FParser)),
            static_cast<int>(XML_GetCurrentColumnNumber(FParser)) + 1,
            {}};
}

/// Entities may stand for much more text than they are written with; false, and the reading ends, where it
/// becomes more than a document may have.
bool TSVGReader::CountContent(std::size_t size) {
    FContentSize += size;
    if (FContentSize <= TSVGDocument::MaxTextSize) return true;
    FFault = "the entities stand for too much text";
    XML_StopParser(FParser, XML_FALSE);
    return false;
}

/// Keeps the attributes of the element that begins; false where they are too much.
bool TSVGReader::TakeAttributes(const char** attributes) {
    FAttributes.clear();
    std::size_t size = 0;
    for (const char** a = attributes; *a; a += 2) {
        const TSourceAttribute& taken = FAttributes.emplace_back(TSourceAttribute{a[0], a[1]});
        size += taken.Name.size() + taken.Value.size();
    }
    return CountContent(size);
}

void TSVGReader::BindNamespaces() {
    for (const auto& [name, value] : FAttributes) {
        if (!name.starts_with("xmlns") || (name.size() > 5 && name[5] != ':')) continue;
        const std::string& prefix =
            FPrefixes.emplace_back(name.substr(std::min<std::size_t>(name.size(), 6)));
        FNamespaces[prefix].emplace_back(value);
    }
}

void TSVGReader::ReleaseNamespaces(std::size_t count) {
    for (; FPrefixes.size() > count; FPrefixes.pop_back()) {
        const auto at = FNamespaces.find(FPrefixes.back());
        at->second.pop_back();
        if (at->second.empty()) FNamespaces.erase(at);
    }
}

std::string_view TSVGReader::UriOf(std::string_view prefix) const {
    if (const auto at = FNamespaces.find(prefix); at != FNamespaces.end()) return at->second.back();
    // A prefix that nobody declared is taken by its usual name.
    return prefix.empty() || prefix == "svg" ? SvgNamespace
           : prefix == "xlink"               ? XLinkNamespace
                                             : std::string_view();
}

std::optional<std::string_view> TSVGReader::SvgName(std::string_view name) const {
    const std::size_t colon = name.find(':');
    const std::string_view prefix = colon == name.npos ? std::string_view() : name.substr(0, colon);
    const std::string_view uri = UriOf(prefix);
    if (uri != SvgNamespace && !(uri.empty() && prefix.empty())) return {};
    return colon == name.npos ? name : name.substr(colon + 1);
}

void TSVGReader::Start(const char* name, const char** attributes) {
    if (!FFault.empty()) return; // expat may call once more after it was stopped
    FlushText();
    if (!TakeAttributes(attributes)) return;
    const std::size_t namespaces = FPrefixes.size();
    BindNamespaces();
    const auto svgName = SvgName(name);
    TOpen open;
    if (!FHasRoot) {
        FHasRoot = true;
        if (svgName != "svg") {
            FFault = "the root is <" + std::string(name) + ">, not <svg>";
            XML_StopParser(FParser, XML_FALSE);
            return;
        }
        open.Element = &FDocument;
        StartElement(open, *svgName);
    } else if (svgName && !FOpen.empty() && FOpen.back().Element && !FOpen.back().IsSheet) {
        open = OpenChild(*svgName);
    }
    open.Namespaces = namespaces;
    FOpen.push_back(open);
}

TSVGReader::TOpen TSVGReader::OpenChild(std::string_view name) {
    TOpen open;
    if (name == "style") {
        open.IsSheet = true;
        open.Element = IsCss(FAttributes) ? FOpen.back().Element : nullptr;
        FSheetText.clear();
    } else if (FOpen.size() >= TSVGDocument::MaxDepth) {
        Note("elements nested deeper than " + std::to_string(TSVGDocument::MaxDepth) + " are skipped");
    } else if (auto element = MakeElement(name, *FOpen.back().Element)) {
        open.Element = &FOpen.back().Element->AddChild(std::move(element));
        StartElement(open, name);
    } else if (name != "metadata") {
        Note("<" + std::string(name) + "> is skipped");
    }
    return open;
}

void TSVGReader::StartElement(TOpen& open, std::string_view name) {
    TSVGElement& element = *open.Element;
    std::string_view style;
    const bool hasHref =
        std::ranges::any_of(FAttributes, [](const auto& attribute) { return attribute.Name == "href"; });
    if (FHasSheets) {
        TPending& pending = FPending.emplace_back();
        pending.Element = &element;
        pending.Place = Here();
        pending.Type = name;
        open.Pending = &pending;
        if (TPending* const above = FOpen.empty() ? nullptr : FOpen.back().Pending) {
            pending.Above = above;
            pending.Before = above->LastChild;
            above->LastChild = &pending;
        }
    }
    for (const auto& [fullName, value] : FAttributes) {
        const std::string_view attribute = LocalAttribute(fullName);
        // A plain href goes before one of XLink (SVG 2, 16.1.6).
        const bool isPrefixed = attribute == "href" && attribute.size() != fullName.size();
        if (attribute.empty() || (isPrefixed && hasHref)) continue;
        if (open.Pending) open.Pending->Attributes.push_back({std::string(attribute), std::string(value)});
        if (attribute == "style")
            style = value;
        else
            ApplyAttribute(element, attribute, value);
    }
    if (!style.empty() && !FHasSheets) ApplyStyleAttribute(element, style);
}

/// The attribute's name without the prefix of XLink; empty for one of a foreign namespace.
std::string_view TSVGReader::LocalAttribute(std::string_view name) const {
    const std::size_t colon = name.find(':');
    if (colon == name.npos) return name == "xmlns" ? std::string_view() : name;
    if (name == "xml:space") return name;
    const std::string_view uri = UriOf(name.substr(0, colon));
    return uri == XLinkNamespace && name.substr(colon + 1) == "href" ? "href" : std::string_view();
}

void TSVGReader::ApplyAttribute(TSVGElement& element, std::string_view name, std::string_view value) {
    if (name == "id") {
        element.SetId(value);
        return;
    }
    if (name == "class") return;
    if (name == "href" && element.GetTag() == TSVGTag::TRef) {
        const std::string_view uri = Trimmed(value);
        if (uri.starts_with('#'))
            FTextReferences.emplace_back(static_cast<TSVGCustomText*>(&element), uri.substr(1));
        return;
    }
    if (name == "xml:space") {
        TStyleValue space;
        space.Kind = TStyleValue::TKind::Keyword;
        space.Word = value == "preserve" ? TKeyword::Pre : TKeyword::Normal;
        element.PutStyle(TSVGStyleProperty::WhiteSpace, space);
        return;
    }
    const auto property =
        element.GetTag() == TSVGTag::FilterPart ? FilterPartProperty(name) : FindStyleProperty(name);
    if (property && IsPresentationAttribute(*property)) {
        if (auto parsed = ParseStyleValue(*property, value))
            element.PutStyle(*property, std::move(*parsed));
        else
            Note(std::string(element.GetTagName()) + ": " + std::string(name) + ": cannot read \"" +
                 std::string(value.substr(0, 40)) + "\"");
        return;
    }
    element.ReadAttribute(name, value);
}

void TSVGReader::ApplyDeclarations(TSVGElement& element, const std::vector<TDeclaration>& declarations,
                                   bool important) {
    for (const TDeclaration& d : declarations)
        if (d.Important == important) element.PutStyle(d.Property, d.Value);
}

void TSVGReader::ApplyStyleAttribute(TSVGElement& element, std::string_view text) {
    std::vector<std::string> refused;
    std::string transform;
    const auto declarations = ParseDeclarations(text, &refused, &transform);
    ApplyDeclarations(element, declarations, false);
    ApplyDeclarations(element, declarations, true);
    if (!transform.empty()) element.ReadAttribute("transform", transform);
    for (const std::string& one : refused)
        Note("style: cannot use \"" + one.substr(0, 60) + "\"");
}

/// The cascade (CSS 2.1, 6.4): attributes stand in the elements already; then the rules, weakest first, then
/// the style attribute, then what is important among the rules, then in the attribute.
void TSVGReader::ApplySheets() {
    std::vector<TStyleSheet::TMatch> matches;
    std::int64_t budget = MaxMatchSteps;
    for (const TPending& pending : FPending) {
        TSVGElement& element = *pending.Element;
        FDocument.FReadPlace = [&](TSVGDiagnostic& note) {
            note.Line = pending.Place.Line;
            note.Column = pending.Place.Column;
        };
        FSheet.Match(pending, matches, &budget);
        const std::string_view style = pending.Attribute("style").value_or(std::string_view());
        const auto own = ParseDeclarations(style);
        for (const auto& match : matches) {
            ApplyDeclarations(element, *match.Declarations, false);
            if (!match.Transform->empty()) element.ReadAttribute("transform", *match.Transform);
        }
        if (!style.empty()) ApplyStyleAttribute(element, style);
        for (const auto& match : matches)
            ApplyDeclarations(element, *match.Declarations, true);
        ApplyDeclarations(element, own, true);
    }
    if (budget <= 0) Note("style: too many rules for too many elements; not all were applied");
}

/// A tref stands for the characters of another element (SVG 1.1, 10.6).
void TSVGReader::ResolveTextReferences() {
    std::size_t total = 0;
    for (const auto& [element, id] : FTextReferences) {
        std::string text;
        if (const TSVGElement* const target = FDocument.FindElement(id);
            target && !element->HasAncestor(target))
            CollectCharacters(*target, text);
        if ((total += text.size()) > MaxReferencedText) return Note("tref: too much text is referred to");
        element->SetText(text);
    }
}

void TSVGReader::End() {
    if (FOpen.empty() || !FFault.empty()) return;
    FlushText();
    if (FOpen.back().IsSheet && FOpen.back().Element) {
        std::vector<std::string> notes;
        FSheet.Add(FSheetText, &notes);
        for (std::string& note : notes)
            Note("style: " + note);
    }
    ReleaseNamespaces(FOpen.back().Namespaces);
    FOpen.pop_back();
}

void TSVGReader::Text(std::string_view text) {
    if (!FFault.empty() || !CountContent(text.size()) || FOpen.empty() || !FOpen.back().Element) return;
    const TSVGTag tag = FOpen.back().Element->GetTag();
    if (FOpen.back().IsSheet)
        FSheetText += text;
    else if (tag == TSVGTag::Title || IsTextTag(tag))
        FCharacters += text;
}

/// Hands the characters gathered so far to the element that is open.
void TSVGReader::FlushText() {
    if (FCharacters.empty()) return;
    TSVGElement& element = *FOpen.back().Element;
    if (element.GetTag() == TSVGTag::Title) {
        auto& title = static_cast<TSVGPlainElement&>(element);
        title.SetText(title.GetText() + FCharacters);
    } else {
        element.Add<TSVGCharacters>().SetText(FCharacters);
    }
    FCharacters.clear();
}

void ReadSvg(std::string_view text, std::string_view source, TSVGDocument& document) {
    if (text.size() > TSVGDocument::MaxTextSize)
        throw EReadError("larger than " + std::to_string(TSVGDocument::MaxTextSize >> 20) + " MiB",
                         {std::string(source)});
    // Where a text is not of single bytes the words cannot be looked for.
    const bool isWide = text.substr(0, 4).find('\0') != text.npos || text.starts_with("\xFE\xFF") ||
                        text.starts_with("\xFF\xFE");
    const bool hasSheets = isWide || text.find("<style") != text.npos || text.find(":style") != text.npos;
    const TUpdateScope update(document);
    TSVGReader(source, document, hasSheets).Run(text);
}

} // namespace Vz
