#include <qel/ScalarArray.h>

#include <gtest/gtest.h>

#include <limits>

#include <qel/Exception.h>

#include "Core/tests/Support/Expect.h"

using namespace qel;

namespace {

long const integers[] = {-1, 2, 3};
unsigned long const unsignedIntegers[] = {~0ul, 2, 3};
double const reals[] = {0.5, -2.5, 3.0};

char const* const notInteger = "The ScalarArray isn't of INTEGER type.";
char const* const notUnsigned = "The ScalarArray isn't of UNSIGNED_INTEGER type.";
char const* const notReal = "The ScalarArray isn't of REAL type.";

} // namespace

TEST(ScalarArray, isEmptyByDefault)
{
    ScalarArray const array;
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.getType(), INTEGER);
}

TEST(ScalarArray, isFilledWithZeros)
{
    for (ScalarType type : {INTEGER, UNSIGNED_INTEGER, REAL}) {
        ScalarArray const array(3, type);
        EXPECT_EQ(array.getType(), type);
        EXPECT_EQ(array.size(), 3u);
        EXPECT_FALSE(array.empty());
        for (unsigned long i = 0; i < 3; ++i) {
            EXPECT_EQ(array.getScalarValueAt(i).getType(), type);
            EXPECT_EQ(array.getScalarValueAt(i).asDouble(), 0.0);
        }
    }
}

TEST(ScalarArray, takesItsTypeFromThePointer)
{
    ScalarArray const a(3, integers);
    ScalarArray const b(3, unsignedIntegers);
    ScalarArray const c(3, reals);
    EXPECT_EQ(a.getType(), INTEGER);
    EXPECT_EQ(b.getType(), UNSIGNED_INTEGER);
    EXPECT_EQ(c.getType(), REAL);
    for (unsigned long i = 0; i < 3; ++i) {
        EXPECT_EQ(a.getIntValueAt(i), integers[i]);
        EXPECT_EQ(b.getUIntValueAt(i), unsignedIntegers[i]);
        EXPECT_EQ(c.getRealValueAt(i), reals[i]);
        EXPECT_EQ(a.getScalarValueAt(i), Scalar(integers[i]));
        EXPECT_EQ(b.getScalarValueAt(i), Scalar(unsignedIntegers[i]));
        EXPECT_EQ(c.getScalarValueAt(i), Scalar(reals[i]));
    }
}

TEST(ScalarArray, replacesContentAndTypeBySetData)
{
    ScalarArray array(5, REAL);
    array.setData(3, integers);
    EXPECT_EQ(array, ScalarArray(3, integers));
    array.setData(2, unsignedIntegers);
    EXPECT_EQ(array, ScalarArray(2, unsignedIntegers));
    array.setData(3, reals);
    EXPECT_EQ(array, ScalarArray(3, reals));
    array.setData(0, static_cast<long const*>(nullptr));
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.getType(), INTEGER);
}

TEST(ScalarArray, setsItsElements)
{
    ScalarArray a(2, INTEGER);
    a.setIntValueAt(1, -9);
    EXPECT_EQ(a.getIntValueAt(1), -9);
    EXPECT_EQ(a.getIntValueAt(0), 0);
    a.setScalarValueAt(0, Scalar(-8));
    EXPECT_EQ(a.getIntValueAt(0), -8);

    ScalarArray b(2, UNSIGNED_INTEGER);
    b.setUIntValueAt(1, ~0ul);
    EXPECT_EQ(b.getUIntValueAt(1), ~0ul);
    b.setScalarValueAt(0, Scalar(8u));
    EXPECT_EQ(b.getUIntValueAt(0), 8ul);

    ScalarArray c(2, REAL);
    c.setRealValueAt(1, 0.25);
    EXPECT_EQ(c.getRealValueAt(1), 0.25);
    c.setScalarValueAt(0, Scalar(8.5));
    EXPECT_EQ(c.getRealValueAt(0), 8.5);
}

TEST(ScalarArray, growsByPushBack)
{
    ScalarArray a;
    a.reserve(10);
    EXPECT_EQ(a.size(), 0u);
    a.pushBack(-1l);
    a.pushBack(Scalar(2));
    EXPECT_EQ(a.size(), 2u);
    EXPECT_EQ(a.getIntValueAt(0), -1);
    EXPECT_EQ(a.getIntValueAt(1), 2);

    ScalarArray b(0, UNSIGNED_INTEGER);
    b.pushBack(1ul);
    b.pushBack(Scalar(2u));
    EXPECT_EQ(b.getUIntValueAt(1), 2ul);

    ScalarArray c(0, REAL);
    c.pushBack(0.5);
    c.pushBack(Scalar(1.5f));
    EXPECT_EQ(c.getRealValueAt(1), 1.5);
}

