#pragma once

#include <string_view>

namespace Vz {

class TSVGDocument;

/// Reads an SVG text into an empty document. Raises EReadError with line and column where it is no
/// well-formed XML, is larger than the document allows, or has no svg root; what else cannot be used becomes
/// a diagnostic.
void ReadSvg(std::string_view text, std::string_view source, TSVGDocument& document);

} // namespace Vz
