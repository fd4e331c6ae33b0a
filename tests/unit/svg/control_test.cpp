#include "tavro/VZSVGControl.h"

#include "ControlScene.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/Palette.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/vector/Device.h"
#include "tavro/runtime/Props.h"
#include "tavro/runtime/Resources.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sstream>

namespace Vz::Test {
namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinite = std::numeric_limits<float>::infinity();

/// Counts calls of Invalidate.
struct TInvalidateCount {
    int Calls = 0;
    explicit TInvalidateCount(TControl& control) {
        control.SetOnInvalidate([this](TObject&) { ++Calls; });
    }
    int Take() { return std::exchange(Calls, 0); }
};

/// Draws the whole document in place of what is expected of the control.
std::vector<std::uint32_t> DrawnWhole(TSVGDocument& document, unsigned size) {
    TVZGPBitmap picture(size, size);
    document.FitToRect({0, 0, float(size), float(size)});
    document.Draw(picture.GetCanvas(), document.GetDrawMatrix(), {0, 0, float(size), float(size)});
    return CopyOf(picture);
}

TMatrix Scaled(float factor) { return CreateScaleVZMatrix(factor, factor); }

// Construction

TEST(SVGControl, StartsWithItsDefaults) {
    const auto control = TVZSVGControl::Create();
    EXPECT_EQ(control->ClassName(), "TVZSVGControl");
    EXPECT_TRUE(control->GetBuffered());
    EXPECT_FALSE(control->GetStretch());
    EXPECT_EQ(control->GetQuality(), 1);
    EXPECT_EQ(control->GetOpacity(), 1.0f);
    EXPECT_TRUE(IsIdentityMatrix(control->GetTransform().GetMatrix()));
    EXPECT_EQ(control->GetActiveSVGElement(), nullptr);
    EXPECT_TRUE(control->AreBuffersStale());
    EXPECT_EQ(control->GetBeforeBuffer(), nullptr);
    EXPECT_EQ(control->GetAfterBuffer(), nullptr);
    EXPECT_EQ(control->GetBounds(), (TRect{0, 0, 50, 50}));
    EXPECT_FALSE(control->IsWidthStored());
    EXPECT_EQ(control->GetDocument().GetChildCount(), 0u);
}

class TSizeProbe final : public TCreatable<TSizeProbe, TVZSVGControl> {
public:
    static constexpr std::string_view TypeName = "TSizeProbe";
    using TCreatable::TCreatable;
    std::vector<std::pair<int, int>> Sizes;
    void Resize() override {
        TVZSVGControl::Resize();
        Sizes.emplace_back(GetWidth(), GetHeight());
    }
};

TEST(SVGControl, TakesItsHeightAndThenItsWidth) {
    const auto control = TSizeProbe::Create();
    EXPECT_EQ(control->Sizes, (std::vector<std::pair<int, int>>{{0, 50}, {50, 50}}));
}

TEST(SVGControl, PublishesItsPropertiesInOrder) {
    const auto control = TVZSVGControl::Create();
    std::vector<std::string_view> names;
    for (const TProp& row : control->GetPropTable())
        names.push_back(row.Name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"Buffered", "Stretch", "Quality", "Opacity", "Transform",
                                                    "OnDrawing", "OnDrawn"}));
    const auto rows = control->GetPropTable();
    EXPECT_EQ(rows[0].Default, TValue(true));
    EXPECT_EQ(rows[1].Default, TValue(false));
    EXPECT_EQ(rows[2].Default, TValue(std::int64_t{1}));
    EXPECT_EQ(rows[3].Default, TValue(1.0f));
    EXPECT_EQ(rows[4].GetObject(*control), &control->GetTransform());
    EXPECT_EQ(rows[5].Type.Kind, TValueKind::Event);
    EXPECT_FALSE(rows[3].Stored(*control));
    control->SetOpacity(0.999f);
    EXPECT_TRUE(rows[3].Stored(*control));
}

TEST(SVGControl, IsOfferedOnThePageSVG) {
    Register();
    Register();
    const auto palette = GetPalette();
    EXPECT_EQ(std::count(palette.begin(), palette.end(), TPaletteEntry{"SVG", "TVZSVGControl"}), 1);
    EXPECT_EQ(std::count_if(palette.begin(), palette.end(), [](const auto& e) { return e.Page == "SVG"; }),
              1);
}

// Setters

