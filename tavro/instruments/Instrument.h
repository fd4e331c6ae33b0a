#pragma once

#include "tavro/graphics/Color.h"
#include "tavro/instruments/Decoration.h"
#include "tavro/instruments/Design.h"
#include "tavro/runtime/Events.h"
#include "tavro/svg/Control.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

class TSVGBasicShape;
class TSVGCustomGradient;
class TSVGFont;
class TVZPathData;
enum class TReach : std::uint8_t;
struct TArtworkRow;
struct TColorEdit;
struct TColorSource;
struct TInstrumentSetup;
struct TTint;

/// Base of all instruments: loads its artwork when it is created, expresses every property as an edit of that
/// live document, and offers what all instruments share.
///
/// A class says in the tables of its TInstrumentSetup (Tables.h) which element shows what, and rebuilds what
/// is not in the tables in DoInitializeGauge, which runs once after construction and at the end of each
/// update batch. Its source includes Editing.h for what steps and setters are written with.
class TVZSVGCustomInstrument : public TVZSVGControl {
public:
    static constexpr std::string_view DefaultFormatStr = "0.#";
    /// White, 0xAARRGGBB.
    static constexpr TVZGPColor DefaultLightColor = 0xFFFFFFFF;

    explicit TVZSVGCustomInstrument(TCreateKey key);
    ~TVZSVGCustomInstrument() override;

    // Update batches. Setters act at once inside a batch, too; only InitializeGauge waits for its end.

    /// Opens a batch; batches nest. Until the outermost one ends, InitializeGauge does nothing.
    void BeginUpdate() override;
    /// Closes a batch; the outermost one runs InitializeGauge once. An end too many is no error: it makes the
    /// count negative, which counts as no batch, and the next BeginUpdate only makes up for it.
    void EndUpdate() override;
    bool IsUpdating() const { return FUpdateCount > 0; }

    // The steps that bring the artwork into line with the properties. Those with Do are what a class fills
    // in; the others wrap them in one document update, which ends also when an exception passes, mark the
    // caches stale and invalidate once. An element that the artwork does not have is passed over; one of
    // another class than the step needs raises EInvalidCast.

    /// Switches all that has a gradient to it (true), or to flat colours. The base's: the rows Gradients.
    virtual void DoEnableGradients(bool enable);
    /// Rebuilds all that the instrument owns. The base's: UpdateDecoration, DoUpdateParts, DoUpdateDesign.
    virtual void DoInitializeGauge();
    /// Shows or hides what the design decides. The base's: DetailElements.
    virtual void DoUpdateDesign();
    /// Tints what shines with LightColor. The base's: LightEdits.
    virtual void DoUpdateLight();
    /// Shows or hides the parts. The base's: PartElements.
    virtual void DoUpdateParts();
    /// Gives the decoration element the catalogue's path; none for dcNone and, which is meant, for dcCustom.
    /// Repaints also where there is no such element.
    virtual void UpdateDecoration();
    /// DoUpdateDesign, as a step.
    virtual void UpdateDesign();
    /// Runs DoInitializeGauge as one document update, unless a batch is open. It neither marks the
    /// caches stale nor invalidates by itself.
    virtual void InitializeGauge();
    /// Reads what the artwork itself defines: the decoration's fill and stroke and the colours of the rows
    /// Colors; saves the gradients that edits restore. Runs after each load, before anything is written to
    /// the artwork.
    virtual void LoadSVGProperties();
    /// DoEnableGradients for EnableGradients, as a step.
    virtual void UpdateGradients();
    /// DoUpdateLight, as a step; the document is told of a change in any case.
    virtual void UpdateLight();
    /// Rewrites the numbers that the instrument shows. The base's does nothing.
    virtual void UpdateNumbers() {}
    /// DoUpdateParts, as a step. Nothing happens, and nothing is repainted, while the document is empty.
    virtual void UpdateParts();
    /// The elements that the class looks for in an artwork, for tests and for designers of artworks: all that
    /// its tables name.
    std::vector<TArtworkRow> GetArtworkContract() const;
    /// Name of the embedded artwork; the base's: Artwork of the setup. One that there is not raises
    /// EResNotFound from the construction.
    virtual std::string GetSVGResourceName() const;
    /// Paints the decoration in its colour, or not at all for 0x00000000. Nothing happens, and nothing is
    /// repainted, where the artwork has no decoration element.
    virtual void UpdateDecorationFill();
    /// The same for its outline.
    virtual void UpdateDecorationStroke();
    /// Raises OnChange with the instrument as sender, where there is a handler; what sets the instrument's
    /// main value calls it, the base never does.
    void DoOnChange();

