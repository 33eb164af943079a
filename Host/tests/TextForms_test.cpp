#include "Suggestion.h"
#include "TextForms.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace host;

namespace {

std::string jsonText(Json const& json) { return toText(json); }

} // namespace

TEST(TextFormsTest, jsonDoublesHave17SignificantDigits)
{
    EXPECT_EQ("0.10000000000000001", jsonText(jsonOf(0.1)));
    EXPECT_EQ("4.0", jsonText(jsonOf(4.0)));
    EXPECT_EQ("-0.0", jsonText(jsonOf(-0.0)));
    EXPECT_EQ("1.0000000000000001e+300", jsonText(jsonOf(1e300)));
    EXPECT_EQ("4.9406564584124654e-324", jsonText(jsonOf(5e-324)));
}

TEST(TextFormsTest, jsonDoublesThatAreNotFiniteAreStrings)
{
    EXPECT_EQ("\"NaN\"", jsonText(jsonOf(std::nan(""))));
    EXPECT_EQ("\"Infinity\"", jsonText(jsonOf(std::numeric_limits<double>::infinity())));
    EXPECT_EQ("\"-Infinity\"", jsonText(jsonOf(-std::numeric_limits<double>::infinity())));
}

TEST(TextFormsTest, jsonIntegersAreExact)
{
    EXPECT_EQ("18446744073709551615", jsonText(jsonOf(qel::Scalar(18446744073709551615UL))));
    EXPECT_EQ("-9223372036854775808", jsonText(jsonOf(qel::Scalar(std::numeric_limits<long>::min()))));
}

TEST(TextFormsTest, jsonStringsAreEscapedAndAlwaysUtf8)
{
    EXPECT_EQ("\"a\\\"b\\n\"", jsonText(jsonOf(qel::String("a\"b\n"))));
    EXPECT_EQ("\"\xEF\xBF\xBD\"", jsonText(jsonOf(qel::String("\xff"))));
}

TEST(TextFormsTest, arraysAndMatricesAreJsonArrays)
{
    double const values[] = {1, 0.5};
    EXPECT_EQ("[1.0, 0.5]", jsonText(jsonOf(qel::ScalarArray(2, values))));
    EXPECT_EQ("[[1.0, 2.0], [3.0, 4.0]]", jsonText(jsonOf(qel::math::Matrix2<double>(1, 2, 3, 4))));
    qel::container::Vector<qel::math::Vector2<int>> points;
    EXPECT_EQ("[]", jsonText(jsonOf(points)));
    points.push_back(qel::math::Vector2<int>(1, -2));
    points.push_back(qel::math::Vector2<int>(3, 4));
    EXPECT_EQ("[[1, -2], [3, 4]]", jsonText(jsonOf(points)));
    EXPECT_EQ("@v:@v2:1_-2#@v2:3_4", formOf(points));
}

TEST(TextFormsTest, theTextOfADoubleIsTheShortestThatReadsTheSame)
{
    EXPECT_EQ("0.1", formOf(0.1));
    EXPECT_EQ("255", formOf(255.0));
    EXPECT_EQ("1e+300", formOf(1e300));
    EXPECT_EQ("1.0e+300", formOf(qel::Scalar(1e300)));
    EXPECT_EQ("7.0", formOf(qel::Scalar(7.0)));
    EXPECT_EQ("+7", formOf(qel::Scalar(7L)));
    EXPECT_EQ("7", formOf(qel::Scalar(7UL)));
}

TEST(SuggestionTest, theNearestNameHasTheFewestErrors)
{
    EXPECT_EQ("Threshold", nearestName("Treshold", {"CopyImage", "Threshold", "ThresholdByCriterion"}));
    EXPECT_EQ("lowLevel", nearestName("LOWLEVEL", {"highLevel", "lowLevel"}));
    EXPECT_EQ("uint8", nearestName("unit8", {"uint16", "int8", "uint8"}));
    EXPECT_EQ("a", nearestName(std::string(100000, 'x'), {"a"}));
    EXPECT_EQ("", nearestName("x", {}));
    EXPECT_EQ("no level \"x\"", unknownName("level", "x", {}));
}
