#include <qel/container/Vector.h>

#include <gtest/gtest.h>

#include <type_traits>

#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

using qel::container::Vector;
namespace math = qel::math;

namespace {

template <class T> T element(int number) { return T(number); }
template <> math::Vector2<int> element(int number) { return {number, -number}; }
template <> math::Vector2<unsigned int> element(int number) { return {static_cast<unsigned int>(number), 1}; }
template <> math::Vector2<double> element(int number) { return {number + 0.5, 0}; }
template <> math::Vector3<int> element(int number) { return {number, 1, 2}; }
template <> math::Vector3<double> element(int number) { return {1, number + 0.5, 2}; }
template <> math::Vector4<long> element(int number) { return {1, 2, 3, number}; }

template <class T> class ContainerVector : public testing::Test
{};

using Elements = testing::Types<double, unsigned long, unsigned int, unsigned char, long, int, math::Vector2<int>,
                                math::Vector2<unsigned int>, math::Vector2<double>, math::Vector3<int>,
                                math::Vector3<double>, math::Vector4<long>>;

} // namespace

TYPED_TEST_SUITE(ContainerVector, Elements);

static_assert(!std::is_convertible_v<unsigned long, Vector<int>>);

TYPED_TEST(ContainerVector, isEmptyByDefault)
{
    Vector<TypeParam> const vector;
    EXPECT_TRUE(vector.empty());
    EXPECT_EQ(vector.size(), 0u);
    EXPECT_EQ(vector.begin(), vector.end());
}

TYPED_TEST(ContainerVector, hasZerosWhenMadeFromASize)
{
    Vector<TypeParam> const vector(3);
    EXPECT_FALSE(vector.empty());
    ASSERT_EQ(vector.size(), 3u);
    for (TypeParam const& value : vector)
        EXPECT_TRUE(value == TypeParam());
}

TYPED_TEST(ContainerVector, growsShrinksAndGivesItsElementsInARow)
{
    Vector<TypeParam> vector;
    vector.reserve(2);
    EXPECT_TRUE(vector.empty());
    for (int i = 0; i < 100; ++i)
        vector.push_back(element<TypeParam>(i));
    ASSERT_EQ(vector.size(), 100u);
    EXPECT_EQ(vector.end() - vector.begin(), 100);
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(vector[i] == element<TypeParam>(i));
        EXPECT_EQ(&vector[i], vector.data() + i);
    }
    vector.resize(101);
    EXPECT_TRUE(vector[99] == element<TypeParam>(99));
    EXPECT_TRUE(vector[100] == TypeParam());
    vector.resize(2);
    EXPECT_EQ(vector.size(), 2u);
    vector.push_back(vector[1]);
    EXPECT_TRUE(vector[2] == element<TypeParam>(1));
    vector.clear();
    EXPECT_TRUE(vector.empty());
}

TYPED_TEST(ContainerVector, writesThroughItsElements)
{
    Vector<TypeParam> vector(3);
    vector[0] = element<TypeParam>(1);
    *(vector.begin() + 1) = element<TypeParam>(2);
    vector.data()[2] = element<TypeParam>(3);
    Vector<TypeParam> const& read = vector;
    EXPECT_TRUE(read[0] == element<TypeParam>(1));
    EXPECT_TRUE(read.data()[1] == element<TypeParam>(2));
    EXPECT_TRUE(*(read.end() - 1) == element<TypeParam>(3));
}

TYPED_TEST(ContainerVector, comparesElementByElement)
{
    Vector<TypeParam> a(2);
    Vector<TypeParam> b(2);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    b[1] = element<TypeParam>(5);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != Vector<TypeParam>(3));
    EXPECT_TRUE(Vector<TypeParam>() == Vector<TypeParam>());
}

TYPED_TEST(ContainerVector, copiesItsElements)
{
    Vector<TypeParam> first(2);
    first[0] = element<TypeParam>(4);
    Vector<TypeParam> const second(first);
    Vector<TypeParam> third(7);
    third = first;
    first[0] = element<TypeParam>(5);
    EXPECT_TRUE(second[0] == element<TypeParam>(4));
    EXPECT_TRUE(third == second);
    Vector<TypeParam> const& same = third;
    third = same;
    EXPECT_TRUE(third == second);
}
