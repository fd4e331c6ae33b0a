#pragma once

// The unit of the clocks and calendars.

#include "instruments/round/AnalogCalendar.h"
#include "instruments/round/CircularClock.h"
