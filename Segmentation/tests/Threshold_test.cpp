#include <qel/segmentation/Threshold.h>

#include "Core/tests/Support/Algorithms.h"

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using segmentation::Threshold;

template <class T, class Out = unsigned char> Picture<Out> band(Picture<T> const& in, double low, double high)
{
    Picture<Out> out(in.shape);
    for (std::size_t i = 0; i < in.voxels.size(); ++i) {
        double const voxel = static_cast<double>(in.voxels[i]);
        out.voxels[i] = low > voxel || voxel > high ? 0 : 1;
    }
    return out;
}

template <class Callable> void forEachOutputType(Callable&& callable)
{
    callable.template operator()<unsigned char>();
    callable.template operator()<unsigned short>();
    callable.template operator()<signed char>();
    callable.template operator()<short>();
}

/// Levels in, at, between and beyond the values of each type, and those that are no number.
std::vector<double> levels()
{
    std::vector<double> all = {std::nan(""), -std::nan(""), INFINITY, -INFINITY, 0.0,      -0.0,
                               0.1,          double(0.1f),  1e300,    -1e300,    4.9e-324, -4.9e-324,
                               1e-46,        -1e-46,        127.5,    -0.5,      300.7};
    for (double const end : {1.0,
                             127.0,
                             128.0,
                             255.0,
                             256.0,
                             32767.0,
                             32768.0,
                             65535.0,
                             65536.0,
                             16777216.0,
                             2147483647.0,
                             2147483648.0,
                             4294967295.0,
                             4294967296.0,
                             4503599627370496.0,
                             9007199254740992.0,
                             18014398509481984.0,
                             9223372036854775808.0,
                             18446744073709551616.0,
                             double(std::numeric_limits<float>::max()),
                             double(std::numeric_limits<float>::min())})
        for (double const value :
             {end, -end, std::nextafter(end, 0), std::nextafter(end, INFINITY), std::nextafter(-end, -INFINITY)})
            all.push_back(value);
    return all;
}

/// Integers around the powers of two at which a cast to double starts to round, and rounds on.
template <class T> Picture<T> aroundPowersOfTwo()
{
    std::vector<T> voxels;
    for (int power : {31, 52, 53, 54, 55, 60, 62, 63})
        for (long offset = -40; offset <= 40; ++offset) {
            unsigned long const distance =
                static_cast<unsigned long>(offset * (1 + (offset % 3) * (1l << (power / 8))));
            voxels.push_back(static_cast<T>((1ul << power) + distance));
            voxels.push_back(static_cast<T>(0 - (1ul << power) + distance));
        }
    return Picture<T>(Shape{voxels.size()}, voxels);
}

class ThresholdTest : public testing::Test
{
protected:
    template <class T> testing::AssertionResult isRight(Picture<T> const& picture, double low, double high)
    {
        HostImage const in(picture);
        HostImage out(QEL_UINT8, picture.shape);
        return isRight(picture, in, out, low, high);
    }
    template <class T>
    testing::AssertionResult isRight(Picture<T> const& picture, ImageModel const& in, ImageModel& out, double low,
                                     double high)
    {
        threshold->input = &in;
        threshold->output = &out;
        threshold->lowLevel = low;
        threshold->highLevel = high;
        forceLevel(*threshold, SCALAR);
        threshold->run();
        testing::AssertionResult const same = samePicture(band(picture, low, high), out);
        if (same)
            return same;
        return testing::AssertionFailure()
               << voxelTypeName<T>() << " from " << low << " to " << high << ": " << same.message();
    }

    Ref<Threshold> threshold = Threshold::New();
};

TEST_F(ThresholdTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(Threshold::getClassInfo()->getName(), String("Threshold"));
    EXPECT_EQ(Threshold::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("Threshold"), Threshold::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("Threshold")->createInstance();
    EXPECT_NE(dynamic_cast<Threshold*>(other.get()), nullptr);
}

TEST_F(ThresholdTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*threshold),
              std::vector<std::string>({"const image input = null", "double lowLevel = 0", "double highLevel = 255"}));
    EXPECT_EQ(describedOutputs(*threshold), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*threshold));
    EXPECT_EQ(levelsOf(*threshold), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(ThresholdTest, keepsTheBandForEveryTypeAndShape)
{
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes()) {
                if (shape.spectralSeries != 1)
                    continue;
                auto const picture = randomPicture<T>(shape, seed++, true);
                EXPECT_TRUE(isRight(picture, -3, 12)) << shape;
                EXPECT_TRUE(isRight(picture, 4, 1e6)) << shape;
            }
        });
    });
}

TEST_F(ThresholdTest, comparesAsDoublesWhateverTheLevels)
{
    std::vector<double> const all = levels();
    forEachVoxelType([&]<class T>() {
        std::vector<T> const values = specialValues<T>(true);
        Picture<T> const picture(Shape{values.size()}, values);
        for (double const low : all)
            for (double const high : all)
                ASSERT_TRUE(isRight(picture, low, high));
    });
}

