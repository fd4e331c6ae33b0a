#pragma once

#include "tavro/graphics/text/FontFaceInternal.h"

#include <pango/pango.h>

#include <map>
#include <tuple>
#include <unordered_set>

namespace Vz {

/// Releases the map and its configuration, which pango 1.50 would leak.
void ReleaseFontMap(PangoFontMap* map);

using TFontMapPtr = std::unique_ptr<PangoFontMap, TRelease<ReleaseFontMap>>;
using TFontContextPtr = std::unique_ptr<PangoContext, TRelease<g_object_unref>>;
using TFontPtr = std::unique_ptr<PangoFont, TRelease<g_object_unref>>;

/// Bytes of a text in one style.
struct TStyledBytes {
    std::size_t Begin = 0;
    std::size_t End = 0;
    const TTextStyle* Style = nullptr;
};

/// A piece of text in one font, script, language and direction.
struct TFontRun {
    std::size_t FirstChar = 0; ///< counted in characters
    std::size_t CharCount = 0;
    std::size_t Piece = 0;     ///< which of the styled pieces it is in
    TFontFace* Face = nullptr; ///< lives until the library is configured anew or tidied up
    hb_script_t Script = HB_SCRIPT_COMMON;
    hb_language_t Language = nullptr;
    int Level = 0; ///< of Unicode's bidirectional algorithm

    bool IsRightToLeft() const { return Level % 2 == 1; }
};

/// The fonts of one font configuration: chooses them for texts and keeps the chosen faces.
class TFontLibrary {
public:
    /// Starts with the system's configuration.
    TFontLibrary();

    /// Reads the configuration file, or the system's configuration where the name is empty, and drops what is
    /// kept. False: the file cannot be used and all stays as it was.
    bool Configure(const std::string& file);

    /// Cuts the text into runs, in visual order from left to right. The pieces cover all of the text one
    /// after the other. The text is UTF-8 without faults, control characters and line ends.
    std::vector<TFontRun> Itemize(const std::string& text, std::span<const TStyledBytes> pieces,
                                  TTextDirection direction);
    /// The face that the style names first.
    TFontFace& GetFirstFace(const TTextStyle& style);

    /// Keeps memory in bounds: drops outlines, or all faces and choices, when there are many. To be called
    /// when no run is in use. True when faces were dropped.
    bool TidyUp();

private:
    using TFaceKey = std::tuple<PangoFont*, int, TFontSlant, double>;
    struct TKeptFace {
        TFontPtr Font; ///< holds the key's pointer
        TFontFace Face;
    };

    TFontFace& GetFace(PangoFont* font, const TTextStyle& style);
    void NoteChoice(const TTextStyle& style, const PangoLanguage* language);
    TFontFace& GetBlankFace();

    TFontMapPtr FFontMap;
    TFontContextPtr FContext; ///< null where the configuration has no font at all
    std::map<TFaceKey, TKeptFace> FFaces;
    std::unordered_set<std::size_t> FChoices; ///< hashes of what pango was asked for
};

/// The families of a CSS list, quotes and escapes resolved, separated by commas; never empty.
std::string ReadFamilyList(std::string_view list);

} // namespace Vz
