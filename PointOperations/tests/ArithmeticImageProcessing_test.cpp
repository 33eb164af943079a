#include <qel/point_operations/ArithmeticImageProcessing.h>

#include "PointOperations/private/ArithmeticOperators.h"
#include "PointOperations/tests/OperatorModels.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace qel::test {
namespace {

using namespace point_operations;

class ArithmeticImageProcessingTest : public testing::Test
{
protected:
    void connect(ImageModel const& first, ImageModel const& second, ImageModel& result)
    {
        arithmetic->input1 = &first;
        arithmetic->input2 = &second;
        arithmetic->output = &result;
    }

    template <class T> void expectVoxel(T expected, ImageModel const& result)
    {
        EXPECT_TRUE(samePicture(Picture<T>(Shape{1}, {expected}), result));
    }

    template <class A, class B> void runOn(int op, A first, B second)
    {
        in1 = held(Picture<A>(Shape{1}, {first}));
        in2 = held(Picture<B>(Shape{1}, {second}));
        connect(*in1, *in2, out);
        arithmetic->arithmeticOperator = op;
        arithmetic->run();
    }

    template <class T> static std::unique_ptr<HostImage> held(Picture<T> const& picture)
    {
        return std::make_unique<HostImage>(picture);
    }

    Ref<ArithmeticImageProcessing> arithmetic = ArithmeticImageProcessing::New();
    std::unique_ptr<HostImage> in1;
    std::unique_ptr<HostImage> in2;
    HostImage out;
};

TEST_F(ArithmeticImageProcessingTest, isRegisteredUnderItsName)
{
    expectRegistered<ArithmeticImageProcessing>("ArithmeticImageProcessing");
}

TEST_F(ArithmeticImageProcessingTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*arithmetic),
              std::vector<std::string>({"const image input1 = null", "const image input2 = null",
                                        "ArithmeticOperatorType arithmeticOperator = ARITHMETIC_ADD"}));
    EXPECT_EQ(describedOutputs(*arithmetic), std::vector<std::string>({"image output = null"}));
    EnumInfo const& info = *arithmetic->arithmeticOperator.getEnumInfo();
    EXPECT_EQ(info.getNumOfValues(), 6u);
    EXPECT_EQ(info.getValueFromLabel("ARITHMETIC_SUBTRACT"), ARITHMETIC_SUBTRACT);
    EXPECT_EQ(info.getValueFromLabel("ARITHMETIC_MULTIPLY"), ARITHMETIC_MULTIPLY);
    EXPECT_EQ(info.getValueFromLabel("ARITHMETIC_DIVIDE"), ARITHMETIC_DIVIDE);
    EXPECT_EQ(info.getValueFromLabel("ARITHMETIC_MINIMUM"), ARITHMETIC_MINIMUM);
    EXPECT_EQ(info.getValueFromLabel("ARITHMETIC_MAXIMUM"), ARITHMETIC_MAXIMUM);
}

TEST_F(ArithmeticImageProcessingTest, combinesEveryPairOfTypesByEveryOperator)
{
    forceLevel(*arithmetic, SCALAR);
    unsigned seed = 1;
    forEachVoxelTypePair([&]<class A, class B>() {
        for (int op = ARITHMETIC_ADD; op <= ARITHMETIC_MAXIMUM; ++op) {
            SCOPED_TRACE(testing::Message() << "operator " << op << ", seed " << seed);
            Shape const shape{167, 3, 2, 2};
            auto const first = randomPicture<A>(shape, seed++, true);
            auto const second = randomPicture<B>(shape, seed++, true);
            HostImage const a(first);
            HostImage const b(second);
            HostImage result;
            connect(a, b, result);
            arithmetic->arithmeticOperator = op;
            arithmetic->run();
            EXPECT_EQ(result.getVoxelType(), rules::promoted(modeOf(op), a.getVoxelType(), b.getVoxelType()));
            visitVoxelType(result, [&]<class T>() {
                if constexpr (std::is_floating_point_v<T> || (std::is_integral_v<A> && std::is_integral_v<B>))
                    EXPECT_TRUE(
                        samePicture(combined(castPicture<T>(first), castPicture<T>(second),
                                             [op](T voxel, T other) { return arithmeticResult(op, voxel, other); }),
                                    result));
                else
                    ADD_FAILURE() << "a real became an integer";
            });
        }
    });
}

