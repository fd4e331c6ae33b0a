#pragma once

// Opens the clocks and calendars: TVZClock, TVZDigitalClock, TVZCircularClock, TVZAnalogCalendar.

#include "tavro/instruments/clocks/Clock.h"
#include "tavro/instruments/clocks/DigitalClock.h"
#include "tavro/instruments/round/AnalogCalendar.h"
#include "tavro/instruments/round/CircularClock.h"
