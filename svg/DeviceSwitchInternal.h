#pragma once

#include "svg/ContentBoundsInternal.h"

namespace Vz {

/// The device that a painter paints on: its own, or for a while another one.
class TDeviceSwitch final : public IPaintDevice {
public:
    TDeviceSwitch(IPaintDevice& device) { PointTo(device); }

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

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override {
        FDevice->Draw(shape, paint, toDevice);
    }
    void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                   TInterpolation mode) override {
        FDevice->DrawImage(image, toDevice, opacity, mode);
    }
    void PushClip(std::span<const TClipShape> shapes) override { FDevice->PushClip(shapes); }
    void PopClip() override { FDevice->PopClip(); }
    void PushLayer(const TLayerStyle& style) override { FDevice->PushLayer(style); }
    void PopLayer() override { FDevice->PopLayer(); }
    void PushMask(TMaskKind kind) override { FDevice->PushMask(kind); }
    void PopMask() override { FDevice->PopMask(); }
    TRect GetClipBounds() const override { return FDevice->GetClipBounds(); }
    bool IsVector() const override { return FDevice->IsVector(); }

private:
    void PointTo(IPaintDevice& device) {
        FDevice = &device;
        FBounds = dynamic_cast<TContentBounds*>(&device);
    }

    IPaintDevice* FDevice = nullptr;
    TContentBounds* FBounds = nullptr;
};

} // namespace Vz
