#pragma once

#include "tavro/controls/Control.h"
#include "tavro/graphics/Bitmap.h"

namespace Vz {

/// A host without a window: it collects what became stale and paints it into a bitmap that it keeps, all of
/// it or only the stale region. It follows the root's size. A host with a window derives from it and shows
/// the bitmap.
class THeadlessHost : public IControlHost {
public:
    /// The largest scale.
    static constexpr double MaxScale = 1024;

    /// Shows a root control for as long as both live. `scale`: device pixels a control pixel, above 0 up to
    /// MaxScale; else EArgumentOutOfRange. All is stale at first.
    explicit THeadlessHost(TControl& root, double scale = 1);
    ~THeadlessHost() override;
    THeadlessHost(const THeadlessHost&) = delete;
    THeadlessHost& operator=(const THeadlessHost&) = delete;

    double GetScale() const { return FScale; }
    /// As in the constructor. All is stale after a change.
    void SetScale(double scale);
    /// What is under the root control. Default transparent; all is stale after a change.
    void SetBackground(TVZGPColor color);

    /// What became stale since the last painting, in control pixels.
    const TRegion& GetStale() const { return FStale; }
    /// What the root asked for last.
    TCursor GetCursor() const { return FCursor; }

    /// Paints everything, or only the pixels that the stale region touches, and gives the picture: the root's
    /// size times the scale, rounded up. Raises EArgumentOutOfRange where that exceeds
    /// TVZGPBitmap::MaxExtent.
    const TVZGPBitmap& Paint();
    const TVZGPBitmap& PaintStale();
    /// The picture as it was painted last.
    const TVZGPBitmap& GetPicture() const { return FPicture; }

    /// A press and a release at a pixel of the root control.
    void Click(int x, int y, TMouseButton button = TMouseButton::Left, TShiftState shift = {});

    void RegionStale(std::span<const TRect> rects) override;
    void SizeWanted(int width, int height) override;
    void CursorWanted(TCursor cursor) override { FCursor = cursor; }

private:
    void PaintDevicePixels();
    void MakeAllStale();

    TControlPtr FRoot;
    double FScale;
    TVZGPColor FBackground = 0;
    TRegion FStale;
    TRegion FDeviceStale;
    TVZGPBitmap FPicture;
    TCursor FCursor = TCursor::Default;
};

} // namespace Vz
