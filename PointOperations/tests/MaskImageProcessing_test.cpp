#include <qel/point_operations/MaskImageProcessing.h>

#include "Core/tests/Support/Algorithms.h"

#include <cmath>

namespace qel::test {
namespace {

using point_operations::MaskImageProcessing;

template <class T, class M> Picture<T> masked(Picture<T> const& in, Picture<M> const& mask)
{
    Picture<T> out(in.shape);
    forEachVoxel(in.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long t, unsigned long s) {
        if (t < mask.shape.timeSeries && mask.at(c, r, p, t) != 0)
            out.at(c, r, p, t, s) = in.at(c, r, p, t, s);
    });
    return out;
}

template <class Callable> void forEachMaskType(Callable&& callable)
{
    callable.template operator()<unsigned char>();
    callable.template operator()<unsigned short>();
    callable.template operator()<signed char>();
    callable.template operator()<short>();
}

template <class M> Picture<M> randomMask(Shape const& shape, unsigned seed)
{
    Picture<M> mask = randomPicture<M>(shape, seed);
    for (std::size_t i = 0; i < mask.voxels.size(); i += 1 + (i + seed) % 3)
        mask.voxels[i] = 0;
    return mask;
}

class MaskImageProcessingTest : public testing::Test
{
protected:
    void connect(ImageModel const& in, ImageModel const& binary, ImageModel& out)
    {
        mask->input = &in;
        mask->inputBinary = &binary;
        mask->output = &out;
    }

    Ref<MaskImageProcessing> mask = MaskImageProcessing::New();
};

TEST_F(MaskImageProcessingTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(MaskImageProcessing::getClassInfo()->getName(), String("MaskImageProcessing"));
    EXPECT_EQ(MaskImageProcessing::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("MaskImageProcessing"), MaskImageProcessing::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("MaskImageProcessing")->createInstance();
    EXPECT_NE(dynamic_cast<MaskImageProcessing*>(other.get()), nullptr);
}

TEST_F(MaskImageProcessingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*mask),
              std::vector<std::string>({"const image input = null", "const image inputBinary = null"}));
    EXPECT_EQ(describedOutputs(*mask), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*mask));
    EXPECT_EQ(levelsOf(*mask), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(MaskImageProcessingTest, keepsVoxelsUnderTheMaskForEveryPairOfTypes)
{
    forceLevel(*mask, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachMaskType([&]<class M>() {
            SCOPED_TRACE(testing::Message() << "mask of " << voxelTypeName<M>());
            forEachVoxelType([&]<class T>() {
                for (Shape shape : {Shape{1, 7}, Shape{7, 1}, Shape{0, 3}, Shape{3, 0}, Shape{3, 2, 0}, Shape{17, 3},
                                    Shape{33, 5, 3, 2}, Shape{1025, 11}, Shape{67, 11, 11}}) {
                    auto const picture = randomPicture<T>(shape, seed++, true);
                    auto const binary = randomMask<M>(shape, seed++);
                    auto const expected = masked(picture, binary);
                    HostImage in(picture);
                    HostImage const maskImage(binary);
                    HostImage out;
                    connect(in, maskImage, out);
                    mask->run();
                    EXPECT_TRUE(samePicture(expected, out));
                    EXPECT_TRUE(samePicture(binary, maskImage));
                    mask->output = &in;
                    mask->run();
                    EXPECT_TRUE(samePicture(expected, in));
                }
            });
        });
    });
}

TEST_F(MaskImageProcessingTest, workOnEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& all : allShapes()) {
            Shape const shape = firstSeries(all);
            auto const picture = randomPicture<float>(shape, seed++);
            auto const binary = randomMask<unsigned char>(shape, seed++);
            memory::InMemoryImage const in = toImage(picture);
            HostImage const maskImage(binary);
            memory::InMemoryImage out;
            connect(in, maskImage, out);
            mask->run();
            EXPECT_TRUE(samePicture(masked(picture, binary), out));
        }
    });
}