TEST_F(ThresholdTest, comparesEveryValueOfTheNarrowTypes)
{
    auto const check = [&]<class T>(T) {
        Picture<T> picture(Shape{1ul << (8 * sizeof(T))});
        for (std::size_t i = 0; i < picture.voxels.size(); ++i)
            picture.voxels[i] = static_cast<T>(i);
        for (double const low :
             {-40000.0, -129.0, -128.0, -127.5, -1.0, -0.5, 0.0, 0.5, 1.0, 127.0, 254.5, 255.0, 255.5})
            for (double const high : {-32768.5, -128.5, -128.0, -0.25, 0.0, 1.0, 126.9, 127.0, 254.0, 255.0, 70000.0})
                ASSERT_TRUE(isRight(picture, low, high));
    };
    check((unsigned char)0);
    check((signed char)0);
    check((unsigned short)0);
    check((short)0);
}

TEST_F(ThresholdTest, roundsWideIntegersAsTheirCastToDoubleDoes)
{
    auto const check = [&]<class T>(T) {
        Picture<T> const picture = aroundPowersOfTwo<T>();
        std::vector<double> all = {0, INFINITY, -INFINITY, std::nan("")};
        for (int power : {31, 52, 53, 54, 55, 60, 62, 63, 64})
            for (double const sign : {1.0, -1.0})
                for (double const steps : {-3.0, -2.0, -1.0, 0.0, 1.0, 2.0, 4.0}) {
                    double const value = std::ldexp(1.0, power);
                    all.push_back(sign * (value + steps * std::max(1.0, std::ldexp(1.0, power - 53))));
                }
        for (double const low : all)
            for (double const high : all)
                ASSERT_TRUE(isRight(picture, low, high));
    };
    check(0l);
    check(0ul);
}

TEST_F(ThresholdTest, comparesRealsOnBothSidesOfALevelBetweenThem)
{
    for (double const level : {0.1, 1.0 / 3, -2.7, 1e-42, 16777217.0, 3.3e38, -1e-50}) {
        float const nearest = static_cast<float>(level);
        Picture<float> const picture(Shape{5}, {nearest, std::nextafter(nearest, INFINITY),
                                                std::nextafter(nearest, -INFINITY), INFINITY, -INFINITY});
        EXPECT_TRUE(isRight(picture, level, INFINITY));
        EXPECT_TRUE(isRight(picture, -INFINITY, level));
        EXPECT_TRUE(isRight(picture, level, level));
    }
}

TEST_F(ThresholdTest, keepsExactlyOneValueBetweenEqualLevels)
{
    forEachVoxelType([&]<class T>() {
        Picture<T> const picture(Shape{5}, {T(99), T(100), T(101), T(0), T(100)});
        HostImage const in(picture);
        HostImage out(QEL_UINT8, {1});
        threshold->input = &in;
        threshold->output = &out;
        threshold->lowLevel = 100;
        threshold->highLevel = 100;
        threshold->run();
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{5}, {0, 1, 0, 0, 1}), out));
        threshold->lowLevel = 101;
        threshold->run();
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{5}, 0), out));
    });
}

TEST_F(ThresholdTest, keepsWhatIsNoNumber)
{
    Picture<float> const picture(Shape{3}, {std::nanf(""), -std::nanf(""), 7});
    HostImage const in(picture);
    HostImage out(QEL_UINT8, {3});
    threshold->input = &in;
    threshold->output = &out;
    threshold->lowLevel = 10;
    threshold->highLevel = 5;
    threshold->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{3}, {1, 1, 0}), out));
}

TEST_F(ThresholdTest, writesEveryOutputTypeForEveryInputType)
{
    onOneAndFourThreads([&] {
        forEachOutputType([&]<class Out>() {
            forEachVoxelType([&]<class T>() {
                for (Shape const& shape : {Shape{33, 5, 3, 2}, Shape{1025, 11}}) {
                    auto const picture = randomPicture<T>(shape, 1);
                    HostImage const in(picture);
                    HostImage out(VoxelTypeOf<Out>::value, {1, 1});
                    threshold->input = &in;
                    threshold->output = &out;
                    threshold->lowLevel = -2;
                    threshold->highLevel = 100.5;
                    threshold->run();
                    EXPECT_TRUE(samePicture(band<T, Out>(picture, -2, 100.5), out));
                    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
                }
            });
        });
    });
}

TEST_F(ThresholdTest, worksInPlaceOnTheTypesOfItsOutput)
{
    onOneAndFourThreads([&] {
        forEachOutputType([&]<class T>() {
            for (Shape const& shape : {Shape{33, 5, 3, 2}, Shape{1025, 21, 2}}) {
                auto const picture = randomPicture<T>(shape, 1);
                HostImage image(picture);
                threshold->input = &image;
                threshold->output = &image;
                threshold->lowLevel = 3;
                threshold->highLevel = 1000;
                threshold->run();
                EXPECT_TRUE(samePicture(band<T, T>(picture, 3, 1000), image));
                EXPECT_EQ(image.getInterpretation(), QEL_BINARY);
            }
        });
    });
}

