#pragma once

#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Set.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

namespace Vz {

/// Names of an enumeration's members, by ordinal (0, 1, 2 ...), and of the enumeration itself.
struct TEnumType {
    std::string_view Name;
    std::span<const std::string_view> Members;
};

/// Specialised beside each published enumeration:
///     template <> struct EnumNames<TSVGDesign> {
///         static constexpr std::string_view Name = "TSVGDesign";
///         static constexpr std::string_view SetName = "TSVGDesigns"; // only where a set of it is published
///         static constexpr std::string_view Members[] = {"sdDetailed", "sdSimple"};
///     };
template <class E> struct EnumNames;

template <class E>
concept CNamedEnum = std::is_enum_v<E> && requires {
    EnumNames<E>::Members;
};

template <class E> inline constexpr TEnumType EnumType{EnumNames<E>::Name, EnumNames<E>::Members};

/// True for the types of a published 32-bit colour, which static_cast turns into std::uint32_t (0xAARRGGBB)
/// and back. A std::uint32_t itself is one: numbers are published as signed integers or as shorter unsigned
/// ones.
template <class T> inline constexpr bool IsColorType = false;
template <> inline constexpr bool IsColorType<std::uint32_t> = true;

/// What a TValue can hold beside plain numbers and texts; each compares by its value.
struct TColorValue {
    std::uint32_t Argb = 0; ///< 0xAARRGGBB

    bool operator==(const TColorValue&) const = default;
};
struct TEnumValue {
    const TEnumType* Type = nullptr;
    int Ordinal = 0;

    bool operator==(const TEnumValue&) const = default;
};
struct TSetValue {
    const TEnumType* Type = nullptr;
    std::uint32_t Mask = 0;

    bool operator==(const TSetValue&) const = default;
};

/// The value of a published property. float and double are kept apart, as each has its own shortest text;
/// texts are views into the object or into a literal. The first kind is "no value".
using TValue = std::variant<std::monostate, bool, std::int64_t, float, double, TColorValue, TEnumValue,
                            TSetValue, TDateTime, std::string_view>;

/// Kind of a published property. The first ten are those of TValue, in its order.
enum class TValueKind {
    None,
    Boolean,
    Integer,
    Single,
    Double,
    Color,
    Enumeration,
    Set,
    DateTime,
    Text,
    Strings,    ///< an owned TStrings
    TextObject, ///< an owned object whose value is one text
    Object,     ///< an owned object with published properties of its own
    Event,
};

/// Type of a published property, as descriptions, readers and writers need it.
struct TValueType {
    TValueKind Kind = TValueKind::None;
    std::string_view Name; ///< "integer", "single", "TSVGDesign" ...
    std::int64_t Min = 0;  ///< smallest and greatest of an integer type
    std::int64_t Max = 0;
    const TEnumType* Members = nullptr; ///< of an enumeration or a set
};

/// The content of a value as one of TValue's types. Raises EInvalidCast when it holds another; a number is
/// taken as any kind of number that can hold it: an integer as float or double, either of these as the other.
bool AsBool(const TValue& value);
std::int64_t AsInteger(const TValue& value);
double AsDouble(const TValue& value);
std::uint32_t AsColor(const TValue& value);
int AsEnum(const TValue& value, const TEnumType& type);
std::uint32_t AsSet(const TValue& value, const TEnumType& type);
TDateTime AsDateTime(const TValue& value);
std::string_view AsText(const TValue& value);

/// AsInteger, and EConvertError for a number outside `type`.
std::int64_t AsIntegerIn(const TValue& value, const TValueType& type);

/// How a C++ type goes into and comes out of a TValue. To publish a type of your own, specialise this.
template <class T> struct TValueTraits;

template <> struct TValueTraits<bool> {
    static constexpr TValueType Type{TValueKind::Boolean, "Boolean"};
    static constexpr TValue ToValue(bool value) { return TValue(std::in_place_type<bool>, value); }
    static bool FromValue(const TValue& value) { return AsBool(value); }
};

template <class T>
requires(std::integral<T> && !std::same_as<T, bool> && !IsColorType<T> && sizeof(T) <= 8 &&
         (std::is_signed_v<T> || sizeof(T) < 8)) struct TValueTraits<T> {
    static constexpr TValueType Type{TValueKind::Integer, "integer", std::numeric_limits<T>::min(),
                                     std::numeric_limits<T>::max()};
    static constexpr TValue ToValue(T value) { return TValue(std::in_place_type<std::int64_t>, value); }
    static T FromValue(const TValue& value) { return static_cast<T>(AsIntegerIn(value, Type)); }
};

template <> struct TValueTraits<float> {
    static constexpr TValueType Type{TValueKind::Single, "single"};
    static constexpr TValue ToValue(float value) { return TValue(std::in_place_type<float>, value); }
    static float FromValue(const TValue& value) { return static_cast<float>(AsDouble(value)); }
};

template <> struct TValueTraits<double> {
    static constexpr TValueType Type{TValueKind::Double, "double"};
    static constexpr TValue ToValue(double value) { return TValue(std::in_place_type<double>, value); }
    static double FromValue(const TValue& value) { return AsDouble(value); }
};

template <class T>
requires IsColorType<T>
struct TValueTraits<T> {
    static constexpr TValueType Type{TValueKind::Color, "colour"};
    static constexpr TValue ToValue(T value) {
        return TValue(std::in_place_type<TColorValue>, TColorValue{static_cast<std::uint32_t>(value)});
    }
    static T FromValue(const TValue& value) { return static_cast<T>(AsColor(value)); }
};

template <CNamedEnum E> struct TValueTraits<E> {
    static constexpr TValueType Type{TValueKind::Enumeration, EnumNames<E>::Name, 0, 0, &EnumType<E>};
    static constexpr TValue ToValue(E value) {
        return TValue(std::in_place_type<TEnumValue>, TEnumValue{&EnumType<E>, static_cast<int>(value)});
    }
    static E FromValue(const TValue& value) { return static_cast<E>(AsEnum(value, EnumType<E>)); }
};

template <CNamedEnum E> struct TValueTraits<TSet<E>> {
    static constexpr std::string_view Name() {
        if constexpr (requires { EnumNames<E>::SetName; })
            return EnumNames<E>::SetName;
        else
            return EnumNames<E>::Name;
    }
    static constexpr TValueType Type{TValueKind::Set, Name(), 0, 0, &EnumType<E>};
    static constexpr TValue ToValue(TSet<E> value) {
        return TValue(std::in_place_type<TSetValue>, TSetValue{&EnumType<E>, value.GetMask()});
    }
    static TSet<E> FromValue(const TValue& value) { return TSet<E>::FromMask(AsSet(value, EnumType<E>)); }
};

template <> struct TValueTraits<TDateTime> {
    static constexpr TValueType Type{TValueKind::DateTime, "date-time"};
    static constexpr TValue ToValue(TDateTime value) { return TValue(std::in_place_type<TDateTime>, value); }
    static TDateTime FromValue(const TValue& value) { return AsDateTime(value); }
};

template <> struct TValueTraits<std::string_view> {
    static constexpr TValueType Type{TValueKind::Text, "string"};
    static constexpr TValue ToValue(std::string_view value) {
        return TValue(std::in_place_type<std::string_view>, value);
    }
    static std::string_view FromValue(const TValue& value) { return AsText(value); }
};

} // namespace Vz
