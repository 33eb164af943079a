#include <qel/segmentation/ThresholdByCriterion.h>

#include "Core/tests/Support/Algorithms.h"

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using namespace segmentation;

std::vector<int> criteria()
{
    return {LESS_THAN, LESS_THAN_OR_EQUAL_TO, EQUAL_TO, GREATER_THAN_OR_EQUAL_TO, GREATER_THAN, NOT_EQUAL_TO};
}

template <class N> bool compare(int criterion, N voxel, N value)
{
    switch (criterion) {
    case LESS_THAN:
        return voxel < value;
    case LESS_THAN_OR_EQUAL_TO:
        return voxel <= value;
    case EQUAL_TO:
        return voxel == value;
    case GREATER_THAN_OR_EQUAL_TO:
        return voxel >= value;
    case GREATER_THAN:
        return voxel > value;
    default:
        return voxel != value;
    }
}

/// The whole number that the scalar is, if it is one of 64 bits.
bool isWhole(Scalar const& value, __int128& whole)
{
    if (value.getType() == INTEGER)
        whole = value.getIntValue();
    else if (value.getType() == UNSIGNED_INTEGER)
        whole = value.getUIntValue();
    else {
        double const real = value.getRealValue();
        if (!(real >= -9223372036854775808.0 && real < 18446744073709551616.0) || real != std::trunc(real))
            return false;
        whole = static_cast<__int128>(real);
    }
    return true;
}

/// Exact wherever an integer type holds voxels and value alike. Otherwise both are doubles: so are a fraction and an
/// integer voxel, a real voxel and any value, and the two 64-bit types where the value is beyond the voxel's.
template <class T> bool fulfils(int criterion, T voxel, Scalar const& value)
{
    __int128 whole = 0;
    if constexpr (std::is_integral_v<T>)
        if (isWhole(value, whole)) {
            bool const isHeld =
                std::is_signed_v<T> ? whole <= std::numeric_limits<long>::max() : whole >= 0 || sizeof(T) < 8;
            if (isHeld)
                return compare<__int128>(criterion, voxel, whole);
        }
    return compare<double>(criterion, static_cast<double>(voxel), value.asDouble());
}

template <class T, class Out = unsigned char>
Picture<Out> compared(Picture<T> const& in, int criterion, Scalar const& value)
{
    Picture<Out> out(in.shape);
    for (std::size_t i = 0; i < in.voxels.size(); ++i)
        out.voxels[i] = fulfils(criterion, in.voxels[i], value);
    return out;
}

template <class Callable> void forEachOutputType(Callable&& callable)
{
    callable.template operator()<unsigned char>();
    callable.template operator()<unsigned short>();
    callable.template operator()<signed char>();
    callable.template operator()<short>();
}

std::vector<Scalar> values()
{
    std::vector<Scalar> all;
    for (long const value : {0l,
                             1l,
                             -1l,
                             5l,
                             -10l,
                             127l,
                             128l,
                             -128l,
                             -129l,
                             255l,
                             256l,
                             300l,
                             32767l,
                             32768l,
                             -32768l,
                             -32769l,
                             65535l,
                             65536l,
                             2147483647l,
                             2147483648l,
                             -2147483648l,
                             -2147483649l,
                             4294967295l,
                             4294967296l,
                             9007199254740992l,
                             9007199254740993l,
                             -9007199254740993l,
                             9223372036854775806l,
                             9223372036854775807l,
                             -9223372036854775807l - 1}) {
        all.push_back(Scalar(value));
        if (value >= 0)
            all.push_back(Scalar(static_cast<unsigned long>(value)));
        all.push_back(Scalar(static_cast<double>(value)));
    }
    for (unsigned long const value : {9223372036854775808ul, 9223372036854775809ul, 18446744073709551615ul})
        all.push_back(Scalar(value));
    for (double const value : {127.5,
                               -0.5,
                               0.1,
                               double(0.1f),
                               300.7,
                               -127.5,
                               1e30,
                               -1e30,
                               1e300,
                               18446744073709551616.0,
                               18446744073709549568.0,
                               9223372036854774784.0,
                               4294967295.5,
                               16777217.0,
                               0.5,
                               -0.0,
                               4.9e-324,
                               double(INFINITY),
                               -double(INFINITY),
                               std::nan("")})
        all.push_back(Scalar(value));
    return all;
}

std::string textOf(int criterion, Scalar const& value)
{
    std::ostringstream text;
    text.precision(20);
    text << "criterion " << criterion << ", value of kind " << int(value.getType()) << ' ' << value.asDouble();
    return text.str();
}

