#include <qel/Scalar.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include <qel/Exception.h>

#include "Core/tests/Support/Expect.h"

using namespace qel;

static_assert(std::is_default_constructible_v<Scalar>);
static_assert(std::is_copy_constructible_v<Scalar>);
static_assert(std::is_convertible_v<double, Scalar> && std::is_convertible_v<float, Scalar>);
static_assert(std::is_convertible_v<unsigned long, Scalar> && std::is_convertible_v<unsigned int, Scalar>);
static_assert(std::is_convertible_v<unsigned short, Scalar> && std::is_convertible_v<unsigned char, Scalar>);
static_assert(std::is_convertible_v<long, Scalar> && std::is_convertible_v<int, Scalar>);
static_assert(std::is_convertible_v<short, Scalar> && std::is_convertible_v<signed char, Scalar>);
static_assert(std::is_assignable_v<Scalar&, long> && std::is_assignable_v<Scalar&, unsigned long>);
static_assert(std::is_assignable_v<Scalar&, double> && std::is_assignable_v<Scalar&, int>);
static_assert(!std::is_constructible_v<Scalar, char const*>);

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr long lowest = std::numeric_limits<long>::min();
constexpr unsigned long topBit = 1ul << 63;
constexpr auto unknownConversion = static_cast<RealToIntConvertType>(3);

} // namespace

TEST(Scalar, isTheSignedZeroByDefault)
{
    Scalar const scalar;
    EXPECT_EQ(scalar.getType(), INTEGER);
    EXPECT_EQ(scalar.getIntValue(), 0);
}

TEST(Scalar, takesItsTypeFromTheNumber)
{
    EXPECT_EQ(Scalar(0.5).getRealValue(), 0.5);
    EXPECT_EQ(Scalar(0.1f).getRealValue(), static_cast<double>(0.1f));
    EXPECT_EQ(Scalar(~0ul).getUIntValue(), ~0ul);
    EXPECT_EQ(Scalar(~0u).getUIntValue(), 4294967295ul);
    EXPECT_EQ(Scalar(static_cast<unsigned short>(65535)).getUIntValue(), 65535ul);
    EXPECT_EQ(Scalar(static_cast<unsigned char>(255)).getUIntValue(), 255ul);
    EXPECT_EQ(Scalar(lowest).getIntValue(), lowest);
    EXPECT_EQ(Scalar(-7).getIntValue(), -7);
    EXPECT_EQ(Scalar(static_cast<short>(-7)).getIntValue(), -7);
    EXPECT_EQ(Scalar(static_cast<signed char>(-7)).getIntValue(), -7);
}

TEST(Scalar, takesItsTypeFromAnAssignedNumber)
{
    Scalar scalar;
    scalar = 2.5;
    EXPECT_EQ(scalar.getRealValue(), 2.5);
    scalar = 3l;
    EXPECT_EQ(scalar.getIntValue(), 3);
    scalar = 4ul;
    EXPECT_EQ(scalar.getUIntValue(), 4ul);
    scalar = 5;
    EXPECT_EQ(scalar.getIntValue(), 5);
    scalar = 6u;
    EXPECT_EQ(scalar.getUIntValue(), 6ul);
    scalar = 7.5f;
    EXPECT_EQ(scalar.getRealValue(), 7.5);
    scalar = Scalar(8ul);
    EXPECT_EQ(scalar.getUIntValue(), 8ul);
}

TEST(Scalar, copiesItsValue)
{
    Scalar first(1.5);
    Scalar const second(first);
    Scalar third;
    third = first;
    first = 2l;
    EXPECT_EQ(second.getRealValue(), 1.5);
    EXPECT_EQ(third.getRealValue(), 1.5);
    Scalar const& same = third;
    third = same;
    EXPECT_EQ(third.getRealValue(), 1.5);
}

