#include <qel/point_operations/CopyImage.h>

#include "Core/tests/Support/Algorithms.h"

#include <cstring>

namespace qel::test {
namespace {

using point_operations::CopyImage;

class CopyImageTest : public testing::Test
{
protected:
    Ref<CopyImage> copy = CopyImage::New();
};

template <class T> bool sameBytes(Picture<T> const& picture, HostImage const& image)
{
    return image.content().size() == picture.voxels.size() * sizeof(T) &&
           (picture.voxels.empty() ||
            std::memcmp(image.content().data(), picture.voxels.data(), image.content().size()) == 0);
}

TEST_F(CopyImageTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(CopyImage::getClassInfo()->getName(), String("CopyImage"));
    EXPECT_EQ(CopyImage::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(copy->getInfo(), CopyImage::getClassInfo());
    EXPECT_EQ(AlgoInfo::fromName("CopyImage"), CopyImage::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("CopyImage")->createInstance();
    EXPECT_NE(dynamic_cast<CopyImage*>(other.get()), nullptr);
}

TEST_F(CopyImageTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*copy), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*copy), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(copy->getPropertyfromName("input"), &copy->input);
    EXPECT_EQ(copy->getPropertyfromName("output"), &copy->output);
    EXPECT_TRUE(hasNoBorder(*copy));
    EXPECT_EQ(levelsOf(*copy), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(CopyImageTest, copiesEveryBitOfEveryTypeAndShape)
{
    forceLevel(*copy, SCALAR);
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes()) {
                auto const picture = randomPicture<T>(shape, seed++, true);
                HostImage const in(picture);
                HostImage out;
                copy->input = &in;
                copy->output = &out;
                copy->run();
                EXPECT_EQ(out.getVoxelType(), in.getVoxelType());
                EXPECT_EQ(out.sizes(), shape);
                EXPECT_TRUE(sameBytes(picture, out)) << shape;
            }
        });
    });
}

TEST_F(CopyImageTest, copiesBetweenImagesOfTheLibraryAndOfAHost)
{
    auto const picture = randomPicture<float>(Shape{1025, 11, 2}, 3);
    memory::InMemoryImage const in = toImage(picture);
    HostImage out;
    copy->input = &in;
    copy->output = &out;
    copy->run();
    EXPECT_TRUE(samePicture(picture, out));

    HostImage givesRows(picture);
    givesRows.giveRows();
    memory::InMemoryImage back;
    copy->input = &givesRows;
    copy->output = &back;
    copy->run();
    EXPECT_TRUE(samePicture(picture, back));
}

TEST_F(CopyImageTest, copiesALargeVolumeOfShortRows)
{
    auto const picture = randomPicture<unsigned int>(Shape{512, 512, 17}, 6); // more than 16 MB
    memory::InMemoryImage in = toImage(picture);
    memory::InMemoryImage out;
    copy->input = &in;
    copy->output = &out;
    onOneAndFourThreads([&] {
        copy->run();
        EXPECT_TRUE(samePicture(picture, out));
        std::memset(out.getInternalBuffer(), 0, 4 * picture.voxels.size());
    });
}

TEST_F(CopyImageTest, takesOverCalibrationAndInterpretation)
{
    HostImage in(randomPicture<short>(Shape{5, 4, 3, 2, 2}, 1));
    for (Components const axis : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        in.setSpacingOf(axis, 0.5 + int(axis));
        in.setOriginOf(axis, -3.0 * int(axis));
    }
    in.setInterpretation(QEL_LABEL);
    in.setSpatialUnitName("mm");
    HostImage out;
    out.setSpatialUnitName("inch");
    copy->input = &in;
    copy->output = &out;
    copy->run();
    for (Components const axis : {COLUMNS, ROWS, PLANS, TIME_SERIES, SPECTRAL_SERIES}) {
        EXPECT_EQ(out.getSpacingOf(axis), 0.5 + int(axis));
        EXPECT_EQ(out.getOriginOf(axis), -3.0 * int(axis));
    }
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_EQ(out.getSpatialUnitName(), String("inch"));
}

TEST_F(CopyImageTest, reservesOnlyAnOutputOfAnotherTypeOrSize)
{
    HostImage const in(randomPicture<int>(Shape{5, 4}, 1));
    HostImage out(QEL_INT32, {5, 4});
    copy->input = &in;
    copy->output = &out;
    copy->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    HostImage otherType(QEL_UINT32, {5, 4});
    copy->output = &otherType;
    copy->run();
    EXPECT_EQ(otherType.callsOf(RESERVE), 1u);
    EXPECT_EQ(otherType.getVoxelType(), QEL_INT32);
    HostImage otherSize(QEL_INT32, {4, 5});
    copy->output = &otherSize;
    copy->run();
    EXPECT_EQ(otherSize.callsOf(RESERVE), 1u);
    EXPECT_EQ(otherSize.content(), in.content());
}

