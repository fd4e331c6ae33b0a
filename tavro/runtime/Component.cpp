#include "tavro/runtime/Component.h"

#include "tavro/runtime/ComponentProps.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace Vz {

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Raises EComponentError when `owner` has a component of that name other than `self`.
void CheckNameIsFree(const TComponent* owner, const TComponent* self, std::string_view name) {
    const TComponent* other = owner && !name.empty() ? owner->FindComponent(name) : nullptr;
    if (other && other != self)
        throw EComponentError("a component named \"" + std::string(name) + "\" already exists");
}

} // namespace

bool IsIdentifier(std::string_view text) {
    return !text.empty() && IsLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char c) { return IsLetter(c) || IsDigit(c); });
}

TComponent::~TComponent() { DestroyComponents(); }

void TComponent::SetName(std::string_view name) {
    if (name == FName) return;
    if (!name.empty() && !IsIdentifier(name))
        throw EComponentError("\"" + std::string(name) + "\" is not a valid component name");
    CheckNameIsFree(FOwner, this, name);
    FName = name;
}

TComponent& TComponent::GetComponent(int index) const {
    if (index < 0 || index >= GetComponentCount())
        throw EArgumentOutOfRange("component " + std::to_string(index) + " of " +
                                  std::to_string(GetComponentCount()));
    return *FComponents[static_cast<std::size_t>(index)];
}

TComponent* TComponent::FindComponent(std::string_view name) const {
    if (name.empty()) return nullptr;
    for (const auto& component : FComponents)
        if (component->FName == name) return component.get();
    return nullptr;
}

TComponent& TComponent::InsertComponent(std::unique_ptr<TComponent> component) {
    assert(component && !component->FOwner);
    return TComponentMaker::Adopt(*this, std::move(component));
}

std::unique_ptr<TComponent> TComponent::RemoveComponent(TComponent& component) {
    const auto found = std::find_if(FComponents.begin(), FComponents.end(),
                                    [&](const auto& owned) { return owned.get() == &component; });
    if (found == FComponents.end()) throw EInvalidOperation("the component is not owned by this one");
    std::unique_ptr<TComponent> taken = std::move(*found);
    FComponents.erase(found);
    taken->FOwner = nullptr;
    return taken;
}

std::span<const TProp> TComponent::GetCommonProps() const {
    static constexpr std::array Rows{NameProp};
    return Rows;
}

std::vector<TComponent*> TComponent::GetChildComponents() const {
    std::vector<TComponent*> children;
    for (const auto& component : FComponents)
        children.push_back(component.get());
    return children;
}

void TComponent::DestroyComponents() {
    while (!FComponents.empty()) {
        // Out of the list first: what its destructor asks of us must not meet a component half destroyed.
        const std::unique_ptr<TComponent> youngest = std::move(FComponents.back());
        FComponents.pop_back();
    }
}

void TComponentMaker::Finish(TComponent& component, TComponent* owner) {
    component.FOwner = owner;
    component.Construct();
    component.AfterConstruction();
}

TComponent& TComponentMaker::Adopt(TComponent& owner, std::unique_ptr<TComponent> component) {
    CheckNameIsFree(&owner, component.get(), component->GetName());
    owner.FComponents.push_back(std::move(component));
    TComponent& adopted = *owner.FComponents.back();
    adopted.FOwner = &owner;
    return adopted;
}

} // namespace Vz
