#include <qel/point_operations/Anamorphosis.h>

#include "PointOperations/tests/OperatorModels.h"

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using point_operations::Anamorphosis;

/// A plain cast of a value that fits, or one through 64 bits of a value that does not.
template <class T> T castResult(double value)
{
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else
        return static_cast<T>(static_cast<long>(value));
}

struct Parameters
{
    double low = 0;
    double high = 255;
    double step = 1;
    std::vector<double> lut;
    double lowIntensity = 0;
    double highIntensity = 0;

    double operator()(double voxel) const
    {
        if (voxel < low)
            return lowIntensity;
        if (voxel > high)
            return highIntensity;
        if (std::isnan(voxel))
            return lut.at(0);
        return lut.at(static_cast<unsigned long>((voxel - low) / step));
    }
    template <class T> Picture<T> operator()(Picture<T> picture) const
    {
        for (T& voxel : picture.voxels)
            voxel = castResult<T>((*this)(static_cast<double>(voxel)));
        return picture;
    }
};

/// A table as long as its range.
Parameters parametersFor(double low, double high, double step)
{
    Parameters parameters{low, high, step, {}, -3.5, 300.7};
    for (unsigned long i = 0; i <= static_cast<unsigned long>((high - low) / step); ++i)
        parameters.lut.push_back(static_cast<double>(i * i % 1009) * 1.25 - 100);
    return parameters;
}

container::Vector<double> toVector(std::vector<double> const& values)
{
    container::Vector<double> vector;
    for (double const value : values)
        vector.push_back(value);
    return vector;
}

class AnamorphosisTest : public testing::Test
{
protected:
    void set(Parameters const& parameters)
    {
        anamorphosis->inputRange = math::Vector2<double>(parameters.low, parameters.high);
        anamorphosis->step = parameters.step;
        anamorphosis->lut = toVector(parameters.lut);
        anamorphosis->lowIntensity = parameters.lowIntensity;
        anamorphosis->highIntensity = parameters.highIntensity;
    }
    void connect(ImageModel const& in, ImageModel& result)
    {
        anamorphosis->input = &in;
        anamorphosis->output = &result;
    }

    Ref<Anamorphosis> anamorphosis = Anamorphosis::New();
    HostImage out;
    std::string const name = "Anamorphosis";
};

TEST_F(AnamorphosisTest, isRegisteredUnderItsName) { expectRegistered<Anamorphosis>("Anamorphosis"); }

TEST_F(AnamorphosisTest, declaresItsPropertiesInOrder)
{
    char const* const names[] = {"input", "inputRange", "step", "lut", "lowIntensity", "highIntensity"};
    ASSERT_EQ(anamorphosis->getNumOfInputProperties(), 6u);
    for (unsigned long i = 0; i < 6; ++i) {
        EXPECT_EQ(anamorphosis->getInputProperty(i)->getName(), String(names[i]));
        EXPECT_EQ(anamorphosis->getInputProperty(i)->getDescription(), String(names[i]));
    }
    EXPECT_EQ(anamorphosis->input.get(), nullptr);
    EXPECT_EQ(anamorphosis->inputRange.get(), math::Vector2<double>(0, 255));
    EXPECT_EQ(anamorphosis->step.get(), 1);
    EXPECT_TRUE(anamorphosis->lut.get().empty());
    EXPECT_EQ(anamorphosis->lowIntensity.get(), 0);
    EXPECT_EQ(anamorphosis->highIntensity.get(), 0);
    EXPECT_EQ(describedOutputs(*anamorphosis), std::vector<std::string>({"image output = null"}));
}

TEST_F(AnamorphosisTest, remapsEveryTypeAndShapeInEveryForm)
{
    forceLevel(*anamorphosis, SCALAR);
    Parameters const all[] = {parametersFor(0, 100, 1), parametersFor(0, 100, 2.5), parametersFor(-5, 100, 1),
                              parametersFor(3, 90.5, 0.75)};
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Shape const& shape : allShapes()) {
                Parameters const& parameters = all[seed % 4];
                SCOPED_TRACE(testing::Message() << "form " << seed % 4 << ", seed " << seed);
                auto const picture = randomPicture<T>(shape, seed++, true);
                memory::InMemoryImage in = toImage(picture);
                HostImage result;
                set(parameters);
                connect(in, result);
                anamorphosis->run();
                EXPECT_TRUE(samePicture(parameters(picture), result));
                anamorphosis->output = &in;
                anamorphosis->run();
                EXPECT_TRUE(samePicture(parameters(picture), in));
            }
        });
    });
}

TEST_F(AnamorphosisTest, remapsEveryByteInEveryForm)
{
    Picture<unsigned char> bytes(Shape{256});
    for (std::size_t i = 0; i < 256; ++i)
        bytes.voxels[i] = static_cast<unsigned char>(i);
    HostImage const in(bytes);
    connect(in, out);
    for (double const low : {0.0, 0.5, 10.0, -7.0})
        for (double const step : {1.0, 0.1, 3.0}) {
            Parameters const parameters = parametersFor(low, 200.25, step);
            set(parameters);
            anamorphosis->run();
            EXPECT_TRUE(samePicture(parameters(bytes), out)) << low << ' ' << step;
        }
}

TEST_F(AnamorphosisTest, readsTheKnownEntries)
{
    HostImage const in(Picture<float>(Shape{7}, {10, 15, 20, 9, 21, 11.9f, 12}));
    set({10, 20, 2, {100, 101, 102, 103, 104, 105, 106, 107}, -1, 1000});
    connect(in, out);
    anamorphosis->run();
    EXPECT_TRUE(samePicture(Picture<float>(Shape{7}, {100, 102, 105, -1, 1000, 100, 101}), out));
}