TEST_F(ArithmeticImageProcessingTest, worksOnEveryShapeOutOfPlaceAndInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                int const op = static_cast<int>(seed % 6);
                SCOPED_TRACE(testing::Message() << "operator " << op << ", seed " << seed);
                auto const first = randomPicture<T>(shape, seed++, true);
                auto const second = randomPicture<T>(shape, seed++, true);
                auto const resultOf = [op]<class R>(R a, R b) { return arithmeticResult(op, a, b); };
                memory::InMemoryImage a = toImage(first);
                memory::InMemoryImage b = toImage(second);
                memory::InMemoryImage result;
                connect(a, b, result);
                arithmetic->arithmeticOperator = op;
                arithmetic->run();
                visitVoxelType(result, [&]<class R>() {
                    if constexpr (std::is_floating_point_v<R> || std::is_integral_v<T>) {
                        EXPECT_TRUE(
                            samePicture(combined(castPicture<R>(first), castPicture<R>(second), resultOf), result));
                    }
                });
                if (result.getVoxelType() != a.getVoxelType())
                    continue;
                arithmetic->output = &a;
                arithmetic->run();
                EXPECT_TRUE(samePicture(combined(first, second, resultOf), a));
                memory::InMemoryImage fresh = toImage(first);
                arithmetic->input1 = &fresh;
                arithmetic->output = &b;
                arithmetic->run();
                EXPECT_TRUE(samePicture(combined(first, second, resultOf), b));
                arithmetic->input2 = &fresh;
                arithmetic->output = &fresh;
                arithmetic->run();
                EXPECT_TRUE(samePicture(combined(first, first, resultOf), fresh));
            }
        });
    });
}

TEST_F(ArithmeticImageProcessingTest, dividesAllBytesAndSixteenBitWordsExactly)
{
    Picture<short> dividends(Shape{65536});
    Picture<short> divisors(Shape{65536});
    for (int i = 0; i < 65536; ++i)
        dividends.voxels[static_cast<std::size_t>(i)] = static_cast<short>(i);
    arithmetic->arithmeticOperator = ARITHMETIC_DIVIDE;
    for (int const divisor : {-32768, -32767, -255, -7, -3, -2, -1, 0, 1, 2, 3, 7, 127, 128, 181, 255, 256, 32767}) {
        divisors = Picture<short>(Shape{65536}, static_cast<short>(divisor));
        HostImage const a(dividends);
        HostImage const b(divisors);
        connect(a, b, out);
        arithmetic->run();
        EXPECT_TRUE(samePicture(
            combined(dividends, divisors, [](short x, short y) { return arithmeticResult(ARITHMETIC_DIVIDE, x, y); }),
            out));
    }
}

TEST_F(ArithmeticImageProcessingTest, dividesUnsignedPicturesExactly)
{
    arithmetic->arithmeticOperator = ARITHMETIC_DIVIDE;
    auto const test = [&]<class In, class Out>(std::type_identity<In>, std::type_identity<Out>, auto const& divisors) {
        std::size_t const values = std::size_t(1) << (8 * sizeof(In));
        Picture<In> dividend(Shape{values, divisors.size()});
        Picture<In> divisor(dividend.shape);
        Picture<Out> quotient(dividend.shape);
        for (std::size_t i = 0; i < quotient.voxels.size(); ++i) {
            dividend.voxels[i] = static_cast<In>(i % values);
            divisor.voxels[i] = static_cast<In>(divisors[i / values]);
            quotient.voxels[i] = divisor.voxels[i] == 0 ? 0 : dividend.voxels[i] / divisor.voxels[i];
        }
        HostImage const a(dividend);
        HostImage const b(divisor);
        connect(a, b, out);
        arithmetic->run();
        EXPECT_TRUE(samePicture(quotient, out));
    };
    std::vector<int> bytes(256);
    std::iota(bytes.begin(), bytes.end(), 0);
    test(std::type_identity<unsigned char>(), std::type_identity<short>(), bytes);
    std::vector<int> const words = {0,   1,    2,    3,    7,     10,    255,   256,   257,
                                    641, 1000, 4095, 9973, 32767, 32768, 32769, 65534, 65535};
    test(std::type_identity<unsigned short>(), std::type_identity<int>(), words);
}

