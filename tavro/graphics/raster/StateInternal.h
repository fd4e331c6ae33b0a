#pragma once

#include "tavro/graphics/raster/CoverageInternal.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/raster/LayerPair.h"
#include "tavro/graphics/raster/PaintSourceInternal.h"

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

namespace Vz {

/// Entries that are used as a stack and keep their memory when they are taken down.
template <class T> class TKeptStack {
public:
    bool IsEmpty() const { return FDepth == 0; }
    std::size_t Depth() const { return FDepth; }
    T& Push() {
        if (FDepth == FEntries.size()) FEntries.push_back(std::make_unique<T>());
        return *FEntries[FDepth++];
    }
    void Pop() { --FDepth; }
    T& Top() { return *FEntries[FDepth - 1]; }
    const T& Top() const { return *FEntries[FDepth - 1]; }
    void Clear() { FDepth = 0; }
    std::span<const std::unique_ptr<T>> Kept() const { return FEntries; }

private:
    std::vector<std::unique_ptr<T>> FEntries;
    std::size_t FDepth = 0;
};

/// Coverage 0..255 of a box of device pixels.
struct TCoverageMap {
    TRect Box;
    std::vector<std::uint8_t> Values; ///< and TCoverage::Margin more
    std::uint8_t* At(int x, int y) {
        return Values.data() + std::ptrdiff_t(y - Box.Top) * Box.Width() + (x - Box.Left);
    }
    const std::uint8_t* At(int x, int y) const { return const_cast<TCoverageMap*>(this)->At(x, y); }
};

/// A clip in force: nothing is painted outside of Box, and within it through Map where there is one.
struct TClipLevel {
    TRect Box;
    TRect Active;          ///< around what of Box the surface's rectangles leave open
    std::size_t First = 0; ///< the surface's rectangles that meet Box are among these
    std::size_t End = 0;
    const TCoverageMap* Map = nullptr; ///< this level's, or that of one below
    TCoverageMap Own;
};

/// Pixels that are drawn on: the target, a layer or a mask.
struct TSurface {
    TRect Box; ///< device pixels that it holds
    TPixels Pixels;
    std::vector<TRect> Rects; ///< where drawing has an effect, in Box
    TRect Drawn;              ///< around all that was drawn
    /// The pixels of a layer; transparent between one use and the next.
    std::vector<std::uint32_t> Store;
    unsigned Opacity = 255;
    TBlendMode Blend = TBlendMode::Normal;
    TMaskKind MaskKind = TMaskKind::Alpha;

    std::uint32_t* At(int x, int y) const { return Pixels.Row(y - Box.Top) + (x - Box.Left); }
};

/// The drawing between two kept pictures that goes on.
struct TBetween {
    /// The columns of a row that it may have changed: the lower picture lies there.
    struct TReach {
        int Left = 0, Right = 0;
        bool IsEmpty() const { return Left >= Right; }
    };
    const TLayerPair* Layers = nullptr; ///< null: there is none
    std::size_t Depth = 0;              ///< of the surface that it goes on
    std::size_t FirstRect = 0;          ///< that surface's rectangles which were open at the beginning
    std::size_t EndRect = 0;
    int X = 0, Y = 0;            ///< device place of the pictures
    TRect Box;                   ///< their pixels within the clip
    bool Clears = false;         ///< what lies under the pictures in Box is the colour to clear with
    std::vector<TReach> Reached; ///< one a row of Box

    bool IsReached(int y, int left, int right) const {
        if (y < Box.Top || y >= Box.Bottom) return true;
        const TReach& reached = Reached[static_cast<std::size_t>(y - Box.Top)];
        return left >= reached.Left && right <= reached.Right;
    }
    /// What is known of the pictures in a row of Box.
    const TLayerRow& RowOf(int y) const { return Layers->Rows()[static_cast<std::size_t>(y - Y)]; }
};

/// A raster device's surfaces, clips and working memory.
struct TRasterState {
    /// A state at rest of this thread, or a new one, set up for a target.
    static TRasterState* Take(const TPixels& target, std::span<const TRect> region);
    /// Puts a state to rest, so that the next device of this thread allocates nothing.
    static void GiveBack(TRasterState* state);

    TSurface& Surface() { return Surfaces.Top(); }
    const TClipLevel& Clip() const { return Clips.Top(); }
    /// The box in which something can change.
    const TRect& ActiveBox() const { return Clip().Active; }
    /// The surface's rectangles that the clip may leave open.
    std::span<const TRect> OpenRects() const {
        const TClipLevel& clip = Clip();
        return std::span(Surfaces.Top().Rects).subspan(clip.First, clip.End - clip.First);
    }