TEST(Scalar, refusesAStrictGetterOfAnotherType)
{
    for (Scalar const& scalar : {Scalar(1ul), Scalar(1.0)})
        EXPECT_QEL_WHAT(scalar.getIntValue(), InvalidCall,
                        "Invalid call :\n#1 Error : The Scalar isn't of INTEGER type. \n");
    for (Scalar const& scalar : {Scalar(1l), Scalar(1.0)})
        EXPECT_QEL_WHAT(scalar.getUIntValue(), InvalidCall,
                        "Invalid call :\n#1 Error : The Scalar isn't of UNSIGNED_INTEGER type. \n");
    for (Scalar const& scalar : {Scalar(1l), Scalar(1ul)})
        EXPECT_QEL_WHAT(scalar.getRealValue(), InvalidCall,
                        "Invalid call :\n#1 Error : The Scalar isn't of REAL type. \n");
}

TEST(Scalar, bringsARealToAWholeNumberAsTold)
{
    struct Row
    {
        double value;
        long ceil, floor, round;
    };
    for (Row const& row : {Row{1.5, 2, 1, 2}, Row{-1.5, -1, -2, -1}, Row{-1.2, -1, -2, -1}, Row{2.5, 3, 2, 3},
                           Row{0.4, 1, 0, 0}, Row{-0.5, 0, -1, 0}, Row{-0.6, 0, -1, -1}, Row{100, 100, 100, 100},
                           // 0.49999999999999994 plus 0.5 rounds to 1.
                           Row{0.49999999999999994, 1, 0, 1}}) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Scalar(row.value).asInt64(CEIL), row.ceil);
        EXPECT_EQ(Scalar(row.value).asInt64(FLOOR), row.floor);
        EXPECT_EQ(Scalar(row.value).asInt64(ROUND), row.round);
        EXPECT_EQ(Scalar(row.value).asInt8(CEIL), row.ceil);
        EXPECT_EQ(Scalar(row.value).asInt16(FLOOR), row.floor);
        EXPECT_EQ(Scalar(row.value).asInt32(ROUND), row.round);
        EXPECT_EQ(Scalar(row.value).asUInt8(CEIL), static_cast<unsigned char>(row.ceil));
        EXPECT_EQ(Scalar(row.value).asUInt16(FLOOR), static_cast<unsigned short>(row.floor));
        EXPECT_EQ(Scalar(row.value).asUInt32(ROUND), static_cast<unsigned int>(row.round));
        EXPECT_EQ(Scalar(row.value).asUInt64(FLOOR), static_cast<unsigned long>(row.floor));
    }
}

TEST(Scalar, givesZeroForAnUnknownConversionOfAReal)
{
    Scalar const real(17.5);
    EXPECT_EQ(real.asInt8(unknownConversion), 0);
    EXPECT_EQ(real.asInt16(unknownConversion), 0);
    EXPECT_EQ(real.asInt32(unknownConversion), 0);
    EXPECT_EQ(real.asInt64(unknownConversion), 0);
    EXPECT_EQ(real.asUInt8(unknownConversion), 0);
    EXPECT_EQ(real.asUInt16(unknownConversion), 0);
    EXPECT_EQ(real.asUInt32(unknownConversion), 0u);
    EXPECT_EQ(real.asUInt64(unknownConversion), 0u);
    EXPECT_EQ(Scalar(17l).asInt64(unknownConversion), 17);
}

TEST(Scalar, cutsIntegersToTheTargetWidth)
{
    Scalar const wide(0x1234567890ABCDEFl);
    EXPECT_EQ(wide.asUInt8(FLOOR), 0xEF);
    EXPECT_EQ(wide.asInt8(FLOOR), static_cast<signed char>(0xEF));
    EXPECT_EQ(wide.asUInt16(FLOOR), 0xCDEF);
    EXPECT_EQ(wide.asInt16(FLOOR), static_cast<short>(0xCDEF));
    EXPECT_EQ(wide.asUInt32(FLOOR), 0x90ABCDEFu);
    EXPECT_EQ(wide.asInt32(FLOOR), static_cast<int>(0x90ABCDEFu));
    EXPECT_EQ(wide.asUInt64(FLOOR), 0x1234567890ABCDEFul);
    EXPECT_EQ(Scalar(-1).asUInt64(FLOOR), ~0ul);
    EXPECT_EQ(Scalar(-1).asUInt8(FLOOR), 255);
    EXPECT_EQ(Scalar(~0ul).asInt64(FLOOR), -1);
    EXPECT_EQ(Scalar(300u).asUInt8(FLOOR), 44);
}

