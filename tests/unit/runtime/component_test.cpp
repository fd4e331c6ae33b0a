#include "tavro/runtime/Component.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Updates.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace Vz;

namespace {

std::vector<std::string> Log;

/// Says when it is made and destroyed; fails where `FailAt` says so.
class TNoisyBase : public TComponent {
public:
    using TComponent::TComponent;
    ~TNoisyBase() override { Log.push_back("destroy " + GetName()); }

    static inline std::string FailAt;

protected:
    void Construct() override {
        TComponent::Construct();
        Log.push_back("base constructs " + std::string(ClassName()));
        if (FailAt == "Construct") throw EResNotFound("no artwork");
    }
    void AfterConstruction() override {
        TComponent::AfterConstruction();
        Log.push_back("after");
        if (FailAt == "AfterConstruction") throw EInvalidCast("bad artwork");
    }
};

class TNoisy final : public TCreatable<TNoisy, TNoisyBase> {
public:
    static constexpr std::string_view TypeName = "TNoisy";
    using TCreatable::TCreatable;

protected:
    void Construct() override {
        Log.push_back("before base");
        TCreatable::Construct();
        Log.push_back("after base");
        if (MakesPart) TNoisy::CreatePart(*this);
    }

public:
    static inline bool MakesPart = false;

private:
    static void CreatePart(TComponent& owner) {
        MakesPart = false;
        TNoisy::Create(owner).SetName("Part");
        throw EReadError("after the part");
    }
};

/// Concrete itself, and base of another concrete class.
class TPlain : public TCreatable<TPlain, TNoisyBase> {
public:
    static constexpr std::string_view TypeName = "TPlain";
    using TCreatable::TCreatable;
};
class TSpecial final : public TCreatable<TSpecial, TPlain> {
public:
    static constexpr std::string_view TypeName = "TSpecial";
    using TCreatable::TCreatable;
};

class TComponentTest : public testing::Test {
protected:
    void SetUp() override {
        Log.clear();
        TNoisyBase::FailAt.clear();
        TNoisy::MakesPart = false;
    }
    void TearDown() override { TNoisyBase::FailAt.clear(); }
};

} // namespace

// Nobody but the maker has a key, so no component comes about without both phases.
static_assert(!std::is_default_constructible_v<TNoisy>);
static_assert(!std::is_default_constructible_v<TCreateKey>);
static_assert(!std::is_constructible_v<TNoisy, int>);
static_assert(!std::is_copy_constructible_v<TNoisy>);

TEST_F(TComponentTest, ConstructDispatchesToTheClassAndAfterConstructionFollows) {
    const auto noisy = TNoisy::Create();
    EXPECT_EQ(Log,
              (std::vector<std::string>{"before base", "base constructs TNoisy", "after base", "after"}));
    EXPECT_EQ(noisy->ClassName(), "TNoisy");
    EXPECT_EQ(noisy->GetOwner(), nullptr);
}

TEST_F(TComponentTest, DerivedFromAConcreteClassCreatesItsOwn) {
    static_assert(std::is_same_v<decltype(TSpecial::Create()), std::unique_ptr<TSpecial>>);
    EXPECT_EQ(TSpecial::Create()->ClassName(), "TSpecial");
    EXPECT_EQ(TPlain::Create()->ClassName(), "TPlain");
}

TEST_F(TComponentTest, OwnerDestroysTheYoungestFirst) {
    {
        const auto owner = TNoisy::Create();
        owner->SetName("Owner");
        TNoisy::Create(*owner).SetName("First");
        TNoisy& second = TNoisy::Create(*owner);
        second.SetName("Second");
        TNoisy::Create(second).SetName("Inner");
        EXPECT_EQ(second.GetOwner(), owner.get());
        EXPECT_EQ(owner->GetComponentCount(), 2);
        EXPECT_EQ(&owner->GetComponent(1), &second);
        EXPECT_THROW(owner->GetComponent(2), EArgumentOutOfRange);
        EXPECT_THROW(owner->GetComponent(-1), EArgumentOutOfRange);
        Log.clear();
    }
    EXPECT_EQ(
        Log, (std::vector<std::string>{"destroy Owner", "destroy Second", "destroy Inner", "destroy First"}));
}

