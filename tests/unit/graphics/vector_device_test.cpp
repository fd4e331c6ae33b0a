#include "tavro/graphics/vector/Device.h"

#include "tavro/graphics/PathData.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

/// Read by the leak sanitizer: cairo 1.16 loses the recordings of groups that it writes to an SVG file.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libcairo.so"; }

namespace Vz {
namespace {

constexpr int Size = 120;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
using TDrawing = std::function<void(IPaintDevice&)>;

TFigures Read(std::string_view text) {
    TVZPathData path;
    path.SetPathString(text);
    return path.GetFigures();
}

TPaint Solid(TVZGPColor color) {
    TPaint paint;
    paint.Color = color;
    return paint;
}

TPaint Gradient(TPaint::TKind kind, std::vector<TRampStop> stops, double opacity = 1) {
    TPaint paint;
    paint.Kind = kind;
    paint.Start = {20, 30};
    paint.End = {70, 60};
    paint.Center = paint.Focus = {60, 60};
    paint.Radius = 40;
    paint.Ramp = std::make_shared<TGradientRamp>(stops, opacity);
    return paint;
}

void Fill(IPaintDevice& device, std::string_view path, const TPaint& paint, const TAffine& matrix = {}) {
    const TFigures figures = Read(path);
    device.Draw({&figures}, paint, matrix);
}

void Stroke(IPaintDevice& device, std::string_view path, const TStrokeStyle& style,
            const TAffine& matrix = {}) {
    const TFigures figures = Read(path);
    device.Draw({&figures, &style}, Solid(0xFF204080), matrix);
}

constexpr const char* Everything = "M0 0H120V120H0Z";
constexpr const char* Blob = "M20 20C60-10 130 40 100 100Q60 120 40 90T20 20Z";

/// Draws with both devices and compares: the mean difference of all channels, and how many pixels differ by
/// much.
void ExpectAlike(const TDrawing& draw, double meanLimit = 0.4, int manyLimit = 12) {
    TVZGPBitmap pixels(Size, Size), curves(Size, Size);
    std::fill_n(pixels.GetPixels().Data, Size * Size, 0xFFF0E0D0u);
    std::fill_n(curves.GetPixels().Data, Size * Size, 0xFFF0E0D0u);
    {
        TRasterDevice device(pixels.GetPixels());
        draw(device);
    }
    TVectorDevice device(curves.GetPixels());
    draw(device);
    EXPECT_EQ(device.Finish(), "");
    double sum = 0;
    int many = 0, changed = 0;
    for (int i = 0; i < Size * Size; ++i) {
        const std::uint32_t a = pixels.GetPixels().Data[i], b = curves.GetPixels().Data[i];
        int worst = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const int difference = std::abs(int(a >> shift & 255u) - int(b >> shift & 255u));
            sum += difference;
            worst = std::max(worst, difference);
        }
        many += worst > 24;
        changed += a != 0xFFF0E0D0u;
    }
    EXPECT_LT(sum / (4 * Size * Size), meanLimit);
    EXPECT_LE(many, manyLimit);
    EXPECT_GT(changed, 20) << "the case draws nothing";
}

TEST(VectorDevice, Fills) {
    ExpectAlike([](IPaintDevice& device) { Fill(device, Blob, Solid(0xFF3060C0)); });
    ExpectAlike([](IPaintDevice& device) { Fill(device, Blob, Solid(0x803060C0), TAffine::Rotation(0.3)); });
    ExpectAlike([](IPaintDevice& device) {
        const TFigures star = Read("M60 5L95 110 5 45H115L25 110Z");
        device.Draw({&star, nullptr, TFillRule::EvenOdd}, Solid(0xFF3060C0), {});
    });
    ExpectAlike([](IPaintDevice& device) {
        Fill(device, "M10 60A50 30 30 1 1 60 100A20 20 0 0 0 10 60", Solid(0xFFC06030));
    });
}

TEST(VectorDevice, Strokes) {
    for (const TLineJoin join : {TLineJoin::Miter, TLineJoin::MiterClip, TLineJoin::Round, TLineJoin::Bevel})
        for (const TLineCap cap : {TLineCap::Butt, TLineCap::Round, TLineCap::Square}) {
            TStrokeStyle style;
            style.Width = 12;
            style.Join = join;
            style.Cap = cap;
            ExpectAlike([&](IPaintDevice& device) {
                Stroke(device, "M15 100L40 20 65 100M80 20H105V50ZM80 90H80", style);
            });
            style.Dashes = {14, 20};
            style.DashOffset = 5;
            ExpectAlike([&](IPaintDevice& device) { Stroke(device, "M20 20H100V100H20ZM40 60H80", style); });
        }
    TStrokeStyle wide;
    wide.Width = 10;
    ExpectAlike([&](IPaintDevice& device) {
        Stroke(device, "M10 30A25 30 0 0 1 50 30", wide, {2, 0, 0.5, 1, 0, 40});
    });
    wide.Dashes = {0, 16};
    wide.Cap = TLineCap::Round;
    ExpectAlike([&](IPaintDevice& device) { Stroke(device, "M20 60A40 40 0 1 1 100 60", wide); });
}

TEST(VectorDevice, Gradients) {
    const std::vector<TRampStop> stops{
        {0, 0xFFFF0000}, {0.5f, 0xFF00FF00}, {0.5f, 0xFFFFFF00}, {1, 0xFF0000FF}};
    for (const TSpread spread : {TSpread::Pad, TSpread::Reflect, TSpread::Repeat})
        for (const auto kind : {TPaint::TKind::Linear, TPaint::TKind::Radial}) {
            TPaint paint = Gradient(kind, stops);
            paint.Spread = spread;
            paint.Matrix = {1, 0.1, 0.2, 0.8, 3, 4};
            ExpectAlike([&](IPaintDevice& device) { Fill(device, Blob, paint); }, 1.5, 600);
        }
}

TEST(VectorDevice, AlphaIsMixedAsWritten) {
    // Premultiplied, the way from red to nothing would stay red; as it is written it goes through grey.
    const std::vector<TRampStop> stops{{0, 0xFFFF0000}, {1, 0x0000FF00}};
    for (const auto kind : {TPaint::TKind::Linear, TPaint::TKind::Radial})
        ExpectAlike([&](IPaintDevice& device) { Fill(device, Everything, Gradient(kind, stops, 0.8)); }, 1,
                    0);
}

TEST(VectorDevice, FocalGradients) {
    const std::vector<TRampStop> stops{{0, 0xFFFFFFFF}, {1, 0xFF000080}};
    TPaint paint = Gradient(TPaint::TKind::Radial, stops);
    paint.Focus = {45, 50};
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Everything, paint); }, 1, 0);
    paint.FocusRadius = 12;
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Everything, paint); }, 1, 0);
    paint.FocusRadius = 0;
    paint.Focus = {20, 60}; // on the rim
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Everything, paint); }, 1.5, 60);
    paint.Focus = {-20, 60}; // outside: a cone, nothing beside it
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Everything, paint); }, 1.5, 60);
}

