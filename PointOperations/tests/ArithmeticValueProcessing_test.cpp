#include <qel/point_operations/ArithmeticValueProcessing.h>

#include "PointOperations/tests/OperatorModels.h"

#include <cmath>

namespace qel::test {
namespace {

using namespace point_operations;

/// A plain cast. Values that become integers are whole numbers of 64 bits.
template <class T> T castValue(double value)
{
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else
        return static_cast<T>(static_cast<long>(value));
}

std::vector<double> values()
{
    return {0,
            -0.0,
            1,
            -1,
            2,
            -2,
            3,
            7,
            200,
            255,
            256,
            32767,
            32768,
            -32768,
            -32769,
            65535,
            70000,
            -70000,
            2147483647,
            2147483648,
            -2147483648,
            -2147483649,
            4294967296,
            1e15,
            9223372036854774784.0,
            -9223372036854775808.0,
            9223372036854775808.0,
            1e30,
            0.5,
            -1.5,
            0.1,
            1e-300,
            1e300,
            INFINITY,
            -INFINITY,
            NAN};
}

class ArithmeticValueProcessingTest : public testing::Test
{
protected:
    void connect(ImageModel const& in, double value, ImageModel& result)
    {
        arithmetic->input = &in;
        arithmetic->inputValue = value;
        arithmetic->output = &result;
    }

    Ref<ArithmeticValueProcessing> arithmetic = ArithmeticValueProcessing::New();
    HostImage out;
};

TEST_F(ArithmeticValueProcessingTest, isRegisteredUnderItsName)
{
    expectRegistered<ArithmeticValueProcessing>("ArithmeticValueProcessing");
}

TEST_F(ArithmeticValueProcessingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*arithmetic),
              std::vector<std::string>({"const image input = null", "double inputValue = 0",
                                        "ArithmeticOperatorType arithmeticOperator = ARITHMETIC_ADD"}));
    EXPECT_EQ(describedOutputs(*arithmetic), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(arithmetic->arithmeticOperator.getEnumInfo()->getNumOfValues(), 6u);
}

TEST_F(ArithmeticValueProcessingTest, combinesEveryTypeWithEveryValueByEveryOperator)
{
    forceLevel(*arithmetic, SCALAR);
    unsigned seed = 1;
    forEachVoxelType([&]<class A>() {
        auto const picture = randomPicture<A>(Shape{167, 3, 2, 2}, seed++, true);
        HostImage const in(picture);
        for (double const value : values())
            for (int op = ARITHMETIC_ADD; op <= ARITHMETIC_MAXIMUM; ++op) {
                SCOPED_TRACE(testing::Message() << "operator " << op << ", value " << value);
                HostImage result;
                connect(in, value, result);
                arithmetic->arithmeticOperator = op;
                arithmetic->run();
                EXPECT_EQ(result.getVoxelType(), rules::promotedWithValue(modeOf(op), in.getVoxelType(), value));
                visitVoxelType(result, [&]<class T>() {
                    if constexpr (std::is_floating_point_v<T> || std::is_integral_v<A>)
                        EXPECT_TRUE(samePicture(combined(castPicture<T>(picture), castValue<T>(value),
                                                         [op](T a, T b) { return arithmeticResult(op, a, b); }),
                                                result));
                    else
                        ADD_FAILURE() << "a real became an integer";
                });
            }
    });
}

TEST_F(ArithmeticValueProcessingTest, worksOnEveryShapeOutOfPlaceAndInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                int const op = static_cast<int>(seed % 6);
                double const value = values()[seed % 13];
                SCOPED_TRACE(testing::Message() << "operator " << op << ", value " << value);
                auto const picture = randomPicture<T>(shape, seed++, true);
                memory::InMemoryImage in = toImage(picture);
                memory::InMemoryImage result;
                connect(in, value, result);
                arithmetic->arithmeticOperator = op;
                arithmetic->run();
                visitVoxelType(result, [&]<class R>() {
                    if constexpr (std::is_floating_point_v<R> || std::is_integral_v<T>) {
                        auto const expected = combined(castPicture<R>(picture), castValue<R>(value),
                                                       [op](R a, R b) { return arithmeticResult(op, a, b); });
                        EXPECT_TRUE(samePicture(expected, result));
                        if (std::is_same_v<R, T>) {
                            arithmetic->output = &in;
                            arithmetic->run();
                            EXPECT_TRUE(samePicture(expected, in));
                        }
                    }
                });
            }
        });
    });
}

