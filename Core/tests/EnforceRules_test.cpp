#include "Core/tests/RuleSupport.h"

#include "Core/private/Rules/RuleEnforceInterpretation.h"
#include "Core/private/Rules/RuleEnforceSameInterpretation.h"
#include "Core/private/Rules/RuleEnforceSameSizeAndCalibration.h"
#include "Core/private/Rules/RuleEnforceSameSizeCalibrationAndType.h"
#include "Core/private/Rules/RuleEnforceSameType.h"
#include "Core/private/Rules/RuleEnforceType.h"

#include <qel/memory/InMemoryImage.h>

#include <gtest/gtest.h>

namespace qel::test {
namespace {

constexpr Shape shape{5, 4, 3, 2, 2};
constexpr Shape otherShape{6, 4, 3, 2, 2};
constexpr Components axes[] = {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES};

void calibrate(HostImage& image, double seed)
{
    for (Components const axis : axes) {
        image.setSpacingOf(axis, seed + static_cast<int>(axis));
        image.setOriginOf(axis, -seed - 10 * axis);
    }
    image.forgetCalls();
}

void expectCalibrationOf(ImageModel const& expected, ImageModel const& image)
{
    for (Components const axis : axes) {
        EXPECT_EQ(image.getSpacingOf(axis), expected.getSpacingOf(axis)) << axis;
        EXPECT_EQ(image.getOriginOf(axis), expected.getOriginOf(axis)) << axis;
    }
}

/// The rules whose reference may be of either kind.
template <class T> class EnforceRulesTest : public testing::Test
{
protected:
    HostImage image{QEL_UINT16, shape};
    Named<T> input{"input", &image};
};
using ImageKinds = testing::Types<ImageModel const*, ImageModel*>;
TYPED_TEST_SUITE(EnforceRulesTest, ImageKinds);

TEST(RuleEnforceTypeTest, retypesAndKeepsTheSizes)
{
    HostImage image(QEL_UINT8, shape);
    Named<ImageModel*> output("output", &image, AddRuleEnforceType(QEL_FLOAT32));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(image.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(image.sizes(), shape);
    EXPECT_EQ(image.callsOf(RESERVE), 1u);
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(image.callsOf(RESERVE), 1u);
}

TEST(RuleEnforceTypeTest, reportsARefusedReserve)
{
    HostImage image(QEL_UINT8, shape);
    image.failOn(RESERVE);
    Named<ImageModel*> output("output", &image, AddRuleEnforceType(QEL_FLOAT32));
    EXPECT_EQ(failureOf(output), "The parameter \"output\" cannot be retyped \"QEL_FLOAT32\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceType");
    output = nullptr;
    EXPECT_EQ(failureOf(output), "");
}

TEST(RuleEnforceTypeTest, refusesAnUnknownType)
{
    EXPECT_QEL_THROW(RuleEnforceType(static_cast<VoxelTypes>(12)), RuleException,
                     "The VoxelTypes \"12\" does not correspond to an existing data type.");
    EXPECT_QEL_THROW(RuleEnforceType(static_cast<VoxelTypes>(-1)), RuleException,
                     "The VoxelTypes \"-1\" does not correspond to an existing data type.");
    EXPECT_NO_THROW(RuleEnforceType{QEL_COMPLEX_FLOAT64});
}

TYPED_TEST(EnforceRulesTest, giveTheReferencesTypeAndKeepTheSizes)
{
    HostImage result(QEL_FLOAT64, otherShape);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameType(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(result.sizes(), otherShape);
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.callsOf(RESERVE), 1u);
    HostImage stubborn(QEL_FLOAT64, shape);
    stubborn.failOn(RESERVE);
    output = &stubborn;
    EXPECT_EQ(failureOf(output), "The parameter \"output\" cannot be retyped to fit \"input\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceSameType");
}

TYPED_TEST(EnforceRulesTest, giveTheReferencesSizesAndCalibrationAndKeepTheType)
{
    calibrate(this->image, 2.5);
    this->image.setSpatialUnitName("mm");
    HostImage result(QEL_FLOAT64, otherShape);
    result.setSpatialUnitName("inch");
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeAndCalibration(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getVoxelType(), QEL_FLOAT64);
    EXPECT_EQ(result.sizes(), shape);
    expectCalibrationOf(this->image, result);
    EXPECT_STREQ(result.getSpatialUnitName().c_str(), "inch");
    EXPECT_EQ(result.callsOf(RESERVE), 1u);
    HostImage stubborn(QEL_FLOAT64, otherShape);
    stubborn.failOn(RESERVE);
    output = &stubborn;
    EXPECT_EQ(failureOf(output), "The parameter \"output\" cannot be resized to fit dimensions of \"input\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceSameSizeAndCalibration");
    EXPECT_EQ(stubborn.callsOf(SET_SPACING), 0u);
}

TYPED_TEST(EnforceRulesTest, lookAtEachAxisForASizeThatDiffers)
{
    for (unsigned long Shape::*axis :
         {&Shape::columns, &Shape::rows, &Shape::plans, &Shape::timeSeries, &Shape::spectralSeries}) {
        Shape wrong = shape;
        wrong.*axis -= 1;
        HostImage result(QEL_UINT16, wrong);
        Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeAndCalibration(&this->input));
        EXPECT_EQ(failureOf(output), "");
        EXPECT_EQ(result.sizes(), shape);
        HostImage second(QEL_UINT16, wrong);
        Named<ImageModel*> output2("output", &second, AddRuleEnforceSameSizeCalibrationAndType(&this->input));
        EXPECT_EQ(failureOf(output2), "");
        EXPECT_EQ(second.sizes(), shape);
    }
}

TYPED_TEST(EnforceRulesTest, setTheSpacingAloneWhereOnlyThatDiffers)
{
    calibrate(this->image, 2.5);
    HostImage result(QEL_FLOAT64, shape);
    calibrate(result, 2.5);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeAndCalibration(&this->input));
    this->image.setSpacingOf(PLANS, 77);
    std::vector<unsigned char> const before = result.content();
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getSpacingOf(PLANS), 77);
    EXPECT_EQ(result.callsOf(SET_SPACING), 1u);
    EXPECT_EQ(result.callsOf(SET_ORIGIN), 0u);
    EXPECT_EQ(result.callsOf(RESERVE), 0u);
    EXPECT_EQ(result.content(), before);
    this->image.setOriginOf(SPECTRAL_SERIES, 78);
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getOriginOf(SPECTRAL_SERIES), 78);
    EXPECT_EQ(result.callsOf(SET_SPACING), 1u);
    EXPECT_EQ(result.callsOf(SET_ORIGIN), 1u);
}

