#include <qel/point_operations/LogicalImageProcessing.h>

#include "PointOperations/tests/OperatorModels.h"

namespace qel::test {
namespace {

using namespace point_operations;

class LogicalImageProcessingTest : public testing::Test
{
protected:
    void connect(ImageModel const& first, ImageModel const& second, ImageModel& result)
    {
        logical->input1 = &first;
        logical->input2 = &second;
        logical->output = &result;
    }

    Ref<LogicalImageProcessing> logical = LogicalImageProcessing::New();
    HostImage out;
};

TEST_F(LogicalImageProcessingTest, isRegisteredUnderItsName)
{
    expectRegistered<LogicalImageProcessing>("LogicalImageProcessing");
}

TEST_F(LogicalImageProcessingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*logical),
              std::vector<std::string>({"const image input1 = null", "const image input2 = null",
                                        "BinaryLogicalOperatorType logicalOperator = LOGICAL_AND"}));
    EXPECT_EQ(describedOutputs(*logical), std::vector<std::string>({"image output = null"}));
    EnumInfo const& info = *logical->logicalOperator.getEnumInfo();
    EXPECT_EQ(info.getNumOfValues(), 7u);
    char const* const labels[] = {"LOGICAL_AND", "LOGICAL_OR",   "LOGICAL_XOR", "LOGICAL_NAND",
                                  "LOGICAL_NOR", "LOGICAL_NXOR", "LOGICAL_SUB"};
    for (int op = LOGICAL_AND; op <= LOGICAL_SUB; ++op)
        EXPECT_EQ(info.getLabelFromValue(op), String(labels[op]));
}

TEST_F(LogicalImageProcessingTest, combinesEveryTypeByEveryOperator)
{
    forceLevel(*logical, SCALAR);
    unsigned seed = 1;
    forEachIntegerVoxelType([&]<class T>() {
        for (int op = LOGICAL_AND; op <= LOGICAL_SUB; ++op) {
            SCOPED_TRACE(testing::Message() << "operator " << op << ", seed " << seed);
            Shape const shape{167, 3, 2, 2, 2};
            auto const first = randomPicture<T>(shape, seed++);
            auto const second = randomPicture<T>(shape, seed++);
            HostImage const a(first);
            HostImage const b(second);
            connect(a, b, out);
            logical->logicalOperator = op;
            logical->run();
            EXPECT_TRUE(samePicture(combined(first, second, [op](T x, T y) { return logicalResult(op, x, y); }), out));
        }
    });
}

TEST_F(LogicalImageProcessingTest, worksOnEveryShapeOutOfPlaceAndInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachIntegerVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                int const op = static_cast<int>(seed % 7);
                SCOPED_TRACE(testing::Message() << "operator " << op << ", seed " << seed);
                auto const first = randomPicture<T>(shape, seed++);
                auto const second = randomPicture<T>(shape, seed++);
                auto const expected = combined(first, second, [op](T x, T y) { return logicalResult(op, x, y); });
                memory::InMemoryImage a = toImage(first);
                memory::InMemoryImage b = toImage(second);
                memory::InMemoryImage result;
                connect(a, b, result);
                logical->logicalOperator = op;
                logical->run();
                EXPECT_TRUE(samePicture(expected, result));
                logical->output = &a;
                logical->run();
                EXPECT_TRUE(samePicture(expected, a));
                a = toImage(first);
                logical->output = &b;
                logical->run();
                EXPECT_TRUE(samePicture(expected, b));
                connect(a, a, a);
                logical->run();
                EXPECT_TRUE(samePicture(combined(first, first, [op](T x, T y) { return logicalResult(op, x, y); }), a));
            }
        });
    });
}

TEST_F(LogicalImageProcessingTest, complementsAllBitsOfABinaryImage)
{
    HostImage ones(Picture<unsigned char>(Shape{1}, {1}));
    ones.setInterpretation(QEL_BINARY);
    connect(ones, ones, out);
    logical->logicalOperator = LOGICAL_NAND;
    logical->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{1}, {254}), out));
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
}

