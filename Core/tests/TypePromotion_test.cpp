#include "Core/private/Rules/TypePromotion.h"
#include "Core/tests/RuleSupport.h"

#include "Core/private/Rules/RuleEnforceTypePromotionImageImage.h"
#include "Core/private/Rules/RuleEnforceTypePromotionImageValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace qel::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The tables as one digit for each type of the second image, by mode and type of the first.
std::string const expectedRows[4][10] = {{"5677556789", "6677666789", "7777777789", "7777777789", "5677556789",
                                          "5677556789", "6677666789", "7777777789", "8888888889", "9999999999"},
                                         {"1633556789", "6633666789", "3333777789", "3333777789", "5677556789",
                                          "5677556789", "6677666789", "7777777789", "8888888889", "9999999999"},
                                         {"0000456789", "0111456789", "0122456789", "0123456789", "4444456789",
                                          "5555556789", "6666666789", "7777777789", "8888888889", "9999999999"},
                                         {"0123006789", "1123111789", "2223222289", "3333333389", "0123456789",
                                          "0123556789", "6123666789", "7723777789", "8888888889", "9999999999"}};

VoxelTypes expectedType(unsigned int mode, int first, int second)
{
    return static_cast<VoxelTypes>(expectedRows[mode][first][static_cast<std::size_t>(second)] - '0');
}

TEST(TypePromotionTest, followsTheTableOfTwoImagesEntryByEntry)
{
    for (unsigned int mode = 0; mode < 4; ++mode)
        for (int first = 0; first < 10; ++first)
            for (int second = 0; second < 10; ++second)
                EXPECT_EQ(rules::promoted(mode, static_cast<VoxelTypes>(first), static_cast<VoxelTypes>(second)),
                          expectedType(mode, first, second))
                    << "mode " << mode << ", " << first << " with " << second;
}

TEST(TypePromotionTest, keepsTheNarrowCornersOfTheTables)
{
    EXPECT_EQ(rules::promoted(3, QEL_UINT8, QEL_INT16), QEL_UINT8);
    EXPECT_EQ(rules::promoted(1, QEL_UINT16, QEL_UINT32), QEL_UINT64);
}

TEST(TypePromotionTest, classesAValueByWhatKeepsIt)
{
    struct Case
    {
        double value;
        VoxelTypes expected;
    };
    for (Case const& c : {Case{0, QEL_INT16},
                          Case{-0.0, QEL_INT16},
                          Case{32767, QEL_INT16},
                          Case{-32768, QEL_INT16},
                          Case{32768, QEL_INT32},
                          Case{-32769, QEL_INT32},
                          Case{70000, QEL_INT32},
                          Case{2147483647, QEL_INT32},
                          Case{-2147483648.0, QEL_INT32},
                          Case{2147483648.0, QEL_INT64},
                          Case{-2147483649.0, QEL_INT64},
                          Case{9007199254740993.0, QEL_INT64},
                          Case{-9223372036854775808.0, QEL_INT64},
                          Case{std::nextafter(9223372036854775808.0, 0), QEL_INT64},
                          Case{9223372036854775808.0, QEL_FLOAT32},
                          Case{std::nextafter(-9223372036854775808.0, -infinity), QEL_FLOAT64},
                          Case{18446744073709551616.0, QEL_FLOAT32},
                          Case{0.5, QEL_FLOAT32},
                          Case{-1.25, QEL_FLOAT32},
                          Case{0.1, QEL_FLOAT64},
                          Case{static_cast<double>(0.1f), QEL_FLOAT32},
                          Case{1e300, QEL_FLOAT64},
                          Case{3.4028234663852886e38, QEL_FLOAT32},
                          Case{std::nextafter(3.4028234663852886e38, infinity), QEL_FLOAT64},
                          Case{1e-310, QEL_FLOAT64},
                          Case{infinity, QEL_FLOAT32},
                          Case{-infinity, QEL_FLOAT32},
                          Case{nan, QEL_FLOAT64}})
        EXPECT_EQ(rules::classOf(c.value), c.expected) << c.value;
}

// A value of each class.
std::map<int, double> const valueOfClass = {{5, -3}, {6, 70000}, {7, 1e10}, {8, 0.5}, {9, 0.1}};

