#pragma once

#include "tavro/instruments/ColorFunctions.h"
#include "tavro/instruments/Decoration.h"
#include "tavro/instruments/InstrumentTables.h"
#include "tavro/runtime/Updates.h"
#include "tavro/svg/Control.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Font.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/model/TextElements.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Vz {

/// Base of all instruments: loads its artwork when it is created, expresses every property as an edit of that
/// live document, and offers what all instruments share. An instrument's own source says in tables which
/// element shows what.
///
/// A class names its artwork by GetSVGResourceName, reads the artwork's colours in LoadSVGProperties, and
/// rebuilds all that it owns in DoInitializeGauge, which runs once after construction and at the end of each
/// update batch.
class TVZSVGCustomInstrument : public TVZSVGControl {
public:
    static constexpr std::string_view DefaultFormatStr = "0.#";
    /// White, 0xAARRGGBB.
    static constexpr TVZGPColor DefaultLightColor = 0xFFFFFFFF;

    using TVZSVGControl::TVZSVGControl;

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

    /// Switches all that has a gradient to it (true), or to flat colours. The base's does nothing.
    virtual void DoEnableGradients(bool enable) {}
    /// Rebuilds all that the instrument owns. The base's: UpdateDecoration, DoUpdateParts, DoUpdateDesign.
    virtual void DoInitializeGauge();
    /// Shows or hides what the design decides. The base's does nothing.
    virtual void DoUpdateDesign() {}
    /// Tints what shines with LightColor. The base's does nothing.
    virtual void DoUpdateLight() {}
    /// Shows or hides the parts. The base's does nothing.
    virtual void DoUpdateParts() {}
    /// Gives the decoration element the catalogue's path; none for dcNone and, which is meant, for dcCustom.
    /// Repaints also where there is no such element.
    virtual void UpdateDecoration();
    /// DoUpdateDesign, as a step.
    virtual void UpdateDesign();
    /// Runs DoInitializeGauge as one document update, unless a batch is open. It neither marks the
    /// caches stale nor invalidates by itself.
    virtual void InitializeGauge();
    /// Reads what the artwork itself defines into the fields: the base, the decoration's fill and stroke.
    /// Runs after each load, before anything is written to the artwork.
    virtual void LoadSVGProperties();
    /// DoEnableGradients for EnableGradients, as a step.
    virtual void UpdateGradients();
    /// DoUpdateLight, as a step; the document is told of a change in any case.
    virtual void UpdateLight();
    /// Rewrites the numbers that the instrument shows. The base's does nothing.
    virtual void UpdateNumbers() {}
    /// DoUpdateParts, as a step. Nothing happens, and nothing is repainted, while the document is empty.
    virtual void UpdateParts();
    /// The elements that the class looks for in an artwork, for tests and for designers of artworks.
    virtual std::span<const TArtworkRow> GetArtworkContract() const { return {}; }
    /// Name of the embedded artwork. One that there is not raises EResNotFound from the construction.
    virtual std::string GetSVGResourceName() const { return {}; }
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
    TVZGPColor GetDecorationFillColor() const { return FDecorationFillColor; }
    void SetDecorationFillColor(TVZGPColor value);
    /// Outline of the decoration, 0xAARRGGBB; 0x00000000 switches it off. Default: the artwork's own, until
    /// it is set.
    TVZGPColor GetDecorationStrokeColor() const { return FDecorationStrokeColor; }
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
    /// Once the instrument is complete, another artwork takes the property values over.
    void ReplaceContent(const std::function<void()>& load) override;
    /// Id of the element that moves, the control's active one; empty (the base's): there is none. Taken at
    /// each load of an artwork.
    virtual std::string_view GetActiveElementId() const { return {}; }

    // What setters and steps are written with. Ids that the artwork does not have are passed over; one of
    // another class raises EInvalidCast.

