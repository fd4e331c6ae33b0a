#include "tavro/controls/Picture.h"

#include "tavro/controls/Control.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/Canvas.h"
#include "tavro/graphics/vector/Device.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/PropText.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace Vz {

namespace {

void CheckSize(const TControl& control, TPictureFormat format, double scale) {
    const double width = std::ceil(control.GetWidth() * scale);
    const double height = std::ceil(control.GetHeight() * scale);
    const auto text = [&] { return FloatToText(width) + " x " + FloatToText(height) + " pixels"; };
    if (width < 1 || height < 1) throw EArgumentOutOfRange("a picture of " + text() + " shows nothing");
    if (std::max(width, height) > TVZGPBitmap::MaxExtent ||
        (format == TPictureFormat::Png && width * height > MaxPicturePixels))
        throw EArgumentOutOfRange("a picture of " + text() + " is too large");
}

/// Leaves the control with the host that it had.
class THostKeeper {
public:
    explicit THostKeeper(TControl& control)
        : FControl(control)
        , FHost(control.GetHost()) {}
    ~THostKeeper() { FControl.SetHost(FHost); }
    THostKeeper(const THostKeeper&) = delete;
    THostKeeper& operator=(const THostKeeper&) = delete;

private:
    TControl& FControl;
    IControlHost* FHost;
};

std::string DrawPixels(TControl& control, double scale, TVZGPColor background) {
    const THostKeeper keeper(control);
    THeadlessHost host(control, scale);
    host.SetBackground(background);
    return EncodePng(host.Paint().GetPixels());
}

std::string DrawCurves(TControl& control, TVectorDevice::TFormat format, double scale,
                       TVZGPColor background) {
    const double width = control.GetWidth() * scale;
    const double height = control.GetHeight() * scale;
    TVectorDevice device(format, width, height);
    if (AlphaOf(background) != 0) {
        TFigures page;
        page.AddRect(0, 0, width, height);
        TShape shape;
        shape.Figures = &page;
        TPaint paint;
        paint.Color = background;
        device.Draw(shape, paint, {});
    }
    TVZGPCanvas canvas(device, TAffine::Scaling(scale, scale));
    control.PaintTo(canvas);
    return device.Finish();
}

} // namespace

std::optional<TPictureFormat> FindPictureFormat(std::string_view file) {
    std::string ending(file.substr(std::min(file.rfind('.'), file.size())));
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
    if (ending == ".png") return TPictureFormat::Png;
    if (ending == ".svg") return TPictureFormat::Svg;
    if (ending == ".pdf") return TPictureFormat::Pdf;
    return {};
}

std::string DrawPicture(TControl& control, TPictureFormat format, double scale, TVZGPColor background) {
    CheckSize(control, format, scale);
    switch (format) {
    case TPictureFormat::Svg:
        return DrawCurves(control, TVectorDevice::TFormat::Svg, scale, background);
    case TPictureFormat::Pdf:
        return DrawCurves(control, TVectorDevice::TFormat::Pdf, scale, background);
    default:
        return DrawPixels(control, scale, background);
    }
}

} // namespace Vz
