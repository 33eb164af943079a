#include <qel/morphology/EuclideanDistanceMap.h>

#include "Morphology/tests/DistanceModel.h"

#include <qel/memory/InMemoryImage.h>

namespace qel::test {
namespace {

using morphology::EuclideanDistanceMap;

constexpr float farthest = std::numeric_limits<float>::max();

class EuclideanDistanceMapTest : public testing::Test
{
protected:
    template <class T> Picture<float> mapOf(Picture<T> const& picture, Spacings const& spacings, int region, int border)
    {
        HostImage in(picture);
        in.setInterpretation(QEL_BINARY);
        setSpacings(in, spacings);
        HostImage result;
        map->input = &in;
        map->regionType = region;
        map->borderCondition = border;
        map->output = &result;
        map->run();
        EXPECT_TRUE(samePicture(picture, in));
        return fromImage<float>(result);
    }
    template <class T>
    void expectLikeTheModel(Picture<T> const& picture, Spacings const& spacings, int region, int border)
    {
        SCOPED_TRACE(testing::Message() << voxelTypeName<T>() << ' ' << picture.shape << " region " << region
                                        << " border " << border << " spacings " << spacings[0] << ' ' << spacings[1]
                                        << ' ' << spacings[2]);
        DistanceModel<T> const model(picture, spacings, region == morphology::OUTSIDE, border == morphology::MIRROR);
        EXPECT_TRUE(samePicture(model.distances(), mapOf(picture, spacings, region, border)));
    }

    Ref<EuclideanDistanceMap> map = EuclideanDistanceMap::New();
    std::string const name = "EuclideanDistanceMap";
};

TEST_F(EuclideanDistanceMapTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(AlgoInfo::fromName("EuclideanDistanceMap"), EuclideanDistanceMap::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("EuclideanDistanceMap")->createInstance();
    EXPECT_NE(dynamic_cast<EuclideanDistanceMap*>(other.get()), nullptr);
    EXPECT_EQ(levelsOf(*map), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(EuclideanDistanceMapTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*map),
              std::vector<std::string>({"const image input = null", "RegionType regionType = INSIDE",
                                        "BorderCondition borderCondition = ZERO"}));
    EXPECT_EQ(describedOutputs(*map), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(map->regionType.getEnumInfo()->getLabelFromValue(1), String("OUTSIDE"));
    EXPECT_EQ(map->borderCondition.getEnumInfo()->getLabelFromValue(1), String("MIRROR"));
}

TEST_F(EuclideanDistanceMapTest, reachesOverWholePlans)
{
    AlgoBorderInfluence const influence = map->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= ROWS_POSITIVE ? std::numeric_limits<unsigned long>::max() : 0);
}

TEST_F(EuclideanDistanceMapTest, spreadsInTheOrderOfDistanceAndOfArrival)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        FewerRounds rounds;
        forEachBinaryType([&]<class T>() {
            for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{7, 1}, Shape{5, 4, 3}, Shape{33, 5, 3},
                                       Shape{23, 19, 21}, Shape{1025, 35}, Shape{67, 33, 17}})
                for (unsigned const percent : {50u, 90u, 99u}) {
                    if (rounds.leaveThisOut())
                        continue;
                    int const variant = static_cast<int>(seed % 4);
                    Spacings const spacings[] = {{1, 1, 1}, {0.3, 0.3, 0.3}, {1, 2, 0.7}, {1e-3, 1.7e-3, 5e-3}};
                    expectLikeTheModel(binaryPicture<T>(shape, seed, percent), spacings[seed / 2 % 4], variant % 2,
                                       variant / 2);
                    ++seed;
                }
        });
    });
}

TEST_F(EuclideanDistanceMapTest, isNeverBelowTheTrueDistanceAndSeldomAboveIt)
{
    auto const picture = binaryPicture<unsigned char>(Shape{21, 20, 19}, 5, 97);
    DistanceModel<unsigned char> const model(picture, {1, 1, 1}, false, true);
    auto const distances = mapOf(picture, {1, 1, 1}, morphology::INSIDE, morphology::MIRROR);
    std::size_t farther = 0, inside = 0;
    forEachVoxel(picture.shape, [&](long x, long y, long z, long, long) {
        if (picture.at(x, y, z) == 0) {
            EXPECT_EQ(distances.at(x, y, z), 0);
            return;
        }
        double nearest = farthest;
        for (BoundaryPoint const& point : model.boundary())
            nearest = std::min(nearest,
                               std::hypot(double(x) - double(point.position[0]), double(y) - double(point.position[1]),
                                          double(z) - double(point.position[2])));
        ++inside;
        EXPECT_GE(distances.at(x, y, z), nearest * (1 - 1e-6));
        EXPECT_LE(distances.at(x, y, z), nearest + 0.5);
        farther += distances.at(x, y, z) > nearest * (1 + 1e-6);
    });
    EXPECT_LT(farther * 20, inside);
}

