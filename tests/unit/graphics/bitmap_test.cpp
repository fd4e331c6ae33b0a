#include "tavro/graphics/Bitmap.h"

#include "tavro/graphics/Canvas.h"
#include "tavro/runtime/Exceptions.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>

#include <random>
#include <sys/resource.h>

namespace Vz {
namespace {

// A small writer of PNG files of any kind, without compression (PNG 1.2; RFC 1950, 1951).

std::string BigEndian(std::uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
            static_cast<char>(value)};
}

std::uint32_t Crc(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    return ~crc;
}

std::string Chunk(const std::string& type, const std::string& data) {
    return BigEndian(static_cast<std::uint32_t>(data.size())) + type + data + BigEndian(Crc(type + data));
}

std::string Stored(const std::string& data) {
    std::uint32_t a = 1, b = 0;
    for (const char c : data) {
        a = (a + static_cast<unsigned char>(c)) % 65521;
        b = (b + a) % 65521;
    }
    const auto low = [](std::size_t n) {
        return std::string{static_cast<char>(n), static_cast<char>(n >> 8)};
    };
    return "\x78\x01\x01" + low(data.size()) + low(~data.size()) + data + BigEndian(b << 16 | a);
}

struct TPng {
    std::uint32_t Width = 1;
    std::uint32_t Height = 1;
    int Depth = 8;
    int Kind = 0; ///< 0 grey, 2 RGB, 3 palette, 4 grey with alpha, 6 RGBA
    bool IsInterlaced = false;
    std::string Palette, Transparency;
    std::string Rows; ///< each with its filter's byte in front

