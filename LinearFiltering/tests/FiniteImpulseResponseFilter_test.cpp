#include "LinearFiltering/tests/FIRModel.h"

#include "Core/private/ImageModelProxy.h"
#include "LinearFiltering/private/FIRKernels.h"

#include <qel/ImageModelAdapter.h>
#include <qel/linear_filtering/kernel_factory.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>

namespace xsimd {
struct sse4_1;
struct avx2;
} // namespace xsimd

namespace qel::test {
namespace {

using linear_filtering::FiniteImpulseResponseFilter2D;
using linear_filtering::FiniteImpulseResponseFilter3D;
using namespace linear_filtering;

Points randomPoints(unsigned seed, int count, long reach)
{
    std::mt19937 random(seed);
    auto const step = [&] { return long(random() % static_cast<unsigned long>(2 * reach + 1)) - reach; };
    Points points;
    for (int i = 0; i < count; ++i)
        points.push_back({step(), step(), step(), (double(random() % 2001) - 1000) / 700});
    return points;
}

/// Kernels that break bodies: one-sided, far from the voxel, with repeated points, larger than small images.
std::vector<Points> oddKernels()
{
    return {{{0, 0, 0, 1}},
            {{0, 0, 0, -2.5}, {0, 0, 0, 0.5}},
            {{1, 0, 0, 1}},
            {{0, 3, 0, 1}, {0, 1, 0, 0.25}},
            {{0, -4, 0, 1}},
            {{0, 0, 2, 0.3}},
            {{0, 0, -2, 0.3}, {0, 0, -1, 0.7}},
            {{-2, 1, -1, 0.1}, {5, 1, 0, 0.2}, {0, -3, 2, 0.3}},
            {{0, 0, 0, 1}, {0, 40, 0, 1}, {70, 0, 11, 1}},
            randomPoints(1, 20, 3),
            randomPoints(2, 9, 9)};
}

/// Values that keep sums within every integer type that they are cast to.
template <class T> Picture<T> calmPicture(Shape const& shape, unsigned seed)
{
    if constexpr (std::is_unsigned_v<T>)
        return randomPictureBetween<T>(shape, seed, 0, 100);
    else
        return randomPictureBetween<T>(shape, seed, T(-100), T(100));
}

template <class Filter> class FIRFilterTest : public testing::Test
{
protected:
    template <class In> void connect(In const& in, ImageModel& out, Points const& points)
    {
        filter->input = &in;
        filter->output = &out;
        setKernel(*filter, points);
    }
    template <class Out> void askFor()
    {
        filter->outputMode = QEL_OUTPUT_MODE_CUSTOM;
        filter->outputCustomType = VoxelTypeOf<Out>::value;
    }
    template <class Work, class Out, class In> Picture<Out> model(Picture<In> const& in, Points const& points)
    {
        return filtered<Work, Out>(in, points, isFlat<Filter>);
    }
    static std::string name() { return Filter::getClassInfo()->getName().c_str(); }

    Ref<Filter> filter = Filter::New();
};
using Filters = testing::Types<FiniteImpulseResponseFilter2D, FiniteImpulseResponseFilter3D>;
TYPED_TEST_SUITE(FIRFilterTest, Filters);

TYPED_TEST(FIRFilterTest, isRegisteredUnderItsName)
{
    std::string const name = isFlat<TypeParam> ? "FiniteImpulseResponseFilter2D" : "FiniteImpulseResponseFilter3D";
    EXPECT_EQ(this->name(), name);
    EXPECT_EQ(AlgoInfo::fromName(name.c_str()), TypeParam::getClassInfo());
}

TYPED_TEST(FIRFilterTest, declaresItsPropertiesInOrder)
{
    auto& algorithm = *this->filter;
    std::string const kernel = isFlat<TypeParam> ? "unknown kernel2D" : "unknown kernel3D";
    EXPECT_EQ(describedInputs(algorithm), (std::vector<std::string>{"const image input = null", kernel,
                                                                    "OutputModeType outputMode = QEL_OUTPUT_MODE_AUTO",
                                                                    "VoxelTypes outputCustomType = QEL_INT16"}));
    EXPECT_EQ(describedOutputs(algorithm), std::vector<std::string>{"image output = null"});
    EXPECT_EQ(levelsOf(algorithm), (std::vector<OptimLevelType>{SCALAR, VEC_SSE}));
    EXPECT_EQ(algorithm.outputMode.getEnumInfo()->getEnumName(), String("OutputModeType"));
    EXPECT_EQ(algorithm.outputMode.getEnumInfo()->getValueFromLabel("QEL_OUTPUT_MODE_CUSTOM"), 1);
    if constexpr (isFlat<TypeParam>)
        EXPECT_EQ(algorithm.kernel2D.get(), kernel::Kernel2D());
    else
        EXPECT_EQ(algorithm.kernel3D.get(), kernel::Kernel3D());
}

TYPED_TEST(FIRFilterTest, readsItsKernelFromText)
{
    BaseProperty* const property = this->filter->getPropertyfromName(isFlat<TypeParam> ? "kernel2D" : "kernel3D");
    String rest;
    ASSERT_TRUE(property->read(isFlat<TypeParam> ? "@kernel2D:0_0_1+1_0_0.5" : "@kernel3D:0_0_0_1+1_0_0_0.5", rest));
    auto const picture = calmPicture<float>(Shape{7, 3, 2}, 1);
    HostImage const in(picture);
    HostImage out;
    this->filter->input = &in;
    this->filter->output = &out;
    this->filter->run();
    EXPECT_TRUE(samePicture(this->template model<float, float>(picture, {{0, 0, 0, 1}, {1, 0, 0, 0.5}}), out));
}

TYPED_TEST(FIRFilterTest, reachesAsFarAsItsKernel)
{
    auto const influence = [&](Points const& points, DirectionTypes direction) {
        setKernel(*this->filter, points);
        return this->filter->getAlgoBorderInfluence().getNumOfVoxels(direction);
    };
    Points const points{{-3, 4, 2, 1}, {-1, 5, -6, 1}};
    unsigned long const plansBefore = isFlat<TypeParam> ? 0 : 6;
    unsigned long const plansBehind = isFlat<TypeParam> ? 0 : 2;
    EXPECT_EQ(influence(points, COLUMNS_NEGATIVE), 3u);
    EXPECT_EQ(influence(points, COLUMNS_POSITIVE), 0u);
    EXPECT_EQ(influence(points, ROWS_NEGATIVE), 0u);
    EXPECT_EQ(influence(points, ROWS_POSITIVE), 5u);
    EXPECT_EQ(influence(points, PLANS_NEGATIVE), plansBefore);
    EXPECT_EQ(influence(points, PLANS_POSITIVE), plansBehind);
    EXPECT_EQ(influence(points, TIME_SERIES_POSITIVE), 0u);
    EXPECT_EQ(influence({{std::numeric_limits<long>::min(), 0, 0, 1}}, COLUMNS_NEGATIVE), 1ul << 63);
    setKernel(*this->filter, {});
    EXPECT_TRUE(hasNoBorder(*this->filter));
}

TYPED_TEST(FIRFilterTest, weighsVoxelsOfEveryTypeInTheOrderOfThePoints)
{
    for (OptimLevelType const level : {SCALAR, VEC_SSE}) {
        SCOPED_TRACE(testing::Message() << "level " << level);
        forceLevel(*this->filter, level);
        onOneAndFourThreads([&] {
            unsigned seed = 1;
            forEachVoxelType([&]<class T>() {
                for (Points const& points : oddKernels()) {
                    auto const picture = randomPicture<T>(Shape{37, 13, 4, 1, 2}, seed++, true);
                    HostImage const in(picture);
                    HostImage out;
                    this->connect(in, out, points);
                    this->template askFor<float>();
                    this->filter->run();
                    EXPECT_TRUE(samePicture(this->template model<float, float>(picture, points), out));
                    this->template askFor<double>();
                    this->filter->run();
                    EXPECT_TRUE(samePicture(this->template model<double, double>(picture, points), out));
                }
            });
        });
    }
}

TYPED_TEST(FIRFilterTest, cutsItsResultToEveryType)
{
    unsigned seed = 1;
    for (OptimLevelType const level : {SCALAR, VEC_SSE}) {
        forceLevel(*this->filter, level);
        forEachVoxelTypePair([&]<class In, class Out>() {
            auto const points = randomPoints(seed, 7, 2);
            auto const picture = randomPicture<In>(Shape{35, 5, 3}, seed++);
            HostImage const in(picture);
            HostImage out;
            this->connect(in, out, points);
            this->template askFor<Out>();
            this->filter->run();
            EXPECT_TRUE(samePicture(this->template model<WorkOf<Out>, Out>(picture, points), out));
        });
    }
}

TYPED_TEST(FIRFilterTest, worksOnEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : allShapes())
            for (Points const& points :
                 {randomPoints(3, 6, 3), Points{{0, -6, 0, 1}, {2, 5, 1, 0.5}, {-30, 0, -1, 2}}}) {
                auto const picture = calmPicture<float>(shape, seed++);
                memory::InMemoryImage const in = toImage(picture);
                HostImage out;
                this->connect(in, out, points);
                this->filter->run();
                EXPECT_TRUE(samePicture(this->template model<float, float>(picture, points), out));
            }
    });
}

