#pragma once

#include "tavro/graphics/Bitmap.h"
#include "tavro/graphics/raster/LayerPair.h"

#include <memory>
#include <thread>

namespace Vz {

/// The two pictures that a control keeps: what is drawn before its active element and after it. Controls
/// whose pictures are equal keep them once, which is what makes a wall of equal gauges small and fast.
class TKeptLayers {
public:
    TVZGPBitmap Before, After; ///< of one size; not to be changed once they are shared

    /// What is known of the pictures, as of Share.
    const TLayerPair& GetPair() const { return FPair; }

    /// Pictures to be drawn anew: these, where nobody else keeps them and this thread made them, else others.
    static std::shared_ptr<TKeptLayers> Renew(std::shared_ptr<TKeptLayers> layers);
    /// Equal pictures that a control of this thread keeps already, else these, which others may then find.
    static std::shared_ptr<TKeptLayers> Share(std::shared_ptr<TKeptLayers> layers);

private:
    bool IsEqual(const TKeptLayers& other) const;

    TLayerPair FPair;
    bool FCanBeFound = false;
    const std::thread::id FThread = std::this_thread::get_id(); ///< which finds them
};

} // namespace Vz
