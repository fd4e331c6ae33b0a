#pragma once

#include "instruments/Instrument.h"
#include "instruments/InstrumentFont.h"
#include "instruments/Scale.h"
#include "runtime/DateTime.h"
#include "runtime/Set.h"
#include "runtime/Strings.h"

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

    enum class THand : std::uint8_t { ghBig, ghLittle, ghThin };
    using THands = TSet<THand>;
    static constexpr THands AllHands = THands::FromMask(7);

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

    // Scale. Of these only SetValue and SetTime raise OnChange.

    /// Lower end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One above Max moves Max to one above it; Value comes up to it. Labels that are numbers are written
    /// anew.
    float GetMin() const { return FScale.Min; }
    void SetMin(float value);
    bool IsMinStored() const;
    /// Upper end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One below Min moves Min to one below it; Value comes down to it. Labels that are numbers are written
    /// anew.
    float GetMax() const { return FScale.Max; }
    void SetMax(float value);
    bool IsMaxStored() const;
    /// What the hands show, in scale units, clamped to Min..Max; not-a-number is ignored. Default: the
    /// class's. A change turns the hands and raises OnChange.
    float GetValue() const { return FScale.Value; }
    void SetValue(float value);
    /// True where Value is not its default, and so is stored.
    bool IsDefaultValue() const;
    /// Where Min stands, in degrees; taken as it is. Default: the class's.
    std::int32_t GetStartAngle() const { return FStartAngle; }
    void SetStartAngle(std::int32_t value);
    /// Where Max stands, in degrees; taken as it is. Default: the class's. Below StartAngle the scale runs
    /// anticlockwise.
    std::int32_t GetStopAngle() const { return FStopAngle; }
    void SetStopAngle(std::int32_t value);
    /// The hands that are shown. Default: the class's. Hidden hands turn all the same.
    THands GetHands() const { return FHands; }
    void SetHands(THands value);
    bool IsHandsStored() const;
    /// What a clock or calendar shows. Default 0, midnight; a calendar's: when it was made. What is no date
    /// and time of the years 1 to 9999 is ignored. A change turns the hands and raises OnChange.
    TDateTime GetTime() const { return FTime; }
    void SetTime(TDateTime value);
    bool IsTimeStored() const { return FTime.Days != FDefaultTime.Days; }

    // Markers. A marker is a path in a box of 100 by 100 whose centre is the dial's, drawn at twelve o'clock,
    // y = 0 at the rim.

    /// Number of intervals between major markers; negative counts as 0. Default: the class's. From 0 on there
    /// are no major markers. At most MaxMarkerFigures are drawn.
    std::int32_t GetMajorMarkers() const { return FMajor.Count; }
    void SetMajorMarkers(std::int32_t value);
    /// Number of minor markers in each interval; negative counts as 0. Default: the class's.
    std::int32_t GetMinorMarkers() const { return FMinor.Count; }
    void SetMinorMarkers(std::int32_t value);
    /// Shape of the major markers. Default gmLine; gmCustom keeps the present path.
    TMarker GetMajorMarker() const { return FMajor.Kind; }
    void SetMajorMarker(TMarker value) { SetMarker(FMajor, value); }
    /// Shape of the minor markers. Default gmLine.
    TMarker GetMinorMarker() const { return FMinor.Kind; }
    void SetMinorMarker(TMarker value) { SetMarker(FMinor, value); }
    /// The path of a major marker. Setting it copies it and makes the shape gmCustom.
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

    /// The texts. Where the class shows numbers it writes them itself, anew whenever the scale or the format
    /// changes, also over a list that was set; a list that was set outlives everything else. Texts beyond the
    /// markers are not shown.
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
    /// Font of the labels, in artwork units. Default: the artwork's, with the class's size. Set by copying.
    TSVGFont& GetFont() const { return *FFont; }
    void SetFont(const TSVGFont& value) { FFont->Assign(value); }
    /// Font of Caption and DetailText, in artwork units. Default: the artwork's. Set by copying.
    TSVGFont& GetCaptionFont() const { return *FCaptionFont; }
    void SetCaptionFont(const TSVGFont& value) { FCaptionFont->Assign(value); }
    /// The main text. UTF-8. Default: the class's.
    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(std::string_view value);
    bool IsCaptionStored() const;
    /// The second text. UTF-8. Default: the class's.
    const std::string& GetDetailText() const { return FDetailText; }
    void SetDetailText(std::string_view value);
    bool IsDetailTextStored() const;

    // Colours, 0xAARRGGBB. Defaults are those of the artwork.

    /// Of the frame; its bevels are derived from it while gradients are off.
    TVZGPColor GetFrameColor() const { return FFrameColor; }
    void SetFrameColor(TVZGPColor value);
    TVZGPColor GetBackfaceColor() const { return FBackfaceColor; }
    void SetBackfaceColor(TVZGPColor value) { SetFill(FBackfaceColor, "DialColor", value); }
    TVZGPColor GetBoltColor() const { return FBoltColor; }
    void SetBoltColor(TVZGPColor value) { SetFill(FBoltColor, "Bolt", value); }
    TVZGPColor GetKnobColor() const { return FKnobColor; }
    void SetKnobColor(TVZGPColor value) { SetFill(FKnobColor, "Knob", value); }
    TVZGPColor GetMajorMarkersColor() const { return FMajorMarkersColor; }
    void SetMajorMarkersColor(TVZGPColor value) { SetFill(FMajorMarkersColor, "BigMarkers", value); }
    TVZGPColor GetMinorMarkersColor() const { return FMinorMarkersColor; }
    void SetMinorMarkersColor(TVZGPColor value) { SetFill(FMinorMarkersColor, "SmallMarkers", value); }
    TVZGPColor GetLabelsFillColor() const { return FLabelsFillColor; }
    void SetLabelsFillColor(TVZGPColor value) { SetFill(FLabelsFillColor, "MeasurementLabels", value); }
    /// The outline of the labels; none for 0x00000000.
    TVZGPColor GetLabelsStrokeColor() const { return FLabelsStrokeColor; }
    void SetLabelsStrokeColor(TVZGPColor value);
    /// Of the hand that shows the value.
    TVZGPColor GetBigHandColor() const { return FBigHandColor; }
    void SetBigHandColor(TVZGPColor value) { SetFill(FBigHandColor, FValueHandId, value); }
    TVZGPColor GetLittleHandColor() const { return FLittleHandColor; }
    void SetLittleHandColor(TVZGPColor value) { SetFill(FLittleHandColor, "LittleHand", value); }
    TVZGPColor GetThinHandColor() const { return FThinHandColor; }
    void SetThinHandColor(TVZGPColor value) { SetFill(FThinHandColor, "ThinHand", value); }

    // Steps.

    void DoEnableGradients(bool enable) override;
    void DoInitializeGauge() override;
    void DoUpdateDesign() override;
    void DoUpdateLight() override;
    void DoUpdateParts() override;
    void UpdateDecoration() override;
    void LoadSVGProperties() override;
    void UpdateNumbers() override { InitializeNumberLabels(); }
    std::string GetSVGResourceName() const override { return "CircularGaugeSVG"; }
    std::span<const TArtworkRow> GetArtworkContract() const override;

    /// Turns an element about the knob's centre, so that what points to nine o'clock as drawn points to the
    /// angle, in degrees. One that is not finite leaves the element where it is.
    virtual void DoUpdateElement(std::string_view elementId, float angleDeg);
    virtual void DoUpdateFont() { ApplyFont("Labels", *FFont); }
    virtual void DoUpdateCaptionFont() { ApplyFont("GaugeLabels", *FCaptionFont); }
    /// Path data of a marker's shape; that of the present path for gmCustom.
    virtual std::string GetMarkerData(TMarker marker, bool minor) const;
    /// Writes the labels that are numbers, and places all. Nothing in an update batch.
    virtual void InitializeNumberLabels();
    /// Places the labels at the major markers. Nothing in an update batch.
    virtual void InitializeLabels();
    /// Makes the markers. Nothing in an update batch.
    virtual void InitializeMarkers();
    virtual void InitializeMarkerPaths();
    virtual void InitializeHands();
    /// Turns the hands to the value.
    virtual void UpdateHands();
    /// Turns the hands to the time: hours, minutes and seconds.
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
    std::int32_t StartAngle = 0;
    std::int32_t StopAngle = 360;
    float Min = 0;
    float Max = 12;
    float Value = 0;
    std::int32_t MajorMarkers = 12;
    std::int32_t MinorMarkers = 4;
    T::THands Hands = T::AllHands;
    T::TParts Parts = T::AllParts;
    /// The labels, one a line; empty: numbers, which the class makes from the scale.
    std::string_view Labels = {};
    float FontSize = 0; ///< of the labels, in artwork units; 0: the artwork's
    TDecoration Decoration = TDecoration::dcNone;
    bool ShowsTime = false; ///< the hands show Time, not Value
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
