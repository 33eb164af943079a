#include "LinearFiltering/tests/FIRModel.h"

#include "Core/private/ImageModelProxy.h"

#include <qel/filtering/smoothing/GaussianFilter2D.h>
#include <qel/filtering/smoothing/GaussianFilter3D.h>
#include <qel/linear_filtering/kernel_factory.h>

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using namespace filtering::smoothing;

template <class Filter> inline constexpr bool isPlanar = std::is_same_v<Filter, GaussianFilter2D>;
template <class Filter> inline constexpr std::size_t axesOf = isPlanar<Filter> ? 2 : 3;

struct Smoothing
{
    double sigmas[3] = {2, 2, 2};
    double factors[3] = {3, 3, 3};
    bool accurate = true;
};

Points pointsOf(Smoothing const& smoothing, int axis)
{
    long size = std::lround(std::ceil(2 * smoothing.sigmas[axis] * smoothing.factors[axis]));
    size += size % 2 == 0;
    kernel::Kernel3D kernel =
        linear_filtering::kernel_factory::createGaussian1D(static_cast<unsigned long>(size), smoothing.sigmas[axis],
                                                           static_cast<linear_filtering::KernelDirection3D>(axis));
    kernel.normalize();
    Points points;
    for (unsigned long i = 0; i < kernel.getNumOfPoints(); ++i) {
        kernel::Offset3D const offset = kernel.getOffset(i);
        points.push_back({offset.x, offset.y, offset.z, kernel.getWeight(i)});
    }
    return points;
}

/// Axis by axis as it is defined: in `Between` up to the last one.
template <class Out, class Between, class In>
Picture<Out> smoothedThrough(Picture<In> const& in, Smoothing const& smoothing, int axes)
{
    auto const first = filtered<WorkOf<Between>, Between>(in, pointsOf(smoothing, 0), false);
    if (axes == 2)
        return filtered<WorkOf<Out>, Out>(first, pointsOf(smoothing, 1), false);
    auto const second = filtered<WorkOf<Between>, Between>(first, pointsOf(smoothing, 1), false);
    return filtered<WorkOf<Out>, Out>(second, pointsOf(smoothing, 2), false);
}

template <class Out, class In> Picture<Out> smoothed(Picture<In> const& in, Smoothing const& smoothing, int axes)
{
    return smoothing.accurate ? smoothedThrough<Out, float>(in, smoothing, axes)
                              : smoothedThrough<Out, In>(in, smoothing, axes);
}

template <class T> Picture<T> calmPicture(Shape const& shape, unsigned seed)
{
    if constexpr (std::is_unsigned_v<T>)
        return randomPictureBetween<T>(shape, seed, 0, 100);
    else
        return randomPictureBetween<T>(shape, seed, T(-100), T(100));
}

template <class Filter> class GaussianFilterTest : public testing::Test
{
protected:
    template <class In> void connect(In const& in, ImageModel& out, Smoothing const& smoothing = {})
    {
        gaussian->input = &in;
        gaussian->sigmaX = smoothing.sigmas[0];
        gaussian->sigmaY = smoothing.sigmas[1];
        gaussian->kernelSizeFactorX = smoothing.factors[0];
        gaussian->kernelSizeFactorY = smoothing.factors[1];
        if constexpr (!isPlanar<Filter>) {
            gaussian->sigmaZ = smoothing.sigmas[2];
            gaussian->kernelSizeFactorZ = smoothing.factors[2];
        }
        gaussian->accurate = smoothing.accurate;
        gaussian->output = &out;
    }
    template <class Out, class In> Picture<Out> model(Picture<In> const& in, Smoothing const& smoothing = {})
    {
        return smoothed<Out>(in, smoothing, int(axesOf<Filter>));
    }
    static std::string name() { return Filter::getClassInfo()->getName().c_str(); }
    static std::string passName()
    {
        return isPlanar<Filter> ? "FiniteImpulseResponseFilter2D" : "FiniteImpulseResponseFilter3D";
    }

    Ref<Filter> gaussian = Filter::New();
};
using GaussianFilters = testing::Types<GaussianFilter2D, GaussianFilter3D>;
TYPED_TEST_SUITE(GaussianFilterTest, GaussianFilters);

Smoothing const uneven{{1.3, 0.6, 0.9}, {2.5, 3, 2}, true};
Smoothing const unevenAndCut{{1.3, 0.6, 0.9}, {2.5, 3, 2}, false};

