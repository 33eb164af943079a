#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>

using namespace qel::math;

namespace {

template <class V> struct ComponentOf;
template <template <class> class V, class T> struct ComponentOf<V<T>>
{
    using type = T;
};

// The vector with components f(0), f(1), ...
template <class V, class F> V make(F&& f)
{
    V vector;
    for (unsigned int i = 0; i < V::dim(); ++i)
        vector[i] = static_cast<typename ComponentOf<V>::type>(f(i));
    return vector;
}

template <class V> class MathVector : public testing::Test
{
public:
    using Component = typename ComponentOf<V>::type;
};

using Vectors =
    testing::Types<Vector2<int>, Vector2<unsigned int>, Vector2<long>, Vector2<unsigned long>, Vector2<float>,
                   Vector2<double>, Vector3<int>, Vector3<unsigned int>, Vector3<long>, Vector3<unsigned long>,
                   Vector3<float>, Vector3<double>, Vector4<int>, Vector4<unsigned int>, Vector4<long>,
                   Vector4<unsigned long>, Vector4<float>, Vector4<double>>;

} // namespace

TYPED_TEST_SUITE(MathVector, Vectors);

static_assert(!std::is_constructible_v<Vector2<int>, int>);
static_assert(std::is_constructible_v<Vector2<int>, int, int>);
static_assert(!std::is_constructible_v<Vector2<int>, int, int, int>);
static_assert(std::is_constructible_v<Vector3<int>, int, int, int>);
static_assert(std::is_constructible_v<Vector4<int>, int, int, int, int>);
static_assert(!std::is_convertible_v<int const*, Vector2<int>>);
static_assert(std::is_trivially_copyable_v<Vector3<double>>);
static_assert(sizeof(Vector3<float>) == 3 * sizeof(float));

TYPED_TEST(MathVector, isZeroByDefault)
{
    TypeParam const vector;
    for (unsigned int i = 0; i < TypeParam::dim(); ++i)
        EXPECT_EQ(vector[i], 0);
}

TYPED_TEST(MathVector, givesItsComponentsInEveryWay)
{
    using T = typename TestFixture::Component;
    T const components[] = {11, 12, 13, 14};
    TypeParam vector(components);
    TypeParam const& read = vector;
    for (unsigned int i = 0; i < vector.dim(); ++i) {
        EXPECT_EQ(read[i], components[i]);
        EXPECT_EQ(read(i), components[i]);
        EXPECT_EQ(read.data()[i], components[i]);
        EXPECT_EQ(read.getValue()[i], components[i]);
    }
    vector[0] = 1;
    EXPECT_EQ(read[0], T(1));
    vector(0) = 2;
    EXPECT_EQ(read[0], T(2));
    vector.data()[1] = 3;
    EXPECT_EQ(read[1], T(3));
}

TYPED_TEST(MathVector, setsItsComponentsFromAVectorAndAPointer)
{
    using T = typename TestFixture::Component;
    T const components[] = {5, 6, 7, 8};
    TypeParam a;
    a.setValue(components);
    EXPECT_TRUE(a == TypeParam(components));
    TypeParam b;
    b.setValue(a);
    EXPECT_TRUE(b == a);
}

TYPED_TEST(MathVector, differsInASingleComponent)
{
    TypeParam const zero;
    EXPECT_TRUE(zero == TypeParam());
    EXPECT_FALSE(zero != TypeParam());
    for (unsigned int i = 0; i < TypeParam::dim(); ++i) {
        TypeParam other;
        other[i] = 1;
        EXPECT_TRUE(other != zero);
        EXPECT_FALSE(other == zero);
    }
}

TYPED_TEST(MathVector, addsAndSubtracts)
{
    auto const a = make<TypeParam>([](unsigned int i) { return 10 + i; });
    auto const b = make<TypeParam>([](unsigned int i) { return 2 * i; });
    EXPECT_TRUE(a + b == make<TypeParam>([](unsigned int i) { return 10 + 3 * i; }));
    EXPECT_TRUE(a - b == make<TypeParam>([](unsigned int i) { return 10 - i; }));
    TypeParam c = a;
    EXPECT_EQ(&(c += b), &c);
    EXPECT_TRUE(c == a + b);
    EXPECT_EQ(&(c -= b), &c);
    EXPECT_TRUE(c == a);
}

TYPED_TEST(MathVector, multipliesAndDividesByAnInt)
{
    auto const a = make<TypeParam>([](unsigned int i) { return 6 * (i + 1); });
    EXPECT_TRUE(a * 3 == make<TypeParam>([](unsigned int i) { return 18 * (i + 1); }));
    EXPECT_TRUE(a / 3 == make<TypeParam>([](unsigned int i) { return 2 * (i + 1); }));
    TypeParam b = a;
    EXPECT_EQ(&(b *= 4), &b);
    EXPECT_TRUE(b == make<TypeParam>([](unsigned int i) { return 24 * (i + 1); }));
    EXPECT_EQ(&(b /= 4), &b);
    EXPECT_TRUE(b == a);
}

TYPED_TEST(MathVector, multipliesAndDividesByADoubleThroughDouble)
{
    using T = typename TestFixture::Component;
    auto const a = make<TypeParam>([](unsigned int i) { return 3 + i; });
    for (unsigned int i = 0; i < TypeParam::dim(); ++i) {
        EXPECT_EQ((a * 0.5)[i], static_cast<T>((3.0 + i) * 0.5));
        EXPECT_EQ((a / 0.4)[i], static_cast<T>((3.0 + i) / 0.4));
    }
    TypeParam b = a;
    EXPECT_EQ(&(b *= 1.7), &b);
    EXPECT_TRUE(b == a * 1.7);
    EXPECT_EQ(&(b /= 0.3), &b);
    EXPECT_TRUE(b == (a * 1.7) / 0.3);
}

