#pragma once

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace Vz::Test {

/// A small dial: a face with a gradient, ticks in a group, a needle group in front of a mark, a half
/// transparent cap over it, and a group of which the opacity is laid down as one.
inline constexpr std::string_view DialSvg = R"svg(<svg xmlns="http://www.w3.org/2000/svg"
    xmlns:xlink="http://www.w3.org/1999/xlink" width="100" height="100" viewBox="0 0 100 100">
  <defs>
    <radialGradient id="FaceGradient"><stop offset="0" stop-color="#eef"/><stop offset="1" stop-color="#557"/>
    </radialGradient>
    <linearGradient id="NeedleGradient"><stop offset="0" stop-color="#f40"/><stop offset="1" stop-color="#fa0"/>
    </linearGradient>
    <path id="Star" d="M40 80 L50 76 L60 80 L50 92 Z"/>
  </defs>
  <circle id="Face" cx="50" cy="50" r="48" fill="url(#FaceGradient)" stroke="#333" stroke-width="3"/>
  <g id="Ticks" stroke="#111" stroke-width="2">
    <path d="M50 8 V16"/><path d="M92 50 H84"/><path d="M50 92 V84"/><path d="M8 50 H16"/>
  </g>
  <rect id="Mark" x="20" y="60" width="30" height="8" fill="#080"/>
  <g id="NeedleGroup">
    <path id="Needle" d="M47 50 L50 14 L53 50 Z" fill="url(#NeedleGradient)" stroke="#400" stroke-width="0.7"/>
    <circle id="Hub" cx="50" cy="50" r="7" fill="#ffd700"/>
  </g>
  <circle id="Cap" cx="50" cy="50" r="4" fill="#000" fill-opacity="0.5"/>
  <use id="Emblem" xlink:href="#Star" fill="#00f"/>
  <g id="Veil" opacity="0.5"><rect id="Glass" x="30" y="30" width="40" height="20" fill="#fff" fill-opacity="0.4"/></g>
</svg>)svg";

inline std::vector<std::uint32_t> CopyOf(const TVZGPBitmap& picture) {
    const TPixels pixels = picture.GetPixels();
    std::vector<std::uint32_t> copy;
    for (int y = 0; y < pixels.Height; ++y)
        copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
    return copy;
}

/// The greatest difference of a channel, 0..255; 256 where the sizes differ.
inline int WorstDifference(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
    if (a.size() != b.size()) return 256;
    int worst = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (int shift = 0; shift < 32; shift += 8)
            worst = std::max(worst, std::abs(int(a[i] >> shift & 255u) - int(b[i] >> shift & 255u)));
    return worst;
}

/// A control that shows the dial, on a host without a window.
struct TScene {
    std::unique_ptr<TVZSVGControl> Control = TVZSVGControl::Create();
    THeadlessHost Host;

    explicit TScene(double scale = 1, int width = 100, int height = 100)
        : Host(*Control, scale) {
        Control->LoadFromText(DialSvg);
        Control->SetBounds(0, 0, width, height);
    }
    template <class T = TSVGGraphicElement> T& Get(std::string_view id) {
        return *Control->GetDocument().Find<T>(id);
    }
    void Activate(std::string_view id) { Control->SetActiveSVGElement(&Get(id)); }
    void TurnNeedle(double degrees) {
        Get("NeedleGroup").SetMatrix(CreateRotationVZMatrix({50, 50}, float(degrees * 0.017453292519943295)));
    }
    std::vector<std::uint32_t> Paint() { return CopyOf(Host.Paint()); }
    std::vector<std::uint32_t> PaintStale() { return CopyOf(Host.PaintStale()); }
    std::uint32_t PixelAt(int x, int y) const { return Host.GetPicture().GetPixels().Row(y)[x]; }
};

} // namespace Vz::Test
