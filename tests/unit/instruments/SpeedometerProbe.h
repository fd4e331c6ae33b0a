#pragma once

#include "ArtworkProbe.h"
#include "tavro/Vz.Tavro.Speedometers.h"

#include <cmath>
#include <numbers>

namespace Vz::Test {

/// A speedometer, and what its artwork shows.
struct TSpeed : TShown<TVZSpeedometer> {
    double Angle() {
        const TMatrix m = Get("NeedleGroup").GetMatrix();
        return std::atan2(m.M12, m.M11) * 180 / std::numbers::pi;
    }
    std::string Labels() { return Texts("Labels"); }
};

} // namespace Vz::Test
