#include "tavro/package/Package.h"

#include "tavro/VZSVGControl.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/Palette.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Vz;

namespace {

const std::vector<std::string> UnitsInOrder = {
    "VZSVGControl",         "VZSVGGraphics",      "Vz.Tavro.Instruments",  "Vz.Tavro.Altimeters",
    "Vz.Tavro.Barometers",  "Vz.Tavro.Batteries", "Vz.Tavro.Clocks",       "Vz.Tavro.FuelGauges",
    "Vz.Tavro.Compass",     "Vz.Tavro.Lights",    "Vz.Tavro.Speedometers", "Vz.Tavro.Switches",
    "Vz.Tavro.Thermometers"};

class TPackageTest : public testing::Test {
protected:
    ~TPackageTest() override {
        for (const TPackageUnit& unit : GetPackageUnits())
            while (unit.Nesting > 0)
                StopUnit(unit.Name);
    }

    TUnitNotice Note() {
        return [this](std::string_view name) { FNoted.emplace_back(name); };
    }
    std::vector<std::string> TakeNoted() { return std::exchange(FNoted, {}); }

private:
    std::vector<std::string> FNoted;
};

TEST_F(TPackageTest, UnitsStartInOrderAndStopInReverse) {
    StartPackage(Note());
    EXPECT_EQ(TakeNoted(), UnitsInOrder);
    StopPackage(Note());
    EXPECT_EQ(TakeNoted(), std::vector<std::string>(UnitsInOrder.rbegin(), UnitsInOrder.rend()));
}

TEST_F(TPackageTest, PackageLoadedTwiceStopsOnce) {
    StartPackage(Note());
    TakeNoted();
    StartPackage(Note());
    EXPECT_TRUE(TakeNoted().empty());
    StopPackage(Note());
    EXPECT_TRUE(TakeNoted().empty());
    StopPackage(Note());
    EXPECT_EQ(TakeNoted().size(), UnitsInOrder.size());
    StopPackage(Note());
    EXPECT_TRUE(TakeNoted().empty());
}

TEST_F(TPackageTest, EachUnitKeepsItsOwnCount) {
    EXPECT_TRUE(StartUnit("Vz.Tavro.Clocks"));
    EXPECT_FALSE(StartUnit("Vz.Tavro.Clocks"));
    StartPackage(Note());
    EXPECT_EQ(TakeNoted().size(), UnitsInOrder.size() - 1);
    StopPackage(Note());
    EXPECT_EQ(TakeNoted().size(), UnitsInOrder.size() - 1);
    EXPECT_FALSE(StopUnit("Vz.Tavro.Clocks"));
    EXPECT_TRUE(StopUnit("Vz.Tavro.Clocks"));
    EXPECT_FALSE(StopUnit("Vz.Tavro.Clocks"));
}

TEST_F(TPackageTest, UnknownUnitIsRefused) {
    EXPECT_THROW(StartUnit("Vz.Tavro.Nothing"), EArgumentOutOfRange);
    EXPECT_THROW(StopUnit(""), EArgumentOutOfRange);
}

TEST_F(TPackageTest, StartRegistersNothing) {
    const auto classes = GetClasses().size();
    const auto palette = GetPalette().size();
    StartPackage();
    EXPECT_EQ(GetClasses().size(), classes);
    EXPECT_EQ(GetPalette().size(), palette);
}

TEST(Registration, OnlyTheControlIsOfferedToDesigners) {
    Register();
    Register();
    ASSERT_EQ(GetPalette().size(), 1u);
    EXPECT_EQ(GetPalette()[0], (TPaletteEntry{"SVG", "TVZSVGControl"}));
}

TEST(Registration, ClassesAreCreatedByName) {
    RegisterComponentClasses();
    const auto count = GetClasses().size();
    RegisterComponentClasses();
    EXPECT_EQ(GetClasses().size(), count);
    for (const TClassEntry& entry : GetClasses())
        EXPECT_EQ(entry.Create()->ClassName(), entry.Name);
    EXPECT_NE(FindClass("TVZForm"), nullptr);
    EXPECT_NE(FindClass("TVZSVGControl"), nullptr);
}

} // namespace
