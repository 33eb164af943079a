#include <qel/point_operations/GradientMagnitude2D.h>

#include "PointOperations/tests/GradientModel.h"

#include <array>
#include <cmath>

namespace qel::test {
namespace {

using namespace point_operations;

constexpr int dimensions = 2;

class GradientMagnitude2DTest : public testing::Test
{
protected:
    std::array<Property<ImageModel const*>*, dimensions> inputs() { return {&gradient->input1, &gradient->input2}; }
    template <class Image> void connect(std::array<Image, dimensions> const& components, ImageModel& result)
    {
        for (std::size_t i = 0; i < dimensions; ++i)
            *inputs()[i] = &components[i];
        gradient->output = &result;
    }

    Ref<GradientMagnitude2D> gradient = GradientMagnitude2D::New();
    HostImage out;
    std::string const name = "GradientMagnitude2D";
};

template <class T> std::array<Picture<T>, dimensions> randomComponents(Shape const& shape, unsigned seed)
{
    std::array<Picture<T>, dimensions> pictures;
    for (Picture<T>& picture : pictures)
        picture = randomPicture<T>(shape, seed++, true);
    return pictures;
}

template <class T> std::array<memory::InMemoryImage, dimensions> toImages(std::array<Picture<T>, dimensions> const& all)
{
    std::array<memory::InMemoryImage, dimensions> images;
    for (std::size_t i = 0; i < dimensions; ++i)
        images[i] = toImage(all[i]);
    return images;
}

template <class T> Picture<T> magnitude(int mode, std::array<Picture<T>, dimensions> const& components)
{
    Picture<T> result(components[0].shape);
    for (std::size_t i = 0; i < result.voxels.size(); ++i) {
        std::vector<T> voxels;
        for (auto const& component : components)
            voxels.push_back(component.voxels[i]);
        result.voxels[i] = magnitudeOf(mode, voxels);
    }
    return result;
}

TEST_F(GradientMagnitude2DTest, isRegisteredUnderItsName)
{
    expectRegistered<GradientMagnitude2D>("GradientMagnitude2D");
}

TEST_F(GradientMagnitude2DTest, declaresItsPropertiesInOrder)
{
    std::vector<std::string> expected;
    for (int i = 1; i <= dimensions; ++i)
        expected.push_back("const image input" + std::to_string(i) + " = null");
    expected.push_back("GradientMagnitudeOutputType outputMode = GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN");
    EXPECT_EQ(describedInputs(*gradient), expected);
    EXPECT_EQ(describedOutputs(*gradient), std::vector<std::string>({"image output = null"}));
    EnumInfo const& info = *gradient->outputMode.getEnumInfo();
    EXPECT_EQ(info.getNumOfValues(), 2u);
    EXPECT_EQ(info.getLabelFromValue(1), String("GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS"));
}

TEST_F(GradientMagnitude2DTest, mergesEveryTypeAndShapeInBothModes)
{
    forceLevel(*gradient, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes())
                for (int const mode : {0, 1}) {
                    SCOPED_TRACE(testing::Message() << "mode " << mode << ", seed " << seed);
                    auto const components = randomComponents<T>(shape, seed++);
                    auto const expected = magnitude(mode, components);
                    auto images = toImages(components);
                    HostImage result;
                    connect(images, result);
                    gradient->outputMode = mode;
                    gradient->run();
                    EXPECT_TRUE(samePicture(expected, result));
                    // In place, over each of the inputs in turn.
                    memory::InMemoryImage& place = images[seed % dimensions];
                    gradient->output = &place;
                    gradient->run();
                    EXPECT_TRUE(samePicture(expected, place));
                }
        });
    });
}

TEST_F(GradientMagnitude2DTest, takesTheRootOfEverySumOfNarrowTypes)
{
    auto const test = [&]<class T>(std::type_identity<T>) {
        std::array<Picture<T>, dimensions> components;
        for (auto& component : components)
            component = Picture<T>(Shape{65536});
        for (std::size_t i = 0; i < 65536; ++i) {
            components[0].voxels[i] = static_cast<T>(i);
            components[1].voxels[i] = static_cast<T>(i >> 7);
        }
        auto const images = toImages(components);
        connect(images, out);
        gradient->run();
        EXPECT_TRUE(samePicture(magnitude(0, components), out));
    };
    test(std::type_identity<unsigned char>());
    test(std::type_identity<signed char>());
    test(std::type_identity<unsigned short>());
    test(std::type_identity<short>());
}

