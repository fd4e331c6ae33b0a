#pragma once

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Object.h"
#include "tavro/runtime/Value.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Vz {

class TStrings;

/// What the main value of an object tells.
enum class TQuantity : std::uint8_t {
    None,        ///< the property is not the main one
    Value,       ///< a number
    Speed,       ///< a number, from standing still up
    Pressure,    ///< a number, the air's
    Temperature, ///< a number
    Supply,      ///< a number that is used up, such as a tank's
    Charge,      ///< a number that goes up and down, such as a battery's
    Height,      ///< a number, from the ground up
    Heading,     ///< degrees, clockwise from north
    Position,    ///< a number of few whole ones, such as a dial's
    TimeOfDay,
    Date,
    Lamps,  ///< a set of what is lit
    Switch, ///< on or off
};

/// One published property: all that a stream, an inspector or a test must know of it. Made by Prop,
/// ObjectProp and EventProp below; a class's rows stand in one constexpr array, which its GetPropTable gives.
struct TProp {
    std::string_view Name;
    TValueType Type;
    TValue (*Get)(const TPersistent&) = nullptr;        ///< null for an owned object and for an event
    void (*Set)(TPersistent&, const TValue&) = nullptr; ///< likewise
    TValue Default;                                     ///< declared default; no value: none is declared
    bool (*Stored)(const TPersistent&) = nullptr;       ///< see IsPropStored (PropAccess.h)

    /// An owned object: the object itself (null while there is none), its setter, and a fresh one of its
    /// class to read a text into (null when the class has no default constructor).
    TPersistent* (*GetObject)(const TPersistent&) = nullptr;
    void (*SetObject)(TPersistent&, const TPersistent& value) = nullptr;
    std::unique_ptr<TPersistent> (*NewObject)() = nullptr;

    /// Where a reset is more than assigning what a fresh object has: gives the property what its object makes
    /// by itself. Null: nothing more.
    void (*Reset)(TPersistent&) = nullptr;

    /// What the property tells, where it is the one that the object is there to show: what accessibility
    /// speaks, what a gallery moves, a bench changes. At most one row of a table has it.
    TQuantity Main = TQuantity::None;

    /// An event: sets a handler that calls `called` whatever the event carries.
    void (*Attach)(TPersistent&, std::function<void()> called) = nullptr;
};

namespace Detail {

template <class> struct TGetter;
template <class C, class R> struct TGetter<R (C::*)() const> {
    using Class = C;
    using Result = R;
    using Value = std::conditional_t<std::is_same_v<R, const std::string&>, std::string_view, R>;
    static_assert(std::is_base_of_v<TPersistent, C>, "a published property belongs to a TPersistent");
    static_assert(!std::is_same_v<R, std::string>, "a text getter returns const std::string&");
};

template <class> struct TSetter;
template <class C, class P> struct TSetter<void (C::*)(P)> {
    using Class = C;
    using Param = std::remove_cvref_t<P>;
    static_assert(std::is_base_of_v<TPersistent, C>, "a published property belongs to a TPersistent");
};

/// Reads through Getter and writes through Setter, the object given as its root.
template <auto Getter, auto Setter> struct TAccess {
    using G = TGetter<decltype(Getter)>;
    using Traits = TValueTraits<typename G::Value>;

    static TValue Get(const TPersistent& object) {
        return Traits::ToValue((static_cast<const typename G::Class&>(object).*Getter)());
    }
    static void Set(TPersistent& object, const TValue& value) {
        using C = typename TSetter<decltype(Setter)>::Class;
        (static_cast<C&>(object).*Setter)(Traits::FromValue(value));
    }
};

/// `value` as a T. Raises EInvalidCast when it is of another class.
template <class T> const T& CastTo(const TPersistent& value) {
    if (const T* cast = dynamic_cast<const T*>(&value)) return *cast;
    throw EInvalidCast("an object of another class was expected");
}

/// Reaches an owned object through Getter (which returns a reference or a pointer), and assigns to it through
/// Setter, or its own Assign where Setter is null.
template <auto Getter, auto Setter> struct TObjectAccess {
    using G = TGetter<decltype(Getter)>;
    using TOwned = std::remove_cv_t<std::remove_pointer_t<std::remove_reference_t<typename G::Result>>>;
    static_assert(std::is_base_of_v<TPersistent, TOwned>, "an owned object is a TPersistent");

    static TPersistent* Get(const TPersistent& object) {
        // A constant getter may give a constant object, but its owner, which we were handed, is ours to
        // change.
        if constexpr (std::is_pointer_v<typename G::Result>)
            return const_cast<TOwned*>((static_cast<const typename G::Class&>(object).*Getter)());
        else
            return const_cast<TOwned*>(&(static_cast<const typename G::Class&>(object).*Getter)());
    }
    static void Set(TPersistent& object, const TPersistent& value) {
        if constexpr (std::is_null_pointer_v<decltype(Setter)>) {
            if (TPersistent* owned = Get(object)) owned->Assign(value);
        } else {
            using S = TSetter<decltype(Setter)>;
            (static_cast<typename S::Class&>(object).*Setter)(CastTo<typename S::Param>(value));
        }
    }
    static std::unique_ptr<TPersistent> New() {
        if constexpr (std::is_default_constructible_v<TOwned>)
            return std::make_unique<TOwned>();
        else
            return nullptr;
    }
    static constexpr bool HasText() {
        return !std::is_same_v<decltype(&TOwned::ToText), decltype(&TPersistent::ToText)>;
    }
    static constexpr TValueType Type() {
        if constexpr (std::is_base_of_v<TStrings, TOwned>)
            return {TValueKind::Strings, "string list"};
        else if constexpr (requires { TOwned::TypeName; })
            return {HasText() ? TValueKind::TextObject : TValueKind::Object, TOwned::TypeName};
        else
            return {HasText() ? TValueKind::TextObject : TValueKind::Object, "object"};
    }
};

template <auto StoredWhen> struct TStored {
    static bool Is(const TPersistent& object) {
        using C = typename TGetter<decltype(StoredWhen)>::Class;
        return (static_cast<const C&>(object).*StoredWhen)();
    }
};

template <auto Method> struct TReset;
template <class C, void (C::*Method)()> struct TReset<Method> {
    static void Run(TPersistent& object) { (static_cast<C&>(object).*Method)(); }
};

template <auto Setter> struct TEventAccess {
    static void Attach(TPersistent& object, std::function<void()> called) {
        using S = TSetter<decltype(Setter)>;
        (static_cast<typename S::Class&>(object).*
         Setter)([called = std::move(called)](auto&&...) { called(); });
    }
};

template <auto StoredWhen> constexpr void SetStored(TProp& row) {
    if constexpr (!std::is_null_pointer_v<decltype(StoredWhen)>) row.Stored = &TStored<StoredWhen>::Is;
}

// Not consteval: clang 14 takes no call of one consteval function from another with the caller's parameters.
template <auto Getter, auto Setter, auto StoredWhen> constexpr TProp MakeRow(std::string_view name) {
    using A = TAccess<Getter, Setter>;
    TProp row;
    row.Name = name;
    row.Type = A::Traits::Type;
    row.Get = &A::Get;
    row.Set = &A::Set;
    SetStored<StoredWhen>(row);
    return row;
}

} // namespace Detail

