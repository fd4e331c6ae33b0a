#include "tavro/runtime/FormFile.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/FormTextInternal.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Utf8.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>
#include <vector>

namespace Vz {

namespace {

/// Sets a property from what the text says; faults carry no place yet.
void SetFormValue(const TPropRef& ref, const TFormValue& value) {
    const TProp& prop = *ref.Prop;
    switch (prop.Type.Kind) {
    case TValueKind::Event:
        throw EPropertyError("an event has no value");
    case TValueKind::Object:
        throw EPropertyError("the properties of an object are set one by one");
    case TValueKind::Strings:
        if (value.Shape != TFormValue::List) throw EConvertError("a list of strings ('a' 'b') is expected");
        return SetListItems(ref, value.Items);
    case TValueKind::TextObject:
    case TValueKind::Text:
        if (value.Shape != TFormValue::Quoted) throw EConvertError("a string in single quotes is expected");
        if (prop.Type.Kind == TValueKind::TextObject) return SetObjectText(ref, value.Text);
        break;
    default:
        if (value.Shape != TFormValue::Plain)
            throw EConvertError("a value of type " + std::string(prop.Type.Name) +
                                " is expected, without quotes");
    }
    prop.Set(*ref.Object, TextToValue(prop.Type, value.Text));
}

/// Turns a parsed form into components.
class TFormBuilder {
public:
    explicit TFormBuilder(std::string_view sourceName)
        : FSourceName(sourceName) {}

    std::unique_ptr<TComponent> BuildRoot(const TFormObject& object) const {
        const TClassEntry& entry = ClassOf(object);
        auto component = Placed(object.ClassPlace, [&] { return entry.Create(); });
        Fill(*component, object);
        return component;
    }

    /// Sets the name and the properties in the order of the text, one by one as a program would.
    void SetProperties(TComponent& component, const TFormObject& object) const {
        Placed(object.NamePlace, [&] {
            if (!object.Name.empty()) component.SetName(object.Name);
        });
        for (const TFormProperty& property : object.Properties)
            SetProperty(component, property);
    }

    /// Runs `action`; what it raises is raised with this place, in the family of errors in outside data.
    template <class F>
    auto Placed(TFormPlace place, F&& action, const std::string& subject = {}) const -> decltype(action()) {
        const TSourcePlace at{FSourceName, place.Line, place.Column};
        const auto reason = [&](const Exception& error) {
            return subject.empty() ? error.what() : subject + ": " + error.what();
        };
        try {
            return action();
        } catch (const EConvertError& error) {
            throw EConvertError(reason(error), at);
        } catch (const EClassNotFound& error) {
            throw EClassNotFound(reason(error), at);
        } catch (const EPropertyError& error) {
            throw EPropertyError(reason(error), at);
        } catch (const Exception& error) {
            if (subject.empty()) throw EReadError(reason(error), at);
            throw EPropertyError(reason(error), at);
        }
    }

private:
    const TClassEntry& ClassOf(const TFormObject& object) const {
        return Placed(object.ClassPlace, [&]() -> const TClassEntry& { return GetClass(object.ClassName); });
    }

    void Fill(TComponent& component, const TFormObject& object) const {
        SetProperties(component, object);
        for (const TFormObject& inside : object.Objects)
            if (inside.HasClass) BuildInside(component, inside);
    }

    void BuildInside(TComponent& parent, const TFormObject& object) const {
        const TClassEntry& entry = ClassOf(object);
        TComponent& component =
            Placed(object.ClassPlace, [&]() -> TComponent& { return entry.CreateOwned(parent); });
        Placed(object.ClassPlace, [&] { component.SetParentComponent(parent); });
        Fill(component, object);
    }

    void SetProperty(TComponent& component, const TFormProperty& property) const {
        const TPropRef ref = Placed(property.Place, [&] { return ResolveProp(component, property.Path); });
        Placed(
            property.Value.Place, [&] { SetFormValue(ref, property.Value); }, property.Path);
    }

