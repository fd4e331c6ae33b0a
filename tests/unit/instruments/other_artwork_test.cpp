// What instruments take from an artwork, and what becomes of it with another one.

#include "tavro/Tavro.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace Vz::Test {
namespace {

std::vector<std::uint32_t> Painted(TControl& control) {
    THeadlessHost host(control);
    const TPixels pixels = host.Paint().GetPixels();
    return {pixels.Data, pixels.Data + std::ptrdiff_t(pixels.Width) * pixels.Height};
}

/// The artwork with every id that is not in the contract renamed, where it is given and where it is used.
std::string Renamed(std::string svg, const TVZSVGCustomInstrument& instrument) {
    std::set<std::string, std::less<>> kept;
    for (const TArtworkRow& row : instrument.GetArtworkContract())
        kept.emplace(row.Id);
    const std::regex given(R"( id="([^"]+)\")");
    std::set<std::string> others;
    for (std::sregex_iterator at(svg.begin(), svg.end(), given), end; at != end; ++at)
        if (!kept.contains((*at)[1].str())) others.insert((*at)[1].str());
    for (const std::string& id : others) {
        svg = std::regex_replace(svg, std::regex(" id=\"" + id + "\""), " id=\"other-" + id + "\"");
        svg = std::regex_replace(svg, std::regex("href=\"#" + id + "\""), "href=\"#other-" + id + "\"");
        svg = std::regex_replace(svg, std::regex("url\\(#" + id + "\\)"), "url(#other-" + id + ")");
    }
    return svg;
}

/// A value that is not the present one, for what is seen.
void Vary(TPersistent& object, const TProp& row) {
    TValue value = row.Get(object);
    if (bool* const on = std::get_if<bool>(&value)) *on = !*on;
    if (TColorValue* const color = std::get_if<TColorValue>(&value)) color->Argb ^= 0x00335577;
    if (TEnumValue* const member = std::get_if<TEnumValue>(&value))
        member->Ordinal = (member->Ordinal + 1) % int(row.Type.Members->Members.size());
    if (TSetValue* const set = std::get_if<TSetValue>(&value)) set->Mask ^= 5;
    if (float* const number = std::get_if<float>(&value)) *number = *number * 0.5f + 7;
    if (std::int64_t* const number = std::get_if<std::int64_t>(&value)) *number += 3;
    if (TDateTime* const time = std::get_if<TDateTime>(&value)) *time = TDateTime(46000.4321);
    row.Set(object, value);
}

TEST(OtherArtwork, NoClassLooksForWhatItsContractDoesNotName) {
    RegisterComponentClasses();
    for (const TClassEntry& entry : GetClasses()) {
        const auto one = entry.Create(), other = entry.Create();
        auto* const asDrawn = dynamic_cast<TVZSVGCustomInstrument*>(one.get());
        auto* const renamed = dynamic_cast<TVZSVGCustomInstrument*>(other.get());
        if (!asDrawn) continue;
        SCOPED_TRACE(entry.Name);
        const std::string artwork(GetResource(asDrawn->GetSVGResourceName()));
        const std::string changed = Renamed(artwork, *renamed);
        EXPECT_NE(changed, artwork);
        asDrawn->LoadFromText(artwork);
        renamed->LoadFromText(changed);
        // What shows the present time shows one time.
        for (const TProp& row : asDrawn->GetPropTable())
            if (row.Type.Kind == TValueKind::DateTime) {
                row.Set(*asDrawn, TValue(TDateTime(45000.25)));
                row.Set(*renamed, TValue(TDateTime(45000.25)));
            }
        EXPECT_TRUE(Painted(*asDrawn) == Painted(*renamed));
        for (const TProp& row : asDrawn->GetPropTable()) {
            if (!row.Set || row.Type.Kind == TValueKind::Text) continue;
            Vary(*asDrawn, row);
            Vary(*renamed, row);
            EXPECT_TRUE(Painted(*asDrawn) == Painted(*renamed)) << row.Name;
        }
    }
}

/// The speedometer's artwork with a navy dial and a cyan needle.
std::string NavyArtwork() {
    std::string svg(GetResource("SpeedometerSVG"));
    svg = std::regex_replace(svg, std::regex("#555753"), "#102040");
    const std::size_t needle = svg.find("id=\"Needle\"");
    const std::size_t fill = svg.find("fill=\"#", needle) + 7;
    return svg.replace(fill, 6, "00ffff");
}

TEST(OtherArtwork, KeepsItsOwnColours) {
    const auto gauge = TVZSpeedometer::Create();
    gauge->LoadFromText(NavyArtwork());
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF102040u);
    EXPECT_EQ(gauge->GetNeedleFillColor(), 0xFF00FFFFu);
    const auto& stop = gauge->GetDocument().Find<TSVGCustomGradient>("linearGradientBackface")->GetStop(0);
    EXPECT_EQ(stop.GetStopColor(), 0xFF102040u);
    EXPECT_EQ(gauge->GetDocument().Find<TSVGPath>("Needle")->GetBrush().GetColor(), 0xFF00FFFFu);
}

TEST(OtherArtwork, TakesOverWhatWasSet) {
    const auto gauge = TVZSpeedometer::Create();
    gauge->SetFrameColor(0xFF804020);
    gauge->SetMax(200);
    gauge->SetValue(120);
    gauge->SetDecorationFillColor(0xFF112233);
    gauge->LoadFromText(NavyArtwork());
    EXPECT_EQ(gauge->GetFrameColor(), 0xFF804020u);
    EXPECT_EQ(gauge->GetDocument().Find<TSVGCustomGradient>("linearGradientFrame")->GetStop(0).GetStopColor(),
              0xFF804020u);
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF102040u);
    EXPECT_EQ(gauge->GetDecorationFillColor(), 0xFF112233u);
    EXPECT_EQ(gauge->GetMax(), 200);
    EXPECT_EQ(gauge->GetValue(), 120);
}

TEST(OtherArtwork, KeepsItsOwnColoursWithoutGradients) {
    const auto gauge = TVZSpeedometer::Create();
    gauge->SetEnableGradients(false);
    gauge->SetFrameColor(0xFF804020);
    gauge->LoadFromText(NavyArtwork());
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF102040u);
    const auto fillOf = [&](const char* id) {
        return gauge->GetDocument().Find<TSVGGraphicElement>(id)->GetBrush().GetColor();
    };
    EXPECT_EQ(fillOf("BackfaceFlat"), 0xFF102040u);
    EXPECT_EQ(fillOf("OuterFrame"), 0xFF804020u);
}

/// A clock face of somebody else's, which changes a step.
class TTwentyFour final : public TCreatable<TTwentyFour, TVZCircularClock> {
public:
    static constexpr std::string_view TypeName = "TTwentyFour";
    using TCreatable::TCreatable;
    void UpdateTime() override {
        EditDocument([this] { DoUpdateElement("LittleHand", static_cast<float>(GetTime().Days * 360)); });
        Invalidate();
    }
};

TEST(OtherArtwork, AProgramChangesAStepOfAClass) {
    const auto clock = TTwentyFour::Create();
    clock->SetTime(TDateTime(0.25));
    const TMatrix matrix = clock->GetDocument().Find<TSVGGraphicElement>("LittleHand")->GetMatrix();
    EXPECT_NEAR(matrix.M11, -1, 1e-5); // 90 degrees, and 90 more from where the hand is drawn
}

} // namespace
} // namespace Vz::Test