// The results for the classes 5 to 9, by mode and image type.
std::string const ladderS = "56789";
std::string const ladderM = "66789";
std::string const ladderL = "77789";
std::string const ladderF = "88889";
std::string const ladderD = "99999";

std::string expectedLadder(unsigned int mode, int image)
{
    if (image == 9)
        return ladderD;
    if (image == 8)
        return ladderF;
    if (image == 7)
        return ladderL;
    if (image == 6)
        return ladderM;
    if (image == 4 || image == 5)
        return ladderS;
    std::string const add[] = {ladderS, ladderM, ladderL, ladderL};
    std::string const maximum[] = {"06789", "11789", "22289", "33389"};
    return mode < 2 ? add[image] : mode == 2 ? ladderS : maximum[image];
}

TEST(TypePromotionTest, followsTheLaddersOfAnImageAndAValue)
{
    for (unsigned int mode = 0; mode < 4; ++mode)
        for (int image = 0; image < 10; ++image) {
            std::string results;
            for (auto const& entry : valueOfClass)
                results += static_cast<char>(
                    '0' + rules::promotedWithValue(mode, static_cast<VoxelTypes>(image), entry.second));
            EXPECT_EQ(results, expectedLadder(mode, image)) << "mode " << mode << ", image " << image;
        }
}

TEST(TypePromotionTest, gives32BitsForSeventyThousandOnBytes)
{
    EXPECT_EQ(rules::classOf(70000), QEL_INT32);
    EXPECT_EQ(rules::promotedWithValue(0, QEL_UINT8, 70000), QEL_INT32);
    EXPECT_EQ(rules::promotedWithValue(0, QEL_UINT8, 0.5), QEL_FLOAT32);
    EXPECT_EQ(rules::promotedWithValue(0, QEL_UINT8, 0.1), QEL_FLOAT64);
}

TEST(TypePromotionTest, leavesComplexTypesAlone)
{
    EXPECT_EQ(rules::promoted(0, QEL_COMPLEX_FLOAT32, QEL_UINT8), QEL_COMPLEX_FLOAT32);
    EXPECT_EQ(rules::promoted(0, QEL_UINT8, QEL_COMPLEX_FLOAT64), QEL_COMPLEX_FLOAT64);
    EXPECT_EQ(rules::promotedWithValue(0, QEL_COMPLEX_FLOAT32, 0.1), QEL_COMPLEX_FLOAT32);
}

template <class T> class PromotionRulesTest : public testing::Test
{
protected:
    HostImage image1{QEL_UINT8, {4, 3}};
    HostImage image2{QEL_UINT8, {4, 3}};
    Named<T> input1{"input1", &image1};
    Named<T> input2{"input2", &image2};
    Named<double> value{"inputValue", 1};
};
using ImageKinds = testing::Types<ImageModel const*, ImageModel*>;
TYPED_TEST_SUITE(PromotionRulesTest, ImageKinds);

TYPED_TEST(PromotionRulesTest, retypeTheOutputForTwoImages)
{
    for (unsigned int mode = 0; mode < 4; ++mode)
        for (int first = 0; first < 10; ++first)
            for (int second = 0; second < 10; ++second) {
                HostImage a(static_cast<VoxelTypes>(first), {4, 3});
                HostImage b(static_cast<VoxelTypes>(second), {4, 3});
                this->input1 = &a;
                this->input2 = &b;
                HostImage result(QEL_UINT8, {7, 6, 5, 4, 3});
                Named<ImageModel*> output("output", &result,
                                          AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, mode));
                EXPECT_EQ(failureOf(output), "");
                VoxelTypes const expected = expectedType(mode, first, second);
                EXPECT_EQ(result.getVoxelType(), expected);
                EXPECT_EQ(result.sizes(), (Shape{7, 6, 5, 4, 3}));
                EXPECT_EQ(result.callsOf(RESERVE), expected == QEL_UINT8 ? 0u : 1u);
            }
}

