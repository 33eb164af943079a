#include "Core/tests/RuleSupport.h"

#include <qel/EnumInfo.h>
#include <qel/PropertyEnumeration.h>
#include <qel/ScalarArray.h>
#include <qel/container/Vector.h>

#include <gtest/gtest.h>

#include <locale>

namespace qel::test {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(RuleAssertPositiveOnlyTest, refusesZeroAndBelow)
{
    Named<double> real("sigma", 1e-300, ASSERT_POSITIVE_ONLY);
    EXPECT_EQ(failureOf(real), "");
    for (double const value : {0.0, -0.0, -1.0, -infinity, nan}) {
        real = value;
        EXPECT_EQ(failureOf(real), "The parameter \"sigma\" must be strictly positive.") << value;
    }
    EXPECT_EQ(pathOfFailure(real), "Core/private/Rules/RuleAssertPositiveOnly");
    Named<unsigned int> count("count", 0, ASSERT_POSITIVE_ONLY);
    EXPECT_EQ(failureOf(count), "The parameter \"count\" must be strictly positive.");
    count = 1u;
    EXPECT_EQ(failureOf(count), "");
    Named<unsigned long> big("big", ~0ul, ASSERT_POSITIVE_ONLY);
    EXPECT_EQ(failureOf(big), "");
    Named<int> whole("whole", -1, ASSERT_POSITIVE_ONLY);
    EXPECT_EQ(failureOf(whole), "The parameter \"whole\" must be strictly positive.");
}

TEST(RuleLimitedValueTest, comparesByItsKind)
{
    struct Case
    {
        unsigned int kind;
        char const* relation;
        bool below, equal, above; // what passes
    };
    for (Case const& c : {Case{0, "greater than", false, false, true}, Case{1, "less than", true, false, false},
                          Case{2, "greater than or equal to", false, true, true},
                          Case{3, "less than or equal to", true, true, false}}) {
        Named<double> real("step", 0, AddRuleLimitedValue(2.5, c.kind));
        auto const text = [&](std::string const& value) {
            return "The parameter \"step\" (value=" + value + ") must be " + c.relation + " <2.5>.";
        };
        real = 2.25;
        EXPECT_EQ(failureOf(real), c.below ? "" : text("2.25"));
        real = 2.5;
        EXPECT_EQ(failureOf(real), c.equal ? "" : text("2.5"));
        real = 3.0;
        EXPECT_EQ(failureOf(real), c.above ? "" : text("3"));
        Named<unsigned int> whole("step", 7, AddRuleLimitedValue(7, c.kind));
        EXPECT_EQ(failureOf(whole),
                  c.equal ? "" : "The parameter \"step\" (value=7) must be " + std::string(c.relation) + " <7>.");
    }
    Named<double> real("step", -1, AddRuleLimitedValue(0, LIMIT_GREATER_OR_EQUAL));
    EXPECT_EQ(failureOf(real), "The parameter \"step\" (value=-1) must be greater than or equal to <0>.");
    EXPECT_EQ(pathOfFailure(real), "Core/private/Rules/RuleLimitedValue");
}

TEST(RuleLimitedValueTest, printsTheSmallestStep)
{
    Named<double> step("step", 0, AddRuleLimitedValue(2.220446049250313e-16, LIMIT_GREATER));
    EXPECT_EQ(failureOf(step), "The parameter \"step\" (value=0) must be greater than <2.22045e-16>.");
    step = 2.220446049250313e-16;
    EXPECT_NE(failureOf(step), "");
    step = 2.3e-16;
    EXPECT_EQ(failureOf(step), "");
}

TEST(RuleLimitedValueTest, refusesAnUnknownKindWhenItRuns)
{
    for (unsigned int const kind : {4u, ~0u}) {
        Named<double> real("step", 1, AddRuleLimitedValue(0.0, kind));
        EXPECT_EQ(failureOf(real), "The type of the rule is unknown.");
    }
}

TEST(RuleInRangeTest, asksTheBoundsKindAtEachEnd)
{
    struct Case
    {
        BoundsKind bounds;
        char const* range;
        bool low, high; // whether the ends pass
    };
    for (Case const& c :
         {Case{BOUNDS_CLOSED, "[0.1 ; 0.4[", true, true}, Case{BOUNDS_LOW_OPEN, "]0.1 ; 0.4[", false, true},
          Case{BOUNDS_HIGH_OPEN, "[0.1 ; 0.4]", true, false}, Case{BOUNDS_OPEN, "]0.1 ; 0.4]", false, false}}) {
        Named<double> ratio("outlierRatio", 0.2, AddRuleinRange<double>(0.1, 0.4, c.bounds));
        std::string const text = std::string("The parameter \"outlierRatio\" must be in the range ") + c.range + ".";
        EXPECT_EQ(failureOf(ratio), "");
        ratio = 0.1;
        EXPECT_EQ(failureOf(ratio), c.low ? "" : text);
        ratio = 0.4;
        EXPECT_EQ(failureOf(ratio), c.high ? "" : text);
        for (double const outside : {0.09999, 0.40001, -infinity, infinity, nan}) {
            ratio = outside;
            EXPECT_EQ(failureOf(ratio), text) << outside;
        }
        EXPECT_EQ(pathOfFailure(ratio), "Core/private/Rules/RuleInRange");
    }
}

TEST(RuleInRangeTest, isClosedByDefault)
{
    Named<unsigned int> level("numOfLevel", 10, AddRuleinRange<unsigned int>(0, 10));
    EXPECT_EQ(failureOf(level), "");
    level = 0u;
    EXPECT_EQ(failureOf(level), "");
    level = 11u;
    EXPECT_EQ(failureOf(level), "The parameter \"numOfLevel\" must be in the range [0 ; 10[.");
}

TEST(RuleAssertContainerSizeTest, countsTheElements)
{
    Named<container::Vector<double>> ratios("ratios", container::Vector<double>(5), AddRuleContainerSize(6));
    EXPECT_EQ(failureOf(ratios), "The parameter \"ratios\" must have a size of 6. Current size is 5.");
    EXPECT_EQ(pathOfFailure(ratios), "Core/private/Rules/RuleAssertContainerSize");
    ratios = container::Vector<double>(6);
    EXPECT_EQ(failureOf(ratios), "");
    ratios = container::Vector<double>();
    EXPECT_EQ(failureOf(ratios), "The parameter \"ratios\" must have a size of 6. Current size is 0.");
}

TEST(RuleAssertContainerNoEmptyTest, wantsAnElement)
{
    Named<container::Vector<int>> list("list", container::Vector<int>(), AddRuleContainerNoEmpty());
    EXPECT_EQ(failureOf(list), "The parameter \"list\" should not be empty.");
    EXPECT_EQ(pathOfFailure(list), "Core/private/Rules/RuleAssertContainerNoEmpty");
    list = container::Vector<int>(1);
    EXPECT_EQ(failureOf(list), "");
    Named<ScalarArray> scalars("scalars", ScalarArray(), AddRuleContainerNoEmpty());
    EXPECT_EQ(failureOf(scalars), "The parameter \"scalars\" should not be empty.");
}

TEST(RuleIsAnEnumOfTypeTest, takesTheKnownValuesButTheExcludedOnes)
{
    EnumInfo const info("Colour", "RED = 0, GREEN, BLUE = 7, LAST = BLUE");
    PropertyEnumeration colour;
    declare(colour, "colour", 0, AddRuleIsAnEnumOfType(&info, {1}));
    for (int const value : {0, 7}) {
        colour = value;
        EXPECT_EQ(failureOf(colour), "") << value;
    }
    for (int const value : {1, 2, -1, 8, std::numeric_limits<int>::max()}) {
        colour = value;
        EXPECT_EQ(failureOf(colour), "The value of the parameter \"colour\" is not valid") << value;
    }
    EXPECT_EQ(pathOfFailure(colour), "Core/private/Rules/RuleIsAnEnumOfType");
    Named<int> plain("plain", 1, AddRuleIsAnEnumOfType(&info));
    EXPECT_EQ(failureOf(plain), "");
}

TEST(RuleIsAnEnumOfTypeTest, refusesANullEnumeration)
{
    EXPECT_QEL_THROW(AddRuleIsAnEnumOfType(nullptr), RuleException, "The parameter \"reference\" must be set.");
    EXPECT_QEL_THROW(RuleIsAnEnumOfType<>(nullptr), RuleException, "The parameter \"reference\" must be set.");
}

TEST(RuleCompareTest, comparesWithTheOtherPropertysValueOfNow)
{
    Named<double> begin("rotationBegin", 10);
    Named<double> end("rotationEnd", 10, AddRuleCompare<detail::GreaterOrEqualThan>(&begin));
    EXPECT_EQ(failureOf(end), "");
    begin = 12.5;
    EXPECT_EQ(failureOf(end), "The parameter \"rotationEnd\" (value=10) must be greater than or equal to the parameter "
                              "\"rotationBegin\" (value=12.5).");
    EXPECT_EQ(pathOfFailure(end), "Core/private/Rules/RuleCompare");
    end = 13.0;
    EXPECT_EQ(failureOf(end), "");
    end = nan;
    EXPECT_NE(failureOf(end), "");
    Named<int> other("b", 3);
    Named<int> own("a", 3, AddRuleCompare<detail::NotEqualTo>(&other));
    EXPECT_EQ(failureOf(own), "The parameter \"a\" (value=3) must be not equal to the parameter \"b\" (value=3).");
    other = 4;
    EXPECT_EQ(failureOf(own), "");
}

TEST(RuleCompareTest, comparesImagesByTheirAddresses)
{
    HostImage image(QEL_UINT8, {2, 2});
    HostImage twin(QEL_UINT8, {2, 2});
    Named<ImageModel const*> input("input", &image);
    Named<ImageModel*> output("output", &twin, AddRuleCompare<detail::NotEqualTo>(&input));
    EXPECT_EQ(failureOf(output), "");
    output = &image;
    std::ostringstream address;
    address << static_cast<void const*>(static_cast<ImageModel const*>(&image));
    EXPECT_EQ(failureOf(output), "The parameter \"output\" (value=" + address.str() +
                                     ") must be not equal to the parameter \"input\" (value=" + address.str() + ").");
}

TEST(RuleCompareTest, isSilentAboutItsOwnNullImage)
{
    Named<ImageModel const*> input("input", nullptr);
    Named<ImageModel*> output("output", nullptr, AddRuleCompare<detail::NotEqualTo>(&input));
    EXPECT_EQ(failureOf(output), "");
}

TEST(RuleCompareTest, refusesANullReference)
{
    EXPECT_QEL_THROW(AddRuleCompare<detail::NotEqualTo>(static_cast<Property<int>*>(nullptr)), RuleException,
                     "The parameter \"reference\" must be set.");
}

struct GermanNumbers : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(ValueRulesTest, printNumbersInTheClassicLocale)
{
    std::locale const before = std::locale::global(std::locale(std::locale::classic(), new GermanNumbers));
    Named<double> real("x", 0.5, AddRuleLimitedValue(12345.5, LIMIT_GREATER));
    Named<unsigned long> whole("n", 1234567, AddRuleinRange<unsigned long>(0, 1000000));
    std::string const realText = failureOf(real);
    std::string const wholeText = failureOf(whole);
    std::locale::global(before);
    EXPECT_EQ(realText, "The parameter \"x\" (value=0.5) must be greater than <12345.5>.");
    EXPECT_EQ(wholeText, "The parameter \"n\" must be in the range [0 ; 1000000[.");
}

} // namespace
} // namespace qel::test
