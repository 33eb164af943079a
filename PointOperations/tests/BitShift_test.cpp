#include <qel/point_operations/BitShift.h>

#include "Core/tests/Support/Algorithms.h"

namespace qel::test {
namespace {

using point_operations::BitShift;

/// Step by step: each one doubles and drops what does not fit, or halves and rounds down.
template <class T> Picture<T> shifted(Picture<T> picture, unsigned int count, bool right)
{
    unsigned int const steps = count % (sizeof(T) == 8 ? 64 : 32);
    for (T& voxel : picture.voxels)
        for (unsigned int step = 0; step < steps; ++step) {
            if (!right)
                voxel = static_cast<T>(static_cast<unsigned long>(voxel) * 2);
            else
                voxel = static_cast<T>(voxel < 0 && voxel % 2 != 0 ? voxel / 2 - 1 : voxel / 2);
        }
    return picture;
}

class BitShiftTest : public testing::Test
{
protected:
    Ref<BitShift> shift = BitShift::New();
};

TEST_F(BitShiftTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(BitShift::getClassInfo()->getName(), String("BitShift"));
    EXPECT_EQ(BitShift::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("BitShift"), BitShift::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("BitShift")->createInstance();
    EXPECT_NE(dynamic_cast<BitShift*>(other.get()), nullptr);
}

TEST_F(BitShiftTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*shift), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*shift), std::vector<std::string>({"image output = null"}));
    EXPECT_TRUE(hasNoBorder(*shift));
    EXPECT_EQ(levelsOf(*shift), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(BitShiftTest, keepsCountAndDirectionOutOfItsList)
{
    EXPECT_EQ(shift->shiftCount.get(), 0u);
    EXPECT_FALSE(shift->shiftRight.get());
    EXPECT_EQ(shift->getNumOfProperties(), 2u);
    for (char const* const name : {"shiftCount", "shiftRight", ""})
        EXPECT_EQ(shift->getPropertyfromName(name), nullptr);

    ObservedImage in(Picture<unsigned char>(Shape{1, 1}));
    HostImage out;
    shift->input = &in;
    shift->output = &out;
    in.onRead = [&] {
        EXPECT_TRUE(shift->output.isLocked());
        EXPECT_FALSE(shift->shiftCount.isLocked());
        EXPECT_FALSE(shift->shiftRight.isLocked());
    };
    shift->run();
    EXPECT_EQ(in.callsOf(READ_ROW), 1u);
}

TEST_F(BitShiftTest, shiftsEveryIntegerTypeAndShape)
{
    forceLevel(*shift, SCALAR);
    onOneAndFourThreads([&] {
        forEachIntegerType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes())
                for (bool const right : {false, true}) {
                    unsigned int const count = seed % 7;
                    SCOPED_TRACE(testing::Message() << (right ? "right by " : "left by ") << count);
                    auto const picture = randomPicture<T>(shape, seed++);
                    auto const expected = shifted(picture, count, right);
                    HostImage in(picture);
                    HostImage out;
                    shift->shiftCount = count;
                    shift->shiftRight = right;
                    shift->input = &in;
                    shift->output = &out;
                    shift->run();
                    EXPECT_TRUE(samePicture(expected, out));
                    EXPECT_TRUE(samePicture(picture, in));
                    shift->output = &in;
                    shift->run();
                    EXPECT_TRUE(samePicture(expected, in));
                }
        });
    });
}

TEST_F(BitShiftTest, takesTheLowBitsOfTheCount)
{
    forEachIntegerType([&]<class T>() {
        auto const picture = randomPicture<T>(Shape{67, 2}, 5);
        HostImage const in(picture);
        HostImage out;
        shift->input = &in;
        shift->output = &out;
        for (bool const right : {false, true})
            for (unsigned int const count :
                 {0u, 1u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 40u, 63u, 64u, 65u, 96u, 4294967295u}) {
                SCOPED_TRACE(testing::Message() << (right ? "right by " : "left by ") << count);
                shift->shiftCount = count;
                shift->shiftRight = right;
                shift->run();
                EXPECT_TRUE(samePicture(shifted(picture, count, right), out));
            }
    });
}

TEST_F(BitShiftTest, givesTheKnownValues)
{
    HostImage const in(Picture<unsigned char>(Shape{2}, {200, 1}));
    HostImage out;
    shift->input = &in;
    shift->output = &out;
    shift->shiftCount = 1;
    shift->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2}, {144, 2}), out));

    HostImage const wide(Picture<unsigned int>(Shape{2}, {4294967295u, 3}));
    shift->input = &wide;
    shift->shiftCount = 32;
    shift->run();
    EXPECT_TRUE(samePicture(Picture<unsigned int>(Shape{2}, {4294967295u, 3}), out));

    HostImage const negative(Picture<signed char>(Shape{3}, {-128, -1, 127}));
    shift->input = &negative;
    shift->shiftCount = 1;
    shift->shiftRight = true;
    shift->run();
    EXPECT_TRUE(samePicture(Picture<signed char>(Shape{3}, {-64, -1, 63}), out));
}

TEST_F(BitShiftTest, shapesItsOutputLikeItsInput)
{
    HostImage in(randomPicture<unsigned short>(Shape{4, 3, 2, 2, 2}, 1));
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage out(QEL_FLOAT64, {1, 1});
    shift->input = &in;
    shift->output = &out;
    shift->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    out.forgetCalls();
    shift->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
}

TEST_F(BitShiftTest, refusesWrongImagesInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out;
    EXPECT_QEL_WHAT(shift->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", "BitShift"));
    shift->input = &in;
    EXPECT_QEL_WHAT(shift->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", "BitShift"));
    shift->output = &out;
    for (auto const& [type, name] : {std::pair{QEL_FLOAT32, "float32"}, std::pair{QEL_FLOAT64, "float64"}}) {
        HostImage const real(type, {3, 3});
        shift->input = &real;
        EXPECT_QEL_WHAT(shift->run(), RuleException,
                        ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, "
                                 "int8, int16, int32, int64. Current data type is " +
                                     std::string(name) + ".",
                                 "input", "BitShift"));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    shift->input = &in;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        shift->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", "BitShift"));
    in.setInterpretation(QEL_LABEL);
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(shift->run(), RuleException,
                    ruleText("The parameter \"output\" (QEL_VALUE) cannot be interpreted like \"input\" (QEL_LABEL).",
                             "output", "BitShift"));
    EXPECT_TRUE(isAtRest(*shift));
}

TEST_F(BitShiftTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<int>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<BitShift>(
        [&](BitShift& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.shiftCount = 3;
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(shifted(picture, 3, false), *images[1])); });
}

} // namespace
} // namespace qel::test
