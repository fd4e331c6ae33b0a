#pragma once

#include <cstdint>
#include <string>

namespace Vz {

enum class TFontSlant : std::uint8_t { Normal, Italic, Oblique };

/// How text is set: all that choosing a font and shaping need.
struct TTextStyle {
    std::string Family = "serif"; ///< a CSS family list; the last resort is the system's default
    double Size = 16;             ///< height of the em, > 0
    int Weight = 400;             ///< 1..1000
    TFontSlant Slant = TFontSlant::Normal;
    double Stretch = 100; ///< width in per cent of normal, 50..200
    bool SmallCaps = false;
    bool Kerning = true;
    bool Ligatures = true; ///< letters that are spaced want none
    std::string Language;  ///< BCP 47, may be empty
    friend bool operator==(const TTextStyle&, const TTextStyle&) = default;
};

} // namespace Vz
