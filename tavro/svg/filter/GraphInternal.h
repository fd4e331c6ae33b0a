#pragma once

#include "tavro/svg/filter/OpsInternal.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/Referenced.h"

#include <functional>
#include <string>
#include <vector>

namespace Vz {

/// Where a filter works, and in which units it counts.
struct TFilterPlace {
    TAffine ToPixels;      ///< units of the filtered element -> pixels of the filter
    TRectD Region;         ///< the filter region, in the element's units
    TRect Pixels;          ///< the pixels that are computed: those of the region, or less
    TRectD Box;            ///< the element's box, in its units
    bool BoxUnits = false; ///< the primitives count in parts of the box
    TLengthBasis Basis;    ///< of lengths outside of box units
    bool Enabled = true;   ///< false: colours are greyed
};

/// What a filter asks of the painter.
struct TFilterPainter {
    /// The element's fill or stroke all over the region.
    std::function<TFilterImage(bool stroke)> Paint;
    /// What an feImage shows, within `pixels`. Its place is `area`, in the element's units.
    std::function<TFilterImage(const TSVGPlainElement& image, const TRectD& area, const TRect& pixels)> Image;
};

/// What is known of a filter before it runs.
struct TFilterSurvey {
    double ReachX = 0, ReachY = 0; ///< pixels that something is carried at most
    bool IsBounded = true;         ///< false: paints where nothing was
    bool IsTurnable = true;        ///< true: may run on pixels that are turned against the element's axes
    double Cost = 0;               ///< about nanoseconds a pixel
};

/// One primitive of a filter, tied to what goes into it.
struct TFilterNode {
    /// What goes in where it is no earlier node.
    enum TInput { SourceGraphic = -1, SourceAlpha = -2, FillPaint = -3, StrokePaint = -4 };

    const struct TPrimitive* Primitive = nullptr;
    const TSVGPlainElement* Part = nullptr;
    std::vector<int> Inputs; ///< indexes of nodes, or TInput
    int LastUse = 0;         ///< the last node that takes the result
    TRectD Area;             ///< the subregion, in pixels, not limited to the region
    TRectD UserArea;         ///< the same in the element's units
    TRect Pixels;            ///< the pixels that it makes
    TFilterColors Colors = TFilterColors::Linear;
    TComputedStyle Style;
};

/// Whole pixels of a box, to which a rounding error adds none.
TRect WholePixels(const TRectD& box);

/// A shift by dx, dy under the map; where it keeps the axes in whole pixels, so that edges stay as sharp as
/// they are.
TPointD PixelShift(const TAffine& toPixels, double dx, double dy);

/// Runs the primitives of one filter element.
class TFilterGraph {
public:
    /// `filter` is the element whose children count, `place` where it works.
    TFilterGraph(const TSVGFilter& filter, const TFilterPlace& place);
    bool IsEmpty() const { return FNodes.empty(); }
    TFilterSurvey Survey() const;
    /// The filter's result of the source, within the place's pixels.
    TFilterImagePtr Run(const TFilterImagePtr& source, const TFilterPainter& painter);

    // What the primitives ask.
    const TFilterPlace& Place() const { return FPlace; }
    const TFilterNode& Node(int index) const { return FNodes[static_cast<std::size_t>(index)]; }
    const TFilterPainter& Painter() const { return *FPainter; }
    /// What goes into a node: its own input `which`, in the node's colours or as it is.
    TFilterImagePtr Input(const TFilterNode& node, std::size_t which) const;
    TFilterImagePtr InputAsIs(const TFilterNode& node, std::size_t which) const;
    /// The subregion, in pixels, of what goes into a node.
    TRectD InputArea(const TFilterNode& node) const;

private:
    void AddNode(const TSVGPlainElement& part);
    int FindInput(const std::string* name) const;
    void PlaceNode(TFilterNode& node) const;
    TFilterImagePtr Special(int input) const;

    TFilterPlace FPlace;
    std::vector<TFilterNode> FNodes;
    std::vector<TFilterImagePtr> FResults;
    mutable TFilterImagePtr FSpecials[5];
    const TFilterPainter* FPainter = nullptr;
};

/// The attributes of a primitive.
class TPartReader {
public:
    TPartReader(const TFilterNode& node, const TFilterPlace& place)
        : FPart(*node.Part)
        , FPlace(place) {}
    TPartReader(const TSVGPlainElement& part, const TFilterPlace& place)
        : FPart(part)
        , FPlace(place) {}

    const TSVGPlainElement& Part() const { return FPart; }
    /// The attributes of an element in the primitive.
    TPartReader Child(const TSVGPlainElement& part) const { return {part, FPlace}; }
    const std::string* Text(std::string_view name) const { return FPart.FindAttribute(name); }
    /// The attribute as a number; `byDefault` where it is absent or none.
    double Number(std::string_view name, double byDefault) const;
    /// All numbers; nothing where the attribute is absent or has something else in it.
    std::vector<double> Numbers(std::string_view name) const;
    /// One number for both, or two; nothing where the attribute is absent or something else.
    std::optional<TPointD> Pair(std::string_view name) const;
    /// The place of the text in a list of names; `byDefault` where it is absent or none of them.
    template <std::size_t N>
    int Word(std::string_view name, const std::string_view (&names)[N], int byDefault) const {
        const std::string* const text = Text(name);
        for (std::size_t i = 0; text && i < N; ++i)
            if (*text == names[i]) return static_cast<int>(i);
        return byDefault;
    }

    // Lengths of the primitive's units in the element's units.
    double LengthX(double value) const { return FPlace.BoxUnits ? value * FPlace.Box.Width() : value; }
    double LengthY(double value) const { return FPlace.BoxUnits ? value * FPlace.Box.Height() : value; }
    // Lengths of the primitive's units in pixels along the element's axes.
    double PixelsX(double value) const;
    double PixelsY(double value) const;
    /// A vector in the primitive's units as one in pixels.
    TPointD Vector(double dx, double dy) const;
    /// A shift of a whole picture: likewise, and in whole pixels unless these are turned.
    TPointD Shift(double dx, double dy) const;

private:
    const TSVGPlainElement& FPart;
    const TFilterPlace& FPlace;
};

/// A row of the table of primitives.
struct TPrimitive {
    std::string_view Name;
    int Inputs;       ///< 0, 1 or 2; below 0: those of its children (feMerge)
    bool WholeRegion; ///< its subregion is the filter region unless it says otherwise
    double Cost;      ///< about nanoseconds a pixel
    TFilterImage (*Run)(const TFilterGraph& graph, const TFilterNode& node);
    void (*Survey)(const TPartReader& reader, TFilterSurvey& survey); ///< null: works on each pixel alone
};
/// Null where there is no primitive of that name.
const TPrimitive* FindPrimitive(std::string_view name);

} // namespace Vz
