#include "tavro/graphics/text/FontLibraryInternal.h"
#include "tavro/runtime/Utf8.h"

#include <fontconfig/fontconfig.h>
#include <glib.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {
namespace {

using TConfigPtr = std::unique_ptr<FcConfig, TRelease<FcConfigDestroy>>;
using TDescriptionPtr = std::unique_ptr<PangoFontDescription, TRelease<pango_font_description_free>>;
using TAttributesPtr = std::unique_ptr<PangoAttrList, TRelease<pango_attr_list_unref>>;

/// Fonts are chosen as for this size in pixels, whatever the style's: outlines and positions scale exactly,
/// and a text that is drawn turned and scaled has no one size in pixels anyway.
constexpr int NominalSize = 16;
constexpr std::size_t MaxFaces = 512;
/// pango remembers each choice of fonts with 12 to 23 kB, families that are not there like others.
constexpr std::size_t MaxChoices = 256;
/// A list of families is this long at most; a name that makes it longer is left out.
constexpr std::size_t MaxFamilyText = 1024;
constexpr std::size_t MaxOutlineNumbers = 1'500'000; // 12 MB

TConfigPtr LoadConfiguration(const std::string& file) {
    if (file.empty()) return TConfigPtr(FcConfigReference(nullptr));
    TConfigPtr config(FcConfigCreate());
    const auto* name = reinterpret_cast<const FcChar8*>(file.c_str());
    if (!config || !FcConfigParseAndLoad(config.get(), name, FcTrue) || !FcConfigBuildFonts(config.get()))
        return {};
    return config;
}

/// Whether there is any font that pango can use: it aborts the program where it finds none.
bool HasUsableFont(FcConfig* config) {
    for (FcSetName name : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* set = FcConfigGetFonts(config, name);
        for (int i = 0; set && i < set->nfont; ++i) {
            FcChar8* format = nullptr;
            if (FcPatternGetString(set->fonts[i], FC_FONTFORMAT, 0, &format) != FcResultMatch) continue;
            const std::string_view text = reinterpret_cast<const char*>(format);
            if (text == "TrueType" || text == "CFF") return true;
        }
    }
    return false;
}

PangoStretch GetNearestStretch(double percent) {
    // The keywords' widths, in the order of PangoStretch (CSS Fonts 4, 2.3).
    constexpr std::array widths = {50.0, 62.5, 75.0, 87.5, 100.0, 112.5, 125.0, 150.0, 200.0};
    if (!std::isfinite(percent)) return PANGO_STRETCH_NORMAL;
    const auto isNearer = [=](double a, double b) { return std::abs(a - percent) < std::abs(b - percent); };
    return static_cast<PangoStretch>(std::min_element(widths.begin(), widths.end(), isNearer) -
                                     widths.begin());
}

PangoStyle GetSlant(TFontSlant slant) {
    constexpr PangoStyle styles[] = {PANGO_STYLE_NORMAL, PANGO_STYLE_ITALIC, PANGO_STYLE_OBLIQUE};
    return styles[static_cast<int>(slant)];
}

TDescriptionPtr Describe(const TTextStyle& style) {
    TDescriptionPtr description(pango_font_description_new());
    pango_font_description_set_family(description.get(), ReadFamilyList(style.Family).c_str());
    pango_font_description_set_absolute_size(description.get(), NominalSize * PANGO_SCALE);
    pango_font_description_set_weight(description.get(),
                                      static_cast<PangoWeight>(std::clamp(style.Weight, 1, 1000)));
    pango_font_description_set_style(description.get(), GetSlant(style.Slant));
    pango_font_description_set_stretch(description.get(), GetNearestStretch(style.Stretch));
    return description;
}

void Insert(PangoAttrList* list, PangoAttribute* attribute, const TStyledBytes& piece) {
    attribute->start_index = static_cast<guint>(piece.Begin);
    attribute->end_index = static_cast<guint>(piece.End);
    pango_attr_list_insert(list, attribute);
}

TAttributesPtr MakeAttributes(std::span<const TStyledBytes> pieces) {
    TAttributesPtr list(pango_attr_list_new());
    for (const TStyledBytes& piece : pieces) {
        Insert(list.get(), pango_attr_font_desc_new(Describe(*piece.Style).get()), piece);
        if (piece.Style->Language.empty()) continue;
        PangoLanguage* language = pango_language_from_string(piece.Style->Language.c_str());
        Insert(list.get(), pango_attr_language_new(language), piece);
    }
    return list;
}

hb_script_t GetScript(const PangoAnalysis& analysis) {
    const guint32 tag = g_unicode_script_to_iso15924(static_cast<GUnicodeScript>(analysis.script));
    return hb_script_from_iso15924_tag(tag);
}

hb_language_t GetLanguage(const PangoAnalysis& analysis) {
    const char* name = analysis.language ? pango_language_to_string(analysis.language) : "";
    return hb_language_from_string(name, -1);
}

/// Unicode's bidirectional algorithm, rule L2: turns each stretch of a level and above, from the highest
/// level down to the lowest odd one.
void ReorderVisually(std::vector<TFontRun>& runs) {
    int highest = 0;
    for (const TFontRun& run : runs)
        highest = std::max(highest, run.Level);
    for (int level = highest; level > 0; --level) {
        const auto isBelow = [=](const TFontRun& run) { return run.Level < level; };
        const auto isInside = [=](const TFontRun& run) { return run.Level >= level; };
        for (auto first = runs.begin(); first != runs.end();) {
            first = std::find_if(first, runs.end(), isInside);
            const auto last = std::find_if(first, runs.end(), isBelow);
            std::reverse(first, last);
            first = last;
        }
    }
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

/// Appends the escaped character behind the backslash at text[i] and returns the place after it (CSS Syntax
/// 3, 4.3.7).
std::size_t ReadEscape(std::string_view text, std::size_t i, std::string& name) {
    std::size_t end = ++i;
    while (end < text.size() && end < i + 6 && g_ascii_isxdigit(text[end]))
        ++end;
    if (end == i) {
        if (i < text.size()) name += text[i++];
        return i;
    }
    const auto code = static_cast<char32_t>(std::stoul(std::string(text.substr(i, end - i)), nullptr, 16));
    AppendUtf8(name, code == 0 ? 0xFFFD : code);
    return end < text.size() && IsSpace(text[end]) ? end + 1 : end;
}

/// Reads one family name from place i on, up to the comma behind it or the end (CSS Fonts 4, 2.1).
std::string ReadFamily(std::string_view list, std::size_t& i) {
    std::string name;
    char quote = 0;
    while (i < list.size() && (quote || list[i] != ',')) {
        const char c = list[i];
        if (c == '\\') {
            i = ReadEscape(list, i, name);
            continue;
        }
        ++i;
        if (quote ? c == quote : c == '"' || c == '\'') {
            quote = quote ? 0 : c;
        } else if (!quote && IsSpace(c)) {
            if (!name.empty() && name.back() != ' ') name += ' ';
        } else {
            name += c;
        }
    }
    ++i;
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name;
}

} // namespace

void ReleaseFontMap(PangoFontMap* map) {
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map), nullptr);
    g_object_unref(map);
}