    // Properties that the concrete classes publish. Setting a value that is equal does nothing at all: no
    // edit, no repaint, no event.

    /// With decorative detail, or plain; what that hides is the class's. Default sdDetailed. A change runs
    /// UpdateDesign.
    TSVGDesign GetDesign() const { return FDesign; }
    void SetDesign(TSVGDesign value);
    /// The emblem; the default is the class's. A change runs UpdateDecoration.
    TDecoration GetDecoration() const { return FDecoration; }
    void SetDecoration(TDecoration value);
    /// The path that the decoration element shows now; null where the artwork has none. Setting it makes the
    /// decoration dcCustom; the path lives in the artwork only and goes with the next UpdateDecoration, which
    /// is meant.
    const TVZPathData* GetDecorationPath() const;
    void SetDecorationPath(const TVZPathData& value);
    bool IsDecorationPathStored() const { return FDecoration == TDecoration::dcCustom; }
    /// In place of a path of the user's own: the decoration that the class declares as its default.
    void ResetDecorationPath();
    /// Fill of the decoration, 0xAARRGGBB; 0x00000000 switches it off. Default: the artwork's own, until it
    /// is set.
    TVZGPColor GetDecorationFillColor() const { return FDecorationFillColor.Now; }
    void SetDecorationFillColor(TVZGPColor value);
    /// Outline of the decoration, 0xAARRGGBB; 0x00000000 switches it off. Default: the artwork's own, until
    /// it is set.
    TVZGPColor GetDecorationStrokeColor() const { return FDecorationStrokeColor.Now; }
    void SetDecorationStrokeColor(TVZGPColor value);
    /// False: flat colours in place of gradients. Default true. A change runs UpdateGradients.
    bool GetEnableGradients() const { return FEnableGradients; }
    void SetEnableGradients(bool value);
    /// What tints highlights and, less its grey (see GetShadowColor), shadows; 0xAARRGGBB. Default
    /// 0xFFFFFFFF. A change runs UpdateLight.
    TVZGPColor GetLightColor() const { return FLightColor; }
    void SetLightColor(TVZGPColor value);
    /// The picture of numbers (see FormatFloat), under US settings whatever the user's. Default "0.#". A
    /// picture that cannot be used raises EConvertError, and the old one stays. A change runs UpdateNumbers.
    const std::string& GetFormatStr() const { return FFormatStr; }
    void SetFormatStr(std::string_view value);
    bool IsFormatStrStored() const;

    /// LightColor less its smallest channel: black for white, the hue itself for a pure hue. Alpha unchanged.
    TVZGPColor GetShadowColor() const;

    // Recolouring of gradients. Colours, 0xAARRGGBB, are those of the gradient's own stops; nothing happens
    // where there are none, and a single stop takes the colour as it is.

    /// Gives the first (forward) or last stop the colour, its alpha included, and every further one the
    /// brightness step that it had from its neighbour, with its own alpha. A step is the factor, in single
    /// precision, by which the channel changed that changed most (blue before green before red); from a
    /// channel of 0 it is 2^31, which saturates. A stop that had the first one's red, green and blue gets the
    /// colour's.
    static void ChangeGradientColor(TSVGCustomGradient& gradient, TVZGPColor color, bool forward);
    /// Shifts all stops by what separates stop `index` from the colour; that one, and those equal to it,
    /// become the colour with their own alpha. Channels are held in 0..255. `index` counts from 0; where
    /// there is no such stop among several, EArgumentOutOfRange is raised before any change.
    static void ChangeGradientColor(TSVGCustomGradient& gradient, TVZGPColor color, int index);
    /// Keeps each stop's colour beside it. Done once after a load, so that recolouring does not add up.
    static void SaveGradientColor(TSVGCustomGradient& gradient);
    /// Puts back what SaveGradientColor kept; 0x00000000 in a stop that was never saved.
    static void RestoreGradientColor(TSVGCustomGradient& gradient);
    /// Switches an element's fill (or stroke) to the gradient of that id, or to a flat colour, and tells the
    /// element. Nothing happens where there is no such element.
    void DoEnableGradient(std::string_view elementId, std::string_view gradientUri, bool enable,
                          TVZGPColor color, bool fill);

