// Several threads at once, each with components of its own. Run in a build with the thread sanitizer
// (scripts/test --threads) these tests find what such components share without saying so.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/text/Outlines.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"

#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace Vz::Test {
namespace {

constexpr int ThreadCount = 4;

/// A component shown by a host without a window, and all that it has shown so far.
class TShow {
public:
    explicit TShow(std::string_view className)
        : FComponent(GetClass(className).Create())
        , FControl(dynamic_cast<TControl&>(*FComponent)) {
        for (const TProp& row : FComponent->GetPropTable()) // what shows the present time shows one time
            if (row.Type.Kind == TValueKind::DateTime) row.Set(*FComponent, TValue(TDateTime(45000.25)));
        FControl.SetBounds(0, 0, 60, 60);
        FHost = std::make_unique<THeadlessHost>(FControl);
    }
    TShow& Set(std::string_view path, std::string_view text) {
        SetPropText(*FComponent, path, text);
        return Paint();
    }
    TShow& Paint() {
        const TPixels pixels = FHost->PaintStale().GetPixels();
        for (int y = 0; y < pixels.Height; ++y)
            FPictures.append(reinterpret_cast<const char*>(pixels.Row(y)),
                             std::size_t(pixels.Width) * sizeof *pixels.Data);
        return *this;
    }
    TShow& Resize(int size) {
        FControl.SetBounds(0, 0, size, size);
        return Paint();
    }
    TComponent& GetComponent() { return *FComponent; }
    /// All pictures, pixel by pixel.
    const std::string& GetPictures() const { return FPictures; }

private:
    std::unique_ptr<TComponent> FComponent;
    TControl& FControl;
    std::unique_ptr<THeadlessHost> FHost;
    std::string FPictures;
};

/// A value other than the default, where the row's kind has an easy one.
std::string_view OtherValue(const TProp& row) {
    switch (row.Type.Kind) {
    case TValueKind::Single:
    case TValueKind::Double:
        return "41";
    case TValueKind::Color:
        return "0xFF2060A0";
    case TValueKind::Enumeration:
        return row.Type.Members->Members.back();
    case TValueKind::Text:
        return "0.0 km";
    case TValueKind::DateTime:
        return "15:30:45";
    default:
        return {};
    }
}

/// Makes a component, sets all that it publishes, one after the other, paints each time, and goes through a
/// form; what it showed.
std::string Use(std::string_view className) {
    TShow show(className);
    show.Paint();
    for (const TProp* row : ListRows(show.GetComponent()))
        if (const std::string_view text = OtherValue(*row); !text.empty() && row->Name != "Name")
            show.Set(row->Name, text);
    return show.GetPictures() + WriteForm(*ReadForm(WriteForm(show.GetComponent())));
}

/// Runs `work` on several threads that all start together.
void OnThreads(int count, const std::function<void(int thread)>& work) {
    std::barrier start(count);
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            work(i);
        });
}

TEST(Threads, ComponentsOfSeveralThreadsShowWhatTheyShowOnOne) {
    RegisterComponentClasses();
    const auto classes = GetClasses();
    const std::size_t count = classes.size();
    // First the threads, so that they meet at all that is made on first use.
    std::vector<std::vector<std::string>> shown(ThreadCount, std::vector<std::string>(count));
    OnThreads(ThreadCount, [&](int thread) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = (i + static_cast<std::size_t>(thread) / 2) % count;
            shown[static_cast<std::size_t>(thread)][at] = Use(classes[at].Name);
        }
    });
    for (std::size_t i = 0; i < count; ++i) {
        const std::string alone = Use(classes[i].Name);
        for (const auto& ofThread : shown)
            EXPECT_TRUE(ofThread[i] == alone) << classes[i].Name;
    }
}

/// Each turns its needle through a few values, with changes of all else between.
void Move(TShow& show) {
    for (const char* value : {"20", "35", "60", "61", "75"})
        show.Set("Value", value);
    show.Set("FrameColor", "0xFF804020").Set("Value", "10").Set("Value", "90");
}