TEST_F(ArithmeticValueProcessingTest, takesTheTypeThatHoldsTheValue)
{
    HostImage const in(Picture<unsigned char>(Shape{1}, {200}));
    auto const typeWith = [&](int op, double value) {
        connect(in, value, out);
        arithmetic->arithmeticOperator = op;
        arithmetic->run();
        return out.getVoxelType();
    };
    EXPECT_EQ(typeWith(ARITHMETIC_ADD, 1), QEL_INT16);
    EXPECT_EQ(typeWith(ARITHMETIC_ADD, 70000), QEL_INT32);
    EXPECT_TRUE(samePicture(Picture<int>(Shape{1}, {70200}), out));
    EXPECT_EQ(typeWith(ARITHMETIC_ADD, 0.5), QEL_FLOAT32);
    EXPECT_TRUE(samePicture(Picture<float>(Shape{1}, {200.5f}), out));
    EXPECT_EQ(typeWith(ARITHMETIC_ADD, 0.1), QEL_FLOAT64);
    EXPECT_EQ(typeWith(ARITHMETIC_ADD, 1e10), QEL_INT64);
    EXPECT_EQ(typeWith(ARITHMETIC_MAXIMUM, -1), QEL_UINT8);
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{1}, {255}), out));
}

TEST_F(ArithmeticValueProcessingTest, isTheSecondOperand)
{
    HostImage const in(Picture<int>(Shape{4}, {7, -7, 0, -2147483647 - 1}));
    arithmetic->arithmeticOperator = ARITHMETIC_SUBTRACT;
    connect(in, 10, out);
    arithmetic->run();
    EXPECT_TRUE(samePicture(Picture<int>(Shape{4}, {-3, -17, -10, 2147483638}), out));
    arithmetic->arithmeticOperator = ARITHMETIC_DIVIDE;
    arithmetic->inputValue = 2;
    arithmetic->run();
    EXPECT_TRUE(samePicture(Picture<int>(Shape{4}, {3, -3, 0, -1073741824}), out));
    arithmetic->inputValue = -1;
    arithmetic->run();
    EXPECT_TRUE(samePicture(Picture<int>(Shape{4}, {-7, 7, 0, -2147483647 - 1}), out));
    arithmetic->inputValue = 0;
    arithmetic->run();
    EXPECT_TRUE(samePicture(Picture<int>(Shape{4}, 0), out));
}

TEST_F(ArithmeticValueProcessingTest, shapesItsOutputLikeItsInput)
{
    HostImage in(randomPicture<short>(Shape{4, 3, 2, 2, 2}, 1));
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    connect(in, 1, out);
    arithmetic->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    out.forgetCalls();
    arithmetic->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(ArithmeticValueProcessingTest, refusesWrongParametersInTheRulesWords)
{
    std::string const name = "ArithmeticValueProcessing";
    auto const picture = randomPicture<unsigned char>(Shape{3, 3}, 1);
    HostImage in(picture);
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 3});
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    arithmetic->input = &complex;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText(std::string("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, "
                                         "uint64, int8, int16, int32, int64, float32, float64. Current data type is ") +
                                 helper::VoxelTypesToString(QEL_COMPLEX_FLOAT32).c_str() + ".",
                             "input", name));
    arithmetic->input = &in;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", name));
    arithmetic->output = &in;
    EXPECT_QEL_WHAT(
        arithmetic->run(), RuleException,
        ruleText("The parameter \"output\" cannot be used as output image if it must be retyped.", "output", name));
    EXPECT_TRUE(samePicture(picture, in));
    EXPECT_EQ(in.callsOf(WRITE_ROW), 0u);
    HostImage sized(QEL_UINT8, {3, 3});
    sized.failOn(RESERVE);
    arithmetic->output = &sized;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"output\" cannot be retyped into \"QEL_INT16\".", "output", name));
    arithmetic->arithmeticOperator = 6;
    EXPECT_QEL_WHAT(arithmetic->run(), InvalidCall,
                    invalidCallText("The provided arithmeticOperator is unknow (value=6).", name));
    EXPECT_TRUE(isAtRest(*arithmetic));
}

TEST_F(ArithmeticValueProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<unsigned char>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<ArithmeticValueProcessing>(
        [&](ArithmeticValueProcessing& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.inputValue = 3;
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(combined(castPicture<short>(picture), short(3),
                                             [](short a, short b) { return arithmeticResult(ARITHMETIC_ADD, a, b); }),
                                    *images[1]));
        });
}

} // namespace
} // namespace qel::test