TEST_F(EuclideanDistanceMapTest, givesHalfAVoxelToASingleVoxel)
{
    for (double const spacing : {1.0, 0.25, 3.0}) {
        Picture<unsigned char> picture(Shape{5, 5, 5});
        picture.at(2, 2, 2) = 1;
        Picture<float> expected(picture.shape);
        expected.at(2, 2, 2) = static_cast<float>(spacing / 2);
        EXPECT_TRUE(
            samePicture(expected, mapOf(picture, {spacing, spacing, spacing}, morphology::INSIDE, morphology::ZERO)));
    }
}

TEST_F(EuclideanDistanceMapTest, takesTheOutsideForBackgroundOrForAMirror)
{
    Picture<unsigned char> picture(Shape{9, 1, 1}, 1);
    picture.at(8) = 0;
    // Above, below, before and behind the line lies the outside.
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, {.5f, .5f, .5f, .5f, .5f, .5f, .5f, .5f, 0}),
                            mapOf(picture, {1, 1, 1}, morphology::INSIDE, morphology::ZERO)));
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, {7.5f, 6.5f, 5.5f, 4.5f, 3.5f, 2.5f, 1.5f, .5f, 0}),
                            mapOf(picture, {1, 1, 1}, morphology::INSIDE, morphology::MIRROR)));
}

TEST_F(EuclideanDistanceMapTest, leavesARegionWithoutBoundaryAtTheLargestFloat)
{
    Picture<short> const picture(Shape{11, 4, 3}, -5);
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, farthest),
                            mapOf(picture, {1, 1, 1}, morphology::INSIDE, morphology::MIRROR)));
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, 0),
                            mapOf(picture, {1, 1, 1}, morphology::OUTSIDE, morphology::ZERO)));
}

TEST_F(EuclideanDistanceMapTest, startsHalfARowSpacingFromTheOutsideInASinglePlan)
{
    Picture<unsigned char> const picture(Shape{7, 7}, 1);
    for (float const distance : mapOf(picture, {10, 4, 10}, morphology::INSIDE, morphology::ZERO).voxels)
        EXPECT_EQ(distance, 2.0f);
}

TEST_F(EuclideanDistanceMapTest, measuresTheComplementOutside)
{
    auto picture = binaryPicture<unsigned short>(Shape{13, 12, 11}, 3, 60);
    picture.at(3, 3, 3) = 256; // not 0 in its low byte alone
    auto complement = picture;
    for (auto& voxel : complement.voxels)
        voxel = voxel == 0;
    EXPECT_TRUE(samePicture(mapOf(complement, {1, 2, 3}, morphology::INSIDE, morphology::ZERO),
                            mapOf(picture, {1, 2, 3}, morphology::OUTSIDE, morphology::ZERO)));
}

TEST_F(EuclideanDistanceMapTest, countsAColumnOfVoxelsInStepsOfItsSpacing)
{
    Picture<unsigned char> picture(Shape{1, 1, 6}, 1);
    picture.at(0, 0, 0) = 0;
    // The boundary itself lies half a spacing of rows away.
    auto const distances = mapOf(picture, {1, 2, 5}, morphology::INSIDE, morphology::MIRROR);
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, {0, 1, 6, 11, 16, 21}), distances));
}

TEST_F(EuclideanDistanceMapTest, endsWithSpacingsThatMakeNoSense)
{
    auto const picture = binaryPicture<unsigned char>(Shape{19, 18, 7}, 8, 80);
    double const nan = std::nan("");
    for (Spacings const& spacings :
         {Spacings{0, 0, 0}, Spacings{0, 1, 1}, Spacings{1, 0, 1}, Spacings{1, 1, 0}, Spacings{-1, -1, -1},
          Spacings{INFINITY, 1, 1}, Spacings{1, INFINITY, INFINITY}, Spacings{nan, 1, 1}, Spacings{1, nan, 1},
          Spacings{1, 1, nan}, Spacings{1e300, 1e300, 1e300}, Spacings{1e-300, 1, 1e-30}, Spacings{1e20, 2e20, 1e19},
          Spacings{1e-20, 2e-20, 1e-21}, Spacings{1e-13, 1, 1e14}})
        for (int const border : {morphology::ZERO, morphology::MIRROR})
            expectLikeTheModel(picture, spacings, morphology::INSIDE, border);
}