TEST_F(AnamorphosisTest, castsResultsToTheVoxelType)
{
    HostImage const in(Picture<unsigned char>(Shape{4}, {0, 1, 2, 9}));
    set({0, 2, 1, {300.7, -1.5, 2.9}, 0, 513});
    connect(in, out);
    anamorphosis->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{4}, {44, 255, 2, 1}), out));
}

TEST_F(AnamorphosisTest, givesANaNTheFirstEntry)
{
    double const nan = std::nan("");
    HostImage const in(Picture<double>(Shape{3}, {nan, -INFINITY, INFINITY}));
    Parameters parameters{0, 1, 1, {7, 8}, 5, 6};
    connect(in, out);
    for (double const low : {0.0, -1.0}) {
        parameters.low = low;
        parameters.lut = {7, 8, 9};
        set(parameters);
        anamorphosis->run();
        EXPECT_TRUE(samePicture(Picture<double>(Shape{3}, {7, 5, 6}), out));
    }
    // No voxel is in this range, and a NaN is beyond no bound.
    parameters.low = 2;
    set(parameters);
    anamorphosis->run();
    EXPECT_TRUE(samePicture(Picture<double>(Shape{3}, {7, 5, 6}), out));
}

TEST_F(AnamorphosisTest, refusesATableThatIsShorterThanItsRange)
{
    HostImage const in(QEL_UINT8, {3, 3});
    connect(in, out);
    Parameters parameters = parametersFor(10, 20, 2);
    EXPECT_EQ(parameters.lut.size(), 6u);
    set(parameters);
    anamorphosis->run();
    out.forgetCalls();
    parameters.lut.pop_back();
    set(parameters);
    EXPECT_QEL_WHAT(anamorphosis->run(), InvalidCall,
                    invalidCallText("The parameter \"lut\" must have at least 6 entries. Current size is 5.", name));
    parameters.high = INFINITY;
    set(parameters);
    EXPECT_QEL_WHAT(anamorphosis->run(), InvalidCall,
                    invalidCallText("The parameter \"lut\" must have at least 18446744073709551615 entries. Current "
                                    "size is 5.",
                                    name));
    parameters.high = 1e300;
    parameters.step = 1e-10;
    set(parameters);
    EXPECT_QEL_WHAT(anamorphosis->run(), InvalidCall,
                    invalidCallText("The parameter \"lut\" must have at least 18446744073709551615 entries. Current "
                                    "size is 5.",
                                    name));
    parameters.high = 9; // below the low end: the table is never read
    set(parameters);
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    anamorphosis->run();
    EXPECT_TRUE(isAtRest(*anamorphosis));
}

TEST_F(AnamorphosisTest, refusesARangeOrStepThatIsNoNumber)
{
    HostImage const in(QEL_UINT8, {3, 3});
    connect(in, out);
    Parameters const good = parametersFor(10, 20, 2);
    for (int which = 0; which < 3; ++which) {
        Parameters parameters = good;
        (which == 0 ? parameters.low : which == 1 ? parameters.high : parameters.step) = std::nan("");
        set(parameters);
        EXPECT_QEL_WHAT(anamorphosis->run(), InvalidCall,
                        invalidCallText("The parameters \"inputRange\" and \"step\" must be numbers.", name));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(AnamorphosisTest, refusesWrongParametersInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    EXPECT_QEL_WHAT(anamorphosis->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", name));
    anamorphosis->input = &in;
    EXPECT_QEL_WHAT(anamorphosis->run(), RuleException,
                    ruleText("The parameter \"lut\" should not be empty.", "lut", name));
    set(parametersFor(0, 10, 1));
    for (auto const& [step, text] : {std::pair{0.0, "0"}, std::pair{-1.0, "-1"}}) {
        anamorphosis->step = step;
        std::string message;
        try {
            anamorphosis->run();
        } catch (RuleException& error) {
            message = error.getInfoLevel(0).message.c_str();
        }
        EXPECT_EQ(
            message.rfind("The parameter \"step\" (value=" + std::string(text) + ") must be greater than <2.22", 0), 0u)
            << message;
    }
    anamorphosis->step = std::numeric_limits<double>::epsilon();
    EXPECT_THROW(anamorphosis->run(), RuleException);
    anamorphosis->step = 1;
    EXPECT_QEL_WHAT(anamorphosis->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", name));
    anamorphosis->output = &out;
    out.failOn(RESERVE);
    EXPECT_QEL_WHAT(
        anamorphosis->run(), RuleException,
        ruleText("The parameter \"output\" cannot be resized and retyped to fit \"input\".", "output", name));
    out.behave();
    in.setInterpretation(QEL_LABEL);
    in.setSpacingOf(ROWS, 4);
    anamorphosis->run();
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
    EXPECT_TRUE(sameCalibration(in, out));
    EXPECT_TRUE(isAtRest(*anamorphosis));
}

TEST_F(AnamorphosisTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<int>(Shape{5, 23}, 1);
    Parameters const parameters = parametersFor(-5, 1000, 2);
    expectFailingImagesAreReported<Anamorphosis>(
        [&](Anamorphosis& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.inputRange = math::Vector2<double>(parameters.low, parameters.high);
            algorithm.step = parameters.step;
            algorithm.lut = toVector(parameters.lut);
            algorithm.lowIntensity = parameters.lowIntensity;
            algorithm.highIntensity = parameters.highIntensity;
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) { return bool(samePicture(parameters(picture), *images[1])); });
}

} // namespace
} // namespace qel::test