TEST_F(LogicalImageProcessingTest, keepsWithSubTheBitsThatTheSecondImageHasNot)
{
    HostImage const a(Picture<unsigned char>(Shape{4}, {0, 0, 3, 3}));
    HostImage const b(Picture<unsigned char>(Shape{4}, {0, 1, 0, 1}));
    connect(a, b, out);
    logical->logicalOperator = LOGICAL_SUB;
    logical->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{4}, {0, 0, 3, 2}), out));
}

TEST_F(LogicalImageProcessingTest, shapesItsOutputLikeItsFirstInput)
{
    HostImage a(randomPicture<unsigned short>(Shape{4, 3, 2, 2, 2}, 1));
    HostImage b(randomPicture<unsigned short>(Shape{4, 3, 2, 2, 2}, 2));
    a.setInterpretation(QEL_LABEL);
    a.setSpacingOf(PLANS, 7);
    b.setOriginOf(TIME_SERIES, -1);
    HostImage result(QEL_FLOAT64, {1, 1});
    connect(a, b, result);
    logical->run();
    EXPECT_EQ(result.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(result.sizes(), a.sizes());
    EXPECT_EQ(result.getInterpretation(), QEL_LABEL);
    EXPECT_TRUE(sameCalibration(a, result));
    result.forgetCalls();
    logical->run();
    EXPECT_EQ(result.callsOf(RESERVE), 0u);
}

TEST_F(LogicalImageProcessingTest, refusesWrongParametersInTheRulesWords)
{
    std::string const name = "LogicalImageProcessing";
    HostImage a(QEL_UINT8, {3, 3});
    HostImage b(QEL_UINT8, {3, 3});
    HostImage const real(QEL_FLOAT32, {3, 3});
    HostImage const signedBytes(QEL_INT8, {3, 3});
    HostImage const other(QEL_UINT8, {3, 3, 2});
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"input1\" must be set.", "input1", name));
    logical->input1 = &real;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameter \"input1\" supports only data type(s): uint8, uint16, uint32, uint64, "
                             "int8, int16, int32, int64. Current data type is float32.",
                             "input1", name));
    logical->input1 = &a;
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"input2\" must be set.", "input2", name));
    logical->input2 = &signedBytes;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameters \"input1\" and \"input2\" must have the same type.", "input2", name));
    logical->input2 = &other;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameters \"input1\" and \"input2\" must have the same size.", "input2", name));
    logical->input2 = &b;
    for (int const wrong : {-1, 7}) {
        logical->logicalOperator = wrong;
        EXPECT_QEL_WHAT(
            logical->run(), RuleException,
            ruleText("The value of the parameter \"logicalOperator\" is not valid", "logicalOperator", name));
    }
    logical->logicalOperator = LOGICAL_OR;
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    logical->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        logical->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input1\".", "output", name));
    a.setInterpretation(QEL_LABEL);
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameter \"output\" (QEL_VALUE) cannot be interpreted like \"input1\" (QEL_LABEL).",
                             "output", name));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*logical));
}

TEST_F(LogicalImageProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const first = randomPicture<int>(Shape{5, 23}, 1);
    auto const second = randomPicture<int>(Shape{5, 23}, 2);
    expectFailingImagesAreReported<LogicalImageProcessing>(
        [&](LogicalImageProcessing& algorithm, HostImages& images) {
            for (auto const* picture : {&first, &second})
                images.push_back(std::make_unique<HostImage>(*picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input1 = images[0].get();
            algorithm.input2 = images[1].get();
            algorithm.output = images[2].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(
                combined(first, second, [](int a, int b) { return logicalResult(LOGICAL_AND, a, b); }), *images[2]));
        });
}

} // namespace
} // namespace qel::test