TEST(Scalar, cutsRealsToTheTargetWidth)
{
    EXPECT_EQ(Scalar(300.7).asUInt8(FLOOR), 44);
    EXPECT_EQ(Scalar(300.7).asInt8(FLOOR), 44);
    EXPECT_EQ(Scalar(-1.0).asUInt8(FLOOR), 255);
    EXPECT_EQ(Scalar(-1.0).asUInt64(FLOOR), ~0ul);
    EXPECT_EQ(Scalar(4294967301.0).asUInt32(FLOOR), 5u);
    EXPECT_EQ(Scalar(4294967301.0).asInt8(FLOOR), 5);
    EXPECT_EQ(Scalar(9223372036854775808.0).asUInt64(FLOOR), topBit);
    EXPECT_EQ(Scalar(18446744073709549568.0).asUInt64(FLOOR), 18446744073709549568ul);
}

TEST(Scalar, hasOneAnswerForRealsThatDoNotFit)
{
    for (double value :
         {infinity, -infinity, notANumber, 1e300, -1e300, 18446744073709551616.0, -9223372036854777856.0}) {
        SCOPED_TRACE(value);
        Scalar const scalar(value);
        EXPECT_EQ(scalar.asInt64(FLOOR), lowest);
        EXPECT_EQ(scalar.asUInt64(FLOOR), topBit);
        EXPECT_EQ(scalar.asInt32(FLOOR), 0);
        EXPECT_EQ(scalar.asUInt32(FLOOR), 0u);
        EXPECT_EQ(scalar.asInt16(FLOOR), 0);
        EXPECT_EQ(scalar.asUInt16(FLOOR), 0);
        EXPECT_EQ(scalar.asInt8(FLOOR), 0);
        EXPECT_EQ(scalar.asUInt8(FLOOR), 0);
    }
    EXPECT_EQ(Scalar(9223372036854775808.0).asInt64(FLOOR), lowest);
}

TEST(Scalar, convertsToFloatingNumbers)
{
    EXPECT_EQ(Scalar(-3).asDouble(), -3.0);
    EXPECT_EQ(Scalar(-3).asFloat(), -3.0f);
    EXPECT_EQ(Scalar(0.1).asDouble(), 0.1);
    EXPECT_EQ(Scalar(0.1).asFloat(), 0.1f);
    EXPECT_TRUE(std::isnan(Scalar(notANumber).asFloat()));
    EXPECT_EQ(Scalar(1e300).asFloat(), std::numeric_limits<float>::infinity());
}

TEST(Scalar, keepsTheMagnitudeOfAnUnsignedNumberWithItsTopBitSet)
{
    EXPECT_EQ(Scalar(topBit).asDouble(), 9223372036854775808.0);
    EXPECT_EQ(Scalar(topBit).asFloat(), 9223372036854775808.0f);
    EXPECT_EQ(Scalar(~0ul).asDouble(), 18446744073709551616.0);
}

TEST(Scalar, roundsAnIntegerToFloatOnce)
{
    // By way of double this would round up to 2^60, then down; in one step it goes to the next float.
    unsigned long const value = (1ul << 60) + (1ul << 36) + 1;
    EXPECT_EQ(Scalar(value).asFloat(), static_cast<float>(value));
    EXPECT_EQ(Scalar(static_cast<long>(value)).asFloat(), static_cast<float>(value));
    EXPECT_NE(Scalar(value).asFloat(), static_cast<float>(static_cast<double>(value)));
}

TEST(Scalar, equalsOnlyTheSameValueOfTheSameType)
{
    EXPECT_TRUE(Scalar(1) == Scalar(1l));
    EXPECT_FALSE(Scalar(1) != Scalar(1l));
    EXPECT_TRUE(Scalar(1) != Scalar(2));
    EXPECT_FALSE(Scalar(1l) == Scalar(1ul));
    EXPECT_TRUE(Scalar(1l) != Scalar(1ul));
    EXPECT_FALSE(Scalar(0l) == Scalar(0.0));
    EXPECT_TRUE(Scalar(0.5) == Scalar(0.5f));
    EXPECT_TRUE(Scalar(0.0) == Scalar(-0.0));
    EXPECT_FALSE(Scalar(notANumber) == Scalar(notANumber));
    EXPECT_TRUE(Scalar(topBit) == Scalar(topBit));
}

