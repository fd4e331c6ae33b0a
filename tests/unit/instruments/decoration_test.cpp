#include "tavro/instruments/Decoration.h"

#include "InstrumentProbe.h"
#include "tavro/controls/HeadlessHost.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

std::string PathOf(const TProbe& probe) { return probe.GetDecorationPath()->GetPathString(); }

std::string Normal(std::string_view text) {
    TVZPathData path;
    path.SetPathString(text);
    return path.GetPathString();
}

TSVGGraphicElement& Emblem(TProbe& probe) { return probe.Get<TSVGGraphicElement>("Emblem"); }

// The catalogue

TEST(Decoration, CatalogueHasTheNamesOfTheEnumeration) {
    ASSERT_EQ(std::size(EnumNames<TDecoration>::Members), std::size_t(DecorationCount));
    for (int i = 0; i < DecorationCount; ++i)
        EXPECT_EQ(EnumNames<TDecoration>::Members[i], GetDecorationName(i)) << i;
    EXPECT_EQ(static_cast<int>(TDecoration::dcStar), 2);
    EXPECT_EQ(static_cast<int>(TDecoration::dcFuelTank), 13);
    EXPECT_EQ(static_cast<int>(TDecoration::dcAutumn), 26);
    EXPECT_EQ(GetDecorationName(-1), "");
    EXPECT_EQ(GetDecorationName(27), "");
}

TEST(Decoration, EmblemsLieInTheirBox) {
    for (int i = 2; i < DecorationCount; ++i) {
        SCOPED_TRACE(GetDecorationName(i));
        TVZPathData path;
        ASSERT_NO_THROW(path.SetPathString(GetDecorationPath(i)));
        const TRectD box = path.GetFigures().Bounds();
        EXPECT_GE(box.Left, -0.01);
        EXPECT_GE(box.Top, -0.01);
        EXPECT_LE(box.Right, 100.01);
        EXPECT_LE(box.Bottom, 100.01);
        EXPECT_GE(std::max(box.Width(), box.Height()), 85);
    }
    EXPECT_EQ(GetDecorationPath(0), "");
    EXPECT_EQ(GetDecorationPath(1), "");
    EXPECT_EQ(GetDecorationPath(-1), "");
    EXPECT_EQ(GetDecorationPath(27), "");
}

TEST(Decoration, GivenPathsAreAsGiven) {
    EXPECT_EQ(
        Normal(GetDecorationPath(2)),
        Normal(
            "M49.9 0 47.2 44.6 25.2 25.3 44.5 47.2 0 49.9 44.6 52.8 25.2 74.7 47.2 55.4 49.9 100 52.8 55.4 "
            "74.7 74.8 55.3 52.8 100 49.9 55.4 47.2 74.7 25.2 52.8 44.6 49.9 0Z"));
    EXPECT_EQ(
        Normal(GetDecorationPath(11)),
        Normal(
            "m50.1 0c0 0-14.4 30.5-13.1 42 1.3 11.5-1.7 45 0 51.5 0.8 2.9 4 5 7.4 6.5l11.4 0c3.4-1.5 6.6-3.6 "
            "7.4-6.5C65.1 76.2 62.1 59.3 63.3 42 64.2 30.2 50.1 0 50.1 0l0 1.2zm0 37.9c1.3 0 2.3 1 2.3 2.3 0 "
            "1.3-1 2.3-2.3 2.3-1.3 0-2.3-1-2.3-2.3 0-1.3 1-2.3 2.3-2.3z"));
    EXPECT_EQ(Normal(GetDecorationPath(14)), Normal("m 50,0 0,43 24,0 -24,57 0,-43 -24,0 24,-57 z"));
}

// The property

TEST(Decoration, ShowsTheCatalogue) {
    const auto probe = TProbe::Create();
    EXPECT_EQ(PathOf(*probe), ""); // dcNone, by InitializeGauge
    for (int i = 2; i < DecorationCount; ++i) {
        probe->SetDecoration(static_cast<TDecoration>(i));
        EXPECT_EQ(PathOf(*probe), Normal(GetDecorationPath(i))) << i;
    }
    probe->SetDecoration(TDecoration::dcNone);
    EXPECT_EQ(PathOf(*probe), "");
}

TEST(Decoration, ChangeRepaintsOnce) {
    const auto probe = TProbe::Create();
    THeadlessHost host(*probe);
    host.Paint();
    TWatch watch(*probe);
    probe->SetDecoration(TDecoration::dcStar);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_TRUE(probe->AreBuffersStale());
    probe->SetDecoration(TDecoration::dcStar);
    EXPECT_EQ(watch.Invalidates, 1);
}

