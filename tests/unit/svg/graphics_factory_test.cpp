#include "tavro/svg/GraphicsFactory.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace Vz {
namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

/// Counts the notices of a path data.
struct TListener {
    TVZPathData Data;
    int Notices = 0;

    explicit TListener(std::string_view path) {
        Data.SetPathString(path);
        Data.OnChange = [this](TObject&) { ++Notices; };
    }
};

/// A document with one path between two others.
struct TPathScene {
    TSVGDocument Document;
    TSVGPath* Path;

    TPathScene() {
        Document.LoadFromText(R"(<svg xmlns="http://www.w3.org/2000/svg"><g id="Scale">
            <path id="First" d="M0 0 H1"/><path id="Tick" d="M50 10 V20" stroke="#f00"/><path id="Last" d="M9 9 H1"/>
            </g></svg>)");
        Path = Document.Find<TSVGPath>("Tick");
    }
    TSVGElement& Group() { return *Document.FindElement("Scale"); }
    TSVGPath& Child(std::size_t index) { return dynamic_cast<TSVGPath&>(Group().GetChild(index)); }
};

std::size_t FigureCount(const TFigures& figures) {
    return static_cast<std::size_t>(std::count(figures.Verbs.begin(), figures.Verbs.end(), TVerb::Move));
}

void ExpectLine(const TFigures& figures, std::size_t index, double x1, double y1, double x2, double y2) {
    const double* numbers = figures.Numbers.data() + 4 * index;
    EXPECT_NEAR(numbers[0], x1, 2e-4) << index;
    EXPECT_NEAR(numbers[1], y1, 2e-4) << index;
    EXPECT_NEAR(numbers[2], x2, 2e-4) << index;
    EXPECT_NEAR(numbers[3], y2, 2e-4) << index;
}

TEST(GraphicsFactory, CopiesOfPathDataFollowTheSource) {
    TListener tick("M50 10 L50 20");
    TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, 50}, 90, 3);
    const TFigures& figures = tick.Data.GetFigures();
    ASSERT_EQ(FigureCount(figures), 4u);
    ExpectLine(figures, 0, 50, 10, 50, 20);
    ExpectLine(figures, 1, 90, 50, 80, 50); // clockwise
    ExpectLine(figures, 2, 50, 90, 50, 80);
    ExpectLine(figures, 3, 10, 50, 20, 50);
    EXPECT_EQ(tick.Notices, 1);
}

TEST(GraphicsFactory, ElevenCopiesByThirtyDegreesMakeTwelveTicksRoundTheCircle) {
    TListener tick("M50 10 L50 20");
    TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, 50}, 30, 11);
    const TFigures& figures = tick.Data.GetFigures();
    ASSERT_EQ(FigureCount(figures), 12u);
    for (int k = 0; k < 12; ++k) {
        const double angle = k * std::numbers::pi / 6;
        const double x = std::sin(angle);
        const double y = -std::cos(angle);
        ExpectLine(figures, std::size_t(k), 50 + 40 * x, 50 + 40 * y, 50 + 30 * x, 50 + 30 * y);
    }
}

TEST(GraphicsFactory, AngleZeroMakesIdenticalCopies) {
    TListener tick("M50 10 L50 20");
    TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, 50}, 0, 2);
    EXPECT_EQ(tick.Data.GetPathString(), [] {
        TVZPathData three;
        three.SetPathString("M50 10 L50 20 M50 10 L50 20 M50 10 L50 20");
        return three.GetPathString();
    }());
}

TEST(GraphicsFactory, CopiesOfPathDataMoveAlongAStep) {
    TListener tick("M1 2 L3 4");
    TSVGGraphicsFactory::Duplicate(&tick.Data, 10, -5, 2);
    const TFigures& figures = tick.Data.GetFigures();
    ASSERT_EQ(FigureCount(figures), 3u);
    ExpectLine(figures, 0, 1, 2, 3, 4);
    ExpectLine(figures, 1, 11, -3, 13, -1);
    ExpectLine(figures, 2, 21, -8, 23, -6);
    EXPECT_EQ(tick.Notices, 1);
}