TEST(SVGControl, OpacityIsClampedAfterItIsCompared) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Control->SetOpacity(1.0f);
    EXPECT_EQ(count.Take(), 0);
    scene.Control->SetOpacity(1.5f); // another value, though it becomes the same
    EXPECT_EQ(scene.Control->GetOpacity(), 1.0f);
    EXPECT_EQ(count.Take(), 1);
    scene.Control->SetOpacity(0.25f);
    EXPECT_EQ(count.Take(), 1);
    scene.Control->SetOpacity(-0.2f);
    EXPECT_EQ(scene.Control->GetOpacity(), 0.0f);
    EXPECT_EQ(count.Take(), 1);
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    scene.Control->SetOpacity(NotANumber);
    EXPECT_EQ(scene.Control->GetOpacity(), 0.0f);
    EXPECT_EQ(count.Take(), 0);
    scene.Control->SetOpacity(Infinite);
    EXPECT_EQ(scene.Control->GetOpacity(), 1.0f);
    scene.Control->SetOpacity(-Infinite);
    EXPECT_EQ(scene.Control->GetOpacity(), 0.0f);
    EXPECT_EQ(count.Take(), 2);
}

TEST(SVGControl, OpacityZeroPaintsNothing) {
    TScene scene;
    for (const bool isActive : {false, true}) {
        if (isActive) scene.Activate("NeedleGroup");
        scene.Control->SetOpacity(-0.2f);
        const auto picture = scene.Paint();
        EXPECT_EQ(std::count(picture.begin(), picture.end(), 0u), 100 * 100);
    }
}

TEST(SVGControl, QualityIsClamped) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Control->SetQuality(0);
    EXPECT_EQ(scene.Control->GetQuality(), 1);
    EXPECT_EQ(count.Take(), 0);
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    scene.Control->SetQuality(20);
    EXPECT_EQ(scene.Control->GetQuality(), 8);
    EXPECT_EQ(count.Take(), 1);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    scene.Control->SetQuality(20);
    EXPECT_EQ(count.Take(), 0);
    scene.Control->SetQuality(std::numeric_limits<int>::min());
    EXPECT_EQ(scene.Control->GetQuality(), 1);
}

TEST(SVGControl, StretchMarksStaleAndInvalidates) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Control->SetStretch(false);
    EXPECT_EQ(count.Take(), 0);
    scene.Control->SetStretch(true);
    EXPECT_EQ(count.Take(), 1);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
}

TEST(SVGControl, BufferedSetsTheStaleMarkToItself) {
    TScene scene;
    TInvalidateCount count(*scene.Control);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    scene.Control->SetBuffered(false);
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    scene.Control->SetBuffered(true);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    EXPECT_EQ(count.Take(), 0);
}

TEST(SVGControl, ActiveElementMarksStaleWithoutInvalidating) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Activate("NeedleGroup");
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    scene.Activate("Mark");
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), &scene.Get("Mark"));
    EXPECT_EQ(count.Take(), 0);
}

TEST(SVGControl, TransformIsCopiedAndInvalidates) {
    TScene scene;
    TInvalidateCount count(*scene.Control);
    TVZTransform transform;
    transform.SetMatrix(Scaled(2));
    scene.Control->SetTransform(transform);
    EXPECT_EQ(scene.Control->GetTransform().GetMatrix(), Scaled(2));
    EXPECT_EQ(count.Take(), 1);
    scene.Control->SetTransform(transform);
    EXPECT_EQ(count.Take(), 0);
    transform.SetMatrix(Scaled(3));
    EXPECT_EQ(scene.Control->GetTransform().GetMatrix(), Scaled(2));
    scene.Control->GetTransform().SetMatrix(Scaled(NotANumber));
    EXPECT_EQ(scene.Control->GetTransform().GetMatrix(), Scaled(2));
    EXPECT_EQ(count.Take(), 0);
}

TEST(SVGControl, TransformRefersToTheClientRectangle) {
    TScene scene(1, 70, 30);
    EXPECT_EQ(scene.Control->GetTransform().GetShapeRect(), (TRectF{0, 0, 70, 30}));
}

TEST(SVGControl, ResizeMarksStale) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    ASSERT_FALSE(scene.Control->AreBuffersStale());
    scene.Control->SetHeight(90);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
}

TEST(SVGControl, EnabledReachesTheDocument) {
    TScene scene;
    scene.Activate("NeedleGroup");
    const auto bright = scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Control->SetEnabled(false);
    EXPECT_FALSE(scene.Control->GetDocument().GetEnabled());
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    EXPECT_EQ(count.Take(), 1);
    const auto grey = scene.PaintStale();
    for (const std::uint32_t pixel : grey)
        ASSERT_LE(std::abs(int(RedOf(pixel)) - int(BlueOf(pixel))), 2);
    EXPECT_NE(grey, bright);
    scene.Control->LoadFromText(DialSvg); // a new content is greyed as well
    EXPECT_FALSE(scene.Control->GetDocument().GetEnabled());
    scene.Activate("NeedleGroup");
    scene.Control->SetEnabled(true);
    EXPECT_EQ(scene.Paint(), bright);
}

