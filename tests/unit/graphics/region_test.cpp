#include "tavro/graphics/Region.h"

#include <gtest/gtest.h>

#include <random>

using namespace Vz;

namespace {

constexpr int Size = 24;

/// The pixels of a region, one by one.
struct TPixelSet {
    bool Has[Size][Size] = {};
    void Add(const TRect& r) {
        for (int y = std::max(r.Top, 0); y < std::min(r.Bottom, Size); ++y)
            for (int x = std::max(r.Left, 0); x < std::min(r.Right, Size); ++x)
                Has[y][x] = true;
    }
    void Keep(const TRect& r) {
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x)
                Has[y][x] = Has[y][x] && x >= r.Left && x < r.Right && y >= r.Top && y < r.Bottom;
    }
};

void ExpectDisjointAndOrdered(const TRegion& region) {
    const auto rects = region.Rects();
    EXPECT_LE(rects.size(), TRegion::MaxRects);
    for (std::size_t i = 0; i < rects.size(); ++i) {
        EXPECT_FALSE(rects[i].IsEmpty());
        for (std::size_t j = i + 1; j < rects.size(); ++j) {
            EXPECT_TRUE(Intersection(rects[i], rects[j]).IsEmpty());
            EXPECT_TRUE(rects[i].Top < rects[j].Top ||
                        (rects[i].Top == rects[j].Top && rects[i].Left < rects[j].Left));
        }
    }
}

} // namespace

TEST(Region, HasTheAddedPixels) {
    std::mt19937 random(4);
    const auto number = [&random](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    for (int round = 0; round < 500; ++round) {
        TRegion region;
        TPixelSet pixels;
        for (int i = number(1, 6); i > 0; --i) {
            const int x = number(0, Size - 2);
            const int y = number(0, Size - 2);
            const TRect rect{x, y, x + number(0, 10), y + number(0, 10)};
            region.Add(rect);
            pixels.Add(rect);
            if (number(0, 5) == 0) {
                const TRect part{2, 3, 20, 19};
                region.Intersect(part);
                pixels.Keep(part);
            }
        }
        ExpectDisjointAndOrdered(region);
        const bool isBox = region.Rects().size() == 1; // perhaps the bounding box of too many
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x)
                ASSERT_TRUE(region.Contains(x, y) == pixels.Has[y][x] || (isBox && region.Contains(x, y)));
    }
}

TEST(Region, JoinsWhatMakesARectangle) {
    TRegion region(TRect{0, 0, 4, 4});
    region.Add(TRect{4, 0, 8, 4});
    region.Add(TRect{0, 4, 8, 6});
    ASSERT_EQ(region.Rects().size(), 1u);
    EXPECT_EQ(region.Rects()[0], (TRect{0, 0, 8, 6}));
    region.Add(TRect{1, 1, 3, 3});
    EXPECT_EQ(region.Rects().size(), 1u);
}

TEST(Region, OfTooManyRectanglesIsTheBoxAround) {
    constexpr int most = TRegion::MaxRects;
    TRegion region;
    for (int i = 0; i < most; ++i)
        region.Add(TRect{3 * i, 3 * i, 3 * i + 1, 3 * i + 1});
    EXPECT_EQ(region.Rects().size(), TRegion::MaxRects);
    ExpectDisjointAndOrdered(region);
    region.Add(TRect{0, 3 * most, 1, 3 * most + 1});
    ASSERT_EQ(region.Rects().size(), 1u);
    EXPECT_EQ(region.Bounds(), (TRect{0, 0, 3 * most - 2, 3 * most + 1}));
    TRegion comb;
    for (int i = 0; i < most; ++i)
        comb.Add(TRect{0, 2 * i, 100, 2 * i + 1});
    comb.Add(TRect{10, -5, 20, 2 * most + 5});
    EXPECT_EQ(comb.Bounds(), (TRect{0, -5, 100, 2 * most + 5}));
    EXPECT_TRUE(comb.Contains(15, 2 * most));
    ExpectDisjointAndOrdered(comb);
}

TEST(Region, AnswersQuestions) {
    TRegion region;
    EXPECT_TRUE(region.IsEmpty());
    EXPECT_TRUE(region.Bounds().IsEmpty());
    region.Add(TRect{});
    region.Add(TRect{5, 5, 3, 9});
    EXPECT_TRUE(region.IsEmpty());
    region.Add(TRect{1, 1, 3, 3});
    region.Add(TRect{6, 7, 9, 9});
    EXPECT_EQ(region.Bounds(), (TRect{1, 1, 9, 9}));
    EXPECT_TRUE(region.Intersects({2, 2, 4, 4}));
    EXPECT_FALSE(region.Intersects({3, 3, 6, 7}));
    region.Offset(10, -1);
    EXPECT_TRUE(region.Contains(11, 0));
    EXPECT_FALSE(region.Contains(1, 1));
    TRegion other(TRect{0, 0, 1, 1});
    other.Add(region);
    EXPECT_EQ(other.Rects().size(), 3u);
    other.Add(other);
    EXPECT_EQ(other.Rects().size(), 3u);
    other.Clear();
    EXPECT_TRUE(other.IsEmpty());
}
