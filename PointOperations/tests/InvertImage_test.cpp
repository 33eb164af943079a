#include <qel/point_operations/InvertImage.h>

#include "Core/tests/Support/Algorithms.h"

#include <algorithm>

namespace qel::test {
namespace {

using point_operations::InvertImage;

/// Bit by bit: the low ones turn over, all others become 0.
template <class T> Picture<T> inverted(Picture<T> picture, unsigned int bits)
{
    for (T& voxel : picture.voxels) {
        unsigned long result = 0;
        for (unsigned int bit = 0; bit < std::min<unsigned int>(bits, 8 * sizeof(T)); ++bit)
            if (((static_cast<unsigned long>(voxel) >> bit) & 1) == 0)
                result |= 1ul << bit;
        voxel = static_cast<T>(result);
    }
    return picture;
}

class InvertImageTest : public testing::Test
{
protected:
    Ref<InvertImage> invert = InvertImage::New();
};

TEST_F(InvertImageTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(InvertImage::getClassInfo()->getName(), String("InvertImage"));
    EXPECT_EQ(InvertImage::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("InvertImage"), InvertImage::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("InvertImage")->createInstance();
    EXPECT_NE(dynamic_cast<InvertImage*>(other.get()), nullptr);
}

TEST_F(InvertImageTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*invert), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*invert), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*invert));
    EXPECT_EQ(levelsOf(*invert), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(InvertImageTest, keepsTheNumberOfBitsOutOfItsList)
{
    EXPECT_EQ(invert->numOfBits.get(), 0u);
    EXPECT_EQ(invert->numOfBits.getName(), String(""));
    EXPECT_EQ(invert->getNumOfProperties(), 2u);
    EXPECT_EQ(invert->getPropertyfromName("numOfBits"), nullptr);
    EXPECT_EQ(invert->getPropertyfromName(""), nullptr);

    ObservedImage in(Picture<unsigned char>(Shape{1, 1}));
    HostImage out;
    invert->input = &in;
    invert->output = &out;
    in.onRead = [&] {
        EXPECT_TRUE(invert->input.isLocked());
        EXPECT_FALSE(invert->numOfBits.isLocked());
    };
    invert->run();
    EXPECT_EQ(in.callsOf(READ_ROW), 1u);
}

TEST_F(InvertImageTest, invertsEveryIntegerTypeAndShape)
{
    forceLevel(*invert, SCALAR);
    onOneAndFourThreads([&] {
        forEachIntegerType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes()) {
                unsigned int const bits = seed % 9 == 0 ? 8 * sizeof(T) : seed * 5 % 40;
                SCOPED_TRACE(testing::Message() << bits << " bits");
                auto const picture = randomPicture<T>(shape, seed++);
                auto const expected = inverted(picture, bits);
                HostImage in(picture);
                HostImage out;
                invert->numOfBits = bits;
                invert->input = &in;
                invert->output = &out;
                invert->run();
                EXPECT_TRUE(samePicture(expected, out));
                EXPECT_TRUE(samePicture(picture, in));
                invert->output = &in;
                invert->run();
                EXPECT_TRUE(samePicture(expected, in));
            }
        });
    });
}

TEST_F(InvertImageTest, keepsAnyNumberOfBitsUpToTheWidthOfTheVoxel)
{
    forEachIntegerType([&]<class T>() {
        auto const picture = randomPicture<T>(Shape{67, 2}, 5);
        HostImage const in(picture);
        HostImage out;
        invert->input = &in;
        invert->output = &out;
        for (unsigned int const bits :
             {0u, 1u, 4u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 63u, 64u, 65u, 4294967295u}) {
            SCOPED_TRACE(testing::Message() << bits << " bits");
            invert->numOfBits = bits;
            invert->run();
            EXPECT_TRUE(samePicture(inverted(picture, bits), out));
        }
    });
}

TEST_F(InvertImageTest, givesTheKnownValues)
{
    HostImage const in(Picture<unsigned char>(Shape{3}, {0, 255, 200}));
    HostImage out;
    invert->input = &in;
    invert->output = &out;
    invert->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{3}, {0, 0, 0}), out));
    invert->numOfBits = 8;
    invert->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{3}, {255, 0, 55}), out));
    invert->numOfBits = 4;
    invert->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{3}, {15, 0, 7}), out));

    HostImage const negative(Picture<short>(Shape{3}, {-1, 0, 5}));
    invert->input = &negative;
    invert->numOfBits = 16;
    invert->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{3}, {0, -1, -6}), out));
}

TEST_F(InvertImageTest, invertsOneBitOfABinaryImageWhateverIsSet)
{
    forEachIntegerType([&]<class T>() {
        auto picture = randomPicture<T>(Shape{33, 3}, 7);
        picture.voxels[0] = 0;
        picture.voxels[1] = 1;
        HostImage in(picture);
        in.setInterpretation(QEL_BINARY);
        HostImage out;
        invert->input = &in;
        invert->output = &out;
        for (unsigned int const bits : {0u, 1u, 8u, 64u}) {
            invert->numOfBits = bits;
            invert->run();
            EXPECT_TRUE(samePicture(inverted(picture, 1), out));
            EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
        }
    });
}

TEST_F(InvertImageTest, undoesItselfOnAllBits)
{
    forEachIntegerType([&]<class T>() {
        auto const picture = randomPicture<T>(Shape{35, 4, 3}, 9);
        HostImage image(picture);
        invert->numOfBits = 8 * sizeof(T);
        invert->input = &image;
        invert->output = &image;
        invert->run();
        invert->run();
        EXPECT_TRUE(samePicture(picture, image));
    });
}

TEST_F(InvertImageTest, shapesItsOutputLikeItsInput)
{
    HostImage in(randomPicture<unsigned short>(Shape{4, 3, 2, 2, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage out(QEL_FLOAT64, {1, 1});
    invert->input = &in;
    invert->output = &out;
    invert->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    out.forgetCalls();
    invert->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(InvertImageTest, refusesWrongImagesInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out;
    EXPECT_QEL_WHAT(invert->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "InvertImage"));
    invert->input = &in;
    EXPECT_QEL_WHAT(invert->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", "InvertImage"));
    invert->output = &out;
    for (auto const& [type, name] : {std::pair{QEL_FLOAT32, "float32"}, std::pair{QEL_FLOAT64, "float64"}}) {
        HostImage const real(type, {3, 3});
        invert->input = &real;
        EXPECT_QEL_WHAT(invert->run(), RuleException,
                        ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, "
                                 "int8, int16, int32, int64. Current data type is " +
                                     std::string(name) + ".",
                                 "input", "InvertImage"));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    invert->input = &in;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        invert->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", "InvertImage"));
    in.setInterpretation(QEL_LABEL);
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(invert->run(), RuleException,
                    ruleText("The parameter \"output\" (QEL_VALUE) cannot be interpreted like \"input\" (QEL_LABEL).",
                             "output", "InvertImage"));
    EXPECT_TRUE(isAtRest(*invert));
}

TEST_F(InvertImageTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<unsigned int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<InvertImage>(
        [&](InvertImage& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.numOfBits = 9;
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(inverted(picture, 9), *images[1])); });
}

} // namespace
} // namespace qel::test