TYPED_TEST(FIRFilterTest, cutsBlocksOfLargeImagesWithoutASeam)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : {Shape{70, 400, 2}, Shape{9000, 5}, Shape{300, 30, 150}, Shape{600, 70, 9}})
            for (Points const& points : {Points{{0, -3, 0, 1}, {0, 3, 0, 2}}, Points{{-1, 0, -2, 1}, {1, 1, 2, 0.5}}}) {
                auto const picture = calmPicture<short>(shape, seed++);
                HostImage const in(picture);
                HostImage out;
                this->connect(in, out, points);
                this->filter->run();
                EXPECT_TRUE(samePicture(this->template model<float, short>(picture, points), out));
            }
    });
}

TYPED_TEST(FIRFilterTest, takesKernelsThatReachFarBeyondTheImage)
{
    long const far = std::numeric_limits<long>::max();
    auto const picture = calmPicture<float>(Shape{7, 5, 3}, 9);
    HostImage const in(picture);
    HostImage out;
    for (Points const& points :
         {Points{{100, -77, 31, 1}, {-1000, 1, 1, 2}}, Points{{1000000007, -1000000009, 999999937, 0.5}}}) {
        this->connect(in, out, points);
        this->filter->run();
        EXPECT_TRUE(samePicture(this->template model<float, float>(picture, points), out));
    }
    // The ends of the offsets' type: 2^63 - 1 is odd, and -2^63 even.
    HostImage const small(Picture<float>(Shape{2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8}));
    this->connect(small, out, {{far, 0, 0, 1}, {0, -far - 1, 0, 100}});
    this->filter->run();
    auto const result = fromImage<float>(out);
    Picture<float> expected(Shape{2, 2, 2});
    forEachVoxel(expected.shape, [&](unsigned long c, unsigned long r, unsigned long p, unsigned long, unsigned long) {
        auto const at = [&](unsigned long x, unsigned long y) { return float(1 + x + 2 * y + 4 * p); };
        // 2^63 is a multiple of the period 4: one step back, and no step at all.
        expected.at(c, r, p) = at(mirrored(long(c) - 1, 2), r) + 100 * at(c, r);
    });
    EXPECT_TRUE(samePicture(expected, result));
}