TEST_F(ArithmeticImageProcessingTest, dividesNarrowVoxelsByAnyValueExactly)
{
    std::vector<unsigned short> dividends(65536);
    std::iota(dividends.begin(), dividends.end(), static_cast<unsigned short>(0));
    std::vector<int> quotients(dividends.size());
    for (int const value : {0, 1, -1, 7, -7, 255, -65535, 65535, 65536, 65537, 16777215, 16777216, -16777217,
                            1000000007, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        ValueOperation<ArithmeticOperator_DivideTag>::row<int, unsigned short>(dividends.data(), value,
                                                                               quotients.data(), dividends.size());
        for (int dividend = 0; dividend < 65536; ++dividend)
            ASSERT_EQ(quotients[static_cast<std::size_t>(dividend)], value == 0 ? 0 : dividend / value)
                << dividend << " by " << value;
    }
}

TEST_F(ArithmeticImageProcessingTest, dividesNumbersAroundMultiplesExactly)
{
    arithmetic->arithmeticOperator = ARITHMETIC_DIVIDE;
    auto const test = [&]<class T>(std::type_identity<T>) {
        std::mt19937_64 random(5);
        Picture<T> dividends(Shape{30000});
        Picture<T> divisors(dividends.shape);
        for (std::size_t i = 0; i < dividends.voxels.size(); ++i) {
            T const divisor = static_cast<T>(random() >> (random() % 64));
            T const factor = static_cast<T>(random() >> (random() % 64));
            unsigned long const product = static_cast<unsigned long>(divisor) * static_cast<unsigned long>(factor);
            divisors.voxels[i] = divisor;
            dividends.voxels[i] = static_cast<T>(product + random() % 3 - 1);
        }
        HostImage const a(dividends);
        HostImage const b(divisors);
        connect(a, b, out);
        arithmetic->run();
        EXPECT_EQ(out.getVoxelType(), VoxelTypeOf<T>::value);
        EXPECT_TRUE(samePicture(
            combined(dividends, divisors, [](T x, T y) { return arithmeticResult(ARITHMETIC_DIVIDE, x, y); }), out));
    };
    test(std::type_identity<short>());
    test(std::type_identity<int>());
    test(std::type_identity<long>());
}

TEST_F(ArithmeticImageProcessingTest, givesTheKnownValues)
{
    using Byte = unsigned char;
    runOn(ARITHMETIC_ADD, Byte(200), Byte(200));
    expectVoxel<short>(400, out);
    runOn(ARITHMETIC_MULTIPLY, Byte(255), Byte(255));
    expectVoxel<unsigned short>(65025, out);
    runOn(ARITHMETIC_SUBTRACT, 1ul, 2ul);
    expectVoxel<long>(-1, out);
    runOn(ARITHMETIC_MINIMUM, Byte(200), static_cast<signed char>(3));
    expectVoxel<signed char>(-56, out);
    runOn(ARITHMETIC_MAXIMUM, Byte(200), short(300));
    expectVoxel<Byte>(200, out);
}

TEST_F(ArithmeticImageProcessingTest, wrapsWhatDoesNotFit)
{
    runOn(ARITHMETIC_ADD, short(32767), short(1));
    expectVoxel<short>(-32768, out);
    runOn(ARITHMETIC_SUBTRACT, -9223372036854775807l - 1, 1l);
    expectVoxel<long>(9223372036854775807l, out);
    runOn(ARITHMETIC_MULTIPLY, -2147483647 - 1, -2147483647 - 1);
    expectVoxel<int>(0, out);
    runOn(ARITHMETIC_MULTIPLY, 4294967295u, 4294967295u);
    expectVoxel<unsigned long>(18446744065119617025ul, out);
}

TEST_F(ArithmeticImageProcessingTest, dividesByZeroToZero)
{
    runOn(ARITHMETIC_DIVIDE, 7, 0);
    expectVoxel<int>(0, out);
    runOn(ARITHMETIC_DIVIDE, 7l, 0l);
    expectVoxel<long>(0, out);
    runOn(ARITHMETIC_DIVIDE, 7.0, -0.0);
    expectVoxel<double>(0, out);
    runOn(ARITHMETIC_DIVIDE, std::nan(""), 0.0);
    expectVoxel<double>(0, out);

    auto const picture = randomPicture<float>(Shape{131, 3}, 1, true);
    HostImage const a(picture);
    HostImage const zeros(Picture<float>(picture.shape, 0));
    connect(a, zeros, out);
    arithmetic->run();
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape, 0), out));
    for (unsigned char const byte : out.content())
        EXPECT_EQ(byte, 0); // no negative zero either
}