TEST(SVGControl, IsBufferedByPropertyOrOpacity) {
    const auto control = TVZSVGControl::Create();
    EXPECT_TRUE(control->IsBuffered());
    control->SetBuffered(false);
    EXPECT_FALSE(control->IsBuffered());
    control->SetOpacity(0.5f);
    EXPECT_TRUE(control->IsBuffered());
}

// Place

TEST(SVGControl, DrawRectIsCentredAndKeepsTheAspectRatio) {
    TScene scene(1, 200, 100);
    EXPECT_EQ(scene.Control->GetDrawRect(), (TRectF{50, 0, 150, 100}));
    scene.Control->SetBounds(0, 0, 60, 180);
    const TRectF tall = scene.Control->GetDrawRect();
    EXPECT_NEAR(tall.Left, 0, 1e-4);
    EXPECT_NEAR(tall.Top, 60, 1e-4);
    EXPECT_NEAR(tall.Right, 60, 1e-4);
    EXPECT_NEAR(tall.Bottom, 120, 1e-4);
    scene.Control->SetStretch(true);
    EXPECT_EQ(scene.Control->GetDrawRect(), (TRectF{0, 0, 60, 180}));
}

TEST(SVGControl, PictureFillsItsDrawRect) {
    TScene scene(1, 40, 20);
    scene.Control->LoadFromText(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><rect width="10" height="10"/></svg>)");
    for (const bool stretch : {false, true}) {
        scene.Control->SetStretch(stretch);
        scene.Paint();
        const std::uint32_t side = stretch ? 0xFF000000u : 0u;
        EXPECT_EQ(scene.PixelAt(9, 10), side);
        EXPECT_EQ(scene.PixelAt(10, 0), 0xFF000000u);
        EXPECT_EQ(scene.PixelAt(29, 19), 0xFF000000u);
        EXPECT_EQ(scene.PixelAt(30, 10), side);
    }
}

TEST(SVGControl, PaintingSetsBothAlignments) {
    TScene scene;
    TSVGDocument& document = scene.Control->GetDocument();
    document.GetPreserveAspectRatio().SetAlign(TSVGAlign::XMaxYMax);
    document.GetViewPreserveAspectRatio().SetAlign(TSVGAlign::XMaxYMax);
    scene.Paint();
    EXPECT_EQ(document.GetPreserveAspectRatio().GetAlign(), TSVGAlign::XMidYMid);
    EXPECT_EQ(document.GetViewPreserveAspectRatio().GetAlign(), TSVGAlign::XMidYMid);
    scene.Control->SetStretch(true);
    scene.Paint();
    EXPECT_EQ(document.GetPreserveAspectRatio().GetAlign(), TSVGAlign::None);
    EXPECT_EQ(document.GetViewPreserveAspectRatio().GetAlign(), TSVGAlign::None);
}

TEST(SVGControl, AlignmentsGoBeforeTheArtworksOwn) {
    // A view box of 10 by 10 in 100 by 50 natural pixels, shown in 100 by 100.
    for (const char* own : {"xMinYMin", "none", "xMaxYMax meet"}) {
        TScene scene;
        scene.Control->LoadFromText(
            std::string(R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="50"
            viewBox="0 0 10 10" preserveAspectRatio=")") +
            own + R"("><rect width="10" height="10"/></svg>)");
        scene.Paint();
        EXPECT_EQ(scene.PixelAt(24, 50), 0u) << own;
        EXPECT_EQ(scene.PixelAt(26, 50), 0xFF000000u) << own;
        EXPECT_EQ(scene.PixelAt(74, 50), 0xFF000000u) << own;
        EXPECT_EQ(scene.PixelAt(76, 50), 0u) << own;
        scene.Control->SetStretch(true);
        scene.Paint();
        for (const int place : {0, 99}) {
            EXPECT_EQ(scene.PixelAt(place, 50), 0xFF000000u) << own;
            EXPECT_EQ(scene.PixelAt(50, place), 0xFF000000u) << own;
        }
        const std::string written = scene.Control->GetDocument().WriteText();
        EXPECT_NE(written.find(std::string("preserveAspectRatio=\"") + std::string(own).substr(0, 4)),
                  std::string::npos)
            << "the file keeps what it said";
    }
}

TEST(SVGControl, AbsoluteMatrixIsOwnThenParents) {
    const auto outer = TVZSVGControl::Create();
    const auto inner = TVZSVGControl::Create();
    outer->GetTransform().SetMatrix(CreateTranslateVZMatrix(10, 20));
    inner->GetTransform().SetMatrix(Scaled(2));
    EXPECT_EQ(inner->GetAbsoluteMatrix(), Scaled(2));
    inner->SetParent(outer.get());
    EXPECT_EQ(inner->GetAbsoluteMatrix(), VZMatrixMultiply(Scaled(2), CreateTranslateVZMatrix(10, 20)));
    EXPECT_EQ(inner->GetAbsoluteMatrix().M31, 10.0f); // the other way round it were 20
    const auto form = TVZForm::Create();
    inner->SetParent(form.get());
    EXPECT_EQ(inner->GetAbsoluteMatrix(), Scaled(2));
}

