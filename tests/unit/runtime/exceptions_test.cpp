#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

using namespace Vz;

TEST(Exceptions, MessageBeginsWithThePlaceAsFarAsKnown) {
    EXPECT_STREQ(EReadError("broken", {"a.form", 3, 9}).what(), "a.form:3:9: broken");
    EXPECT_STREQ(EReadError("broken", {"a.form", 3, 0}).what(), "a.form:3: broken");
    EXPECT_STREQ(EReadError("broken", {"a.form"}).what(), "a.form: broken");
    EXPECT_STREQ(EReadError("broken", {"", 3, 9}).what(), "line:3:9: broken");
    EXPECT_STREQ(EReadError("broken").what(), "broken");
}

TEST(Exceptions, CarryReasonAndPlace) {
    const EConvertError error("no number", {"a.form", 3, 9});
    EXPECT_EQ(error.GetReason(), "no number");
    EXPECT_EQ(error.GetPlace(), (TSourcePlace{"a.form", 3, 9}));
}

TEST(Exceptions, FamilyIsCaughtByItsRoots) {
    EXPECT_THROW(throw EClassNotFound("x"), EVZError);
    EXPECT_THROW(throw EPropertyError("x"), EVZError);
    EXPECT_THROW(throw EResNotFound("x"), EVZError);
    EXPECT_THROW(throw EWriteError("x"), EVZError);
    EXPECT_THROW(throw EInvalidCast("x"), Exception);
    EXPECT_THROW(throw EComponentError("x"), std::exception);
}
