#pragma once

#include "Timing.h"

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/runtime/Updates.h"

#include <fstream>
#include <numbers>
#include <sstream>

namespace Bench {

using namespace Vz;

struct TArtwork {
    const char* File;
    const char* Moving; ///< id of the element that turns
    float Center;       ///< of the turn, x and y
};
inline constexpr TArtwork Artworks[] = {{"SpeedometerSVG.svg", "NeedleGroup", 200},
                                        {"CircularGaugeSVG.svg", "Hands", 100}};

inline std::string ReadArtwork(const TArtwork& artwork) {
    std::ifstream file(std::string(TAVRO_SOURCE_DIR "/tavro/resources/") + artwork.File, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// A control that shows an artwork on a host without a window, and turns one element in steps of a sweep.
struct TScene {
    TScene(const TArtwork& artwork, int size)
        : Artwork(artwork)
        , Moving(Load(artwork, size))
        , Host(*Control) {
        Host.Paint();
    }

    /// Where the element stands in a frame, clockwise from where the artwork has it.
    static double AngleDeg(int frame) { return -135 + 270.0 / FramesPerSweep * frame; }
    /// The edit of a frame, as an instrument's setter makes it.
    void Turn(int frame) {
        {
            const TUpdateScope update(Control->GetDocument());
            Moving->SetMatrix(
                CreateRotationVZMatrix({Artwork.Center, Artwork.Center},
                                       static_cast<float>(AngleDeg(frame) * std::numbers::pi / 180)));
        }
        Control->Invalidate();
    }
    /// What the host is to paint in each frame of a sweep.
    std::vector<std::vector<TRect>> StaleRects() {
        std::vector<std::vector<TRect>> frames;
        Rewind();
        for (int frame = 0; frame < FramesPerSweep; ++frame) {
            Turn(frame);
            const auto rects = Host.GetStale().Rects();
            frames.emplace_back(rects.begin(), rects.end());
            Host.PaintStale();
        }
        return frames;
    }
    /// Goes to the frame before the first.
    void Rewind() {
        Turn(-1);
        Host.Paint();
    }

    const TArtwork& Artwork;
    const std::unique_ptr<TVZSVGControl> Control = TVZSVGControl::Create();
    TSVGGraphicElement* const Moving;
    THeadlessHost Host;

private:
    TSVGGraphicElement* Load(const TArtwork& artwork, int size) {
        Control->LoadFromText(ReadArtwork(artwork));
        Control->SetBounds(0, 0, size, size);
        auto* const moving = Control->GetDocument().Find<TSVGGraphicElement>(artwork.Moving);
        Control->SetActiveSVGElement(moving);
        return moving;
    }
};

} // namespace Bench