TEST(SVGControl, GetMatrixLeavesTheMatrixAsItIs) {
    const auto control = TVZSVGControl::Create();
    control->GetTransform().SetMatrix(Scaled(2));
    TMatrix matrix = CreateTranslateVZMatrix(3, 4);
    control->GetMatrix(matrix);
    EXPECT_EQ(matrix, CreateTranslateVZMatrix(3, 4));
}

TEST(SVGControl, TransformMovesThePicture) {
    TScene scene;
    scene.Control->LoadFromText(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><rect id="R" width="10" height="10"/>
           <rect id="S" width="5" height="5" fill="none"/></svg>)");
    scene.Control->GetTransform().SetMatrix(VZMatrixMultiply(Scaled(0.5f), CreateTranslateVZMatrix(20, 30)));
    for (const bool isActive : {false, true}) {
        if (isActive) scene.Activate("S");
        scene.Paint();
        EXPECT_EQ(scene.PixelAt(19, 40), 0u);
        EXPECT_EQ(scene.PixelAt(20, 30), 0xFF000000u);
        EXPECT_EQ(scene.PixelAt(69, 79), 0xFF000000u);
        EXPECT_EQ(scene.PixelAt(70, 79), 0u);
    }
}

// Caches

TEST(SVGControl, WithoutAnActiveElementTheDocumentIsDrawnDirectly) {
    TScene scene;
    int drawn = 0;
    scene.Control->SetOnDrawn([&](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF& rect) {
        EXPECT_EQ(rect, (TRectF{0, 0, 100, 100}));
        ++drawn;
    });
    const auto picture = scene.Paint();
    EXPECT_EQ(drawn, 1);
    EXPECT_EQ(scene.Control->GetBeforeBuffer(), nullptr);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    EXPECT_EQ(picture, DrawnWhole(scene.Control->GetDocument(), 100));
}

TEST(SVGControl, EventsAreTheDocumentsOwn) {
    TScene scene;
    int asked = 0;
    scene.Control->SetOnDrawing(
        [&](TObject& sender, const TMatrix& matrix, TVZGPCanvas&, const TRectF& rect, bool& handled) {
            EXPECT_EQ(&sender, &scene.Control->GetDocument());
            EXPECT_EQ(rect, (TRectF{0, 0, 100, 100}));
            EXPECT_TRUE(IsIdentityMatrix(matrix));
            handled = true;
            ++asked;
        });
    const auto picture = scene.Paint();
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(scene.Control->GetDocument().OnDrawing);
    EXPECT_EQ(std::count(picture.begin(), picture.end(), 0u), 100 * 100); // handled: nothing drawn
    scene.Control->SetOnDrawing(nullptr);
    EXPECT_FALSE(scene.Control->GetDocument().OnDrawing);
}

TEST(SVGControl, EventsAreRaisedByBufferedPaintingsToo) {
    TScene scene(1, 200, 100);
    scene.Activate("NeedleGroup");
    const auto plain = scene.Paint();
    std::string order;
    bool isHandled = false;
    scene.Control->SetOnDrawing(
        [&](TObject& sender, const TMatrix& matrix, TVZGPCanvas&, const TRectF& rect, bool& handled) {
            EXPECT_EQ(&sender, &scene.Control->GetDocument());
            EXPECT_EQ(rect, (TRectF{50, 0, 150, 100}));
            EXPECT_EQ(matrix.M31, 50.0f);
            EXPECT_FALSE(handled);
            handled = isHandled;
            order += 'b';
        });
    scene.Control->SetOnDrawn([&](TObject&, const TMatrix& matrix, TVZGPCanvas&, const TRectF& rect) {
        EXPECT_EQ(rect, (TRectF{50, 0, 150, 100}));
        EXPECT_EQ(matrix.M31, 50.0f);
        order += 'a';
    });
    EXPECT_EQ(scene.Paint(), plain);
    EXPECT_EQ(order, "ba") << "once a painting, not once a part or a cache";
    scene.Control->MarkBuffersStale();
    scene.Paint();
    EXPECT_EQ(order, "baba");
    isHandled = true;
    const auto picture = scene.Paint();
    EXPECT_EQ(order, "bababa");
    EXPECT_EQ(std::count(picture.begin(), picture.end(), 0u), 200 * 100);
    isHandled = false;
    EXPECT_EQ(scene.Paint(), plain);
}

