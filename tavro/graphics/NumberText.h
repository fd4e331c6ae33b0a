#pragma once

#include <string>

namespace Vz {

/// Reads one number of SVG's grammar (SVG 1.1, 4.2: sign, digits with or without a point, exponent; no unit,
/// no leading blanks) from [first, last). Returns where it ends, or `first` where there is none; `value` is
/// then untouched. Beyond double's range the value is an infinity, below its least figure zero, each with its
/// sign.
const char* ScanNumber(const char* first, const char* last, double& value);

/// Appends a finite number in the fewest characters that read back to it: no zero before the point ("-.5"),
/// no plus sign or leading zero in the exponent ("1e-7"). Zero of either sign is "0".
void AppendNumber(std::string& text, double value);
void AppendNumber(std::string& text, float value);

} // namespace Vz
