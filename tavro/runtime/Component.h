#pragma once

#include "tavro/runtime/Object.h"

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Vz {

class TComponent;
struct TComponentMaker;

/// Proof that a component is being made by `Create`: the only constructor argument of every component class,
/// and nobody else has one to give.
class TCreateKey {
    friend struct TComponentMaker;
    TCreateKey() = default;
};

/// A named object in a tree of owners: an owner destroys what it owns, the youngest first.
///
/// Components are made by `T::Create()` or `T::Create(owner)` only (see TCreatable), in two phases. The C++
/// constructor gives fields their initial values and calls nothing virtual. Then Construct runs on the whole
/// object and dispatches to the derived classes: an override does what must come before its base, calls the
/// base's Construct, and does the rest. AfterConstruction follows. An exception from either destroys the
/// object and leaves the owner as it was; so a destructor finds whatever Construct had reached.
class TComponent : public TPersistent {
public:
    explicit TComponent(TCreateKey) {}
    ~TComponent() override;

    /// Name of the class, as in form files: "TVZSpeedometer".
    virtual std::string_view ClassName() const = 0;

    TComponent* GetOwner() const { return FOwner; }

    /// Letters, digits and underscores (ASCII), not beginning with a digit, and unlike those of its owner's
    /// other components (exact case); or empty, the default. Otherwise EComponentError, and the name stays.
    const std::string& GetName() const { return FName; }
    void SetName(std::string_view name);
    /// Never: form files carry the name in front of the class.
    bool IsNameStored() const { return false; }

    /// The components that this one owns, the oldest first.
    int GetComponentCount() const { return static_cast<int>(FComponents.size()); }
    /// Raises EArgumentOutOfRange for an index outside 0..count-1.
    TComponent& GetComponent(int index) const;
    /// The owned component of that name (exact case, not below it), or null. Null for an empty name.
    TComponent* FindComponent(std::string_view name) const;
    /// Takes over a component that nobody owns and that is not above this one. Raises EComponentError when
    /// its name is taken; the component is destroyed then.
    TComponent& InsertComponent(std::unique_ptr<TComponent> component);
    /// Gives an owned component away; the caller may keep or destroy it. EInvalidOperation when it is not
    /// owned here.
    std::unique_ptr<TComponent> RemoveComponent(TComponent& component);

    std::span<const TProp> GetCommonProps() const override;

    /// Brackets a group of property changes; a form file's reader calls them round a component's properties.
    /// Nothing by default; a class that saves work between them overrides both.
    virtual void BeginUpdate() {}
    virtual void EndUpdate() {}

    /// What a form file writes inside this component, in order. By default what it owns.
    virtual std::vector<TComponent*> GetChildComponents() const;
    /// Called by a form file's reader on a component that stands inside `parent`, which owns it already,
    /// before its properties are set. Nothing by default.
    virtual void SetParentComponent(TComponent& /*parent*/) {}

protected:
    /// The constructing step; see the class's comment. Overrides call their base's.
    virtual void Construct() {}
    /// Runs once on the finished object. Overrides call their base's first.
    virtual void AfterConstruction() {}
    /// Destroys what it owns now, the youngest first. For a destructor whose class must still be whole
    /// meanwhile.
    void DestroyComponents();

private:
    friend struct TComponentMaker;

    TComponent* FOwner = nullptr;
    std::string FName;
    std::vector<std::unique_ptr<TComponent>> FComponents;
};

/// True for what SetName takes as a name that is not empty.
bool IsIdentifier(std::string_view text);

/// Carries out both phases. Used through TCreatable.
struct TComponentMaker {
    template <class T> static std::unique_ptr<T> Make(TComponent* owner) {
        auto component = std::make_unique<T>(TCreateKey{});
        Finish(*component, owner);
        return component;
    }
    static TComponent& Adopt(TComponent& owner, std::unique_ptr<TComponent> component);

private:
    static void Finish(TComponent& component, TComponent* owner);
};

/// Between a concrete component class T and its base: gives T the two ways to create it. T says its name and
/// takes the constructor over:
///     class TVZSpeedometer final : public TCreatable<TVZSpeedometer, TVZSVGCustomInstrument> {
///     public:
///         static constexpr std::string_view TypeName = "TVZSpeedometer";
///         using TCreatable::TCreatable;
template <class T, class TBase> class TCreatable : public TBase {
public:
    using TBase::TBase;

    /// A component that the caller owns.
    static std::unique_ptr<T> Create() { return TComponentMaker::Make<T>(nullptr); }
    /// A component that `owner` owns and will destroy.
    static T& Create(TComponent& owner) {
        return static_cast<T&>(TComponentMaker::Adopt(owner, TComponentMaker::Make<T>(&owner)));
    }

    std::string_view ClassName() const override {
        if constexpr (requires { TBase::TypeName; })
            static_assert(T::TypeName != TBase::TypeName, "a component class says its own TypeName");
        return T::TypeName;
    }
};

} // namespace Vz
