#include "tavro/package/Package.h"

#include "tavro/controls/Form.h"
#include "tavro/instruments/clocks/Clock.h"
#include "tavro/instruments/clocks/DigitalClock.h"
#include "tavro/instruments/compass/Compass.h"
#include "tavro/instruments/lights/CubeLight.h"
#include "tavro/instruments/lights/TrafficLight.h"
#include "tavro/instruments/meters/Battery.h"
#include "tavro/instruments/meters/BatteryModern.h"
#include "tavro/instruments/meters/Speedometer.h"
#include "tavro/instruments/meters/Thermometer.h"
#include "tavro/instruments/round/AnalogCalendar.h"
#include "tavro/instruments/round/CircularAltimeter.h"
#include "tavro/instruments/round/CircularBarometer.h"
#include "tavro/instruments/round/CircularClock.h"
#include "tavro/instruments/round/CircularCompass.h"
#include "tavro/instruments/round/CircularFuelGauge.h"
#include "tavro/instruments/round/CircularSpeedometer.h"
#include "tavro/instruments/switches/RotaryDial.h"
#include "tavro/instruments/switches/RotarySwitch.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/Control.h"

#include <iterator>
#include <string>

namespace Vz {

namespace {

constinit TPackageUnit Units[] = {
    {"VZSVGControl"},          {"VZSVGGraphics"},      {"Vz.Tavro.Instruments"},  {"Vz.Tavro.Altimeters"},
    {"Vz.Tavro.Barometers"},   {"Vz.Tavro.Batteries"}, {"Vz.Tavro.Clocks"},       {"Vz.Tavro.FuelGauges"},
    {"Vz.Tavro.Compass"},      {"Vz.Tavro.Lights"},    {"Vz.Tavro.Speedometers"}, {"Vz.Tavro.Switches"},
    {"Vz.Tavro.Thermometers"},
};

TPackageUnit& FindUnit(std::string_view name) {
    for (TPackageUnit& unit : Units)
        if (unit.Name == name) return unit;
    throw EArgumentOutOfRange("there is no unit " + std::string(name));
}

bool Start(TPackageUnit& unit) { return unit.Nesting++ == 0; }
bool Stop(TPackageUnit& unit) { return unit.Nesting > 0 && --unit.Nesting == 0; }

void Tell(const TUnitNotice& notice, std::string_view name) {
    if (notice) notice(name);
}

} // namespace

void RegisterComponentClasses() {
    // A new component class is one line here.
    RegisterClass<TVZForm>();
    RegisterClass<TVZSVGControl>();
    RegisterClass<TVZSpeedometer>();
    RegisterClass<TVZCircularAltimeter>();
    RegisterClass<TVZCircularBarometer>();
    RegisterClass<TVZCircularFuelGauge>();
    RegisterClass<TVZCircularSpeedometer>();
    RegisterClass<TVZCircularClock>();
    RegisterClass<TVZAnalogCalendar>();
    RegisterClass<TVZThermometer>();
    RegisterClass<TVZBattery>();
    RegisterClass<TVZBatteryModern>();
    RegisterClass<TVZCircularCompass>();
    RegisterClass<TVZCompass>();
    RegisterClass<TVZRotarySwitch>();
    RegisterClass<TVZRotaryDial>();
    RegisterClass<TVZTrafficLight>();
    RegisterClass<TVZCubeLight>();
    RegisterClass<TVZClock>();
    RegisterClass<TVZDigitalClock>();
}

std::span<const TPackageUnit> GetPackageUnits() { return Units; }

bool StartUnit(std::string_view name) { return Start(FindUnit(name)); }
bool StopUnit(std::string_view name) { return Stop(FindUnit(name)); }

void StartPackage(const TUnitNotice& started) {
    for (TPackageUnit& unit : Units)
        if (Start(unit)) Tell(started, unit.Name);
}

void StopPackage(const TUnitNotice& stopped) {
    for (auto unit = std::rbegin(Units); unit != std::rend(Units); ++unit)
        if (Stop(*unit)) Tell(stopped, unit->Name);
}

} // namespace Vz