std::string ReadFamilyList(std::string_view list) {
    // Generic families of CSS that fontconfig knows by another name.
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 6> others{{
        {"ui-serif", "serif"},
        {"ui-sans-serif", "sans-serif"},
        {"ui-monospace", "monospace"},
        {"ui-rounded", "sans-serif"},
        {"-apple-system", "system-ui"},
        {"BlinkMacSystemFont", "system-ui"},
    }};
    std::string result;
    for (std::size_t i = 0; i < list.size();) {
        std::string name = ReadFamily(list, i);
        if (name.empty() || result.size() + name.size() > MaxFamilyText) continue;
        for (const auto& [from, to] : others)
            if (name == from) name = to;
        // pango separates the names by commas and knows no quotes.
        std::replace(name.begin(), name.end(), ',', ' ');
        std::replace(name.begin(), name.end(), '\0', ' ');
        result += (result.empty() ? "" : ",") + name;
    }
    const bool isUsable = !result.empty() && FindBadUtf8(result) == std::string::npos;
    return isUsable ? result : "serif";
}

TFontLibrary::TFontLibrary() { Configure({}); }

bool TFontLibrary::Configure(const std::string& file) {
    const TConfigPtr config = LoadConfiguration(file);
    if (!config && !file.empty()) return false;
    FFaces.clear();
    FChoices.clear();
    FContext.reset();
    FFontMap.reset();
    if (!config || !HasUsableFont(config.get())) return true;
    FFontMap.reset(pango_ft2_font_map_new());
    pango_ft2_font_map_set_resolution(PANGO_FT2_FONT_MAP(FFontMap.get()), 72, 72);
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(FFontMap.get()), config.get());
    FContext.reset(pango_font_map_create_context(FFontMap.get()));
    pango_context_set_font_description(FContext.get(), Describe({}).get());
    return true;
}