TEST(VectorDevice, GradientsWithoutExtentShowTheirLastColour) {
    const std::vector<TRampStop> stops{{0, 0xFFFFFFFF}, {1, 0xFF000080}};
    TPaint linear = Gradient(TPaint::TKind::Linear, stops);
    linear.End = linear.Start;
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Blob, linear); });
    TPaint radial = Gradient(TPaint::TKind::Radial, stops, 0.5);
    radial.Radius = 0;
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Blob, radial); });
}

TLayerStyle Faint() {
    TLayerStyle style;
    style.Opacity = 0.5;
    return style;
}

std::shared_ptr<TVZGPBitmap> Tile() {
    auto tile = std::make_shared<TVZGPBitmap>(8, 8);
    TRasterDevice device(tile->GetPixels());
    Fill(device, "M0 0H4V4H0Z", Solid(0xFFFF0000));
    Fill(device, "M4 4H8V8H4Z", Solid(0x8000FF00));
    return tile;
}

TEST(VectorDevice, Images) {
    const auto tile = Tile();
    TPaint pattern;
    pattern.Kind = TPaint::TKind::Image;
    pattern.Image = tile;
    pattern.Matrix = TAffine::Translation(3, 5);
    pattern.Interpolation = TInterpolation::Nearest;
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Blob, pattern); });
    pattern.Opacity = 0.5;
    ExpectAlike([&](IPaintDevice& device) { Fill(device, Blob, pattern); });
    const TPixels pixels = tile->GetPixels();
    const auto draw = [&](const TAffine& matrix, double opacity, TInterpolation mode) {
        return [=](IPaintDevice& device) { device.DrawImage(pixels, matrix, opacity, mode); };
    };
    ExpectAlike(draw(TAffine::Translation(10, 20), 1, TInterpolation::Bilinear));
    ExpectAlike(draw(TAffine::Translation(10, 20), 0.3, TInterpolation::Bilinear));
    ExpectAlike(draw({10, 0, 0, 12, 5, 5}, 1, TInterpolation::Nearest));
    ExpectAlike(draw({10, 3, -3, 10, 30, 5}, 1, TInterpolation::Bilinear), 1);
}

