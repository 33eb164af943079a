#include "PropertyHandler.h"
#include "TextForms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/EnumInfo.h>
#include <qel/PropertyEnumeration.h>
#include <qel/Scalar.h>
#include <qel/ScalarArray.h>
#include <qel/String.h>
#include <qel/container/Vector.h>
#include <qel/kernel/Kernel2D.h>
#include <qel/kernel/Kernel3D.h>
#include <qel/math/Matrix2.h>
#include <qel/math/Matrix3.h>
#include <qel/math/Vector2.h>
#include <qel/math/Vector3.h>
#include <qel/math/Vector4.h>
#include <qel/morphology/PropertyMorphologicalLut2D.h>
#include <qel/morphology/PropertyMorphologicalLut3D.h>

#include <cmath>
#include <limits>

using namespace host;
using qel::Property;
using qel::container::Vector;
using qel::math::Vector2;
using qel::math::Vector3;
using qel::math::Vector4;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::unique_ptr<PropertyHandler> inputOf(qel::BaseProperty& property)
{
    return handlerOf(property, "it", Direction::Input);
}

// What `assign` says against a text; empty if it takes it.
std::string refusal(PropertyHandler& handler, std::string const& text)
{
    try {
        handler.assign(text);
    } catch (UsageError const& error) {
        return error.what();
    }
    return "";
}

template <class T> T assigned(std::string const& text)
{
    Property<T> property;
    inputOf(property)->assign(text);
    return property.get();
}

template <class T> class PointsTest : public testing::Test
{};
using Points =
    testing::Types<Vector2<int>, Vector2<unsigned int>, Vector2<long>, Vector2<unsigned long>, Vector2<double>,
                   Vector3<int>, Vector3<unsigned int>, Vector3<long>, Vector3<unsigned long>, Vector3<double>,
                   Vector4<int>, Vector4<unsigned int>, Vector4<long>, Vector4<unsigned long>, Vector4<double>>;
TYPED_TEST_SUITE(PointsTest, Points);

template <class Point> std::string formOfPoint(int first)
{
    std::string form = "@v" + std::to_string(Point::dim()) + ":" + std::to_string(first);
    for (int i = 1; i < static_cast<int>(Point::dim()); ++i)
        form += "_" + std::to_string(first + i);
    return form;
}

template <class Point, class Pointer> void checkPoints()
{
    Property<Pointer> property;
    property.set(nullptr);
    std::unique_ptr<PropertyHandler> const handler = inputOf(property);
    EXPECT_THAT(handler->kind(), testing::StartsWith("Vector<Vector"));
    EXPECT_EQ("null", handler->text());

    std::string const text = "@v:" + formOfPoint<Point>(3) + "#" + formOfPoint<Point>(10);
    handler->assign(text);
    EXPECT_EQ(nullptr, property.get()) << "only a run sets the pointer";
    handler->prepare();
    ASSERT_NE(nullptr, property.get());
    ASSERT_EQ(2u, property.get()->size());
    EXPECT_EQ(3, (*property.get())[0][0]);
    EXPECT_EQ(11, (*property.get())[1][1]);
    EXPECT_EQ(text, handler->text());
}

} // namespace

TYPED_TEST(PointsTest, areReadFromTheTextFormOfTheVector)
{
    checkPoints<TypeParam, Vector<TypeParam>*>();
    checkPoints<TypeParam, Vector<TypeParam> const*>();
}

TYPED_TEST(PointsTest, areNoneWhenLeftOutOrNull)
{
    Property<Vector<TypeParam>*> property;
    property.set(nullptr);
    std::unique_ptr<PropertyHandler> const handler = inputOf(property);
    handler->prepare();
    EXPECT_EQ(nullptr, property.get());
    handler->assign("null");
    handler->prepare();
    EXPECT_EQ(nullptr, property.get());
}

TYPED_TEST(PointsTest, areRefusedWhenOneElementIsWrong)
{
    Property<Vector<TypeParam> const*> property;
    std::unique_ptr<PropertyHandler> const handler = inputOf(property);
    std::string const good = formOfPoint<TypeParam>(1);
    EXPECT_THAT(refusal(*handler, good), HasSubstr("@v:"));
    EXPECT_THAT(refusal(*handler, "@v:" + good + "#"), HasSubstr("is no point"));
    EXPECT_THAT(refusal(*handler, "@v:" + good + "#1_2"), HasSubstr("\"1_2\""));
}

