#pragma once

#include "tavro/graphics/Color.h"
#include "tavro/instruments/Decoration.h"
#include "tavro/instruments/Design.h"
#include "tavro/runtime/Set.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace Vz {

// The tables in which an instrument says what it does to its artwork. Each row names elements by their ids; a
// row whose element the artwork lacks is passed over. From the same rows come the contract with the artwork
// (GetArtworkContract) and, for colours, the published properties.

/// What becomes of a colour before it is written.
struct TTint {
    enum class TKind : std::uint8_t {
        Same,    ///< the colour itself
        Scaled,  ///< red, green and blue times Amount, rounded half to even, held in 0..255; alpha stays
        Lowered, ///< red, green and blue less Amount, held in 0..255; alpha stays
        PlusHalfLight, ///< red, green and blue plus half of LightColor's, rounded down, held in 0..255
        Dodged,        ///< DodgeColor with the grey 0xFF808080
        Burned,        ///< BurnColor with the grey 0xFF808080
        Light,         ///< LightColor in place of the colour; a stop keeps its own alpha
        Shadow,        ///< GetShadowColor() in place of the colour; a stop keeps its own alpha
        Fixed,         ///< the colour Value in place of the colour
    };
    TKind Kind = TKind::Same;
    double Amount = 0;
    TVZGPColor Value = 0;
};

/// One edit of the artwork that shows a colour.
struct TColorEdit {
    enum class TWhat : std::uint8_t {
        Fill,             ///< the fill of an element; a gradient stays
        FlatFill,         ///< the fill of an element, flat, or none for 0x00000000, whatever it was
        Stroke,           ///< the stroke of an element, flat, or none for 0x00000000, whatever it was
        Recolour,         ///< a whole gradient, restored, from its first stop (ChangeGradientColor, forward)
        RecolourFromLast, ///< likewise from its last stop
        RecolourAbout,    ///< likewise about its stop Index (ChangeGradientColor with an index)
        Stop,             ///< the stop Index of a gradient
        EveryStop,        ///< every stop of a gradient
    };
    enum class TWhen : std::uint8_t { Always, WithGradients, WithoutGradients };

    TWhat What = TWhat::Fill;
    std::string_view Id = {};
    TTint Tint = {};
    std::uint8_t Index = 0; ///< of a stop, 0 first
    TWhen When = TWhen::Always;

    constexpr bool IsOfGradient() const { return What >= TWhat::Recolour; }
    constexpr bool Restores() const { return What >= TWhat::Recolour && What <= TWhat::RecolourAbout; }
};

/// Where a colour stands in an artwork.
struct TColorSource {
    enum class TPlace : std::uint8_t { None, Fill, Stroke, Stop, LastStop };
    TPlace Place = TPlace::None; ///< None: the class reads it by itself, or keeps the declared default
    std::string_view Id = {};
    std::uint8_t Index = 0; ///< of a stop, 0 first
};

/// A few items in a table's row.
template <class T, std::size_t Most> class TFew {
public:
    constexpr TFew() = default;
    constexpr TFew(std::initializer_list<T> items) {
        for (const T& item : items)
            FItems[FCount++] = item; // one too many does not compile
    }
    constexpr const T* begin() const { return FItems; }
    constexpr const T* end() const { return FItems + FCount; }

private:
    T FItems[Most]{};
    std::size_t FCount = 0;
};

/// What an edit reaches: anything of the picture, or the active element only, which is in no cache.
enum class TReach : std::uint8_t { Picture, ActiveElement };

/// One colour property.
struct TColorRow {
    std::string_view Name;  ///< as published
    TVZGPColor Default = 0; ///< declared, 0xAARRGGBB
    TColorSource Source = {};
    TFew<TColorEdit, 10> Edits = {}; ///< carried out in this order
    TReach Reach = TReach::Picture;
};

/// An element that is shown exactly when all the parts of the row are in Parts.
struct TPartRow {
    std::uint32_t Parts = 0; ///< as bits of the class's set
    std::string_view Element = {};

    constexpr TPartRow() = default;
    template <class TPart>
    constexpr TPartRow(TPart part, std::string_view element)
        : TPartRow(TSet<TPart>{part}, element) {}
    template <class TPart>
    constexpr TPartRow(TSet<TPart> parts, std::string_view element)
        : Parts(parts.GetMask())
        , Element(element) {}
};

/// What switching gradients does to one element: it gets a gradient or, without gradients, a flat colour; or
/// it is shown with gradients only.
struct TGradientRow {
    enum class TWhat : std::uint8_t { Fill, Stroke, Shown, ShownInDetail };
    TWhat What = TWhat::Fill;
    std::string_view Element = {};
    std::string_view Gradient = {};
    std::string_view Color = {}; ///< name of the property that gives the flat colour
    TTint Tint = {};
};

/// What an element of an artwork must be for the code that uses it. Of two rows for one element the stricter
/// one counts, which stands further below.
enum class TArtworkKind : std::uint8_t {
    Graphic,  ///< anything that is drawn
    Group,    ///< a group
    Path,     ///< a path
    Text,     ///< a text
    Texts,    ///< a group or text whose children are all texts
    Rect,     ///< a rect
    Use,      ///< a use
    Gradient, ///< a gradient, with stops of its own or borrowed ones
    Stops,    ///< a gradient with stops of its own
};

/// One element that an instrument looks for in its artwork. Texts of the same parent stand in the rows'
/// order.
struct TArtworkRow {
    std::string_view Id;
    TArtworkKind Kind = TArtworkKind::Graphic;
    std::string_view Parent = {}; ///< id of the element that it must lie in, at any depth; empty: anywhere
    std::uint8_t Stops = 1;       ///< how many stops a gradient with stops has at least
};