    std::string Bytes() const {
        const std::string rest{static_cast<char>(Depth), static_cast<char>(Kind), 0, 0,
                               static_cast<char>(IsInterlaced)};
        std::string bytes = "\x89PNG\r\n\x1a\n";
        bytes += Chunk("IHDR", BigEndian(Width) + BigEndian(Height) + rest);
        if (!Palette.empty()) bytes += Chunk("PLTE", Palette);
        if (!Transparency.empty()) bytes += Chunk("tRNS", Transparency);
        return bytes + Chunk("IDAT", Stored(Rows)) + Chunk("IEND", "");
    }
};

std::vector<std::uint32_t> Decoded(const std::string& bytes) {
    const auto bitmap = DecodePng(bytes);
    const TPixels pixels = bitmap->GetPixels();
    return {pixels.Data, pixels.Data + pixels.Width * pixels.Height};
}

using namespace std::string_literals;
using TColors = std::vector<std::uint32_t>;

struct TKindCase {
    const char* Name;
    TPng Png;
    TColors Expected;
};

class PngKind : public testing::TestWithParam<TKindCase> {};

TEST_P(PngKind, IsRead) { EXPECT_EQ(Decoded(GetParam().Png.Bytes()), GetParam().Expected); }

const TKindCase Kinds[] = {
    {"Grey1", {4, 1, 1, 0, false, "", "", "\0\xA0"s}, {0xFFFFFFFF, 0xFF000000, 0xFFFFFFFF, 0xFF000000}},
    {"Grey2", {4, 1, 2, 0, false, "", "", "\0\x1B"s}, {0xFF000000, 0xFF555555, 0xFFAAAAAA, 0xFFFFFFFF}},
    {"Grey4", {2, 1, 4, 0, false, "", "", "\0\x0F"s}, {0xFF000000, 0xFFFFFFFF}},
    {"Grey8", {2, 1, 8, 0, false, "", "", "\0\x12\xFE"s}, {0xFF121212, 0xFFFEFEFE}},
    {"Grey16", {1, 1, 16, 0, false, "", "", "\0\x12\x34"s}, {0xFF121212}},
    {"GreyWithHole", {2, 1, 8, 0, false, "", "\0\x12"s, "\0\x12\x13"s}, {0, 0xFF131313}},
    {"GreyAlpha8", {2, 1, 8, 4, false, "", "", "\0\xFF\x80\x40\0"s}, {0x80808080, 0}},
    {"GreyAlpha16", {1, 1, 16, 4, false, "", "", "\0\xFF\xFF\x80\0"s}, {0x80808080}},
    {"Rgb8", {2, 1, 8, 2, false, "", "", "\0\1\2\3\xFF\0\0"s}, {0xFF010203, 0xFFFF0000}},
    {"Rgb16", {1, 1, 16, 2, false, "", "", "\0\x10\0\x20\0\x30\0"s}, {0xFF102030}},
    {"RgbWithHole", {2, 1, 8, 2, false, "", "\0\1\0\2\0\3"s, "\0\1\2\3\3\2\1"s}, {0, 0xFF030201}},
    {"Rgba8", {2, 1, 8, 6, false, "", "", "\0\xFF\0\x80\x80\1\2\3\xFF"s}, {0x80800040, 0xFF010203}},
    {"Rgba16", {1, 1, 16, 6, false, "", "", "\0\xFF\xFF\0\0\0\0\xFF\xFF"s}, {0xFFFF0000}},
    {"Palette1", {2, 1, 1, 3, false, "\1\2\3\4\5\6"s, "", "\0\x40"s}, {0xFF010203, 0xFF040506}},
    {"Palette4", {2, 1, 4, 3, false, "\1\2\3\4\5\6"s, "", "\0\x10"s}, {0xFF040506, 0xFF010203}},
    {"Palette8",
     {2, 1, 8, 3, false, "\1\2\3\xFF\xFF\xFF"s, "\xFF\x80"s, "\0\0\1"s},
     {0xFF010203, 0x80808080}},
    // The passes of a picture of 2 by 2: its first pixel, the one right of it, the lower row.
    {"Interlaced",
     {2, 2, 8, 0, true, "", "", "\0\1\0\2\0\3\4"s},
     {0xFF010101, 0xFF020202, 0xFF030303, 0xFF040404}},
    {"Filtered", {3, 1, 8, 0, false, "", "", "\1\1\1\1"s}, {0xFF010101, 0xFF020202, 0xFF030303}},
};
INSTANTIATE_TEST_SUITE_P(Png, PngKind, testing::ValuesIn(Kinds),
                         [](const auto& row) { return row.param.Name; });

TPng Grey(std::uint32_t width, std::uint32_t height) {
    TPng png{width, height, 8, 0, false, "", "", ""};
    for (std::uint32_t y = 0; y < std::min(height, 64u); ++y)
        png.Rows += '\0' + std::string(std::min(width, 64u), '\x55');
    return png;
}

TEST(Png, BrokenFilesAreRefused) {
    const std::string good = Grey(16, 16).Bytes();
    EXPECT_NO_THROW(DecodePng(good));
    for (std::size_t length = 0; length < good.size() - 16; ++length)
        EXPECT_THROW(DecodePng(std::span(good).first(length)), EReadError) << length;
    std::string damaged = good;
    damaged[60] = static_cast<char>(damaged[60] ^ 1); // in the pixels, against the checksum
    EXPECT_THROW(DecodePng(damaged), EReadError);
    EXPECT_THROW(DecodePng("GIF89a, and some more bytes so that there is enough"s), EReadError);
    EXPECT_THROW(DecodePng({}), EReadError);
    TPng odd = Grey(4, 4);
    odd.Kind = 5;
    EXPECT_THROW(DecodePng(odd.Bytes()), EReadError);
}

TEST(Png, GiantsAreRefusedBeforeMemoryIsTaken) {
    for (const auto& [width, height] : {std::pair{0u, 5u},
                                        {5u, 0u},
                                        {32768u, 1u},
                                        {1u, 32768u},
                                        {30000u, 30000u},
                                        {0x7FFFFFFFu, 0x7FFFFFFFu},
                                        {0xFFFFFFFFu, 1u}})
        EXPECT_THROW(DecodePng(Grey(width, height).Bytes()), EReadError) << width << " by " << height;
}

TEST(Png, WhatIsWrittenReadsBack) {
    std::mt19937 random(9);
    TVZGPBitmap bitmap(37, 23);
    const TPixels pixels = bitmap.GetPixels();
    for (int i = 0; i < pixels.Width * pixels.Height; ++i)
        pixels.Data[i] = Premultiply(static_cast<TVZGPColor>(random()));
    const auto back = DecodePng(EncodePng(pixels));
    ASSERT_EQ(back->GetWidth(), 37u);
    ASSERT_EQ(back->GetHeight(), 23u);
    for (int i = 0; i < pixels.Width * pixels.Height; ++i)
        ASSERT_EQ(back->GetPixels().Data[i], pixels.Data[i]);
    // A part of a picture has rows farther apart than it is wide.
    const TPixels part{pixels.Row(5) + 3, 4, 6, pixels.Stride};
    EXPECT_EQ(DecodePng(EncodePng(part))->GetPixels().Row(5)[3], pixels.Row(10)[6]);
}

TEST(Png, NothingCannotBeWritten) { EXPECT_THROW(EncodePng({}), EWriteError); }

TEST(Bitmap, ColoursLieInMemoryAsBlueGreenRedAlpha) {
    const TVZGPColor color = 0xAABBCCDD;
    EXPECT_EQ(AlphaOf(color), 0xAA);
    EXPECT_EQ(RedOf(color), 0xBB);
    EXPECT_EQ(GreenOf(color), 0xCC);
    EXPECT_EQ(BlueOf(color), 0xDD);
    EXPECT_EQ(MakeColor(0xAA, 0xBB, 0xCC, 0xDD), color);
    TVZGPBitmap bitmap(1, 1);
    bitmap.GetCanvas().Clear(0xFF112233);
    unsigned char bytes[4];
    std::memcpy(bytes, bitmap.GetPixels().Row(0), sizeof bytes);
    EXPECT_EQ(std::vector<int>(bytes, bytes + 4), (std::vector<int>{0x33, 0x22, 0x11, 0xFF}));
}

TEST(Bitmap, SizesAndPixels) {
    TVZGPBitmap bitmap;
    EXPECT_EQ(bitmap.GetWidth(), 0u);
    bitmap.SetSize(3, 2);
    EXPECT_EQ(bitmap.GetWidth(), 3u);
    EXPECT_EQ(bitmap.GetHeight(), 2u);
    const TPixels pixels = bitmap.GetPixels();
    EXPECT_EQ(pixels.Stride, 3);
    std::fill_n(pixels.Data, 6, 0xFFFFFFFFu);
    bitmap.SetSize(2, 2);
    EXPECT_TRUE(std::all_of(bitmap.GetPixels().Data, bitmap.GetPixels().Data + 4,
                            [](auto pixel) { return pixel == 0; }));
    EXPECT_EQ(bitmap.GetPixels().Data, pixels.Data);
    bitmap.SetSize(0, 0);
    bitmap.GetCanvas().Clear(0xFFFFFFFF);
}

TEST(Bitmap, StaysAsItWasWhereThereIsNoMemory) {
    if (Vz::Test::IsSanitized) GTEST_SKIP() << "a sanitizer's memory cannot be limited";
    TVZGPBitmap bitmap(2, 2);
    bitmap.GetPixels().Row(1)[1] = 0xFF123456u;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    rlimit less = limit;
    less.rlim_cur = rlim_t{2} << 30;
    setrlimit(RLIMIT_AS, &less);
    EXPECT_THROW(bitmap.SetSize(TVZGPBitmap::MaxExtent, TVZGPBitmap::MaxExtent), std::bad_alloc);
    setrlimit(RLIMIT_AS, &limit);
    EXPECT_EQ(bitmap.GetWidth(), 2u);
    EXPECT_EQ(bitmap.GetPixels().Row(1)[1], 0xFF123456u);
}

TEST(Bitmap, GreatOnesAreTransparentAfterEachSetSize) {
    constexpr unsigned extents[] = {1000, 700, 1100, 30};
    TVZGPBitmap bitmap;
    for (const unsigned extent : extents) {
        bitmap.SetSize(extent, extent);
        const TPixels pixels = bitmap.GetPixels();
        const auto size = std::size_t{extent} * extent;
        EXPECT_EQ(std::count(pixels.Data, pixels.Data + size, 0u), std::ptrdiff_t(size));
        std::fill_n(pixels.Data, size, 0x80402010u);
    }
}

TEST(Bitmap, GiantsAreRefused) {
    TVZGPBitmap bitmap(4, 4);
    EXPECT_THROW(bitmap.SetSize(32768, 1), EArgumentOutOfRange);
    EXPECT_THROW(bitmap.SetSize(1, 100000), EArgumentOutOfRange);
    EXPECT_EQ(bitmap.GetWidth(), 4u);
    EXPECT_NO_THROW(bitmap.SetSize(TVZGPBitmap::MaxExtent, 1));
}

TEST(Bitmap, ItsCanvasOutlivesAChangeOfSize) {
    TVZGPBitmap bitmap(2, 2);
    TVZGPCanvas& canvas = bitmap.GetCanvas();
    canvas.SetMatrix(CreateScaleVZMatrix(2, 2));
    bitmap.SetSize(20, 30);
    EXPECT_EQ(&bitmap.GetCanvas(), &canvas);
    EXPECT_TRUE(IsIdentityMatrix(canvas.GetMatrix()));
    canvas.Clear(0xFF123456);
    EXPECT_EQ(bitmap.GetPixels().Row(29)[19], 0xFF123456u);
}

} // namespace
} // namespace Vz
