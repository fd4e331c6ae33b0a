#pragma once

// Opens what all instruments share, and what a program needs to write instruments of its own.

#include "tavro/instruments/ArtworkCheck.h"
#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/ColorFunctions.h"
#include "tavro/instruments/Editing.h"
#include "tavro/instruments/ScalePublish.h"
#include "tavro/instruments/Tables.h"