TEST(Decoration, PathOfTheUsersOwn) {
    const auto probe = TProbe::Create();
    probe->SetDecoration(TDecoration::dcStar);
    EXPECT_FALSE(probe->IsDecorationPathStored());
    TVZPathData path;
    path.SetPathString("M0 0 H10 V10 Z");
    {
        TWatch watch(*probe);
        probe->Log.clear();
        probe->SetDecorationPath(path);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(probe->Log.empty()); // no UpdateDecoration, which would clear it
    }
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcCustom);
    EXPECT_TRUE(probe->IsDecorationPathStored());
    EXPECT_EQ(PathOf(*probe), path.GetPathString());
    {
        TWatch watch(*probe);
        probe->SetDecorationPath(path);
        EXPECT_TRUE(watch.IsQuiet());
    }
    probe->UpdateDecoration(); // the path lives in the artwork only
    EXPECT_EQ(PathOf(*probe), "");
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcCustom);
    // The very path of the emblem that is shown makes it the user's own, too.
    probe->SetDecoration(TDecoration::dcBolt);
    path.SetPathString(PathOf(*probe));
    probe->SetDecorationPath(path);
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcCustom);
}

TEST(Decoration, BatchEndClearsThePathOfTheUsersOwn) {
    const auto probe = TProbe::Create();
    TVZPathData path;
    path.SetPathString("M0 0 H10 V10 Z");
    probe->BeginUpdate();
    probe->SetDecorationPath(path);
    probe->EndUpdate();
    EXPECT_EQ(PathOf(*probe), "");
}

// Colours

TEST(Decoration, ColorsAreTheArtworksUntilTheyAreSet) {
    const auto probe = TProbe::Create();
    EXPECT_EQ(probe->GetDecorationFillColor(), 0xFF0000FFu);
    EXPECT_EQ(probe->GetDecorationStrokeColor(), 0xFFFF0000u);
}

TEST(Decoration, FillIsSetOverAnyStyle) {
    const auto probe = TProbe::Create();
    TWatch watch(*probe);
    probe->SetDecorationFillColor(0x80123456);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetColor(), 0x80123456u);
    EXPECT_EQ(Emblem(*probe).GetPen().GetColor(), 0xFFFF0000u);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
}

TEST(Decoration, NoColorSwitchesOff) {
    const auto probe = TProbe::Create();
    probe->SetDecorationFillColor(0);
    probe->SetDecorationStrokeColor(0);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetKind(), TVZGPBrushKind::None);
    EXPECT_EQ(Emblem(*probe).GetPen().GetKind(), TVZGPBrushKind::None);
    probe->SetDecorationFillColor(0xFF00FF00);
    probe->SetDecorationStrokeColor(0xFF0000FF);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetColor(), 0xFF00FF00u);
    EXPECT_EQ(Emblem(*probe).GetPen().GetColor(), 0xFF0000FFu);
    probe->SetDecorationFillColor(0x00FFFFFF); // transparent, but a colour
    EXPECT_EQ(Emblem(*probe).GetBrush().GetKind(), TVZGPBrushKind::Solid);
}

TEST(Decoration, ColorReplacesAGradient) {
    const auto probe = TProbe::Create();
    probe->DoEnableGradient("Emblem", "Shade", true, 0, true);
    probe->SetDecorationFillColor(0xFF00FF00);
    EXPECT_EQ(Emblem(*probe).GetBrush().GetKind(), TVZGPBrushKind::Solid);
}

TEST(Decoration, ArtworkWithoutTheElement) {
    TProbe::Artwork = "<svg xmlns='http://www.w3.org/2000/svg'><rect width='5' height='5'/></svg>";
    const auto probe = TProbe::Create();
    TProbe::Artwork = ProbeSvg;
    EXPECT_EQ(probe->GetDecorationPath(), nullptr);
    TWatch watch(*probe);
    probe->SetDecorationFillColor(0xFF00FF00);
    probe->SetDecorationStrokeColor(0xFF00FF00);
    TVZPathData path;
    path.SetPathString("M0 0 H10");
    probe->SetDecorationPath(path);
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_EQ(probe->GetDecorationFillColor(), 0xFF00FF00u);
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcNone);
    probe->SetDecoration(TDecoration::dcBolt);
    EXPECT_EQ(watch.Invalidates, 1); // repaints all the same
}

} // namespace
} // namespace Vz::Test
