#pragma once

// The unit of what all instruments share.

#include "tavro/instruments/ArtworkCheck.h"
#include "tavro/instruments/ColorFunctions.h"
#include "tavro/instruments/Decoration.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/InstrumentProps.h"
