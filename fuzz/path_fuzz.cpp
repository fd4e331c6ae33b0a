// Path data of any kind: whatever is read is written, read back, measured, turned, flattened and stroked.

#include "tavro/graphics/PathData.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

using namespace Vz;

void Require(bool condition) {
    if (!condition) std::abort();
}

void RequireGood(const TPolygons& polygons) {
    Require(polygons.Starts.back() == polygons.Points.size());
    for (const TPointD& point : polygons.Points)
        Require(std::isfinite(point.X) && std::isfinite(point.Y));
}

/// A style that the text's first bytes choose, so that all joins, caps and dashes are met.
TStrokeStyle StyleOf(const std::uint8_t* data, std::size_t size) {
    std::uint8_t bytes[4] = {};
    std::memcpy(bytes, data, size < sizeof bytes ? size : sizeof bytes);
    TStrokeStyle style;
    style.Width = bytes[0] / 8.0;
    style.Cap = static_cast<TLineCap>(bytes[1] % 3);
    style.Join = static_cast<TLineJoin>(bytes[2] % 5);
    style.MiterLimit = bytes[1] / 16.0;
    if (bytes[3] % 2 != 0) style.Dashes = {bytes[3] * 10.0, double(bytes[2]) / 16};
    style.DashOffset = bytes[0] - 128.0;
    return style;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TVZPathData path, back;
    path.SetPathStringTolerant({reinterpret_cast<const char*>(data), size});
    const std::string written = path.GetPathString();
    back.SetPathString(written);
    Require(back.GetFigures() == path.GetFigures());

    const TFigures& figures = path.GetFigures();
    Require(figures.IsEmpty() || figures.Verbs.front() == TVerb::Move);
    const TStrokeStyle style = StyleOf(data, size);
    TPolygons polygons;
    for (const double scale : {1.0, 1e-6, 100.0}) {
        Flatten({&figures}, scale, polygons);
        RequireGood(polygons);
        Flatten({&figures, &style}, scale, polygons);
        RequireGood(polygons);
    }
    if (size <= 16) { // the finest flattening, where it does not take all the time
        Flatten({&figures, &style}, 1e9, polygons);
        RequireGood(polygons);
    }
    figures.Bounds(TAffine::Rotation(1));
    Contains({&figures, &style}, {1, 2}, 1);
    path.ApplyMatrix(CreateRotationVZMatrix({1, 2}, 3));
    back.SetPathString(path.GetPathString());
    path.Append(path);
    return 0;
}