TYPED_TEST(PromotionRulesTest, refuseToRetypeAnInput)
{
    Named<ImageModel*> output("output", &this->image1,
                              AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, 0));
    EXPECT_EQ(failureOf(output), "The parameter \"input1\" cannot be used as output image if it must be retyped.");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceTypePromotionImageImage");
    output = &this->image2;
    EXPECT_EQ(failureOf(output), "The parameter \"input2\" cannot be used as output image if it must be retyped.");
    this->input2 = &this->image1;
    output = &this->image1;
    EXPECT_EQ(failureOf(output), "The parameter \"input1\" cannot be used as output image if it must be retyped.");
    Named<ImageModel*> fromValue("result", &this->image1,
                                 AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 0));
    EXPECT_EQ(failureOf(fromValue), "The parameter \"result\" cannot be used as output image if it must be retyped.");
    EXPECT_EQ(pathOfFailure(fromValue), "Core/private/Rules/RuleEnforceTypePromotionImageValue");
    EXPECT_EQ(this->image1.callsOf(RESERVE), 0u);
    EXPECT_EQ(this->image2.callsOf(RESERVE), 0u);
    EXPECT_EQ(this->image1.getVoxelType(), QEL_UINT8);
}

TYPED_TEST(PromotionRulesTest, letAnInputBeTheOutputWhereItKeepsItsType)
{
    Named<ImageModel*> output("output", &this->image1,
                              AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, 3),
                              AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 3));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(this->image1.callsOf(RESERVE), 0u);
}

TYPED_TEST(PromotionRulesTest, reportARefusedReserve)
{
    HostImage result(QEL_UINT8, {4, 3});
    result.failOn(RESERVE);
    Named<ImageModel*> output("output", &result,
                              AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, 1));
    EXPECT_EQ(failureOf(output), "The parameter \"output\" cannot be retyped into \"QEL_UINT16\".");
    Named<ImageModel*> fromValue("result", &result,
                                 AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 0));
    EXPECT_EQ(failureOf(fromValue), "The parameter \"result\" cannot be retyped into \"QEL_INT16\".");
}

TYPED_TEST(PromotionRulesTest, refuseAnUnknownModeWhenTheyRun)
{
    HostImage result(QEL_UINT8, {4, 3});
    for (unsigned int const mode : {4u, ~0u}) {
        Named<ImageModel*> output("output", &result,
                                  AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, mode));
        EXPECT_EQ(failureOf(output), "unsupported type of rule");
        Named<ImageModel*> fromValue("result", &result,
                                     AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, mode));
        EXPECT_EQ(failureOf(fromValue), "unsupported type of rule");
    }
}

TYPED_TEST(PromotionRulesTest, reportNullImagesButTheirOwn)
{
    HostImage result(QEL_UINT8, {4, 3});
    Named<ImageModel*> output("output", nullptr, AddRuleEnforceTypePromotionImageImage(&this->input1, &this->input2, 0),
                              AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 0));
    EXPECT_EQ(failureOf(output), "");
    output = &result;
    this->input2 = nullptr;
    EXPECT_EQ(failureOf(output), "The parameter \"input2\" must be set.");
    this->input1 = nullptr;
    EXPECT_EQ(failureOf(output), "The parameter \"input1\" must be set.");
    Named<ImageModel*> fromValue("result", &result,
                                 AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 0));
    EXPECT_EQ(failureOf(fromValue), "The parameter \"input1\" must be set.");
    EXPECT_EQ(result.callsOf(RESERVE), 0u);
}

TYPED_TEST(PromotionRulesTest, readTheValueOfEachRun)
{
    HostImage result(QEL_UINT8, {4, 3});
    Named<ImageModel*> output("output", &result, AddRuleEnforceTypePromotionImageValue(&this->input1, &this->value, 0));
    for (auto const& entry : valueOfClass) {
        this->value = entry.second;
        EXPECT_EQ(failureOf(output), "");
        EXPECT_EQ(result.getVoxelType(), entry.first);
    }
}

TYPED_TEST(PromotionRulesTest, refuseANullReference)
{
    Property<TypeParam>* const none = nullptr;
    Property<double>* const noValue = nullptr;
    std::string const text = "The parameter \"reference\" must be set.";
    EXPECT_QEL_THROW(AddRuleEnforceTypePromotionImageImage(none, &this->input2, 0), RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceTypePromotionImageImage(&this->input1, none, 0), RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceTypePromotionImageValue(none, &this->value, 0), RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceTypePromotionImageValue(&this->input1, noValue, 0), RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceTypePromotionImageImage(&this->input1, none, 0), RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceTypePromotionImageValue(&this->input1, noValue, 0), RuleException, text);
}

} // namespace
} // namespace qel::test