class ThresholdByCriterionTest : public testing::Test
{
protected:
    template <class T>
    testing::AssertionResult isRight(Picture<T> const& picture, HostImage const& in, int criterion, Scalar const& value)
    {
        HostImage out(QEL_UINT8, picture.shape);
        connect(in, out, criterion, value);
        threshold->run();
        testing::AssertionResult const same = samePicture(compared(picture, criterion, value), out);
        return same ? same : testing::AssertionFailure() << textOf(criterion, value) << ": " << same.message();
    }
    void connect(ImageModel const& in, ImageModel& out, int criterion, Scalar const& value)
    {
        forceLevel(*threshold, SCALAR);
        threshold->input = &in;
        threshold->output = &out;
        threshold->criterion = criterion;
        threshold->value = value;
    }

    Ref<ThresholdByCriterion> threshold = ThresholdByCriterion::New();
};

TEST_F(ThresholdByCriterionTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(ThresholdByCriterion::getClassInfo()->getName(), String("ThresholdByCriterion"));
    EXPECT_EQ(ThresholdByCriterion::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("ThresholdByCriterion"), ThresholdByCriterion::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("ThresholdByCriterion")->createInstance();
    EXPECT_NE(dynamic_cast<ThresholdByCriterion*>(other.get()), nullptr);
}

TEST_F(ThresholdByCriterionTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*threshold),
              std::vector<std::string>(
                  {"const image input = null", "CriterionType criterion = LESS_THAN", "scalar of kind 0 value = 128"}));
    EXPECT_EQ(describedOutputs(*threshold), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(threshold->value.get().getType(), INTEGER);
    EXPECT_TRUE(hasNoBorder(*threshold));
    EXPECT_EQ(levelsOf(*threshold), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(ThresholdByCriterionTest, describesItsCriteria)
{
    EnumInfo const& info = *threshold->criterion.getEnumInfo();
    EXPECT_EQ(info.getEnumName(), String("CriterionType"));
    char const* const labels[] = {"LESS_THAN",    "LESS_THAN_OR_EQUAL_TO", "EQUAL_TO", "GREATER_THAN_OR_EQUAL_TO",
                                  "GREATER_THAN", "NOT_EQUAL_TO"};
    ASSERT_EQ(info.getNumOfValues(), 6u);
    ASSERT_EQ(info.getNumOfLabels(), 6u);
    for (int value = 0; value < 6; ++value) {
        EXPECT_EQ(info.getLabelFromValue(value), String(labels[value]));
        EXPECT_EQ(info.getValueFromLabel(labels[value]), value);
    }
    EXPECT_EQ(criteria(), std::vector<int>({0, 1, 2, 3, 4, 5}));
    String rest;
    EXPECT_TRUE(threshold->criterion.read("NOT_EQUAL_TO", rest));
    EXPECT_EQ(threshold->criterion.get(), NOT_EQUAL_TO);
}

TEST_F(ThresholdByCriterionTest, comparesEveryTypeWithEveryKindOfValueByEveryCriterion)
{
    forEachVoxelType([&]<class T>() {
        std::vector<T> voxels = specialValues<T>(true);
        for (T const more :
             {T(5), T(126), T(129), T(9223372036854775807l), T(9007199254740992l), T(9223372036854774784l)})
            voxels.push_back(more);
        Picture<T> const picture(Shape{voxels.size()}, voxels);
        HostImage const in(picture);
        for (Scalar const& value : values())
            for (int const criterion : criteria())
                ASSERT_TRUE(isRight(picture, in, criterion, value));
    });
}

TEST_F(ThresholdByCriterionTest, comparesEveryTypeAndShape)
{
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes()) {
                if (shape.spectralSeries != 1)
                    continue;
                auto const picture = randomPicture<T>(shape, seed++, true);
                HostImage const in(picture);
                int const criterion = criteria()[seed % 6];
                EXPECT_TRUE(isRight(picture, in, criterion, Scalar(5))) << shape;
                EXPECT_TRUE(isRight(picture, in, criterion, Scalar(3.5))) << shape;
            }
        });
    });
}

TEST_F(ThresholdByCriterionTest, clipsNoValue)
{
    Picture<unsigned char> const picture(Shape{4}, {0, 44, 127, 255});
    HostImage const in(picture);
    HostImage out(QEL_UINT8, {4});
    auto const expect = [&](int criterion, Scalar const& value, std::vector<unsigned char> const& answers) {
        connect(in, out, criterion, value);
        threshold->run();
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{4}, answers), out)) << textOf(criterion, value);
    };
    expect(LESS_THAN, Scalar(300), {1, 1, 1, 1});
    expect(EQUAL_TO, Scalar(300), {0, 0, 0, 0}); // 300 would be 44
    expect(GREATER_THAN, Scalar(-1), {1, 1, 1, 1});
    expect(EQUAL_TO, Scalar(-1), {0, 0, 0, 0}); // -1 would be 255
    expect(LESS_THAN, Scalar(127.5), {1, 1, 1, 0});
    expect(GREATER_THAN_OR_EQUAL_TO, Scalar(126.5), {0, 0, 1, 1});
    expect(EQUAL_TO, Scalar(127.5), {0, 0, 0, 0});
    expect(EQUAL_TO, Scalar(127.0), {0, 0, 1, 0});
    expect(EQUAL_TO, Scalar(127ul), {0, 0, 1, 0});
}

