#include <qel/String.h>

#include <gtest/gtest.h>

#include <cstring>

#include "Core/private/ClassicText.h"
#include "Core/tests/Support/ForeignLocale.h"

using qel::String;

TEST(String, isEmptyWhenMadeFromNothing)
{
    String const text;
    EXPECT_EQ(text.length(), 0u);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(String, takesCharactersUpToTheTerminator)
{
    String const text("voxel");
    EXPECT_EQ(text.length(), 5u);
    EXPECT_STREQ(text.c_str(), "voxel");
}

TEST(String, takesANullPointerForNothing)
{
    EXPECT_EQ(String(static_cast<char const*>(nullptr)).length(), 0u);
    String text("voxel");
    text = static_cast<char const*>(nullptr);
    EXPECT_EQ(text.length(), 0u);
}

TEST(String, keepsZeroBytesWhenItsLengthIsGiven)
{
    String const text("a\0b", 3);
    EXPECT_EQ(text.length(), 3u);
    EXPECT_EQ(std::memcmp(text.c_str(), "a\0b", 4), 0);
    EXPECT_NE(text, String("a"));
    EXPECT_EQ(qel::toStdString(text), std::string("a\0b", 3));
    EXPECT_EQ(qel::toString(std::string("a\0b", 3)), text);
}

TEST(String, copiesItsCharacters)
{
    String first("one");
    String const second(first);
    EXPECT_NE(static_cast<void const*>(first.c_str()), static_cast<void const*>(second.c_str()));
    first = "two";
    EXPECT_STREQ(second.c_str(), "one");
    String third;
    third = first;
    first = "three";
    EXPECT_STREQ(third.c_str(), "two");
}

TEST(String, canBeAssignedToItselfAndFromItsOwnCharacters)
{
    String text("abcdef");
    String const& same = text;
    text = same;
    EXPECT_STREQ(text.c_str(), "abcdef");
    text = text.c_str() + 2;
    EXPECT_STREQ(text.c_str(), "cdef");
}

TEST(String, comparesByteByByte)
{
    EXPECT_TRUE(String("a") == String("a"));
    EXPECT_FALSE(String("a") != String("a"));
    EXPECT_TRUE(String("a") != String("A"));
    EXPECT_FALSE(String("a") == String("ab"));
    // One letter in two Unicode forms is two strings.
    EXPECT_FALSE(String("\xC3\xA9") == String("e\xCC\x81"));
    EXPECT_TRUE(String("x") == "x");
}

TEST(ClassicText, writesNumbersAlikeInEveryLocale)
{
    qel::test::ForeignLocale const locale;
    EXPECT_STREQ(qel::toText(1234567).c_str(), "1234567");
    EXPECT_STREQ(qel::toText(1234.5).c_str(), "1234.5");
    EXPECT_STREQ(qel::toText(~0ul).c_str(), "18446744073709551615");
}

TEST(ClassicText, writesSmallIntegersAsNumbers)
{
    EXPECT_STREQ(qel::toText(static_cast<unsigned char>(65)).c_str(), "65");
    EXPECT_STREQ(qel::toText(static_cast<signed char>(-1)).c_str(), "-1");
    EXPECT_STREQ(qel::toText('A').c_str(), "A");
    EXPECT_STREQ(qel::toText(String("text")).c_str(), "text");
}
