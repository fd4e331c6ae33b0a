#include "tavro/graphics/text/FontFaceInternal.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_OUTLINE_H
#include <hb-ot.h>

#include <algorithm>
#include <cmath>

namespace Vz {
namespace {

/// Positions are asked for in this fraction of a font unit, so that instances of variable fonts keep their
/// fractions.
constexpr int SubUnits = 64;
/// What a sheared letter leans, as fontconfig's own rules have it.
constexpr double ArtificialSlant = 0.2;
/// The angle that CSS means by `oblique` (CSS Fonts 4, 2.4); fonts count it counter-clockwise.
constexpr float ObliqueAngleDeg = -14;
/// How much an artificially bold letter grows, in em, as FreeType's FT_GlyphSlot_Embolden does it.
constexpr double Emboldening = 1.0 / 24;
constexpr int BoldWeight = 600;

/// Takes what HarfBuzz draws, in its positions with y up.
void MoveTo(hb_draw_funcs_t*, void* figures, hb_draw_state_t*, float x, float y, void*) {
    static_cast<TFigures*>(figures)->MoveTo(x, y);
}
void LineTo(hb_draw_funcs_t*, void* figures, hb_draw_state_t*, float x, float y, void*) {
    static_cast<TFigures*>(figures)->LineTo(x, y);
}
void QuadTo(hb_draw_funcs_t*, void* figures, hb_draw_state_t*, float x1, float y1, float x, float y, void*) {
    static_cast<TFigures*>(figures)->QuadTo(x1, y1, x, y);
}
void CubicTo(hb_draw_funcs_t*, void* figures, hb_draw_state_t*, float x1, float y1, float x2, float y2,
             float x, float y, void*) {
    static_cast<TFigures*>(figures)->CubicTo(x1, y1, x2, y2, x, y);
}
void ClosePath(hb_draw_funcs_t*, void* figures, hb_draw_state_t*, void*) {
    static_cast<TFigures*>(figures)->Close();
}

hb_draw_funcs_t* MakeDrawFunctions() {
    hb_draw_funcs_t* functions = hb_draw_funcs_create();
    hb_draw_funcs_set_move_to_func(functions, MoveTo, nullptr, nullptr);
    hb_draw_funcs_set_line_to_func(functions, LineTo, nullptr, nullptr);
    hb_draw_funcs_set_quadratic_to_func(functions, QuadTo, nullptr, nullptr);
    hb_draw_funcs_set_cubic_to_func(functions, CubicTo, nullptr, nullptr);
    hb_draw_funcs_set_close_path_func(functions, ClosePath, nullptr, nullptr);
    hb_draw_funcs_make_immutable(functions);
    return functions;
}

TFigures DrawGlyph(hb_font_t* font, hb_codepoint_t glyph) {
    static hb_draw_funcs_t* const functions = MakeDrawFunctions();
    TFigures figures;
#if HB_VERSION_ATLEAST(7, 0, 0)
    hb_font_draw_glyph(font, glyph, functions, &figures);
#else
    hb_font_get_glyph_shape(font, glyph, functions, &figures);
#endif
    return figures;
}

/// The tags of FreeType's points that one step adds.
void AppendTags(TVerb verb, std::vector<char>& tags) {
    switch (verb) {
    case TVerb::Quad:
        tags.push_back(FT_CURVE_TAG_CONIC);
        break;
    case TVerb::Cubic:
        tags.insert(tags.end(), 2, FT_CURVE_TAG_CUBIC);
        break;
    case TVerb::Close:
        return;
    default:
        break;
    }
    tags.push_back(FT_CURVE_TAG_ON);
}

/// Grows the glyph by `strength` positions, its left and lower edges staying where they are. An outline with
/// more points than FreeType counts, or beyond its numbers, stays as it is.
void Embolden(TFigures& figures, double strength) {
    std::vector<char> tags;
    std::vector<short> ends;
    const std::size_t pointCount = figures.Numbers.size() / 2;
    const auto isTooFar = [](double x) { return !(std::abs(x) < 1e8); };
    if (pointCount > 32000 || std::any_of(figures.Numbers.begin(), figures.Numbers.end(), isTooFar)) return;
    for (TVerb verb : figures.Verbs) {
        if (verb == TVerb::Move && !tags.empty()) ends.push_back(static_cast<short>(tags.size() - 1));
        AppendTags(verb, tags);
    }
    if (tags.empty() || tags.size() != pointCount) return;
    ends.push_back(static_cast<short>(tags.size() - 1));

    std::vector<FT_Vector> points(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i)
        points[i] = {std::lround(figures.Numbers[2 * i]), std::lround(figures.Numbers[2 * i + 1])};
    FT_Outline outline{};
    outline.n_contours = static_cast<short>(ends.size());
    outline.n_points = static_cast<short>(pointCount);
    outline.points = points.data();
    outline.tags = tags.data();
    outline.contours = ends.data();
    if (FT_Outline_Embolden(&outline, std::lround(strength)) != 0) return;
    for (std::size_t i = 0; i < pointCount; ++i) {
        figures.Numbers[2 * i] = static_cast<double>(points[i].x);
        figures.Numbers[2 * i + 1] = static_cast<double>(points[i].y);
    }
}

double GetNumber(FcPattern* pattern, const char* name, double byDefault) {
    double value = byDefault;
    return FcPatternGetDouble(pattern, name, 0, &value) == FcResultMatch ? value : byDefault;
}

const FcMatrix* GetMatrix(FcPattern* pattern) {
    FcMatrix* matrix = nullptr;
    return FcPatternGetMatrix(pattern, FC_MATRIX, 0, &matrix) == FcResultMatch ? matrix : nullptr;
}

} // namespace

TFontFace::TFontFace(PangoFont* font, const TTextStyle& style) {
    hb_font_t* base = font ? pango_font_get_hb_font(font) : nullptr;
    if (!base) return;
    hb_face_t* face = hb_font_get_face(base);
    const int upem = static_cast<int>(std::clamp(hb_face_get_upem(face), 1u, 0x8000u));
    FFont.reset(hb_font_create(face));
    hb_font_set_scale(FFont.get(), upem * SubUnits, upem * SubUnits);
    FUnit = 1.0 / (upem * SubUnits);
    SetVariations(base, style);
    if (PANGO_IS_FC_FONT(font)) SetArtificial(pango_fc_font_get_pattern(PANGO_FC_FONT(font)), style);
}

/// Takes over the instance that was chosen and sets those axes that a style speaks of exactly (CSS Fonts
/// 4, 5.2).
void TFontFace::SetVariations(hb_font_t* base, const TTextStyle& style) {
    hb_face_t* face = hb_font_get_face(base);
    unsigned count = hb_ot_var_get_axis_count(face);
    if (count == 0) return;
    std::vector<hb_ot_var_axis_info_t> axes(count);
    hb_ot_var_get_axis_infos(face, 0, &count, axes.data());
    unsigned given = 0;
    const float* chosen = hb_font_get_var_coords_design(base, &given);

    std::vector<float> values;
    for (unsigned i = 0; i < count; ++i) {
        const hb_ot_var_axis_info_t& axis = axes[i];
        float value = i < given ? chosen[i] : axis.default_value;
        switch (axis.tag) {
        case HB_OT_TAG_VAR_AXIS_WEIGHT:
            value = static_cast<float>(style.Weight);
            FHasWeightAxis = true;
            break;
        case HB_OT_TAG_VAR_AXIS_WIDTH:
            value = static_cast<float>(style.Stretch);
            break;
        case HB_OT_TAG_VAR_AXIS_SLANT:
            FHasSlantAxis = true;
            if (style.Slant != TFontSlant::Normal) value = ObliqueAngleDeg;
            break;
        case HB_OT_TAG_VAR_AXIS_ITALIC:
            FHasSlantAxis = true;
            if (style.Slant != TFontSlant::Normal) value = 1;
            break;
        default:
            break;
        }
        values.push_back(std::clamp(value, axis.min_value, std::max(axis.min_value, axis.max_value)));
    }
    hb_font_set_var_coords_design(FFont.get(), values.data(), count);
}

/// Decides what has to stand in for a slanted or bold face: what the font configuration says, or else what
/// the chosen font lacks of the style.
void TFontFace::SetArtificial(FcPattern* pattern, const TTextStyle& style) {
    const FcMatrix* matrix = GetMatrix(pattern);
    if (!FHasSlantAxis && matrix) FMatrix = {matrix->xx, matrix->yx, matrix->xy, matrix->yy, 0, 0};
    const bool isUpright =
        FMatrix == TAffine{} && GetNumber(pattern, FC_SLANT, FC_SLANT_ROMAN) == FC_SLANT_ROMAN;
    if (style.Slant != TFontSlant::Normal && !FHasSlantAxis && isUpright) FMatrix.C = ArtificialSlant;
    FcBool embolden = FcFalse;
    if (FcPatternGetBool(pattern, FC_EMBOLDEN, 0, &embolden) != FcResultMatch)
        embolden =
            style.Weight >= BoldWeight && GetNumber(pattern, FC_WEIGHT, FC_WEIGHT_BOLD) <= FC_WEIGHT_MEDIUM;
    if (embolden && !FHasWeightAxis) FEmboldening = Emboldening;
}

bool TFontFace::HasFeature(hb_tag_t tag) const {
    hb_face_t* face = hb_font_get_face(FFont.get());
    hb_tag_t tags[64];
    unsigned offset = 0;
    for (unsigned count = 64; count == 64; offset += count) {
        hb_ot_layout_table_get_feature_tags(face, HB_OT_TAG_GSUB, offset, &count, tags);
        if (std::find(tags, tags + count, tag) != tags + count) return true;
    }
    return false;
}

double TFontFace::GetMetric(unsigned tag, double byDefault) const {
    hb_position_t value = 0;
    const bool isThere =
        FFont && hb_ot_metrics_get_position(FFont.get(), static_cast<hb_ot_metrics_tag_t>(tag), &value);
    return isThere ? value * FUnit : byDefault;
}

/// The tables give the upper edges of the lines (OpenType, post.underlinePosition and
/// OS/2.yStrikeoutPosition).
TFontMetrics TFontFace::GetMetrics() const {
    TFontMetrics m;
    m.Ascent = GetMetric(HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER, 0.8);
    m.Descent = -GetMetric(HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER, -0.2);
    m.XHeight = GetMetric(HB_OT_METRICS_TAG_X_HEIGHT, 0);
    m.CapHeight = GetMetric(HB_OT_METRICS_TAG_CAP_HEIGHT, 0);
    m.UnderlineThickness = GetMetric(HB_OT_METRICS_TAG_UNDERLINE_SIZE, 0);
    m.StrikeThickness = GetMetric(HB_OT_METRICS_TAG_STRIKEOUT_SIZE, 0);
    m.SubscriptDrop = std::abs(GetMetric(HB_OT_METRICS_TAG_SUBSCRIPT_EM_Y_OFFSET, 0));
    m.SuperscriptRise = std::abs(GetMetric(HB_OT_METRICS_TAG_SUPERSCRIPT_EM_Y_OFFSET, 0));
    // Old or careless fonts leave fields at 0, which no line or letter can have.
    if (!(m.XHeight > 0)) m.XHeight = 0.5;
    if (!(m.SubscriptDrop > 0)) m.SubscriptDrop = 0.14;
    if (!(m.SuperscriptRise > 0)) m.SuperscriptRise = 0.35;
    if (!(m.CapHeight > 0)) m.CapHeight = 0.7;
    if (!(m.UnderlineThickness > 0)) m.UnderlineThickness = 0.05;
    if (!(m.StrikeThickness > 0)) m.StrikeThickness = m.UnderlineThickness;
    m.UnderlinePosition = -GetMetric(HB_OT_METRICS_TAG_UNDERLINE_OFFSET, -0.075) + m.UnderlineThickness / 2;
    const double strikeTop = GetMetric(HB_OT_METRICS_TAG_STRIKEOUT_OFFSET, 0);
    m.StrikePosition = strikeTop > 0 ? strikeTop - m.StrikeThickness / 2 : m.XHeight / 2;
    return m;
}

TFigures TFontFace::MakeOutline(hb_codepoint_t glyph) const {
    TFigures figures = DrawGlyph(FFont.get(), glyph);
    if (FEmboldening > 0 && !figures.IsEmpty()) Embolden(figures, FEmboldening / FUnit);
    figures.Transform(FMatrix.Then(TAffine::Scaling(FUnit, -FUnit)));
    return figures;
}

const TFigures& TFontFace::GetOutline(hb_codepoint_t glyph) {
    const auto [place, isNew] = FOutlines.try_emplace(glyph);
    if (isNew) {
        place->second = MakeOutline(glyph);
        FKeptNumbers += place->second.Numbers.size() + 8;
    }
    return place->second;
}

void TFontFace::ForgetOutlines() {
    FOutlines.clear();
    FKeptNumbers = 0;
}

} // namespace Vz