TYPED_TEST(EnforceRulesTest, ignoreARefusedCalibration)
{
    calibrate(this->image, 2.5);
    HostImage result(QEL_UINT16, shape);
    result.failOn(SET_SPACING).failOn(SET_ORIGIN);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeAndCalibration(&this->input),
                              AddRuleEnforceSameSizeCalibrationAndType(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.callsOf(SET_SPACING), 10u);
    EXPECT_EQ(result.callsOf(SET_ORIGIN), 10u);
    EXPECT_EQ(result.getSpacingOf(ROWS), 1);
}

TYPED_TEST(EnforceRulesTest, giveSizesCalibrationAndTypeTogether)
{
    calibrate(this->image, 3);
    HostImage result(QEL_FLOAT64, otherShape);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeCalibrationAndType(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(result.sizes(), shape);
    EXPECT_EQ(result.callsOf(RESERVE), 1u);
    expectCalibrationOf(this->image, result);
    HostImage otherType(QEL_FLOAT64, shape);
    output = &otherType;
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(otherType.getVoxelType(), QEL_UINT16);
    HostImage stubborn(QEL_INT16, shape);
    stubborn.failOn(RESERVE);
    output = &stubborn;
    EXPECT_EQ(failureOf(output), "The parameter \"output\" cannot be resized and retyped to fit \"input\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceSameSizeCalibrationAndType");
}

TYPED_TEST(EnforceRulesTest, doNotTouchAnImageThatFits)
{
    calibrate(this->image, 3);
    HostImage result(QEL_UINT16, shape);
    calibrate(result, 3);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeAndCalibration(&this->input),
                              AddRuleEnforceSameSizeCalibrationAndType(&this->input),
                              AddRuleEnforceSameType(&this->input), AddRuleEnforceSameInterpretation(&this->input),
                              AddRuleEnforceType(QEL_UINT16), AddRuleEnforceInterpretation(QEL_VALUE),
                              AddRuleSetInterpretation(QEL_VALUE));
    EXPECT_EQ(failureOf(output), "");
    for (Operation const change :
         {RESERVE, SET_SPACING, SET_ORIGIN, SET_INTERPRETATION, SET_SPATIAL_UNIT, SET_TEMPORAL_UNIT, WRITE_ROW})
        EXPECT_EQ(result.callsOf(change), 0u) << change;
}

