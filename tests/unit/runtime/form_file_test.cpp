#include "tavro/runtime/FormFile.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"
#include "tests/unit/runtime/TestComponents.h"

#include <gtest/gtest.h>

#include <random>

using namespace Vz;
namespace fs = std::filesystem;

namespace {

class TFormFileTest : public testing::Test {
protected:
    /// The message of the fault that `text` raises, which must be of class E.
    template <class E> std::string FaultOf(const std::string& text) {
        try {
            ReadForm(text, "a.form");
        } catch (const E& error) {
            return error.what();
        } catch (const std::exception& error) {
            return std::string("of another class: ") + error.what();
        }
        return "nothing raised";
    }

    static std::unique_ptr<TTestGauge> ReadGauge(const std::string& properties) {
        auto component = ReadForm("object TTestGauge\n" + properties + "\nend\n", "a.form");
        return std::unique_ptr<TTestGauge>(static_cast<TTestGauge*>(component.release()));
    }

    TTestClasses Classes;
};

constexpr char Dashboard[] = R"(object Dashboard: TTestForm
  Width = 640
  object Speed: TTestGauge
    Count = 3
    Max = 200
    FrameColor = 0xFF000001
    Parts = [tpFrame, tpGlass]
    Time = 15:30:45
    Caption = 'it''s'#13#10'km/h'
    Always = 5
    Labels = ('a' '' 'b''c')
    Word = 'needle'
    Font.Size = 14
  end
  object Inner: TTestForm
    object TTestGauge
      Always = 5
    end
  end
end
)";

} // namespace

TEST_F(TFormFileTest, ReadsWhatThePageShows) {
    const auto form = ReadForm(Dashboard, "a.form");
    EXPECT_EQ(form->GetName(), "Dashboard");
    EXPECT_EQ(form->ClassName(), "TTestForm");
    ASSERT_EQ(form->GetComponentCount(), 2);
    auto& speed = dynamic_cast<TTestGauge&>(*form->FindComponent("Speed"));
    EXPECT_EQ(speed.GetCount(), 3);
    EXPECT_EQ(speed.GetMax(), 200.0f);
    EXPECT_EQ(speed.GetFrameColor(), 0xFF000001u);
    EXPECT_EQ(speed.GetParts().GetMask(), 5u);
    EXPECT_EQ(speed.GetCaption(), "it's\r\nkm/h");
    EXPECT_EQ(speed.GetLabels().GetItems(), (std::vector<std::string>{"a", "", "b'c"}));
    EXPECT_EQ(speed.GetWord()->ToText(), "needle");
    EXPECT_EQ(speed.GetFont().GetSize(), 14.0f);
    EXPECT_EQ(speed.GetOwner(), form.get());
    EXPECT_EQ(form->FindComponent("Inner")->GetComponentCount(), 1);
}

TEST_F(TFormFileTest, WritesWhatItRead) { EXPECT_EQ(WriteForm(*ReadForm(Dashboard)), Dashboard); }

TEST_F(TFormFileTest, PropertiesAreSetOneByOneOutsideOfAnyBatch) {
    const auto form = ReadForm(Dashboard);
    const auto& speed = dynamic_cast<TTestGauge&>(*form->FindComponent("Speed"));
    EXPECT_EQ(speed.Log, (std::vector<std::string>{"Parent Dashboard", "Count"}));
}

TEST_F(TFormFileTest, FreshComponentWritesOnlyWhatHasNoDefault) {
    EXPECT_EQ(WriteForm(*TTestForm::Create()), "object TTestForm\nend\n");
    EXPECT_EQ(WriteForm(*TTestGauge::Create()), "object TTestGauge\n  Always = 5\nend\n");
}

TEST_F(TFormFileTest, CommentsBlanksAndLineEndsAreFree) {
    const auto gauge = ReadForm("\xEF\xBB\xBF// first\r\n\r\n  object  Speed :TTestGauge // a comment\r\n"
                                "\tCount=4//four\r\n Caption = 'a // b' // c\r\n Parts = [ // none\r\n ]\r\n"
                                "Labels = ( // two\n 'a' // one\n\n #13'b')\nOn = false\nend\n\n// last");
    auto& read = dynamic_cast<TTestGauge&>(*gauge);
    EXPECT_EQ(read.GetName(), "Speed");
    EXPECT_EQ(read.GetCount(), 4);
    EXPECT_EQ(read.GetCaption(), "a // b");
    EXPECT_TRUE(read.GetParts().IsEmpty());
    EXPECT_EQ(read.GetLabels().GetItems(), (std::vector<std::string>{"a", "\rb"}));
    EXPECT_FALSE(read.GetOn());
    EXPECT_EQ(ReadForm("object object: TTestForm\nend")->GetName(), "object");
}

