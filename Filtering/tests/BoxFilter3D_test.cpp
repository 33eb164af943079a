#include "Filtering/tests/BoxModel.h"

#include "Filtering/private/computeWorkType.h"

namespace qel::test {
namespace {

using filtering::smoothing::BoxFilter3D;

class BoxFilter3DTest : public testing::Test
{
protected:
    void connect(ImageModel const& in, ImageModel& out, BoxSides const& sides, bool normalize = true)
    {
        box->input = &in;
        box->output = &out;
        setSides(*box, sides);
        box->normalize = normalize;
    }

    Ref<BoxFilter3D> box = BoxFilter3D::New();
};

TEST_F(BoxFilter3DTest, isRegisteredWithItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("BoxFilter3D"), BoxFilter3D::getClassInfo());
    ASSERT_EQ(box->getNumOfProperties(), 4u);
    EXPECT_EQ(box->getInputProperty(0), &box->input);
    EXPECT_EQ(box->getInputProperty(1), &box->boxSize);
    EXPECT_EQ(box->getInputProperty(2), &box->normalize);
    EXPECT_EQ(box->getOutputProperty(0), &box->output);
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_EQ(box->boxSize.get()[axis], 3u);
    EXPECT_TRUE(box->normalize.get());
    EXPECT_EQ(levelsOf(*box), std::vector<OptimLevelType>{SCALAR});
    box->boxSize = math::Vector3<unsigned int>(4, 7, 9);
    AlgoBorderInfluence const influence = box->getAlgoBorderInfluence();
    unsigned long const expected[] = {2, 2, 3, 3, 4, 4, 0, 0, 0, 0};
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), expected[direction]) << direction;
}

TEST_F(BoxFilter3DTest, givesMeansAndSumsOfEveryVoxelType)
{
    forceLevel(*box, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (BoxSides const sides :
                 {BoxSides{3, 3, 3}, BoxSides{1, 1, 1}, BoxSides{2, 5, 4}, BoxSides{9, 7, 5}, BoxSides{1, 1, 6}}) {
                SCOPED_TRACE(testing::Message() << sides.columns << " by " << sides.rows << " by " << sides.plans);
                auto picture = randomPictureBetween<T>(Shape{19, 11, 8}, seed++, 0, 100);
                if constexpr (sizeof(T) <= 2)
                    picture = randomPicture<T>(Shape{19, 11, 8}, seed++);
                auto const sums = boxSums(picture, sides);
                HostImage const in(picture);
                HostImage out;
                connect(in, out, sides);
                box->run();
                EXPECT_TRUE(samePicture(meansAs<T>(sums, sides), out));
                box->normalize = false;
                box->run();
                VoxelTypes const work = filtering::smoothing::details::computeWorkType(
                    VoxelTypeOf<T>::value, static_cast<unsigned long>(sides.area()));
                ASSERT_EQ(out.getVoxelType(), work);
                forEachVoxelType([&]<class Work>() {
                    if (VoxelTypeOf<Work>::value == work) {
                        EXPECT_TRUE(samePicture(sumsAs<Work>(sums), out));
                    }
                });
            }
        });
    });
}

TEST_F(BoxFilter3DTest, worksOnEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : allShapes()) {
            BoxSides const sides{3, 4, 5};
            auto const picture = randomPictureBetween<float>(shape, seed++, -1000, 1000);
            memory::InMemoryImage const in = toImage(picture);
            HostImage out;
            connect(in, out, sides);
            box->run();
            EXPECT_TRUE(samePicture(meansAs<float>(boxSums(picture, sides), sides), out));
        }
    });
}

TEST_F(BoxFilter3DTest, takesBoxesOfAnySide)
{
    auto const picture = randomPicture<short>(Shape{9, 8, 13}, 5);
    HostImage const in(picture);
    HostImage out;
    for (unsigned int side = 1; side <= 30; ++side)
        for (BoxSides const sides : {BoxSides{side, 1, 1}, BoxSides{1, side, 2}, BoxSides{2, 1, side}}) {
            SCOPED_TRACE(testing::Message() << sides.columns << " by " << sides.rows << " by " << sides.plans);
            connect(in, out, sides);
            box->run();
            EXPECT_TRUE(samePicture(meansAs<short>(boxSums(picture, sides), sides), out));
        }
}

