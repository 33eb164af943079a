#include "Core/private/Helper/convertVecFunc.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Support.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <vector>

namespace qel::test {
namespace {

using helper::convertVoxel;
using helper::VoxelConversion;
using helper::voxelConversion;

/// The meaning of the cast, said a second time and slowly: in extended precision, which holds every value of every
/// voxel type.
template <class Out, class In> Out slowCast(In value)
{
    if constexpr (std::is_floating_point_v<Out>) {
        return static_cast<Out>(static_cast<long double>(value));
    } else if constexpr (std::is_integral_v<In>) {
        __int128 const modulus = __int128(1) << (8 * sizeof(Out));
        __int128 rest = __int128(value) % modulus;
        if (rest < 0)
            rest += modulus;
        if (rest > __int128(std::numeric_limits<Out>::max()))
            rest -= modulus;
        return static_cast<Out>(rest);
    } else {
        bool const through32 = sizeof(Out) < 4 || std::is_same_v<Out, int>;
        long double const top = std::ldexp(1.0L, through32 ? 31 : 63);
        long double const whole = std::trunc(static_cast<long double>(value));
        if (std::is_same_v<Out, unsigned long> && whole >= 0 && whole < 2 * top)
            return static_cast<Out>(static_cast<unsigned long>(whole));
        bool const fits = !std::isnan(value) && whole >= -top && whole < top;
        return slowCast<Out>(static_cast<long>(fits ? whole : -top));
    }
}

/// 67 values that start at another one for each turn, so that each meets all lanes of a packet and the tail.
template <class T> std::array<T, 67> specialRow(std::size_t turn)
{
    auto const special = specialValues<T>(true);
    std::array<T, 67> row;
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = special[(i + turn) % special.size()];
    return row;
}

template <class Target, class Source>
void convert(VoxelConversion conversion, Source const* source, Target* target, unsigned long count)
{
    auto from = reinterpret_cast<unsigned char const*>(source);
    auto to = reinterpret_cast<unsigned char*>(target);
    conversion(from, to, count);
}

TEST(ConvertVoxel, keepsTheLowBitsOfATruncatedReal)
{
    EXPECT_EQ(convertVoxel<unsigned char>(300.7f), 44);
    EXPECT_EQ(convertVoxel<unsigned char>(-1.5f), 255);
    EXPECT_EQ(convertVoxel<signed char>(200.0), -56);
    EXPECT_EQ(convertVoxel<unsigned short>(-1.0), 65535);
    EXPECT_EQ(convertVoxel<unsigned short>(65537.9), 1);
    EXPECT_EQ(convertVoxel<unsigned int>(-1.0f), 4294967295u);
    EXPECT_EQ(convertVoxel<unsigned int>(-3e9), 1294967296u);
    EXPECT_EQ(convertVoxel<unsigned int>(1e10), 1410065408u);
    EXPECT_EQ(convertVoxel<unsigned long>(-1.5), ~0ul);
    EXPECT_EQ(convertVoxel<unsigned long>(1e19), 10000000000000000000ul);
}

TEST(ConvertVoxel, turnsWhatFitsNowhereIntoTheLowBitsOfTheSmallestValue)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const infinity = std::numeric_limits<double>::infinity();
    for (double const value : {nan, -nan, infinity, -infinity, 1e30, -1e30}) {
        EXPECT_EQ(convertVoxel<unsigned char>(value), 0);
        EXPECT_EQ(convertVoxel<short>(value), 0);
        EXPECT_EQ(convertVoxel<int>(value), std::numeric_limits<int>::min());
        EXPECT_EQ(convertVoxel<unsigned int>(value), 0u);
        EXPECT_EQ(convertVoxel<long>(value), std::numeric_limits<long>::min());
        EXPECT_EQ(convertVoxel<unsigned long>(value), 0x8000000000000000ul);
        EXPECT_EQ(convertVoxel<unsigned char>(float(value)), 0);
        EXPECT_EQ(convertVoxel<unsigned long>(float(value)), 0x8000000000000000ul);
    }
    EXPECT_EQ(convertVoxel<int>(2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(convertVoxel<unsigned short>(3e9f), 0);
}

TEST(ConvertVoxel, keepsTheLowBitsOfAnInteger)
{
    EXPECT_EQ(convertVoxel<unsigned char>(-1), 255);
    EXPECT_EQ(convertVoxel<signed char>(0x1234567890l), static_cast<signed char>(0x90));
    EXPECT_EQ(convertVoxel<long>(short(-7)), -7);
    EXPECT_EQ(convertVoxel<unsigned long>(-7), ~0ul - 6);
    EXPECT_EQ(convertVoxel<float>(16777217), 16777216.0f);
    EXPECT_EQ(convertVoxel<double>(~0ul), 18446744073709551616.0);
}

TEST(ConvertVoxel, matchesItsDefinitionForEveryPairOfTypes)
{
    forEachVoxelTypePair([]<class Source, class Target>() {
        for (Source const value : specialValues<Source>(true))
            EXPECT_TRUE(sameValue(slowCast<Target>(value), convertVoxel<Target>(value))) << +value;
        for (Source const value : randomPicture<Source>(Shape{2000}, 17, true).voxels)
            EXPECT_TRUE(sameValue(slowCast<Target>(value), convertVoxel<Target>(value))) << +value;
    });
}

TEST(ConvertVecFunc, givesARowOfSixtySevenTheValuesOfSixtySevenRowsOfOne)
{
    forEachVoxelTypePair([]<class Source, class Target>() {
        VoxelConversion const conversion = voxelConversion(VoxelTypeOf<Source>::value, VoxelTypeOf<Target>::value);
        if constexpr (std::is_same_v<Source, Target>) {
            EXPECT_EQ(conversion, nullptr);
        } else {
            ASSERT_NE(conversion, nullptr);
            for (std::size_t turn = 0; turn < specialValues<Source>(true).size(); ++turn) {
                auto const source = specialRow<Source>(turn);
                std::array<Target, 67> whole;
                std::array<Target, 67> single;
                convert(conversion, source.data(), whole.data(), 67);
                for (std::size_t i = 0; i < 67; ++i) {
                    convert(conversion, &source[i], &single[i], 1);
                    EXPECT_TRUE(sameValue(whole[i], single[i])) << "voxel " << i << " of turn " << turn;
                    EXPECT_TRUE(sameValue(whole[i], slowCast<Target>(source[i]))) << +source[i];
                }
            }
        }
    });
}

TEST(ConvertVecFunc, convertsRowsOfAnyLengthAtAnyAddress)
{
    forEachVoxelTypePair([]<class Source, class Target>() {
        if constexpr (!std::is_same_v<Source, Target>) {
            VoxelConversion const conversion = voxelConversion(VoxelTypeOf<Source>::value, VoxelTypeOf<Target>::value);
            for (unsigned long const count : {0, 1, 2, 15, 16, 17, 511, 512, 513, 1024, 1500}) {
                auto const source = randomPicture<Source>(Shape{count}, 5, true).voxels;
                std::vector<unsigned char> from(count * sizeof(Source) + 1);
                std::vector<unsigned char> to(count * sizeof(Target) + 3, 0xEE);
                if (count != 0)
                    std::memcpy(from.data() + 1, source.data(), count * sizeof(Source));
                unsigned char const* const begin = from.data() + 1;
                unsigned char const* readAt = begin;
                unsigned char* writeAt = to.data() + 1;
                conversion(readAt, writeAt, count);
                EXPECT_EQ(readAt, begin);
                EXPECT_EQ(writeAt, to.data() + 1);
                EXPECT_EQ(to.front(), 0xEE);
                EXPECT_EQ(to[count * sizeof(Target) + 1], 0xEE);
                for (unsigned long i = 0; i < count; ++i) {
                    Target value;
                    std::memcpy(&value, to.data() + 1 + i * sizeof(Target), sizeof(Target));
                    ASSERT_TRUE(sameValue(value, slowCast<Target>(source[i]))) << i << " of " << count;
                }
            }
        }
    });
}

TEST(ConvertVecFunc, widensInPlaceFromTheTailOfTheBuffer)
{
    forEachVoxelTypePair([]<class Source, class Target>() {
        if constexpr (!std::is_same_v<Source, Target> && sizeof(Target) >= sizeof(Source)) {
            VoxelConversion const conversion = voxelConversion(VoxelTypeOf<Source>::value, VoxelTypeOf<Target>::value);
            for (unsigned long const count : {1, 2, 3, 67, 511, 512, 513, 1025, 4000}) {
                auto const source = randomPicture<Source>(Shape{count}, 7, true).voxels;
                std::vector<Target> buffer(count);
                auto const bytes = reinterpret_cast<unsigned char*>(buffer.data());
                unsigned char* const tail = bytes + count * (sizeof(Target) - sizeof(Source));
                std::memcpy(tail, source.data(), count * sizeof(Source));
                unsigned char const* from = tail;
                unsigned char* to = bytes;
                conversion(from, to, count);
                for (unsigned long i = 0; i < count; ++i)
                    ASSERT_TRUE(sameValue(buffer[i], slowCast<Target>(source[i]))) << i << " of " << count;
            }
        }
    });
}

TEST(ConvertVecFunc, isOneFunctionForAPairThatDiffersInSignOnly)
{
    EXPECT_EQ(voxelConversion(QEL_UINT8, QEL_INT8), voxelConversion(QEL_INT8, QEL_UINT8));
    EXPECT_EQ(voxelConversion(QEL_UINT16, QEL_INT16), voxelConversion(QEL_INT16, QEL_UINT16));
    EXPECT_EQ(voxelConversion(QEL_UINT32, QEL_INT32), voxelConversion(QEL_INT32, QEL_UINT32));
    EXPECT_EQ(voxelConversion(QEL_UINT64, QEL_INT64), voxelConversion(QEL_INT64, QEL_UINT64));
    EXPECT_NE(voxelConversion(QEL_UINT8, QEL_INT8), voxelConversion(QEL_UINT16, QEL_INT16));
    EXPECT_NE(voxelConversion(QEL_UINT8, QEL_INT16), voxelConversion(QEL_INT8, QEL_INT16));
    EXPECT_NE(voxelConversion(QEL_FLOAT32, QEL_INT32), voxelConversion(QEL_FLOAT32, QEL_UINT32));
}

TEST(ConvertVecFunc, knowsTheTenRealTypesOnly)
{
    for (int a = -1; a < 14; ++a)
        for (int b = -1; b < 14; ++b) {
            bool const real = a >= 0 && a < 10 && b >= 0 && b < 10;
            EXPECT_EQ(voxelConversion(VoxelTypes(a), VoxelTypes(b)) != nullptr, real && a != b) << a << ", " << b;
        }
}

} // namespace
} // namespace qel::test
