#include "Core/private/Declare.h"
#include "Core/tests/RuleSupport.h"
#include "Core/tests/Support/Support.h"

#include <qel/PropertyEnumeration.h>
#include <qel/Scalar.h>
#include <qel/ScalarArray.h>
#include <qel/container/Vector.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector4.h>
#include <qel/memory/InMemoryImage.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace qel::test {
namespace {

template <class T> class Recorder : public Rules<Property<T>>
{
public:
    explicit Recorder(std::function<void(Property<T>&)> itsAction)
        : action(itsAction)
    {}
    void apply(Property<T>& property) override { action(property); }

private:
    std::function<void(Property<T>&)> action;
};

template <class T> void pushAction(Property<T>& property, std::function<void(Property<T>&)> action)
{
    pushRule<T>(property, boost::make_shared<Recorder<T>>(action));
}

TEST(PropertyTest, startsUnlockedNamelessAndZero)
{
    Property<int> const integer;
    EXPECT_FALSE(integer.isLocked());
    EXPECT_EQ(integer.get(), 0);
    EXPECT_EQ(integer.getName(), String(""));
    EXPECT_EQ(integer.getDescription(), String(""));
    EXPECT_FALSE(Property<bool>().get());
    EXPECT_EQ(Property<double>().get(), 0.0);
    EXPECT_EQ(Property<ImageModel const*>().get(), nullptr);
    EXPECT_EQ(Property<ImageModel*>().get(), nullptr);
    EXPECT_EQ(Property<String>().get(), String(""));
}

TEST(PropertyTest, takesAValueBySetAndByAssignment)
{
    Property<double> property;
    property.set(1.5);
    EXPECT_EQ(property.get(), 1.5);
    property = 2.5;
    EXPECT_EQ(static_cast<double>(property), 2.5);
    Property<double> other;
    other = property;
    EXPECT_EQ(other.get(), 2.5);
}

TEST(PropertyTest, keepsItsValueSilentlyWhileLocked)
{
    Property<int> property;
    property = 3;
    Property<int> other;
    other = 8;
    property.lock(true);
    EXPECT_TRUE(property.isLocked());
    property.set(4);
    property = 5;
    property = other;
    String rest;
    EXPECT_FALSE(property.read("6", rest));
    EXPECT_EQ(property.get(), 3);
    property.lock(false);
    EXPECT_FALSE(property.isLocked());
    property = 4;
    EXPECT_EQ(property.get(), 4);
}

TEST(PropertyTest, canBeCopiedFromWhileLocked)
{
    Property<int> source;
    source = 7;
    source.lock(true);
    Property<int> target;
    target = source;
    EXPECT_EQ(target.get(), 7);
    EXPECT_FALSE(target.isLocked());
}

TEST(PropertyTest, assignmentOfAnotherOneCopiesTheValueAlone)
{
    Property<int> source;
    declare(source, "source", 7);
    int applied = 0;
    pushAction<int>(source, [&](auto&) { ++applied; });
    Property<int> target;
    declare(target, "target", 1);
    target = source;
    EXPECT_EQ(target.get(), 7);
    EXPECT_EQ(target.getName(), String("target"));
    EXPECT_EQ(target.getDescription(), String("target"));
    target.applyRules();
    EXPECT_EQ(applied, 0);
}

TEST(PropertyTest, canBeAssignedToItself)
{
    Property<String> property;
    property = String("text");
    Property<String> const& same = property;
    property = same;
    EXPECT_EQ(property.get(), String("text"));
}

TEST(PropertyTest, declarationGivesOneTextAsNameAndDescription)
{
    Property<int> property;
    declare(property, "boxSize", 5);
    EXPECT_EQ(property.getName(), String("boxSize"));
    EXPECT_EQ(property.getDescription(), String("boxSize"));
    EXPECT_EQ(property.get(), 5);
    property.setDescription("how wide");
    EXPECT_EQ(property.getDescription(), String("how wide"));
    EXPECT_EQ(property.getName(), String("boxSize"));
}

TEST(PropertyTest, declarationRespectsTheLock)
{
    Property<int> property;
    property.lock(true);
    declare(property, "locked", 5);
    EXPECT_EQ(property.get(), 0);
    EXPECT_EQ(property.getName(), String("locked"));
}

TEST(PropertyTest, settingFiresNoRule)
{
    Property<int> property;
    int applied = 0;
    pushAction<int>(property, [&](auto&) { ++applied; });
    property = 4;
    property.set(5);
    EXPECT_EQ(applied, 0);
    property.applyRules();
    EXPECT_EQ(applied, 1);
}

TEST(PropertyTest, appliesItsRulesInTheOrderOfTheirPushing)
{
    Property<int> property;
    std::vector<int> order;
    for (int number = 0; number < 4; ++number)
        pushAction<int>(property, [&order, number](auto&) { order.push_back(number); });
    property.applyRules();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3}));
}