TYPED_TEST(FIRFilterTest, takesNoMemoryForWhatLiesBetweenFarPoints)
{
    // Rows and plans between the points would be a hundred times the image.
    auto const picture = calmPicture<float>(Shape{64, 300, 40}, 9);
    HostImage const in(picture);
    HostImage out;
    Points const points{{0, 0, 0, 1}, {0, 290, 0, 2}, {0, 0, 39, 3}};
    this->connect(in, out, points);
    this->filter->run();
    EXPECT_TRUE(samePicture(this->template model<float, float>(picture, points), out));
    // No row is read but those that have a point.
    EXPECT_LE(in.callsOf(READ_ROW), 2 * 3 * 300 * 40u);
}

TYPED_TEST(FIRFilterTest, writesZeroWithoutAPoint)
{
    for (OptimLevelType const level : {SCALAR, VEC_SSE}) {
        forceLevel(*this->filter, level);
        HostImage const in(randomPicture<float>(Shape{37, 4, 3}, 1, true));
        HostImage out;
        this->connect(in, out, {});
        this->filter->run();
        EXPECT_TRUE(samePicture(Picture<float>(Shape{37, 4, 3}, 0.f), out));
    }
}

TYPED_TEST(FIRFilterTest, copiesByAPointOfWeightOne)
{
    forEachVoxelType([&]<class T>() {
        auto const picture = calmPicture<T>(Shape{19, 5, 3}, 4);
        HostImage const in(picture);
        HostImage out;
        this->connect(in, out, {{0, 0, 0, 1}});
        this->template askFor<T>();
        this->filter->run();
        EXPECT_TRUE(samePicture(picture, out));
    });
}

