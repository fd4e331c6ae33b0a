#pragma once

#include "tavro/instruments/meters/Meter.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A thermometer: mercury rises from a bulb in a glass tube, between two printed scales that show the same
/// numbers. The unit is the program's; the scale runs from 0 to 120 unless Min and Max say otherwise.
///
/// The mercury may go a little beyond both ends of the scale. The artwork carries the markers; only the
/// numbers are rewritten, the top one first. Colours are the artwork's own until they are set. An artwork of
/// the program's own must hold the rects "Mercury" and "MercuryHighlight": one without them is refused with
/// EReadError, one where they are something else with EInvalidCast, and everything stays as it was.
class TVZThermometer : public TCreatable<TVZThermometer, TVZCustomMeter> {
public:
    static constexpr std::string_view TypeName = "TVZThermometer";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        tpFrame,
        tpBackface,
        tpDecoration, ///< nothing: the artwork has no emblem
        tpLeftMarkers,
        tpRightMarkers,
        tpLeftMinorMarkers,  ///< shown together with tpLeftMarkers only
        tpRightMinorMarkers, ///< shown together with tpRightMarkers only
        tpLeftLabels,
        tpRightLabels,
        tpMercury,
        tpPipette,
        tpGlass,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::tpGlass);

    /// Where the column is empty, in scale units: the scale's span times 0.0875, rounded to a whole number (a
    /// half to the even one), below Min. -10 by default.
    float GetLowest() const override { return FMercuryMin; }
    /// Where it is full: the span times 0.1, rounded likewise, above Max. 132 by default.
    float GetHighest() const override { return FMercuryMax; }

    /// The parts that are shown. Default all twelve. A change runs UpdateParts. Frame, its bevel and the
    /// glass are also hidden by the simple design, and the glass without gradients; what was set last
    /// decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. While
    // gradients are off, frame, plate and mercury are flat.

    /// Of the frame, of which the artwork makes light and shade; the shaded side of its bevel is darker by
    /// 128. Default 0xFFD3D7CF.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of column and bulb, of which the artwork makes light and shade. Default 0xFFFF0000.
    TVZGPColor GetMercuryColor() const { return GetColor(Mercury); }
    void SetMercuryColor(TVZGPColor value) { SetColor(Mercury, value); }
    /// Of the plate, one colour throughout. Default 0xFFFFF1FF.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of all markers, which are strokes; 0x00000000: none. Default 0xFF000000, the artwork's fill of them.
    TVZGPColor GetMarkersColor() const { return GetColor(Markers); }
    void SetMarkersColor(TVZGPColor value) { SetColor(Markers, value); }
    /// Of the numbers. Default 0xFF000000.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// Outline of the numbers; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    void DoInitializeGauge() override;
    /// Writes the numbers of both scales. Raises EInvalidCast for a child that is no text, and
    /// EArgumentOutOfRange where the right scale has fewer than the left one.
    void InitializeLabels() override;
    /// Writes the numbers and takes the mercury's range from the scale.
    virtual void InitializeThermometer();
    /// Sets the column to the value and invalidates; in a range of no extent it stays where it is. Nothing
    /// happens where there is no "Mercury"; raises EReadError where that has no highlight.
    virtual void UpdateMercury();
    /// Takes the mercury's range from the scale.
    virtual void UpdateRange();

protected:
    void Construct() override;
    void ReplaceContent(const std::function<void()>& load) override;
    const TInstrumentSetup& GetSetup() const override;
    void ReadGeometry() override;
    void ShowScale() override;
    void ShowValue() override { UpdateMercury(); }

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t { Frame, Mercury, Backface, Markers, LabelsFill, LabelsStroke };

    /// A full column, as the artwork draws it, in whole artwork units.
    struct TColumn {
        std::int32_t Top = 0;
        std::int32_t Height = 0;
    };

    TSVGBasicShape& RequireRect(std::string_view id) const;
    TColumn ReadColumn(std::string_view id) const;

    float FMercuryMin = 0;
    float FMercuryMax = 120;
    TColumn FMercury;
    TColumn FHighlight;
};

template <> struct EnumNames<TVZThermometer::TPart> {
    static constexpr std::string_view Name = "TVZThermometer.TPart";
    static constexpr std::string_view SetName = "TVZThermometer.TParts";
    static constexpr std::string_view Members[] = {
        "tpFrame",        "tpBackface",         "tpDecoration",        "tpLeftMarkers",
        "tpRightMarkers", "tpLeftMinorMarkers", "tpRightMinorMarkers", "tpLeftLabels",
        "tpRightLabels",  "tpMercury",          "tpPipette",           "tpGlass",
    };
};

} // namespace Vz
