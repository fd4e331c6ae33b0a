#include "Tool.h"

#include <gmock/gmock.h>

namespace Vz::Test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint32_t Blue = 0xFF0000FF;

class TPictureTest : public TToolTest {
protected:
    TPictureTest() { WriteBox(); }

    void ExpectSize(const std::string& name, unsigned width, unsigned height) const {
        const auto picture = ReadPng(name);
        EXPECT_EQ(picture->GetWidth(), width);
        EXPECT_EQ(picture->GetHeight(), height);
    }
    std::uint32_t PixelOf(const std::string& name, int x, int y) const {
        const auto picture = ReadPng(name);
        return picture->GetPixels().Row(y)[x];
    }
};

TEST_F(TPictureTest, OwnSizeAndTransparentGround) {
    Output({"render", "box.svg", "--set", "Width=60", "-o", "box.png"});
    ExpectSize("box.png", 60, 20);
    EXPECT_EQ(PixelOf("box.png", 30, 10), Blue);
    EXPECT_EQ(PixelOf("box.png", 5, 10), 0u);
}

TEST_F(TPictureTest, SizeScaleAndBackground) {
    Output({"render", "box.svg", "--size", "80x80", "--scale", "1.5", "--background", "0xFFFF0000", "-o",
            "box.png"});
    ExpectSize("box.png", 120, 120);
    EXPECT_EQ(PixelOf("box.png", 60, 60), Blue);
    EXPECT_EQ(PixelOf("box.png", 60, 5), 0xFFFF0000u);
}

TEST_F(TPictureTest, SizeWinsOverEditsOfIt) {
    Output({"render", "box.svg", "--size", "80x40", "--set", "Width=10", "-o", "box.png"});
    ExpectSize("box.png", 80, 40);
}

TEST_F(TPictureTest, FractionOfAPixelIsRoundedUp) {
    Output({"render", "box.svg", "--scale", "0.26", "-o", "box.png"});
    ExpectSize("box.png", 11, 6);
}

TEST_F(TPictureTest, EndingChoosesTheFormat) {
    Output({"render", "box.svg", "-o", "box.svg.SVG"});
    EXPECT_THAT(Read("box.svg.SVG"), HasSubstr("<svg"));
    Output({"render", "box.svg", "-o", "box.pdf"});
    EXPECT_THAT(Read("box.pdf"), StartsWith("%PDF-"));
}

TEST_F(TPictureTest, VectorPictureLooksTheSame) {
    Output({"render", "box.svg", "--size", "60x20", "--background", "0xFF00FF00", "-o", "again.svg"});
    Output({"render", "again.svg", "--size", "60x20", "-o", "again.png"});
    EXPECT_EQ(PixelOf("again.png", 30, 10), Blue);
    EXPECT_EQ(PixelOf("again.png", 4, 10), 0xFF00FF00u);
}

TEST_F(TPictureTest, StandardOutputTakesPng) {
    EXPECT_THAT(Output({"render", "box.svg", "-o", "-"}), StartsWith("\x89PNG\r\n"));
}

TEST_F(TPictureTest, FormIsDrawnWithItsControls) {
    Write("board.form",
          "object Board: TVZForm\n  Width = 20\n  Height = 10\n  object A: TVZSVGControl\n  end\nend\n");
    Output({"render", "board.form", "-o", "board.png"});
    ExpectSize("board.png", 20, 10);
}

TEST_F(TPictureTest, HiddenControlPaintsNothing) {
    Output({"render", "box.svg", "--set", "Visible=false", "-o", "box.png"});
    EXPECT_EQ(PixelOf("box.png", 20, 10), 0u);
}

TEST_F(TPictureTest, ScalesFarFromOneAreDrawn) {
    Output({"render", "box.svg", "--scale", "1e-9", "-o", "box.png"});
    ExpectSize("box.png", 1, 1);
    Output({"render", "box.svg", "--scale", "100", "-o", "box.png"});
    ExpectSize("box.png", 4000, 2000);
    EXPECT_THAT(Complaint({"render", "box.svg", "--size", "1x1", "--scale", "2000", "-o", "other.png"}),
                HasSubstr("the scale 2000 is not"));
    EXPECT_FALSE(Exists("other.png"));
}

TEST_F(TPictureTest, UnfitSizesAreRefused) {
    EXPECT_THAT(Complaint({"render", "box.svg", "--set", "Width=0", "-o", "box.png"}),
                HasSubstr("0 x 20 pixels"));
    EXPECT_THAT(Complaint({"render", "box.svg", "--size", "100000x100000", "-o", "box.png"}),
                HasSubstr("too large"));
    EXPECT_THAT(Complaint({"render", "box.svg", "--scale", "1e300", "-o", "box.png"}),
                HasSubstr("too large"));
    EXPECT_FALSE(Exists("box.png"));
}

} // namespace
} // namespace Vz::Test