TEST(VectorDevice, Clips) {
    const TFigures left = Read("M10 10H70V110H10Z"),
                   circle = Read("M60 60a30 30 0 1 0 60 0a30 30 0 1 0-60 0Z");
    const std::vector<TClipShape> one{{{&left}, TAffine::Rotation(0.1)}};
    const std::vector<TClipShape> both{{{&left}, {}}, {{&circle}, TAffine::Translation(-10, 0)}};
    ExpectAlike([&](IPaintDevice& device) {
        device.PushClip(one);
        Fill(device, Blob, Solid(0xFF3060C0));
        device.PopClip();
        Fill(device, "M100 100H120V120H100Z", Solid(0xFF000000));
    });
    ExpectAlike([&](IPaintDevice& device) {
        device.PushClip(both);
        device.PushClip(one);
        Fill(device, Everything, Solid(0x803060C0));
        device.PopClip();
        Fill(device, Blob, Solid(0x80FF0000));
        device.PopClip();
        Fill(device, "M100 100H120V120H100Z", Solid(0xFF000000));
    });
    ExpectAlike([&](IPaintDevice& device) {
        device.PushClip({});
        Fill(device, Everything, Solid(0xFF3060C0));
        device.PopClip();
        Fill(device, "M100 100H120V120H100Z", Solid(0xFF000000));
    });
}

TEST(VectorDevice, ClipBounds) {
    TVZGPBitmap bitmap(Size, Size);
    TVectorDevice device(bitmap.GetPixels());
    EXPECT_EQ(device.GetClipBounds(), (TRect{0, 0, Size, Size}));
    const TFigures box = Read("M10.5 10H70V110.5H10.5Z");
    device.PushClip(std::vector<TClipShape>{{{&box}, {}}});
    EXPECT_EQ(device.GetClipBounds(), (TRect{10, 10, 70, 111}));
    device.PushClip({});
    EXPECT_TRUE(device.GetClipBounds().IsEmpty());
    device.PopClip();
    device.PopClip();
    TVectorDevice pdf(TVectorDevice::TFormat::Pdf, 300, 200);
    EXPECT_EQ(pdf.GetClipBounds(), (TRect{0, 0, 300, 200}));
    EXPECT_TRUE(pdf.IsVector());
}

TEST(VectorDevice, Layers) {
    const TRect bounds{20, 20, 100, 90};
    for (int mode = 0; mode <= static_cast<int>(TBlendMode::Luminosity); ++mode) {
        SCOPED_TRACE(mode);
        // cairo's pixels of the four modes that part hue from lightness are coarse: for 0x3060C0 over
        // 0x40A060 its saturation is 25 off the formula, so only the mean counts there.
        const bool isCoarse = mode >= static_cast<int>(TBlendMode::Hue);
        ExpectAlike(
            [&](IPaintDevice& device) {
                Fill(device, "M0 0H60V120H0Z", Solid(0xFF40A060));
                device.PushLayer({0.75, static_cast<TBlendMode>(mode), &bounds});
                Fill(device, Blob, Solid(0xFFC04020));
                Fill(device, "M0 50H120V70H0Z", Solid(0xFF3060C0));
                device.PopLayer();
            },
            isCoarse ? 2 : 1, isCoarse ? Size * Size : 12);
    }
}

TEST(VectorDevice, Masks) {
    for (const TMaskKind kind : {TMaskKind::Alpha, TMaskKind::Luminance, TMaskKind::LinearLuminance}) {
        SCOPED_TRACE(static_cast<int>(kind));
        ExpectAlike([&](IPaintDevice& device) {
            device.PushLayer({});
            Fill(device, Blob, Solid(0xFF3060C0));
            device.PushMask(kind);
            Fill(device, "M20 20H100V60H20Z", Solid(0xFFFFFFFF));
            Fill(device, "M20 60H100V100H20Z", Solid(0x80FF8000));
            device.PushLayer(Faint());
            Fill(device, "M60 20H120V120H60Z", Solid(0xFF00FF00));
            device.PopLayer();
            device.PopMask();
            Fill(device, "M0 100H20V120H0Z", Solid(0xFF000000));
            device.PopLayer();
        });
    }
}

void DrawAll(IPaintDevice& device) {
    const std::vector<TRampStop> stops{{0, 0xFFFF0000}, {1, 0x000000FF}};
    Fill(device, Blob, Gradient(TPaint::TKind::Linear, stops));
    TStrokeStyle style;
    style.Dashes = {3, 2};
    Stroke(device, Blob, style);
    const auto tile = Tile();
    device.DrawImage(tile->GetPixels(), {2, 0, 0, 2, 5, 5}, 0.5, TInterpolation::Bicubic);
    device.PushLayer({0.5, TBlendMode::Screen, nullptr});
    Fill(device, Blob, Gradient(TPaint::TKind::Radial, stops));
    device.PushMask(TMaskKind::Luminance);
    Fill(device, Blob, Solid(0xFF808080));
    device.PopMask();
    device.PopLayer();
}

