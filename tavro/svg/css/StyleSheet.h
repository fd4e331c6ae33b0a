#pragma once

#include "tavro/svg/css/StyleProps.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Vz {

/// What a selector asks of an element. An element's ancestors are asked through Parent.
class IStyledElement {
public:
    virtual ~IStyledElement() = default;
    virtual std::string_view TypeName() const = 0;
    virtual std::string_view Id() const = 0;
    /// The blank-separated class names.
    virtual std::string_view Classes() const = 0;
    /// Nothing where the element has no such attribute.
    virtual std::optional<std::string_view> Attribute(std::string_view name) const = 0;
    virtual const IStyledElement* Parent() const = 0;
    /// The element sibling before this one.
    virtual const IStyledElement* Previous() const = 0;
};

/// The rules of a document's <style> elements (CSS 2.1): type, universal, class, id and attribute selectors,
/// :first-child and :root, descendant, child and adjacent combinators, groups. Namespace prefixes do not
/// count. The dynamic pseudo-classes, :lang() and pseudo-elements match nothing; a rule with any other is
/// skipped. @-rules are skipped, but the content of @media for all or screen is taken. Copies share the
/// rules.
///
/// Bounded: at most MaxRules selectors (each of a group counts), of at most MaxParts parts each; looking
/// whether a selector matches an element takes at most MaxSteps steps through ancestors and siblings, beyond
/// which it does not match. Of an attribute's list of words the first 4096 bytes count.
class TStyleSheet {
public:
    static constexpr std::size_t MaxRules = 20000;
    static constexpr std::size_t MaxParts = 64;
    static constexpr int MaxSteps = 4096;

    /// Adds the rules of CSS text behind those that are there. Each part that cannot be used is skipped, and
    /// a short note of it is added to `diagnostics` where given.
    void Add(std::string_view css, std::vector<std::string>* diagnostics = nullptr);
    bool IsEmpty() const { return FRules.empty(); }

    /// One matching rule's declarations, in the order of the cascade among rules: weaker first.
    struct TMatch {
        const std::vector<TDeclaration>* Declarations;
        const std::string* Transform; ///< a "transform" declaration of the rule; empty: none
    };
    /// Fills matches (cleared first) with all rules that match the element, weakest first (CSS 2.1, 6.4.1;
    /// importance is the caller's). Where a budget is given, each step of the search takes one off it, and
    /// nothing matches any more when it is used up: so a document of many elements and many rules costs
    /// bounded time.
    void Match(const IStyledElement& element, std::vector<TMatch>& matches,
               std::int64_t* budget = nullptr) const;

private:
    struct TRule;
    using TPlaces = std::vector<std::uint32_t>;
    using TIndex = std::unordered_map<std::string_view, TPlaces>;

    void BuildIndex();
    TPlaces Candidates(const IStyledElement& element) const;

    std::vector<std::shared_ptr<const TRule>> FRules; ///< weakest first
    // The places in FRules by what the selector's last part asks for; the names lie in the rules.
    TIndex FById;
    TIndex FByClass;
    TIndex FByType;
    TPlaces FOthers;
};

} // namespace Vz