    /// Raised when the instrument's main value changed.
    const TNotifyEvent& GetOnChange() const { return FOnChange; }
    /// Replaces the handler; an empty one takes it away. Default: none.
    void SetOnChange(TNotifyEvent event) { FOnChange = std::move(event); }

    /// Id of the path element that shows the decoration.
    const std::string& GetDecorationElementId() const { return FDecorationElementId; }

protected:
    void Construct() override;
    void AfterConstruction() override;
    /// Once the instrument is complete, another artwork takes over what was set: the properties, and of the
    /// colours those that differ from what the old artwork gave. The other colours are the new artwork's.
    void ReplaceContent(const std::function<void()>& load) override;

    /// The class's tables; they live as long as the program. The base's are empty.
    virtual const TInstrumentSetup& GetSetup() const;
    /// Id of the element that moves, the control's active one; empty: there is none. Taken at each load of an
    /// artwork. The base's: ActiveElement of the setup.
    virtual std::string_view GetActiveElementId() const;
    /// The one place for geometry that a class takes from its artwork. Runs after each load, when the active
    /// element is set, before LoadSVGProperties. The base's does nothing.
    virtual void ReadGeometry() {}
    /// Told when a colour of the rows was set, inside the document's update, behind the row's own edits: for
    /// what no row can say. `index` counts the rows. The base's does nothing.
    virtual void ColorChanged(std::size_t index) {}

    // What the typed properties of a class are made of: the colour of a row, by its index, and the parts as
    // bits. Setters do nothing when the value is equal.

    TVZGPColor GetColor(std::size_t index) const { return FColors[index].Now; }
    /// Stores the colour and carries out the row's edits.
    void SetColor(std::size_t index, TVZGPColor value);
    /// Stores a colour that the class read from the artwork by itself.
    void TakeColor(std::size_t index, TVZGPColor value) { FColors[index] = {value, value}; }
    std::uint32_t GetPartsMask() const { return FParts; }
    void SetPartsMask(std::uint32_t value);
    /// Stores the parts of a fresh object, without any edit.
    void TakeParts(std::uint32_t value) { FParts = value; }

    // What setters and steps are written with (the templates stand in Editing.h). Ids that the artwork does
    // not have are passed over; one of another class raises EInvalidCast.

    template <class T> T* Find(std::string_view id) const;
    TSVGBasicShape* FindRect(std::string_view id) const;
    /// Runs edits of the document inside one update of it, also ended by an exception.
    template <class F> void EditDocument(F edits);
    /// What most setters are: nothing when the value is equal; else stores it, edits the document, marks the
    /// caches stale where the edit reaches them, and invalidates. Floats that are not a number are ignored.
    template <class T, class F> void Change(T& field, const T& value, F edits, TReach reach);
    template <class T, class F> void Change(T& field, const T& value, F edits);
    /// The comparison and the store alone; true where the value is new.
    template <class T> static bool Store(T& field, const T& value);
    /// Marks the caches stale and invalidates.
    void MarkChanged();

