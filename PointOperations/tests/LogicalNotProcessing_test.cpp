#include <qel/point_operations/LogicalNotProcessing.h>

#include "PointOperations/tests/OperatorModels.h"

namespace qel::test {
namespace {

using point_operations::LogicalNotProcessing;

template <class T> Picture<T> complemented(Picture<T> picture)
{
    for (T& voxel : picture.voxels)
        voxel = static_cast<T>(-1 - static_cast<long>(voxel));
    return picture;
}

class LogicalNotProcessingTest : public testing::Test
{
protected:
    Ref<LogicalNotProcessing> logical = LogicalNotProcessing::New();
    HostImage out;
};

TEST_F(LogicalNotProcessingTest, isRegisteredUnderItsName)
{
    expectRegistered<LogicalNotProcessing>("LogicalNotProcessing");
}

TEST_F(LogicalNotProcessingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*logical), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*logical), std::vector<std::string>({"image output = null"}));
}

TEST_F(LogicalNotProcessingTest, complementsEveryTypeAndShape)
{
    forceLevel(*logical, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachIntegerVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                auto const picture = randomPicture<T>(shape, seed++);
                memory::InMemoryImage in = toImage(picture);
                HostImage result;
                logical->input = &in;
                logical->output = &result;
                logical->run();
                EXPECT_TRUE(samePicture(complemented(picture), result));
                logical->output = &in;
                logical->run();
                EXPECT_TRUE(samePicture(complemented(picture), in));
                logical->run();
                EXPECT_TRUE(samePicture(picture, in));
            }
        });
    });
}

TEST_F(LogicalNotProcessingTest, complementsAllBitsOfABinaryImage)
{
    HostImage in(Picture<unsigned char>(Shape{2}, {0, 1}));
    in.setInterpretation(QEL_BINARY);
    in.setSpacingOf(ROWS, 3);
    logical->input = &in;
    logical->output = &out;
    logical->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2}, {255, 254}), out));
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
    EXPECT_TRUE(sameCalibration(in, out));
}

TEST_F(LogicalNotProcessingTest, refusesWrongImagesInTheRulesWords)
{
    std::string const name = "LogicalNotProcessing";
    HostImage const in(QEL_UINT8, {3, 3});
    HostImage const real(QEL_FLOAT64, {3, 3});
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    logical->input = &real;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, "
                             "int8, int16, int32, int64. Current data type is float64.",
                             "input", name));
    logical->input = &in;
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    logical->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        logical->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", name));
    EXPECT_TRUE(isAtRest(*logical));
}

TEST_F(LogicalNotProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<LogicalNotProcessing>(
        [&](LogicalNotProcessing& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(complemented(picture), *images[1])); });
}

} // namespace
} // namespace qel::test