TEST_F(EuclideanDistanceMapTest, shapesItsOutputLikeItsInputAndKeepsItsInterpretation)
{
    HostImage in(binaryPicture<unsigned char>(Shape{6, 5, 4}, 1, 50));
    in.setInterpretation(QEL_BINARY);
    setSpacings(in, {1, 2, 3});
    in.setOriginOf(PLANS, -7);
    HostImage out(QEL_UINT16, {1, 1});
    out.setInterpretation(QEL_LABEL);
    map->input = &in;
    map->output = &out;
    map->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_TRUE(sameCalibration(in, out));
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    out.forgetCalls();
    map->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(EuclideanDistanceMapTest, refusesWrongParametersInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out;
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, name);
    };
    EXPECT_QEL_WHAT(map->run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    HostImage const wide(QEL_INT32, {3, 3});
    map->input = &wide;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" supports only data type(s): uint8, uint16, int8, int16. Current data "
                         "type is int32.",
                         "input"));
    map->input = &in;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.", "input"));
    in.setInterpretation(QEL_BINARY);
    for (Shape const& shape : {Shape{3, 3, 1, 1, 2}, Shape{3, 3, 1, 2, 1}}) {
        HostImage series(QEL_UINT8, shape);
        series.setInterpretation(QEL_BINARY);
        map->input = &series;
        EXPECT_QEL_WHAT(map->run(), RuleException,
                        text("The number of " + std::string(shape.timeSeries > 1 ? "time" : "spectral") +
                                 " series of the parameter \"input\" must be 1. Current size is 2.",
                             "input"));
    }
    map->input = &in;
    map->regionType = 2;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The value of the parameter \"regionType\" is not valid", "regionType"));
    map->regionType = morphology::OUTSIDE;
    map->borderCondition = -1;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The value of the parameter \"borderCondition\" is not valid", "borderCondition"));
    map->borderCondition = morphology::MIRROR;
    EXPECT_QEL_WHAT(map->run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    map->output = &in;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" cannot be used as output image if it must be retyped.", "output"));
    EXPECT_EQ(in.callsOf(RESERVE), 0u);
    EXPECT_TRUE(isAtRest(*map));
}

TEST_F(EuclideanDistanceMapTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = binaryPicture<unsigned char>(Shape{5, 23}, 1, 70);
    Picture<float> const expected = DistanceModel<unsigned char>(picture, {1, 1, 1}, false, false).distances();
    auto const attempt = [&](auto const& spoil, std::string const& text) {
        HostImage in(picture);
        in.setInterpretation(QEL_BINARY);
        setSpacings(in, {1, 1, 1});
        HostImage out;
        map->input = &in;
        map->output = &out;
        spoil(in, out);
        Poller poller;
        EXPECT_QEL_WHAT(map->run(), UnexpectedError, text);
        EXPECT_QEL_WHAT(map->run(&poller), UnexpectedError, text);
        EXPECT_TRUE(isAtRest(*map));
        in.behave();
        out.behave();
        map->run();
        EXPECT_TRUE(samePicture(expected, out));
    };
    attempt([](HostImage& in, HostImage&) { in.failOn(READ_ROW, 5); },
            errorText("Error in readRowAt implementation, return value is false", name));
    attempt([](HostImage& in, HostImage&) { in.throwOn(READ_ROW, 5); }, foreignErrorText("host failure", name));
    // The copy to the host's image is an algorithm of its own, and gives its name.
    attempt([](HostImage&, HostImage& out) { out.failOn(WRITE_ROW, 3); },
            errorText("Error in writeRowAt implementation, return value is false", "CopyImage \n#3 From " + name));
    attempt([](HostImage&, HostImage& out) { out.throwOn(WRITE_ROW, 3); },
            foreignErrorText("host failure", "CopyImage \n#2 From " + name));
}

TEST_F(EuclideanDistanceMapTest, stopsWhenItIsCancelled)
{
    memory::InMemoryImage const in = [] {
        memory::InMemoryImage image = toImage(Picture<unsigned char>(Shape{128, 128, 64}, 1));
        image.setInterpretation(QEL_BINARY);
        setSpacings(image, {1, 1, 1});
        return image;
    }();
    HostImage out;
    map->input = &in;
    map->output = &out;
    Poller poller;
    poller.wantsToCancel = true;
    map->run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_TRUE(isAtRest(*map));
    map->run();
    EXPECT_EQ(fromImage<float>(out).at(64, 64, 32), 31.5f);
}

} // namespace
} // namespace qel::test