TEST_F(TFormFileTest, CharactersByTheirNumbers) {
    EXPECT_EQ(ReadGauge("Caption = #65#8364'x'#128512")->GetCaption(), "A€x😀");
    EXPECT_EQ(ReadGauge("Caption = ''")->GetCaption(), "");
    EXPECT_EQ(ReadGauge("Caption = ''''")->GetCaption(), "'");
    for (const char* bad : {"#", "#x", "#1114112", "#55296", "#99999999999999999999", "'a'#"})
        EXPECT_THROW(ReadGauge(std::string("Caption = ") + bad), EReadError) << bad;
}

TEST_F(TFormFileTest, FaultsOfFormHaveTheirPlace) {
    const struct {
        const char* Text;
        const char* Fault;
    } cases[] = {
        {"", "a.form:1:1: a form begins with 'object'"},
        {"// only a comment\n", "a.form:2:1: a form begins with 'object'"},
        {"objekt TTestForm", "a.form:1:1: a form begins with 'object'"},
        {"object", "a.form:1:7: a name or a class is expected"},
        {"object 1: TTestForm", "a.form:1:8: a name or a class is expected"},
        {"object A: ", "a.form:1:11: a class is expected"},
        {"object A: TTestForm x", "a.form:1:21: the line should end here"},
        {"object TTestForm\n Width = 3 4\nend", "a.form:2:12: the line should end here"},
        {"object TTestForm\n  Width\nend", "a.form:2:8: '=' is expected"},
        {"object TTestForm\n  Width =\nend", "a.form:2:10: a value is expected"},
        {"object TTestForm\n  = 3\nend", "a.form:2:3: a property, an object or 'end' is expected"},
        {"object TTestForm\n", "a.form:2:1: 'end' is missing for the object of line 1"},
        {"object TTestForm\nobject A: TTestForm\nend",
         "a.form:3:4: 'end' is missing for the object of line 1"},
        {"object TTestForm\nend\nend", "a.form:3:1: nothing can follow the outermost object"},
        {"object TTestForm\nend x", "a.form:2:5: the line should end here"},
        {"object TTestForm\n  Title = 'abc\nend", "a.form:2:11: the string is not closed on its line"},
        {"object TTestForm\n  Title = 'é' x\nend", "a.form:2:15: the line should end here"},
        {"object TTestForm\n  Title = #x\nend",
         "a.form:2:11: the number of a character is expected after '#'"},
        {"object TTestGauge\n  Labels = ('a'\n 'b'\nend", "a.form:4:1: a string or ')' is expected"},
        {"object TTestGauge\n  Labels = ('a'\n", "a.form:2:12: the list is not closed"},
        {"object TTestGauge\n  Parts = [tpFrame\n Count = 3\nend", "a.form:2:11: the set is not closed"},
        {"object TTestForm\n  Width = 1\n  Width = 2\nend", "a.form:3:3: Width is set twice"},
        {"object TTestForm\nobject A: TTestForm\nend\n  Width = 2\nend",
         "a.form:4:3: properties stand in front of the objects inside"},
        {"object TTestForm\n  Title = '\xFF'\nend", "a.form:2:12: broken UTF-8 or a control character"},
        {"object TTestForm\n  Title = 'a\x01'\nend", "a.form:2:13: broken UTF-8 or a control character"},
        {"object TTestForm\n  Width = 1\r  Title = ''\nend",
         "a.form:2:12: broken UTF-8 or a control character"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(FaultOf<EReadError>(one.Text), one.Fault) << testing::PrintToString(one.Text);
}

TEST_F(TFormFileTest, FaultsOfMeaningHaveTheirPlace) {
    EXPECT_EQ(FaultOf<EClassNotFound>("object A: TNoSuch\nend"),
              "a.form:1:11: there is no component class 'TNoSuch'");
    EXPECT_EQ(FaultOf<EPropertyError>("object TTestForm\n  Wide = 3\nend"),
              "a.form:2:3: there is no property 'Wide'");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestForm\n  Width = wide\nend"),
              "a.form:2:11: Width: 'wide' is not an integer");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestForm\n  Width = '3'\nend"),
              "a.form:2:11: Width: a value of type integer is expected, without quotes");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestForm\n  Title = abc\nend"),
              "a.form:2:11: Title: a string in single quotes is expected");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestGauge\n  Labels = 'a'\nend"),
              "a.form:2:12: Labels: a list of strings ('a' 'b') is expected");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestGauge\n  Word = 'A'\nend"),
              "a.form:2:10: Word: not a word");
    EXPECT_EQ(
        FaultOf<EConvertError>("object TTestGauge\n  Parts = [tpFrame tpGlass]\nend"),
        "a.form:2:11: Parts: 'tpFrame tpGlass' is not a member of TTestPart (tpFrame, tpFace, tpGlass)");
    EXPECT_EQ(FaultOf<EPropertyError>("object TTestGauge\n  Count = 13\nend"),
              "a.form:2:11: Count: thirteen is refused");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestGauge\n  Caption = 'refused'\nend"),
              "a.form:2:13: Caption: caption refused");
    EXPECT_EQ(FaultOf<EPropertyError>("object TTestGauge\n  Font = 'x'\nend"),
              "a.form:2:10: Font: the properties of an object are set one by one");
    EXPECT_EQ(FaultOf<EPropertyError>("object TTestGauge\n  OnChange = 'x'\nend"),
              "a.form:2:14: OnChange: an event has no value");
    EXPECT_EQ(FaultOf<EReadError>(
                  "object TTestForm\n  object A: TTestForm\n  end\n  object A: TTestGauge\n  end\nend"),
              "a.form:4:10: a component named \"A\" already exists");
}

