#pragma once

#include "tavro/graphics/Color.h"

#include <optional>
#include <string>
#include <string_view>

namespace Vz {

class TControl;

/// The kinds of picture file.
enum class TPictureFormat { Png, Svg, Pdf };

/// The most pixels that a PNG file is drawn with.
inline constexpr double MaxPicturePixels = 1 << 26;

/// By the ending of a file's name, `.png`, `.svg` or `.pdf` in any case; nothing for another.
std::optional<TPictureFormat> FindPictureFormat(std::string_view file);

/// The control in its bounds as a picture file's bytes; it keeps the host that it has. `scale`: pixels or
/// points of the picture for a pixel of the control. Raises EArgumentOutOfRange for a picture without pixels
/// or with too many.
std::string DrawPicture(TControl& control, TPictureFormat format, double scale = 1,
                        TVZGPColor background = 0);

} // namespace Vz
