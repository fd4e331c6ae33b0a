#pragma once

#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/InstrumentFont.h"
#include "tavro/instruments/Scale.h"
#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Set.h"
#include "tavro/runtime/Strings.h"

#include <memory>
#include <string>
#include <vector>

namespace Vz {

struct TGaugeSetup;

/// Base of all round instruments: a dial with markers and labels made from the scale, up to three hands, an
/// emblem, two texts, knob, glass and frame. A value, or a time of day, becomes the hands' angles.
///
/// Angles are degrees, clockwise, 0 at twelve o'clock. The ends of the scale are whole degrees and may lie
/// beyond 360: from 240 to 470 the scale crosses twelve o'clock. A class says in its TGaugeSetup what it
/// starts with, and publishes its own selection of properties. Colours are the artwork's own until they are
/// set.
class TVZCustomCircularGauge : public TVZSVGCustomInstrument {
public:
    using TVZSVGCustomInstrument::TVZSVGCustomInstrument;

    /// The hands. On a dial with one hand it is the big one; on a clock they are minutes, hours and seconds.
    enum class THand : std::uint8_t { ghBig, ghLittle, ghThin };
    using THands = TSet<THand>;
    static constexpr THands AllHands = THands::FromMask(7);

    /// The shape of a marker: a line, a disc, a diamond, or a triangle whose tip points to the centre (In),
    /// to the rim (Out), with the clock (CW) or against it (CCW). A major one is 5 units long, a minor one 3.
    enum class TMarker : std::uint8_t {
        gmCustom,
        gmLine,
        gmCircle,
        gmDiamond,
        gmInArrow,
        gmOutArrow,
        gmCWArrow,
        gmCCWArrow,
    };

    /// What can be left away. gpLabels governs gpMeasurementLabels (the scale's), gpMainLabel (the caption)
    /// and gpDetailLabel as well, gpFrame the bolts.
    enum class TPart : std::uint8_t {
        gpFrame,
        gpBackface,
        gpHands,
        gpDecoration,
        gpMajorMarkers,
        gpMinorMarkers,
        gpLabels,
        gpMeasurementLabels,
        gpMainLabel,
        gpDetailLabel,
        gpKnob,
        gpGlass,
        gpBolts,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::FromMask(8191);

    /// Most figures of one kind of marker, and most labels, that are made, whatever the number of markers
    /// says.
    static constexpr int MaxMarkerFigures = 100000;
    static constexpr int MaxLabels = 20000;

    // Scale. Of these only SetValue and SetTime raise OnChange. Each setter does nothing at all, no repaint
    // included, when the value is the present one; that goes for all properties.

    /// Lower end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One above Max moves Max to one above it; Value comes up to it. Labels that are numbers are written
    /// anew, and the hands turned. Equal ends are taken: the hands then stay where they are.
    float GetMin() const { return FScale.Min; }
    void SetMin(float value);
    bool IsMinStored() const;
    /// Upper end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One below Min moves Min to one below it; Value comes down to it. Labels that are numbers are written
    /// anew, and the hands turned.
    float GetMax() const { return FScale.Max; }
    void SetMax(float value);
    bool IsMaxStored() const;
    /// What the hands show, in scale units, clamped to Min..Max; not-a-number is ignored. Default: the
    /// class's. A change turns the hands and raises OnChange; so does each value beyond the ends, because it
    /// is not the one that is kept.
    float GetValue() const { return FScale.Value; }
    void SetValue(float value);
    /// True where Value is not its default, and so is stored.
    bool IsDefaultValue() const;
    /// Where Min stands, in degrees; any whole number, taken as it is. Default: the class's. A change makes
    /// markers and labels anew and turns the hands. Labels stand on a line that begins 45
    /// degrees before twelve o'clock: one of a lower negative angle falls off it, so start a scale at 270
    /// rather than at -90.
    std::int32_t GetStartAngle() const { return FStartAngle; }
    void SetStartAngle(std::int32_t value);
    /// Where Max stands, in degrees; any whole number, taken as it is. Default: the class's. Below StartAngle
    /// the scale runs anticlockwise. Where both leave the same remainder by 360, sign included, the scale is
    /// a full circle, and its last marker and label, which would cover the first, are left out.
    std::int32_t GetStopAngle() const { return FStopAngle; }
    void SetStopAngle(std::int32_t value);
    /// The hands that are shown; none is allowed. Default: the class's. Hidden hands turn all the same.
    THands GetHands() const { return FHands; }
    void SetHands(THands value);
    bool IsHandsStored() const;
    /// What a clock or calendar shows, in days since 1899-12-30; milliseconds do not count. Default 0,
    /// midnight; a calendar's: when it was made. What is no date and time of the years 1 to 9999 is ignored.
    /// A change turns the hands and raises OnChange.
    TDateTime GetTime() const { return FTime; }
    void SetTime(TDateTime value);
    bool IsTimeStored() const { return FTime.Days != FDefaultTime.Days; }

