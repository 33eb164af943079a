#include "Core/private/TypeDispatch.h"
#include "Core/tests/Support/VoxelTypeLoop.h"

#include <boost/tuple/tuple.hpp>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace qel::test {
namespace {

using tmpl_dispatch::Visitor1Args;
using tmpl_dispatch::Visitor2Args;

std::vector<int> const allNumbers{-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1000};

struct Noter
{
    template <class T> static void run(std::vector<int>* types) { types->push_back(VoxelTypeOf<T>::value); }
};
struct PairNoter
{
    template <class A, class B> static void run(std::vector<std::pair<int, int>>* types)
    {
        types->emplace_back(VoxelTypeOf<A>::value, VoxelTypeOf<B>::value);
    }
};

template <class T> struct Is
{
    template <class U> static void run(bool* is) { *is = std::is_same_v<T, U>; }
};
using Args = boost::tuple<int*, double>;
struct Adder
{
    template <class T> static void run(Args args)
    {
        *boost::get<0>(args) += static_cast<int>(sizeof(T) * boost::get<1>(args));
    }
};
struct Thrower
{
    template <class T> static void run(int) { throw sizeof(T); }
};

template <class List> std::vector<int> typesThatRun()
{
    std::vector<int> types;
    for (int const type : allNumbers) {
        std::size_t const before = types.size();
        Visitor1Args<List, Noter, std::vector<int>*>()(type, &types);
        EXPECT_LE(types.size(), before + 1);
        if (types.size() > before) {
            EXPECT_EQ(types.back(), type);
        }
    }
    return types;
}

TEST(TypeDispatchTest, runsTheTypesOfTheListAndIsSilentOnOthers)
{
    EXPECT_EQ(typesThatRun<AllVoxelTypes>(), (std::vector{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(typesThatRun<IntegerVoxelTypes>(), (std::vector{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(typesThatRun<BinaryVoxelTypes>(), (std::vector{0, 1, 4, 5}));
    EXPECT_EQ(typesThatRun<PacketVoxelTypes>(), (std::vector{0, 1, 2, 4, 5, 6, 8, 9}));
    EXPECT_EQ((typesThatRun<boost::mpl::vector<float>>()), std::vector{8});
    EXPECT_EQ((typesThatRun<boost::mpl::vector<>>()), std::vector<int>());
}

TEST(TypeDispatchTest, namesTheTypeOfEachNumber)
{
    forEachVoxelType([]<class T>() {
        bool is = false;
        Visitor1Args<AllVoxelTypes, Is<T>, bool*>()(VoxelTypeOf<T>::value, &is);
        EXPECT_TRUE(is);
    });
}

TEST(TypeDispatchTest, runsPairsOfTwoLists)
{
    std::vector<std::pair<int, int>> types;
    std::vector<std::pair<int, int>> expected;
    for (int const first : allNumbers)
        for (int const second : allNumbers) {
            Visitor2Args<AllVoxelTypes, BinaryVoxelTypes, PairNoter, std::vector<std::pair<int, int>>*>()(first, second,
                                                                                                          &types);
            if (first >= 0 && first < 10 && (second == 0 || second == 1 || second == 4 || second == 5))
                expected.emplace_back(first, second);
        }
    EXPECT_EQ(types, expected);
    EXPECT_EQ(types.size(), 40u);
}

TEST(TypeDispatchTest, passesATupleOn)
{
    int sum = 0;
    Visitor1Args<AllVoxelTypes, Adder, Args>()(QEL_INT32, Args(&sum, 2.5));
    EXPECT_EQ(sum, 10);
    Visitor1Args<AllVoxelTypes, Adder, Args>()(QEL_COMPLEX_FLOAT64, Args(&sum, 2.5));
    EXPECT_EQ(sum, 10);
}

TEST(TypeDispatchTest, letsExceptionsThrough)
{
    EXPECT_THROW((Visitor1Args<AllVoxelTypes, Thrower, int>()(QEL_INT16, 0)), std::size_t);
    EXPECT_NO_THROW((Visitor1Args<AllVoxelTypes, Thrower, int>()(QEL_COMPLEX_FLOAT32, 0)));
}

TEST(TypeDispatchTest, knowsWhichTypesHaveAPacketForm)
{
    std::vector<int> types;
    for (int type = QEL_UINT8; type <= QEL_COMPLEX_FLOAT64; ++type)
        if (hasPacketForm(static_cast<VoxelTypes>(type)))
            types.push_back(type);
    EXPECT_EQ(types, (std::vector{0, 1, 2, 4, 5, 6, 8, 9}));
}

} // namespace
} // namespace qel::test
