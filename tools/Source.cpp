#include "Source.h"

#include "UsageError.h"
#include "tavro/VZSVGControl.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/Rounding.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace Vz::Tool {

namespace {

bool EndsWith(std::string_view text, std::string_view ending) {
    return text.size() > ending.size() &&
           std::ranges::equal(text.substr(text.size() - ending.size()), ending, [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) == b;
           });
}

/// A plain control that shows the file in its own size.
std::unique_ptr<TComponent> LoadSvg(std::string_view file) {
    auto control = TVZSVGControl::Create();
    control->LoadFromFile(std::string(file));
    const auto extent = [](float size) {
        return static_cast<int>(RoundHalfEven(std::clamp<double>(size, 0, TControl::MaxExtent)));
    };
    control->SetBounds(0, 0, extent(control->GetDocument().GetWidth()),
                       extent(control->GetDocument().GetHeight()));
    return control;
}

/// The component of that name, the root itself counted, or null.
TComponent* FindInside(TComponent& root, std::string_view name) {
    if (root.GetName() == name) return &root;
    for (int i = 0; i < root.GetComponentCount(); ++i)
        if (TComponent* const found = FindInside(root.GetComponent(i), name)) return found;
    return nullptr;
}

/// One component of a form stands for itself: nobody shows it.
TComponent& Pick(TComponent& root, std::string_view file, std::string_view name) {
    TComponent* const picked = FindInside(root, name);
    if (!picked || name.empty())
        throw EReadError("there is no component " + Quoted(name), {std::string(file), 0, 0});
    if (auto* const control = dynamic_cast<TControl*>(picked)) control->SetParent(nullptr);
    return *picked;
}

std::unique_ptr<TComponent> NewOfClass(std::string_view name) {
    if (!FindClass(name) && name.find_first_of("./\\") != std::string_view::npos)
        throw EReadError(Quoted(name) + " is no class, no *.form and no *.svg file");
    return GetClass(name).Create();
}

} // namespace

TSource::TSource(std::string_view text) {
    const std::size_t hash = text.rfind('#');
    if (EndsWith(text, ".form")) {
        FRoot = LoadForm(text);
    } else if (hash != std::string_view::npos && EndsWith(text.substr(0, hash), ".form")) {
        FRoot = LoadForm(text.substr(0, hash));
        FPicked = &Pick(*FRoot, text.substr(0, hash), text.substr(hash + 1));
    } else if (EndsWith(text, ".svg")) {
        FRoot = LoadSvg(text);
    } else {
        FRoot = NewOfClass(text);
    }
    if (!FPicked) FPicked = FRoot.get();
}

TControl& TSource::GetControl() const {
    if (auto* const control = dynamic_cast<TControl*>(FPicked)) return *control;
    throw EInvalidOperation("a " + std::string(FPicked->ClassName()) + " is no control");
}

TVZSVGCustomInstrument& TSource::GetInstrument() const {
    if (auto* const instrument = dynamic_cast<TVZSVGCustomInstrument*>(FPicked)) return *instrument;
    throw EInvalidOperation("a " + std::string(FPicked->ClassName()) + " has no artwork of its own");
}

TSVGDocument& TSource::GetDocument() const {
    if (auto* const control = dynamic_cast<TVZSVGControl*>(FPicked)) return control->GetDocument();
    throw EInvalidOperation("a " + std::string(FPicked->ClassName()) + " has no SVG document");
}

} // namespace Vz::Tool
