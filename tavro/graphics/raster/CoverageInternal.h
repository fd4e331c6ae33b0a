#pragma once

#include "tavro/graphics/Figures.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace Vz {

/// A row of coverage in the making: entry i of Steps is by how much the winding changes from pixel X - 1 + i
/// to pixel X + i, in units of 1 / TCoverage::One. Whoever reads a row leaves zeros behind.
struct TCoverageRow {
    std::int32_t* Steps = nullptr;
    int X = 0; ///< device column of Steps[0]
    int Y = 0;
    int Count = 0; ///< columns up to where nothing changes any more
};

/// A falling or rising side of a polygon; Y0 < Y1, both whole multiples of 1 / TCoverage::One.
struct TTraceEdge {
    double X0, Y0, Y1;
    double Slope; ///< of X by Y
    float Rate;   ///< the height that falls on a column's width, in 1 / TCoverage::One
    int Sign;     ///< +1 where the polygon runs downwards here
};

/// The rows of a box that edges are being added to.
struct TTraceBand {
    static constexpr int MostRows = 64;
    static constexpr std::size_t Size = MostRows + 8; ///< vectors of eight rows reach beyond the end

    int Top = 0, Bottom = 0;
    int Left = 0, Width = 0;       ///< the box's columns
    std::int32_t* Steps = nullptr; ///< that of the first column in the first row
    std::ptrdiff_t Stride = 0;
    /// Of each row: the first and the last column of the box that was touched, and the winding behind the
    /// last.
    std::array<int, Size> First, Last, Sum;

    /// Nothing is touched yet.
    void Clear();
};

/// Adds an edge's part in each row of a band. Implementation for any machine.
void TraceEdge(const TTraceEdge& edge, TTraceBand& band);
/// The same, to the last bit, with vector instructions; only where TRowOps has it.
void TraceEdgeAvx2(const TTraceEdge& edge, TTraceBand& band);

/// Turns polygons into rows of exact area coverage. An edge's part in a pixel is a whole number that depends
/// on the edge and the pixel only, never on the box, so that a picture painted in pieces equals one painted
/// at once. Windings count modulo 65536.
class TCoverage {
public:
    static constexpr int One = 1 << 16;
    /// Entries of Steps behind the last column that may be read and written.
    static constexpr int Margin = 16;

    /// Maps the polygons to the device. A polygon with a point that is not finite is left out.
    void SetShape(const TPolygons& polygons, const TAffine& toDevice);
    /// The box around the mapped points.
    const TRectD& Bounds() const { return FBounds; }
    /// The pixels that the shape covers wholly while it touches no other; empty where it is no such
    /// rectangle.
    TRect WholePixels() const;
    /// Begins with the rows of the shape in a box of device pixels.
    void Begin(const TRect& box);
    /// The next rows that have coverage, at least one, from top to bottom; none after the last. They are good
    /// until the next call.
    std::span<const TCoverageRow> Next();
    /// Bytes of working memory in use by the shape and the box at hand, and held.
    std::size_t UsedBytes() const;
    std::size_t HeldBytes() const;

private:
    /// The steps of a band stay in the nearest cache.
    static constexpr int MaxBand = TTraceBand::MostRows;
    static constexpr int BandSteps = 6144;
    /// At least as many columns behind the last as a side's part in a row may touch.
    static constexpr int SpillColumns = 4;

    struct TEdge : TTraceEdge {
        std::int32_t NextInBand;
    };

    void AddEdge(const TPointD& from, const TPointD& to);
    void OpenBand(int band);
    void TraceBand(int band);
    std::span<const TCoverageRow> CloseBand();

    std::vector<TPointD> FPoints;
    std::vector<std::uint32_t> FStarts;
    TRectD FBounds;
    TRect FBox;
    int FBandHeight = 0;
    int FBandCount = 0;
    int FBandIndex = 0;
    TTraceBand FBand;          ///< the one at hand
    std::vector<TEdge> FEdges; ///< empty where there is one band: its edges are traced at once
    std::vector<std::int32_t> FFirstInBand;
    std::vector<std::int32_t> FActive;
    std::vector<std::int32_t> FSteps;
    void (*FTrace)(const TTraceEdge& edge, TTraceBand& band) = nullptr;
    std::array<TCoverageRow, MaxBand> FRows;
};

} // namespace Vz
