#include "Core/private/Deserialization.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include <qel/Scalar.h>
#include <qel/ScalarArray.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

#include "Core/tests/Support/ForeignLocale.h"

using namespace qel;

namespace {

/// The text is read, and gives `expected`; `rest` has the text.
template <class T> void expectRead(char const* text, T const& expected)
{
    SCOPED_TRACE(text);
    T value{};
    String rest("old");
    EXPECT_TRUE(Deserialization<T>::doIt(text, value, rest));
    EXPECT_TRUE(value == expected);
    EXPECT_STREQ(rest.c_str(), text);
}

/// The text is not read, and leaves `old` as it is; `rest` has the text.
template <class T> void expectRefused(char const* text, T const& old)
{
    SCOPED_TRACE(text);
    T value = old;
    String rest("old");
    EXPECT_FALSE(Deserialization<T>::doIt(text, value, rest));
    EXPECT_TRUE(value == old);
    EXPECT_STREQ(rest.c_str(), text);
}

template <class T> container::Vector<T> vectorOf(std::vector<T> const& elements)
{
    container::Vector<T> vector;
    for (T const& element : elements)
        vector.push_back(element);
    return vector;
}

} // namespace

TEST(Deserialization, readsNumbersAsATextStreamDoes)
{
    expectRead("12", 12);
    expectRead("-12", -12);
    expectRead("+12", 12);
    expectRead(" \t12 rest", 12);
    expectRead("12x", 12);
    expectRead("1.9", 1);
    expectRead("0x10", 0);
    expectRead("2147483647", 2147483647);
    expectRead("12", 12u);
    expectRead("4294967295", 4294967295u);
    expectRead("-9223372036854775808", std::numeric_limits<long>::min());
    expectRead("18446744073709551615", ~0ul);
    expectRead("0.5", 0.5);
    expectRead("-1e-3", -0.001);
    expectRead(".5", 0.5);
    expectRead("7", 7.0);
    expectRead("1,5", 1.0);
    expectRead("1.5mm", 1.5);
}

TEST(Deserialization, wrapsANegativeTextForAnUnsignedNumberAsATextStreamDoes)
{
    expectRead("-1", ~0u);
    expectRead("-1", ~0ul);
    expectRead("-2", ~0ul - 1);
}

TEST(Deserialization, refusesTextsThatAreNoNumberOfTheType)
{
    for (char const* text : {"", " ", "x", "-", "x12", "true", ".", "--1"}) {
        expectRefused(text, 5);
        expectRefused(text, 5u);
        expectRefused(text, 5l);
        expectRefused(text, 5ul);
        expectRefused(text, 5.5);
    }
    expectRefused("2147483648", 5);
    expectRefused("-2147483649", 5);
    expectRefused("4294967296", 5u);
    expectRefused("9223372036854775808", 5l);
    expectRefused("18446744073709551616", 5ul);
    expectRefused("1e999", 5.5);
    expectRefused("1e", 5.5);
}

TEST(Deserialization, readsBooleansByTheirTwoWords)
{
    expectRead("true", true);
    expectRead("false", false);
    for (char const* text : {"", "1", "0", "True", "TRUE", " true", "true ", "truely", "yes"}) {
        expectRefused(text, true);
        expectRefused(text, false);
    }
}

TEST(Deserialization, readsAScalarByItsLook)
{
    expectRead("7", Scalar(7ul));
    expectRead("+7", Scalar(7l));
    expectRead("-7", Scalar(-7l));
    expectRead("7.0", Scalar(7.0));
    expectRead("-7.5", Scalar(-7.5));
    expectRead("+.5", Scalar(0.5));
    expectRead("1.5e3", Scalar(1500.0));
    expectRead("18446744073709551615", Scalar(~0ul));
    expectRead("-9223372036854775808", Scalar(std::numeric_limits<long>::min()));
    expectRead("0", Scalar(0ul));
}

TEST(Deserialization, refusesAScalarThatDoesNotConvertWhole)
{
    for (char const* text : {"",
                             " ",
                             "7x",
                             "7 ",
                             " 7",
                             "-7x",
                             "- 7",
                             "-",
                             "+",
                             "+-7",
                             "7.0x",
                             "7.0 ",
                             " 7.0",
                             ".",
                             "1e5",
                             "1.5e",
                             "1.5.2",
                             "18446744073709551616",
                             "9223372036854775808x",
                             "-9223372036854775809",
                             "+9223372036854775808",
                             "1,5",
                             "true",
                             "0x1.8"})
        expectRefused(text, Scalar(3.25));
}

TEST(Deserialization, readsAStringAsItIs)
{
    for (char const* text : {"", "voxel", " @v:1 ", "true"})
        expectRead(text, String(text));
}

