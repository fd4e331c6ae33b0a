#include "Edits.h"

#include "tavro/controls/HeadlessHost.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/PropAccess.h"

namespace Vz::Tool {

void Apply(const TEdit& edit, const TSource& source) {
    switch (edit.Kind) {
    case TEditKind::Set:
        return SetPropText(source.GetComponent(), edit.Name, edit.Value);
    case TEditKind::Click:
        return THeadlessHost(source.GetControl()).Click(edit.X, edit.Y, edit.Button, edit.Shift);
    case TEditKind::BeginUpdate:
        return source.GetComponent().BeginUpdate();
    case TEditKind::EndUpdate:
        return source.GetComponent().EndUpdate();
    case TEditKind::Artwork:
        return source.GetInstrument().LoadFromFile(edit.Value);
    }
}

void ApplyEdits(const TRequest& request, const TSource& source) {
    for (const TEdit& edit : request.Edits)
        Apply(edit, source);
}

} // namespace Vz::Tool