TEST(SVGControl, HandlersOfADrawingMayTakeThemselvesAway) {
    for (const bool isActive : {false, true}) {
        TScene scene;
        if (isActive) scene.Activate("NeedleGroup");
        const auto plain = scene.Paint();
        const std::string text(100, 'x'); // what a handler captures lives until it returns
        std::size_t told = 0;
        scene.Control->SetOnDrawing([&, text](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&, bool&) {
            scene.Control->SetOnDrawing(nullptr);
            told += text.size();
        });
        scene.Control->SetOnDrawn([&, text](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&) {
            scene.Control->SetOnDrawn(nullptr);
            told += text.size();
        });
        EXPECT_EQ(scene.Paint(), plain);
        EXPECT_EQ(scene.Paint(), plain);
        EXPECT_EQ(told, 200u);
    }
}

TEST(SVGControl, HandlerOfADrawingMayTakeTheActiveElementAway) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    scene.Control->SetOnDrawing([&](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&, bool&) {
        if (auto* const needle = scene.Control->GetDocument().FindElement("NeedleGroup")) needle->Remove();
    });
    EXPECT_EQ(scene.Paint(), DrawnWhole(scene.Control->GetDocument(), 100));
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
}

TEST(SVGControl, UpdateBuffersNeedsAnActiveElementAndTheStaleMark) {
    TScene scene;
    scene.Control->UpdateBuffers();
    EXPECT_EQ(scene.Control->GetBeforeBuffer(), nullptr);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    scene.Activate("NeedleGroup");
    scene.Control->UpdateBuffers();
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    ASSERT_NE(scene.Control->GetBeforeBuffer(), nullptr);
    const auto before = CopyOf(*scene.Control->GetBeforeBuffer());
    scene.Get("Face").SetVisible(false);
    scene.Control->UpdateBuffers();
    EXPECT_EQ(CopyOf(*scene.Control->GetBeforeBuffer()), before);
    scene.Control->MarkBuffersStale();
    scene.Control->UpdateBuffers();
    EXPECT_NE(CopyOf(*scene.Control->GetBeforeBuffer()), before);
}

TEST(SVGControl, EqualPicturesAreKeptOnce) {
    TScene scenes[3];
    for (TScene& scene : scenes)
        scene.Activate("NeedleGroup");
    scenes[2].Get("Face").SetVisible(false);
    for (TScene& scene : scenes)
        scene.Control->UpdateBuffers();
    const auto* const before = scenes[0].Control->GetBeforeBuffer();
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(scenes[1].Control->GetBeforeBuffer(), before);
    EXPECT_NE(scenes[2].Control->GetBeforeBuffer(), before);
    // What one of them draws anew is its own; the other's stays.
    const auto pixels = CopyOf(*before);
    scenes[0].Get("Face").SetVisible(false);
    scenes[0].Control->MarkBuffersStale();
    scenes[0].Control->UpdateBuffers();
    EXPECT_EQ(scenes[1].Control->GetBeforeBuffer(), before);
    EXPECT_EQ(CopyOf(*before), pixels);
    EXPECT_EQ(scenes[0].Control->GetBeforeBuffer(), scenes[2].Control->GetBeforeBuffer());
    // And back.
    scenes[0].Get("Face").SetVisible(true);
    scenes[0].Control->MarkBuffersStale();
    scenes[0].Control->UpdateBuffers();
    EXPECT_EQ(scenes[0].Control->GetBeforeBuffer(), before);
}

TEST(SVGControl, PicturesDrawnAnewInPlaceAreFoundAsTheyAre) {
    TScene first;
    TScene second;
    first.Activate("NeedleGroup");
    second.Activate("NeedleGroup");
    first.Control->UpdateBuffers();
    first.Get("Face").SetVisible(false);
    first.Control->MarkBuffersStale();
    first.Control->UpdateBuffers();
    second.Control->UpdateBuffers();
    EXPECT_NE(second.Control->GetBeforeBuffer(), first.Control->GetBeforeBuffer());
    EXPECT_NE(CopyOf(*second.Control->GetBeforeBuffer()), CopyOf(*first.Control->GetBeforeBuffer()));
}

TEST(SVGControl, CachesHoldWhatIsBeforeAndWhatIsAfter) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    const TPixels before = scene.Control->GetBeforeBuffer()->GetPixels();
    const TPixels after = scene.Control->GetAfterBuffer()->GetPixels();
    EXPECT_EQ(before.Row(64)[30], 0xFF008800u); // the mark
    EXPECT_EQ(after.Row(64)[30], 0u);
    EXPECT_EQ(after.Row(82)[50], 0xFF0000FFu);   // the emblem
    EXPECT_EQ(AlphaOf(after.Row(50)[50]), 128u); // the cap
    EXPECT_NE(before.Row(54)[50], 0xFFFFD700u);  // the hub is in neither
    EXPECT_EQ(after.Row(54)[55], 0u);
}

