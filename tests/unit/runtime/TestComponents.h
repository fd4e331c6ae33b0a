#pragma once

#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Component.h"
#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Strings.h"

#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vz {

enum class TTestPart { tpFrame, tpFace, tpGlass };

template <> struct EnumNames<TTestPart> {
    static constexpr std::string_view Name = "TTestPart";
    static constexpr std::string_view SetName = "TTestParts";
    static constexpr std::string_view Members[] = {"tpFrame", "tpFace", "tpGlass"};
};

/// A text object: letters a to z only.
class TTestWord : public TPersistent {
public:
    static constexpr std::string_view TypeName = "word";

    void Assign(const TPersistent& source) override {
        if (const auto* other = dynamic_cast<const TTestWord*>(&source))
            FWord = other->FWord;
        else
            TPersistent::Assign(source);
    }
    std::string ToText() const override { return FWord; }
    void FromText(std::string_view text) override {
        if (text.find_first_not_of("abcdefghijklmnopqrstuvwxyz") != text.npos)
            throw EConvertError("not a word");
        FWord = text;
    }

private:
    std::string FWord;
};

/// An owned object with properties of its own.
class TTestFont : public TPersistent {
public:
    static constexpr std::string_view TypeName = "TTestFont";

    void Assign(const TPersistent& source) override {
        const auto& other = dynamic_cast<const TTestFont&>(source);
        FSize = other.FSize;
        FFamily = other.FFamily;
    }
    std::span<const TProp> GetPropTable() const override;

    float GetSize() const { return FSize; }
    void SetSize(float value) { FSize = value; }
    const std::string& GetFamily() const { return FFamily; }
    void SetFamily(std::string_view value) { FFamily = value; }

private:
    float FSize = 12;
    std::string FFamily = "Sans";
};

/// A component with a property of every kind. It writes what happens to it into Log.
class TTestGauge final : public TCreatable<TTestGauge, TComponent> {
public:
    static constexpr std::string_view TypeName = "TTestGauge";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

    bool GetOn() const { return FOn; }
    void SetOn(bool value) { FOn = value; }
    int GetCount() const { return FCount; }
    void SetCount(int value) {
        if (value == 13) throw EArgumentOutOfRange("thirteen is refused");
        if (value == RefusedCount) throw EArgumentOutOfRange("this object refuses it");
        FCount = value;
        Log.push_back("Count");
    }
    std::uint8_t GetSmall() const { return FSmall; }
    void SetSmall(std::uint8_t value) { FSmall = value; }
    float GetMax() const { return FMax; }
    void SetMax(float value) { FMax = value; }
    bool IsMaxStored() const { return FMax != 240; }
    double GetExact() const { return FExact; }
    void SetExact(double value) { FExact = value; }
    std::uint32_t GetFrameColor() const { return FFrameColor; }
    void SetFrameColor(std::uint32_t value) { FFrameColor = value; }
    TTestPart GetPart() const { return FPart; }
    void SetPart(TTestPart value) { FPart = value; }
    TSet<TTestPart> GetParts() const { return FParts; }
    void SetParts(TSet<TTestPart> value) { FParts = value; }
    TDateTime GetTime() const { return FTime; }
    void SetTime(TDateTime value) { FTime = value; }
    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(std::string_view value) {
        if (value == "refused") throw EConvertError("caption refused");
        FCaption = value;
    }
    int GetAlways() const { return FAlways; }
    void SetAlways(int value) { FAlways = value; }
    const TStrings& GetLabels() const { return FLabels; }
    void SetLabels(const TStrings& value) { FLabels.Assign(value); }
    const TTestWord* GetWord() const { return HasWord ? &FWord : nullptr; }
    void SetWord(const TTestWord& value) { FWord.Assign(value); }
    TTestFont& GetFont() const { return FFont; }
    void SetOnChange(TNotifyEvent event) { OnChange = std::move(event); }

    void BeginUpdate() override { Log.push_back("Begin"); }
    void EndUpdate() override { Log.push_back("End"); }
    void SetParentComponent(TComponent& parent) override { Log.push_back("Parent " + parent.GetName()); }