TEST(VectorDevice, Files) {
    TVectorDevice pdf(TVectorDevice::TFormat::Pdf, 96, 192);
    DrawAll(pdf);
    const std::string pdfBytes = pdf.Finish();
    EXPECT_TRUE(pdfBytes.starts_with("%PDF-"));
    EXPECT_NE(pdfBytes.find("/MediaBox [ 0 0 72 144 ]"), std::string::npos);
    EXPECT_TRUE(pdfBytes.ends_with("%%EOF\n"));
    TVectorDevice svg(TVectorDevice::TFormat::Svg, 96, 192);
    DrawAll(svg);
    const std::string svgBytes = svg.Finish();
    EXPECT_NE(svgBytes.find("width=\"96px\" height=\"192px\" viewBox=\"0 0 96 192\""), std::string::npos)
        << svgBytes.substr(0, 400);
    EXPECT_TRUE(svgBytes.ends_with("</svg>\n"));
}

TEST(VectorDevice, ShapesStayCurvesInFiles) {
    TVectorDevice svg(TVectorDevice::TFormat::Svg, 96, 96);
    Fill(svg, "M10 20C30 40 50 60 70 20Z", Solid(0xFF3060C0));
    const std::vector<TRampStop> stops{{0, 0xFFFF0000}, {1, 0x000000FF}};
    Fill(svg, Blob, Gradient(TPaint::TKind::Radial, stops));
    svg.PushLayer(Faint());
    Fill(svg, Blob, Gradient(TPaint::TKind::Linear, stops));
    svg.PushMask(TMaskKind::Alpha);
    Fill(svg, Everything, Solid(0x80FFFFFF));
    svg.PopMask();
    svg.PopLayer();
    const std::string bytes = svg.Finish();
    EXPECT_NE(bytes.find("M 10 20 C 30 40 50 60 70 20"), std::string::npos) << bytes;
    EXPECT_NE(bytes.find("radialGradient"), std::string::npos);
    EXPECT_NE(bytes.find("linearGradient"), std::string::npos);
    EXPECT_EQ(bytes.find("<image"), std::string::npos);
}

TEST(VectorDevice, NothingIsDrawnAfterTheEnd) {
    TVectorDevice svg(TVectorDevice::TFormat::Svg, 96, 96);
    EXPECT_FALSE(svg.Finish().empty());
    DrawAll(svg);
    EXPECT_TRUE(svg.GetClipBounds().IsEmpty());
    EXPECT_EQ(svg.Finish(), "");
}

TEST(VectorDevice, FilesOfNoSizeFail) {
    for (const double size : {NaN, HUGE_VAL, -5.0, 0.0})
        for (const auto format : {TVectorDevice::TFormat::Pdf, TVectorDevice::TFormat::Svg}) {
            TVectorDevice device(format, size, 100);
            DrawAll(device);
            EXPECT_TRUE(device.GetClipBounds().IsEmpty());
            EXPECT_THROW(device.Finish(), EWriteError) << size;
        }
}

TEST(VectorDevice, WhatIsNotFiniteOrSingularPaintsNothing) {
    TVZGPBitmap bitmap(Size, Size);
    TVectorDevice device(bitmap.GetPixels());
    const auto tile = Tile();
    for (const TAffine& bad :
         {TAffine{NaN, 0, 0, 1, 0, 0}, TAffine{1, 0, 0, 1, HUGE_VAL, 0}, TAffine::Scaling(0, 1)}) {
        Fill(device, Everything, Solid(0xFF000000), bad);
        Stroke(device, Blob, {}, bad);
        device.DrawImage(tile->GetPixels(), bad, 1, TInterpolation::Bilinear);
        TPaint paint = Gradient(TPaint::TKind::Linear, {{0, 0xFF000000}});
        paint.Matrix = bad;
        Fill(device, Everything, paint);
    }
    device.DrawImage(tile->GetPixels(), {}, NaN, TInterpolation::Bilinear);
    TStrokeStyle style;
    for (const double width : {0.0, -1.0, NaN}) {
        style.Width = width;
        Stroke(device, Blob, style);
    }
    device.Finish();
    EXPECT_TRUE(std::all_of(bitmap.GetPixels().Data, bitmap.GetPixels().Data + Size * Size,
                            [](auto pixel) { return pixel == 0; }));
}

TEST(VectorDevice, HugeShapesCoverTheirPlace) {
    ExpectAlike([](IPaintDevice& device) { Fill(device, "M-9e8 30H9e8V9e8H-9e8Z", Solid(0xFF3060C0)); });
}

} // namespace
} // namespace Vz
