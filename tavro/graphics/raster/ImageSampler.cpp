#include "tavro/graphics/raster/ImageSamplerInternal.h"

#include "tavro/graphics/raster/RowOpsInternal.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {

/// The most samples that a device pixel takes along one side where the picture has no end.
constexpr int MostRepeated = 16;

int Wrapped(int i, int size) {
    if (i >= 0 && i < size) return i;
    const int rest = i % size;
    return rest < 0 ? rest + size : rest;
}

/// The whole number at or below a place in the picture, held within what an int carries. No number counts as
/// 0.
int Whole(double v) {
    constexpr double limit = 1e9;
    v = v < limit ? v : limit;
    return v > -limit ? static_cast<int>(std::floor(v)) : v <= -limit ? static_cast<int>(-limit) : 0;
}

/// How many samples a step of `length` source pixels needs so that none is left out.
int SampleCount(double length, bool bounded) {
    const double most = bounded ? TVZGPBitmap::MaxExtent : MostRepeated;
    return static_cast<int>(std::clamp(std::ceil(length - 0.01), 1.0, most));
}

/// Sums of weighted pixels, channel by channel.
struct TSum {
    std::array<float, 4> Channels{};
    float Weight = 0;

    void Add(std::uint32_t pixel, float weight) {
        for (std::size_t i = 0; i < 4; ++i)
            Channels[i] += weight * static_cast<float>(pixel >> (8 * i) & 255u);
        Weight += weight;
    }
    /// The mean. Filters that overshoot are held within what a premultiplied pixel can be.
    std::uint32_t Pixel() const {
        const float factor = 1 / Weight;
        const float alpha = std::clamp(Channels[3] * factor, 0.0f, 255.0f);
        std::uint32_t pixel = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const float value = std::clamp(Channels[i] * factor, 0.0f, alpha);
            pixel |= static_cast<std::uint32_t>(value + 0.5f) << (8 * i);
        }
        return pixel;
    }
};

/// Weights of the four neighbours at 0..1 between the inner two (Catmull-Rom spline).
std::array<float, 4> SplineWeights(double place) {
    const float t = static_cast<float>(std::clamp(place, 0.0, 1.0));
    return {((-0.5f * t + 1) * t - 0.5f) * t, (1.5f * t - 2.5f) * t * t + 1, ((-1.5f * t + 2) * t + 0.5f) * t,
            (0.5f * t - 0.5f) * t * t};
}

/// a and b mixed, `part` of 256 of b.
std::uint32_t Mixed(std::uint32_t a, std::uint32_t b, unsigned part) {
    const auto pair = [part](std::uint32_t x, std::uint32_t y) {
        return ((x * (256 - part) + y * part + 0x00800080u) >> 8) & 0x00FF00FFu;
    };
    return pair(a & 0x00FF00FFu, b & 0x00FF00FFu) | pair((a >> 8) & 0x00FF00FFu, (b >> 8) & 0x00FF00FFu) << 8;
}

} // namespace

bool IsWholeTranslation(const TAffine& map, int& x, int& y) {
    const auto isNear = [](double v, double to, double slack) { return std::abs(v - to) < slack; };
    if (!isNear(map.A, 1, 1e-6) || !isNear(map.D, 1, 1e-6) || !isNear(map.B, 0, 1e-6) ||
        !isNear(map.C, 0, 1e-6))
        return false;
    const double wholeX = std::round(map.E);
    const double wholeY = std::round(map.F);
    if (!isNear(map.E, wholeX, 1e-3) || !isNear(map.F, wholeY, 1e-3)) return false;
    if (std::abs(wholeX) > 1e6 || std::abs(wholeY) > 1e6) return false;
    x = static_cast<int>(wholeX);
    y = static_cast<int>(wholeY);
    return true;
}

bool TImageSampler::Prepare(const TPixels& image, const TAffine& toDevice, TInterpolation mode,
                            TOutside outside) {
    if (image.Width <= 0 || image.Height <= 0 || !image.Data || !toDevice.IsInvertible()) return false;
    FImage = image;
    FOutside = outside;
    FToImage = toDevice.Inverse();
    if (!FToImage.IsFinite()) return false;
    const bool bounded = outside == TOutside::Clamp;
    FCountX = SampleCount(std::hypot(FToImage.A, FToImage.B), bounded);
    FCountY = SampleCount(std::hypot(FToImage.C, FToImage.D), bounded);
    const bool isUpright = FToImage.B == 0 && FToImage.C == 0;
    if (IsWholeTranslation(toDevice, FLeft, FTop))
        FMethod = TMethod::Whole;
    else if (mode == TInterpolation::Nearest)
        FMethod = TMethod::Nearest;
    else if (bounded && isUpright && std::abs(FToImage.A) >= 1 && std::abs(FToImage.D) >= 1)
        FMethod = TMethod::Area;
    else if (FCountX > 1 || FCountY > 1)
        FMethod = TMethod::Several;
    else
        FMethod = mode == TInterpolation::Bicubic ? TMethod::Bicubic : TMethod::Bilinear;
    if (FMethod == TMethod::Area) FindBoxes();
    return true;
}

