#pragma once

#include "graphics/Figures.h"

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

/// Rows are worked on in bands of at most this many.
inline constexpr int MostBandRows = 64;

/// Of each row of a band: the first and the last column of the box that was touched, and the winding behind
/// the last.
struct TBandSpans {
    static constexpr std::size_t Size = MostBandRows + 4; ///< vectors of four rows reach beyond the end
    std::array<int, Size> First, Last, Sum;
    void Clear(int rows, int width);
};

/// The part of an edge that lies in a band. Columns are shifted by TCoverage::Shift.
struct TTraceJob {
    double X0, Y0, Slope; ///< the edge: X0 + (y - Y0) Slope
    double Rate;          ///< the height that falls on a column's width, in 1 / TCoverage::One
    double Begin, End;    ///< the rows that it covers, Begin < End
    int Sign;
    int Top; ///< the band's first row
    int BoxLeft, BoxRight;
    std::int32_t* Steps; ///< that of the box's first column in the band's first row
    std::ptrdiff_t Stride;
    TBandSpans* Spans;
};

/// Adds an edge's part in one row of its band, counted from the band's first.
void TraceRow(const TTraceJob& job, int row);
/// Adds it in all rows. Implementation for any machine.
void TraceRows(const TTraceJob& job);
/// The same, to the last bit, with vector instructions; only where TRowOps has it.
void TraceRowsAvx2(const TTraceJob& job);

/// Turns polygons into rows of exact area coverage. An edge's part in a pixel is a whole number that depends
/// on the edge and the pixel only, never on the box, so that a picture painted in pieces equals one painted
/// at once. Windings count modulo 65536.
class TCoverage {
public:
    static constexpr int One = 1 << 16;
    /// Device columns are shifted by this, so that all that can lie in a box is positive and truncation
    /// rounds down.
    static constexpr double Shift = 1 << 18;
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
    static constexpr int MaxBand = MostBandRows;
    static constexpr int BandSteps = 6144;

    /// A falling or rising side of a polygon; Y0 < Y1, both whole multiples of 1 / One.
    struct TEdge {
        double X0, Y0, Y1;
        double Slope; ///< of X by Y
        int Sign;     ///< +1 where the polygon runs downwards here
        std::int32_t NextInBand;
    };

    void AddEdge(const TPointD& from, const TPointD& to);
    void Trace(const TEdge& edge);
    void OpenBand(int band);
    void TraceBand(int band);
    std::span<const TCoverageRow> CloseBand();

    std::vector<TPointD> FPoints; ///< columns are shifted
    std::vector<std::uint32_t> FStarts;
    TRectD FBounds;
    TRect FBox;
    int FStride = 0; ///< entries of FSteps a row
    int FBandHeight = 0;
    int FBandCount = 0;
    int FBand = 0;
    int FTop = 0, FBottom = 0; ///< rows of the band at hand
    std::vector<TEdge> FEdges; ///< empty where there is one band: its edges are traced at once
    std::vector<std::int32_t> FFirstInBand;
    std::vector<std::int32_t> FActive;
    std::vector<std::int32_t> FSteps;
    void (*FTrace)(const TTraceJob& job) = nullptr;
    TBandSpans FSpans;
    std::array<TCoverageRow, MaxBand> FRows;
};

} // namespace Vz