TEST_F(TFormFileTest, TheFirstFaultOfAnyKindIsNamed) {
    EXPECT_EQ(FaultOf<EPropertyError>("object TTestForm\n  Wide = 3\n  Title = 'abc\nend"),
              "a.form:2:3: there is no property 'Wide'");
    EXPECT_EQ(FaultOf<EReadError>("object TTestForm\n  Title = 'abc\n  Wide = 3\nend"),
              "a.form:2:11: the string is not closed on its line");
    EXPECT_EQ(FaultOf<EClassNotFound>("object TNoSuch\n  Title = '\xFF'\nend"),
              "a.form:1:8: there is no component class 'TNoSuch'");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestForm\n object TTestGauge\n  Count = x\n end\n object\nend"),
              "a.form:3:11: Count: 'x' is not an integer");
    EXPECT_EQ(FaultOf<EConvertError>("object TTestGauge\n  Count = 99\n  Small = x\nend"),
              "a.form:3:11: Small: 'x' is not an integer");
}

TEST_F(TFormFileTest, NestingAndSizeAreBounded) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += "object TTestForm\n";
        for (int i = 0; i < depth; ++i)
            text += "end\n";
        return text;
    };
    const auto deepest = ReadForm(nested(MaxFormDepth));
    EXPECT_EQ(ReadForm(WriteForm(*deepest))->GetComponentCount(), 1);
    EXPECT_EQ(FaultOf<EReadError>(nested(MaxFormDepth + 1)), "a.form:65:1: objects nested deeper than 64");
    EXPECT_EQ(FaultOf<EReadError>(nested(100000)), "a.form:65:1: objects nested deeper than 64");
    auto outer = TTestForm::Create();
    outer->InsertComponent(ReadForm(nested(MaxFormDepth)));
    EXPECT_THROW(WriteForm(*outer), EWriteError);
    std::string many = "object TTestForm\n";
    for (int i = 0; i < MaxFormObjects; ++i)
        many += "object A" + std::to_string(i) + ": TTestForm\nend\n";
    EXPECT_EQ(FaultOf<EReadError>(many + "end"), "a.form:8192:1: more than 4096 objects");
    const std::string tooLong(MaxFormSize + 1, ' ');
    EXPECT_EQ(FaultOf<EReadError>(tooLong), "a.form: the form is longer than 16777216 bytes");
}