    // Markers. A marker is a path in a box of 100 by 100 whose centre is the dial's, drawn at twelve o'clock,
    // y = 0 at the rim.

    /// Number of intervals between major markers; negative counts as 0, and there are none. Default: the
    /// class's. At most MaxMarkerFigures are drawn.
    std::int32_t GetMajorMarkers() const { return FMajor.Count; }
    void SetMajorMarkers(std::int32_t value);
    /// Number of minor markers in each interval; negative counts as 0, and there are none. Default: the
    /// class's. Under each major marker stands one more. At most MaxMarkerFigures are drawn.
    std::int32_t GetMinorMarkers() const { return FMinor.Count; }
    void SetMinorMarkers(std::int32_t value);
    /// Shape of the major markers. Default gmLine; gmCustom keeps the present path.
    TMarker GetMajorMarker() const { return FMajor.Kind; }
    void SetMajorMarker(TMarker value) { SetMarker(FMajor, value); }
    /// Shape of the minor markers. Default gmLine; gmCustom keeps the present path.
    TMarker GetMinorMarker() const { return FMinor.Kind; }
    void SetMinorMarker(TMarker value) { SetMarker(FMinor, value); }
    /// The path of a major marker, streamed where the shape is gmCustom. Default: that of gmLine. Setting it
    /// copies it and makes the shape gmCustom. One that is edited in place is drawn at once, but goes with
    /// the next InitializeGauge unless the shape is gmCustom.
    TVZPathData& GetMajorMarkerPath() const { return *FMajor.Path; }
    void SetMajorMarkerPath(const TVZPathData& value) { SetMarkerPath(FMajor, value); }
    bool IsMajorMarkerPathStored() const { return FMajor.Kind == TMarker::gmCustom; }
    /// In place of a path of the user's own: gmLine.
    void ResetMajorMarkerPath() { ResetMarkerPath(FMajor); }
    /// The path of a minor marker, likewise.
    TVZPathData& GetMinorMarkerPath() const { return *FMinor.Path; }
    void SetMinorMarkerPath(const TVZPathData& value) { SetMarkerPath(FMinor, value); }
    bool IsMinorMarkerPathStored() const { return FMinor.Kind == TMarker::gmCustom; }
    void ResetMinorMarkerPath() { ResetMarkerPath(FMinor); }
    /// Index of the major marker nearest to an angle in degrees, 0 at StartAngle; beyond the ends of the
    /// scale that of the nearer end, the start where both are as near. A half goes to the even index. 0 where
    /// there are no markers.
    int GetClosestMajorMarker(float angleDeg) const;

    // Labels, one at each major marker.

    /// The texts, UTF-8, the first at StartAngle. Default: the class's. Where the class shows numbers it
    /// writes them itself, anew whenever the scale or the format changes, also over a list that was set; a
    /// list that was set outlives everything else. Texts beyond the markers are not shown.
    TStrings& GetLabels() const { return *FLabels; }
    void SetLabels(const TStrings& value) { FLabels->Assign(value); }
    /// Never for the numbers of the scale, whoever wrote them.
    bool IsLabelsStored() const;
    /// In place of a list that was set: the class's own, or the numbers of the scale as it is now.
    void ResetLabels();
    /// The class's own list, one text a line, lines separated by CR LF. Twelve Roman numerals unless the
    /// class says so.
    virtual std::string GetDefaultLabels() const;

    // Look.

