#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <vector>

namespace Vz {

/// Working memory of image samplers.
struct TSampleScratch {
    std::vector<std::uint32_t> Sums;
    std::vector<std::uint16_t> BoxSums;
};

/// By how many whole pixels a map moves a picture; false where it must be resampled.
bool IsWholeTranslation(const TAffine& map, int& x, int& y);

/// Reads a picture under an affine map. What is read for a device pixel depends on nothing but that pixel.
/// A picture that is made smaller is averaged: over each device pixel's exact area where it stays upright and
/// does not repeat, else over samples that leave no pixel out (up to 16 a side where it repeats).
class TImageSampler {
public:
    /// What lies outside of the picture: its nearest edge pixel, or the picture again.
    enum class TOutside : std::uint8_t { Clamp, Repeat };

    /// `toDevice` maps the picture's pixels; false where nothing can be read.
    bool Prepare(const TPixels& image, const TAffine& toDevice, TInterpolation mode, TOutside outside);
    /// The pixels of the device's row y from column x on.
    void Fetch(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const;

private:
    enum class TMethod : std::uint8_t { Whole, Nearest, Bilinear, Bicubic, Several, Area };
    /// Part of the picture's columns or rows, with what of the first and the last belongs to it, of 256.
    struct TReach {
        int First, End;
        std::uint32_t FirstPart, LastPart;
        std::uint32_t PartOf(int i) const { return i == First ? FirstPart : i == End - 1 ? LastPart : 256; }
        std::uint64_t Sum() const;
    };

    std::uint32_t At(int x, int y) const;
    std::uint32_t Bilinear(double u, double v) const;
    std::uint32_t Bicubic(double u, double v) const;
    std::uint32_t Several(double u, double v) const;
    void FetchWhole(int x, int y, int count, std::uint32_t* pixels) const;
    void FetchArea(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const;
    static TReach ReachOf(double middle, double length, int size);
    bool FetchBoxes(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const;
    void FindBoxes();

    TPixels FImage;
    TAffine FToImage;
    TOutside FOutside = TOutside::Clamp;
    TMethod FMethod = TMethod::Bilinear;
    int FLeft = 0; ///< Whole: where the picture begins
    int FTop = 0;
    int FCountX = 1; ///< Several: samples along a device pixel's width and height
    int FCountY = 1;
    int FAcross =
        0;         ///< Area: whole pixels of the picture in a device pixel's width and height, the first one
    int FDown = 0; ///< of which begins at FLeft and FTop; 0 where they are not whole
};

} // namespace Vz