TEST_F(TFormFileTest, WhatIsWrittenIsBoundedToo) {
    const auto form = TTestForm::Create();
    for (int i = 1; i < MaxFormObjects; ++i)
        TTestForm::Create(*form);
    EXPECT_EQ(ReadForm(WriteForm(*form))->GetComponentCount(), MaxFormObjects - 1);
    TTestForm::Create(*form);
    EXPECT_THROW(WriteForm(*form), EWriteError);
    const auto titled = TTestForm::Create();
    titled->SetTitle(std::string(MaxFormSize, 'x'));
    EXPECT_THROW(WriteForm(*titled), EWriteError);
}

TEST_F(TFormFileTest, ManyPropertiesTakeNoQuadraticTime) {
    std::string text = "object TTestForm\n";
    for (int i = 0; i < 100000; ++i)
        text += "P" + std::to_string(i) + " = 1\n";
    EXPECT_EQ(FaultOf<EPropertyError>(text), "a.form:2:1: there is no property 'P0'");
}

TEST_F(TFormFileTest, LoadingIntoAComponentAddsAndSets) {
    auto form = TTestForm::Create();
    form->SetName("Old");
    TTestGauge::Create(*form).SetName("Kept");
    ReadFormInto(*form, Dashboard, "a.form");
    EXPECT_EQ(form->GetName(), "Dashboard");
    EXPECT_EQ(form->GetWidth(), 640);
    ASSERT_EQ(form->GetComponentCount(), 3);
    EXPECT_EQ(form->GetComponent(0).GetName(), "Kept");
    EXPECT_EQ(form->GetComponent(1).GetName(), "Speed");
    EXPECT_EQ(form->GetComponent(1).GetOwner(), form.get());
    EXPECT_EQ(dynamic_cast<TTestGauge&>(form->GetComponent(1)).Log.back(), "Parent Dashboard");
}

TEST_F(TFormFileTest, FaultyFormLeavesAComponentAsItWas) {
    const auto owner = TTestForm::Create();
    TTestForm& form = TTestForm::Create(*owner);
    form.SetName("Form");
    form.SetTitle("Old");
    TTestGauge::Create(*owner).SetName("Taken");
    TTestGauge::Create(form).SetName("Speed");
    form.RefusedWidth = 7;
    const std::string before = WriteForm(*owner);
    for (const char* text : {
             "object New: TTestForm\n Title = 'x'\n Wide = 3\nend",
             "object New: TTestForm\n Title = 'x'\n object TTestGauge\n Count = x\n end\nend",
             "object New: TTestForm\n Title = 'x'\n object Other: TTestGauge\n end\n object Speed: "
             "TTestGauge\n end\nend",
             "object New: TTestForm\n Title = 'x'\n Width = 7\n object Other: TTestGauge\n end\nend",
             "object New: TTestGauge\nend",
             "object Taken: TTestForm\n Title = 'x'\nend",
             "object New: TTestForm\n Title = 'x'\n",
         }) {
        EXPECT_THROW(ReadFormInto(form, text, "a.form"), EVZError) << text;
        EXPECT_EQ(WriteForm(*owner), before) << text;
    }
}

TEST_F(TFormFileTest, FailedLoadPutsBackValuesOfEveryKind) {
    const auto gauge = TTestGauge::Create();
    gauge->SetCaption("old");
    gauge->SetLabels(TStrings{"old"});
    SetPropText(*gauge, "Word", "old");
    gauge->SetMax(std::nanf("")); // has no text, and comes back all the same
    gauge->SetCount(1);
    gauge->RefusedCount = 77;
    EXPECT_THROW(ReadFormInto(*gauge,
                              "object New: TTestGauge\n Caption = 'new'\n Labels = ('new')\n Max = 1\n"
                              " Font.Size = 99\n Word = 'new'\n Parts = []\n Count = 77\nend"),
                 EPropertyError);
    EXPECT_EQ(gauge->GetCaption(), "old");
    EXPECT_EQ(gauge->GetLabels().GetItem(0), "old");
    EXPECT_EQ(gauge->GetWord()->ToText(), "old");
    EXPECT_TRUE(std::isnan(gauge->GetMax()));
    EXPECT_EQ(gauge->GetCount(), 1);
    EXPECT_EQ(gauge->GetFont().GetSize(), 12.0f);
    EXPECT_EQ(gauge->GetParts().GetMask(), 7u);
    EXPECT_EQ(gauge->GetName(), "");
}