    /// The parts that are shown. Default: the class's. gpLabels governs both texts and the labels as well,
    /// gpFrame the bolts. A change runs UpdateParts.
    TParts GetParts() const { return FParts; }
    void SetParts(TParts value);
    /// Font of the labels, its size in units of the label box, 1.18 artwork units each. Default: the
    /// artwork's, with the class's size. Set by copying.
    TSVGFont& GetFont() const { return *FFont; }
    void SetFont(const TSVGFont& value) { FFont->Assign(value); }
    /// Font of Caption and DetailText, its size in the same units; DetailText is drawn at 0.85 of it.
    /// Default: the artwork's. Set by copying.
    TSVGFont& GetCaptionFont() const { return *FCaptionFont; }
    void SetCaptionFont(const TSVGFont& value) { FCaptionFont->Assign(value); }
    /// The main text, on one line above the centre, as long as it may be. UTF-8. Default: the class's.
    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(std::string_view value);
    bool IsCaptionStored() const;
    /// The second text, below the centre. UTF-8. Default: the class's.
    const std::string& GetDetailText() const { return FDetailText; }
    void SetDetailText(std::string_view value);
    bool IsDetailTextStored() const;

    // Colours, 0xAARRGGBB; any value. What was not set is as the artwork has it; the defaults are those of
    // the artwork that comes with the library.

    /// Of the frame. Default 0xFFA9A9A9. Its bevels are derived from it while gradients are off.
    TVZGPColor GetFrameColor() const { return FFrameColor; }
    void SetFrameColor(TVZGPColor value);
    /// Of the dial. Default 0xFF000000.
    TVZGPColor GetBackfaceColor() const { return FBackfaceColor; }
    void SetBackfaceColor(TVZGPColor value) { SetFill(FBackfaceColor, "DialColor", value); }
    /// Of the frame's four bolts. Default 0xFFA9A9A9.
    TVZGPColor GetBoltColor() const { return FBoltColor; }
    void SetBoltColor(TVZGPColor value) { SetFill(FBoltColor, "Bolt", value); }
    /// Of the knob on the hands. Default 0xFFA9A9A9.
    TVZGPColor GetKnobColor() const { return FKnobColor; }
    void SetKnobColor(TVZGPColor value) { SetFill(FKnobColor, "Knob", value); }
    /// Of the major markers. Default 0xFFFFFFFF.
    TVZGPColor GetMajorMarkersColor() const { return FMajorMarkersColor; }
    void SetMajorMarkersColor(TVZGPColor value) { SetFill(FMajorMarkersColor, "BigMarkers", value); }
    /// Of the minor markers. Default 0xFFFFFFFF.
    TVZGPColor GetMinorMarkersColor() const { return FMinorMarkersColor; }
    void SetMinorMarkersColor(TVZGPColor value) { SetFill(FMinorMarkersColor, "SmallMarkers", value); }
    /// Of the labels; not of the two texts, which keep the artwork's colour. Default 0xFFFFFFFF.
    TVZGPColor GetLabelsFillColor() const { return FLabelsFillColor; }
    void SetLabelsFillColor(TVZGPColor value) { SetFill(FLabelsFillColor, "MeasurementLabels", value); }
    /// The outline of the labels; none for 0x00000000. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return FLabelsStrokeColor; }
    void SetLabelsStrokeColor(TVZGPColor value);
    /// Of the hand that shows the value. Default 0xFFFFFFFF.
    TVZGPColor GetBigHandColor() const { return FBigHandColor; }
    void SetBigHandColor(TVZGPColor value) { SetFill(FBigHandColor, FValueHandId, value); }
    /// Of the little hand. Default 0xFFFFFFFF.
    TVZGPColor GetLittleHandColor() const { return FLittleHandColor; }
    void SetLittleHandColor(TVZGPColor value) { SetFill(FLittleHandColor, "LittleHand", value); }
    /// Of the thin hand. Default 0xFF0000FF.
    TVZGPColor GetThinHandColor() const { return FThinHandColor; }
    void SetThinHandColor(TVZGPColor value) { SetFill(FThinHandColor, "ThinHand", value); }

    // Steps. Elements that an artwork lacks are passed over; one of another class raises EInvalidCast.