/// All that a class of instruments says in tables.
struct TInstrumentSetup {
    std::string_view Artwork = {};       ///< name of the embedded artwork
    std::string_view ActiveElement = {}; ///< id of the element that moves; empty: none
    /// Id of the path that shows the decoration; empty: the class has none.
    std::string_view DecorationElement = "Decoration";
    /// Group where the class draws its emblems by itself.
    TArtworkKind DecorationKind = TArtworkKind::Path;
    TDecoration Decoration = TDecoration::dcNone; ///< of a fresh one, and declared
    TVZGPColor DecorationFill = 0xFF87CEEB;       ///< declared, as DecorationStroke
    TVZGPColor DecorationStroke = 0xFF000000;
    int Width = 200; ///< pixels, as Height
    int Height = 200;
    std::uint32_t Parts = 0; ///< of a fresh one, as bits
    std::span<const TColorRow> Colors = {};
    std::span<const TPartRow> PartElements = {};
    std::span<const std::string_view> DetailElements = {}; ///< shown with the detailed design only
    std::span<const TGradientRow> Gradients = {};
    std::span<const TColorEdit> LightEdits = {};           ///< of LightColor
    std::span<const std::string_view> SavedGradients = {}; ///< that the class's own code restores
    std::span<const TArtworkRow> Structure = {}; ///< of the contract, what the rows above do not say
};

/// The words of the tables' rows, for sources that say `using namespace Vz::Rows`.
namespace Rows {

constexpr TTint Same{};
constexpr TTint Light{TTint::TKind::Light};
constexpr TTint Shadow{TTint::TKind::Shadow};
constexpr TTint PlusHalfLight{TTint::TKind::PlusHalfLight};
constexpr TTint Dodged{TTint::TKind::Dodged};
constexpr TTint Burned{TTint::TKind::Burned};
constexpr TTint Scaled(double factor) { return {TTint::TKind::Scaled, factor}; }
constexpr TTint Lowered(double amount) { return {TTint::TKind::Lowered, amount}; }
constexpr TTint Fixed(TVZGPColor color) { return {TTint::TKind::Fixed, 0, color}; }

constexpr TColorSource FillOf(std::string_view id) { return {TColorSource::TPlace::Fill, id}; }
constexpr TColorSource StrokeOf(std::string_view id) { return {TColorSource::TPlace::Stroke, id}; }
constexpr TColorSource StopOf(std::string_view id, std::uint8_t index) {
    return {TColorSource::TPlace::Stop, id, index};
}
constexpr TColorSource FirstStopOf(std::string_view id) { return StopOf(id, 0); }
constexpr TColorSource LastStopOf(std::string_view id) { return {TColorSource::TPlace::LastStop, id}; }

using TEdit = TColorEdit;
constexpr TEdit Fill(std::string_view id, TTint tint = {}) { return {TEdit::TWhat::Fill, id, tint}; }
constexpr TEdit FlatFill(std::string_view id, TTint tint = {}) { return {TEdit::TWhat::FlatFill, id, tint}; }
constexpr TEdit Stroke(std::string_view id, TTint tint = {}) { return {TEdit::TWhat::Stroke, id, tint}; }
/// The fill of an element while gradients are off.
constexpr TEdit Flat(std::string_view id, TTint tint = {}) {
    return {TEdit::TWhat::Fill, id, tint, 0, TEdit::TWhen::WithoutGradients};
}
// The gradients' while gradients are on.
constexpr TEdit OfGradient(TEdit::TWhat what, std::string_view id, TTint tint, std::uint8_t index = 0) {
    return {what, id, tint, index, TEdit::TWhen::WithGradients};
}
constexpr TEdit Recolour(std::string_view id, TTint tint = {}) {
    return OfGradient(TEdit::TWhat::Recolour, id, tint);
}
constexpr TEdit RecolourFromLast(std::string_view id, TTint tint = {}) {
    return OfGradient(TEdit::TWhat::RecolourFromLast, id, tint);
}
constexpr TEdit RecolourAbout(std::string_view id, std::uint8_t index, TTint tint = {}) {
    return OfGradient(TEdit::TWhat::RecolourAbout, id, tint, index);
}
constexpr TEdit Stop(std::string_view id, std::uint8_t index, TTint tint = {}) {
    return OfGradient(TEdit::TWhat::Stop, id, tint, index);
}
constexpr TEdit EveryStop(std::string_view id, TTint tint = {}) {
    return OfGradient(TEdit::TWhat::EveryStop, id, tint);
}
/// The edit whether gradients are on or off. LightEdits are carried out always.
constexpr TEdit Always(TEdit edit) {
    edit.When = TEdit::TWhen::Always;
    return edit;
}
/// The edit while gradients are off.
constexpr TEdit WithoutGradients(TEdit edit) {
    edit.When = TEdit::TWhen::WithoutGradients;
    return edit;
}

using TSwitch = TGradientRow;
constexpr TSwitch Switch(std::string_view element, std::string_view gradient, std::string_view color,
                         TTint tint = {}) {
    return {TSwitch::TWhat::Fill, element, gradient, color, tint};
}
constexpr TSwitch SwitchStroke(std::string_view element, std::string_view gradient, std::string_view color) {
    return {TSwitch::TWhat::Stroke, element, gradient, color};
}
constexpr TSwitch Shown(std::string_view element) { return {TSwitch::TWhat::Shown, element}; }
constexpr TSwitch ShownInDetail(std::string_view element) { return {TSwitch::TWhat::ShownInDetail, element}; }

} // namespace Rows

} // namespace Vz