    void PushClip(std::span<const TClipShape> shapes);
    void PushClipBox(const TRect& box, const TCoverageMap* map);
    void PopClip() { Clips.Pop(); }
    /// Begins a surface that takes up what is drawn from here on; nothing clips it but its box.
    TSurface& PushSurface(const TRect& box);
    /// Ends it: `action` gets it with the surface below in force; then what was drawn is forgotten.
    template <class TAction> void EndSurface(TAction&& action);
    void LayDown(const TSurface& layer);
    void ApplyMask(const TSurface& mask);

    /// Begins a drawing between two pictures; false where that has to be done the long way.
    bool BeginBetween(const TLayerPair& layers, int x, int y);
    bool EndBetween(const TLayerPair& layers);
    /// Sets the target's pixels to a premultiplied colour, as late as can be.
    void ClearOnDemand(std::uint32_t pixel);
    /// Called before pixels of the surface in force change.
    void AboutToChange(int y, int left, int right) {
        if (!IsBetween()) return AboutToDraw();
        if (!Between.IsReached(y, left, right)) Reach(y, left, right);
    }
    void AboutToChange(std::span<const TCoverageRow> rows) {
        if (!IsBetween()) return AboutToDraw();
        for (const TCoverageRow& row : rows)
            if (const int end = row.X + row.Count; !Between.IsReached(row.Y, row.X, end))
                Reach(row.Y, row.X, end);
    }

    /// Paints the coverage's shape.
    void Fill(TFillRule rule, const TPaintSource& source);
    /// Calls action(y, left, right) for each run of pixels of a box that can change.
    template <class TAction> void EachRow(const TRect& box, TAction&& action);

    TKeptStack<TSurface> Surfaces;
    TKeptStack<TClipLevel> Clips;
    TRect Target;
    TCoverage Coverage;
    TPolygons Polygons;
    TBetween Between;
    std::vector<std::uint8_t> CoverageRow;
    std::vector<std::uint32_t> PixelRow;
    TSampleScratch Scratch;

private:
    void SetUp(const TPixels& target, std::span<const TRect> region);
    void FillBox(const TRect& box, TFillRule rule, const TPaintSource& source);
    void FetchRows(const TFillJob& job, const TPaintSource& source);
    void AddToClip(TCoverageMap& map, TFillRule rule);
    void Forget(TSurface& layer);
    /// What is drawn goes onto the surface between two pictures.
    bool IsBetween() const { return Between.Layers && Between.Depth == Surfaces.Depth(); }
    void AboutToDraw() {
        if (FUncleared > 0 && Surfaces.Depth() == 1) ClearRest();
    }
    void Reach(int y, int left, int right);
    const TBetween::TReach& ReachedIn(int y) const {
        return Between.Reached[static_cast<std::size_t>(y - Between.Box.Top)];
    }
    /// The lowest picture's pixels become the target's as they are.
    bool Copies() const { return Between.Clears && FClearPixel == 0; }
    /// The drawing did not come to a row, and the merged picture can be laid down there.
    bool IsUnreached(int y) const { return ReachedIn(y).IsEmpty() && Between.RowOf(y).IsExact; }
    void LayBefore(int y, int left, int right) const;
    int CopyUnreached(const TRect& part, int y) const;
    void FinishRow(int y, int left, int right) const;
    void LayUnder(std::uint32_t* at, const TPixels& picture, int y, int first, int end) const;
    void LayBoth(std::uint32_t* at, int y, int first, int end) const;
    void ClearRest();
    bool TakeUncleared(const TRect& box);
    void Shrink();

    /// Counts memory that a layer or clip takes. Those that follow each other count twice, which is on the
    /// safe side.
    void NoteUse(std::size_t bytes) {
        FLayerBytes += bytes;
        FMostUsed = std::max(FMostUsed, FLayerBytes);
    }
    std::size_t HeldBytes() const;

    std::uint32_t FClearPixel = 0;
    std::size_t FUncleared = 0;             ///< how many of the target's rectangles are still to be cleared
    std::vector<std::uint8_t> FIsUncleared; ///< one a rectangle
    std::size_t FLayerBytes = 0;
    std::size_t FMostUsed = 0;
    int FSpareUses = 0; ///< devices on end that used much less than is held
};

template <class TAction> void TRasterState::EndSurface(TAction&& action) {
    TSurface& ended = Surfaces.Top();
    Surfaces.Pop();
    Clips.Pop();
    action(ended);
    Forget(ended);
}

template <class TAction> void TRasterState::EachRow(const TRect& box, TAction&& action) {
    const TRect open = Intersection(box, Clip().Box);
    for (const TRect& rect : OpenRects()) {
        const TRect part = Intersection(rect, open);
        for (int y = part.Top; y < part.Bottom; ++y)
            action(y, part.Left, part.Right);
    }
}

} // namespace Vz
