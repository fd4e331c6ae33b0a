#pragma once

// Opens the clocks and calendars: TVZCircularClock, TVZAnalogCalendar.

#include "tavro/instruments/round/AnalogCalendar.h"
#include "tavro/instruments/round/CircularClock.h"
