#pragma once

#include "tavro/controls/Control.h"

#include <functional>

namespace Vz {

/// Told of a painting of the control, with the canvas that it paints on.
using TPaintEvent = std::function<void(TObject& sender, TVZGPCanvas& canvas)>;

/// A control without a window that paints onto what lies under it. Its painting has three steps: DoPainting,
/// DoPaint, which a class supplies, and DoPainted.
class TVZCustomTransparentGraphicControl : public TControl {
public:
    using TControl::TControl;

    /// Before and after the control paints; a handler may draw on the canvas, and leaves its transform as it
    /// was. Both empty by default.
    const TPaintEvent& GetOnPainting() const { return FOnPainting; }
    void SetOnPainting(TPaintEvent event) { FOnPainting = std::move(event); }
    const TPaintEvent& GetOnPainted() const { return FOnPainted; }
    void SetOnPainted(TPaintEvent event) { FOnPainted = std::move(event); }

    /// Adds OnPainting and OnPainted.
    std::span<const TProp> GetCommonEvents() const override;

protected:
    void Paint(TVZGPCanvas& canvas) override;
    /// Raises OnPainting.
    virtual void DoPainting(TVZGPCanvas& canvas);
    virtual void DoPaint(TVZGPCanvas& canvas) = 0;
    /// Raises OnPainted.
    virtual void DoPainted(TVZGPCanvas& canvas);

private:
    TPaintEvent FOnPainting;
    TPaintEvent FOnPainted;
};

} // namespace Vz
