#include <qel/point_operations/LogicalValueProcessing.h>

#include "PointOperations/tests/OperatorModels.h"

namespace qel::test {
namespace {

using namespace point_operations;

class LogicalValueProcessingTest : public testing::Test
{
protected:
    Ref<LogicalValueProcessing> logical = LogicalValueProcessing::New();
    HostImage out;
};

TEST_F(LogicalValueProcessingTest, isRegisteredUnderItsName)
{
    expectRegistered<LogicalValueProcessing>("LogicalValueProcessing");
}

TEST_F(LogicalValueProcessingTest, declaresItsPropertiesInOrder)
{
    ASSERT_EQ(logical->getNumOfInputProperties(), 3u);
    EXPECT_EQ(described(logical->getInputProperty(0)), "const image input = null");
    EXPECT_EQ(logical->getInputProperty(1), &logical->inputValue);
    EXPECT_EQ(logical->inputValue.getName(), String("inputValue"));
    EXPECT_EQ(logical->inputValue.getDescription(), String("inputValue"));
    EXPECT_EQ(logical->inputValue.get(), 0);
    EXPECT_EQ(described(logical->getInputProperty(2)), "BinaryLogicalOperatorType logicalOperator = LOGICAL_AND");
    EXPECT_EQ(describedOutputs(*logical), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(logical->logicalOperator.getEnumInfo()->getNumOfValues(), 7u);
}

TEST_F(LogicalValueProcessingTest, combinesEveryTypeAndShapeWithTheLowBitsOfTheValue)
{
    forceLevel(*logical, SCALAR);
    std::vector<long> const values = {0, 1, -1, 5, 0x80, 0x1ff, 0x12345, -0x123456789abcdef, 0x7fffffff00000001};
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachIntegerVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                int const op = static_cast<int>(seed % 7);
                long const value = values[seed / 7 % values.size()];
                SCOPED_TRACE(testing::Message() << "operator " << op << ", value " << value);
                auto const picture = randomPicture<T>(shape, seed++);
                auto const expected = combined(picture, static_cast<T>(static_cast<unsigned long>(value)),
                                               [op](T a, T b) { return logicalResult(op, a, b); });
                memory::InMemoryImage in = toImage(picture);
                HostImage result;
                logical->input = &in;
                logical->inputValue = value;
                logical->logicalOperator = op;
                logical->output = &result;
                logical->run();
                EXPECT_TRUE(samePicture(expected, result));
                logical->output = &in;
                logical->run();
                EXPECT_TRUE(samePicture(expected, in));
            }
        });
    });
}

TEST_F(LogicalValueProcessingTest, combinesByEveryOperator)
{
    HostImage const in(Picture<unsigned char>(Shape{4}, {0, 5, 3, 255}));
    logical->input = &in;
    logical->output = &out;
    logical->inputValue = 6;
    std::vector<unsigned char> const expected[] = {{0, 4, 2, 6},         {6, 7, 7, 255},     {6, 3, 5, 249},
                                                   {255, 251, 253, 249}, {249, 248, 248, 0}, {249, 252, 250, 6},
                                                   {0, 1, 1, 249}};
    for (int op = LOGICAL_AND; op <= LOGICAL_SUB; ++op) {
        logical->logicalOperator = op;
        logical->run();
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{4}, expected[op]), out)) << "operator " << op;
    }
}

TEST_F(LogicalValueProcessingTest, shapesItsOutputLikeItsInput)
{
    HostImage in(randomPicture<short>(Shape{4, 3, 2, 2, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(PLANS, 7);
    logical->input = &in;
    logical->output = &out;
    logical->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_TRUE(sameCalibration(in, out));
    out.forgetCalls();
    logical->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(LogicalValueProcessingTest, refusesWrongParametersInTheRulesWords)
{
    std::string const name = "LogicalValueProcessing";
    HostImage const in(QEL_UINT8, {3, 3});
    HostImage const real(QEL_FLOAT64, {3, 3});
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    logical->input = &real;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, "
                             "int8, int16, int32, int64. Current data type is float64.",
                             "input", name));
    logical->input = &in;
    logical->logicalOperator = 7;
    EXPECT_QEL_WHAT(logical->run(), RuleException,
                    ruleText("The value of the parameter \"logicalOperator\" is not valid", "logicalOperator", name));
    logical->logicalOperator = LOGICAL_XOR;
    EXPECT_QEL_WHAT(logical->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    logical->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        logical->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", name));
    EXPECT_TRUE(isAtRest(*logical));
}

TEST_F(LogicalValueProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<LogicalValueProcessing>(
        [&](LogicalValueProcessing& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.inputValue = 0xabc;
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(
                combined(picture, 0xabc, [](int a, int b) { return logicalResult(LOGICAL_AND, a, b); }), *images[1]));
        });
}

} // namespace
} // namespace qel::test