TEST(GraphicsFactory, SourceOfSeveralFiguresIsRepeatedAsAWhole) {
    TListener ticks("M0 0 L1 0 M0 5 L1 5");
    TSVGGraphicsFactory::Duplicate(&ticks.Data, 10, 0, 2);
    const TFigures& figures = ticks.Data.GetFigures();
    ASSERT_EQ(FigureCount(figures), 6u);
    ExpectLine(figures, 3, 10, 5, 11, 5);
    ExpectLine(figures, 4, 20, 0, 21, 0);
}

TEST(GraphicsFactory, NoCopyAndNoNoticeWithoutACount) {
    for (const int count : {0, -1, -100}) {
        TListener tick("M50 10 L50 20");
        const std::string before = tick.Data.GetPathString();
        TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, 50}, 30, count);
        TSVGGraphicsFactory::Duplicate(&tick.Data, 1, 2, count);
        EXPECT_EQ(tick.Data.GetPathString(), before);
        EXPECT_EQ(tick.Notices, 0);

        TPathScene scene;
        int changes = 0;
        scene.Document.OnChange = [&](const TSVGChange&) { ++changes; };
        TSVGGraphicsFactory::Duplicate(scene.Path, TPointF{50, 50}, 30, count);
        TSVGGraphicsFactory::Duplicate(scene.Path, 1, 2, count);
        EXPECT_EQ(scene.Group().GetChildCount(), 3u);
        EXPECT_EQ(changes, 0);
    }
}

TEST(GraphicsFactory, FiguresThatAreNotFiniteMakeNoCopy) {
    TListener tick("M50 10 L50 20");
    TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, NotANumber}, 30, 2);
    TSVGGraphicsFactory::Duplicate(&tick.Data, TPointF{50, 50}, std::numeric_limits<float>::infinity(), 2);
    TSVGGraphicsFactory::Duplicate(&tick.Data, NotANumber, 0, 2);
    EXPECT_EQ(FigureCount(tick.Data.GetFigures()), 1u);
    TPathScene scene;
    TSVGGraphicsFactory::Duplicate(scene.Path, TPointF{50, 50}, NotANumber, 2);
    EXPECT_EQ(scene.Group().GetChildCount(), 3u);
}

TEST(GraphicsFactory, CopiesOfAPathElementFormAChainBehindIt) {
    TPathScene scene;
    TSVGGraphicsFactory::Duplicate(scene.Path, TPointF{50, 50}, 90, 3);
    ASSERT_EQ(scene.Group().GetChildCount(), 6u);
    EXPECT_EQ(scene.Child(0).GetId(), "First");
    EXPECT_EQ(&scene.Child(1), scene.Path);
    EXPECT_EQ(scene.Child(5).GetId(), "Last");
    ExpectLine(scene.Child(1).GetData().GetFigures(), 0, 50, 10, 50, 20);
    ExpectLine(scene.Child(2).GetData().GetFigures(), 0, 90, 50, 80, 50);
    ExpectLine(scene.Child(3).GetData().GetFigures(), 0, 50, 90, 50, 80);
    ExpectLine(scene.Child(4).GetData().GetFigures(), 0, 10, 50, 20, 50);
    EXPECT_EQ(scene.Child(4).GetPen().GetColor(), 0xFFFF0000);
    EXPECT_EQ(scene.Document.Find<TSVGPath>("Tick"), scene.Path);
}

TEST(GraphicsFactory, CopiesOfAPathElementMoveAlongAStep) {
    TPathScene scene;
    TSVGGraphicsFactory::Duplicate(scene.Path, 5, 7, 2);
    ASSERT_EQ(scene.Group().GetChildCount(), 5u);
    ExpectLine(scene.Child(2).GetData().GetFigures(), 0, 55, 17, 55, 27);
    ExpectLine(scene.Child(3).GetData().GetFigures(), 0, 60, 24, 60, 34);
}

} // namespace
} // namespace Vz
