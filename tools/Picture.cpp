#include "Picture.h"

#include "UsageError.h"
#include "controls/HeadlessHost.h"
#include "graphics/Canvas.h"
#include "graphics/VectorDevice.h"
#include "runtime/Exceptions.h"
#include "runtime/PropText.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace Vz::Tool {

namespace {

void CheckSize(const TControl& control, const TPictureOptions& options, TPictureFormat format) {
    const double width = std::ceil(control.GetWidth() * options.Scale);
    const double height = std::ceil(control.GetHeight() * options.Scale);
    const auto text = [&] { return FloatToText(width) + " x " + FloatToText(height) + " pixels"; };
    if (width < 1 || height < 1) throw EArgumentOutOfRange("a picture of " + text() + " shows nothing");
    if (std::max(width, height) > TVZGPBitmap::MaxExtent ||
        (format == TPictureFormat::Png && width * height > MaxPicturePixels))
        throw EArgumentOutOfRange("a picture of " + text() + " is too large");
}

std::string DrawPixels(TControl& control, const TPictureOptions& options) {
    THeadlessHost host(control, options.Scale);
    host.SetBackground(options.Background);
    return EncodePng(host.Paint().GetPixels());
}

std::string DrawCurves(TControl& control, const TPictureOptions& options, TVectorDevice::TFormat format) {
    const double width = control.GetWidth() * options.Scale;
    const double height = control.GetHeight() * options.Scale;
    TVectorDevice device(format, width, height);
    if (AlphaOf(options.Background) != 0) {
        TFigures page;
        page.AddRect(0, 0, width, height);
        TShape shape;
        shape.Figures = &page;
        TPaint paint;
        paint.Color = options.Background;
        device.Draw(shape, paint, {});
    }
    TVZGPCanvas canvas(device, TAffine::Scaling(options.Scale, options.Scale));
    control.PaintTo(canvas);
    return device.Finish();
}

} // namespace

TPictureFormat FormatOf(std::string_view file) {
    if (file == "-") return TPictureFormat::Png;
    std::string ending(file.substr(std::min(file.rfind('.'), file.size())));
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
    if (ending == ".png") return TPictureFormat::Png;
    if (ending == ".svg") return TPictureFormat::Svg;
    if (ending == ".pdf") return TPictureFormat::Pdf;
    throw TUsageError("a picture's name ends in .png, .svg or .pdf, unlike " + Quoted(file));
}

std::string DrawPicture(TControl& control, const TPictureOptions& options, TPictureFormat format) {
    CheckSize(control, options, format);
    switch (format) {
    case TPictureFormat::Svg:
        return DrawCurves(control, options, TVectorDevice::TFormat::Svg);
    case TPictureFormat::Pdf:
        return DrawCurves(control, options, TVectorDevice::TFormat::Pdf);
    default:
        return DrawPixels(control, options);
    }
}

} // namespace Vz::Tool