TEST_F(ThresholdByCriterionTest, answersForWhatIsNoNumber)
{
    HostImage const in(Picture<float>(Shape{2}, {std::nanf(""), 1}));
    HostImage out(QEL_UINT8, {2});
    unsigned char const ofOne[] = {1, 1, 0, 0, 0, 1};
    for (int const criterion : criteria()) {
        connect(in, out, criterion, Scalar(2));
        threshold->run();
        unsigned char const ofNaN = criterion == NOT_EQUAL_TO;
        EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2}, {ofNaN, ofOne[criterion]}), out)) << criterion;
    }
}

TEST_F(ThresholdByCriterionTest, writesEveryOutputTypeForEveryInputType)
{
    onOneAndFourThreads([&] {
        forEachOutputType([&]<class Out>() {
            forEachVoxelType([&]<class T>() {
                for (Shape const& shape : {Shape{33, 5, 3, 2}, Shape{1025, 11}})
                    for (Scalar const& value : {Scalar(3), Scalar(-1), Scalar(2.5)}) {
                        auto const picture = randomPicture<T>(shape, 1);
                        HostImage const in(picture);
                        HostImage out(VoxelTypeOf<Out>::value, {1, 1});
                        connect(in, out, GREATER_THAN, value);
                        threshold->run();
                        EXPECT_TRUE(samePicture(compared<T, Out>(picture, GREATER_THAN, value), out));
                        EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
                    }
            });
        });
    });
}

TEST_F(ThresholdByCriterionTest, worksInPlaceOnTheTypesOfItsOutput)
{
    onOneAndFourThreads([&] {
        forEachOutputType([&]<class T>() {
            for (Scalar const& value : {Scalar(3), Scalar(-1), Scalar(2.5), Scalar(70000)}) {
                auto const picture = randomPicture<T>(Shape{1025, 21, 2}, 1);
                HostImage image(picture);
                connect(image, image, LESS_THAN, value);
                threshold->run();
                EXPECT_TRUE(samePicture(compared<T, T>(picture, LESS_THAN, value), image));
            }
        });
    });
}

TEST_F(ThresholdByCriterionTest, takesImagesOfTheLibrary)
{
    auto const picture = randomPicture<double>(Shape{1025, 11, 2}, 3, true);
    memory::InMemoryImage const in = toImage(picture);
    memory::InMemoryImage out;
    connect(in, out, GREATER_THAN_OR_EQUAL_TO, Scalar(7));
    threshold->run();
    EXPECT_TRUE(samePicture(compared(picture, GREATER_THAN_OR_EQUAL_TO, Scalar(7)), out));
}

TEST_F(ThresholdByCriterionTest, shapesItsOutputButForTheType)
{
    HostImage in(randomPicture<float>(Shape{4, 3, 2, 2}, 1));
    in.setSpacingOf(PLANS, 7);
    in.setOriginOf(TIME_SERIES, -1);
    HostImage out(QEL_INT8, {1, 1});
    connect(in, out, LESS_THAN, Scalar(5));
    threshold->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT8);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
    EXPECT_EQ(out.getSpacingOf(PLANS), 7);
    EXPECT_EQ(out.getOriginOf(TIME_SERIES), -1);
    out.forgetCalls();
    threshold->run();
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    EXPECT_EQ(out.callsOf(SET_INTERPRETATION), 0u);
}