TFontFace& TFontLibrary::GetBlankFace() {
    return FFaces.try_emplace(TFaceKey{}, TKeptFace{nullptr, TFontFace(nullptr, {})}).first->second.Face;
}

TFontFace& TFontLibrary::GetFace(PangoFont* font, const TTextStyle& style) {
    if (!font) return GetBlankFace();
    const double stretch = std::isfinite(style.Stretch) ? style.Stretch : 100;
    const TFaceKey key{font, style.Weight, style.Slant, stretch};
    const auto place = FFaces.find(key);
    if (place != FFaces.end()) return place->second.Face;
    TTextStyle wanted = style;
    wanted.Stretch = stretch;
    TFontPtr kept(static_cast<PangoFont*>(g_object_ref(font)));
    return FFaces.emplace(key, TKeptFace{std::move(kept), TFontFace(font, wanted)}).first->second.Face;
}

TFontFace& TFontLibrary::GetFirstFace(const TTextStyle& style) {
    if (!FContext) return GetBlankFace();
    NoteChoice(style, nullptr);
    const TFontPtr font(pango_context_load_font(FContext.get(), Describe(style).get()));
    return GetFace(font.get(), style);
}

std::vector<TFontRun> TFontLibrary::Itemize(const std::string& text, std::span<const TStyledBytes> pieces,
                                            TTextDirection direction) {
    std::vector<TFontRun> runs;
    if (!FContext) {
        const auto count =
            static_cast<std::size_t>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size())));
        runs.push_back({.CharCount = count, .Face = &GetBlankFace()});
        return runs;
    }
    const PangoDirection base =
        direction == TTextDirection::RightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR;
    GList* items =
        pango_itemize_with_base_dir(FContext.get(), base, text.data(), 0, static_cast<int>(text.size()),
                                    MakeAttributes(pieces).get(), nullptr);
    std::size_t piece = 0;
    std::size_t firstChar = 0;
    for (const GList* link = items; link; link = link->next) {
        const auto* item = static_cast<const PangoItem*>(link->data);
        while (piece + 1 < pieces.size() && static_cast<std::size_t>(item->offset) >= pieces[piece].End)
            ++piece;
        NoteChoice(*pieces[piece].Style, item->analysis.language);
        const auto count = static_cast<std::size_t>(item->num_chars);
        runs.push_back({firstChar, count, piece, &GetFace(item->analysis.font, *pieces[piece].Style),
                        GetScript(item->analysis), GetLanguage(item->analysis), item->analysis.level});
        firstChar += count;
    }
    g_list_free_full(items, [](gpointer item) { pango_item_free(static_cast<PangoItem*>(item)); });
    ReorderVisually(runs);
    return runs;
}

/// Fonts are chosen once for each description and language.
void TFontLibrary::NoteChoice(const TTextStyle& style, const PangoLanguage* language) {
    std::size_t hash = std::hash<std::string>()(style.Family);
    for (const std::size_t part :
         {std::hash<int>()(style.Weight), std::hash<int>()(static_cast<int>(style.Slant)),
          std::hash<double>()(style.Stretch), std::hash<const PangoLanguage*>()(language)})
        hash = hash * 31 + part;
    FChoices.insert(hash);
}

bool TFontLibrary::TidyUp() {
    std::size_t numbers = 0;
    for (const auto& [key, kept] : FFaces)
        numbers += kept.Face.GetKeptNumbers();
    if (FFaces.size() > MaxFaces || FChoices.size() > MaxChoices) {
        FFaces.clear();
        FChoices.clear();
        if (FFontMap) pango_fc_font_map_cache_clear(PANGO_FC_FONT_MAP(FFontMap.get()));
        return true;
    }
    if (numbers > MaxOutlineNumbers)
        for (auto& [key, kept] : FFaces)
            kept.Face.ForgetOutlines();
    return false;
}

} // namespace Vz
