#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <memory>
#include <string>

namespace Vz {

/// A paint device of curves: a PDF or SVG file in memory, or a picture drawn by the same library, which tests
/// hold against the raster device.
class TVectorDevice final : public IPaintDevice {
public:
    enum class TFormat { Pdf, Svg };

    /// A file of width by height pixels, finite and above 0, or Finish raises; a PDF takes 96 of them as an
    /// inch. What cairo lacks is drawn as pixels: layers with an effect, luminance masks; in SVG also blend
    /// modes.
    TVectorDevice(TFormat format, double width, double height);
    /// Draws on pixels.
    explicit TVectorDevice(const TPixels& target);
    ~TVectorDevice() override;

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override;
    void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                   TInterpolation mode) override;
    void PushClip(std::span<const TClipShape> shapes) override;
    void PopClip() override;
    void PushLayer(const TLayerStyle& style) override;
    void PopLayer() override;
    void PushMask(TMaskKind kind) override;
    void PopMask() override;
    TRect GetClipBounds() const override;
    /// False for pixels, which have one resolution.
    bool IsVector() const override;

    /// Ends the drawing; the file's bytes (empty for pixels). Nothing can be drawn after it. Raises
    /// EWriteError.
    std::string Finish();

private:
    struct TState;
    std::unique_ptr<TState> FState;
};

} // namespace Vz