TEST(Threads, EqualComponentsOfOneThreadGoOnOnSeveral) {
    RegisterComponentClasses();
    // What is equal is kept once a thread. From here on each is another thread's.
    std::vector<std::unique_ptr<TShow>> shows(ThreadCount);
    for (auto& show : shows) {
        show = std::make_unique<TShow>("TVZSpeedometer");
        Move(*show);
    }
    OnThreads(ThreadCount, [&](int thread) {
        auto& show = shows[static_cast<std::size_t>(thread)];
        show->Resize(150); // flattens what it draws anew
        show->Set("FrameColor", "0xFFC0C0C0");
        Move(*show);
    });
    for (const auto& show : shows)
        EXPECT_TRUE(show->GetPictures() == shows[0]->GetPictures());
    // And all of them end elsewhere, while this thread goes on with equal ones.
    auto here = std::make_unique<TShow>("TVZSpeedometer");
    std::jthread end([&] { shows.clear(); });
    Move(*here);
}

TEST(Threads, LayersThatMovedAreNotSharedWhileTheyAreDrawnAnew) {
    RegisterComponentClasses();
    for (int round = 0; round < 5; ++round) {
        TShow moved("TVZSpeedometer");
        moved.Paint();
        std::barrier start(2);
        std::jthread other([&] {
            start.arrive_and_wait();
            moved.Set("FrameColor", "0xFF804020").Set("FrameColor", "0xFF408020");
        });
        start.arrive_and_wait();
        for (int i = 0; i < 5; ++i) {
            TShow equal("TVZSpeedometer");
            EXPECT_FALSE(equal.Paint().GetPictures().empty());
        }
    }
}

TEST(Threads, OneThreadMakesAnotherPaints) {
    RegisterComponentClasses();
    TShow here("TVZSpeedometer"), there("TVZSpeedometer");
    Move(here);
    std::jthread([&] { Move(there); }).join();
    EXPECT_TRUE(here.GetPictures() == there.GetPictures());
    Move(there);
    Move(here);
    EXPECT_TRUE(here.GetPictures() == there.GetPictures());
}

TEST(Threads, CopiesOfADocumentAreEditedEachOnItsThread) {
    auto first = std::make_unique<TSVGDocument>();
    first->LoadFromText("<svg viewBox='0 0 40 40'><g id='g' transform='scale(2)' fill='red'>"
                        "<path id='p' d='M0 0L10 0 10 10z'/><text id='t' x='1' y='9'>8</text></g></svg>");
    std::vector<std::unique_ptr<TSVGDocument>> copies(ThreadCount);
    for (auto& copy : copies) {
        copy = std::make_unique<TSVGDocument>();
        copy->AssignContent(*first);
    }
    first.reset(); // so that the last to edit has what they share for itself
    OnThreads(ThreadCount, [&](int thread) {
        TSVGDocument& copy = *copies[static_cast<std::size_t>(thread)];
        const float turn = 1 + static_cast<float>(thread);
        auto& group = *copy.Find<TSVGGraphicElement>("g");
        group.SetMatrix(TAffine::Rotation(turn).ToMatrix());
        group.GetBrush().SetColor(0xFF00FF00);
        copy.Find<TSVGPath>("p")->GetData().ApplyMatrix(TAffine::Scaling(turn, 1).ToMatrix());
        copy.Find<TSVGGraphicElement>("t")->SetId("t" + std::to_string(thread));
        copies[static_cast<std::size_t>(thread)]->Add<TSVGPath>().SetId("added");
    });
    for (int i = 0; i < ThreadCount; ++i) {
        const TSVGDocument& copy = *copies[static_cast<std::size_t>(i)];
        EXPECT_EQ(copy.Find<TSVGPath>("p")->GetBounds().Right, 10.0f * static_cast<float>(1 + i));
        EXPECT_EQ(copy.FindElement("t"), nullptr);
        EXPECT_NE(copy.FindElement("t" + std::to_string(i)), nullptr);
    }
}

TEST(Threads, TextsOfSeveralThreadsHaveTheSameOutlines) {
    const auto shape = [](int i) {
        TTextStyle style;
        style.Family = "Family " + std::to_string(i % 7);
        style.Size = 10;
        const TTextSpan span{0, 6, &style};
        std::vector<TFigures> outlines;
        for (const TCluster& cluster : ShapeText("Tacho " + std::to_string(i), {&span, 1}, {}))
            outlines.push_back(cluster.Outline);
        return outlines;
    };
    std::vector<std::vector<std::vector<TFigures>>> made(ThreadCount);
    OnThreads(ThreadCount, [&](int thread) {
        for (int i = 0; i < 40; ++i)
            made[static_cast<std::size_t>(thread)].push_back(shape(i));
    });
    for (const auto& ofThread : made)
        EXPECT_TRUE(ofThread == made[0]);
}

} // namespace
} // namespace Vz::Test
