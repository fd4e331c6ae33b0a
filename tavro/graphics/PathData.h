#pragma once

#include "tavro/graphics/Figures.h"
#include "tavro/runtime/Events.h"
#include "tavro/runtime/Lasting.h"
#include "tavro/runtime/Object.h"

#include <string>
#include <string_view>

namespace Vz {

/// Editable SVG path data: a list of figures (move, line, curve, arc, close) with a change notification.
class TVZPathData : public TPersistent {
public:
    /// Replaces the figures by those of SVG path data (SVG 1.1, 8.3, the whole grammar). Text that breaks the
    /// grammar raises EConvertError with the place, and the figures stay; empty text clears. A step with a
    /// number beyond double's range is left out; negative radii count as positive.
    void SetPathString(std::string_view text);
    /// Replaces the figures by those up to the first fault, as SVG asks of a document's paths (SVG 1.1, F.2).
    /// True when the text had no fault.
    bool SetPathStringTolerant(std::string_view text);
    /// The figures as path data with absolute commands: every number with the fewest digits that read back to
    /// it, no blank that is not needed. It reads back to the same figures; steps that are not finite are left
    /// out.
    std::string GetPathString() const;
    void Clear();
    /// Maps every point in place; nothing where the matrix is not finite.
    void ApplyMatrix(const TMatrix& matrix);
    /// Adds all figures of another path data behind these; the path data itself may be given.
    void Append(const TVZPathData& other);
    /// Copies the figures. Raises EInvalidCast where source is no path data.
    void Assign(const TPersistent& source) override;
    /// The same for an object that nobody knows yet: nobody is told.
    void AssignUntold(const TVZPathData& source) { FFigures = source.FFigures; }
    /// The path string as the object's one text.
    std::string ToText() const override { return GetPathString(); }
    void FromText(std::string_view text) override { SetPathString(text); }

    /// Copies of a path data share the figures until one of them is edited.
    const TFigures& GetFigures() const { return FFigures ? *FFigures : NoFigures(); }
    /// The same, kept alive for whoever draws it later; null where there are none.
    std::shared_ptr<const TFigures> ShareFigures() const { return FFigures; }
    void SetFigures(TFigures figures);
    /// The figures that there are now live from here on as long as the program (see Lasting.h).
    void MakeLasting() { Vz::MakeLasting(FFigures); }

    /// Nested; OnChange comes once at the outermost end where anything changed.
    void BeginUpdate();
    void EndUpdate();

    /// Raised after each change outside of updates.
    TNotifyEvent OnChange;

private:
    static const TFigures& NoFigures();
    /// The figures of this object alone.
    TFigures& Edit();
    void Changed();

    std::shared_ptr<TFigures> FFigures; ///< null: none
    int FUpdateCount = 0;
    bool FChanged = false;
};

} // namespace Vz