TEST(Deserialization, readsPoints)
{
    expectRead("@v2:1_2", math::Vector2<unsigned int>(1, 2));
    expectRead("@v2:-1_2", math::Vector2<int>(-1, 2));
    expectRead("@v2:-1_2", math::Vector2<long>(-1, 2));
    expectRead("@v2:1_18446744073709551615", math::Vector2<unsigned long>(1, ~0ul));
    expectRead("@v2:0.5_-2e3", math::Vector2<double>(0.5, -2000));
    expectRead("@v2:0.5_-2e3", math::Vector2<float>(0.5f, -2000));
    expectRead("@v3:1_2_3", math::Vector3<int>(1, 2, 3));
    expectRead("@v3:1_2_3", math::Vector3<unsigned int>(1, 2, 3));
    expectRead("@v3:1_2_3", math::Vector3<long>(1, 2, 3));
    expectRead("@v3:1_2_3", math::Vector3<unsigned long>(1, 2, 3));
    expectRead("@v3:1_2_3.5", math::Vector3<double>(1, 2, 3.5));
    expectRead("@v4:1_2_3_-4", math::Vector4<int>(1, 2, 3, -4));
    expectRead("@v4:1_2_3_4", math::Vector4<unsigned int>(1, 2, 3, 4));
    expectRead("@v4:1_2_3_4", math::Vector4<long>(1, 2, 3, 4));
    expectRead("@v4:1_2_3_4", math::Vector4<unsigned long>(1, 2, 3, 4));
    expectRead("@v4:1_2_3_4.5", math::Vector4<double>(1, 2, 3, 4.5));
}

TEST(Deserialization, refusesPointsWithoutPrefixOrWithAWrongNumberOfFields)
{
    math::Vector2<unsigned int> const two(8, 9);
    for (char const* text : {"",          "1_2",      "@v2",      "@v2:",    "@v2:1",     "@v2:1_",   "@v2:_2",
                             "@v2:1_2_3", "@v2:1_2_", "@v2:_",    "@v3:1_2", "@v:1_2",    " @v2:1_2", "@V2:1_2",
                             "@v2:1x_2",  "@v2:1_2x", "@v2:1_2 ", "@v2:a_b", "@v2:1.5_2", "@v2:1#2",  "@v2:@v2:1_2"})
        expectRefused(text, two);
    math::Vector3<double> const three(7, 8, 9);
    for (char const* text : {"1_2_3", "@v2:1_2", "@v3:1_2", "@v3:1_2_3_4", "@v3:1_2_x", "@v4:1_2_3"})
        expectRefused(text, three);
    math::Vector4<long> const four(6, 7, 8, 9);
    for (char const* text : {"1_2_3_4", "@v4:1_2_3", "@v4:1_2_3_4_5", "@v3:1_2_3_4", "@v4:1_2_3_4.5"})
        expectRefused(text, four);
}

TEST(Deserialization, readsVectorsOfNumbers)
{
    expectRead("@v:1#2#3", vectorOf<int>({1, 2, 3}));
    expectRead("@v:-1", vectorOf<int>({-1}));
    expectRead("@v:1#2#-3", vectorOf<long>({1, 2, -3}));
    expectRead("@v:1#4294967295", vectorOf<unsigned int>({1, 4294967295u}));
    expectRead("@v:1#18446744073709551615", vectorOf<unsigned long>({1, ~0ul}));
    expectRead("@v:0.5#-1e3#7", vectorOf<double>({0.5, -1000, 7}));
    expectRead("@v:", vectorOf<int>({}));
    expectRead("@v:", vectorOf<double>({}));
}

TEST(Deserialization, emptiesAVectorByAnEmptyList)
{
    container::Vector<int> value(3);
    String rest;
    EXPECT_TRUE(Deserialization<container::Vector<int>>::doIt("@v:", value, rest));
    EXPECT_TRUE(value.empty());
}

TEST(Deserialization, readsBytesAsNumbers)
{
    expectRead("@v:0#65#255", vectorOf<unsigned char>({0, 65, 255}));
    for (char const* text : {"@v:256", "@v:-1", "@v:A", "@v:1#", "@v:1x"})
        expectRefused(text, vectorOf<unsigned char>({1, 2}));
}

TEST(Deserialization, readsVectorsOfPointsEachByItsOwnForm)
{
    expectRead("@v:@v2:1_2#@v2:3_4", vectorOf<math::Vector2<int>>({{1, 2}, {3, 4}}));
    expectRead("@v:@v2:1_2.5", vectorOf<math::Vector2<double>>({{1, 2.5}}));
    expectRead("@v:@v3:1_2_3#@v3:4_5_6", vectorOf<math::Vector3<int>>({{1, 2, 3}, {4, 5, 6}}));
    expectRead("@v:@v3:1_2_3.5", vectorOf<math::Vector3<double>>({{1, 2, 3.5}}));
    expectRead("@v:@v4:1_2_3_4", vectorOf<math::Vector4<unsigned long>>({{1, 2, 3, 4}}));
    expectRead("@v:", vectorOf<math::Vector2<int>>({}));
    for (char const* text : {"@v:1_2", "@v:@v2:1_2#3_4", "@v:@v2:1_2#", "@v:#@v2:1_2", "@v:@v2:1", "@v2:1_2",
                             "@v:@v3:1_2_3", "@v:@v2:1_2#@v2:3_4x"})
        expectRefused(text, vectorOf<math::Vector2<int>>({{7, 8}}));
}