TEST(SVGControl, CachesHaveTheControlsSizeTimesTheQuality) {
    TScene scene(1, 60, 40);
    scene.Activate("NeedleGroup");
    const auto expectSize = [&](unsigned width, unsigned height) {
        scene.Paint();
        EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetWidth(), width);
        EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetHeight(), height);
        EXPECT_EQ(scene.Control->GetAfterBuffer()->GetWidth(), width);
        EXPECT_EQ(scene.Control->GetAfterBuffer()->GetHeight(), height);
    };
    expectSize(40, 40);
    scene.Control->SetQuality(2);
    expectSize(80, 80);
    scene.Control->SetStretch(true);
    expectSize(120, 80);
    scene.Control->SetQuality(8);
    expectSize(480, 320);
    scene.Control->SetQuality(1);
    expectSize(60, 40);
    scene.Control->GetTransform().SetMatrix(CreateRotationVZMatrix({30, 20}, 0.3f));
    expectSize(60, 40);
}

TEST(SVGControl, CachesAreRebuiltForAnotherDeviceScale) {
    TScene scene(1, 60, 40);
    scene.Activate("NeedleGroup");
    scene.Paint();
    for (const auto& [scale, quality, size] :
         {std::tuple{2.0, 1, 80u}, {1.5, 1, 60u}, {1.5, 2, 120u}, {2.0, 2, 160u}}) {
        scene.Control->SetQuality(quality);
        scene.Control->UpdateBuffers();
        EXPECT_FALSE(scene.Control->AreBuffersStale());
        scene.Host.SetScale(scale);
        scene.Paint();
        EXPECT_EQ(scene.Control->GetBeforeBuffer()->GetWidth(), size) << scale;
        EXPECT_EQ(scene.Control->GetAfterBuffer()->GetHeight(), size) << scale;
    }
}

TEST(SVGControl, ActiveElementIsNeverCached) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    EXPECT_EQ(scene.PixelAt(50, 55), 0xFFFFD700u);
    scene.Get("Hub").GetBrush().SetColor(0xFF00FFFF);
    scene.Paint();
    EXPECT_EQ(scene.PixelAt(50, 55), 0xFF00FFFFu);
    scene.Get("NeedleGroup").SetVisible(false);
    scene.Paint();
    EXPECT_NE(scene.PixelAt(50, 55), 0xFF00FFFFu);
}

TEST(SVGControl, OtherElementsNeedTheStaleMark) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    EXPECT_EQ(scene.PixelAt(30, 64), 0xFF008800u);
    scene.Get("Mark").GetBrush().SetColor(0xFFFF0000);
    scene.Paint();
    EXPECT_EQ(scene.PixelAt(30, 64), 0xFF008800u);
    scene.Control->MarkBuffersStale();
    scene.Paint();
    EXPECT_EQ(scene.PixelAt(30, 64), 0xFFFF0000u);
}

TEST(SVGControl, ElementInALayerIsPaintedUnbuffered) {
    TScene scene;
    const auto whole = scene.Paint();
    scene.Activate("Glass"); // its group is laid down as one
    EXPECT_EQ(scene.Paint(), whole);
    EXPECT_EQ(scene.Control->GetBeforeBuffer(), nullptr);
}

TEST(SVGControl, ActiveElementThatLeavesTheDocumentIsForgotten) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    const auto removed = scene.Get("NeedleGroup").Remove();
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
    EXPECT_EQ(scene.Paint(), DrawnWhole(scene.Control->GetDocument(), 100));

    scene.Activate("Ticks");
    scene.Control->GetDocument().RemoveChildren(); // destroyed
    scene.Control->Invalidate();
    scene.Paint();
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
}

TEST(SVGControl, ActiveElementIsForgottenByIdentity) {
    TScene scene;
    TSVGDocument& document = scene.Control->GetDocument();
    // An element of the same class often comes to stand where the last one was.
    for (int i = 0; i < 20; ++i) {
        auto& path = document.Add<TSVGPath>();
        scene.Control->SetActiveSVGElement(&path);
        EXPECT_EQ(scene.Control->GetActiveSVGElement(), &path);
        path.Remove();
        document.Add<TSVGPath>();
        EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
    }
    // The same one taken out and put back has left, too.
    scene.Activate("NeedleGroup");
    document.AddChild(scene.Get("NeedleGroup").Remove());
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
    scene.Activate("NeedleGroup");
    document.LoadFromText(DialSvg);
    document.LoadFromText(DialSvg);
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
    EXPECT_TRUE(scene.Control->AreBuffersStale());
}

TEST(SVGControl, ElementOfAnotherDocumentIsNotActive) {
    TScene scene;
    TScene other;
    scene.Control->SetActiveSVGElement(&other.Get("NeedleGroup"));
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), nullptr);
    EXPECT_EQ(scene.Paint(), other.Paint());
}

// Opacity

/// Two squares, one on the other.
constexpr std::string_view SquaresSvg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="20">
    <rect id="Lower" width="20" height="20"/><rect id="Upper" width="10" height="20" fill="#fff"/></svg>)";