TYPED_TEST(EnforceRulesTest, leaveAnImageThatIsItsOwnReferenceAlone)
{
    Named<ImageModel*> output("output", &this->image, AddRuleEnforceSameSizeCalibrationAndType(&this->input),
                              AddRuleEnforceSameInterpretation(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(this->image.callsOf(RESERVE), 0u);
    EXPECT_EQ(this->image.callsOf(SET_SPACING), 0u);
}

TYPED_TEST(EnforceRulesTest, reshapeAnImageInMemory)
{
    calibrate(this->image, 3);
    memory::InMemoryImage result;
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameSizeCalibrationAndType(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(result.getNumOf(COLUMNS), shape.columns);
    EXPECT_EQ(result.getNumOf(SPECTRAL_SERIES), shape.spectralSeries);
    expectCalibrationOf(this->image, result);
}

TEST(RuleEnforceInterpretationTest, reinterpretsOrReports)
{
    HostImage image(QEL_UINT8, shape);
    Named<ImageModel*> output("output", &image, AddRuleEnforceInterpretation(QEL_BINARY));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(image.getInterpretation(), QEL_BINARY);
    EXPECT_EQ(image.callsOf(SET_INTERPRETATION), 1u);
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(image.callsOf(SET_INTERPRETATION), 1u);
    HostImage stubborn(QEL_UINT8, shape);
    stubborn.failOn(SET_INTERPRETATION);
    output = &stubborn;
    EXPECT_EQ(failureOf(output), "Cannot change interpretation of \"output\" to \"QEL_BINARY\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceInterpretation");
    output = nullptr;
    EXPECT_EQ(failureOf(output), "");
}

TEST(RuleEnforceInterpretationTest, refusesAnUnknownInterpretation)
{
    EXPECT_QEL_THROW(RuleEnforceInterpretation(static_cast<Interpretations>(3)), RuleException,
                     "The Interpretation \"3\" does not correspond to an existing data interpretation.");
}

TEST(RuleSetInterpretationTest, reinterpretsOrReportsBothLabels)
{
    HostImage image(QEL_UINT8, shape);
    Named<ImageModel*> output("output", &image, AddRuleSetInterpretation(QEL_LABEL));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(image.getInterpretation(), QEL_LABEL);
    HostImage stubborn(QEL_UINT8, shape);
    stubborn.failOn(SET_INTERPRETATION);
    output = &stubborn;
    EXPECT_EQ(failureOf(output),
              "The parameter \"output\" cannot be re-interpreted from \"QEL_VALUE\" to \"QEL_LABEL\".");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleSetInterpretation");
    output = nullptr;
    EXPECT_EQ(failureOf(output), "");
}

TYPED_TEST(EnforceRulesTest, giveTheReferencesInterpretation)
{
    this->image.setInterpretation(QEL_LABEL);
    HostImage result(QEL_UINT8, shape);
    Named<ImageModel*> output("output", &result, AddRuleEnforceSameInterpretation(&this->input));
    EXPECT_EQ(failureOf(output), "");
    EXPECT_EQ(result.getInterpretation(), QEL_LABEL);
    HostImage stubborn(QEL_UINT8, shape);
    stubborn.failOn(SET_INTERPRETATION);
    output = &stubborn;
    EXPECT_EQ(failureOf(output),
              "The parameter \"output\" (QEL_VALUE) cannot be interpreted like \"input\" (QEL_LABEL).");
    EXPECT_EQ(pathOfFailure(output), "Core/private/Rules/RuleEnforceSameInterpretation");
}

TYPED_TEST(EnforceRulesTest, reportANullReferenceImageBeforeTheirOwn)
{
    this->input = nullptr;
    HostImage result(QEL_UINT8, otherShape);
    Named<ImageModel*> outputs[] = {
        Named<ImageModel*>("a", &result, AddRuleEnforceSameType(&this->input)),
        Named<ImageModel*>("b", &result, AddRuleEnforceSameSizeAndCalibration(&this->input)),
        Named<ImageModel*>("c", &result, AddRuleEnforceSameSizeCalibrationAndType(&this->input)),
        Named<ImageModel*>("d", &result, AddRuleEnforceSameInterpretation(&this->input))};
    for (Named<ImageModel*>& output : outputs) {
        EXPECT_EQ(failureOf(output), "The parameter \"input\" must be set.");
        output = nullptr;
        EXPECT_EQ(failureOf(output), "The parameter \"input\" must be set.");
    }
    this->input = &this->image;
    for (Named<ImageModel*>& output : outputs)
        EXPECT_EQ(failureOf(output), "");
}

TYPED_TEST(EnforceRulesTest, refuseANullReference)
{
    Property<TypeParam>* const none = nullptr;
    std::string const text = "The parameter \"reference\" must be set.";
    EXPECT_QEL_THROW(AddRuleEnforceSameType{none}, RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceSameSizeAndCalibration{none}, RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceSameSizeCalibrationAndType{none}, RuleException, text);
    EXPECT_QEL_THROW(AddRuleEnforceSameInterpretation{none}, RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceSameType{none}, RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceSameSizeAndCalibration{none}, RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceSameSizeCalibrationAndType{none}, RuleException, text);
    EXPECT_QEL_THROW(RuleEnforceSameInterpretation{none}, RuleException, text);
}

} // namespace
} // namespace qel::test
