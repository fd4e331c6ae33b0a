#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Vz {

class TVZSVGCustomInstrument;

/// Something that an artwork lacks or has wrong.
struct TArtworkFault {
    int Line = 1; ///< 1 first; of an element that is missing, where the one begins that should hold it
    int Column = 1;
    std::string Text;
    bool IsWarning = false; ///< the artwork serves, but costs more than it has to
};

/// Holds an SVG text against what an instrument's class looks for in its artwork (GetArtworkContract), and
/// gives the faults: those of the contract in its order, what the reader skipped, and a warning where
/// something around the moving element keeps the rest from being cached (TSVGDocument::CanDrawInParts). No
/// fault but warnings: the artwork serves. Raises EReadError, which names `name` and the place, for a text
/// that is no SVG document. The instrument stays as it is.
std::vector<TArtworkFault> CheckArtwork(const TVZSVGCustomInstrument& instrument, std::string_view svg,
                                        const std::string& name = "artwork");

} // namespace Vz
