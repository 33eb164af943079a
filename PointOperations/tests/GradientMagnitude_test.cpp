#include <qel/point_operations/GradientMagnitude2D.h>
#include <qel/point_operations/GradientMagnitude3D.h>

#include "PointOperations/tests/GradientModel.h"

#include <array>
#include <cmath>

namespace qel::test {
namespace {

using namespace point_operations;

constexpr std::size_t dimensionsOf(GradientMagnitude2D const*) { return 2; }
constexpr std::size_t dimensionsOf(GradientMagnitude3D const*) { return 3; }
std::array<Property<ImageModel const*>*, 2> inputsOf(GradientMagnitude2D& gradient)
{
    return {&gradient.input1, &gradient.input2};
}
std::array<Property<ImageModel const*>*, 3> inputsOf(GradientMagnitude3D& gradient)
{
    return {&gradient.input1, &gradient.input2, &gradient.input3};
}

/// What both gradients promise: they differ by the number of components alone.
template <class Gradient> class GradientMagnitudeTest : public testing::Test
{
protected:
    static constexpr std::size_t numOfComponents = dimensionsOf(static_cast<Gradient const*>(nullptr));
    auto inputs() { return inputsOf(*gradient); }
    template <class Image> void connect(std::array<Image, numOfComponents> const& components, ImageModel& result)
    {
        for (std::size_t i = 0; i < numOfComponents; ++i)
            *inputs()[i] = &components[i];
        gradient->output = &result;
    }

    Ref<Gradient> gradient = Gradient::New();
    HostImage out;
    std::string const name = "GradientMagnitude" + std::to_string(numOfComponents) + "D";
};

using Gradients = testing::Types<GradientMagnitude2D, GradientMagnitude3D>;
TYPED_TEST_SUITE(GradientMagnitudeTest, Gradients);

template <class T, std::size_t dimensions>
std::array<Picture<T>, dimensions> randomComponents(Shape const& shape, unsigned seed)
{
    std::array<Picture<T>, dimensions> pictures;
    for (Picture<T>& picture : pictures)
        picture = randomPicture<T>(shape, seed++, true);
    return pictures;
}

template <class T, std::size_t dimensions>
std::array<memory::InMemoryImage, dimensions> toImages(std::array<Picture<T>, dimensions> const& all)
{
    std::array<memory::InMemoryImage, dimensions> images;
    for (std::size_t i = 0; i < dimensions; ++i)
        images[i] = toImage(all[i]);
    return images;
}

template <class T, std::size_t dimensions>
Picture<T> magnitude(int mode, std::array<Picture<T>, dimensions> const& components)
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

TYPED_TEST(GradientMagnitudeTest, isRegisteredUnderItsName) { expectRegistered<TypeParam>(this->name); }

TYPED_TEST(GradientMagnitudeTest, declaresItsPropertiesInOrder)
{
    std::vector<std::string> expected;
    for (std::size_t i = 1; i <= TestFixture::numOfComponents; ++i)
        expected.push_back("const image input" + std::to_string(i) + " = null");
    expected.push_back("GradientMagnitudeOutputType outputMode = GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN");
    EXPECT_EQ(describedInputs(*this->gradient), expected);
    EXPECT_EQ(describedOutputs(*this->gradient), std::vector<std::string>({"image output = null"}));
    EnumInfo const& info = *this->gradient->outputMode.getEnumInfo();
    EXPECT_EQ(info.getNumOfValues(), 2u);
    EXPECT_EQ(info.getLabelFromValue(1), String("GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS"));
}

TYPED_TEST(GradientMagnitudeTest, mergesEveryTypeAndShapeInBothModes)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    forceLevel(*this->gradient, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes())
                for (int const mode : {0, 1}) {
                    SCOPED_TRACE(testing::Message() << "mode " << mode << ", seed " << seed);
                    auto const components = randomComponents<T, dimensions>(shape, seed++);
                    auto const expected = magnitude(mode, components);
                    auto images = toImages(components);
                    HostImage result;
                    this->connect(images, result);
                    this->gradient->outputMode = mode;
                    this->gradient->run();
                    EXPECT_TRUE(samePicture(expected, result));
                    // In place, over each of the inputs in turn.
                    memory::InMemoryImage& place = images[seed % dimensions];
                    this->gradient->output = &place;
                    this->gradient->run();
                    EXPECT_TRUE(samePicture(expected, place));
                }
        });
    });
}

TYPED_TEST(GradientMagnitudeTest, takesTheRootOfEverySumOfNarrowTypes)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    auto const test = [&]<class T>(std::type_identity<T>) {
        std::array<Picture<T>, dimensions> components;
        for (auto& component : components)
            component = Picture<T>(Shape{65536});
        for (std::size_t i = 0; i < 65536; ++i) {
            components[0].voxels[i] = static_cast<T>(i);
            components[1].voxels[i] = static_cast<T>(i >> 7);
        }
        auto const images = toImages(components);
        this->connect(images, this->out);
        this->gradient->run();
        EXPECT_TRUE(samePicture(magnitude(0, components), this->out));
    };
    test(std::type_identity<unsigned char>());
    test(std::type_identity<signed char>());
    test(std::type_identity<unsigned short>());
    test(std::type_identity<short>());
}