    /// Bevels with their gradients, or flat: the frame's colour dodged and burnt with a mid grey. What shines
    /// and what throws a shadow is shown with gradients and in the detailed design only.
    void DoEnableGradients(bool enable) override;
    /// Texts, markers, labels, hands, emblem, parts, design and fonts, in that order; then the hands stand
    /// where the value, or the time, says. A list of labels that was set is kept.
    void DoInitializeGauge() override;
    /// The simple design has neither bolts nor glass, nor light and shade.
    void DoUpdateDesign() override;
    /// LightColor goes into the stops of what shines, GetShadowColor() into those of shadows; each stop keeps
    /// its opacity.
    void DoUpdateLight() override;
    void DoUpdateParts() override;
    /// The star, the toothed ring and the globe are the round gauge's own; all else is the catalogue's.
    void UpdateDecoration() override;
    /// Reads all colours above, that of the value's hand for BigHandColor.
    void LoadSVGProperties() override;
    void UpdateNumbers() override { InitializeNumberLabels(); }
    std::string GetSVGResourceName() const override { return "CircularGaugeSVG"; }
    std::span<const TArtworkRow> GetArtworkContract() const override;

    /// Turns an element about the knob's centre, so that what points to nine o'clock as drawn points to the
    /// angle, in degrees. One that is not finite leaves the element where it is.
    virtual void DoUpdateElement(std::string_view elementId, float angleDeg);
    /// Gives the labels' group Font. What Font leaves open is as the artwork has it.
    virtual void DoUpdateFont() { ApplyFont("Labels", *FFont); }
    /// Gives the texts' group CaptionFont, likewise.
    virtual void DoUpdateCaptionFont() { ApplyFont("GaugeLabels", *FCaptionFont); }
    /// Path data of a marker's shape; that of the present path for gmCustom.
    virtual std::string GetMarkerData(TMarker marker, bool minor) const;
    /// Writes the labels that are numbers, and places all. Nothing in an update batch.
    virtual void InitializeNumberLabels();
    /// Places the labels at the major markers. Nothing in an update batch.
    virtual void InitializeLabels();
    /// Makes the markers. Nothing in an update batch.
    virtual void InitializeMarkers();
    /// Gives both marker paths the data of their shapes.
    virtual void InitializeMarkerPaths();
    /// Shows the hands that are in Hands.
    virtual void InitializeHands();
    /// Turns all hands to the value: from StartAngle at Min evenly to StopAngle at Max.
    virtual void UpdateHands();
    /// Turns the little hand to the hours and minutes, the big one to the minutes and seconds, the thin one
    /// to the seconds; whichever hand shows the value, and whatever the scale.
    virtual void UpdateTime();

protected:
    void Construct() override;
    std::string_view GetActiveElementId() const override { return "Hands"; }
    /// What the class starts with; lives as long as the program.
    virtual const TGaugeSetup& GetSetup() const = 0;
    /// The number that the label at a major marker shows.
    virtual double GetLabelNumber(int index) const;

    /// Where the value stands, in degrees; not a number where Min equals Max.
    float GetValueAngle() const;
    /// True where the first and the last marker are at the same place, so that the last one is left out.
    bool IsFullCircle() const { return FStartAngle % 360 == FStopAngle % 360; }
    /// Fills a group of markers: the path at the start of the scale and, `divisions` times over the scale,
    /// its copies. `show` false only empties it.
    void BuildMarkers(std::string_view groupId, const TVZPathData& path, bool show, std::int64_t divisions);
    /// Sets the time that a fresh component shows, without any notice.
    void SetDefaultTime(TDateTime value) { FTime = FDefaultTime = value; }

private:
    /// One kind of marker.
    struct TMarkers {
        std::int32_t Count = 0;
        TMarker Kind = TMarker::gmLine;
        const std::unique_ptr<TVZPathData> Path = std::make_unique<TVZPathData>();
    };

    void SetFill(TVZGPColor& field, std::string_view elementId, TVZGPColor value);
    void SetMarker(TMarkers& markers, TMarker value);
    void SetMarkerPath(TMarkers& markers, const TVZPathData& value);
    void ResetMarkerPath(TMarkers& markers);
    void TakeMarkerData(TMarkers& markers);
    void ScaleChanged();
    void AnglesChanged();
    void FontChanged(TObject& sender);
    void MarkersChanged();
    void LabelsChanged();
    std::vector<std::string> MakeNumbers() const;
    void WriteNumbers();
    void ShowPosition();
    int GetLastLabel() const;
    double GetSpan() const { return double(FStopAngle) - FStartAngle; }
    void ShowElements(bool gradients);
    void SwitchBevels(bool gradients);
    void TintStops(std::string_view gradientId, TVZGPColor color);