TYPED_TEST(PointsTest, ofAnOutputAreAlwaysThereAndPrinted)
{
    Property<Vector<TypeParam>*> property;
    std::unique_ptr<PropertyHandler> const handler = handlerOf(property, "it", Direction::Output);
    handler->prepare();
    ASSERT_NE(nullptr, property.get());
    property.get()->push_back(TypeParam());
    EXPECT_TRUE(handler->hasResult());
    ASSERT_EQ(1u, handler->json().size());
    EXPECT_EQ(TypeParam::dim(), handler->json()[0].size());
}

TEST(PropertyKindsTest, everyVectorIsReadFromItsTextForm)
{
    EXPECT_EQ(Vector2<int>(-1, 2), assigned<Vector2<int>>("@v2:-1_2"));
    EXPECT_EQ(Vector3<double>(1, 2.5, -3), assigned<Vector3<double>>("@v3:1_2.5_-3"));
    EXPECT_EQ(Vector4<unsigned long>(1, 2, 3, 18446744073709551615UL),
              assigned<Vector4<unsigned long>>("@v4:1_2_3_18446744073709551615"));
    Vector<int> const numbers = assigned<Vector<int>>("@v:1#-2#3");
    EXPECT_THAT(std::vector<int>(numbers.begin(), numbers.end()), ElementsAre(1, -2, 3));
    Vector<Vector2<int>> const points = assigned<Vector<Vector2<int>>>("@v:@v2:1_2#@v2:3_4");
    ASSERT_EQ(2u, points.size());
    EXPECT_EQ(Vector2<int>(3, 4), points[1]);
}

TEST(PropertyKindsTest, textureFeaturesAreShownByLabelsAndReadByLabelsAndNumbers)
{
    Property<qel::segmentation::TextureFeatureGroup> features;
    auto const handler = inputOf(features);
    EXPECT_EQ("Vector<TextureFeatureTypes>", handler->kind());
    EXPECT_EQ("@v:", handler->text());
    EXPECT_EQ("", refusal(*handler, "@v:COOC_Contrast#52#COOC_LastMeasure"));
    EXPECT_EQ("@v:COOC_Contrast#HISTO_Mean#COOC_InformationMeasuresCorrelation2Range", handler->text());
    EXPECT_EQ("[\"COOC_Contrast\",\"HISTO_Mean\",\"COOC_InformationMeasuresCorrelation2Range\"]",
              handler->json().dump());
    EXPECT_THAT(refusal(*handler, "COOC_Contrast"), HasSubstr("such as @v:COOC_AngularSecondMoment#"));
    EXPECT_NE("", refusal(*handler, "@v:69"));
    EXPECT_THAT(handler->labels(), testing::Contains("HISTO_QuantileR6"));
    EXPECT_THAT(handler->labels(), testing::Not(testing::Contains("")));
    EXPECT_EQ("69", formOf(static_cast<qel::segmentation::TextureFeatureTypes>(69)));
}

TEST(PropertyKindsTest, aWrongTextIsRefusedWithAnExample)
{
    Property<Vector2<unsigned int>> vector;
    EXPECT_THAT(refusal(*inputOf(vector), "1_2"), HasSubstr("such as @v2:0_0"));
    Property<Vector<double>> numbers;
    EXPECT_THAT(refusal(*inputOf(numbers), "1#2"), HasSubstr("such as @v:0#0"));
    Property<double> number;
    EXPECT_THAT(refusal(*inputOf(number), "0.5mm"), HasSubstr("number of type double"));
    EXPECT_EQ("", refusal(*inputOf(number), "+5e-1"));
    EXPECT_EQ(0.5, number.get());
    Property<unsigned long> count;
    EXPECT_NE("", refusal(*inputOf(count), "-1"));
    EXPECT_NE("", refusal(*inputOf(count), "18446744073709551616"));
    EXPECT_NE("", refusal(*inputOf(count), "1.0"));
    EXPECT_EQ("", refusal(*inputOf(count), "18446744073709551615"));
    EXPECT_EQ(18446744073709551615UL, count.get());
}

TEST(PropertyKindsTest, kernelsAreReadAndShownInTheirTextForm)
{
    Property<qel::kernel::Kernel2D> flat;
    auto const handler = inputOf(flat);
    EXPECT_EQ("Kernel2D", handler->kind());
    EXPECT_EQ("@kernel2D:", handler->text());
    EXPECT_EQ("", refusal(*handler, "@kernel2D:0_0_1+1_0_0.5"));
    EXPECT_EQ(2u, flat.get().getNumOfPoints());
    EXPECT_EQ("@kernel2D:0_0_1+1_0_0.5", handler->text());
    EXPECT_THAT(refusal(*handler, "@kernel2D:0_0"), HasSubstr("such as @kernel2D:0_0_1"));
    Property<qel::kernel::Kernel3D> solid;
    EXPECT_EQ("Kernel3D", inputOf(solid)->kind());
    EXPECT_EQ("", refusal(*inputOf(solid), "@kernel3D:1_-2_3_1e-07"));
    EXPECT_EQ("@kernel3D:1_-2_3_1e-07", inputOf(solid)->text());
    EXPECT_THAT(refusal(*inputOf(solid), "@kernel2D:0_0_1"), HasSubstr("such as @kernel3D:0_0_0_1"));
}