TEST_F(ThresholdByCriterionTest, refusesWrongParametersInTheRulesWords)
{
    std::string const name = "ThresholdByCriterion";
    HostImage const in(QEL_FLOAT32, {3, 4, 5, 2});
    HostImage out(QEL_UINT8, {1, 1});
    EXPECT_QEL_WHAT(threshold->run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    threshold->input = &in;
    EXPECT_QEL_WHAT(threshold->run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    threshold->output = &out;
    HostImage const complex(QEL_COMPLEX_FLOAT64, {3});
    threshold->input = &complex;
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                             "int16, int32, int64, float32, float64. Current data type is complex float64.",
                             "input", name));
    HostImage const spectral(QEL_FLOAT32, {3, 1, 1, 1, 3});
    threshold->input = &spectral;
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The number of spectral series of the parameter \"input\" must be 1. Current size is 3.",
                             "input", name));
    threshold->input = &in;
    for (int const unknown : {-1, 6, 1000}) {
        threshold->criterion = unknown;
        EXPECT_QEL_WHAT(threshold->run(), RuleException,
                        ruleText("The value of the parameter \"criterion\" is not valid", "criterion", name));
    }
    threshold->criterion = EQUAL_TO;
    for (VoxelTypes const type : {QEL_UINT32, QEL_UINT64, QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64}) {
        HostImage wrong(type, {1, 1});
        threshold->output = &wrong;
        EXPECT_QEL_WHAT(threshold->run(), RuleException,
                        ruleText("The parameter \"output\" supports only data type(s): uint8, uint16, int8, int16. "
                                 "Current data type is " +
                                     std::string(helper::VoxelTypesToString(type).c_str()) + ".",
                                 "output", name));
        EXPECT_EQ(wrong.callsOf(WRITE_ROW), 0u);
    }
    threshold->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        threshold->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized to fit dimensions of \"input\".", "output", name));
    out.behave().failOn(SET_INTERPRETATION);
    EXPECT_QEL_WHAT(threshold->run(), RuleException,
                    ruleText("The parameter \"output\" cannot be re-interpreted from \"QEL_VALUE\" to \"QEL_BINARY\".",
                             "output", name));
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(isAtRest(*threshold));
}

TEST_F(ThresholdByCriterionTest, namesACriterionThatNoRuleHasStopped)
{
    // Straight to the runner, past the rules.
    HostImage const in(Picture<unsigned char>(Shape{3}, 1));
    HostImage out(QEL_UINT8, {3});
    connect(in, out, 6, Scalar(1));
    EXPECT_QEL_THROW(runnerOf(*threshold, SCALAR)->run(threshold.get()), UnexpectedError,
                     "The provided criterion is unknow (value=6).");
    connect(in, out, -3, Scalar(1.5));
    EXPECT_QEL_THROW(runnerOf(*threshold, SCALAR)->run(threshold.get()), UnexpectedError,
                     "The provided criterion is unknow (value=-3).");
    EXPECT_EQ(in.callsOf(READ_ROW), 0u);
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(ThresholdByCriterionTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<unsigned char>(Shape{5, 23}, 1);
    for (Scalar const& value : {Scalar(7), Scalar(-7)})
        expectFailingImagesAreReported<ThresholdByCriterion>(
            [&](ThresholdByCriterion& algorithm, HostImages& images) {
                images.push_back(std::make_unique<HostImage>(picture));
                images.push_back(std::make_unique<HostImage>(QEL_UINT8, Shape{1, 1}));
                algorithm.value = value;
                algorithm.input = images[0].get();
                algorithm.output = images[1].get();
            },
            [&](HostImages const& images) {
                return bool(samePicture(compared(picture, LESS_THAN, value), *images[1]));
            });
}

TEST_F(ThresholdByCriterionTest, callsImagesFromOtherThreadsForRowsAlone)
{
    HostImage const in(randomPicture<float>(Shape{1025, 45, 12}, 1));
    HostImage out(QEL_INT16, {1});
    connect(in, out, LESS_THAN, Scalar(0.1));
    withThreads(4, [&] { threshold->run(); });
    EXPECT_TRUE(onlyRowsWereForeign(in));
    EXPECT_TRUE(onlyRowsWereForeign(out));
}

TEST_F(ThresholdByCriterionTest, runsForAHostThatPolls)
{
    auto const picture = randomPicture<short>(Shape{1025, 21, 11}, 1);
    HostImage const in(picture);
    HostImage out(QEL_UINT8, {1});
    Poller poller;
    connect(in, out, GREATER_THAN, Scalar(-2));
    threshold->run(&poller);
    EXPECT_TRUE(samePicture(compared(picture, GREATER_THAN, Scalar(-2)), out));
    EXPECT_EQ(poller.last, 100);
    EXPECT_TRUE(poller.isSteady);
}

TEST_F(ThresholdByCriterionTest, stopsBetweenBlocksWhenCancelled)
{
    auto const picture = randomPicture<short>(Shape{5, 400, 40, 2}, 1);
    ObservedImage in(picture);
    HostImage out(QEL_UINT8, {1});
    connect(in, out, LESS_THAN, Scalar(3));
    withThreads(1, [&] {
        in.onRead = [&] { threshold->cancelExecution(); };
        threshold->run();
        EXPECT_GT(out.callsOf(WRITE_ROW), 0u);
        EXPECT_LT(out.callsOf(WRITE_ROW), 400u * 40);
        EXPECT_TRUE(isAtRest(*threshold));
        in.onRead = nullptr;
        threshold->run();
        EXPECT_TRUE(samePicture(compared(picture, LESS_THAN, Scalar(3)), out));
    });
}

} // namespace
} // namespace qel::test