TEST(ScalarArray, keepsItsTypeWhenClearedAndFillsUpWithZeros)
{
    ScalarArray array(3, reals);
    array.resize(5);
    EXPECT_EQ(array.getRealValueAt(2), 3.0);
    EXPECT_EQ(array.getRealValueAt(4), 0.0);
    array.resize(1);
    EXPECT_EQ(array, ScalarArray(1, reals));
    array.clear();
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.getType(), REAL);
}

TEST(ScalarArray, equalsOnlyTheSameTypeSizeAndElements)
{
    EXPECT_TRUE(ScalarArray(3, integers) == ScalarArray(3, integers));
    EXPECT_FALSE(ScalarArray(3, integers) != ScalarArray(3, integers));
    EXPECT_TRUE(ScalarArray(3, integers) != ScalarArray(2, integers));
    long const others[] = {-1, 2, 4};
    EXPECT_FALSE(ScalarArray(3, integers) == ScalarArray(3, others));
    EXPECT_FALSE(ScalarArray(2, INTEGER) == ScalarArray(2, UNSIGNED_INTEGER));
    EXPECT_FALSE(ScalarArray(0, INTEGER) == ScalarArray(0, REAL));
    double const zeros[] = {0.0, -0.0};
    EXPECT_TRUE(ScalarArray(2, REAL) == ScalarArray(2, zeros));
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(ScalarArray(1, &nan) == ScalarArray(1, &nan));
}

TEST(ScalarArray, copiesItsContent)
{
    ScalarArray first(3, reals);
    ScalarArray const second(first);
    ScalarArray third;
    third = first;
    first.setRealValueAt(0, 99.0);
    EXPECT_EQ(second, ScalarArray(3, reals));
    EXPECT_EQ(third, ScalarArray(3, reals));
    ScalarArray const& same = third;
    third = same;
    EXPECT_EQ(third, ScalarArray(3, reals));
}

TEST(ScalarArray, refusesStrictAccessOfAnotherType)
{
    for (ScalarType type : {UNSIGNED_INTEGER, REAL}) {
        ScalarArray array(1, type);
        EXPECT_QEL_THROW(array.getIntValueAt(0), InvalidCall, notInteger);
        EXPECT_QEL_THROW(array.pushBack(1l), InvalidCall, notInteger);
        EXPECT_QEL_THROW(array.setIntValueAt(0, 1), InvalidCall, "The ScalarVector isn't of INTEGER type.");
        EXPECT_EQ(array, ScalarArray(1, type));
    }
    for (ScalarType type : {INTEGER, UNSIGNED_INTEGER}) {
        ScalarArray array(1, type);
        EXPECT_QEL_THROW(array.getRealValueAt(0), InvalidCall, notReal);
        EXPECT_QEL_THROW(array.pushBack(1.0), InvalidCall, notReal);
        EXPECT_QEL_THROW(array.setRealValueAt(0, 1), InvalidCall, "The ScalarVector isn't of REAL type.");
        EXPECT_EQ(array, ScalarArray(1, type));
    }
    for (ScalarType type : {INTEGER, REAL}) {
        ScalarArray array(1, type);
        EXPECT_QEL_THROW(array.getUIntValueAt(0), InvalidCall, notUnsigned);
        EXPECT_QEL_THROW(array.pushBack(1ul), InvalidCall, notUnsigned);
        EXPECT_QEL_THROW(array.setUIntValueAt(0, 1), InvalidCall, notUnsigned);
        EXPECT_EQ(array, ScalarArray(1, type));
    }
}

TEST(ScalarArray, refusesAScalarOfAnotherType)
{
    Scalar const scalars[] = {Scalar(1), Scalar(1u), Scalar(1.0)};
    char const* const labels[] = {"INTEGER", "UNSIGNED_INTEGER", "REAL"};
    for (int type = 0; type < 3; ++type)
        for (int other = 0; other < 3; ++other) {
            if (type == other)
                continue;
            ScalarArray array(1, static_cast<ScalarType>(type));
            EXPECT_QEL_THROW(array.pushBack(scalars[other]), InvalidCall,
                             std::string("The ScalarArray hasn't the same type (") + labels[type] +
                                 ") as the Scalar (" + labels[other] + ").");
            EXPECT_QEL_WHAT(array.setScalarValueAt(0, scalars[other]), InvalidCall,
                            "Invalid call :\n#1 Error : The ScalarArray hasn't the same type of the Scalar. \n");
            EXPECT_EQ(array, ScalarArray(1, static_cast<ScalarType>(type)));
        }
}