TEST_F(GradientMagnitude2DTest, givesTheKnownValues)
{
    std::array<HostImage, dimensions> images{HostImage(Picture<short>(Shape{1}, {-3})),
                                             HostImage(Picture<short>(Shape{1}, {4}))};
    connect(images, out);
    gradient->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{1}, {5}), out));
    gradient->outputMode = GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS;
    gradient->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{1}, {4}), out));
}

TEST_F(GradientMagnitude2DTest, wrapsSquaresInTheVoxelType)
{
    auto const test = [&]<class T>(T voxel, T expected) {
        std::array<Picture<T>, dimensions> components;
        for (auto& component : components)
            component = Picture<T>(Shape{1}, T(0));
        components[0].voxels[0] = voxel;
        auto const images = toImages(components);
        connect(images, out);
        gradient->run();
        EXPECT_TRUE(samePicture(Picture<T>(Shape{1}, {expected}), out));
    };
    test(static_cast<unsigned char>(20), static_cast<unsigned char>(12)); // 400 is 144
    test(static_cast<signed char>(12), static_cast<signed char>(0));      // 144 is -112
    test(static_cast<short>(200), static_cast<short>(0));                 // 40000 is -25536
    test(50000, -2147483647 - 1);
    test(3100000000l, -9223372036854775807l - 1);
    test(70000u, static_cast<unsigned int>(std::sqrt(605032704.0)));
    test(1e200, static_cast<double>(INFINITY));
}

TEST_F(GradientMagnitude2DTest, shapesItsOutputLikeItsFirstInput)
{
    std::array<HostImage, dimensions> images;
    for (std::size_t i = 0; i < dimensions; ++i) {
        images[i].reserve(QEL_FLOAT32, 4, 3, 2, 2, 2);
        images[i].setSpacingOf(PLANS, 7.0 + static_cast<double>(i));
    }
    images[0].setInterpretation(QEL_LABEL);
    connect(images, out);
    gradient->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(out.sizes(), images[0].sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_VALUE);
    EXPECT_TRUE(sameCalibration(images[0], out));
    out.forgetCalls();
    gradient->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(GradientMagnitude2DTest, refusesWrongParametersInTheRulesWords)
{
    HostImage const good(QEL_INT16, {3, 3});
    HostImage const otherType(QEL_UINT16, {3, 3});
    HostImage const otherSize(QEL_INT16, {3, 3, 1, 1, 2});
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 3});
    EXPECT_QEL_WHAT(gradient->run(), RuleException, ruleText("The parameter \"input1\" must be set.", "input1", name));
    gradient->input1 = &complex;
    EXPECT_QEL_WHAT(gradient->run(), RuleException,
                    ruleText(std::string("The parameter \"input1\" supports only data type(s): uint8, uint16, uint32, "
                                         "uint64, int8, int16, int32, int64, float32, float64. Current data type is ") +
                                 helper::VoxelTypesToString(QEL_COMPLEX_FLOAT32).c_str() + ".",
                             "input1", name));
    gradient->input1 = &good;
    for (std::size_t i = 1; i < dimensions; ++i) {
        std::string const input = inputs()[i]->getName().c_str();
        EXPECT_QEL_WHAT(gradient->run(), RuleException,
                        ruleText("The parameter \"" + input + "\" must be set.", input, name));
        *inputs()[i] = &otherType;
        EXPECT_QEL_WHAT(
            gradient->run(), RuleException,
            ruleText("The parameters \"input1\" and \"" + input + "\" must have the same type.", input, name));
        *inputs()[i] = &otherSize;
        EXPECT_QEL_WHAT(
            gradient->run(), RuleException,
            ruleText("The parameters \"input1\" and \"" + input + "\" must have the same size.", input, name));
        *inputs()[i] = &good;
    }
    for (int const wrong : {-1, 2}) {
        gradient->outputMode = wrong;
        EXPECT_QEL_WHAT(gradient->run(), RuleException,
                        ruleText("The value of the parameter \"outputMode\" is not valid", "outputMode", name));
    }
    gradient->outputMode = 1;
    EXPECT_QEL_WHAT(gradient->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    gradient->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        gradient->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input1\".", "output", name));
    EXPECT_TRUE(isAtRest(*gradient));
}

TEST_F(GradientMagnitude2DTest, reportsImagesThatFailDuringTheRun)
{
    auto const components = randomComponents<int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<GradientMagnitude2D>(
        [&](GradientMagnitude2D& algorithm, HostImages& images) {
            for (auto const& component : components)
                images.push_back(std::make_unique<HostImage>(component));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input1 = images[0].get();
            algorithm.input2 = images[1].get();
            algorithm.output = images.back().get();
        },
        [&](HostImages const& images) { return bool(samePicture(magnitude(0, components), *images.back())); });
}

} // namespace
} // namespace qel::test
