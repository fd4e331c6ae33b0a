#include "tavro/svg/model/IdTable.h"

#include "tavro/runtime/Lasting.h"

namespace Vz {

TSVGElement* TSVGIdTable::Find(std::string_view id) const {
    if (!FPlaces) return nullptr;
    const auto at = FPlaces->find(id);
    return at == FPlaces->end() ? nullptr : FElements[at->second];
}

TSVGIdTable::TPlace TSVGIdTable::Add(std::string_view id) {
    if (!FPlaces) FPlaces = std::make_shared<TPlaces>();
    if (const auto at = FPlaces->find(id); at != FPlaces->end()) return at->second;
    if (!IsSoleHolder(FPlaces)) FPlaces = std::make_shared<TPlaces>(*FPlaces);
    if (FFree.empty()) {
        FFree.push_back(static_cast<TPlace>(FElements.size()));
        FElements.push_back(nullptr);
    }
    FPlaces->emplace(id, FFree.back());
    const TPlace place = FFree.back();
    FFree.pop_back();
    return place;
}

void TSVGIdTable::Drop(TPlace place, std::string_view id) {
    FElements[place] = nullptr;
    if (!IsSoleHolder(FPlaces)) return; // others have the name still
    FPlaces->erase(FPlaces->find(id));
    FFree.push_back(place);
}

TSVGIdTable TSVGIdTable::EmptyCopy() const {
    TSVGIdTable copy;
    copy.FPlaces = FPlaces;
    copy.FElements.resize(FElements.size());
    copy.FFree = FFree;
    return copy;
}

} // namespace Vz
