#include "Core/tests/RuleSupport.h"

#include "Core/private/AlgoInfoPrivate.h"
#include "Core/private/Rules/RuleAssertDimensionImage.h"
#include "Core/private/Rules/RuleAssertInterpretation.h"
#include "Core/private/Rules/RuleAssertSameSize.h"
#include "Core/private/Rules/RuleAssertSameType.h"
#include "Core/private/Rules/RuleAssertType.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace qel::test {
namespace {

template <class T> class AssertRulesTest : public testing::Test
{};
using ImageKinds = testing::Types<ImageModel const*, ImageModel*>;
TYPED_TEST_SUITE(AssertRulesTest, ImageKinds);

std::vector<int> typesThatPass(auto const& addRule, auto kind)
{
    std::vector<int> passed;
    for (int type = QEL_UINT8; type <= QEL_COMPLEX_FLOAT64; ++type) {
        HostImage image(static_cast<VoxelTypes>(type), {2});
        Named<decltype(kind)> property("input", &image, addRule);
        if (failureOf(property).empty())
            passed.push_back(type);
    }
    return passed;
}

TYPED_TEST(AssertRulesTest, letThroughTheTypesOfTheirHelper)
{
    TypeParam const kind = nullptr;
    EXPECT_EQ(typesThatPass(ASSERT_INTEGER, kind), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(typesThatPass(ASSERT_FLOATING, kind), (std::vector<int>{8, 9}));
    EXPECT_EQ(typesThatPass(ASSERT_INTEGER_OR_FLOATING, kind), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(typesThatPass(ASSERT_BINARY_TYPE, kind), (std::vector<int>{0, 1, 4, 5}));
    EXPECT_EQ(typesThatPass(AddRuleAssertType({QEL_FLOAT64}), kind), (std::vector<int>{9}));
    EXPECT_EQ(typesThatPass(AddRuleAssertType({}), kind), (std::vector<int>{}));
}

TYPED_TEST(AssertRulesTest, listTheTypesThatTheySupport)
{
    HostImage image(QEL_FLOAT64, {2});
    Named<TypeParam> integer("input", &image, ASSERT_INTEGER);
    EXPECT_EQ(failureOf(integer),
              "The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, int16, int32, "
              "int64. Current data type is float64.");
    EXPECT_EQ(pathOfFailure(integer), "Core/private/Rules/RuleAssertType");
    Named<TypeParam> binary("mask", &image, ASSERT_BINARY_TYPE);
    EXPECT_EQ(failureOf(binary),
              "The parameter \"mask\" supports only data type(s): uint8, uint16, int8, int16. Current "
              "data type is float64.");
    HostImage complex(QEL_COMPLEX_FLOAT32, {2});
    Named<TypeParam> scalar("input", &complex, ASSERT_INTEGER_OR_FLOATING);
    EXPECT_EQ(failureOf(scalar),
              "The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, int16, int32, "
              "int64, float32, float64. Current data type is complex float32.");
    HostImage whole(QEL_INT8, {2});
    Named<TypeParam> floating("input", &whole, ASSERT_FLOATING);
    EXPECT_EQ(failureOf(floating),
              "The parameter \"input\" supports only data type(s): float32, float64. Current data type is int8.");
}

std::vector<int> interpretationsThatPass(auto const& addRule, auto kind)
{
    std::vector<int> passed;
    for (Interpretations const interpretation : {QEL_BINARY, QEL_LABEL, QEL_VALUE}) {
        HostImage image(QEL_UINT8, {2});
        image.setInterpretation(interpretation);
        Named<decltype(kind)> property("input", &image, addRule);
        if (failureOf(property).empty())
            passed.push_back(interpretation);
    }
    return passed;
}

TYPED_TEST(AssertRulesTest, letThroughTheInterpretationsOfTheirHelper)
{
    TypeParam const kind = nullptr;
    EXPECT_EQ(interpretationsThatPass(ASSERT_BINARY, kind), (std::vector<int>{0}));
    EXPECT_EQ(interpretationsThatPass(ASSERT_LABEL, kind), (std::vector<int>{1}));
    EXPECT_EQ(interpretationsThatPass(ASSERT_VALUE, kind), (std::vector<int>{2}));
    EXPECT_EQ(interpretationsThatPass(ASSERT_BINARY_OR_VALUE, kind), (std::vector<int>{0, 2}));
    EXPECT_EQ(interpretationsThatPass(ASSERT_LABEL_OR_BINARY, kind), (std::vector<int>{0, 1}));
}

TYPED_TEST(AssertRulesTest, listTheInterpretationsThatTheySupport)
{
    HostImage image(QEL_UINT8, {2});
    image.setInterpretation(QEL_LABEL);
    Named<TypeParam> both("input", &image, ASSERT_BINARY_OR_VALUE);
    EXPECT_EQ(failureOf(both), "The parameter \"input\" supports QEL_BINARY, QEL_VALUE. Current image is QEL_LABEL.");
    EXPECT_EQ(pathOfFailure(both), "Core/private/Rules/RuleAssertInterpretation");
    image.setInterpretation(QEL_VALUE);
    Named<TypeParam> other("input", &image, ASSERT_LABEL_OR_BINARY);
    EXPECT_EQ(failureOf(other), "The parameter \"input\" supports QEL_BINARY, QEL_LABEL. Current image is QEL_VALUE.");
    Named<TypeParam> binary("input", &image, ASSERT_BINARY);
    EXPECT_EQ(failureOf(binary), "The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.");
    Named<TypeParam> label("input", &image, ASSERT_LABEL);
    EXPECT_EQ(failureOf(label), "The parameter \"input\" supports QEL_LABEL. Current image is QEL_VALUE.");
    image.setInterpretation(QEL_BINARY);
    Named<TypeParam> value("input", &image, ASSERT_VALUE);
    EXPECT_EQ(failureOf(value), "The parameter \"input\" supports QEL_VALUE. Current image is QEL_BINARY.");
    image.setInterpretation(static_cast<Interpretations>(9));
    EXPECT_EQ(failureOf(value), "The parameter \"input\" supports QEL_VALUE. Current image is 9.");
}

TYPED_TEST(AssertRulesTest, nameTheAxisOfAWrongSize)
{
    HostImage image(QEL_UINT8, {2, 3, 4, 5, 6});
    char const* const axes[] = {"columns", "rows", "plans", "time series", "spectral series"};
    for (int component = COLUMNS; component <= SPECTRAL_SERIES; ++component) {
        Named<TypeParam> right("input", &image,
                               AddRuleAssertDimension(static_cast<Components>(component), component + 2));
        EXPECT_EQ(failureOf(right), "");
        Named<TypeParam> wrong("input", &image, AddRuleAssertDimension(static_cast<Components>(component), 1));
        EXPECT_EQ(failureOf(wrong), std::string("The number of ") + axes[component] +
                                        " of the parameter \"input\" must be 1. Current size is " +
                                        std::to_string(component + 2) + ".");
        EXPECT_EQ(pathOfFailure(wrong), "Core/private/Rules/RuleAssertDimension");
    }
}

TYPED_TEST(AssertRulesTest, reportAllAxesThatDifferFromTheReferenceTogether)
{
    HostImage image(QEL_UINT8, {2, 3, 4, 5, 6});
    HostImage other(QEL_UINT8, {9, 3, 8, 7, 6});
    Named<TypeParam> input("input", &image);
    Named<ImageModel*> mask("mask", &other, AddRuleAssertDimensionImage(&input, PLANS, COLUMNS, ROWS));
    EXPECT_EQ(failureOf(mask), "The number of plans of the parameter \"mask\" must be 4. Current size is 8.\n"
                               "The number of columns of the parameter \"mask\" must be 2. Current size is 9.");
    EXPECT_EQ(pathOfFailure(mask), "Core/private/Rules/RuleAssertDimensionImage");
    Named<ImageModel const*> one("mask", &other, AddRuleAssertDimensionImage(&input, TIME_SERIES));
    EXPECT_EQ(failureOf(one), "The number of time series of the parameter \"mask\" must be 5. Current size is 7.");
    Named<ImageModel const*> four("mask", &other,
                                  AddRuleAssertDimensionImage(&input, ROWS, SPECTRAL_SERIES, ROWS, PLANS));
    EXPECT_EQ(failureOf(four), "The number of plans of the parameter \"mask\" must be 4. Current size is 8.");
    Named<ImageModel const*> equal("mask", &other, AddRuleAssertDimensionImage(&input, ROWS, SPECTRAL_SERIES));
    EXPECT_EQ(failureOf(equal), "");
    input = nullptr;
    EXPECT_EQ(failureOf(equal), "The parameter \"input\" must be set.");
    equal = nullptr;
    EXPECT_EQ(failureOf(equal), "The parameter \"input\" must be set.");
    input = &image;
    EXPECT_EQ(failureOf(equal), "");
}

TYPED_TEST(AssertRulesTest, refuseADimensionRuleWithoutComponentOrReference)
{
    Named<TypeParam> input("input");
    Property<TypeParam>* const none = nullptr;
    using Rule = RuleAssertDimensionImage<Property<ImageModel*>>;
    EXPECT_QEL_THROW(Rule{&input}, RuleException, "The first component of the rule must be set.");
    EXPECT_QEL_THROW(Rule(&input, -1, ROWS), RuleException, "The first component of the rule must be set.");
    EXPECT_QEL_THROW(Rule(none, ROWS), RuleException, "The parameter \"reference\" must be set.");
    EXPECT_QEL_THROW((Named<ImageModel*>("mask", nullptr, AddRuleAssertDimensionImage(&input))), RuleException,
                     "The first component of the rule must be set.");
    try {
        Rule rule(&input);
    } catch (RuleException& error) {
        EXPECT_STREQ(error.getInfoLevel(0).fileName.c_str(), "Core/private/Rules/RuleAssertDimensionImage");
    }
}

TYPED_TEST(AssertRulesTest, compareSizesOnAllFiveAxes)
{
    Shape const shape{2, 3, 4, 5, 6};
    HostImage image(QEL_UINT8, shape);
    Named<TypeParam> input1("input1", &image);
    Named<ImageModel const*> input2("input2", nullptr, AddRuleAssertSameSize(&input1));
    EXPECT_EQ(failureOf(input2), "");
    for (unsigned long Shape::*axis :
         {&Shape::columns, &Shape::rows, &Shape::plans, &Shape::timeSeries, &Shape::spectralSeries}) {
        Shape otherShape = shape;
        HostImage same(QEL_FLOAT32, otherShape);
        input2 = &same;
        EXPECT_EQ(failureOf(input2), "");
        otherShape.*axis += 1;
        HostImage other(QEL_UINT8, otherShape);
        input2 = &other;
        EXPECT_EQ(failureOf(input2), "The parameters \"input1\" and \"input2\" must have the same size.");
        EXPECT_EQ(pathOfFailure(input2), "Core/private/Rules/RuleAssertSameSize");
    }
    input1 = nullptr;
    EXPECT_EQ(failureOf(input2), "The parameter \"input1\" must be set.");
    input2 = nullptr;
    EXPECT_EQ(failureOf(input2), "The parameter \"input1\" must be set.");
}

TYPED_TEST(AssertRulesTest, compareTheCalibrationWhereTold)
{
    HostImage image(QEL_UINT8, {2, 3});
    HostImage other(QEL_UINT8, {2, 3});
    Named<TypeParam> input1("input1", &image);
    Named<ImageModel*> strict("input2", &other, AddRuleAssertSameSize(&input1, true));
    Named<ImageModel*> lax("input2", &other, AddRuleAssertSameSize(&input1, false));
    EXPECT_EQ(failureOf(strict), "");
    for (int component = COLUMNS; component <= SPECTRAL_SERIES; ++component) {
        auto const axis = static_cast<Components>(component);
        std::string const text = "The parameters \"input1\" and \"input2\" must have the same spacial calibration.";
        other.setSpacingOf(axis, std::nextafter(1.0, 2.0));
        EXPECT_EQ(failureOf(strict), text);
        EXPECT_EQ(failureOf(lax), "");
        other.setSpacingOf(axis, 1.0);
        other.setOriginOf(axis, 1e-300);
        EXPECT_EQ(failureOf(strict), text);
        EXPECT_EQ(failureOf(lax), "");
        other.setOriginOf(axis, 0.0);
        EXPECT_EQ(failureOf(strict), "");
    }
}

TYPED_TEST(AssertRulesTest, compareTypes)
{
    HostImage image(QEL_UINT8, {2, 3});
    HostImage other(QEL_INT8, {4, 5});
    Named<TypeParam> input1("input1", &image);
    Named<ImageModel const*> input2("input2", &other, AddRuleAssertSameType(&input1));
    EXPECT_EQ(failureOf(input2), "The parameters \"input1\" and \"input2\" must have the same type.");
    EXPECT_EQ(pathOfFailure(input2), "Core/private/Rules/RuleAssertSameType");
    HostImage same(QEL_UINT8, {4, 5});
    input2 = &same;
    EXPECT_EQ(failureOf(input2), "");
    input2 = nullptr;
    EXPECT_EQ(failureOf(input2), "");
    input1 = nullptr;
    EXPECT_EQ(failureOf(input2), "The parameter \"input1\" must be set.");
}

TYPED_TEST(AssertRulesTest, areSilentAboutANullImageOfTheirOwn)
{
    HostImage image(QEL_UINT8, {2});
    Named<TypeParam> reference("reference", &image);
    Named<TypeParam> own("input", nullptr, ASSERT_INTEGER, ASSERT_VALUE, AddRuleAssertDimension(ROWS, 7),
                         AddRuleAssertDimensionImage(&reference, ROWS), AddRuleAssertSameSize(&reference, true),
                         AddRuleAssertSameType(&reference));
    EXPECT_EQ(failureOf(own), "");
}

TYPED_TEST(AssertRulesTest, refuseANullReference)
{
    Property<TypeParam>* const none = nullptr;
    std::string const text = "The parameter \"reference\" must be set.";
    EXPECT_QEL_THROW(AddRuleAssertDimensionImage(none, ROWS), RuleException, text);
    EXPECT_QEL_THROW(AddRuleAssertSameSize(none, true), RuleException, text);
    EXPECT_QEL_THROW(AddRuleAssertSameType{none}, RuleException, text);
    EXPECT_QEL_THROW(RuleAssertSameSize<Property<TypeParam>>(none, true), RuleException, text);
    EXPECT_QEL_THROW(RuleAssertSameType<Property<TypeParam>>{none}, RuleException, text);
}

TYPED_TEST(AssertRulesTest, reportAMissingImageAsNotSetFirst)
{
    HostImage image(QEL_FLOAT64, {2});
    Named<TypeParam> input("input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER);
    EXPECT_EQ(failureOf(input), "The parameter \"input\" must be set.");
    EXPECT_EQ(pathOfFailure(input), "Core/private/Rules/RuleAssertNotNull");
    input = &image;
    EXPECT_NE(failureOf(input).find("supports only data type(s)"), std::string::npos);
}

/// An algorithm with rules alone.
class RuledAlgorithm : public BaseAlgorithm
{
public:
    RuledAlgorithm()
        : BaseAlgorithm(nullptr)
    {
        addInput(&input);
        declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER);
        addInput(&count);
        declare(count, "count", 3, AddRuleLimitedValue(2, LIMIT_GREATER_OR_EQUAL));
        addOutput(&output);
        declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input));
    }
    AlgoInfo* getInfo() const override
    {
        static AlgoInfo info("RuledAlgorithm", "Quelide", nullptr);
        return &info;
    }
    AlgoBorderInfluence getAlgoBorderInfluence() const override { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

    Property<ImageModel const*> input;
    Property<unsigned int> count;
    Property<ImageModel*> output;
};

TEST(RulesInARunTest, giveThreeLevels)
{
    RuledAlgorithm algorithm;
    HostImage image(QEL_FLOAT64, {2});
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The parameter \"input\" must be set. \n"
                    "#2 From Rule error in property input \n"
                    "#3 From RuledAlgorithm \n");
    algorithm.input = &image;
    EXPECT_QEL_WHAT(
        algorithm.run(), RuleException,
        "Rule exception :\n"
        "#1 Error : The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
        "int16, int32, int64. Current data type is float64. \n"
        "#2 From Rule error in property input \n"
        "#3 From RuledAlgorithm \n");
    HostImage whole(QEL_INT16, {2});
    algorithm.input = &whole;
    algorithm.count = 1u;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The parameter \"count\" (value=1) must be greater than or equal to <2>. \n"
                    "#2 From Rule error in property count \n"
                    "#3 From RuledAlgorithm \n");
    EXPECT_FALSE(algorithm.count.isLocked());
    algorithm.count = 2u;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    "Rule exception :\n"
                    "#1 Error : The parameter \"output\" must be set. \n"
                    "#2 From Rule error in property output \n"
                    "#3 From RuledAlgorithm \n");
}

TEST(RulesInARunTest, letWhatAnImageThrowsPassAsAnUnexpectedError)
{
    RuledAlgorithm algorithm;
    HostImage image(QEL_UINT8, {2, 2});
    HostImage result(QEL_UINT8, {1, 1});
    result.throwOn(RESERVE);
    algorithm.input = &image;
    algorithm.output = &result;
    EXPECT_QEL_WHAT(algorithm.run(), UnexpectedError, "Unexpected error :\n#1 Error : host failure RuledAlgorithm \n");
    result.behave();
    EXPECT_NO_THROW(algorithm.applyAllRules());
    EXPECT_EQ(result.sizes(), image.sizes());
}

} // namespace
} // namespace qel::test
