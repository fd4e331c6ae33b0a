#include "tavro/runtime/ClassRegistry.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Props.h"
#include "tests/unit/runtime/TestComponents.h"

#include <gtest/gtest.h>

using namespace Vz;

TEST(ClassRegistry, KeepsTheOrderOfRegistrationAndCreates) {
    const std::size_t before = GetClasses().size();
    {
        const TTestClasses classes;
        ASSERT_EQ(GetClasses().size(), before + 2);
        EXPECT_EQ(GetClasses()[before].Name, "TTestGauge");
        EXPECT_EQ(GetClasses()[before + 1].Name, "TTestForm");
        const auto form = GetClass("TTestForm").Create();
        EXPECT_EQ(form->ClassName(), "TTestForm");
        TComponent& gauge = FindClass("TTestGauge")->CreateOwned(*form);
        EXPECT_EQ(gauge.GetOwner(), form.get());
        RegisterClass<TTestForm>(); // a second time: nothing
        EXPECT_EQ(GetClasses().size(), before + 2);
    }
    EXPECT_EQ(GetClasses().size(), before);
}

TEST(ClassRegistry, UnknownAndDoubleNamesAreRefused) {
    const TTestClasses classes;
    EXPECT_EQ(FindClass("TNoSuch"), nullptr);
    EXPECT_EQ(FindClass("ttestform"), nullptr);
    EXPECT_THROW(GetClass("TNoSuch"), EClassNotFound);
    TClassEntry other = GetClass("TTestForm");
    other.Create = GetClass("TTestGauge").Create;
    EXPECT_THROW(RegisterClass(other), EComponentError);
    UnregisterClass("TNoSuch");
}