TYPED_TEST(FIRFilterTest, doesNotFlipItsKernel)
{
    Picture<float> picture(Shape{5, 3, 1});
    picture.at(2, 1) = 1;
    HostImage const in(picture);
    HostImage out;
    this->connect(in, out, {{1, 0, 0, 7}});
    this->filter->run();
    EXPECT_EQ(fromImage<float>(out).at(1, 1), 7);
    EXPECT_EQ(fromImage<float>(out).at(3, 1), 0);
}

TYPED_TEST(FIRFilterTest, cutsTowardsZeroAndDoesNotSaturate)
{
    HostImage const in(Picture<unsigned char>(Shape{3}, {1, 3, 200}));
    HostImage out;
    this->connect(in, out, {{0, 0, 0, -0.5}});
    this->filter->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{3}, {0, -1, -100}), out));
    this->connect(in, out, {{0, 0, 0, 2}});
    this->template askFor<unsigned char>();
    this->filter->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{3}, {2, 6, 144}), out));
}

TYPED_TEST(FIRFilterTest, computesInTheTypeOfItsOutput)
{
    // 2^24 + 1 is no float.
    HostImage const in(Picture<int>(Shape{1}, {16777217}));
    HostImage out;
    this->connect(in, out, {{0, 0, 0, 1}});
    this->filter->run();
    EXPECT_TRUE(samePicture(Picture<int>(Shape{1}, {16777217}), out));
    this->template askFor<float>();
    this->filter->run();
    EXPECT_TRUE(samePicture(Picture<float>(Shape{1}, {16777216}), out));
    this->template askFor<double>();
    this->filter->run();
    EXPECT_TRUE(samePicture(Picture<double>(Shape{1}, {16777217}), out));
}

TYPED_TEST(FIRFilterTest, choosesTheOutputTypeOfASumByItself)
{
    VoxelTypes const expected[] = {QEL_INT16, QEL_INT32, QEL_INT64, QEL_INT64,   QEL_INT16,
                                   QEL_INT16, QEL_INT32, QEL_INT64, QEL_FLOAT32, QEL_FLOAT64};
    forEachVoxelType([&]<class T>() {
        HostImage in(VoxelTypeOf<T>::value, {4, 3, 2, 2});
        in.setSpacingOf(ROWS, 7);
        HostImage out(QEL_UINT8, {1, 1});
        this->connect(in, out, {{0, 0, 0, 1}});
        this->filter->run();
        EXPECT_EQ(out.getVoxelType(), expected[VoxelTypeOf<T>::value]);
        EXPECT_EQ(out.sizes(), in.sizes());
        EXPECT_EQ(out.getSpacingOf(ROWS), 7);
        // The rule of one run is gone again.
        this->template askFor<signed char>();
        this->filter->run();
        EXPECT_EQ(out.getVoxelType(), QEL_INT8);
        this->filter->outputMode = QEL_OUTPUT_MODE_AUTO;
    });
}

TYPED_TEST(FIRFilterTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape :
             {Shape{1, 1}, Shape{33, 400, 2}, Shape{9000, 21}, Shape{30, 9, 200}, Shape{70, 90, 3, 2}})
            for (Points const& points : oddKernels()) {
                if (shape.count() > 100000 && points.size() > 10)
                    continue;
                auto const picture = calmPicture<short>(shape, seed);
                HostImage image(picture);
                this->connect(image, image, points);
                this->template askFor<short>();
                this->filter->run();
                EXPECT_TRUE(samePicture(this->template model<float, short>(picture, points), image)) << seed;
                auto const reals = calmPicture<float>(shape, seed++);
                HostImage real(reals);
                this->connect(real, real, points);
                this->template askFor<float>();
                this->filter->run();
                EXPECT_TRUE(samePicture(this->template model<float, float>(reals, points), real)) << seed;
            }
    });
}

