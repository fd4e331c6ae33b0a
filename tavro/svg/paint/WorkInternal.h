#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <algorithm>

namespace Vz {

/// A clip holds a byte for each pixel, a layer four.
constexpr double HeldByClip = 0.25;

/// Counts what a painting does for the references that it follows: uses, patterns, clips, masks, markers,
/// filters, documents in images. A few of them can stand for work without end, so beyond a bound what they
/// lead to is left out. What a document draws directly is bounded by its length and does not count, but for
/// what takes few letters: dashes, and the pixels of pictures.
/// The figures are rough and the same on every machine: so is the picture.
class TPaintWork {
public:
    /// About the nanoseconds that references may take in a picture, and beside them for each of its pixels.
    static constexpr double Most = 6e8;
    static constexpr double MostPerPixel = 60;
    /// How many pixels of layers, masks, clips and tiles are held at once.
    static constexpr double MostHeld = 1 << 27;
    // What things take, in nanoseconds.
    static constexpr double Visit = 1500;
    static constexpr double BoxVisit = 500;
    static constexpr double TextVisit = 20000;
    static constexpr double TilePixel = 4;

    /// For a picture of a device's clip.
    explicit TPaintWork(const IPaintDevice& device)
        : FMost(Most + MostPerPixel * PixelsOf(device)) {}

    /// About the nanoseconds that filters took; they have a bound of their own.
    double FilterCost = 0;

    void Add(double cost) { FSpent += cost; }
    bool IsLeft() const { return FSpent < FMost; }
    /// Adds what a step takes; false, and it must not be done, where nothing is left.
    bool Take(double cost) {
        if (cost == 0) return true;
        if (!IsLeft()) return false;
        Add(cost);
        return true;
    }
    double Spent() const { return FSpent; }
    /// What may be spent.
    double Bound() const { return FMost; }
    /// The most pixels that were held at once.
    double GreatestHeld() const { return FGreatestHeld; }
    /// Takes down what is drawn. What is not reached through a reference counts apart, and only where it is
    /// asked for, because it takes time to count.
    void CountDrawn(double cost) { (IsFollowing() ? FSpent : FDirect) += cost; }
    bool CountsDrawn() const { return IsFollowing() || FCountsDirect; }
    void CountDirect() { FCountsDirect = true; }
    double Direct() const { return FDirect; }
    /// True while references are followed.
    bool IsFollowing() const { return FFollowed > 0; }

    /// What runs while it lives is reached through a reference.
    class TFollow {
    public:
        explicit TFollow(TPaintWork& work)
            : FWork(work) {
            ++FWork.FFollowed;
        }
        ~TFollow() { --FWork.FFollowed; }
        TFollow(const TFollow&) = delete;
        TFollow& operator=(const TFollow&) = delete;

    private:
        TPaintWork& FWork;
    };

    /// Pixels that are held while it lives.
    class THold {
    public:
        THold(TPaintWork& work, double pixels)
            : FWork(work)
            , FPixels(pixels) {
            FWork.FHeld += FPixels;
            if (Fits()) FWork.FGreatestHeld = std::max(FWork.FGreatestHeld, FWork.FHeld);
        }
        ~THold() { FWork.FHeld -= FPixels; }
        THold(const THold&) = delete;
        THold& operator=(const THold&) = delete;
        /// False where this is too much: it must not be done.
        bool Fits() const { return FPixels == 0 || FWork.FHeld <= MostHeld; }

    private:
        TPaintWork& FWork;
        double FPixels;
    };

    /// What it takes to cut a stroke into dashes.
    static double CostOfDashes(const TShape& shape);
    /// What it takes to draw a shape on a device, dashes left out.
    static double CostOf(const TShape& shape, const TPaint& paint, const TAffine& toDevice,
                         const IPaintDevice& device);
    /// What it takes to read the part of a picture that a device shows: its own pixels may be many more.
    static double CostOfReading(const TPixels& image, const TAffine& toDevice, const IPaintDevice& device);
    /// The pixels of a device's clip; 0 where nothing bounds it, for then none are painted.
    static double PixelsOf(const IPaintDevice& device);

private:
    double FMost;
    double FSpent = 0;
    double FDirect = 0;
    double FHeld = 0;
    double FGreatestHeld = 0;
    bool FCountsDirect = false;
    int FFollowed = 0;
};

} // namespace Vz