TEST(Scalar, knowsTheSmallestTypeOfAnUnsignedNumber)
{
    struct Row
    {
        unsigned long value;
        VoxelTypes plain, preferSigned;
    };
    for (Row const& row :
         {Row{0, QEL_UINT8, QEL_INT8}, Row{100, QEL_UINT8, QEL_INT8}, Row{127, QEL_UINT8, QEL_INT8},
          Row{128, QEL_UINT8, QEL_UINT8}, Row{200, QEL_UINT8, QEL_UINT8}, Row{255, QEL_UINT8, QEL_UINT8},
          Row{256, QEL_UINT16, QEL_INT16}, Row{32767, QEL_UINT16, QEL_INT16}, Row{32768, QEL_UINT16, QEL_UINT16},
          Row{65535, QEL_UINT16, QEL_UINT16}, Row{65536, QEL_UINT32, QEL_INT32}, Row{2147483647, QEL_UINT32, QEL_INT32},
          Row{2147483648, QEL_UINT32, QEL_UINT32}, Row{4294967295, QEL_UINT32, QEL_UINT32},
          Row{4294967296, QEL_UINT64, QEL_INT64}, Row{topBit - 1, QEL_UINT64, QEL_INT64},
          Row{topBit, QEL_UINT64, QEL_UINT64}, Row{~0ul, QEL_UINT64, QEL_UINT64}}) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(false), row.plain);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(true), row.preferSigned);
        if (row.value < topBit) {
            EXPECT_EQ(Scalar(static_cast<long>(row.value)).smallestContainingType(false), row.plain);
            EXPECT_EQ(Scalar(static_cast<long>(row.value)).smallestContainingType(true), row.preferSigned);
        }
    }
}

TEST(Scalar, knowsTheSmallestTypeOfANegativeNumber)
{
    struct Row
    {
        long value;
        VoxelTypes type;
    };
    for (Row const& row :
         {Row{-1, QEL_INT8}, Row{-128, QEL_INT8}, Row{-129, QEL_INT16}, Row{-32768, QEL_INT16}, Row{-32769, QEL_INT32},
          Row{-2147483648l, QEL_INT32}, Row{-2147483649l, QEL_INT64}, Row{lowest, QEL_INT64}}) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(false), row.type);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(true), row.type);
        EXPECT_EQ(Scalar(static_cast<double>(row.value)).smallestContainingType(false), row.type);
    }
}

TEST(Scalar, knowsTheSmallestTypeOfAReal)
{
    struct Row
    {
        double value;
        VoxelTypes plain, preferSigned;
    };
    for (Row const& row :
         {Row{0.5, QEL_FLOAT32, QEL_FLOAT32}, Row{0.1, QEL_FLOAT64, QEL_FLOAT64}, Row{-0.5, QEL_FLOAT32, QEL_FLOAT32},
          Row{100.0, QEL_UINT8, QEL_INT8}, Row{200.0, QEL_UINT8, QEL_UINT8}, Row{-0.0, QEL_UINT8, QEL_INT8},
          Row{300.0, QEL_UINT16, QEL_INT16}, Row{9223372036854774784.0, QEL_UINT64, QEL_INT64},
          Row{9223372036854775808.0, QEL_UINT64, QEL_UINT64}, Row{18446744073709549568.0, QEL_UINT64, QEL_UINT64},
          Row{18446744073709551616.0, QEL_FLOAT32, QEL_FLOAT32}, Row{1e300, QEL_FLOAT64, QEL_FLOAT64},
          Row{infinity, QEL_FLOAT32, QEL_FLOAT32}, Row{-infinity, QEL_FLOAT32, QEL_FLOAT32},
          Row{notANumber, QEL_FLOAT64, QEL_FLOAT64},
          Row{std::numeric_limits<double>::max(), QEL_FLOAT64, QEL_FLOAT64}}) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(false), row.plain);
        EXPECT_EQ(Scalar(row.value).smallestContainingType(true), row.preferSigned);
    }
}