TEST_F(ArithmeticImageProcessingTest, dividesTheSmallestIntegerByMinusOneToItself)
{
    auto const test = [&]<class T>(T smallest) {
        runOn(ARITHMETIC_DIVIDE, smallest, T(-1));
        expectVoxel<T>(smallest, out);
    };
    test(short(-32768));
    test(-2147483647 - 1);
    test(-9223372036854775807l - 1);
}

TEST_F(ArithmeticImageProcessingTest, keepsTheFirstVoxelWhereItMeetsANaN)
{
    double const nan = std::nan("");
    for (int const op : {ARITHMETIC_MINIMUM, ARITHMETIC_MAXIMUM}) {
        runOn(op, 3.0, nan);
        expectVoxel<double>(3, out);
        runOn(op, nan, 3.0);
        expectVoxel<double>(nan, out);
    }
}

TEST_F(ArithmeticImageProcessingTest, shapesItsOutputLikeItsFirstInput)
{
    HostImage a(randomPicture<unsigned char>(Shape{4, 3, 2, 2, 2}, 1));
    HostImage b(randomPicture<float>(Shape{4, 3, 2, 2, 2}, 2));
    a.setInterpretation(QEL_LABEL);
    a.setSpacingOf(PLANS, 7);
    a.setOriginOf(TIME_SERIES, -1);
    b.setSpacingOf(PLANS, 9);
    HostImage result(QEL_FLOAT64, {1, 1});
    connect(a, b, result);
    arithmetic->run();
    EXPECT_EQ(result.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(result.sizes(), a.sizes());
    EXPECT_EQ(result.getInterpretation(), QEL_VALUE);
    EXPECT_EQ(result.getSpacingOf(PLANS), 7);
    EXPECT_EQ(result.getOriginOf(TIME_SERIES), -1);
    result.forgetCalls();
    arithmetic->run();
    EXPECT_EQ(result.callsOf(RESERVE), 0u);
}

TEST_F(ArithmeticImageProcessingTest, leavesNoRuleBehind)
{
    HostImage const bytes(Picture<unsigned char>(Shape{2}, {1, 2}));
    HostImage const reals(Picture<double>(Shape{2}, {0.5, 2}));
    connect(bytes, bytes, out);
    for (int i = 0; i < 3; ++i) {
        arithmetic->arithmeticOperator = ARITHMETIC_MULTIPLY;
        arithmetic->run();
        EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
        arithmetic->input2 = nullptr;
        EXPECT_QEL_THROW(arithmetic->run(), RuleException, "The parameter \"input2\" must be set.");
        arithmetic->input2 = &reals;
        arithmetic->arithmeticOperator = ARITHMETIC_MAXIMUM;
        arithmetic->run();
        EXPECT_EQ(out.getVoxelType(), QEL_FLOAT64);
        arithmetic->input2 = &bytes;
    }
    out.forgetCalls();
    arithmetic->arithmeticOperator = ARITHMETIC_MULTIPLY;
    arithmetic->run();
    EXPECT_EQ(out.callsOf(RESERVE), 1u);
}

TEST_F(ArithmeticImageProcessingTest, refusesToRetypeAnInput)
{
    auto const picture = randomPicture<unsigned char>(Shape{5, 3}, 1);
    HostImage a(picture);
    HostImage b(picture);
    connect(a, b, a);
    std::string const name = "ArithmeticImageProcessing";
    EXPECT_QEL_WHAT(
        arithmetic->run(), RuleException,
        ruleText("The parameter \"input1\" cannot be used as output image if it must be retyped.", "output", name));
    EXPECT_TRUE(samePicture(picture, a));
    arithmetic->output = &b;
    EXPECT_QEL_WHAT(
        arithmetic->run(), RuleException,
        ruleText("The parameter \"input2\" cannot be used as output image if it must be retyped.", "output", name));
    EXPECT_TRUE(samePicture(picture, b));
    EXPECT_EQ(a.callsOf(WRITE_ROW) + b.callsOf(WRITE_ROW), 0u);
    arithmetic->arithmeticOperator = ARITHMETIC_MINIMUM;
    arithmetic->run();
    EXPECT_TRUE(samePicture(picture, b));
}

TEST_F(ArithmeticImageProcessingTest, refusesWrongParametersInTheRulesWords)
{
    std::string const name = "ArithmeticImageProcessing";
    HostImage a(QEL_UINT8, {3, 3});
    HostImage b(QEL_INT8, {3, 3});
    HostImage other(QEL_UINT8, {3, 4});
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"input1\" must be set.", "input1", name));
    arithmetic->input1 = &a;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"input2\" must be set.", "input2", name));
    arithmetic->input2 = &other;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameters \"input1\" and \"input2\" must have the same size.", "input2", name));
    b.setSpacingOf(ROWS, 3); // calibration may differ
    arithmetic->input2 = &b;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", name));
    arithmetic->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        arithmetic->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized to fit dimensions of \"input1\".", "output", name));
    HostImage sized(QEL_UINT8, {3, 3});
    sized.failOn(RESERVE);
    arithmetic->output = &sized;
    EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                    ruleText("The parameter \"output\" cannot be retyped into \"QEL_INT16\".", "output", name));
    for (int const wrong : {-1, 6, 1000}) {
        arithmetic->arithmeticOperator = wrong;
        EXPECT_QEL_WHAT(
            arithmetic->run(), InvalidCall,
            invalidCallText("The provided arithmeticOperator is unknow (value=" + std::to_string(wrong) + ").", name));
    }
    arithmetic->arithmeticOperator = ARITHMETIC_ADD;
    EXPECT_EQ(out.callsOf(WRITE_ROW) + sized.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*arithmetic));

    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 3});
    for (auto* const input : {&arithmetic->input1, &arithmetic->input2}) {
        connect(a, a, out);
        *input = &complex;
        EXPECT_QEL_WHAT(arithmetic->run(), RuleException,
                        ruleText("The parameter \"" + std::string(input->getName().c_str()) +
                                     "\" supports only data type(s): uint8, uint16, uint32, uint64, int8, int16, "
                                     "int32, int64, float32, float64. Current data type is " +
                                     helper::VoxelTypesToString(QEL_COMPLEX_FLOAT32).c_str() + ".",
                                 input->getName().c_str(), name));
    }
}

TEST_F(ArithmeticImageProcessingTest, reportsImagesThatFailDuringTheRun)
{
    auto const first = randomPicture<unsigned char>(Shape{5, 23}, 1);
    auto const second = randomPicture<int>(Shape{5, 23}, 2);
    expectFailingImagesAreReported<ArithmeticImageProcessing>(
        [&](ArithmeticImageProcessing& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(first));
            images.push_back(std::make_unique<HostImage>(second));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input1 = images[0].get();
            algorithm.input2 = images[1].get();
            algorithm.output = images[2].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(combined(castPicture<int>(first), second,
                                             [](int a, int b) { return arithmeticResult(ARITHMETIC_ADD, a, b); }),
                                    *images[2]));
        });
}

} // namespace
} // namespace qel::test
