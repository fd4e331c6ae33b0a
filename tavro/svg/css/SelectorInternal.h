#pragma once

#include "tavro/svg/css/StyleSheet.h"
#include "tavro/svg/values/Scan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// One condition on an attribute (CSS 2.1, 5.8).
struct TAttributeTest {
    enum class TKind : std::uint8_t { Present, Equal, HasWord, HasPrefix }; ///< [a] [a=b] [a~=b] [a|=b]
    std::string Name;
    TKind Kind = TKind::Present;
    std::string Value;
};

/// What a selector asks of one element, and how that element stands to the one that the part before asks for.
struct TSelectorPart {
    enum class TCombinator : std::uint8_t { Descendant, Child, Adjacent };
    TCombinator Before = TCombinator::Descendant;
    std::string Type; ///< empty: any
    std::string Id;   ///< empty: any
    std::vector<std::string> Classes;
    std::vector<TAttributeTest> Attributes;
    bool FirstChild = false;
    bool Root = false;
    bool Never = false; ///< a pseudo-class or a pseudo-element that no element of a picture is in
};

/// A selector; its parts from left to right, at least one.
struct TSelector {
    std::vector<TSelectorPart> Parts;

    /// Ids, then classes, attributes and pseudo-classes, then types, each in 10 bits (CSS 2.1, 6.4.3).
    std::uint32_t Specificity() const;
    /// Takes the steps that it needed off the budget.
    bool Matches(const IStyledElement& element, std::int64_t& budget) const;
    /// False where it can match no element at all.
    bool CanMatch() const;
};

/// Reads a selector of at most TStyleSheet::MaxParts parts, without comments; nothing where it is none.
std::optional<TSelector> ParseSelector(std::string_view text);

/// As much of a list of words in an attribute counts, in bytes.
constexpr std::size_t MaxWordText = 4096;
/// True where the word is one of the blank-separated words of the text's first MaxWordText bytes.
bool HasWord(std::string_view text, std::string_view word);
/// Takes all up to the next blank.
std::string_view TakeWord(TScanner& scanner);

} // namespace Vz