TEST(PropertyKindsTest, lookUpTablesAreReadFromTheirFileWhenARunIsPrepared)
{
    qel::morphology::PropertyMorphologicalLut2D flat;
    auto const handler = inputOf(flat);
    EXPECT_EQ("MorphologicalLut2D*", handler->kind());
    EXPECT_EQ("null", handler->text());
    EXPECT_THAT(refusal(*handler, "table.lut"), HasSubstr("such as @path:FILE"));
    EXPECT_EQ("", refusal(*handler, "null"));
    handler->prepare();
    EXPECT_EQ(nullptr, flat.get());
    EXPECT_EQ("", refusal(*handler, "@path:/there/is/no/such/file"));
    EXPECT_EQ("@path:/there/is/no/such/file", handler->text());
    try {
        handler->prepare();
        FAIL() << "nothing was thrown";
    } catch (HostError const& error) {
        EXPECT_STREQ("/there/is/no/such/file: No such file or directory", error.what());
    }
    qel::morphology::PropertyMorphologicalLut3D solid;
    EXPECT_EQ("MorphologicalLut3D*", inputOf(solid)->kind());
}

TEST(PropertyKindsTest, whatHasNoTextFormSaysSo)
{
    Property<qel::ScalarArray> array;
    EXPECT_THAT(refusal(*inputOf(array), "1"), HasSubstr("has no text form"));
    Property<qel::math::Matrix3<double>> matrix;
    EXPECT_THAT(refusal(*inputOf(matrix), "1"), HasSubstr("has no text form"));
    EXPECT_EQ("Matrix3<double>", inputOf(matrix)->kind());
}

TEST(PropertyKindsTest, theTextOfAScalarReadsAsTheSameScalar)
{
    for (qel::Scalar const& value : {qel::Scalar(7UL), qel::Scalar(18446744073709551615UL), qel::Scalar(7L),
                                     qel::Scalar(-7L), qel::Scalar(std::numeric_limits<long>::min()), qel::Scalar(7.0),
                                     qel::Scalar(-0.1), qel::Scalar(1e300), qel::Scalar(5e-324), qel::Scalar(1e22)}) {
        Property<qel::Scalar> property;
        property.set(value);
        std::string const text = inputOf(property)->text();
        EXPECT_EQ(value, assigned<qel::Scalar>(text)) << text;
    }
}

TEST(PropertyKindsTest, anEnumerationTakesLabelsAndShowsThem)
{
    EnumInfo info("Colour", "RED = 0, GREEN, BLUE = 7, LAST = BLUE");
    qel::PropertyEnumeration property;
    property.setEnumInfo(&info);
    property = 0;
    std::unique_ptr<PropertyHandler> const handler = inputOf(property);
    EXPECT_EQ("enumeration Colour", handler->kind());
    EXPECT_EQ("RED", handler->text());
    EXPECT_THAT(handler->labels(), ElementsAre("RED", "GREEN", "BLUE", "LAST"));
    handler->assign("LAST");
    EXPECT_EQ(7, property.get());
    handler->assign("1");
    EXPECT_EQ("GREEN", handler->text());
    EXPECT_THAT(refusal(*handler, "GRENE"), HasSubstr("the nearest is \"GREEN\""));
    EXPECT_NE("", refusal(*handler, "2"));
}

TEST(PropertyKindsTest, aKindThatIsUnknownIsShownAsSuchAndLeftAlone)
{
    class Strange : public qel::BaseProperty
    {
    public:
        void applyRules() override {}
        qel::String getName() const override { return "it"; }
        qel::String getDescription() const override { return "it"; }
        void setDescription(qel::String const&) override {}
        bool read(qel::String const&, qel::String&) override { return true; }
    } strange;
    std::unique_ptr<PropertyHandler> const handler = inputOf(strange);
    EXPECT_EQ("unknown kind", handler->kind());
    EXPECT_EQ("unknown", handler->text());
    EXPECT_EQ("", refusal(*handler, "null"));
    EXPECT_THAT(refusal(*handler, "1"), HasSubstr("cannot set"));
    EXPECT_FALSE(handler->hasResult());
}