    TScale FScale;
    std::int32_t FStartAngle = 0;
    std::int32_t FStopAngle = 360;
    THands FHands = AllHands;
    TDateTime FTime;
    TDateTime FDefaultTime;
    std::string FValueHandId;

    TMarkers FMajor;
    TMarkers FMinor;
    const std::unique_ptr<TStrings> FLabels = std::make_unique<TStrings>();
    bool FLabelsAreUsers = false; ///< the list was set from outside, and nothing renumbered it since
    bool FIsRebuilding = false;   ///< changes of the owned objects are this class's own

    TParts FParts = AllParts;
    const std::unique_ptr<TInstrumentFont> FFont = std::make_unique<TInstrumentFont>();
    const std::unique_ptr<TInstrumentFont> FCaptionFont = std::make_unique<TInstrumentFont>();
    std::string FCaption;
    std::string FDetailText;

    TVZGPColor FFrameColor = 0xFFA9A9A9;
    TVZGPColor FBackfaceColor = 0xFF000000;
    TVZGPColor FBoltColor = 0xFFA9A9A9;
    TVZGPColor FKnobColor = 0xFFA9A9A9;
    TVZGPColor FMajorMarkersColor = 0xFFFFFFFF;
    TVZGPColor FMinorMarkersColor = 0xFFFFFFFF;
    TVZGPColor FLabelsFillColor = 0xFFFFFFFF;
    TVZGPColor FLabelsStrokeColor = 0xFF000000;
    TVZGPColor FBigHandColor = 0xFFFFFFFF;
    TVZGPColor FLittleHandColor = 0xFFFFFFFF;
    TVZGPColor FThinHandColor = 0xFF0000FF;
};

/// What a class of round instruments starts with; what it does not say is a bare twelve-hour dial.
struct TGaugeSetup {
    using T = TVZCustomCircularGauge;

    std::string_view Caption = {};
    std::string_view DetailText = {};
    std::int32_t StartAngle = 0; ///< degrees, as StopAngle
    std::int32_t StopAngle = 360;
    float Min = 0; ///< scale units, as Max and Value
    float Max = 12;
    float Value = 0;
    std::int32_t MajorMarkers = 12; ///< intervals
    std::int32_t MinorMarkers = 4;  ///< in each interval
    T::THands Hands = T::AllHands;
    T::TParts Parts = T::AllParts;
    /// The labels, one a line; empty: numbers, which the class makes from the scale.
    std::string_view Labels = {};
    float FontSize = 0; ///< of the labels, in artwork units; 0: the artwork's
    TDecoration Decoration = TDecoration::dcNone;
    bool ShowsTime = false; ///< the hands show Time, not Value
    /// Id of the element that the value turns and that BigHandColor fills.
    std::string_view ValueHandId = "BigHand";
};

template <> struct EnumNames<TVZCustomCircularGauge::THand> {
    static constexpr std::string_view Name = "TVZCustomCircularGauge.THand";
    static constexpr std::string_view SetName = "TVZCustomCircularGauge.THands";
    static constexpr std::string_view Members[] = {"ghBig", "ghLittle", "ghThin"};
};

template <> struct EnumNames<TVZCustomCircularGauge::TMarker> {
    static constexpr std::string_view Name = "TVZCustomCircularGauge.TMarker";
    static constexpr std::string_view Members[] = {
        "gmCustom", "gmLine", "gmCircle", "gmDiamond", "gmInArrow", "gmOutArrow", "gmCWArrow", "gmCCWArrow",
    };
};

template <> struct EnumNames<TVZCustomCircularGauge::TPart> {
    static constexpr std::string_view Name = "TVZCustomCircularGauge.TPart";
    static constexpr std::string_view SetName = "TVZCustomCircularGauge.TParts";
    static constexpr std::string_view Members[] = {
        "gpFrame",  "gpBackface",          "gpHands",     "gpDecoration",  "gpMajorMarkers", "gpMinorMarkers",
        "gpLabels", "gpMeasurementLabels", "gpMainLabel", "gpDetailLabel", "gpKnob",         "gpGlass",
        "gpBolts",
    };
};

} // namespace Vz