TEST_F(BoxFilter3DTest, givesRealsTheSameBitsOnAnyNumberOfThreads)
{
    auto const picture = randomPicture<float>(Shape{600, 60, 20}, 3);
    HostImage const in(picture);
    for (BoxSides const sides : {BoxSides{3, 3, 3}, BoxSides{31, 10, 17}}) {
        std::vector<unsigned char> first;
        for (int const threads : {1, 2, 3, 8}) {
            HostImage out;
            withThreads(threads, [&] {
                connect(in, out, sides);
                box->run();
            });
            if (threads == 1)
                first = out.content();
            EXPECT_TRUE(out.content() == first);
        }
    }
}

TEST_F(BoxFilter3DTest, leavesAConstantAsItIs)
{
    forEachVoxelType([&]<class T>() {
        for (T const value : {T(1), T(127), T(0.1), T(100)}) {
            HostImage const in(Picture<T>(Shape{9, 7, 5}, value));
            HostImage out;
            connect(in, out, {7, 6, 5});
            box->run();
            if (std::is_same_v<T, double>) { // a sum of doubles is rounded
                EXPECT_NEAR(double(fromImage<T>(out).at(4, 3, 2)), double(value), 1e-14 * double(value));
            } else {
                EXPECT_TRUE(samePicture(Picture<T>(Shape{9, 7, 5}, value), out));
            }
        }
    });
}

TEST_F(BoxFilter3DTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        for (Shape const& shape : {Shape{1, 1}, Shape{70, 33, 9, 2}, Shape{600, 21, 4}}) {
            BoxSides const sides{5, 4, 3};
            auto const picture = randomPicture<unsigned short>(shape, 7);
            HostImage image(picture);
            connect(image, image, sides);
            box->run();
            EXPECT_TRUE(samePicture(meansAs<unsigned short>(boxSums(picture, sides), sides), image));
        }
    });
}

TEST_F(BoxFilter3DTest, givesItsOutputTheTypeOfTheRun)
{
    HostImage in(QEL_INT8, {4, 3, 2, 2});
    in.setInterpretation(QEL_BINARY);
    HostImage out(QEL_FLOAT64, {1, 1});
    connect(in, out, {3, 3, 3}, false);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_VALUE);
    connect(in, out, {7, 7, 7}, false);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT32);
    connect(in, out, {7, 7, 7});
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT8);
}

TEST_F(BoxFilter3DTest, refusesWrongInputInFixedWords)
{
    EXPECT_QEL_WHAT(box->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "BoxFilter3D"));
    HostImage in(QEL_UINT8, {3, 4, 5});
    HostImage out;
    for (BoxSides const sides : {BoxSides{0, 3, 3}, BoxSides{3, 0, 3}, BoxSides{3, 3, 0}}) {
        connect(in, out, sides);
        EXPECT_QEL_THROW(box->run(), InvalidCall, "The box size must be at least 1 on each axis.");
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    in.setInterpretation(QEL_LABEL);
    EXPECT_THROW(box->run(), RuleException);
    EXPECT_TRUE(isAtRest(*box));
}

TEST_F(BoxFilter3DTest, refusesToRetypeItsInput)
{
    auto const picture = randomPicture<short>(Shape{7, 5, 3}, 1);
    HostImage image(picture);
    connect(image, image, {3, 3, 3}, false);
    EXPECT_QEL_WHAT(box->run(), RuleException,
                    ruleText("The parameter \"input\" cannot be used as output image if it must be retyped.", "output",
                             "BoxFilter3D"));
    EXPECT_TRUE(samePicture(picture, image));
    EXPECT_TRUE(isAtRest(*box));
}

TEST_F(BoxFilter3DTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<short>(Shape{5, 9, 4}, 1);
    expectFailingImagesAreReported<BoxFilter3D>(
        [&](BoxFilter3D& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(meansAs<short>(boxSums(picture, {3, 3, 3}), {3, 3, 3}), *images[1]));
        });
}

TEST_F(BoxFilter3DTest, stopsWhenItIsCancelled)
{
    ObservedImage in(QEL_FLOAT32, Shape{32, 32, 400});
    HostImage out;
    connect(in, out, {3, 3, 3});
    in.onRead = [&] { box->cancelExecution(); };
    box->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 3200u);
    in.onRead = nullptr;
    out.forgetCalls();
    box->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 12800u);
    EXPECT_EQ(box->getProgress(), 100);
}

} // namespace
} // namespace qel::test
