#pragma once

#include "tavro/instruments/Instrument.h"

namespace Vz {

/// Base of the signal lights: lamps that are lit or dark, and that the user's clicks may switch.
class TVZCustomLight : public TVZSVGCustomInstrument {
public:
    using TVZSVGCustomInstrument::TVZSVGCustomInstrument;

    /// Whether clicks switch lamps. Default true. Mouse events are raised in any case.
    bool GetEnableActions() const { return FEnableActions; }
    void SetEnableActions(bool value) { FEnableActions = value; }

    /// Any button: raises OnMouseUp, then hands what lies under the mouse to Clicked.
    void MouseUp(TMouseButton button, TShiftState shift, int x, int y) override;
    /// Shows each lamp lit or dark, and invalidates.
    virtual void UpdateState() = 0;

protected:
    /// Switches the lamp that the element belongs to; nothing for other elements. `element` is the topmost
    /// one under the mouse.
    virtual void Clicked(const TSVGGraphicElement& element, TShiftState shift) = 0;

    /// Gives a lamp's disc the colour, and its highlight the gradient of a lit or of a dark lamp.
    void ShowLamp(std::string_view discId, TVZGPColor color, std::string_view shineId, bool isLit);
    /// True where the element lies in the one of that id, at any depth.
    bool IsInside(const TSVGGraphicElement& element, std::string_view id) const;

private:
    bool FEnableActions = true;
};

} // namespace Vz