    /// The path data of a text, read once for all who ask for the same one. Raises EConvertError as
    /// TVZPathData does. Valid until the next call.
    static const TVZPathData& PathOf(std::string_view data);
    /// Shows or hides an element with all that it holds.
    void ShowElement(std::string_view id, bool visible);
    /// Sets the fill's colour and tells the element; 0x00000000 switches a flat fill off, any other colour
    /// switches it on again. A gradient stays.
    void SetElementFill(std::string_view id, TVZGPColor color);
    /// Sets the stroke: none for 0x00000000, else solid in the colour, whatever the artwork's style says.
    void SetElementStroke(std::string_view id, TVZGPColor color);
    /// Sets the fill in the same way.
    void SetElementFlatFill(std::string_view id, TVZGPColor color);
    /// Replaces a text's content, which is UTF-8.
    void SetElementText(std::string_view id, std::string_view text);
    /// Restores the gradient and recolours it from its first stop.
    void RecolourGradient(std::string_view id, TVZGPColor color);
    /// Carries out one edit of the tables for a colour, whatever its When.
    void ApplyEdit(const TColorEdit& edit, TVZGPColor color);
    /// Writes numbers into the children of a group, which are texts (else EInvalidCast): the first one's is
    /// `first`, the last one's `last`, evenly between. The first children of its twin, where one is named,
    /// get the same; one with fewer children raises EArgumentOutOfRange. Nothing happens where a group is
    /// missing.
    void WriteScale(std::string_view groupId, float first, float last, std::string_view twinId = {});
    /// Gives an element the font; what the font leaves open is as the artwork has it.
    void ApplyFont(std::string_view elementId, const TSVGFont& font);
    /// Turns an element about the centre of `centerId`'s box, which is taken under its own transform, by
    /// degrees clockwise from how it is drawn; an angle that is not finite leaves it where it is. False where
    /// either element is missing.
    bool TurnElement(std::string_view id, std::string_view centerId, double angleDeg);
    /// The number in the picture FormatStr.
    std::string FormatNumber(double value) const;
    /// Many numbers, made once for all who ask for the same ones. Valid until the next call.
    const std::vector<std::string>& FormatNumbers(const std::vector<double>& values) const;

    /// Set before the base is constructed; empty: the setup's.
    std::string FDecorationElementId;
    TDecoration FDecoration = TDecoration::dcNone;

private:
    friend struct TColorAccess;

    /// A colour, and what the artwork gave.
    struct TReadColor {
        TVZGPColor Now = 0;
        TVZGPColor OfArtwork = 0;
        bool IsSet() const { return Now != OfArtwork; }
    };
    /// Where an element's centre was found to be, for as long as the document does not change but by what
    /// turns about it.
    struct TKnownCenter {
        const TSVGGraphicElement* Element = nullptr;
        std::uint64_t ChangeCount = 0; ///< of the document
        TPointF Center;
    };
    /// The styles that the artwork gives the elements whose font is set.
    struct TArtworkStyles;

    TVZGPColor Tinted(const TTint& tint, TVZGPColor color) const;
    TVZGPColor ColorNamed(std::string_view property) const;
    bool FindColor(const TColorSource& source, TVZGPColor& color) const;
    void ReadColor(TReadColor& color, const TColorSource& source);
    void SaveGradients();
    static void SetStops(TSVGCustomGradient& gradient, const TColorEdit& edit, TVZGPColor color);

    TSVGDesign FDesign = TSVGDesign::sdDetailed;
    TVZGPColor FLightColor = DefaultLightColor;
    TReadColor FDecorationFillColor;
    TReadColor FDecorationStrokeColor;
    std::string FFormatStr{DefaultFormatStr};
    bool FEnableGradients = true;
    TNotifyEvent FOnChange;
    int FUpdateCount = 0;
    bool FIsComplete = false; ///< construction is over
    std::uint32_t FParts = 0;
    std::vector<TReadColor> FColors; ///< of the rows, in their order
    TKnownCenter FKnownCenter;
    std::unique_ptr<TArtworkStyles> FArtworkStyles;
};

/// Reaches the colours of the rows for the published properties (Publish.h).
struct TColorAccess {
    static TVZGPColor Get(const TVZSVGCustomInstrument& instrument, std::size_t index) {
        return instrument.GetColor(index);
    }
    static void Set(TVZSVGCustomInstrument& instrument, std::size_t index, TVZGPColor value) {
        instrument.SetColor(index, value);
    }
};

} // namespace Vz