TEST_F(MaskImageProcessingTest, takesAnyMaskVoxelButZeroAsKept)
{
    HostImage const in(Picture<unsigned char>(Shape{4}, {10, 20, 30, 40}));
    HostImage out;
    Picture<unsigned char> const expected(Shape{4}, {10, 0, 30, 40});
    HostImage const words(Picture<unsigned short>(Shape{4}, {256, 0, 65535, 1}));
    connect(in, words, out);
    mask->run();
    EXPECT_TRUE(samePicture(expected, out));
    HostImage const signedWords(Picture<short>(Shape{4}, {256, 0, -32768, -256}));
    mask->inputBinary = &signedWords;
    mask->run();
    EXPECT_TRUE(samePicture(expected, out));
    HostImage signedBytes(Picture<signed char>(Shape{4}, {-1, 0, -128, 127}));
    mask->inputBinary = &signedBytes;
    for (Interpretations const interpretation : {QEL_BINARY, QEL_LABEL, QEL_VALUE}) {
        signedBytes.setInterpretation(interpretation);
        mask->run();
        EXPECT_TRUE(samePicture(expected, out));
    }
}

TEST_F(MaskImageProcessingTest, givesPlusZeroForWhateverIsMaskedOut)
{
    double const nan = std::nan("");
    HostImage const in(Picture<double>(Shape{4}, {-0.0, nan, -INFINITY, -0.0}));
    HostImage const maskImage(Picture<unsigned char>(Shape{4}, {0, 0, 0, 1}));
    HostImage out;
    connect(in, maskImage, out);
    mask->run();
    auto const result = fromImage<double>(out);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(result.voxels[i], 0);
        EXPECT_FALSE(std::signbit(result.voxels[i]));
    }
    EXPECT_TRUE(std::signbit(result.voxels[3]));
}

TEST_F(MaskImageProcessingTest, countsTimeSeriesThatTheMaskLacksAsZero)
{
    onOneAndFourThreads([&] {
        auto const picture = randomPicture<short>(Shape{33, 12, 3, 4}, 1);
        for (unsigned long const series : {0ul, 1ul, 3ul, 4ul, 6ul}) {
            SCOPED_TRACE(testing::Message() << series << " series in the mask");
            auto const binary = randomMask<signed char>(Shape{33, 12, 3, series}, 2);
            HostImage const in(picture);
            HostImage const maskImage(binary);
            HostImage out;
            connect(in, maskImage, out);
            mask->run();
            EXPECT_TRUE(samePicture(masked(picture, binary), out));
        }
    });
}

TEST_F(MaskImageProcessingTest, cannotMaskASecondSpectralSeries)
{
    HostImage const in(randomPicture<short>(Shape{5, 4, 1, 1, 2}, 1));
    HostImage const maskImage(Picture<unsigned char>(Shape{5, 4}, 1));
    HostImage out;
    connect(in, maskImage, out);
    EXPECT_QEL_WHAT(mask->run(), UnexpectedError,
                    errorText("Fixed border condition is not compatible with spectral series extrapolation",
                              "MaskImageProcessing"));
    EXPECT_TRUE(isAtRest(*mask));
}

TEST_F(MaskImageProcessingTest, mayWriteOverItsMask)
{
    auto const picture = randomPicture<unsigned char>(Shape{1025, 21}, 1);
    auto const binary = randomMask<unsigned char>(Shape{1025, 21}, 2);
    onOneAndFourThreads([&] {
        HostImage const in(picture);
        HostImage maskImage(binary);
        connect(in, maskImage, maskImage);
        mask->run();
        EXPECT_TRUE(samePicture(masked(picture, binary), maskImage));
    });
}

