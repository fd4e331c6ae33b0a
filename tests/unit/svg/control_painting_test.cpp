// What a control paints, against the same steps taken by hand.

#include "tavro/VZSVGControl.h"

#include "ControlScene.h"
#include "tavro/runtime/Rounding.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

/// The picture as its steps make it: the document's part before the active element on a bitmap of the
/// control's size times the quality, which is stretched into the rectangle of the picture, then the element,
/// then what comes after it.
std::vector<std::uint32_t> ByHand(TScene& scene) {
    TVZSVGControl& control = *scene.Control;
    TSVGDocument& document = control.GetDocument();
    const auto mode = control.GetStretch() ? TSVGImageWrapMode::Stretch : TSVGImageWrapMode::Fit;
    const auto quality = float(control.GetQuality());
    const TSizeF size = ScaleSize(float(control.GetWidth()) * quality, float(control.GetHeight()) * quality,
                                  document.GetWidth(), document.GetHeight(), mode, 1);
    const TSVGAlign align = control.GetStretch() ? TSVGAlign::None : TSVGAlign::XMidYMid;
    document.GetPreserveAspectRatio().SetAlign(align);
    document.GetViewPreserveAspectRatio().SetAlign(align);

    TVZGPBitmap picture(unsigned(control.GetWidth()), unsigned(control.GetHeight()));
    TVZGPCanvas canvas(picture.GetCanvas());
    canvas.SetMatrix(control.GetAbsoluteMatrix());
    if (control.GetQuality() > 1) canvas.SetInterpolationMode(7);
    for (const auto draw :
         {&TSVGDocument::DrawBefore, &TSVGDocument::DrawElement, &TSVGDocument::DrawAfter}) {
        TVZGPBitmap part;
        part.SetSize(unsigned(RoundHalfEven(size.Width)), unsigned(RoundHalfEven(size.Height)));
        part.GetCanvas().Clear(0);
        document.FitToRect({0, 0, size.Width, size.Height});
        (document.*draw)(part.GetCanvas(), document.GetDrawMatrix(), *control.GetActiveSVGElement());
        canvas.DrawImage(part, control.GetDrawRect(), control.GetOpacity());
    }
    return CopyOf(picture);
}

TEST(ControlPainting, FollowsItsStepsAtEveryQualityStretchAndOpacity) {
    for (int quality = 1; quality <= 8; ++quality)
        for (const bool stretch : {false, true})
            for (const float opacity : {1.0f, 0.7f, 0.2f})
                for (const std::string_view active : {"NeedleGroup", "Face", "Veil"}) {
                    TScene scene(1, 60, 40);
                    scene.TurnNeedle(33);
                    scene.Activate(active);
                    scene.Control->SetQuality(quality);
                    scene.Control->SetStretch(stretch);
                    scene.Control->SetOpacity(opacity);
                    const auto painted = scene.Paint();
                    EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetHeight(), unsigned(40 * quality));
                    // At quality 1 an opaque element goes straight onto the canvas, which rounds once less.
                    EXPECT_LE(WorstDifference(painted, ByHand(scene)), quality > 1 ? 0 : 1)
                        << quality << " " << stretch << " " << opacity << " " << active;
                }
}

/// Turned, and so much enlarged that pixels of the caches are mixed by the canvas's filter.
TEST(ControlPainting, FollowsItsStepsUnderATransform) {
    const TMatrix turned = CreateRotationVZMatrix({30, 20}, 0.3f);
    const TMatrix enlarged = VZMatrixMultiply(CreateScaleVZMatrix(9, 9), CreateTranslateVZMatrix(-240, -160));
    for (const TMatrix& transform : {turned, enlarged, VZMatrixMultiply(turned, enlarged)})
        for (const int quality : {2, 5}) {
            TScene scene(1, 60, 40);
            scene.Activate("NeedleGroup");
            scene.Control->SetQuality(quality);
            scene.Control->SetOpacity(0.5f);
            scene.Control->GetTransform().SetMatrix(transform);
            const auto painted = scene.Paint();
            EXPECT_EQ(WorstDifference(painted, ByHand(scene)), 0) << quality;
            EXPECT_GT(std::count_if(painted.begin(), painted.end(), [](std::uint32_t p) { return p != 0; }),
                      500);
        }
}

/// Sizes that end in a half go to the even number.
TEST(ControlPainting, RoundsTheSizeOfTheCaches) {
    for (const auto& [extent, height] : {std::pair{25, 38u}, {27, 40u}, {29, 44u}}) {
        TScene scene(1, extent, extent);
        scene.Control->LoadFromText(
            R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="10"><rect id="R" width="9" height="9"/></svg>)");
        scene.Activate("R");
        scene.Control->SetQuality(3);
        scene.Paint();
        EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetWidth(), unsigned(extent) * 3);
        EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetHeight(), height);
        EXPECT_EQ(scene.Control->GetAfterBuffer()->GetHeight(), height);
    }
}

/// The pictures of all qualities are one picture, each with finer edges.
TEST(ControlPainting, QualityChangesEdgesOnly) {
    TScene scene(1, 80, 80);
    scene.Activate("NeedleGroup");
    const auto plain = scene.Paint();
    for (int quality = 2; quality <= 8; ++quality) {
        scene.Control->SetQuality(quality);
        const auto picture = scene.Paint();
        double sum = 0;
        for (std::size_t i = 0; i < plain.size(); ++i)
            sum += std::abs(int(GreenOf(plain[i])) - int(GreenOf(picture[i])));
        EXPECT_LT(sum / double(plain.size()), 1.0) << quality;
    }
}

TEST(ControlPainting, NestedControlsMultiplyTheirTransforms) {
    TScene scene(1, 60, 60);
    scene.Control->LoadFromText(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="60" height="60"><rect id="O" width="1" height="1"/></svg>)");
    const auto inner = TVZSVGControl::Create();
    inner->LoadFromText(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="20"><rect id="R" width="5" height="5" fill="#00f"/></svg>)");
    inner->SetBounds(3, 4, 20, 20);
    inner->SetParent(scene.Control.get());
    scene.Control->GetTransform().SetMatrix(CreateTranslateVZMatrix(7, 2));
    inner->GetTransform().SetMatrix(CreateScaleVZMatrix(2, 2));
    for (const bool isActive : {false, true}) {
        if (isActive) inner->SetActiveSVGElement(inner->GetDocument().Find<TSVGGraphicElement>("R"));
        scene.Paint();
        // Its own transform first, then its parent's, then its place: 2 x + 7 + 3 across, 2 y + 2 + 4 down.
        EXPECT_EQ(scene.PixelAt(10, 6), 0xFF0000FFu);
        EXPECT_EQ(scene.PixelAt(19, 15), 0xFF0000FFu);
        EXPECT_EQ(scene.PixelAt(9, 6), 0u);
        EXPECT_EQ(scene.PixelAt(10, 5), 0u);
        EXPECT_EQ(scene.PixelAt(20, 15), 0u);
        EXPECT_EQ(scene.PixelAt(19, 16), 0u);
        EXPECT_EQ(scene.PixelAt(7, 2), 0xFF000000u) << "the outer one's own";
    }
}

} // namespace
} // namespace Vz::Test