/// Looks whether every device pixel is made of whole pixels of the picture.
void TImageSampler::FindBoxes() {
    const auto isWhole = [](double v, double slack) { return std::abs(v - std::round(v)) < slack; };
    FAcross = FDown = 0;
    if (FToImage.A < 0 || FToImage.D < 0 || FToImage.A > 16.5 || FToImage.D > 16.5) return;
    if (!isWhole(FToImage.A, 1e-6) || !isWhole(FToImage.D, 1e-6)) return;
    if (!isWhole(FToImage.E, 1e-3) || !isWhole(FToImage.F, 1e-3)) return;
    if (std::abs(FToImage.E) > 1e8 || std::abs(FToImage.F) > 1e8) return;
    FToImage = {std::round(FToImage.A), 0, 0, std::round(FToImage.D), std::round(FToImage.E),
                std::round(FToImage.F)};
    FAcross = static_cast<int>(FToImage.A);
    FDown = static_cast<int>(FToImage.D);
    FLeft = static_cast<int>(FToImage.E);
    FTop = static_cast<int>(FToImage.F);
}

std::uint32_t TImageSampler::At(int x, int y) const {
    if (FOutside == TOutside::Repeat) return FImage.Row(Wrapped(y, FImage.Height))[Wrapped(x, FImage.Width)];
    return FImage.Row(std::clamp(y, 0, FImage.Height - 1))[std::clamp(x, 0, FImage.Width - 1)];
}

std::uint32_t TImageSampler::Bilinear(double u, double v) const {
    const int x = Whole(u - 0.5);
    const int y = Whole(v - 0.5);
    const auto part = [](double f) { return static_cast<unsigned>(std::clamp(f, 0.0, 1.0) * 256 + 0.5); };
    const unsigned fx = part(u - 0.5 - x);
    const unsigned fy = part(v - 0.5 - y);
    if (x >= 0 && y >= 0 && x < FImage.Width - 1 && y < FImage.Height - 1) {
        const std::uint32_t* upper = FImage.Row(y) + x;
        const std::uint32_t* lower = upper + FImage.Stride;
        return Mixed(Mixed(upper[0], upper[1], fx), Mixed(lower[0], lower[1], fx), fy);
    }
    return Mixed(Mixed(At(x, y), At(x + 1, y), fx), Mixed(At(x, y + 1), At(x + 1, y + 1), fx), fy);
}

std::uint32_t TImageSampler::Bicubic(double u, double v) const {
    const int x = Whole(u - 0.5);
    const int y = Whole(v - 0.5);
    const auto across = SplineWeights(u - 0.5 - x);
    const auto down = SplineWeights(v - 0.5 - y);
    TSum sum;
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            sum.Add(At(x - 1 + i, y - 1 + j),
                    across[static_cast<std::size_t>(i)] * down[static_cast<std::size_t>(j)]);
    return sum.Pixel();
}

/// The mean of samples spread evenly over the device pixel whose centre lies at (u, v).
std::uint32_t TImageSampler::Several(double u, double v) const {
    TSum sum;
    for (int j = 0; j < FCountY; ++j)
        for (int i = 0; i < FCountX; ++i) {
            const double dx = (i + 0.5) / FCountX - 0.5;
            const double dy = (j + 0.5) / FCountY - 0.5;
            sum.Add(Bilinear(u + dx * FToImage.A + dy * FToImage.C, v + dx * FToImage.B + dy * FToImage.D),
                    1);
        }
    return sum.Pixel();
}

