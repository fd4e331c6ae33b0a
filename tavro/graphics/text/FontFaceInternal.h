#pragma once

#include "tavro/graphics/text/Outlines.h"

#include <hb.h>
#include <pango/pangofc-font.h>

#include <memory>
#include <unordered_map>

namespace Vz {

/// Calls a C library's release function in place of delete.
template <auto Release> struct TRelease {
    template <class T> void operator()(T* object) const { Release(object); }
};

using THbFontPtr = std::unique_ptr<hb_font_t, TRelease<hb_font_destroy>>;
using THbBufferPtr = std::unique_ptr<hb_buffer_t, TRelease<hb_buffer_destroy>>;

/// One font in the instance and with the artificial slant and weight that a style wants of it. All that it
/// tells is in em: one is the style's size. What depends on the size only is left to the one who scales.
class TFontFace {
public:
    /// The font as the style wants it. Without a font (null) the face has no glyph and the metrics of an
    /// average one.
    TFontFace(PangoFont* font, const TTextStyle& style);

    bool IsBlank() const { return !FFont; }
    /// For shaping. Its positions times GetUnit() are em.
    hb_font_t* GetFont() const { return FFont.get(); }
    double GetUnit() const { return FUnit; }
    /// By how much each glyph is wider than in the font where it has a width at all, in em (artificial bold).
    double GetExtraAdvance() const { return FEmboldening; }
    /// How far the glyphs lean to the right at a height of one (artificial slant).
    double GetLean() const { return FMatrix.C; }
    bool HasFeature(hb_tag_t tag) const;
    TFontMetrics GetMetrics() const;

    /// The glyph's outline, y down; kept from one call to the next until ForgetOutlines.
    const TFigures& GetOutline(hb_codepoint_t glyph);
    /// Numbers held by the kept outlines.
    std::size_t GetKeptNumbers() const { return FKeptNumbers; }
    void ForgetOutlines();

private:
    void SetVariations(hb_font_t* base, const TTextStyle& style);
    void SetArtificial(FcPattern* pattern, const TTextStyle& style);
    double GetMetric(unsigned tag, double byDefault) const;
    TFigures MakeOutline(hb_codepoint_t glyph) const;

    THbFontPtr FFont;
    double FUnit = 1;
    double FEmboldening = 0;
    TAffine FMatrix;
    bool FHasWeightAxis = false;
    bool FHasSlantAxis = false;
    std::unordered_map<hb_codepoint_t, TFigures> FOutlines;
    std::size_t FKeptNumbers = 0;
};

} // namespace Vz