/// A property of a plain value, without a declared default: always stored, or whenever StoredWhen says so.
template <auto Getter, auto Setter, auto StoredWhen = nullptr> consteval TProp Prop(std::string_view name) {
    return Detail::MakeRow<Getter, Setter, StoredWhen>(name);
}

/// A property of a plain value with its declared default: stored when it differs from that; where StoredWhen
/// is given, it alone decides.
template <auto Getter, auto Setter, auto StoredWhen = nullptr>
consteval TProp Prop(std::string_view name, typename Detail::TGetter<decltype(Getter)>::Value byDefault) {
    TProp row = Detail::MakeRow<Getter, Setter, StoredWhen>(name);
    row.Default = Detail::TAccess<Getter, Setter>::Traits::ToValue(byDefault);
    return row;
}

/// An owned object: a string list, an object with one text, or one with published properties of its own
/// (`Font.Size`). Getter returns a reference, or a pointer that may be null. Setter takes `const T&` and
/// copies; null means the object's own Assign. Without StoredWhen a list or text is stored when it is not
/// empty. ResetBy is a method without parameters, see TProp::Reset.
template <auto Getter, auto Setter = nullptr, auto StoredWhen = nullptr, auto ResetBy = nullptr>
consteval TProp ObjectProp(std::string_view name) {
    using A = Detail::TObjectAccess<Getter, Setter>;
    TProp row;
    row.Name = name;
    row.Type = A::Type();
    row.GetObject = &A::Get;
    row.SetObject = &A::Set;
    if (std::is_default_constructible_v<typename A::TOwned>) row.NewObject = &A::New;
    Detail::SetStored<StoredWhen>(row);
    if constexpr (!std::is_null_pointer_v<decltype(ResetBy)>) row.Reset = &Detail::TReset<ResetBy>::Run;
    return row;
}

/// An event, set through Setter, which takes a std::function that returns nothing. Never streamed.
template <auto Setter> consteval TProp EventProp(std::string_view name) {
    TProp row;
    row.Name = name;
    row.Type = {TValueKind::Event, "event"};
    row.Attach = &Detail::TEventAccess<Setter>::Attach;
    return row;
}

/// The row as that of the object's main value.
constexpr TProp Main(TProp row, TQuantity quantity = TQuantity::Value) {
    row.Main = quantity;
    return row;
}

/// True when no two rows bear the same name; for a static_assert below each table.
constexpr bool NamesAreUnique(std::span<const TProp> rows) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = i + 1; j < rows.size(); ++j)
            if (rows[i].Name == rows[j].Name) return false;
    return true;
}

} // namespace Vz
