#include "codec/field.h"

#include <gtest/gtest.h>

namespace bci::codec
{
namespace
{

struct Sample
{
    U8 one;
    U8 text[7];
    U16 two;
    S16 three;
    U32 four;
    S32 five;
    U8 last;
};

// At run time, where the compiler does not know them.
const Field kRows[] = {
    {offsetof(Sample, one), 1, Kind::u8, Oddity::none, 10, "one"},
    {offsetof(Sample, text), 7, Kind::text, Oddity::foreignClosing, 20, "text\0other"},
    {offsetof(Sample, two), 2, Kind::u16, Oddity::none, 30, "two"},
    {offsetof(Sample, three), 2, Kind::s16, Oddity::none, 40, "three"},
    {offsetof(Sample, four), 4, Kind::u32, Oddity::none, 50, "four"},
    {offsetof(Sample, five), 4, Kind::s32, Oddity::none, 60, "five"},
};

TEST(Field, IsClosedByItsOwnName)
{
    EXPECT_STREQ(closingTag(kRows[0]), "one");
}

TEST(Field, IsClosedByTheOtherNameOfItsRow)
{
    EXPECT_STREQ(closingTag(kRows[1]), "other");
}

TEST(Field, TakesTheWidthOfTheLongestNumberOfItsKind)
{
    EXPECT_EQ(textWidth(Kind::u8), 3U);   // 255
    EXPECT_EQ(textWidth(Kind::u16), 5U);  // 65535
    EXPECT_EQ(textWidth(Kind::s16), 6U);  // -32768
    EXPECT_EQ(textWidth(Kind::u32), 10U); // 4294967295
    EXPECT_EQ(textWidth(Kind::s32), 11U); // -2147483648
}

TEST(Fields, TakeTheirSizesInBinary)
{
    EXPECT_EQ(binarySize(kRows), 20U);
    EXPECT_EQ(binarySize({}), 0U);
}

TEST(Fields, CountWithTheirDelimitersInText)
{
    EXPECT_EQ(maxTextSize(kRows), 4U + 28 + 6 + 7 + 11 + 12);
}

TEST(Fields, AreAdjacentWithoutAGap)
{
    EXPECT_TRUE(areAdjacent(kRows));
}

TEST(Fields, AreNotAdjacentWithAGap)
{
    const Field rows[] = {kRows[0], kRows[2]};

    EXPECT_FALSE(areAdjacent(rows));
}

TEST(Fields, AreNotAdjacentIfThereAreNone)
{
    EXPECT_FALSE(areAdjacent({}));
}

TEST(Fields, HaveAPartOfThemselves)
{
    const Fields part = Fields("source", kRows).part(2, 3);

    EXPECT_STREQ(part.source, "source");
    ASSERT_EQ(part.rows.size(), 3U);
    EXPECT_STREQ(part.rows[0].tag, "two");
    EXPECT_STREQ(part.rows[2].tag, "four");
    EXPECT_EQ(part.binarySize, 8U);
    EXPECT_TRUE(part.adjacent);
}

TEST(Fields, AreNoneAtFirst)
{
    const Fields none;

    EXPECT_EQ(none.source, nullptr);
    EXPECT_TRUE(none.rows.empty());
    EXPECT_EQ(none.binarySize, 0U);
    EXPECT_FALSE(none.adjacent);
}

} // namespace
} // namespace bci::codec