TEST_F(TFormFileTest, ValuesThatCannotBeReadBackAreNotWritten) {
    const auto gauge = TTestGauge::Create();
    gauge->SetName("Speed");
    gauge->SetMax(std::nanf(""));
    try {
        WriteForm(*gauge);
        FAIL();
    } catch (const EWriteError& error) {
        EXPECT_STREQ(error.what(), "Speed: Max is 'NaN', which a form cannot hold");
    }
    gauge->SetMax(1);
    gauge->SetCaption("\xFF");
    EXPECT_THROW(WriteForm(*gauge), EWriteError);
    gauge->SetCaption("");
    gauge->SetLabels(TStrings{"fine", "\xC3"});
    EXPECT_THROW(WriteForm(*gauge), EWriteError);
    gauge->SetLabels(TStrings());
    gauge->SetTime(1e9);
    EXPECT_THROW(WriteForm(*gauge), EWriteError);
    gauge->SetTime(0);
    gauge->SetPart(static_cast<TTestPart>(9));
    EXPECT_THROW(WriteForm(*gauge), EWriteError);
}

TEST_F(TFormFileTest, LongListsStandOverSeveralLines) {
    const auto gauge = TTestGauge::Create();
    TStrings labels;
    for (int i = 0; i < 12; ++i)
        labels.Add("label number " + std::to_string(i));
    gauge->SetLabels(labels);
    const std::string text = WriteForm(*gauge);
    EXPECT_NE(text.find("  Labels = (\n    'label number 0'\n    'label number 1'\n"), text.npos) << text;
    EXPECT_NE(text.find("    'label number 11')\n"), text.npos) << text;
    EXPECT_EQ(dynamic_cast<TTestGauge&>(*ReadForm(text)).GetLabels().GetItems(), labels.GetItems());
    gauge->SetLabels(TStrings{""});
    EXPECT_NE(WriteForm(*gauge).find("  Labels = ('')\n"), std::string::npos);
}

TEST_F(TFormFileTest, RandomComponentsReadBack) {
    std::mt19937 random(2);
    const auto text = [&] {
        static const char* const Pieces[] = {"a", "'", "''", "\n", "\r\n", "\\", "//",
                                             "#", "ü", "😀",  " ",  "end",  "\t", "\x7F"};
        std::string made;
        for (unsigned count = random() % 6; count > 0; --count)
            made += Pieces[random() % std::size(Pieces)];
        return made;
    };
    for (int i = 0; i < 500; ++i) {
        const auto form = TTestForm::Create();
        form->SetTitle(text());
        TComponent* owner = form.get();
        for (unsigned count = random() % 4; count > 0; --count) {
            TTestGauge& gauge = TTestGauge::Create(*owner);
            if (random() % 2) gauge.SetName("G" + std::to_string(count));
            gauge.SetCaption(text());
            gauge.SetMax(static_cast<float>(random()) / 1000);
            gauge.SetTime(static_cast<double>(random() % 100000) / 8);
            gauge.SetParts(TSet<TTestPart>::FromMask(random() % 8));
            for (unsigned items = random() % 4; items > 0; --items) {
                TStrings labels;
                labels.Assign(gauge.GetLabels());
                labels.Add(text());
                gauge.SetLabels(labels);
            }
            gauge.GetFont().SetFamily(text());
            if (random() % 2) owner = &gauge;
        }
        const std::string written = WriteForm(*form);
        ASSERT_EQ(WriteForm(*ReadForm(written, "written")), written);
    }
}

TEST_F(TFormFileTest, FilesAreWrittenWholeAndReadBack) {
    const fs::path file = fs::path(testing::TempDir()) / "tavro-form-test.form";
    const auto form = ReadForm(Dashboard);
    SaveForm(*form, file);
    EXPECT_EQ(ReadWholeFile(file, MaxFormSize), Dashboard);
    EXPECT_EQ(WriteForm(*LoadForm(file)), Dashboard);
    dynamic_cast<TTestGauge&>(*form->FindComponent("Speed")).SetMax(HUGE_VALF);
    EXPECT_THROW(SaveForm(*form, file), EWriteError);
    EXPECT_EQ(ReadWholeFile(file, MaxFormSize), Dashboard) << "the old file stays";
    const auto other = TTestForm::Create();
    LoadFormInto(*other, file);
    EXPECT_EQ(WriteForm(*other), Dashboard);
    fs::remove(file);
    EXPECT_THROW(LoadForm(file), EReadError);
}