TEST_F(CopyImageTest, refusesWrongImagesInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out(QEL_UINT8, {3, 3});
    EXPECT_QEL_WHAT(copy->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", "CopyImage"));
    copy->input = &in;
    EXPECT_QEL_WHAT(copy->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", "CopyImage"));
    copy->output = &in;
    EXPECT_QEL_WHAT(copy->run(), RuleException,
                    ruleText("The parameter \"output\" (value=" + addressText(static_cast<ImageModel*>(&in)) +
                                 ") must be not equal to the parameter \"input\" (value=" +
                                 addressText(static_cast<ImageModel const*>(&in)) + ").",
                             "output", "CopyImage"));
    HostImage complex(QEL_COMPLEX_FLOAT64, {3, 3});
    copy->input = &complex;
    copy->output = &out;
    EXPECT_QEL_WHAT(copy->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                             "int16, int32, int64, float32, float64. Current data type is complex float64.",
                             "input", "CopyImage"));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*copy));
    copy->input = &in;
    copy->run();
    EXPECT_EQ(out.content(), in.content());
}

TEST_F(CopyImageTest, reportsAnOutputThatCannotTakeTheShapeOrInterpretation)
{
    HostImage in(QEL_UINT8, {3, 3});
    in.setInterpretation(QEL_BINARY);
    HostImage out;
    copy->input = &in;
    copy->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        copy->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", "CopyImage"));
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(copy->run(), RuleException,
                    ruleText("The parameter \"output\" (QEL_VALUE) cannot be interpreted like \"input\" (QEL_BINARY).",
                             "output", "CopyImage"));
    out.behave();
    copy->run();
    EXPECT_EQ(out.content(), in.content());
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
}

TEST_F(CopyImageTest, reportsImagesThatFailDuringTheRun)
{
    expectFailingImagesAreReported<CopyImage>(
        [](CopyImage& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(randomPicture<short>(Shape{7, 25, 2}, 1)));
            images.push_back(std::make_unique<HostImage>());
            images[0]->setSpacingOf(ROWS, 2);
            images[0]->setOriginOf(ROWS, 5);
            images[0]->setInterpretation(QEL_LABEL);
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [](HostImages const& images) { return images[0]->content() == images[1]->content(); });
}

TEST_F(CopyImageTest, callsImagesFromOtherThreadsForRowsAlone)
{
    HostImage in(randomPicture<short>(Shape{2049, 45, 12}, 1));
    HostImage out;
    copy->input = &in;
    copy->output = &out;
    withThreads(4, [&] { copy->run(); });
    EXPECT_TRUE(onlyRowsWereForeign(in));
    EXPECT_TRUE(onlyRowsWereForeign(out));
}

TEST_F(CopyImageTest, reportsProgressToAHostThatPolls)
{
    auto const picture = randomPicture<int>(Shape{1025, 21, 11}, 1);
    HostImage const in(picture);
    HostImage out;
    Poller poller;
    copy->input = &in;
    copy->output = &out;
    onOneAndFourThreads([&] {
        out.reserve(QEL_UINT8, 1, 1, 1, 1, 1);
        poller.last = 0;
        copy->run(&poller);
        EXPECT_TRUE(samePicture(picture, out));
        EXPECT_EQ(poller.last, 100);
        EXPECT_TRUE(poller.isSteady);
        EXPECT_EQ(copy->getProgress(), 100);
    });
}

TEST_F(CopyImageTest, stopsBetweenBlocksWhenCancelled)
{
    auto const picture = randomPicture<unsigned char>(Shape{5, 400, 40, 2}, 1);
    ObservedImage in(picture);
    HostImage out;
    copy->input = &in;
    copy->output = &out;
    withThreads(1, [&] {
        in.onRead = [&] { copy->cancelExecution(); };
        copy->run();
        unsigned long const rowsOfOneBlock = out.callsOf(WRITE_ROW);
        EXPECT_GT(rowsOfOneBlock, 0u);
        EXPECT_LT(rowsOfOneBlock, 400u * 40);
        EXPECT_LT(copy->getProgress(), 100);
        EXPECT_TRUE(isAtRest(*copy));

        in.onRead = nullptr;
        copy->run();
        EXPECT_TRUE(samePicture(picture, out));
        EXPECT_EQ(copy->getProgress(), 100);
    });
}

TEST_F(CopyImageTest, stopsWhenAPollingHostCancels)
{
    auto const picture = randomPicture<unsigned char>(Shape{5, 400, 40}, 1);
    ObservedImage in(picture);
    HostImage out;
    copy->input = &in;
    copy->output = &out;
    Poller poller;
    in.onRead = [&] {
        poller.wantsToCancel = true;
        for (int i = 0; i < 5000 && !poller.hasCancelled; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        // What was asked for reaches the run a moment later.
        for (int i = 0; i < 5000 && !copy->isExecutionCancelled(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    };
    copy->run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    EXPECT_LT(out.callsOf(WRITE_ROW), 400u * 40);
    EXPECT_TRUE(isAtRest(*copy));
    in.onRead = nullptr;
    copy->run();
    EXPECT_TRUE(samePicture(picture, out));
}

} // namespace
} // namespace qel::test