TYPED_TEST(GaussianFilterTest, isRegisteredUnderItsName)
{
    std::string const name = isPlanar<TypeParam> ? "GaussianFilter2D" : "GaussianFilter3D";
    EXPECT_EQ(this->name(), name);
    EXPECT_EQ(AlgoInfo::fromName(name.c_str()), TypeParam::getClassInfo());
    EXPECT_EQ(levelsOf(*this->gaussian), std::vector<OptimLevelType>{SCALAR});
}

TYPED_TEST(GaussianFilterTest, declaresItsPropertiesInOrder)
{
    std::vector<std::string> expected{"const image input = null", "FilteringType mode = QEL_FIR", "double sigmaX = 2",
                                      "double sigmaY = 2"};
    if (!isPlanar<TypeParam>)
        expected.push_back("double sigmaZ = 2");
    expected.insert(expected.end(), {"double kernelSizeFactorX = 3", "double kernelSizeFactorY = 3"});
    if (!isPlanar<TypeParam>)
        expected.push_back("double kernelSizeFactorZ = 3");
    expected.insert(expected.end(), {"OutputStrategyType outputStrategy = QEL_SAME_AS_INPUT", "unknown accurate"});
    EXPECT_EQ(describedInputs(*this->gaussian), expected);
    EXPECT_EQ(describedOutputs(*this->gaussian), std::vector<std::string>{"image output = null"});
    EXPECT_TRUE(this->gaussian->accurate.get());
    EXPECT_EQ(this->gaussian->mode.getEnumInfo()->getLabelFromValue(1), String("QEL_IIR"));
    EXPECT_EQ(this->gaussian->outputStrategy.getEnumInfo()->getLabelFromValue(1), String("QEL_FORCED_TO_FLOAT"));
}

TYPED_TEST(GaussianFilterTest, reachesSigmaTimesItsFactor)
{
    HostImage image;
    this->connect(image, image, {{1.1, 2, 0.4}, {2, 3.5, 2}, true});
    AlgoBorderInfluence influence = this->gaussian->getAlgoBorderInfluence();
    unsigned long const plans = isPlanar<TypeParam> ? 0 : 1;
    unsigned long const expected[] = {3, 3, 7, 7, plans, plans, 0, 0, 0, 0};
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), expected[direction]) << direction;
    this->gaussian->sigmaX = 1e300;
    this->gaussian->sigmaY = std::numeric_limits<double>::quiet_NaN();
    influence = this->gaussian->getAlgoBorderInfluence();
    EXPECT_EQ(influence.getNumOfVoxels(COLUMNS_NEGATIVE), ~0ul);
    EXPECT_EQ(influence.getNumOfVoxels(ROWS_NEGATIVE), 0u);
}

TYPED_TEST(GaussianFilterTest, smoothsEveryVoxelTypeByEveryStrategy)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (Smoothing const& smoothing : {uneven, unevenAndCut}) {
                SCOPED_TRACE(testing::Message() << "accurate " << smoothing.accurate);
                auto const picture = randomPicture<T>(Shape{23, 9, 5, 1, 2}, seed++);
                HostImage const in(picture);
                HostImage out;
                this->connect(in, out, smoothing);
                this->gaussian->outputStrategy = QEL_SAME_AS_INPUT;
                this->gaussian->run();
                EXPECT_TRUE(samePicture(this->template model<T>(picture, smoothing), out));
                this->gaussian->outputStrategy = QEL_FORCED_TO_FLOAT;
                this->gaussian->run();
                EXPECT_TRUE(samePicture(this->template model<float>(picture, smoothing), out));
            }
        });
    });
}

TYPED_TEST(GaussianFilterTest, worksOnEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : allShapes()) {
            auto const picture = calmPicture<unsigned char>(shape, seed++);
            memory::InMemoryImage const in = toImage(picture);
            HostImage out;
            this->connect(in, out);
            this->gaussian->run();
            EXPECT_TRUE(samePicture(this->template model<unsigned char>(picture), out));
        }
    });
}

TYPED_TEST(GaussianFilterTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : {Shape{1, 1}, Shape{33, 300, 2}, Shape{2100, 21}, Shape{30, 9, 90}})
            for (Smoothing const& smoothing : {uneven, unevenAndCut}) {
                auto const picture = calmPicture<short>(shape, seed);
                HostImage image(picture);
                this->connect(image, image, smoothing);
                this->gaussian->run();
                EXPECT_TRUE(samePicture(this->template model<short>(picture, smoothing), image));
                auto const reals = calmPicture<float>(shape, seed++);
                HostImage real(reals);
                this->connect(real, real, smoothing);
                this->gaussian->run();
                EXPECT_TRUE(samePicture(this->template model<float>(reals, smoothing), real));
            }
    });
}

