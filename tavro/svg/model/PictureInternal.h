#pragma once

#include "tavro/graphics/Bitmap.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Vz {

class TSVGDocument;

/// The most pixels of PNG pictures that a document holds, with those of the documents embedded in it: 128 MB.
inline constexpr std::uint64_t MostPicturePixels = MaxPngPixels;

/// What a data URI in a document shows: a PNG picture or an SVG document. Never changes, so that elements and
/// copies of their document share it.
struct TSVGPicture {
    std::string Uri;
    std::shared_ptr<const TVZGPBitmap> Bitmap;    ///< the decoded PNG; null where there is none
    std::shared_ptr<const TSVGDocument> Embedded; ///< the embedded document; null where there is none
    bool IsTooMuch = false;                       ///< a PNG that is not decoded for its size

    /// Why the picture shows nothing, for a diagnostic; empty where it shows something.
    std::string Fault() const;
    /// Reads the URI for an element of the document. Equal URIs are decoded once a document, and shared as
    /// long as an element has them. A PNG that exceeds MostPicturePixels together with the other pictures is
    /// not decoded.
    static std::shared_ptr<const TSVGPicture> Read(TSVGDocument& document, std::string_view uri);
};

} // namespace Vz
