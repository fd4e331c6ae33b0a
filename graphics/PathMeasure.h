#pragma once

#include "graphics/Figures.h"

namespace Vz {

/// The length of all sub-paths together, in the figures' units; closing lines count, moves do not.
double PathLength(const TFigures& figures);

/// The directions (not of unit length) in which an Arc step that starts at `from` leaves there and arrives at
/// its end. `numbers` are the step's seven. An arc that is a straight line gives that line's direction.
void ArcDirections(TPointD from, const double* numbers, TPointD& leaving, TPointD& arriving);

} // namespace Vz