TEST(SVGControl, UnbufferedOpacityIsThatOfThePictureAsAWhole) {
    TScene scene(1, 20, 20);
    scene.Control->LoadFromText(SquaresSvg);
    TSVGDocument& document = scene.Control->GetDocument();
    document.SetOpacity(0.5f);
    int changes = 0;
    document.OnChange = [&](const TSVGChange&) { ++changes; };
    float during = -1;
    scene.Control->SetOnDrawing([&](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&, bool&) {
        during = document.GetOpacity();
    });
    scene.Control->SetOpacity(0.5f);
    scene.Paint();
    EXPECT_EQ(during, 0.25f);
    EXPECT_EQ(document.GetOpacity(), 0.5f);
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(document.OnChange);
    EXPECT_NEAR(AlphaOf(scene.PixelAt(5, 5)), 64, 1); // a quarter, though two squares lie there
    EXPECT_NEAR(AlphaOf(scene.PixelAt(15, 5)), 64, 1);
    EXPECT_NEAR(RedOf(scene.PixelAt(5, 5)), 64, 1);
}

TEST(SVGControl, BufferedOpacityIsThatOfEachPart) {
    TScene scene(1, 20, 20);
    scene.Control->LoadFromText(SquaresSvg);
    scene.Control->SetOpacity(0.5f);
    for (const int quality : {1, 2}) {
        scene.Control->SetQuality(quality);
        scene.Activate("Upper");
        scene.Paint();
        EXPECT_NEAR(AlphaOf(scene.PixelAt(5, 5)), 191, 2) << quality; // 1 - 0.5 * 0.5
        EXPECT_NEAR(RedOf(scene.PixelAt(5, 5)), 128, 2) << quality;
        EXPECT_NEAR(AlphaOf(scene.PixelAt(15, 5)), 128, 2) << quality;
    }
}

// Loading

TEST(SVGControl, MissingResourceRaisesAndChangesNothing) {
    TScene scene;
    scene.Activate("NeedleGroup");
    const auto picture = scene.Paint();
    EXPECT_THROW(scene.Control->LoadSVGResource("NoSuchSVG"), EResNotFound);
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), &scene.Get("NeedleGroup"));
    EXPECT_EQ(scene.Paint(), picture);
}

TEST(SVGControl, EachControlOfAResourceHasADocumentOfItsOwn) {
    ASSERT_FALSE(GetResourceTable().empty());
    const std::string_view name = GetResourceTable().front().Name;
    TScene a;
    TScene b;
    a.Activate("NeedleGroup");
    a.Control->LoadSVGResource(name);
    b.Control->LoadSVGResource(name);
    EXPECT_EQ(a.Control->GetActiveSVGElement(), nullptr);
    EXPECT_TRUE(a.Control->AreBuffersStale());
    const auto picture = a.Paint();
    EXPECT_EQ(b.Paint(), picture);
    TScene parsed;
    parsed.Control->LoadFromText(GetResource(name));
    EXPECT_EQ(parsed.Paint(), picture);
    a.Control->GetDocument().RemoveChildren();
    EXPECT_EQ(b.Paint(), picture);
    TScene c;
    c.Control->LoadSVGResource(name);
    EXPECT_EQ(c.Paint(), picture);
}

TEST(SVGControl, ResourceOfTheProgramIsLoadedByItsName) {
    TScene scene;
    EXPECT_THROW(scene.Control->LoadSVGResource("OwnSquare"), EResNotFound);
    AddResource("OwnSquare",
                R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9"><rect id="Box"/></svg>)");
    scene.Control->LoadSVGResource("OwnSquare");
    EXPECT_NE(scene.Control->GetDocument().FindElement("Box"), nullptr);
    AddResource("OwnBroken", "<svg><g></svg>");
    EXPECT_THROW(scene.Control->LoadSVGResource("OwnBroken"), EReadError);
    EXPECT_NE(scene.Control->GetDocument().FindElement("Box"), nullptr);
}

TEST(SVGControl, BrokenDocumentLeavesTheOldOne) {
    TScene scene;
    scene.Activate("NeedleGroup");
    const auto picture = scene.Paint();
    TInvalidateCount count(*scene.Control);
    EXPECT_THROW(scene.Control->LoadFromText("<svg><g></svg>", "broken.svg"), EReadError);
    EXPECT_THROW(scene.Control->LoadFromText(""), EReadError);
    std::istringstream none("<html/>");
    EXPECT_THROW(scene.Control->LoadFromStream(none), EReadError);
    EXPECT_THROW(scene.Control->LoadFromFile("no such folder/no such file.svg"), EReadError);
    EXPECT_EQ(count.Take(), 0);
    EXPECT_EQ(scene.Control->GetActiveSVGElement(), &scene.Get("NeedleGroup"));
    EXPECT_FALSE(scene.Control->AreBuffersStale());
    EXPECT_EQ(scene.Paint(), picture);
}

