#pragma once

#include "tavro/svg/css/StyleProps.h"

#include <optional>
#include <string_view>

namespace Vz {

/// Reads a trimmed, non-empty text as one of a property's values other than its keywords; nothing where it is
/// none.
using TValueParser = std::optional<TStyleValue> (*)(std::string_view text);

/// <length> | <percentage>; a number without unit counts as a length.
std::optional<TStyleValue> ParseLengthValue(std::string_view text);
/// The same, but not below zero.
std::optional<TStyleValue> ParseSizeValue(std::string_view text);
/// <number> of at least zero.
std::optional<TStyleValue> ParseFactorValue(std::string_view text);
/// <number> | <percentage>, held within 0..1: a Number.
std::optional<TStyleValue> ParseOpacityValue(std::string_view text);
/// <number> of at least one (SVG 1.1, 11.4).
std::optional<TStyleValue> ParseMiterLimitValue(std::string_view text);
/// A whole or broken number of 1..1000.
std::optional<TStyleValue> ParseWeightValue(std::string_view text);
/// <percentage> of at least zero: a Number in per cent.
std::optional<TStyleValue> ParseStretchValue(std::string_view text);
/// <angle>: a Number in degrees.
std::optional<TStyleValue> ParseAngleValue(std::string_view text);
/// "oblique" with an angle, which is not kept.
std::optional<TStyleValue> ParseObliqueValue(std::string_view text);
/// <number>: a Number; <length> | <percentage>: a Length; neither below zero.
std::optional<TStyleValue> ParseLineHeightValue(std::string_view text);
/// currentColor | <color> with an icc-color() that is passed over.
std::optional<TStyleValue> ParseColorValue(std::string_view text);
/// SVG 2, 13.2 <paint>.
std::optional<TStyleValue> ParsePaintValue(std::string_view text);
/// none | <url>.
std::optional<TStyleValue> ParseReferenceValue(std::string_view text);
/// none: NoPaint | one <url>: Url | filter functions and urls: Text (Filter Effects 1, 5).
std::optional<TStyleValue> ParseFilterValue(std::string_view text);
/// Lengths and percentages of at least zero: Lengths.
std::optional<TStyleValue> ParseDashesValue(std::string_view text);
/// One to three of lengths and the words of sides: Lengths, always two, sides as percentages (CSS Transforms
/// 1, 4).
std::optional<TStyleValue> ParseOriginValue(std::string_view text);
/// A set of underline, overline, line-through and blink: Text in this order, separated by blanks.
std::optional<TStyleValue> ParseDecorationValue(std::string_view text);
/// One to three of fill, stroke and markers: Text of all three, those that were left out behind (SVG
/// 2, 13.8).
std::optional<TStyleValue> ParsePaintOrderValue(std::string_view text);
/// A list of quoted axis names of four characters, each with a number: Text.
std::optional<TStyleValue> ParseVariationsValue(std::string_view text);
/// rect(...): Text.
std::optional<TStyleValue> ParseClipValue(std::string_view text);
/// "new" with the numbers of an area or none: Text.
std::optional<TStyleValue> ParseBackgroundValue(std::string_view text);
/// Anything that can stand in a declaration, kept as Text.
std::optional<TStyleValue> ParseTextValue(std::string_view text);

/// "url(#id)" as ParseReferenceValue reads it.
std::string UrlText(std::string_view reference);

} // namespace Vz
