#include "tavro/svg/css/StyleSheet.h"

#include "tavro/runtime/Utf8.h"
#include "tavro/svg/css/SelectorInternal.h"
#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace Vz {

namespace {

/// What stands between a rule's braces; shared by the selectors of its group.
struct TRuleBlock {
    std::vector<TDeclaration> Declarations;
    std::string Transform;
};

} // namespace

struct TStyleSheet::TRule {
    TSelector Selector;
    std::uint32_t Specificity = 0;
    std::shared_ptr<const TRuleBlock> Block;
};

namespace {

/// @media in @media is taken this deep.
constexpr int MaxMediaDepth = 8;
/// So many notes are made of one sheet.
constexpr int MaxNotes = 100;

/// Where a block that begins behind an opening brace ends: at its closing brace, or at the text's end.
std::string_view TakeBlock(std::string_view& css) {
    const std::size_t end = FindTopLevel(css, "}");
    const std::string_view block = css.substr(0, end);
    css.remove_prefix(std::min(end + 1, css.size()));
    return block;
}

/// True where one of a comma-separated list of media is all or screen (CSS 2.1, 7); conditions are not
/// understood.
bool IsForScreen(std::string_view media) {
    if (Trimmed(media).empty()) return true;
    while (!media.empty()) {
        const std::size_t end = FindTopLevel(media, ",");
        TScanner one{Trimmed(media.substr(0, end))};
        if (StartsWithNoCase(one.Text, "only ")) one.Text = Trimmed(one.Text.substr(5));
        if (EqualsNoCase(one.Text, "all") || EqualsNoCase(one.Text, "screen")) return true;
        media.remove_prefix(std::min(end + 1, media.size()));
    }
    return false;
}

std::vector<std::string_view> DistinctWords(std::string_view text) {
    std::vector<std::string_view> words;
    TScanner scanner{text.substr(0, MaxWordText)};
    for (scanner.SkipBlanks(); !scanner.AtEnd(); scanner.SkipBlanks())
        words.push_back(TakeWord(scanner));
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

/// Leaves out what hides a sheet from old readers (CSS 2.1, 4.1.1: CDO and CDC).
void SkipFrame(std::string_view& css) {
    css = Trimmed(css);
    for (bool found = true; found;) {
        found = false;
        for (const std::string_view mark : {"<!--", "-->"})
            if (css.starts_with(mark)) {
                css = Trimmed(css.substr(mark.size()));
                found = true;
            }
    }
}

/// Takes a sheet apart into rules.
class TSheetReader {
public:
    using TAddRule = std::function<bool(TSelector&&, const std::shared_ptr<const TRuleBlock>&)>;

    TSheetReader(std::vector<std::string>* diagnostics, TAddRule add)
        : FDiagnostics(diagnostics)
        , FAdd(std::move(add)) {}

    void Read(std::string_view css, int depth = 0) {
        for (SkipFrame(css); !css.empty() && !FIsFull; SkipFrame(css)) {
            if (css.front() == '@')
                ReadAtRule(css, depth);
            else
                ReadRule(css);
        }
    }

private:
    void Note(std::string_view what, std::string_view text) {
        if (!FDiagnostics || FNotes > MaxNotes) return;
        if (++FNotes > MaxNotes)
            FDiagnostics->emplace_back("more of the style sheet was left out");
        else
            FDiagnostics->push_back(std::string(what) + " " + QuotedForMessage(Trimmed(text)));
    }

    void ReadAtRule(std::string_view& css, int depth) {
        const std::string_view all = css;
        const std::size_t end = FindTopLevel(css, ";{");
        const std::string_view head = css.substr(0, end);
        css.remove_prefix(std::min(end + 1, css.size()));
        const bool hasBlock = end < all.size() && all[end] == '{';
        const std::string_view block = hasBlock ? TakeBlock(css) : std::string_view{};
        TScanner scanner{head.substr(1)};
        const bool isMedia = EqualsNoCase(scanner.Word(), "media") && hasBlock;
        if (isMedia && depth < MaxMediaDepth && IsForScreen(scanner.Text))
            Read(block, depth + 1);
        else
            Note("style rule left out:", head);
    }

    void ReadRule(std::string_view& css) {
        const std::size_t brace = FindTopLevel(css, "{");
        const std::string_view group = css.substr(0, brace);
        if (brace == css.size()) {
            Note("style rule without declarations:", group);
            css = {};
            return;
        }
        css.remove_prefix(brace + 1);
        const std::string_view content = TakeBlock(css);
        std::vector<TSelector> selectors;
        if (!ReadGroup(group, selectors)) {
            Note("selector not understood:", group);
            return;
        }
        std::vector<std::string> refused;
        auto block = std::make_shared<TRuleBlock>();
        block->Declarations = ParseDeclarations(content, &refused, &block->Transform);
        for (const std::string& text : refused)
            Note("declaration left out:", text);
        if (block->Declarations.empty() && block->Transform.empty()) return;
        AddAll(std::move(selectors), block);
    }

    /// All selectors of a group; one that is wrong spoils all (CSS 2.1, 4.1.7).
    static bool ReadGroup(std::string_view group, std::vector<TSelector>& selectors) {
        for (bool more = true; more;) {
            const std::size_t end = FindTopLevel(group, ",");
            auto selector = ParseSelector(group.substr(0, end));
            if (!selector) return false;
            selectors.push_back(std::move(*selector));
            more = end < group.size();
            group.remove_prefix(std::min(end + 1, group.size()));
        }
        return true;
    }

    void AddAll(std::vector<TSelector>&& selectors, const std::shared_ptr<const TRuleBlock>& block) {
        for (TSelector& selector : selectors) {
            if (!selector.CanMatch() || FAdd(std::move(selector), block)) continue;
            FIsFull = true;
            if (FDiagnostics)
                FDiagnostics->emplace_back("more style rules than are taken; the rest was left out");
            return;
        }
    }

    std::vector<std::string>* FDiagnostics;
    TAddRule FAdd;
    int FNotes = 0;
    bool FIsFull = false;
};

} // namespace

void TStyleSheet::Add(std::string_view css, std::vector<std::string>* diagnostics) {
    std::string storage;
    const auto add = [this](TSelector&& selector, const std::shared_ptr<const TRuleBlock>& block) {
        if (FRules.size() == MaxRules) return false;
        const std::uint32_t specificity = selector.Specificity();
        FRules.push_back(std::make_shared<const TRule>(TRule{std::move(selector), specificity, block}));
        return true;
    };
    TSheetReader(diagnostics, add).Read(WithoutComments(css, storage));
    std::stable_sort(FRules.begin(), FRules.end(),
                     [](const auto& a, const auto& b) { return a->Specificity < b->Specificity; });
    BuildIndex();
}

void TStyleSheet::BuildIndex() {
    FById.clear();
    FByClass.clear();
    FByType.clear();
    FOthers.clear();
    for (std::size_t i = 0; i < FRules.size(); ++i) {
        const TSelectorPart& last = FRules[i]->Selector.Parts.back();
        TPlaces& places = !last.Id.empty()        ? FById[last.Id]
                          : !last.Classes.empty() ? FByClass[last.Classes.front()]
                          : !last.Type.empty()    ? FByType[last.Type]
                                                  : FOthers;
        places.push_back(static_cast<std::uint32_t>(i));
    }
}

/// What it takes to apply a declaration, in steps of the search.
constexpr std::int64_t StepsToApply = 3;

void TStyleSheet::Match(const IStyledElement& element, std::vector<TMatch>& matches,
                        std::int64_t* budget) const {
    matches.clear();
    if (FRules.empty() || (budget && *budget <= 0)) return;
    std::int64_t unlimited = std::numeric_limits<std::int64_t>::max();
    std::int64_t& left = budget ? *budget : unlimited;
    for (const std::uint32_t place : Candidates(element)) {
        if (left <= 0) return;
        const TRule& rule = *FRules[place];
        if (!rule.Selector.Matches(element, left)) continue;
        matches.push_back({&rule.Block->Declarations, &rule.Block->Transform});
        left -= StepsToApply * static_cast<std::int64_t>(1 + rule.Block->Declarations.size());
    }
}

TStyleSheet::TPlaces TStyleSheet::Candidates(const IStyledElement& element) const {
    TPlaces candidates = FOthers;
    const auto take = [&](const TIndex& index, std::string_view name) {
        if (const auto found = index.find(name); found != index.end())
            candidates.insert(candidates.end(), found->second.begin(), found->second.end());
    };
    take(FByType, element.TypeName());
    take(FById, element.Id());
    if (!FByClass.empty())
        for (const std::string_view name : DistinctWords(element.Classes()))
            take(FByClass, name);
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    return candidates;
}

} // namespace Vz