TEST(SVGControl, LoadsFromTextStreamAndFile) {
    TScene scene;
    const auto picture = scene.Paint();
    TInvalidateCount count(*scene.Control);
    scene.Control->LoadFromText(SquaresSvg);
    EXPECT_EQ(count.Take(), 1);
    EXPECT_NE(scene.Paint(), picture);
    std::istringstream stream{std::string(DialSvg)};
    scene.Control->LoadFromStream(stream);
    EXPECT_EQ(scene.Paint(), picture);
    const std::string path = testing::TempDir() + "control_test_dial.svg";
    std::ofstream(path) << SquaresSvg;
    scene.Control->LoadFromFile(path);
    EXPECT_EQ(scene.Control->GetDocument().GetWidth(), 20);
    std::remove(path.c_str());
}

// Hit-test

TEST(SVGControl, ElementsAreFoundAtControlPoints) {
    TScene scene(1, 200, 100); // the picture lies at 50..150
    const auto idAt = [&](int x, int y) {
        const TSVGGraphicElement* element = scene.Control->ElementAtControlPoint(x, y);
        return element ? element->GetId() : "";
    };
    EXPECT_EQ(idAt(80, 64), "Mark");
    EXPECT_EQ(idAt(105, 54), "Hub");
    EXPECT_EQ(idAt(100, 50), "Cap");
    EXPECT_EQ(idAt(100, 82), "Emblem"); // the use, not what it draws
    EXPECT_EQ(idAt(51, 1), "");
    EXPECT_EQ(idAt(20, 50), "");
    EXPECT_EQ(idAt(-1000000, 50), "");
    scene.Control->SetStretch(true);
    EXPECT_EQ(idAt(60, 64), "Mark");
    scene.Control->SetStretch(false);
    scene.Control->GetTransform().SetMatrix(CreateTranslateVZMatrix(-30, 10));
    EXPECT_EQ(idAt(50, 74), "Mark");
    scene.Control->GetTransform().SetMatrix(Scaled(0));
    EXPECT_EQ(idAt(50, 50), "");
}

// Limits

TEST(SVGControl, AnySizeIsPainted) {
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 100}, {100, 0}, {1, 1}, {1, 30000}}) {
        SCOPED_TRACE(testing::Message() << width << " by " << height);
        TScene scene(1, width, height);
        scene.Control->SetStretch(true);
        const auto whole = scene.Paint();
        EXPECT_EQ(whole.size(), std::size_t(width * height));
        EXPECT_EQ(std::ranges::all_of(whole, [](std::uint32_t p) { return p == 0; }), whole.empty());
        scene.Activate("NeedleGroup");
        EXPECT_LE(WorstDifference(scene.Paint(), whole), 2) << "from the caches";
        scene.Control->SetQuality(8);
        EXPECT_EQ(scene.Paint().size(), whole.size());
    }
}

TEST(SVGControl, HugeControlIsPaintedWithoutCaches) {
    TVZGPBitmap picture(200, 200);
    std::vector<std::uint32_t> pictures[2];
    for (const bool buffered : {false, true}) {
        TScene scene(1, 100000, 100000);
        scene.Control->SetBuffered(buffered);
        scene.Activate("Mark");
        TRasterDevice device(picture.GetPixels());
        device.Clear(0);
        // The mark's upper left corner lies at (20000, 60000).
        TVZGPCanvas canvas(device, TAffine::Translation(-19900, -59900));
        scene.Control->PaintTo(canvas);
        EXPECT_EQ(scene.Control->GetBeforeBuffer(), nullptr);
        pictures[buffered] = CopyOf(picture);
    }
    EXPECT_EQ(pictures[0][150 * 200 + 150], 0xFF008800u);
    EXPECT_LE(WorstDifference(pictures[0], pictures[1]), 2);
}

TEST(SVGControl, VectorDevicesGetThePartsAndNoPictures) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Host.SetBackground(0xFFFFFFFF);
    for (const float opacity : {1.0f, 0.5f}) {
        scene.Control->SetOpacity(opacity);
        const auto raster = scene.Paint();
        TVZGPBitmap picture(100, 100);
        picture.GetCanvas().Clear(0xFFFFFFFF);
        {
            TVectorDevice device(picture.GetPixels());
            TVZGPCanvas canvas(device);
            scene.Control->PaintTo(canvas);
        }
        const auto vector = CopyOf(picture);
        double sum = 0;
        for (std::size_t i = 0; i < raster.size(); ++i)
            sum += std::abs(int(GreenOf(raster[i])) - int(GreenOf(vector[i])));
        EXPECT_LT(sum / double(raster.size()), 1.5) << opacity; // edges and gradients differ by a little
    }
    EXPECT_FALSE(scene.Control->AreBuffersStale());
}

} // namespace
} // namespace Vz::Test