TEST_F(ThresholdTest, takesImagesOfTheLibrary)
{
    auto const picture = randomPicture<double>(Shape{1025, 11, 2}, 3, true);
    memory::InMemoryImage const in = toImage(picture);
    memory::InMemoryImage out;
    EXPECT_TRUE(isRight(picture, in, out, -5, 100));
}

TEST_F(ThresholdTest, shapesItsOutputButForTheType)
{
    HostImage in(randomPicture<float>(Shape{4, 3, 2, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage out(QEL_INT16, {1, 1});
    threshold->input = &in;
    threshold->output = &out;
    threshold->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    EXPECT_EQ(in.getInterpretation(), QEL_LABEL);
    out.forgetCalls();
    threshold->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    EXPECT_EQ(out.callsOf(SET_INTERPRETATION), 0u);
}

TEST_F(ThresholdTest, refusesWrongImagesInTheRulesWords)
{
    HostImage in(QEL_FLOAT32, {3, 4, 5, 2});
    HostImage out(QEL_UINT8, {1, 1});
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "Threshold"));
    threshold->input = &in;
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", "Threshold"));
    threshold->output = &out;
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3});
    threshold->input = &complex;
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                             "int16, int32, int64, float32, float64. Current data type is complex float32.",
                             "input", "Threshold"));
    HostImage const spectral(QEL_FLOAT32, {3, 1, 1, 1, 3});
    threshold->input = &spectral;
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The number of spectral series of the parameter \"input\" must be 1. Current size is 3.",
                             "input", "Threshold"));
    threshold->input = &in;
    for (VoxelTypes const type : {QEL_UINT32, QEL_UINT64, QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64}) {
        HostImage wrong(type, {1, 1});
        threshold->output = &wrong;
        EXPECT_QEL_WHAT(threshold->run(), RuleException,
                        ruleText("The parameter \"output\" supports only data type(s): uint8, uint16, int8, int16. "
                                 "Current data type is " +
                                     std::string(helper::VoxelTypesToString(type).c_str()) + ".",
                                 "output", "Threshold"));
        // Sizes come before the type in the list.
        EXPECT_EQ(wrong.sizes(), in.sizes());
        EXPECT_EQ(wrong.callsOf(WRITE_ROW), 0u);
    }
    threshold->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        threshold->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized to fit dimensions of \"input\".", "output", "Threshold"));
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"output\" cannot be re-interpreted from \"QEL_VALUE\" to \"QEL_BINARY\".",
                             "output", "Threshold"));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*threshold));
}

TEST_F(ThresholdTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<double>(Shape{5, 23}, 1);
    for (VoxelTypes const type : {QEL_UINT8, QEL_INT16})
        expectFailingImagesAreReported<Threshold>(
            [&](Threshold& algorithm, HostImages& images) {
                images.push_back(std::make_unique<HostImage>(picture));
                images.push_back(std::make_unique<HostImage>(type, Shape{1, 1}));
                images[0]->setSpacingOf(ROWS, 2);
                algorithm.input = images[0].get();
                algorithm.output = images[1].get();
            },
            [&](HostImages const& images) {
                return type == QEL_UINT8 ? bool(samePicture(band(picture, 0, 255), *images[1]))
                                         : bool(samePicture(band<double, short>(picture, 0, 255), *images[1]));
            });
}

TEST_F(ThresholdTest, callsImagesFromOtherThreadsForRowsAlone)
{
    HostImage const in(randomPicture<float>(Shape{1025, 45, 12}, 1));
    HostImage out(QEL_INT16, {1});
    threshold->input = &in;
    threshold->output = &out;
    withThreads(4, [&] { threshold->run(); });
    EXPECT_TRUE(onlyRowsWereForeign(in));
    EXPECT_TRUE(onlyRowsWereForeign(out));
}

TEST_F(ThresholdTest, runsForAHostThatPolls)
{
    auto const picture = randomPicture<short>(Shape{1025, 21, 11}, 1);
    HostImage const in(picture);
    HostImage out(QEL_UINT8, {1});
    Poller poller;
    threshold->input = &in;
    threshold->output = &out;
    threshold->run(&poller);
    EXPECT_TRUE(samePicture(band(picture, 0, 255), out));
    EXPECT_EQ(poller.last, 100);
    EXPECT_TRUE(poller.isSteady);
}

TEST_F(ThresholdTest, stopsBetweenBlocksWhenCancelled)
{
    auto const picture = randomPicture<short>(Shape{5, 400, 40, 2}, 1);
    ObservedImage in(picture);
    HostImage out(QEL_UINT8, {1});
    threshold->input = &in;
    threshold->output = &out;
    withThreads(1, [&] {
        in.onRead = [&] { threshold->cancelExecution(); };
        threshold->run();
        EXPECT_GT(out.callsOf(WRITE_ROW), 0u);
        EXPECT_LT(out.callsOf(WRITE_ROW), 400u * 40);
        EXPECT_TRUE(isAtRest(*threshold));
        in.onRead = nullptr;
        threshold->run();
        EXPECT_TRUE(samePicture(band(picture, 0, 255), out));
    });
}

} // namespace
} // namespace qel::test
