#include "Core/private/Helper/convertVecFunc.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Support.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace qel::test {
namespace {

using helper::convertVoxel;
using helper::VoxelConversion;
using helper::voxelConversion;

constexpr int NUM_OF_TYPES = 10;

bool isReal(VoxelTypes type) { return type == QEL_FLOAT32 || type == QEL_FLOAT64; }

/// A row of voxels of any type.
struct Row
{
    VoxelTypes type;
    std::vector<unsigned char> bytes;

    Row(VoxelTypes itsType, unsigned long count)
        : type(itsType)
        , bytes(count * memory::sizeOfVoxelType(itsType))
    {}
    template <class T>
    explicit Row(std::vector<T> const& voxels)
        : Row(VoxelTypeOf<T>::value, voxels.size())
    {
        if (!voxels.empty())
            std::memcpy(bytes.data(), voxels.data(), bytes.size());
    }
    unsigned long voxelSize() const { return memory::sizeOfVoxelType(type); }
    unsigned long count() const { return bytes.size() / voxelSize(); }
    unsigned char* at(unsigned long i) { return bytes.data() + i * voxelSize(); }
    unsigned char const* at(unsigned long i) const { return bytes.data() + i * voxelSize(); }
    /// In extended precision, which holds every value of every voxel type.
    long double value(unsigned long i) const
    {
        switch (type) {
#define QEL_LOAD(T)                                                                                                    \
    case VoxelTypeOf<T>::value: {                                                                                      \
        T voxel;                                                                                                       \
        std::memcpy(&voxel, at(i), sizeof(T));                                                                         \
        return voxel;                                                                                                  \
    }
            QEL_FOR_EACH_VOXEL_TYPE(QEL_LOAD)
#undef QEL_LOAD
        default:
            return 0;
        }
    }
};

/// The meaning of the cast, said a second time and slowly.
Row slowCast(Row const& source, VoxelTypes target)
{
    Row result(target, source.count());
    for (unsigned long i = 0; i < source.count(); ++i) {
        long double const value = source.value(i);
        if (target == QEL_FLOAT32) {
            auto const real = static_cast<float>(value);
            std::memcpy(result.at(i), &real, sizeof(real));
        } else if (target == QEL_FLOAT64) {
            auto const real = static_cast<double>(value);
            std::memcpy(result.at(i), &real, sizeof(real));
        } else {
            __int128 whole = 0;
            if (!isReal(source.type)) {
                whole = static_cast<__int128>(value);
            } else {
                bool const through32 = result.voxelSize() < 4 || target == QEL_INT32;
                long double const top = std::ldexp(1.0L, through32 ? 31 : 63);
                long double const cut = std::trunc(value);
                bool const fits = cut >= -top && cut < (target == QEL_UINT64 ? 2 * top : top);
                whole = static_cast<__int128>(fits ? cut : -top);
            }
            std::memcpy(result.at(i), &whole, result.voxelSize()); // the low bits
        }
    }
    return result;
}

/// Equal, or NaN on both sides; a failure names types, place and values.
testing::AssertionResult sameRow(Row const& source, Row const& expected, Row const& actual)
{
    for (unsigned long i = 0; i < expected.count(); ++i)
        if (!sameValue(expected.value(i), actual.value(i)))
            return testing::AssertionFailure()
                   << helper::VoxelTypesToString(source.type).c_str() << " to "
                   << helper::VoxelTypesToString(expected.type).c_str() << ", voxel " << i << " of " << expected.count()
                   << ": " << source.value(i) << " became " << actual.value(i) << " and not " << expected.value(i);
    return testing::AssertionSuccess();
}

/// `count` values of the type, which start at another special one for each turn, so that each meets all lanes of a
/// packet and its tail.
Row specialRow(VoxelTypes type, unsigned long count, unsigned long turn)
{
    Row row(type, 0);
    forEachVoxelType([&]<class T>() {
        if (VoxelTypeOf<T>::value != type)
            return;
        auto const special = specialValues<T>(true);
        std::vector<T> voxels(count);
        for (unsigned long i = 0; i < count; ++i)
            voxels[i] = special[(i + turn) % special.size()];
        row = Row(voxels);
    });
    return row;
}

Row randomRow(VoxelTypes type, unsigned long count, unsigned seed)
{
    Row row(type, 0);
    forEachVoxelType([&]<class T>() {
        if (VoxelTypeOf<T>::value == type)
            row = Row(randomPicture<T>(Shape{count}, seed, true).voxels);
    });
    return row;
}

/// Calls visit(source, target) for the ninety ordered pairs of different types.
template <class Visit> void forEachPair(Visit const& visit)
{
    for (int source = 0; source < NUM_OF_TYPES; ++source)
        for (int target = 0; target < NUM_OF_TYPES; ++target)
            if (source != target)
                visit(VoxelTypes(source), VoxelTypes(target));
}

/// convertVoxel of one voxel, for a pair that is known at run time only.
using SingleCast = void (*)(unsigned char const*, unsigned char*);
template <class Source, class Target> void castOne(unsigned char const* source, unsigned char* target)
{
    Source in;
    std::memcpy(&in, source, sizeof(in));
    Target const out = convertVoxel<Target>(in);
    std::memcpy(target, &out, sizeof(out));
}
template <class Source> SingleCast castFrom(VoxelTypes target)
{
#define QEL_CAST(T) &castOne<Source, T>,
    static constexpr SingleCast casts[] = {QEL_FOR_EACH_VOXEL_TYPE(QEL_CAST)};
#undef QEL_CAST
    return casts[target];
}
SingleCast castOf(VoxelTypes source, VoxelTypes target)
{
#define QEL_CAST(T) &castFrom<T>,
    static constexpr SingleCast (*casts[])(VoxelTypes) = {QEL_FOR_EACH_VOXEL_TYPE(QEL_CAST)};
#undef QEL_CAST
    return casts[source](target);
}

void convert(unsigned char const* source, VoxelTypes sourceType, unsigned char* target, VoxelTypes targetType,
             unsigned long count)
{
    VoxelConversion const conversion = voxelConversion(sourceType, targetType);
    ASSERT_NE(conversion, nullptr);
    conversion(source, target, count);
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
    for (int source = 0; source < NUM_OF_TYPES; ++source)
        for (int target = 0; target < NUM_OF_TYPES; ++target)
            for (Row const& row : {specialRow(VoxelTypes(source), 67, 0), randomRow(VoxelTypes(source), 2000, 17)}) {
                Row result(VoxelTypes(target), row.count());
                for (unsigned long i = 0; i < row.count(); ++i)
                    castOf(row.type, result.type)(row.at(i), result.at(i));
                EXPECT_TRUE(sameRow(row, slowCast(row, result.type), result));
            }
}

TEST(ConvertVecFunc, givesARowOfSixtySevenTheValuesOfSixtySevenRowsOfOne)
{
    forEachPair([](VoxelTypes source, VoxelTypes target) {
        for (unsigned long turn = 0; turn < 67; ++turn) {
            Row const row = specialRow(source, 67, turn);
            Row whole(target, 67);
            Row single(target, 67);
            convert(row.at(0), source, whole.at(0), target, 67);
            for (unsigned long i = 0; i < 67; ++i)
                convert(row.at(i), source, single.at(i), target, 1);
            EXPECT_TRUE(sameRow(row, single, whole));
            EXPECT_TRUE(sameRow(row, slowCast(row, target), whole));
        }
    });
}

TEST(ConvertVecFunc, convertsRowsOfAnyLengthAtAnyAddress)
{
    forEachPair([](VoxelTypes source, VoxelTypes target) {
        for (unsigned long const count : {0, 1, 2, 15, 16, 17, 511, 512, 513, 1024, 1500}) {
            Row const row = randomRow(source, count, 5);
            Row result(target, count);
            std::vector<unsigned char> from(row.bytes.size() + 1);
            std::vector<unsigned char> to(result.bytes.size() + 3, 0xEE);
            std::copy(row.bytes.begin(), row.bytes.end(), from.begin() + 1);
            unsigned char const* const begin = from.data() + 1;
            unsigned char const* readAt = begin;
            unsigned char* writeAt = to.data() + 1;
            voxelConversion(source, target)(readAt, writeAt, count);
            EXPECT_EQ(readAt, begin);
            EXPECT_EQ(writeAt, to.data() + 1);
            EXPECT_EQ(to.front(), 0xEE);
            EXPECT_EQ(to[result.bytes.size() + 1], 0xEE);
            std::copy_n(to.begin() + 1, result.bytes.size(), result.bytes.begin());
            EXPECT_TRUE(sameRow(row, slowCast(row, target), result));
        }
    });
}

TEST(ConvertVecFunc, widensInPlaceFromTheTailOfTheBuffer)
{
    forEachPair([](VoxelTypes source, VoxelTypes target) {
        for (unsigned long const count : {1, 2, 3, 67, 511, 512, 513, 1025, 4000}) {
            Row const row = randomRow(source, count, 7);
            Row result(target, count);
            if (result.bytes.size() < row.bytes.size())
                continue;
            unsigned char* const tail = result.bytes.data() + (result.bytes.size() - row.bytes.size());
            std::copy(row.bytes.begin(), row.bytes.end(), tail);
            convert(tail, source, result.at(0), target, count);
            EXPECT_TRUE(sameRow(row, slowCast(row, target), result));
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
