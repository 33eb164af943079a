#include "Core/private/Rules/Asserts.h"
#include "Core/tests/Support/Expect.h"

#include <qel/EnumInfo.h>
#include <qel/OptimLevelType.h>
#include <qel/PropertyEnumeration.h>

#include <gtest/gtest.h>

namespace qel::test {
namespace {

struct PropertyEnumerationTest : testing::Test
{
    PropertyEnumerationTest() { property.setEnumInfo(&info); }

    EnumInfo info{"Fruit", "APPLE = 3 , PEAR , PLUM = -2"};
    PropertyEnumeration property;
    String rest;
};

TEST_F(PropertyEnumerationTest, givesItsEnumeration) { EXPECT_EQ(property.getEnumInfo(), &info); }

TEST_F(PropertyEnumerationTest, withoutEnumerationSaysSo)
{
    PropertyEnumeration bare;
    EXPECT_QEL_WHAT(bare.getEnumInfo(), RuntimeError,
                    "Runtime error :\n#1 Error : no enumeration info associated with the EnumProperty \n");
    EXPECT_FALSE(bare.read("APPLE", rest));
    EXPECT_FALSE(bare.read("3", rest));
}

TEST_F(PropertyEnumerationTest, takesAnyIntegerByAssignment)
{
    property = 77;
    EXPECT_EQ(property.get(), 77);
    property.set(4);
    EXPECT_EQ(static_cast<int>(property), 4);
    Property<int>& base = property;
    base = -9;
    EXPECT_EQ(property.get(), -9);
}

TEST_F(PropertyEnumerationTest, copiesTheValueAndKeepsItsEnumeration)
{
    EnumInfo other("Colour", "RED , GREEN");
    PropertyEnumeration source;
    source.setEnumInfo(&other);
    source = 1;
    property = source;
    EXPECT_EQ(property.get(), 1);
    EXPECT_EQ(property.getEnumInfo(), &info);
}

TEST_F(PropertyEnumerationTest, keepsItsValueWhileLocked)
{
    property = 3;
    property.lock(true);
    property = 4;
    PropertyEnumeration source;
    source = -2;
    property = source;
    EXPECT_TRUE(property.read("PEAR", rest));
    EXPECT_EQ(property.get(), 3);
}

TEST_F(PropertyEnumerationTest, readsLabelsAndNumbersThatTheEnumerationKnows)
{
    EXPECT_TRUE(property.read("PEAR", rest));
    EXPECT_EQ(property.get(), 4);
    EXPECT_TRUE(property.read("-2", rest));
    EXPECT_EQ(property.get(), -2);
    EXPECT_TRUE(property.read("3", rest));
    EXPECT_EQ(property.get(), 3);
    EXPECT_EQ(rest, String("3"));
    for (char const* text : {"", "0", "5", "pear", "PEARS", "3x", " 3", "99999999999999", "-"}) {
        EXPECT_FALSE(property.read(text, rest)) << text;
        EXPECT_EQ(property.get(), 3) << text;
    }
}

TEST_F(PropertyEnumerationTest, isCheckedByItsRuleInARunOnly)
{
    declare(property, "fruit", 77, AddRuleIsAnEnumOfType(&info));
    EXPECT_QEL_WHAT(property.applyRules(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The value of the parameter \"fruit\" is not valid \n"
                    "#2 From Rule error in property fruit \n");
    property = 4;
    EXPECT_NO_THROW(property.applyRules());
}

} // namespace
} // namespace qel::test
