#include "tavro/runtime/Value.h"

#include "tavro/runtime/Exceptions.h"

#include <string>

namespace Vz {

namespace {

template <class T> const T& Content(const TValue& value) {
    if (const T* content = std::get_if<T>(&value)) return *content;
    throw EInvalidCast("a property value of another kind was expected");
}

} // namespace

bool AsBool(const TValue& value) { return Content<bool>(value); }

std::int64_t AsInteger(const TValue& value) { return Content<std::int64_t>(value); }

double AsDouble(const TValue& value) {
    if (const auto* single = std::get_if<float>(&value)) return *single;
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
    return Content<double>(value);
}

std::uint32_t AsColor(const TValue& value) { return Content<TColorValue>(value).Argb; }

int AsEnum(const TValue& value, const TEnumType& type) {
    const auto& content = Content<TEnumValue>(value);
    if (content.Type != &type) throw EInvalidCast("a value of another enumeration was expected");
    return content.Ordinal;
}

std::uint32_t AsSet(const TValue& value, const TEnumType& type) {
    const auto& content = Content<TSetValue>(value);
    if (content.Type != &type) throw EInvalidCast("a set of another enumeration was expected");
    return content.Mask;
}

TDateTime AsDateTime(const TValue& value) { return Content<TDateTime>(value); }

std::string_view AsText(const TValue& value) { return Content<std::string_view>(value); }

std::int64_t AsIntegerIn(const TValue& value, const TValueType& type) {
    const std::int64_t integer = AsInteger(value);
    if (integer >= type.Min && integer <= type.Max) return integer;
    throw EConvertError(std::to_string(integer) + " lies outside " + std::to_string(type.Min) + ".." +
                        std::to_string(type.Max));
}

} // namespace Vz
