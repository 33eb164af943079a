#include <qel/segmentation/TextureFeatureGroup.h>

#include <qel/EnumInfo.h>
#include <qel/Property.h>
#include <qel/String.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qel::test {
namespace {

using namespace segmentation;

TEST(TextureFeatureTypesTest, numberMeasuresOneByOne)
{
    EnumInfo const& info = textureFeatureTypesInfo();
    EXPECT_STREQ(info.getEnumName().c_str(), "TextureFeatureTypes");
    EXPECT_EQ(COOC_LastMeasure, 51);
    EXPECT_EQ(HISTO_FirstMeasure, 52);
    EXPECT_EQ(HISTO_LastMeasure, 68);
    for (int value = COOC_FirstMeasure; value <= HISTO_LastMeasure; ++value) {
        ASSERT_TRUE(info.exists(value));
        EXPECT_EQ(info.getValueFromLabel(info.getLabelFromValue(value)), value);
    }
    std::vector<std::pair<char const*, TextureFeatureTypes>> const some{
        {"COOC_AngularSecondMoment", COOC_AngularSecondMoment},
        {"COOC_FirstMeasure", COOC_FirstMeasure},
        {"COOC_ContrastRange", COOC_ContrastRange},
        {"COOC_SumVarianceStddev", COOC_SumVarianceStddev},
        {"COOC_InformationMeasuresCorrelation2Range", COOC_InformationMeasuresCorrelation2Range},
        {"COOC_LastMeasure", COOC_LastMeasure},
        {"HISTO_Mean", HISTO_Mean},
        {"HISTO_Quantile50", HISTO_Quantile50},
        {"HISTO_QuantileR6", HISTO_QuantileR6},
        {"HISTO_LastMeasure", HISTO_LastMeasure}};
    for (auto const& [label, value] : some)
        EXPECT_EQ(info.getValueFromLabel(label), value) << label;
    // The forms of a measure: for each direction, mean, deviation, range.
    EXPECT_EQ(COOC_Contrast % 4, 0);
    EXPECT_EQ(COOC_ContrastMean, COOC_Contrast + 1);
    EXPECT_EQ(COOC_ContrastStddev, COOC_Contrast + 2);
    EXPECT_EQ(COOC_ContrastRange, COOC_Contrast + 3);
}

std::vector<int> valuesOf(TextureFeatureGroup const& group) { return std::vector<int>(group.begin(), group.end()); }

TEST(TextureFeatureGroupTest, isReadByLabelsAndNumbers)
{
    Property<TextureFeatureGroup> property;
    String rest;
    EXPECT_TRUE(property.read("@v:COOC_Contrast#52#HISTO_LastMeasure#0#COOC_Contrast", rest));
    EXPECT_EQ(valuesOf(property.get()),
              (std::vector<int>{COOC_Contrast, HISTO_Mean, HISTO_QuantileR6, COOC_AngularSecondMoment, COOC_Contrast}));
    EXPECT_STREQ(rest.c_str(), "@v:COOC_Contrast#52#HISTO_LastMeasure#0#COOC_Contrast");
    EXPECT_TRUE(property.read("@v:68", rest));
    EXPECT_EQ(valuesOf(property.get()), std::vector<int>{68});
    EXPECT_TRUE(property.read("@v:", rest));
    EXPECT_TRUE(property.get().empty());
}

TEST(TextureFeatureGroupTest, isLeftAloneByOtherTexts)
{
    TextureFeatureGroup group;
    group.push_back(HISTO_Peak);
    Property<TextureFeatureGroup> property;
    property = group;
    for (char const* const text :
         {"", "v:1", "COOC_Contrast", "@v:COOC_contrast", "@v:69", "@v:-1", "@v:1 ", "@v: 1", "@v:1#", "@v:#1", "@v:#",
          "@v:1##2", "@v:1,2", "@v:99999999999", "@v:0x1", "@v:1#COOC_"}) {
        String rest;
        EXPECT_FALSE(property.read(text, rest)) << text;
        EXPECT_STREQ(rest.c_str(), text);
        EXPECT_TRUE(property.get() == group) << text;
    }
}

TEST(TextureFeatureGroupTest, comparesAndCopiesItsElements)
{
    TextureFeatureGroup group;
    group.push_back(COOC_Entropy);
    TextureFeatureGroup other(group);
    EXPECT_TRUE(group == other);
    other[0] = COOC_EntropyMean;
    EXPECT_TRUE(group != other);
    other = group;
    other.push_back(HISTO_Mean);
    EXPECT_TRUE(group != other);
    EXPECT_EQ(group.size(), 1u);
}

} // namespace
} // namespace qel::test
