#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Vz {

class TSVGElement;

/// Which element of a document an id finds. A document that is a copy of another one has the same names: it
/// shares them until it gets a new one.
class TSVGIdTable {
public:
    /// Where an id stands; 0: nowhere.
    using TPlace = std::uint32_t;

    /// Null where there is none.
    TSVGElement* Find(std::string_view id) const;
    TSVGElement* Get(TPlace place) const { return FElements[place]; }
    /// The place of an id, made where there is none.
    TPlace Add(std::string_view id);
    void Set(TPlace place, TSVGElement* element) { FElements[place] = element; }
    /// The id at a place finds nothing any more.
    void Drop(TPlace place, std::string_view id);
    /// A table of the same places, at all of which there is nothing.
    TSVGIdTable EmptyCopy() const;

private:
    struct THashText {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    using TPlaces = std::unordered_map<std::string, TPlace, THashText, std::equal_to<>>;

    std::shared_ptr<TPlaces> FPlaces; ///< null: there are none
    std::vector<TSVGElement*> FElements{nullptr};
    std::vector<TPlace> FFree; ///< places without an id
};

} // namespace Vz
