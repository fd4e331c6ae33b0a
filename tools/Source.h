#pragma once

#include "tavro/controls/Control.h"

#include <memory>
#include <string_view>

namespace Vz {
class TSVGDocument;
class TVZSVGCustomInstrument;
} // namespace Vz

namespace Vz::Tool {

/// A component that the command line names, and all that lives with it.
class TSource {
public:
    /// `text` is a registered class, a form file (`*.form`, `*.form#NAME` for one component of it) or an SVG
    /// file (`*.svg`). Raises EClassNotFound, EReadError and what else the file's reader raises.
    explicit TSource(std::string_view text);

    TComponent& GetComponent() const { return *FPicked; }
    /// Raise EInvalidOperation where the component is no control, no instrument, or has no SVG document.
    TControl& GetControl() const;
    TVZSVGCustomInstrument& GetInstrument() const;
    TSVGDocument& GetDocument() const;

private:
    std::unique_ptr<TComponent> FRoot;
    TComponent* FPicked = nullptr;
};

} // namespace Vz::Tool
