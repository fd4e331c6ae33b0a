#include "tavro/svg/css/SelectorInternal.h"

#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <iterator>

namespace Vz {
namespace {

using TCombinator = TSelectorPart::TCombinator;

/// A CSS name with its escapes resolved; empty where none comes.
std::string ReadName(TScanner& scanner) {
    const std::string_view name = scanner.Text.substr(0, NameEnd(scanner.Text));
    scanner.Text.remove_prefix(name.size());
    return Unescaped(name);
}

/// [name], [name=value], [name~=value], [name|=value]; the bracket has been taken.
bool ReadAttribute(TScanner& scanner, TSelectorPart& part) {
    TAttributeTest test;
    scanner.SkipBlanks();
    test.Name = ReadName(scanner);
    scanner.SkipBlanks();
    using TKind = TAttributeTest::TKind;
    if (scanner.Accept('~'))
        test.Kind = TKind::HasWord;
    else if (scanner.Accept('|'))
        test.Kind = TKind::HasPrefix;
    else if (scanner.Peek() == '=')
        test.Kind = TKind::Equal;
    if (test.Kind != TKind::Present) {
        if (!scanner.Accept('=')) return false;
        scanner.SkipBlanks();
        const auto quoted = scanner.Quoted();
        test.Value = quoted ? Unescaped(*quoted) : ReadName(scanner);
        if (!quoted && test.Value.empty()) return false;
        scanner.SkipBlanks();
    }
    if (test.Name.empty() || !scanner.Accept(']')) return false;
    part.Attributes.push_back(std::move(test));
    return true;
}

/// A pseudo-class or pseudo-element; the colon has been taken.
bool ReadPseudo(TScanner& scanner, TSelectorPart& part) {
    const bool isElement = scanner.Accept(':');
    if (const auto function = scanner.Function()) {
        part.Never = true;
        return EqualsNoCase(function->Name, "lang");
    }
    const std::string name = ToLowerText(ReadName(scanner));
    static constexpr std::string_view Unmatched[] = {
        "link", "visited", "hover", "active", "focus", "before", "after", "first-letter", "first-line"};
    if (!isElement && name == "first-child")
        part.FirstChild = true;
    else if (!isElement && name == "root")
        part.Root = true;
    else
        part.Never = true;
    const bool isKnown = std::find(std::begin(Unmatched), std::end(Unmatched), name) != std::end(Unmatched);
    return !part.Never || isKnown || (isElement && !name.empty());
}

bool ReadId(TScanner& scanner, TSelectorPart& part) {
    std::string id = ReadName(scanner);
    if (id.empty()) return false;
    if (!part.Id.empty() && part.Id != id) part.Never = true;
    part.Id = std::move(id);
    return true;
}

bool ReadClass(TScanner& scanner, TSelectorPart& part) {
    std::string name = ReadName(scanner);
    if (name.empty() || IsDigit(name.front())) return false;
    part.Classes.push_back(std::move(name));
    return true;
}

/// A type or a star, perhaps with a namespace before a bar; true where one stood there.
bool ReadType(TScanner& scanner, TSelectorPart& part) {
    const auto readOne = [&] {
        if (scanner.Accept('*')) {
            part.Type.clear();
            return true;
        }
        part.Type = IsDigit(scanner.Peek()) ? std::string() : ReadName(scanner);
        return !part.Type.empty();
    };
    const bool found = readOne();
    if (scanner.Peek() != '|') return found;
    scanner.Accept('|');
    return readOne();
}

/// One part without its combinator; false where there is none.
bool ReadPart(TScanner& scanner, TSelectorPart& part) {
    bool isEmpty = !ReadType(scanner, part);
    for (;; isEmpty = false) {
        bool isRight = true;
        if (scanner.Accept('#'))
            isRight = ReadId(scanner, part);
        else if (scanner.Accept('.'))
            isRight = ReadClass(scanner, part);
        else if (scanner.Accept('['))
            isRight = ReadAttribute(scanner, part);
        else if (scanner.Accept(':'))
            isRight = ReadPseudo(scanner, part);
        else
            return !isEmpty;
        if (!isRight) return false;
    }
}

bool HoldsAttribute(const IStyledElement& element, const TAttributeTest& test) {
    const auto value = element.Attribute(test.Name);
    if (!value) return false;
    switch (test.Kind) {
    case TAttributeTest::TKind::Present:
        return true;
    case TAttributeTest::TKind::Equal:
        return *value == test.Value;
    case TAttributeTest::TKind::HasWord:
        return HasWord(*value, test.Value);
    case TAttributeTest::TKind::HasPrefix:
        return value->starts_with(test.Value) &&
               (value->size() == test.Value.size() || (*value)[test.Value.size()] == '-');
    }
    return false;
}

bool HoldsPart(const IStyledElement& element, const TSelectorPart& part) {
    if (part.Never) return false;
    if (!part.Type.empty() && part.Type != element.TypeName()) return false;
    if (!part.Id.empty() && part.Id != element.Id()) return false;
    if (part.FirstChild && (element.Previous() || !element.Parent())) return false;
    if (part.Root && element.Parent()) return false;
    return std::all_of(part.Classes.begin(), part.Classes.end(),
                       [&](const std::string& name) { return HasWord(element.Classes(), name); }) &&
           std::all_of(part.Attributes.begin(), part.Attributes.end(),
                       [&](const TAttributeTest& test) { return HoldsAttribute(element, test); });
}

/// True where the part at `index` and all before it hold, seen from this element. Each try costs one step.
bool HoldsFrom(const std::vector<TSelectorPart>& parts, std::size_t index, const IStyledElement& element,
               std::int64_t& steps) {
    if (--steps < 0 || !HoldsPart(element, parts[index])) return false;
    if (index == 0) return true;
    switch (parts[index].Before) {
    case TCombinator::Child: {
        const IStyledElement* parent = element.Parent();
        return parent && HoldsFrom(parts, index - 1, *parent, steps);
    }
    case TCombinator::Adjacent: {
        const IStyledElement* previous = element.Previous();
        return previous && HoldsFrom(parts, index - 1, *previous, steps);
    }
    case TCombinator::Descendant:
        break;
    }
    for (const IStyledElement* up = element.Parent(); up && steps > 0; up = up->Parent())
        if (HoldsFrom(parts, index - 1, *up, steps)) return true;
    return false;
}

/// The combinator before the next part; false at the end of the selector.
bool ReadCombinator(TScanner& scanner, TCombinator& combinator) {
    scanner.SkipBlanks();
    if (scanner.AtEnd()) return false;
    combinator = scanner.Accept('>')   ? TCombinator::Child
                 : scanner.Accept('+') ? TCombinator::Adjacent
                                       : TCombinator::Descendant;
    scanner.SkipBlanks();
    return true;
}

} // namespace

bool HasWord(std::string_view text, std::string_view word) {
    TScanner words{text.substr(0, MaxWordText)};
    for (words.SkipBlanks(); !words.AtEnd(); words.SkipBlanks())
        if (TakeWord(words) == word) return true;
    return false;
}

std::string_view TakeWord(TScanner& scanner) {
    const std::size_t end = std::min(scanner.Text.find_first_of(" \t\r\n\f"), scanner.Text.size());
    const std::string_view word = scanner.Text.substr(0, end);
    scanner.Text.remove_prefix(end);
    return word;
}

std::uint32_t TSelector::Specificity() const {
    std::size_t ids = 0;
    std::size_t others = 0;
    std::size_t types = 0;
    for (const TSelectorPart& part : Parts) {
        ids += !part.Id.empty();
        others += part.Classes.size() + part.Attributes.size() + part.FirstChild + part.Root;
        types += !part.Type.empty();
    }
    const auto held = [](std::size_t count) {
        return static_cast<std::uint32_t>(std::min<std::size_t>(count, 1023));
    };
    return held(ids) << 20 | held(others) << 10 | held(types);
}

bool TSelector::Matches(const IStyledElement& element, std::int64_t& budget) const {
    const std::int64_t granted = std::min<std::int64_t>(budget, TStyleSheet::MaxSteps);
    std::int64_t steps = granted;
    const bool matches = HoldsFrom(Parts, Parts.size() - 1, element, steps);
    budget -= granted - steps;
    return matches;
}

bool TSelector::CanMatch() const {
    return std::none_of(Parts.begin(), Parts.end(), [](const TSelectorPart& part) { return part.Never; });
}

std::optional<TSelector> ParseSelector(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    TSelector selector;
    auto before = TCombinator::Descendant;
    do {
        TSelectorPart part;
        part.Before = before;
        if (selector.Parts.size() == TStyleSheet::MaxParts || !ReadPart(scanner, part)) return std::nullopt;
        selector.Parts.push_back(std::move(part));
    } while (ReadCombinator(scanner, before));
    return selector;
}

} // namespace Vz