TYPED_TEST(MathVector, hasItsProductAndLengths)
{
    auto const a = make<TypeParam>([](unsigned int i) { return i + 1; });
    auto const b = make<TypeParam>([](unsigned int i) { return 5 - i; });
    double product = 0;
    double squares = 0;
    for (unsigned int i = 0; i < TypeParam::dim(); ++i) {
        product += (i + 1.0) * (5.0 - i);
        squares += (i + 1.0) * (i + 1.0);
    }
    EXPECT_EQ(static_cast<double>(a.dot(b)), product);
    EXPECT_EQ(a.squaredLength(), squares);
    EXPECT_EQ(a.length(), std::sqrt(squares));
}

TEST(MathVector, hasItsDimension)
{
    EXPECT_EQ(Vector2<int>().dim(), 2u);
    EXPECT_EQ(Vector3<int>().dim(), 3u);
    EXPECT_EQ(Vector4<int>().dim(), 4u);
}

TEST(MathVector, takesAndGivesSingleComponents)
{
    int x = 0, y = 0, z = 0, w = 0;
    Vector2<int> two(1, 2);
    two.setValue(3, 4);
    two.getValue(x, y);
    EXPECT_EQ(x, 3);
    EXPECT_EQ(y, 4);
    Vector3<int> three(1, 2, 3);
    EXPECT_EQ(three[2], 3);
    three.setValue(4, 5, 6);
    three.getValue(x, y, z);
    EXPECT_EQ(x, 4);
    EXPECT_EQ(y, 5);
    EXPECT_EQ(z, 6);
    Vector4<int> four(1, 2, 3, 4);
    EXPECT_EQ(four[3], 4);
    four.setValue(5, 6, 7, 8);
    four.getValue(x, y, z, w);
    EXPECT_EQ(x, 5);
    EXPECT_EQ(y, 6);
    EXPECT_EQ(z, 7);
    EXPECT_EQ(w, 8);
}

TEST(MathVector, cutsTowardsZeroWhenItComesBackFromDouble)
{
    EXPECT_TRUE(Vector2<int>(-3, 3) * 0.5 == Vector2<int>(-1, 1));
    EXPECT_TRUE(Vector2<int>(-3, 3) / 2.0 == Vector2<int>(-1, 1));
    EXPECT_TRUE(Vector2<unsigned int>(3, 5) * 0.5 == Vector2<unsigned int>(1, 2));
    // Beyond 2^53 an integer is rounded on its way through double.
    EXPECT_TRUE(Vector2<long>((1l << 53) + 1, 1) * 1.0 == Vector2<long>(1l << 53, 1));
    EXPECT_TRUE(Vector2<long>((1l << 53) + 1, 1) * 1 == Vector2<long>((1l << 53) + 1, 1));
}

TEST(MathVector, hasOneAnswerForWhatDoesNotFit)
{
    int const lowest = std::numeric_limits<int>::min();
    int const highest = std::numeric_limits<int>::max();
    EXPECT_TRUE(Vector2<int>(highest, lowest) + Vector2<int>(1, -1) == Vector2<int>(lowest, highest));
    EXPECT_TRUE(Vector2<int>(lowest, highest) - Vector2<int>(1, -1) == Vector2<int>(highest, lowest));
    EXPECT_TRUE(Vector2<int>(highest, lowest) * 2 == Vector2<int>(-2, 0));
    EXPECT_TRUE(Vector2<int>(lowest, 4) / -1 == Vector2<int>(lowest, -4));
    EXPECT_EQ(Vector2<int>(65536, 1).dot(Vector2<int>(65536, 1)), 1);
    EXPECT_TRUE(Vector2<unsigned int>(0, 1) - Vector2<unsigned int>(1, 0) == Vector2<unsigned int>(~0u, 1));
    EXPECT_TRUE(Vector2<int>(1, -1) * 4294967297.0 == Vector2<int>(1, -1));
    EXPECT_TRUE(Vector2<int>(1, 0) / 0.0 == Vector2<int>(0, 0));
    EXPECT_TRUE(Vector2<long>(1, -1) * 1e300 ==
                Vector2<long>(std::numeric_limits<long>::min(), std::numeric_limits<long>::min()));
    EXPECT_TRUE(Vector2<unsigned long>(1ul << 62, 1) * 2.0 == Vector2<unsigned long>(1ul << 63, 2));
    EXPECT_TRUE(Vector2<unsigned long>(1, 0) * -1.0 == Vector2<unsigned long>(~0ul, 0));
}

TEST(MathVector, keepsNegativeAndFractionalFactors)
{
    EXPECT_TRUE(Vector2<double>(1.5, -2) * -2 == Vector2<double>(-3, 4));
    EXPECT_TRUE(Vector2<double>(1, -2) / 2 == Vector2<double>(0.5, -1));
    EXPECT_TRUE(Vector2<float>(1, -2) / 2 == Vector2<float>(0.5f, -1));
    EXPECT_TRUE(Vector3<int>(6, -6, 7) / -2 == Vector3<int>(-3, 3, -3));
    EXPECT_EQ((Vector2<float>(1, 0) * 0.1)[0], static_cast<float>(0.1));
}