TYPED_TEST(FIRFilterTest, worksInPlaceThroughTwoAdapters)
{
    onOneAndFourThreads([&] {
        Points const points{{0, -5, 0, 1}, {-7, 4, 1, 0.5}};
        auto const picture = calmPicture<short>(Shape{40, 300, 3}, 1);
        HostImage image(picture);
        ImageModelProxy const in(&image, QEL_FLOAT32);
        ImageModelProxy out(&image, QEL_INT32);
        this->connect(in, out, points);
        this->template askFor<int>();
        this->filter->run();
        EXPECT_TRUE(samePicture(this->template model<double, short>(picture, points), image));
    });
}

TYPED_TEST(FIRFilterTest, refusesToRetypeItsInput)
{
    auto const picture = randomPicture<unsigned char>(Shape{7, 5, 3}, 1);
    HostImage image(picture);
    this->connect(image, image, {{0, 0, 0, 1}});
    std::string const text = ruleText("The parameter \"input\" cannot be used as output image if it must be retyped.",
                                      "output", this->name());
    EXPECT_QEL_WHAT(this->filter->run(), RuleException, text);
    this->template askFor<float>();
    EXPECT_QEL_WHAT(this->filter->run(), RuleException, text);
    EXPECT_TRUE(samePicture(picture, image));
    EXPECT_TRUE(isAtRest(*this->filter));
}

TYPED_TEST(FIRFilterTest, refusesWrongParametersInTheRulesWords)
{
    auto& algorithm = *this->filter;
    std::string const name = this->name();
    for (int attempt = 0; attempt < 2; ++attempt) // a failed run leaves no rule behind
        EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                        ruleText("The parameter \"input\" must be set.", "input", name));
    HostImage const complex(QEL_COMPLEX_FLOAT64, {3, 4, 5});
    algorithm.input = &complex;
    EXPECT_QEL_THROW(algorithm.run(), RuleException,
                     "The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                     "int16, int32, int64, float32, float64. Current data type is complex float64.");
    HostImage const in(QEL_UINT8, {3, 4, 5});
    algorithm.input = &in;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException, ruleText("The parameter \"output\" must be set.", "output", name));
    HostImage out;
    algorithm.output = &out;
    algorithm.outputMode = 2;
    EXPECT_QEL_WHAT(algorithm.run(), RuleException,
                    ruleText("The value of the parameter \"outputMode\" is not valid", "outputMode", name));
    for (int const mode : {QEL_OUTPUT_MODE_CUSTOM, QEL_OUTPUT_MODE_AUTO}) {
        algorithm.outputMode = mode;
        for (VoxelTypes const type : {QEL_COMPLEX_FLOAT32, QEL_COMPLEX_FLOAT64}) {
            algorithm.outputCustomType = type;
            EXPECT_QEL_WHAT(
                algorithm.run(), RuleException,
                ruleText("The value of the parameter \"outputCustomType\" is not valid", "outputCustomType", name));
        }
    }
    EXPECT_EQ(out.callsOf(RESERVE), 0u);
    algorithm.outputCustomType = QEL_INT8;
    algorithm.run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT16);
    EXPECT_TRUE(isAtRest(algorithm));
}

TYPED_TEST(FIRFilterTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = calmPicture<unsigned char>(Shape{9, 7, 3}, 1);
    Points const points = randomPoints(1, 5, 2);
    expectFailingImagesAreReported<TypeParam>(
        [&](TypeParam& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
            setKernel(algorithm, points);
        },
        [&](HostImages const& images) {
            return samePicture(this->template model<float, short>(picture, points), *images[1]);
        });
}

TYPED_TEST(FIRFilterTest, stopsWhenItIsCancelled)
{
    HostImage out;
    ObservedImage in(QEL_FLOAT32, {64, 2000, 3});
    in.onRead = [&] { this->filter->cancelExecution(); };
    this->connect(in, out, {{0, 1, 0, 1}});
    this->filter->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 3 * 2000u);
    EXPECT_TRUE(isAtRest(*this->filter));
    in.onRead = nullptr;
    this->filter->run();
    EXPECT_EQ(this->filter->getProgress(), 100);
    EXPECT_GE(out.callsOf(WRITE_ROW), 3 * 2000u);
}