    template <class T> T* Find(std::string_view id) const { return GetDocument().Find<T>(id); }
    /// Runs edits of the document inside one update of it, also ended by an exception.
    template <class F> void EditDocument(F edits) {
        const TUpdateScope update(GetDocument());
        edits();
    }
    /// What an edit reaches: anything of the picture, or the active element only, which is in no cache.
    enum class TReach : std::uint8_t { Picture, ActiveElement };
    /// What most setters are: nothing when the value is equal; else stores it, edits the document, marks the
    /// caches stale where the edit reaches them, and invalidates. Floats that are not a number are ignored.
    template <class T, class F>
    void Change(T& field, const T& value, F edits, TReach reach = TReach::Picture) {
        if (!Store(field, value)) return;
        EditDocument(edits);
        if (reach == TReach::Picture) MarkBuffersStale();
        Invalidate();
    }
    /// The comparison and the store alone; true where the value is new.
    template <class T> static bool Store(T& field, const T& value) {
        if constexpr (std::is_floating_point_v<T>)
            if (value != value) return false;
        if (field == value) return false;
        field = value;
        return true;
    }
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
    /// Replaces a text's content, which is UTF-8.
    void SetElementText(std::string_view id, std::string_view text);
    /// Restores the gradient and recolours it from its first stop.
    void RecolourGradient(std::string_view id, TVZGPColor color);
    /// What a colour setter edits: the gradients while gradients are on, else the flat fill of one element.
    void Recolour(std::initializer_list<std::string_view> gradients, std::string_view flatElement,
                  TVZGPColor color);
    /// Shows the elements of the parts that are in the set, and hides the others, in the order of the rows.
    template <class TPart, std::size_t N>
    void ShowParts(const TPartRow<TPart> (&rows)[N], const TSet<TPart>& parts) {
        for (const auto& row : rows)
            ShowElement(row.Element, parts.Contains(row.Part));
    }
    /// Writes numbers into the children of a group, which are texts (else EInvalidCast): the first one's is
    /// `first`, the last one's `last`, evenly between.
    void WriteScale(std::string_view groupId, float first, float last);
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

    /// A colour of the artwork and the field that takes it over; gradients that are recoloured are saved as
    /// well.
    struct TColorRow {
        std::string_view Id;
        TColorPlace Place;
        TVZGPColor* Field; ///< null: only saved
        bool Save = false;
    };
    void ReadColors(std::span<const TColorRow> rows);

    /// One line of DoEnableGradients.
    struct TGradientRow {
        std::string_view Element;
        std::string_view Gradient;
        TVZGPColor Color;
        bool Fill = true;
    };
    void SwitchGradients(std::span<const TGradientRow> rows, bool enable);

    /// Set before the base is constructed.
    std::string FDecorationElementId;
    TDecoration FDecoration = TDecoration::dcNone;

private:
    /// Where an element's centre was found to be, for as long as the document does not change but by what
    /// turns about it.
    struct TKnownCenter {
        const TSVGGraphicElement* Element = nullptr;
        std::uint64_t ChangeCount = 0; ///< of the document
        TPointF Center;
    };
    static TPointF FindCenter(const TSVGGraphicElement& element);
    /// The fill or stroke becomes the colour, or none for 0x00000000, whatever it was.
    static void PaintFlat(TSVGGraphicElement& element, TSVGStyleProperty paint, TVZGPColor color);

    TSVGDesign FDesign = TSVGDesign::sdDetailed;
    TVZGPColor FLightColor = DefaultLightColor;
    TVZGPColor FDecorationFillColor = 0xFF87CEEB;
    TVZGPColor FDecorationStrokeColor = 0xFF000000;
    std::string FFormatStr{DefaultFormatStr};
    bool FEnableGradients = true;
    TNotifyEvent FOnChange;
    int FUpdateCount = 0;
    bool FIsComplete = false; ///< construction is over
    TKnownCenter FKnownCenter;
    /// The styles that the artwork gives the elements whose font is set.
    std::map<std::string, TSVGStyleSet, std::less<>> FArtworkStyles;
};

} // namespace Vz