TYPED_TEST(GradientMagnitudeTest, givesTheKnownValues)
{
    constexpr short components[] = {-3, 4, -12};
    std::array<memory::InMemoryImage, TestFixture::numOfComponents> images;
    for (std::size_t i = 0; i < images.size(); ++i)
        images[i] = toImage(Picture<short>(Shape{1}, {components[i]}));
    this->connect(images, this->out);
    this->gradient->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{1}, {short(images.size() == 2 ? 5 : 13)}), this->out));
    this->gradient->outputMode = GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_MAX_OF_MAGS;
    this->gradient->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{1}, {4}), this->out));
}

TYPED_TEST(GradientMagnitudeTest, wrapsSquaresInTheVoxelType)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    auto const test = [&]<class T>(T voxel, T expected) {
        std::array<Picture<T>, dimensions> components;
        for (auto& component : components)
            component = Picture<T>(Shape{1}, T(0));
        components[0].voxels[0] = voxel;
        auto const images = toImages(components);
        this->connect(images, this->out);
        this->gradient->run();
        EXPECT_TRUE(samePicture(Picture<T>(Shape{1}, {expected}), this->out));
    };
    test(static_cast<unsigned char>(20), static_cast<unsigned char>(12)); // 400 is 144
    test(static_cast<signed char>(12), static_cast<signed char>(0));      // 144 is -112
    test(static_cast<short>(200), static_cast<short>(0));                 // 40000 is -25536
    test(50000, -2147483647 - 1);
    test(3100000000l, -9223372036854775807l - 1);
    test(70000u, static_cast<unsigned int>(std::sqrt(605032704.0)));
    test(1e200, static_cast<double>(INFINITY));
}

TYPED_TEST(GradientMagnitudeTest, shapesItsOutputLikeItsFirstInput)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    std::array<HostImage, dimensions> images;
    for (std::size_t i = 0; i < dimensions; ++i) {
        images[i].reserve(QEL_FLOAT32, 4, 3, 2, 2, 2);
        images[i].setSpacingOf(PLANS, 7.0 + static_cast<double>(i));
    }
    images[0].setInterpretation(QEL_LABEL);
    this->connect(images, this->out);
    this->gradient->run();
    EXPECT_EQ(this->out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(this->out.sizes(), images[0].sizes());
    EXPECT_EQ(this->out.getInterpretation(), QEL_VALUE);
    EXPECT_TRUE(sameCalibration(images[0], this->out));
    this->out.forgetCalls();
    this->gradient->run();
    EXPECT_EQ(this->out.callsOf(RESERVE), 0u);
}

TYPED_TEST(GradientMagnitudeTest, refusesWrongParametersInTheRulesWords)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    HostImage const good(QEL_INT16, {3, 3});
    HostImage const otherType(QEL_UINT16, {3, 3});
    HostImage const otherSize(QEL_INT16, {3, 3, 1, 1, 2});
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 3});
    EXPECT_QEL_WHAT(this->gradient->run(), RuleException,
                    ruleText("The parameter \"input1\" must be set.", "input1", this->name));
    this->gradient->input1 = &complex;
    EXPECT_QEL_WHAT(this->gradient->run(), RuleException,
                    ruleText(std::string("The parameter \"input1\" supports only data type(s): uint8, uint16, uint32, "
                                         "uint64, int8, int16, int32, int64, float32, float64. Current data type is ") +
                                 helper::VoxelTypesToString(QEL_COMPLEX_FLOAT32).c_str() + ".",
                             "input1", this->name));
    this->gradient->input1 = &good;
    for (std::size_t i = 1; i < dimensions; ++i) {
        std::string const input = this->inputs()[i]->getName().c_str();
        EXPECT_QEL_WHAT(this->gradient->run(), RuleException,
                        ruleText("The parameter \"" + input + "\" must be set.", input, this->name));
        *this->inputs()[i] = &otherType;
        EXPECT_QEL_WHAT(
            this->gradient->run(), RuleException,
            ruleText("The parameters \"input1\" and \"" + input + "\" must have the same type.", input, this->name));
        *this->inputs()[i] = &otherSize;
        EXPECT_QEL_WHAT(
            this->gradient->run(), RuleException,
            ruleText("The parameters \"input1\" and \"" + input + "\" must have the same size.", input, this->name));
        *this->inputs()[i] = &good;
    }
    for (int const wrong : {-1, 2}) {
        this->gradient->outputMode = wrong;
        EXPECT_QEL_WHAT(this->gradient->run(), RuleException,
                        ruleText("The value of the parameter \"outputMode\" is not valid", "outputMode", this->name));
    }
    this->gradient->outputMode = 1;
    EXPECT_QEL_WHAT(this->gradient->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", this->name));
    this->gradient->output = &this->out;
    this->out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        this->gradient->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input1\".", "output", this->name));
    EXPECT_TRUE(isAtRest(*this->gradient));
}

TYPED_TEST(GradientMagnitudeTest, reportsImagesThatFailDuringTheRun)
{
    constexpr std::size_t dimensions = TestFixture::numOfComponents;
    auto const components = randomComponents<int, dimensions>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            for (auto const& component : components)
                images.push_back(std::make_unique<HostImage>(component));
            images.push_back(std::make_unique<HostImage>());
            for (std::size_t i = 0; i < dimensions; ++i)
                *inputsOf(algorithm)[i] = images[i].get();
            algorithm.output = images.back().get();
        },
        [&](HostImages const& images) { return bool(samePicture(magnitude(0, components), *images.back())); });
}

} // namespace
} // namespace qel::test