    std::vector<std::string> Log;
    TNotifyEvent OnChange;
    bool HasWord = true;
    int RefusedCount = -1; ///< refused by this object only, so that a trial of another one does not show it

private:
    bool FOn = true;
    int FCount = 0;
    std::uint8_t FSmall = 1;
    float FMax = 240;
    double FExact = 0.1;
    std::uint32_t FFrameColor = 0xFF888A85;
    TTestPart FPart = TTestPart::tpFrame;
    TSet<TTestPart> FParts = TSet<TTestPart>::FromMask(7);
    TDateTime FTime = 0;
    std::string FCaption;
    int FAlways = 5;
    TStrings FLabels;
    TTestWord FWord;
    mutable TTestFont FFont;
};

/// A component that holds others.
class TTestForm final : public TCreatable<TTestForm, TComponent> {
public:
    static constexpr std::string_view TypeName = "TTestForm";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;
    int GetWidth() const { return FWidth; }
    void SetWidth(int value) {
        if (value == RefusedWidth) throw EInvalidOperation("width refused");
        FWidth = value;
    }
    const std::string& GetTitle() const { return FTitle; }
    void SetTitle(std::string_view value) { FTitle = value; }

    int RefusedWidth = -1; ///< as the gauge's RefusedCount

private:
    int FWidth = 100;
    std::string FTitle = "Form";
};

inline std::span<const TProp> TTestFont::GetPropTable() const {
    static constexpr std::array Rows{
        Prop<&TTestFont::GetSize, &TTestFont::SetSize>("Size", 12),
        Prop<&TTestFont::GetFamily, &TTestFont::SetFamily>("Family", "Sans"),
    };
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

inline std::span<const TProp> TTestForm::GetPropTable() const {
    static constexpr std::array Rows{
        Prop<&TTestForm::GetWidth, &TTestForm::SetWidth>("Width", 100),
        Prop<&TTestForm::GetTitle, &TTestForm::SetTitle>("Title", "Form"),
    };
    return Rows;
}

inline std::span<const TProp> TTestGauge::GetPropTable() const {
    static constexpr std::array Rows{
        Prop<&TTestGauge::GetOn, &TTestGauge::SetOn>("On", true),
        Prop<&TTestGauge::GetCount, &TTestGauge::SetCount>("Count", 0),
        Prop<&TTestGauge::GetSmall, &TTestGauge::SetSmall>("Small", 1),
        Prop<&TTestGauge::GetMax, &TTestGauge::SetMax, &TTestGauge::IsMaxStored>("Max", 100),
        Prop<&TTestGauge::GetExact, &TTestGauge::SetExact>("Exact", 0.1),
        Prop<&TTestGauge::GetFrameColor, &TTestGauge::SetFrameColor>("FrameColor", 0xFF888A85),
        Prop<&TTestGauge::GetPart, &TTestGauge::SetPart>("Part", TTestPart::tpFrame),
        Prop<&TTestGauge::GetParts, &TTestGauge::SetParts>("Parts", TSet<TTestPart>::FromMask(7)),
        Prop<&TTestGauge::GetTime, &TTestGauge::SetTime>("Time", 0.0),
        Prop<&TTestGauge::GetCaption, &TTestGauge::SetCaption>("Caption", ""),
        Prop<&TTestGauge::GetAlways, &TTestGauge::SetAlways>("Always"),
        ObjectProp<&TTestGauge::GetLabels, &TTestGauge::SetLabels>("Labels"),
        ObjectProp<&TTestGauge::GetWord, &TTestGauge::SetWord>("Word"),
        ObjectProp<&TTestGauge::GetFont>("Font"),
        EventProp<&TTestGauge::SetOnChange>("OnChange"),
    };
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

/// Registers the test's classes while it lives.
struct TTestClasses {
    TTestClasses() {
        RegisterClass<TTestGauge>();
        RegisterClass<TTestForm>();
    }
    ~TTestClasses() {
        UnregisterClass("TTestGauge");
        UnregisterClass("TTestForm");
    }
};

} // namespace Vz
