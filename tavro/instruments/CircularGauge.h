#pragma once

#include "tavro/instruments/ScaleInstrument.h"
#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Set.h"

#include <memory>
#include <string>
#include <vector>

namespace Vz {

class TInstrumentFont;
class TStrings;
struct TGaugeSetup;

/// Base of all round instruments: a dial with markers and labels made from the scale, up to three hands, an
/// emblem, two texts, knob, glass and frame. A value, or a time of day, becomes the hands' angles.
///
/// Angles are degrees, clockwise, 0 at twelve o'clock. The ends of the scale are whole degrees and may lie
/// beyond 360: from 240 to 470 the scale crosses twelve o'clock. A class says in its TGaugeSetup what it
/// starts with, and publishes its own selection of properties. Colours are the artwork's own until they are
/// set.
class TVZCustomCircularGauge : public TVZCustomScaleInstrument {
public:
    explicit TVZCustomCircularGauge(TCreateKey key);
    ~TVZCustomCircularGauge() override;

    /// The hands. On a dial with one hand it is the big one; on a clock they are minutes, hours and seconds.
    enum class THand : std::uint8_t { ghBig, ghLittle, ghThin };
    using THands = TSet<THand>;
    static constexpr THands AllHands = THands::UpTo(THand::ghThin);

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
    static constexpr TParts AllParts = TParts::UpTo(TPart::gpBolts);

    /// Most figures of one kind of marker, and most labels, that are made, whatever the number of markers
    /// says.
    static constexpr int MaxMarkerFigures = 100000;
    static constexpr int MaxLabels = 20000;

    // Scale. A change of Min or Max writes labels that are numbers anew and turns the hands; equal ends leave
    // the hands where they are. Of the properties only Value and Time raise OnChange.

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
    bool IsHandsStored() const { return FHands != FDefaultHands; }
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
    void SetLabels(const TStrings& value);
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
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }
    /// Font of the labels, its size in units of the label box, 1.18 artwork units each. Default: the
    /// artwork's, with the class's size. Set by copying.
    TSVGFont& GetFont() const;
    void SetFont(const TSVGFont& value);
    /// Font of Caption and DetailText, its size in the same units; DetailText is drawn at 0.85 of it.
    /// Default: the artwork's. Set by copying.
    TSVGFont& GetCaptionFont() const;
    void SetCaptionFont(const TSVGFont& value);
    /// The main text, on one line above the centre, as long as it may be. UTF-8. Default: the class's.
    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(std::string_view value);
    bool IsCaptionStored() const { return FCaption != FDefaultCaption; }
    /// The second text, below the centre. UTF-8. Default: the class's.
    const std::string& GetDetailText() const { return FDetailText; }
    void SetDetailText(std::string_view value);
    bool IsDetailTextStored() const { return FDetailText != FDefaultDetailText; }

    // Colours, 0xAARRGGBB; any value. What was not set is as the artwork has it; the defaults are those of
    // the artwork that comes with the library.

    /// Of the frame. Default 0xFFA9A9A9. Its bevels are derived from it while gradients are off.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the dial. Default 0xFF000000.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of the frame's four bolts. Default 0xFFA9A9A9.
    TVZGPColor GetBoltColor() const { return GetColor(Bolt); }
    void SetBoltColor(TVZGPColor value) { SetColor(Bolt, value); }
    /// Of the knob on the hands. Default 0xFFA9A9A9.
    TVZGPColor GetKnobColor() const { return GetColor(Knob); }
    void SetKnobColor(TVZGPColor value) { SetColor(Knob, value); }
    /// Of the major markers. Default 0xFFFFFFFF.
    TVZGPColor GetMajorMarkersColor() const { return GetColor(MajorMarkers); }
    void SetMajorMarkersColor(TVZGPColor value) { SetColor(MajorMarkers, value); }
    /// Of the minor markers. Default 0xFFFFFFFF.
    TVZGPColor GetMinorMarkersColor() const { return GetColor(MinorMarkers); }
    void SetMinorMarkersColor(TVZGPColor value) { SetColor(MinorMarkers, value); }
    /// Of the labels; not of the two texts, which keep the artwork's colour. Default 0xFFFFFFFF.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// The outline of the labels; none for 0x00000000. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }
    /// Of the hand that shows the value. Default 0xFFFFFFFF.
    TVZGPColor GetBigHandColor() const { return GetColor(BigHand); }
    void SetBigHandColor(TVZGPColor value) { SetColor(BigHand, value); }
    /// Of the little hand. Default 0xFFFFFFFF.
    TVZGPColor GetLittleHandColor() const { return GetColor(LittleHand); }
    void SetLittleHandColor(TVZGPColor value) { SetColor(LittleHand, value); }
    /// Of the thin hand. Default 0xFF0000FF.
    TVZGPColor GetThinHandColor() const { return GetColor(ThinHand); }
    void SetThinHandColor(TVZGPColor value) { SetColor(ThinHand, value); }

