#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Vz {

class TVZSVGCustomInstrument;

/// Something that an artwork lacks or has wrong.
struct TArtworkFault {
    int Line = 0; ///< 1 first; 0: it has no place, as with an element that is missing
    int Column = 0;
    std::string Text;
};

/// Holds an SVG text against what an instrument's class looks for in its artwork (GetArtworkContract), and
/// gives the faults: those of the contract in its order, then what the reader skipped. Empty: the artwork
/// serves. A text that is no SVG document is one fault with its place. The instrument stays as it is.
std::vector<TArtworkFault> CheckArtwork(const TVZSVGCustomInstrument& instrument, std::string_view svg);

} // namespace Vz
