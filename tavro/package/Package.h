#pragma once

#include <functional>
#include <span>
#include <string_view>

namespace Vz {

// The package as a whole: which component classes there are, and the order in which its units start and stop.
// Everything here runs on the user interface's thread.

/// Makes every component class known to form files and tools (ClassRegistry.h). Nothing happens the second
/// time. A program calls it once, before it reads a form.
void RegisterComponentClasses();

/// A unit of the package and how often it was started without having been stopped.
struct TPackageUnit {
    std::string_view Name;
    int Nesting = 0;
};

/// The units, in the order in which they start.
std::span<const TPackageUnit> GetPackageUnits();

/// Starts one unit. True when that was its first start; else only its nesting grows. Raises
/// EArgumentOutOfRange for an unknown name.
bool StartUnit(std::string_view name);

/// Takes one start back. True when it was the last one, so that the unit is shut down now; nothing happens to
/// a unit that is not running. Raises EArgumentOutOfRange for an unknown name.
bool StopUnit(std::string_view name);

/// Told of a unit that was really started or shut down.
using TUnitNotice = std::function<void(std::string_view name)>;

/// Starts every unit, in order, and stops every unit, in the reverse order; what a host calls that loads and
/// unloads the package. Starting creates nothing and registers nothing.
void StartPackage(const TUnitNotice& started = {});
void StopPackage(const TUnitNotice& stopped = {});

} // namespace Vz
