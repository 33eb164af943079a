#include "Filtering/tests/NonLocalMeanModel.h"

namespace qel::test {
namespace {

using filtering::smoothing::NonLocalMeanFilter3D;
using namespace filtering::smoothing; // the literals of the shape

class NonLocalMeanFilter3DTest : public testing::Test
{
protected:
    void connect(ImageModel const& in, ImageModel& out, NonLocalMeans const& p)
    {
        filter->input = &in;
        filter->output = &out;
        filter->patchSize = static_cast<unsigned int>(p.patch);
        filter->searchWindowSize = static_cast<unsigned int>(p.window);
        filter->similarity = Scalar(p.similarity);
        filter->searchWindowShape = p.isRound ? QEL_BALL : QEL_CUBE;
    }

    Ref<NonLocalMeanFilter3D> filter = NonLocalMeanFilter3D::New();
};

TEST_F(NonLocalMeanFilter3DTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("NonLocalMeanFilter3D"), NonLocalMeanFilter3D::getClassInfo());
    ASSERT_EQ(filter->getNumOfProperties(), 6u);
    EXPECT_EQ(filter->getInputProperty(0), &filter->input);
    EXPECT_EQ(filter->getInputProperty(1), &filter->patchSize);
    EXPECT_EQ(filter->getInputProperty(2), &filter->searchWindowSize);
    EXPECT_EQ(filter->getInputProperty(3), &filter->similarity);
    EXPECT_EQ(filter->getInputProperty(4), &filter->searchWindowShape);
    EXPECT_EQ(filter->getOutputProperty(0), &filter->output);
    EXPECT_EQ(filter->patchSize.get(), 3u);
    EXPECT_EQ(filter->searchWindowSize.get(), 6u);
    EXPECT_EQ(filter->similarity.get().asDouble(), 0.6);
    EXPECT_EQ(filter->searchWindowShape.get(), QEL_CUBE);
    EXPECT_EQ(filter->searchWindowShape.getEnumInfo()->getEnumName(), String("NeighborhoodShape3DType"));
    EXPECT_EQ(filter->searchWindowShape.getEnumInfo()->getLabelFromValue(1), String("QEL_BALL"));
    AlgoBorderInfluence const influence = filter->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= PLANS_POSITIVE ? 6u : 0u);
}

TEST_F(NonLocalMeanFilter3DTest, followsItsDefinitionForEveryVoxelType)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            NonLocalMeans const p{1, 1, 6.5, false, true};
            auto const picture = noisyPicture<T>(Shape{11, 9, 6}, seed++);
            HostImage const in(picture);
            HostImage out;
            connect(in, out, p);
            filter->run();
            EXPECT_TRUE(closeTo<T>(nonLocalMeans(picture, p), out));
        });
    });
}

TEST_F(NonLocalMeanFilter3DTest, followsItsDefinitionForEverySizeAndShape)
{
    unsigned seed = 1;
    for (NonLocalMeans const p : {NonLocalMeans{1, 2, 5, false, true}, NonLocalMeans{0, 1, 3, false, true},
                                  NonLocalMeans{2, 2, 8, true, true}, NonLocalMeans{1, 0, 1, false, true}})
        for (Shape const& shape : {Shape{1, 1}, Shape{1, 5, 3}, Shape{7, 1, 2}, Shape{6, 5, 4}, Shape{5, 4, 2, 2, 2}}) {
            SCOPED_TRACE(testing::Message() << shape << ", patch " << p.patch << ", window " << p.window);
            auto const picture = noisyPicture<double>(shape, seed++);
            memory::InMemoryImage const in = toImage(picture);
            memory::InMemoryImage out;
            connect(in, out, p);
            filter->run();
            EXPECT_TRUE(closeTo<double>(nonLocalMeans(picture, p), out));
        }
}

TEST_F(NonLocalMeanFilter3DTest, leavesAConstantAsItIsEdgesIncluded)
{
    forEachVoxelType([&]<class T>() {
        HostImage const in(Picture<T>(Shape{6, 5, 4}, T(100)));
        HostImage out;
        connect(in, out, {2, 2, 0.6});
        filter->run();
        EXPECT_TRUE(samePicture(Picture<T>(Shape{6, 5, 4}, T(100)), out));
    });
}

TEST_F(NonLocalMeanFilter3DTest, worksInPlace)
{
    NonLocalMeans const p{1, 1, 9, false, true};
    auto const picture = noisyPicture<short>(Shape{9, 8, 5}, 4);
    HostImage image(picture);
    connect(image, image, p);
    filter->run();
    EXPECT_TRUE(closeTo<short>(nonLocalMeans(picture, p), image));
}

TEST_F(NonLocalMeanFilter3DTest, countsItsSteps)
{
    HostImage const in(noisyPicture<short>(Shape{5, 4, 3}, 4));
    HostImage out;
    connect(in, out, {1, 1, 9});
    filter->run();
    // 13 offsets of four steps, and three to close up.
    EXPECT_NEAR(filter->getProgress(), 100.0 * (13 * 4 + 3) / (8 * 3 * 3 + 5), 1e-9);
}

TEST_F(NonLocalMeanFilter3DTest, stopsWhenItIsCancelled)
{
    ObservedImage in(noisyPicture<float>(Shape{16, 16, 8}, 1));
    HostImage out;
    connect(in, out, {1, 2, 4});
    std::atomic<unsigned long> reads = 0;
    in.onRead = [&] {
        if (++reads > 50)
            filter->cancelExecution();
    };
    filter->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*filter));
}

TEST_F(NonLocalMeanFilter3DTest, refusesWrongInputInTheRulesWords)
{
    EXPECT_QEL_WHAT(filter->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "NonLocalMeanFilter3D"));
    HostImage in(QEL_UINT8, {3, 4, 2});
    in.setInterpretation(QEL_LABEL);
    HostImage out;
    connect(in, out, {1, 1, 1});
    EXPECT_THROW(filter->run(), RuleException);
    in.setInterpretation(QEL_VALUE);
    filter->searchWindowShape = -1;
    EXPECT_THROW(filter->run(), RuleException);
    EXPECT_TRUE(isAtRest(*filter));
}

} // namespace
} // namespace qel::test
