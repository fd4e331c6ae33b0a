#include "Trace.h"

#include "Edits.h"
#include "Output.h"
#include "tavro/runtime/Props.h"

namespace Vz::Tool {

namespace {

void Listen(TPersistent& object, std::span<const TProp> rows, const std::string& prefix) {
    for (const TProp& row : rows)
        if (row.Attach)
            row.Attach(object, [name = prefix + std::string(row.Name)] { Print("  " + name + '\n'); });
}

void ListenToAll(TComponent& component, const std::string& prefix) {
    Listen(component, component.GetPropTable(), prefix);
    if (auto* const control = dynamic_cast<TControl*>(&component))
        Listen(component, control->GetCommonEvents(), prefix);
    for (int i = 0; i < component.GetComponentCount(); ++i) {
        TComponent& inside = component.GetComponent(i);
        ListenToAll(inside, inside.GetName().empty() ? prefix : prefix + inside.GetName() + '.');
    }
}

} // namespace

void Trace(const TRequest& request, const TSource& source) {
    ListenToAll(source.GetComponent(), "");
    for (const TEdit& edit : request.Edits) {
        Print(edit.Text + '\n');
        Apply(edit, source);
    }
}

} // namespace Vz::Tool
