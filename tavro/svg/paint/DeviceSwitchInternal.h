#pragma once

#include "tavro/svg/paint/ContentBoundsInternal.h"
#include "tavro/svg/paint/WorkInternal.h"

namespace Vz {

/// The device that a painter paints on: its own, or for a while another one. Counts what is drawn there while
/// references are followed.
class TDeviceSwitch final : public IPaintDevice {
public:
    TDeviceSwitch(IPaintDevice& device, TPaintWork& work)
        : FWork(work) {
        PointTo(device);
    }

    /// Hands everything to another device as long as it lives.
    class TTurn {
    public:
        TTurn(TDeviceSwitch& to, IPaintDevice& device)
            : FSwitch(to)
            , FBefore(*to.FDevice) {
            to.PointTo(device);
        }
        ~TTurn() { FSwitch.PointTo(FBefore); }
        TTurn(const TTurn&) = delete;
        TTurn& operator=(const TTurn&) = delete;

    private:
        TDeviceSwitch& FSwitch;
        IPaintDevice& FBefore;
    };

    /// Where only the box of what is painted is asked for: the device that finds it; else null.
    TContentBounds* Bounds() const { return FBounds; }
    IPaintDevice& Target() const { return *FDevice; }
    /// The pixels that can change now; 0 where nothing is painted on pixels.
    double Pixels() const { return TPaintWork::PixelsOf(*FDevice); }

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override {
        const bool isDashed = shape.Stroke && !shape.Stroke->Dashes.empty();
        if (isDashed && !FWork.Take(TPaintWork::CostOfDashes(shape))) return;
        if (FWork.CountsDrawn()) FWork.CountDrawn(TPaintWork::CostOf(shape, paint, toDevice, *FDevice));
        FDevice->Draw(shape, paint, toDevice);
    }
    void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                   TInterpolation mode) override {
        Count(6);
        FDevice->DrawImage(image, toDevice, opacity, mode);
    }
    void PushClip(std::span<const TClipShape> shapes) override {
        Count(1);
        FDevice->PushClip(shapes);
    }
    void PopClip() override { FDevice->PopClip(); }
    void PushLayer(const TLayerStyle& style) override {
        Count(2);
        FDevice->PushLayer(style);
    }
    void PopLayer() override { FDevice->PopLayer(); }
    void PushMask(TMaskKind kind) override {
        Count(3);
        FDevice->PushMask(kind);
    }
    void PopMask() override { FDevice->PopMask(); }
    TRect GetClipBounds() const override { return FDevice->GetClipBounds(); }
    bool IsVector() const override { return FDevice->IsVector(); }

private:
    void PointTo(IPaintDevice& device) {
        FDevice = &device;
        FBounds = dynamic_cast<TContentBounds*>(&device);
    }

    /// Takes down what is done to each pixel, in nanoseconds.
    void Count(double pixelCost) {
        constexpr double call = 300;
        if (FWork.CountsDrawn()) FWork.CountDrawn(call + pixelCost * Pixels());
    }

    TPaintWork& FWork;
    IPaintDevice* FDevice = nullptr;
    TContentBounds* FBounds = nullptr;
};

} // namespace Vz