TYPED_TEST(FIRFilterTest, runsPolled)
{
    auto const picture = calmPicture<float>(Shape{300, 200, 3}, 3);
    HostImage const in(picture);
    HostImage out;
    Points const points = randomPoints(5, 6, 3);
    this->connect(in, out, points);
    Poller poller;
    this->filter->run(&poller);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_TRUE(samePicture(this->template model<float, float>(picture, points), out));
}

TEST(FiniteImpulseResponseFilter2DTest, leavesAConstantWithoutALaplacian)
{
    HostImage const in(Picture<unsigned char>(Shape{9, 8}, 77));
    HostImage out;
    Ref<FiniteImpulseResponseFilter2D> filter = FiniteImpulseResponseFilter2D::New();
    filter->input = &in;
    filter->output = &out;
    for (Neighborhood2DType const type : {QEL_NEIGHBORHOOD2D_4, QEL_NEIGHBORHOOD2D_8}) {
        filter->kernel2D = kernel_factory::createNeighborhoodLaplacian2D(type);
        filter->run();
        EXPECT_TRUE(samePicture(Picture<short>(Shape{9, 8}, 0), out));
    }
}

TEST(FiniteImpulseResponseFilter2DTest, hasTheSlopeOfARamp)
{
    Picture<short> ramp(Shape{9, 8});
    forEachVoxel(ramp.shape, [&](unsigned long c, unsigned long r, auto...) { ramp.at(c, r) = short(c); });
    HostImage const in(ramp);
    HostImage out;
    Ref<FiniteImpulseResponseFilter2D> filter = FiniteImpulseResponseFilter2D::New();
    filter->input = &in;
    filter->output = &out;
    filter->kernel2D = kernel_factory::createSobel2D(QEL_KERNEL_DIRECTION2D_X);
    filter->run();
    auto const along = fromImage<short>(out);
    filter->kernel2D = kernel_factory::createSobel2D(QEL_KERNEL_DIRECTION2D_Y);
    filter->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{9, 8}, 0), out));
    for (unsigned long c = 1; c < 8; ++c)
        for (unsigned long r = 0; r < 8; ++r)
            EXPECT_EQ(along.at(c, r), 8) << c << ", " << r;
    EXPECT_EQ(along.at(0, 3), 4); // the edge is repeated
    EXPECT_EQ(along.at(8, 3), 4);
}

template <class T> class WeightedSumTest : public testing::Test
{};
using WorkTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(WeightedSumTest, WorkTypes);

TYPED_TEST(WeightedSumTest, hasTheSameBitsAtEveryLevel)
{
    using T = TypeParam;
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    for (std::size_t count = 0; count < 140; ++count)
        for (std::size_t const numOfPoints : {0ul, 1ul, 2ul, 13ul}) {
            auto const rows = randomPicture<T>(Shape{count + 3, numOfPoints}, static_cast<unsigned>(count));
            auto const weights = randomPictureBetween<T>(Shape{numOfPoints}, 5, -3, 3);
            std::vector<T const*> pointers;
            for (std::size_t point = 0; point < numOfPoints; ++point)
                pointers.push_back(rows.voxels.data() + point * (count + 3) + point % 3);
            auto const sums = [&](auto sum) {
                std::vector<T> out(count + 1, T(77));
                sum(pointers.data(), weights.voxels.data(), numOfPoints, out.data(), count);
                EXPECT_EQ(out.back(), T(77)); // nothing is written behind the row
                std::vector<Bits> bits;
                for (T const value : out)
                    bits.push_back(value == value ? std::bit_cast<Bits>(value) : Bits(1));
                return bits;
            };
            auto const plain = sums(&weightedSumOfRows<T>);
            EXPECT_EQ(plain, sums(&weightedSumOfPackets<xsimd::sse4_1, T>));
            if (__builtin_cpu_supports("avx2")) {
                EXPECT_EQ(plain, sums(&weightedSumOfPackets<xsimd::avx2, T>));
            }
        }
}

} // namespace
} // namespace qel::test