    std::string FSourceName;
};

/// Parses, and makes everything that stands in front of a fault in the text's form, so that an earlier fault
/// of another kind is found first.
std::unique_ptr<TComponent> Build(const TFormText& form, const TFormBuilder& builder) {
    std::unique_ptr<TComponent> root;
    if (form.Root.HasClass) root = builder.BuildRoot(form.Root);
    if (form.Fault) std::rethrow_exception(form.Fault);
    return root;
}

/// The present values of the properties that a form is about to set, to put back when it fails after all.
class TPropSnapshot {
public:
    TPropSnapshot(TComponent& component, const TFormObject& object, const TFormBuilder& builder)
        : FComponent(component)
        , FName(component.GetName()) {
        for (const TFormProperty& property : object.Properties)
            builder.Placed(property.Place, [&] { Keep(ResolveProp(component, property.Path)); });
    }

    /// A setter that refuses its own earlier value does not keep the others from theirs.
    void Restore() const {
        FComponent.SetName(FName);
        RunBackwards(FUndo);
        RunBackwards(FTextUndo);
    }

private:
    using TUndo = std::vector<std::function<void()>>;

    static void RunBackwards(const TUndo& steps) {
        std::for_each(steps.rbegin(), steps.rend(), [](const auto& undo) {
            try {
                undo();
            } catch (const Exception&) {
                return;
            }
        });
    }

    void Keep(const TPropRef& ref) {
        if (!ref.Prop->GetObject) {
            const TValue value = ref.Prop->Get(*ref.Object);
            if (const auto* text = std::get_if<std::string_view>(&value))
                FUndo.emplace_back([ref, old = std::string(*text)] {
                    ref.Prop->Set(*ref.Object, TValue(std::in_place_type<std::string_view>, old));
                });
            else
                FUndo.emplace_back([ref, value] { ref.Prop->Set(*ref.Object, value); });
        } else if (const TPersistent* owned = ref.Prop->GetObject(*ref.Object);
                   owned && ref.Prop->NewObject) {
            const std::shared_ptr<TPersistent> old = ref.Prop->NewObject();
            old->Assign(*owned);
            FUndo.emplace_back([ref, old] { ref.Prop->SetObject(*ref.Object, *old); });
            if (ref.Prop->Type.Kind == TValueKind::TextObject && IsPropStored(*ref.Object, *ref.Prop))
                FTextUndo.push_back(FUndo.back());
        }
    }

    TComponent& FComponent;
    std::string FName;
    TUndo FUndo;
    TUndo FTextUndo; ///< owned texts once more, as in SetProperties
};

/// Raises the fault when something that the form would add or rename meets a component of the same name.
void CheckNamesAreFree(const TComponent& target, const TFormObject& form, const TFormBuilder& builder) {
    const auto check = [&](const TComponent* owner, const TFormObject& object) {
        const TComponent* other = owner ? owner->FindComponent(object.Name) : nullptr;
        if (!other || other == &target) return;
        builder.Placed(object.NamePlace, [&] {
            throw EComponentError("a component named \"" + object.Name + "\" already exists");
        });
    };
    check(target.GetOwner(), form);
    for (const TFormObject& object : form.Objects)
        check(&target, object);
}

} // namespace

std::unique_ptr<TComponent> ReadForm(std::string_view text, std::string_view sourceName) {
    return Build(ParseForm(text, sourceName), TFormBuilder(sourceName));
}

void ReadFormInto(TComponent& target, std::string_view text, std::string_view sourceName) {
    const TFormBuilder builder(sourceName);
    const TFormText form = ParseForm(text, sourceName);
    const auto trial = Build(form, builder);
    if (form.Root.ClassName != target.ClassName())
        builder.Placed(form.Root.ClassPlace, [&] {
            throw EReadError("the form is of class " + form.Root.ClassName + ", the component of class " +
                             std::string(target.ClassName()));
        });
    CheckNamesAreFree(target, form.Root, builder);

    const TPropSnapshot before(target, form.Root, builder);
    try {
        builder.SetProperties(target, form.Root);
    } catch (...) {
        before.Restore();
        throw;
    }
    while (trial->GetComponentCount() > 0) {
        TComponent& moved = target.InsertComponent(trial->RemoveComponent(trial->GetComponent(0)));
        moved.SetParentComponent(target);
    }
}

std::unique_ptr<TComponent> LoadForm(const std::filesystem::path& file) {
    return ReadForm(ReadWholeFile(file, MaxFormSize), file.string());
}

void LoadFormInto(TComponent& target, const std::filesystem::path& file) {
    ReadFormInto(target, ReadWholeFile(file, MaxFormSize), file.string());
}

} // namespace Vz