    // Steps. Elements that an artwork lacks are passed over; one of another class raises EInvalidCast.

    /// Texts, markers, labels, hands, emblem, parts, design and fonts, in that order; then the hands stand
    /// where the value, or the time, says. A list of labels that was set is kept.
    void DoInitializeGauge() override;
    /// The simple design has neither bolts nor glass, nor light and shade; the gradients are switched once
    /// more.
    void DoUpdateDesign() override;
    /// The star, the toothed ring and the globe are the round gauge's own; all else is the catalogue's.
    void UpdateDecoration() override;
    /// Reads all colours above, that of the value's hand for BigHandColor.
    void LoadSVGProperties() override;
    void UpdateNumbers() override { InitializeNumberLabels(); }

    /// Turns an element about the knob's centre, so that what points to nine o'clock as drawn points to the
    /// angle, in degrees. One that is not finite leaves the element where it is.
    virtual void DoUpdateElement(std::string_view elementId, float angleDeg);
    /// Gives the labels' group Font. What Font leaves open is as the artwork has it.
    virtual void DoUpdateFont();
    /// Gives the texts' group CaptionFont, likewise.
    virtual void DoUpdateCaptionFont();
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
    const TInstrumentSetup& GetSetup() const override;
    void ColorChanged(std::size_t index) override;
    void ShowScale() override;
    void ShowValue() override { UpdateHands(); }
    /// What the class starts with; lives as long as the program.
    virtual const TGaugeSetup& GetGaugeSetup() const = 0;
    /// Makes scale, hands and texts as they are the defaults for storing; what a class's construction calls
    /// that changed them.
    void RefreshDefaults();
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

    /// Id of the element that the value turns and that BigHandColor fills. What a class sets before its base
    /// is constructed goes before the setup's.
    std::string FValueHandId;
    /// Whether the user's clicks turn the value hand of the classes that react to them.
    bool FInteraction = true;

    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t {
        Frame,
        Backface,
        Bolt,
        Knob,
        MajorMarkers,
        MinorMarkers,
        LabelsFill,
        LabelsStroke,
        BigHand,
        LittleHand,
        ThinHand,
    };

private:
    /// One kind of marker.
    struct TMarkers {
        std::int32_t Count = 0;
        TMarker Kind = TMarker::gmLine;
        const std::unique_ptr<TVZPathData> Path;
    };

    void SetMarker(TMarkers& markers, TMarker value);
    void SetMarkerPath(TMarkers& markers, const TVZPathData& value);
    void ResetMarkerPath(TMarkers& markers);
    void TakeMarkerData(TMarkers& markers);
    void AnglesChanged();
    void FontChanged(TObject& sender);
    void MarkersChanged();
    void LabelsChanged();
    std::vector<std::string> MakeNumbers() const;
    void WriteNumbers();
    void ShowPosition();
    int GetLastLabel() const;
    double GetSpan() const { return double(FStopAngle) - FStartAngle; }

    std::int32_t FStartAngle = 0;
    std::int32_t FStopAngle = 360;
    THands FHands = AllHands;
    THands FDefaultHands = AllHands;
    TDateTime FTime;
    TDateTime FDefaultTime;

    TMarkers FMajor;
    TMarkers FMinor;
    const std::unique_ptr<TStrings> FLabels;
    bool FLabelsAreUsers = false; ///< the list was set from outside, and nothing renumbered it since
    bool FIsRebuilding = false;   ///< changes of the owned objects are this class's own

    const std::unique_ptr<TInstrumentFont> FFont;
    const std::unique_ptr<TInstrumentFont> FCaptionFont;
    std::string FCaption;
    std::string FDefaultCaption;
    std::string FDetailText;
    std::string FDefaultDetailText;
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
    TVZGPColor BigHandColor = 0xFFFFFFFF; ///< declared
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
