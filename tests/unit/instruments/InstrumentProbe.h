#pragma once

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"

#include <functional>
#include <string>
#include <vector>

namespace Vz::Test {

using TLog = std::vector<std::string>;

/// An artwork with one element of each kind that the base works on.
inline constexpr std::string_view ProbeSvg = R"svg(<svg xmlns="http://www.w3.org/2000/svg"
    xmlns:xlink="http://www.w3.org/1999/xlink" width="100" height="100" viewBox="0 0 100 100">
  <defs>
    <linearGradient id="Shade"><stop offset="0" stop-color="#808080"/><stop offset="1" stop-color="#404040"/>
    </linearGradient>
    <linearGradient id="Borrowed" xlink:href="#Shade"/>
    <linearGradient id="Empty"/>
  </defs>
  <rect id="Face" width="100" height="100" fill="#112233" stroke="#445566"/>
  <path id="Emblem" d="M0 0 L10 0 L10 10 Z" style="fill:#0000ff;stroke:#ff0000"/>
  <g id="Numbers" font-size="10" font-family="Noto Sans" fill="#ffffff">
    <text x="10" y="20">a</text><text x="30" y="20">b</text><text x="50" y="20">c</text>
  </g>
  <circle id="Knob" cx="50" cy="60" r="5" transform="translate(1 2)"/>
  <g id="Hand"><path d="M49 60 L51 60 L50 10 Z"/></g>
</svg>)svg";

/// An instrument that shows the probe artwork and writes down what is called; it offers the base's protected
/// tools.
class TProbe final : public TCreatable<TProbe, TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TProbe";
    using TCreatable::TCreatable;

    /// Everything that ran, in order, from the first step of the construction on.
    TLog Log;
    /// The text that LoadSVGResource loads.
    static inline std::string Artwork{ProbeSvg};
    /// Runs in every Do step, to see what holds there.
    std::function<void()> OnStep;

    std::span<const TProp> GetPropTable() const override {
        static constexpr auto Rows =
            Publish(ColorProps<Setup>(),
                    Inherited<Setup>({"Design", "Decoration", "DecorationPath", "DecorationFillColor",
                                      "DecorationStrokeColor", "EnableGradients", "LightColor", "FormatStr",
                                      "Stretch", "Opacity", "Transform", "OnChange"}));
        return Rows;
    }

    TVZGPColor GetFaceColor() const { return GetColor(0); }
    void SetFaceColor(TVZGPColor value) { SetColor(0, value); }
    TVZGPColor GetFirstStop() const { return GetColor(1); }
    TVZGPColor GetLastStop() const { return GetColor(2); }

    std::string GetSVGResourceName() const override {
        const_cast<TProbe*>(this)->Log.push_back("GetSVGResourceName");
        return "ProbeSVG";
    }
    void LoadSVGResource(std::string_view name) override {
        Log.push_back("LoadSVGResource " + std::string(name));
        LoadFromText(Artwork);
    }
    void LoadSVGProperties() override {
        Log.push_back("LoadSVGProperties");
        TVZSVGCustomInstrument::LoadSVGProperties();
    }
    void Resize() override {
        Log.push_back("Resize " + std::to_string(GetWidth()) + "x" + std::to_string(GetHeight()));
        TVZSVGCustomInstrument::Resize();
    }
    void InitializeGauge() override {
        Log.push_back("InitializeGauge");
        TVZSVGCustomInstrument::InitializeGauge();
    }
    void DoInitializeGauge() override {
        Note("DoInitializeGauge");
        TVZSVGCustomInstrument::DoInitializeGauge();
    }
    void DoEnableGradients(bool enable) override {
        Note(enable ? "DoEnableGradients on" : "DoEnableGradients off");
        TVZSVGCustomInstrument::DoEnableGradients(enable);
    }
    void DoUpdateDesign() override { Note("DoUpdateDesign"); }
    void DoUpdateLight() override { Note("DoUpdateLight"); }
    void DoUpdateParts() override { Note("DoUpdateParts"); }
    void UpdateDecoration() override {
        Note("UpdateDecoration");
        TVZSVGCustomInstrument::UpdateDecoration();
    }
    void UpdateNumbers() override { Note("UpdateNumbers"); }

    template <class T> T& Get(std::string_view id) { return *Find<T>(id); }

    using TVZSVGCustomInstrument::ApplyFont;
    using TVZSVGCustomInstrument::FDecorationElementId;
    using TVZSVGCustomInstrument::FormatNumber;
    using TVZSVGCustomInstrument::RecolourGradient;
    using TVZSVGCustomInstrument::SetElementFill;
    using TVZSVGCustomInstrument::SetElementStroke;
    using TVZSVGCustomInstrument::SetElementText;
    using TVZSVGCustomInstrument::ShowElement;
    using TVZSVGCustomInstrument::TurnElement;
    using TVZSVGCustomInstrument::WriteScale;

protected:
    const TInstrumentSetup& GetSetup() const override { return Setup; }
    void Construct() override {
        TVZSVGCustomInstrument::Construct();
        Log.push_back("Constructed");
    }
    void AfterConstruction() override {
        TVZSVGCustomInstrument::AfterConstruction();
        Log.push_back("Complete");
    }

private:
    void Note(const char* what) {
        Log.push_back(what);
        if (OnStep) OnStep();
    }

    static constexpr TColorRow Colors[] = {
        {"FaceColor", 0xFF112233, Rows::FillOf("Face"), {Rows::Fill("Face")}},
        {"FirstStop", 0xFF010101, Rows::FirstStopOf("Shade"), {Rows::Recolour("Shade")}},
        {"LastStop", 0xFF020202, Rows::LastStopOf("Shade"), {Rows::RecolourFromLast("Shade")}},
        {"EmptyColor", 0xFF030303, Rows::FirstStopOf("Empty"), {Rows::EveryStop("Empty")}},
    };
    static constexpr TGradientRow Gradients[] = {Rows::Switch("Face", "Shade", "FirstStop")};
    static constexpr TInstrumentSetup Setup{
        .Artwork = "ProbeSVG",
        .ActiveElement = "Hand",
        .DecorationElement = "Emblem",
        .Colors = Colors,
        .Gradients = Gradients,
    };
};

/// Counts an instrument's repaint requests, events and document notices while it lives.
template <class T> class TWatch {
public:
    explicit TWatch(T& instrument)
        : FInstrument(instrument)
        , FEpoch(instrument.GetDocument().GetEpoch()) {
        instrument.SetOnInvalidate([this](TObject&) { ++Invalidates; });
        instrument.SetOnChange([this](TObject&) { ++Changes; });
        instrument.GetDocument().OnChange = [this](const TSVGChange&) { ++Notices; };
    }
    ~TWatch() {
        FInstrument.SetOnInvalidate({});
        FInstrument.SetOnChange({});
        FInstrument.GetDocument().OnChange = {};
    }
    bool IsQuiet() const {
        return Invalidates + Changes + Notices == 0 && FEpoch == FInstrument.GetDocument().GetEpoch();
    }

    int Invalidates = 0;
    int Changes = 0;
    int Notices = 0; ///< of the document

private:
    T& FInstrument;
    std::uint64_t FEpoch;
};

} // namespace Vz::Test