TEST(Deserialization, refusesVectorsWithoutPrefixOrWithAWrongElement)
{
    for (char const* text : {"", "1#2", "1", "@v", "@v2:1_2", "@v:1#", "@v:#", "@v:#1", "@v:1##2", "@v:1#x", "@v:1x#2",
                             "@v:1 #2", "@v:1.5", "@v:1,2", " @v:1", "@v:2147483648", "@v:@v:1"})
        expectRefused(text, vectorOf<int>({4, 5}));
    for (char const* text : {"@v:1#nothing", "@v:1e999", "@v:0.5x"})
        expectRefused(text, vectorOf<double>({4, 5}));
}

TEST(Deserialization, readsKernels)
{
    kernel::Kernel2D flat;
    flat.addPoint(0, 0, 1);
    flat.addPoint(1, 0, 0.5);
    expectRead("@kernel2D:0_0_1+1_0_0.5", flat);
    flat.addPoint(1, 0, -1e-300);
    expectRead("@kernel2D:0_0_1+1_0_5e-1+1_0_-1e-300", flat);
    expectRead("@kernel2D: 0_ 0_1mm+1x_0.9_.5+1_0_-1e-300", flat); // numbers as streams read them
    kernel::Kernel3D solid;
    solid.addPoint(-1, 2, -3, 4);
    expectRead("@kernel3D:-1_2_-3_4", solid);
    solid.addPoint(0, 0, 0, 0.25);
    expectRead("@kernel3D:-1_2_-3_4+0_0_0_0.25", solid);
}

TEST(Deserialization, leavesAKernelAloneWithoutAPrefixAndPoints)
{
    kernel::Kernel2D flat;
    flat.addPoint(3, 4, 5);
    for (char const* text : {"", "0_0_1", "@kernel2D", "@kernel2D:", "@kernel3D:0_0_1", "@kernel3D:0_0_0_1",
                             " @kernel2D:0_0_1", "@Kernel2D:0_0_1", "@v:1"})
        expectRefused(text, flat);
    kernel::Kernel3D solid;
    solid.addPoint(3, 4, 5, 6);
    for (char const* text : {"", "0_0_0_1", "@kernel3D", "@kernel3D:", "@kernel2D:0_0_1", "@kernel2D:0_0_0_1"})
        expectRefused(text, solid);
}

TEST(Deserialization, keepsThePointsBeforeAnEntryThatIsNone)
{
    kernel::Kernel2D one;
    one.addPoint(1, 2, 3);
    for (char const* text :
         {"@kernel2D:1_2_3+", "@kernel2D:1_2_3+1_2", "@kernel2D:1_2_3+1_2_3_4+5_6_7", "@kernel2D:1_2_3++5_6_7",
          "@kernel2D:1_2_3+_", "@kernel2D:1_2_3+x_2_3", "@kernel2D:1_2_3+1_2_x", "@kernel2D:1_2_3+1_2_3e+5"}) {
        SCOPED_TRACE(text);
        kernel::Kernel2D value;
        value.addPoint(7, 8, 9);
        String rest;
        EXPECT_FALSE(Deserialization<kernel::Kernel2D>::doIt(text, value, rest));
        EXPECT_TRUE(value == one);
        EXPECT_STREQ(rest.c_str(), text);
    }
    kernel::Kernel3D none;
    none.addPoint(7, 8, 9, 10);
    String rest;
    EXPECT_FALSE(Deserialization<kernel::Kernel3D>::doIt("@kernel3D:1_2_3", none, rest));
    EXPECT_EQ(none.getNumOfPoints(), 0u);
}

TEST(Deserialization, readsNothingForTypesWithoutATextForm)
{
    int number = 5;
    expectRefused<int*>("5", &number);
    expectRefused("@v:1", ScalarArray(2, REAL));
    String rest;
    math::Matrix2<double> two(1, 2, 3, 4);
    EXPECT_FALSE(Deserialization<math::Matrix2<double>>::doIt("1_2_3_4", two, rest));
    EXPECT_EQ(two(1, 1), 4.0);
    EXPECT_STREQ(rest.c_str(), "1_2_3_4");
    math::Matrix3<float> three;
    EXPECT_FALSE(Deserialization<math::Matrix3<float>>::doIt("0", three, rest));
}

TEST(Deserialization, readsNumbersAlikeInEveryLocale)
{
    test::ForeignLocale const locale;
    expectRead("1.5", 1.5);
    expectRead("1.234", 1.234);
    expectRead("1.234", 1);
    expectRead("1.5", Scalar(1.5));
    expectRead("true", true);
    expectRead("@v2:0.5_1.25", math::Vector2<double>(0.5, 1.25));
    expectRead("@v:0.5#1.25", vectorOf<double>({0.5, 1.25}));
    kernel::Kernel2D kernel;
    kernel.addPoint(1234, 0, 0.5);
    expectRead("@kernel2D:1234_0_0.5", kernel);
    expectRefused("@v:1.234", vectorOf<int>({1}));
}