TYPED_TEST(GaussianFilterTest, worksInPlaceThroughAnAdapter)
{
    auto const picture = calmPicture<short>(Shape{40, 90, 3}, 1);
    HostImage image(picture);
    ImageModelProxy const in(&image, QEL_INT16);
    this->connect(in, image, unevenAndCut);
    this->gaussian->run();
    EXPECT_TRUE(samePicture(this->template model<short>(picture, unevenAndCut), image));
}

TYPED_TEST(GaussianFilterTest, keepsAConstantUpToTheLastUnit)
{
    HostImage const in(Picture<unsigned char>(Shape{40, 20, 5}, 255));
    HostImage out;
    this->connect(in, out);
    this->gaussian->run();
    for (unsigned char const voxel : fromImage<unsigned char>(out).voxels)
        ASSERT_GE(voxel, 254);
    HostImage const reals(Picture<float>(Shape{40, 20, 5}, 1.f));
    this->connect(reals, out);
    this->gaussian->run();
    for (float const voxel : fromImage<float>(out).voxels)
        ASSERT_NEAR(voxel, 1, 1e-6);
}

TYPED_TEST(GaussianFilterTest, isTheNormalDistributionAroundAPoint)
{
    Picture<double> point(Shape{41, 41, 41});
    point.at(20, 20, 20) = 1;
    HostImage const in(point);
    HostImage out;
    this->connect(in, out, {{2, 2, 2}, {5, 5, 5}, true});
    this->gaussian->run();
    auto const result = fromImage<double>(out);
    for (long z = 18; z <= 22; ++z)
        for (long y = 15; y <= 25; ++y)
            for (long x = 15; x <= 25; ++x) {
                double const squared = double((x - 20) * (x - 20) + (y - 20) * (y - 20));
                double expected = std::exp(-squared / 8) / (2 * M_PI * 4);
                if (isPlanar<TypeParam>)
                    expected *= z == 20;
                else
                    expected *= std::exp(-double((z - 20) * (z - 20)) / 8) / (std::sqrt(2 * M_PI) * 2);
                ASSERT_NEAR(result.at(static_cast<unsigned long>(x), static_cast<unsigned long>(y),
                                      static_cast<unsigned long>(z)),
                            expected, 1e-6);
            }
}

TYPED_TEST(GaussianFilterTest, takesKernelsOfOnePointAndLargerThanTheImage)
{
    auto const picture = calmPicture<float>(Shape{9, 7, 3}, 3);
    HostImage const in(picture);
    HostImage out;
    Smoothing const narrow{{0.1, 0.1, 0.1}, {1, 1, 1}, true};
    this->connect(in, out, narrow);
    this->gaussian->run();
    EXPECT_TRUE(samePicture(picture, out));
    Smoothing const wide{{9, 11, 7}, {4, 4, 4}, true};
    this->connect(in, out, wide);
    this->gaussian->run();
    EXPECT_TRUE(samePicture(this->template model<float>(picture, wide), out));
}

TYPED_TEST(GaussianFilterTest, acceptsASigmaOfZeroThatWeighsByNaN)
{
    HostImage const in(calmPicture<float>(Shape{9, 7, 3}, 3));
    HostImage out;
    this->connect(in, out, {{0, 2, 2}, {3, 3, 3}, true});
    this->gaussian->run();
    for (float const voxel : fromImage<float>(out).voxels)
        ASSERT_TRUE(std::isnan(voxel));
}

TYPED_TEST(GaussianFilterTest, onlyShapesItsOutputInTheRecursiveMode)
{
    HostImage in(calmPicture<short>(Shape{9, 7, 3}, 3));
    in.setSpacingOf(ROWS, 7);
    HostImage out;
    this->connect(in, out);
    this->gaussian->mode = QEL_IIR;
    this->gaussian->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 7);
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
    EXPECT_EQ(in.callsOf(READ_ROW), 0u);
    EXPECT_TRUE(isAtRest(*this->gaussian));
}