void TImageSampler::Fetch(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const {
    if (FMethod == TMethod::Whole) return FetchWhole(x, y, count, pixels);
    if (FMethod == TMethod::Area) {
        if (!FetchBoxes(x, y, count, pixels, scratch)) FetchArea(x, y, count, pixels, scratch);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const TPointD place = FToImage(x + i + 0.5, y + 0.5);
        switch (FMethod) {
        case TMethod::Nearest:
            pixels[i] = At(Whole(place.X), Whole(place.Y));
            break;
        case TMethod::Several:
            pixels[i] = Several(place.X, place.Y);
            break;
        case TMethod::Bicubic:
            pixels[i] = Bicubic(place.X, place.Y);
            break;
        default:
            pixels[i] = Bilinear(place.X, place.Y);
        }
    }
}

void TImageSampler::FetchWhole(int x, int y, int count, std::uint32_t* pixels) const {
    if (FOutside == TOutside::Clamp) {
        for (int i = 0; i < count; ++i)
            pixels[i] = At(x + i - FLeft, y - FTop);
        return;
    }
    const std::uint32_t* row = FImage.Row(Wrapped(y - FTop, FImage.Height));
    for (int done = 0; done < count;) {
        const int start = Wrapped(x + done - FLeft, FImage.Width);
        const int run = std::min(count - done, FImage.Width - start);
        std::copy_n(row + start, run, pixels + done);
        done += run;
    }
}

std::uint64_t TImageSampler::TReach::Sum() const {
    std::uint64_t sum = First < End ? FirstPart : 0;
    if (End - First > 1) sum += static_cast<std::uint64_t>(End - First - 2) * 256 + LastPart;
    return sum;
}

/// The columns (or rows) of the picture, `size` of them, that a device pixel of this middle and length
/// covers.
TImageSampler::TReach TImageSampler::ReachOf(double middle, double length, int size) {
    const double from = std::clamp<double>(middle - length / 2, 0, size);
    const double to = std::clamp<double>(middle + length / 2, 0, size);
    const auto part = [](double v) { return static_cast<std::uint32_t>(v * 256 + 0.5); };
    TReach reach{static_cast<int>(from), static_cast<int>(std::ceil(to)), 0, 0};
    if (!(from < to)) return {reach.First, reach.First, 0, 0};
    reach.FirstPart = part(std::min(to, reach.First + 1.0) - from);
    reach.LastPart = part(to - std::max(from, reach.End - 1.0));
    return reach;
}

/// FetchArea where whole pixels make each device pixel and lie in the picture.
bool TImageSampler::FetchBoxes(int x, int y, int count, std::uint32_t* pixels,
                               TSampleScratch& scratch) const {
    if (FAcross == 0) return false;
    const TRect from{x * FAcross + FLeft, y * FDown + FTop, (x + count) * FAcross + FLeft,
                     (y + 1) * FDown + FTop};
    if (from != Intersection(from, FImage.Bounds())) return false;
    const std::size_t room = static_cast<std::size_t>(count) * static_cast<std::size_t>(FAcross) * 4;
    if (scratch.BoxSums.size() < room) scratch.BoxSums.resize(room);
    const TPixelBoxes boxes{FImage.Row(from.Top) + from.Left, FImage.Stride, FAcross, FDown};
    RowOps().Average(pixels, count, boxes, scratch.BoxSums.data());
    return true;
}

/// Sums the rows that the device row covers up, then the columns that each pixel covers.
void TImageSampler::FetchArea(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const {
    const double width = std::abs(FToImage.A);
    const TReach rows = ReachOf(FToImage(0, y + 0.5).Y, std::abs(FToImage.D), FImage.Height);
    const auto columnsOf = [&](int column) {
        return ReachOf(FToImage(column + 0.5, 0).X, width, FImage.Width);
    };
    const TReach atStart = columnsOf(x);
    const TReach atEnd = columnsOf(x + count - 1);
    const int first = std::min(atStart.First, atEnd.First);
    const int end = std::max(atStart.End, atEnd.End);
    std::vector<std::uint32_t>& down = scratch.Sums;
    down.assign(static_cast<std::size_t>(std::max(end - first, 0)) * 4, 0);
    for (int row = rows.First; row < rows.End; ++row) {
        const std::uint32_t part = rows.PartOf(row);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(FImage.Row(row) + first);
        for (std::size_t i = 0; i < down.size(); ++i)
            down[i] += bytes[i] * part;
    }
    for (int i = 0; i < count; ++i) {
        const TReach columns = columnsOf(x + i);
        std::array<std::uint64_t, 4> sums{};
        for (int column = columns.First; column < columns.End; ++column)
            for (std::size_t k = 0; k < 4; ++k)
                sums[k] += std::uint64_t{columns.PartOf(column)} * down[std::size_t(column - first) * 4 + k];
        const std::uint64_t weight = columns.Sum() * rows.Sum();
        const double factor = weight > 0 ? 1.0 / static_cast<double>(weight) : 0.0;
        std::array<std::uint8_t, 4> channels{};
        for (std::size_t k = 0; k < 4; ++k)
            channels[k] = static_cast<std::uint8_t>(static_cast<double>(sums[k]) * factor + 0.5);
        std::copy_n(channels.begin(), 4, reinterpret_cast<std::uint8_t*>(pixels + i));
    }
}

} // namespace Vz