TEST_F(TComponentTest, FailedConstructionLeavesOwnerAsItWasAndDestroysOnce) {
    const auto owner = TNoisy::Create();
    for (const char* at : {"Construct", "AfterConstruction"}) {
        TNoisyBase::FailAt = at;
        Log.clear();
        EXPECT_THROW(TNoisy::Create(*owner), Exception) << at;
        EXPECT_EQ(owner->GetComponentCount(), 0) << at;
        EXPECT_EQ(std::count(Log.begin(), Log.end(), "destroy "), 1) << at;
        EXPECT_THROW(TNoisy::Create(), Exception) << at;
        EXPECT_EQ(std::count(Log.begin(), Log.end(), "destroy "), 2) << at;
    }
    TNoisyBase::FailAt.clear();
    TNoisy::Create(*owner).SetName("Fine");
    EXPECT_EQ(owner->GetComponentCount(), 1);
}

TEST_F(TComponentTest, PartsMadeBeforeAFailureAreDestroyedWithIt) {
    TNoisy::MakesPart = true;
    EXPECT_THROW(TNoisy::Create(), EReadError);
    EXPECT_EQ(std::count(Log.begin(), Log.end(), "destroy Part"), 1);
    EXPECT_EQ(std::count(Log.begin(), Log.end(), "destroy "), 1);
}

TEST_F(TComponentTest, NamesAreIdentifiersAndUniqueInTheirOwner) {
    const auto owner = TNoisy::Create();
    TNoisy& one = TNoisy::Create(*owner);
    TNoisy& two = TNoisy::Create(*owner);
    one.SetName("Speed_1");
    EXPECT_EQ(owner->FindComponent("Speed_1"), &one);
    EXPECT_EQ(owner->FindComponent("speed_1"), nullptr);
    EXPECT_EQ(owner->FindComponent(""), nullptr);
    for (const char* bad : {"1st", "two words", "a.b", "a-b", " ", "ä"})
        EXPECT_THROW(one.SetName(bad), EComponentError) << bad;
    EXPECT_THROW(two.SetName("Speed_1"), EComponentError);
    EXPECT_EQ(two.GetName(), "");
    EXPECT_EQ(one.GetName(), "Speed_1");
    one.SetName("Speed_1");
    TNoisy::Create(one).SetName("Speed_1"); // another owner, another matter
    one.SetName("");
    two.SetName("Speed_1");
    EXPECT_EQ(owner->FindComponent("Speed_1"), &two);
}

TEST_F(TComponentTest, ComponentsMoveBetweenOwners) {
    const auto from = TNoisy::Create();
    const auto to = TNoisy::Create();
    TNoisy& child = TNoisy::Create(*from);
    child.SetName("Child");
    EXPECT_THROW(to->RemoveComponent(child), EInvalidOperation);
    TComponent& moved = to->InsertComponent(from->RemoveComponent(child));
    EXPECT_EQ(&moved, &child);
    EXPECT_EQ(from->GetComponentCount(), 0);
    EXPECT_EQ(child.GetOwner(), to.get());
    auto twin = TNoisy::Create();
    twin->SetName("Child");
    EXPECT_THROW(to->InsertComponent(std::move(twin)), EComponentError);
    EXPECT_EQ(to->GetComponentCount(), 1);
}

TEST_F(TComponentTest, UpdateScopeEndsAlsoWhenTheEditFails) {
    struct TCounter {
        int Open = 0;
        int Ended = 0;
        void BeginUpdate() { ++Open; }
        bool Fails = false;
        void EndUpdate() {
            --Open, ++Ended;
            if (Fails) throw EConvertError("a notice");
        }
        void Edit(bool fails) {
            const TUpdateScope update(*this);
            EXPECT_EQ(Open, 1);
            if (fails) throw EReadError("an edit");
        }
    } counter;
    counter.Edit(false);
    EXPECT_EQ(counter.Ended, 1);
    EXPECT_THROW(counter.Edit(true), EReadError);
    EXPECT_EQ(counter.Ended, 2);
    counter.Fails = true;
    EXPECT_THROW(counter.Edit(false), EConvertError) << "what a notice raises reaches the caller";
    EXPECT_THROW(counter.Edit(true), EReadError) << "the edit's own fault goes first";
    EXPECT_EQ(counter.Ended, 4);
    EXPECT_EQ(counter.Open, 0);
}

TEST_F(TComponentTest, PersistentRootTakesNothing) {
    const auto one = TNoisy::Create();
    const auto two = TNoisy::Create();
    EXPECT_THROW(one->Assign(*two), EInvalidCast);
    EXPECT_THROW(one->ToText(), EInvalidOperation);
    EXPECT_THROW(one->FromText("x"), EInvalidOperation);
    EXPECT_TRUE(one->GetPropTable().empty());
}