TYPED_TEST(GaussianFilterTest, shapesItsOutput)
{
    HostImage in(QEL_UINT8, {4, 3, 2, 2});
    in.setInterpretation(QEL_BINARY);
    in.setSpacingOf(ROWS, 7);
    HostImage out(QEL_FLOAT64, {1, 1});
    this->connect(in, out);
    this->gaussian->outputStrategy = QEL_FORCED_TO_FLOAT;
    this->gaussian->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 7);
    EXPECT_EQ(out.getInterpretation(), QEL_BINARY);
    // The rule of one run is gone again.
    this->gaussian->outputStrategy = QEL_SAME_AS_INPUT;
    this->gaussian->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
}

TYPED_TEST(GaussianFilterTest, refusesWrongParametersInTheRulesWords)
{
    auto& filter = *this->gaussian;
    std::string const name = this->name();
    for (int attempt = 0; attempt < 2; ++attempt) // a failed run leaves no rule behind
        EXPECT_QEL_WHAT(filter.run(), RuleException, ruleText("The parameter \"input\" must be set.", "input", name));
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 4, 5});
    filter.input = &complex;
    EXPECT_QEL_THROW(filter.run(), RuleException,
                     "The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                     "int16, int32, int64, float32, float64. Current data type is complex float32.");
    HostImage const in(QEL_UINT8, {3, 4, 5});
    filter.input = &in;
    EXPECT_QEL_WHAT(filter.run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    HostImage out;
    filter.output = &out;
    auto const refuses = [&](auto& property, auto wrong, auto right, std::string const& text) {
        property = wrong;
        EXPECT_QEL_WHAT(filter.run(), RuleException, ruleText(text, property.getName().c_str(), name));
        property = right;
    };
    refuses(filter.mode, 2, QEL_FIR, "The value of the parameter \"mode\" is not valid");
    refuses(filter.outputStrategy, -1, QEL_SAME_AS_INPUT, "The value of the parameter \"outputStrategy\" is not valid");
    refuses(filter.sigmaX, -1.0, 2.0, "The parameter \"sigmaX\" (value=-1) must be greater than or equal to <0>.");
    refuses(filter.sigmaY, -0.5, 2.0, "The parameter \"sigmaY\" (value=-0.5) must be greater than or equal to <0>.");
    refuses(filter.kernelSizeFactorX, 0.0, 3.0, "The parameter \"kernelSizeFactorX\" must be strictly positive.");
    refuses(filter.kernelSizeFactorY, -3.0, 3.0, "The parameter \"kernelSizeFactorY\" must be strictly positive.");
    if constexpr (!isPlanar<TypeParam>) {
        refuses(filter.sigmaZ, -1.0, 2.0, "The parameter \"sigmaZ\" (value=-1) must be greater than or equal to <0>.");
        refuses(filter.kernelSizeFactorZ, 0.0, 3.0, "The parameter \"kernelSizeFactorZ\" must be strictly positive.");
    }
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    filter.run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
    EXPECT_TRUE(isAtRest(filter));
}

TYPED_TEST(GaussianFilterTest, refusesToRetypeItsInput)
{
    auto const picture = randomPicture<short>(Shape{7, 5, 3}, 1);
    HostImage image(picture);
    this->connect(image, image);
    this->gaussian->outputStrategy = QEL_FORCED_TO_FLOAT;
    EXPECT_QEL_WHAT(this->gaussian->run(), RuleException,
                    ruleText("The parameter \"input\" cannot be used as output image if it must be retyped.", "output",
                             this->name()));
    EXPECT_TRUE(samePicture(picture, image));
}

TYPED_TEST(GaussianFilterTest, refusesAKernelBeyondTheMemoryBeforeItWritesAVoxel)
{
    HostImage const in(QEL_UINT8, {3, 4});
    HostImage out;
    struct Case
    {
        double sigma, factor;
        char const* text;
    };
    for (Case const& hostile :
         {Case{1e300, 3, "1e+300 and size factor 3."}, Case{1e300, 1e300, "1e+300 and size factor 1e+300."},
          Case{1e12, 3, "1e+12 and size factor 3."},
          Case{std::numeric_limits<double>::quiet_NaN(), 3, "nan and size factor 3."}}) {
        this->connect(in, out, {{2, hostile.sigma, 2}, {3, hostile.factor, 3}, true});
        EXPECT_QEL_THROW(this->gaussian->run(), InvalidCall,
                         std::string("The available memory does not hold a kernel of sigma ") + hostile.text);
        EXPECT_TRUE(isAtRest(*this->gaussian));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TYPED_TEST(GaussianFilterTest, namesThePassInWhichAnImageFails)
{
    HostImage in(calmPicture<unsigned char>(Shape{9, 7, 3}, 1));
    HostImage out;
    this->connect(in, out);
    in.failOn(READ_ROW);
    std::string const levels = " \n#2 From " + this->passName() + " \n#3 From " + this->name() + " \n";
    EXPECT_QEL_WHAT(this->gaussian->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in readRowAt implementation, return value is false" + levels);
    EXPECT_TRUE(isAtRest(*this->gaussian));
    in.behave();
    out.failOn(WRITE_ROW);
    EXPECT_QEL_WHAT(this->gaussian->run(), UnexpectedError,
                    "Unexpected error :\n#1 Error : Error in writeRowAt implementation, return value is false" +
                        levels);
    out.behave();
    this->gaussian->run();
    EXPECT_TRUE(samePicture(this->template model<unsigned char>(fromImage<unsigned char>(in)), out));
}

TYPED_TEST(GaussianFilterTest, makesProgressWithItsPasses)
{
    ObservedImage in(QEL_UINT8, {64, 600, 3});
    HostImage out;
    std::vector<double> progress;
    in.onRead = [&] { progress.push_back(this->gaussian->getProgress()); };
    this->connect(in, out);
    withThreads(1, [&] { this->gaussian->run(); });
    EXPECT_EQ(this->gaussian->getProgress(), 100);
    EXPECT_LE(progress.back(), 100.0 / axesOf<TypeParam>); // the input is not read after the first pass
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_GT(progress.back(), 0);
}

TYPED_TEST(GaussianFilterTest, stopsWhenItIsCancelled)
{
    ObservedImage in(QEL_UINT8, {64, 2000, 3});
    HostImage out;
    in.onRead = [&] { this->gaussian->cancelExecution(); };
    this->connect(in, out);
    this->gaussian->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 3 * 2000u);
    EXPECT_LT(this->gaussian->getProgress(), 100);
    EXPECT_TRUE(isAtRest(*this->gaussian));
    in.onRead = nullptr;
    this->gaussian->run();
    EXPECT_GE(out.callsOf(WRITE_ROW), 3 * 2000u);
    // In place a temporary image takes what the first pass makes.
    ObservedImage both(QEL_UINT8, {64, 2000, 3});
    both.onRead = [&] { this->gaussian->cancelExecution(); };
    this->connect(both, both);
    this->gaussian->run();
    EXPECT_EQ(both.callsOf(WRITE_ROW), 0u);
}

TYPED_TEST(GaussianFilterTest, needsATemporaryImageOnlyForAnotherType)
{
    // Passes that end in the output write it once more for each axis.
    auto const writesOf = [&](VoxelTypes type, bool accurate, int strategy) {
        HostImage const in(type, {30, 20, 4});
        HostImage out;
        this->connect(in, out);
        this->gaussian->accurate = accurate;
        this->gaussian->outputStrategy = strategy;
        withThreads(1, [&] { this->gaussian->run(); });
        return out.callsOf(WRITE_ROW);
    };
    unsigned long const once = writesOf(QEL_UINT8, true, QEL_SAME_AS_INPUT);
    EXPECT_EQ(writesOf(QEL_FLOAT64, true, QEL_SAME_AS_INPUT), once);
    EXPECT_EQ(writesOf(QEL_UINT8, false, QEL_FORCED_TO_FLOAT), once);
    // Within a plan no image stands between the axes.
    unsigned long const between = isPlanar<TypeParam> ? 0 : 1;
    EXPECT_GE(writesOf(QEL_UINT8, false, QEL_SAME_AS_INPUT), once + between);
    EXPECT_GE(writesOf(QEL_UINT8, true, QEL_FORCED_TO_FLOAT), once + between);
    EXPECT_GE(writesOf(QEL_FLOAT32, true, QEL_SAME_AS_INPUT), once + between);
    EXPECT_GE(writesOf(QEL_FLOAT32, false, QEL_FORCED_TO_FLOAT), once + between);
}

TYPED_TEST(GaussianFilterTest, runsPolled)
{
    auto const picture = calmPicture<float>(Shape{300, 200, 3}, 3);
    HostImage const in(picture);
    HostImage out;
    this->connect(in, out);
    Poller poller;
    this->gaussian->run(&poller);
    EXPECT_TRUE(samePicture(this->template model<float>(picture), out));
    EXPECT_EQ(poller.last, 100);
}

} // namespace
} // namespace qel::test
