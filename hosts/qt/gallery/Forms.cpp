#include "hosts/qt/gallery/Forms.h"

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/WidgetList.h"
#include "hosts/qt/gallery/InstrumentCard.h"
#include "tavro/VZSVGControl.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/Picture.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/FormFile.h"

#include <algorithm>
#include <map>

using namespace Vz;

namespace {

/// The widget's class for a component's: VzSpeedometer for TVZSpeedometer; null where there is none.
const TVzWidgetClass* findWidgetClass(std::string_view componentClass) {
    for (const TVzWidgetClass& kind : vzWidgetClasses())
        if (componentClass.starts_with("TVZ") &&
            componentClass.substr(3) == std::string_view(kind.Name).substr(2))
            return &kind;
    return nullptr;
}

void collect(TComponent& component, std::vector<LoadedInstrument>& found) {
    if (const TVzWidgetClass* const kind = findWidgetClass(component.ClassName())) {
        std::unique_ptr<VzWidget> widget(kind->Create(nullptr));
        TControl& shown = widget->component();
        ReadFormInto(shown, WriteForm(component));
        shown.SetBounds(0, 0, shown.GetWidth(), shown.GetHeight());
        widget->setEnabled(shown.GetEnabled());
        const QString name = QString::fromStdString(component.GetName());
        found.push_back({std::move(widget), name.isEmpty() ? classWords(kind->Name) : name});
        return; // what stands inside of it came with it
    }
    for (TComponent* child : component.GetChildComponents())
        collect(*child, found);
}

} // namespace

std::unique_ptr<TComponent> formOf(const std::vector<InstrumentCard*>& cards) {
    auto form = TVZForm::Create();
    form->SetName("Gallery");
    std::map<std::string, int> counts;
    int right = 0;
    int bottom = 0;
    for (const InstrumentCard* card : cards) {
        TControl& shown = card->instrument().component();
        const std::string className(shown.ClassName());
        auto& copy = dynamic_cast<TControl&>(GetClass(className).CreateOwned(*form));
        copy.SetParent(form.get());
        ReadFormInto(copy, WriteForm(shown));
        copy.SetName(className.substr(3) + std::to_string(++counts[className]));
        const QPoint at = card->pos() + card->instrument().pos();
        copy.SetBounds(at.x(), at.y(), shown.GetWidth(), shown.GetHeight());
        right = std::max(right, at.x() + shown.GetWidth());
        bottom = std::max(bottom, at.y() + shown.GetHeight());
    }
    form->SetBounds(0, 0, right + 16, bottom + 16);
    return form;
}

std::vector<LoadedInstrument> loadInstruments(const QString& file) {
    const auto root = LoadForm(file.toStdU16String());
    std::vector<LoadedInstrument> found;
    collect(*root, found);
    if (found.empty()) throw EReadError("there is no instrument in it", {file.toStdString(), 0, 0});
    return found;
}

void exportPicture(const VzWidget& widget, const QString& file, double scale) {
    const auto format = FindPictureFormat(file.toStdString());
    if (!format) throw EWriteError("a picture's name ends in .png, .svg or .pdf", {file.toStdString(), 0, 0});
    TControl& control = widget.component();
    auto* const document = dynamic_cast<TVZSVGControl*>(&control);
    const bool isDocument = *format == TPictureFormat::Svg && document;
    WriteFileAtomically(file.toStdU16String(), isDocument ? document->GetDocument().WriteText()
                                                          : DrawPicture(control, *format, scale));
}