TEST(PropertyTest, aFailingRuleAddsALevelWithItsNameAndEndsTheList)
{
    Property<ImageModel const*> property;
    declare(property, "input", nullptr, ASSERT_NOT_NULL);
    int later = 0;
    pushAction<ImageModel const*>(property, [&](auto&) { ++later; });
    EXPECT_QEL_WHAT(property.applyRules(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The parameter \"input\" must be set. \n"
                    "#2 From Rule error in property input \n");
    EXPECT_EQ(later, 0);
    EXPECT_EQ(pathOfFailure(property), "Core/private/Rules/RuleAssertNotNull");

    memory::InMemoryImage image;
    property = &image;
    property.applyRules();
    EXPECT_EQ(later, 1);
}

TEST(PropertyTest, otherExceptionsOfARuleGetNoLevel)
{
    Property<int> property;
    declare(property, "input", 0);
    pushAction<int>(property, [](auto&) { QEL_THROW(RuntimeError, "no memory"); });
    EXPECT_QEL_WHAT(property.applyRules(), RuntimeError, "Runtime error :\n#1 Error : no memory \n");
    Property<int> foreign;
    pushAction<int>(foreign, [](auto&) { throw HostFailure(); });
    EXPECT_THROW(foreign.applyRules(), HostFailure);
}

TEST(PropertyTest, aRuleMayChangeTheListThatItStandsIn)
{
    Property<int> property;
    int applied = 0;
    pushAction<int>(property, [&](Property<int>& self) {
        ++applied;
        self.getPrivate()->rules.clear();
    });
    property.applyRules();
    property.applyRules();
    EXPECT_EQ(applied, 1);
}

TEST(PropertyTest, appliesRulesWhileLocked)
{
    Property<int> property;
    int applied = 0;
    pushAction<int>(property, [&](auto&) { ++applied; });
    property.lock(true);
    property.applyRules();
    EXPECT_EQ(applied, 1);
}

template <class T> void expectUnreadable()
{
    Property<T> property;
    String rest;
    for (char const* text : {"", "0", "1", "null", "@v:1"})
        EXPECT_FALSE(property.read(text, rest)) << text;
}

TEST(PropertyTest, imagesPointersAndArraysHaveNoTextForm)
{
    expectUnreadable<ImageModel*>();
    expectUnreadable<ImageModel const*>();
    expectUnreadable<ScalarArray>();
    expectUnreadable<container::Vector<math::Vector2<int>>*>();
    expectUnreadable<container::Vector<math::Vector2<int>> const*>();
    expectUnreadable<container::Vector<math::Vector4<double>>*>();
    expectUnreadable<math::Matrix3<double>>();
}

TEST(PropertyTest, readsTextThroughItsBase)
{
    Property<long> property;
    BaseProperty& base = property;
    String rest;
    EXPECT_TRUE(base.read("-12", rest));
    EXPECT_EQ(property.get(), -12);
    EXPECT_EQ(rest, String("-12"));
    EXPECT_FALSE(base.read("many", rest));
    EXPECT_EQ(property.get(), -12);
}

TEST(PropertyTest, holdsValuesOfOwnedTypes)
{
    Property<container::Vector<int>> vector;
    container::Vector<int> numbers(3);
    numbers[1] = 5;
    vector = numbers;
    numbers[1] = 6;
    EXPECT_EQ(vector.get()[1], 5);
    Property<Scalar> scalar;
    scalar = Scalar(2.5);
    EXPECT_EQ(scalar.get(), Scalar(2.5));
}

} // namespace
} // namespace qel::test
