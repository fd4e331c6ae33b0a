#pragma once

// The unit of what all instruments share.

#include "instruments/ArtworkCheck.h"
#include "instruments/ColorFunctions.h"
#include "instruments/Decoration.h"
#include "instruments/Instrument.h"
#include "instruments/InstrumentProps.h"
