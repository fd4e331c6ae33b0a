#pragma once

#include "Request.h"
#include "controls/Control.h"

#include <string>
#include <string_view>

namespace Vz::Tool {

/// The kinds of picture file.
enum class TPictureFormat { Png, Svg, Pdf };

/// The most pixels that a PNG file is drawn with.
inline constexpr double MaxPicturePixels = 1 << 26;

/// By the file name's ending, in any case; standard output (`-`) takes PNG. Raises TUsageError for another.
TPictureFormat FormatOf(std::string_view file);

/// The control as a picture file's bytes. Raises EArgumentOutOfRange for a picture without pixels or with too
/// many.
std::string DrawPicture(TControl& control, const TPictureOptions& options, TPictureFormat format);

} // namespace Vz::Tool
