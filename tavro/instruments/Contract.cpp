#include "tavro/instruments/Editing.h"

#include <algorithm>

namespace Vz {

namespace {

/// The rows of a contract, one an element: what several tables ask of it comes together.
class TContract {
public:
    void Ask(const TArtworkRow& wish) {
        if (wish.Id.empty()) return;
        const auto known = std::ranges::find(FRows, wish.Id, &TArtworkRow::Id);
        if (known == FRows.end()) {
            FRows.push_back(wish);
            return;
        }
        known->Kind = std::max(known->Kind, wish.Kind);
        known->Stops = std::max(known->Stops, wish.Stops);
    }
    void Ask(std::string_view id, TArtworkKind kind) { Ask({id, kind}); }
    void AskForStop(std::string_view gradient, unsigned index) {
        Ask({gradient, TArtworkKind::Stops, {}, static_cast<std::uint8_t>(index + 1)});
    }
    void Ask(const TColorEdit& edit) {
        if (edit.IsOfGradient())
            AskForStop(edit.Id, edit.Index);
        else
            Ask(edit.Id, TArtworkKind::Graphic);
    }
    void Ask(const TColorSource& source) {
        if (source.Place == TColorSource::TPlace::Stop || source.Place == TColorSource::TPlace::LastStop)
            AskForStop(source.Id, source.Index);
        else
            Ask(source.Id, TArtworkKind::Graphic);
    }
    std::vector<TArtworkRow> Take() { return std::move(FRows); }

private:
    std::vector<TArtworkRow> FRows;
};

} // namespace

std::vector<TArtworkRow> TVZSVGCustomInstrument::GetArtworkContract() const {
    const TInstrumentSetup& setup = GetSetup();
    TContract contract;
    for (const TArtworkRow& row : setup.Structure)
        contract.Ask(row);
    for (const TColorRow& row : setup.Colors) {
        contract.Ask(row.Source);
        for (const TColorEdit& edit : row.Edits)
            contract.Ask(edit);
    }
    for (const TColorEdit& edit : setup.LightEdits)
        contract.Ask(edit);
    for (const std::string_view id : setup.SavedGradients)
        contract.Ask(id, TArtworkKind::Stops);
    for (const TGradientRow& row : setup.Gradients) {
        contract.Ask(row.Element, TArtworkKind::Graphic);
        contract.Ask(row.Gradient, TArtworkKind::Gradient);
    }
    for (const TPartRow& row : setup.PartElements)
        contract.Ask(row.Element, TArtworkKind::Graphic);
    for (const std::string_view id : setup.DetailElements)
        contract.Ask(id, TArtworkKind::Graphic);
    contract.Ask(GetActiveElementId(), TArtworkKind::Graphic);
    contract.Ask(FDecorationElementId, setup.DecorationKind);
    return contract.Take();
}

} // namespace Vz