TEST_F(MaskImageProcessingTest, doesNothingWhereItsMaskBecameAnImageOfAnotherKind)
{
    // The mask passes its rules, and is then retyped as the output.
    HostImage const in(Picture<float>(Shape{3}, {1, 2, 3}));
    HostImage maskImage(Picture<unsigned char>(Shape{3}, {1, 0, 1}));
    connect(in, maskImage, maskImage);
    mask->run();
    EXPECT_EQ(maskImage.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(maskImage.callsOf(WRITE_ROW), 0u);
}

TEST_F(MaskImageProcessingTest, shapesItsOutputLikeItsInputButForTheInterpretation)
{
    HostImage in(randomPicture<unsigned short>(Shape{4, 3, 2, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage const maskImage(Picture<unsigned char>(Shape{4, 3, 2, 2}, 1));
    HostImage out(QEL_FLOAT64, {1, 1});
    connect(in, maskImage, out);
    mask->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_VALUE);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    EXPECT_EQ(out.content(), in.content());
}

TEST_F(MaskImageProcessingTest, refusesWrongImagesInTheRulesWords)
{
    std::string const name = "MaskImageProcessing";
    HostImage const in(QEL_UINT8, {3, 4, 5});
    HostImage const maskImage(QEL_UINT8, {3, 4, 5});
    HostImage out;
    EXPECT_QEL_WHAT(mask->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    mask->input = &in;
    EXPECT_QEL_WHAT(mask->run(), RuleException,
                    ruleText("The parameter \"inputBinary\" must be set.", "inputBinary", name));
    mask->inputBinary = &maskImage;
    EXPECT_QEL_WHAT(mask->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    mask->output = &out;

    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 4, 5});
    mask->input = &complex;
    EXPECT_QEL_WHAT(mask->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                             "int16, int32, int64, float32, float64. Current data type is complex float32.",
                             "input", name));
    mask->input = &in;
    for (VoxelTypes const type : {QEL_UINT32, QEL_UINT64, QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64}) {
        HostImage const wide(type, {3, 4, 5});
        mask->inputBinary = &wide;
        EXPECT_QEL_WHAT(
            mask->run(), RuleException,
            ruleText("The parameter \"inputBinary\" supports only data type(s): uint8, uint16, int8, int16. "
                     "Current data type is " +
                         std::string(helper::VoxelTypesToString(type).c_str()) + ".",
                     "inputBinary", name));
    }
    HostImage const narrow(QEL_UINT8, {2, 4, 1});
    mask->inputBinary = &narrow;
    EXPECT_QEL_WHAT(mask->run(), RuleException,
                    ruleText("The number of columns of the parameter \"inputBinary\" must be 3. Current size is 2.\n"
                             "The number of plans of the parameter \"inputBinary\" must be 5. Current size is 1.",
                             "inputBinary", name));
    HostImage const high(QEL_UINT8, {3, 7, 5});
    mask->inputBinary = &high;
    EXPECT_QEL_WHAT(mask->run(), RuleException,
                    ruleText("The number of rows of the parameter \"inputBinary\" must be 4. Current size is 7.",
                             "inputBinary", name));
    HostImage const spectral(QEL_UINT8, {3, 4, 5, 1, 2});
    mask->inputBinary = &spectral;
    EXPECT_QEL_WHAT(
        mask->run(), RuleException,
        ruleText("The number of spectral series of the parameter \"inputBinary\" must be 1. Current size is 2.",
                 "inputBinary", name));
    mask->inputBinary = &maskImage;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        mask->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", name));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*mask));
}

TEST_F(MaskImageProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<int>(Shape{5, 23}, 1);
    auto const binary = randomMask<short>(Shape{5, 23}, 2);
    expectFailingImagesAreReported<MaskImageProcessing>(
        [&](MaskImageProcessing& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(binary));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.inputBinary = images[1].get();
            algorithm.output = images[2].get();
        },
        [&](HostImages const& images) { return bool(samePicture(masked(picture, binary), *images[2])); });
}

TEST_F(MaskImageProcessingTest, callsImagesFromOtherThreadsForRowsAlone)
{
    HostImage in(randomPicture<short>(Shape{1025, 45, 12}, 1));
    HostImage maskImage(Picture<short>(Shape{1025, 45, 12}, 1));
    HostImage out;
    connect(in, maskImage, out);
    withThreads(4, [&] { mask->run(); });
    for (HostImage const* const image : {&in, &maskImage, &out})
        EXPECT_TRUE(onlyRowsWereForeign(*image));
}

} // namespace
} // namespace qel::test
