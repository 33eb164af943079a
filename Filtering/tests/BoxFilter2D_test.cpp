#include "Filtering/tests/BoxModel.h"

#include "Filtering/private/SlidingSums.h"
#include "Filtering/private/computeWorkType.h"

#include <limits>
#include <numeric>

namespace qel::test {
namespace {

using filtering::smoothing::BoxFilter2D;
using filtering::smoothing::details::computeWorkType;
using filtering::smoothing::details::productOf;

/// Values whose sums are exact in the accumulator, ends of small types included.
template <class T> Picture<T> exactPicture(Shape const& shape, unsigned seed)
{
    if constexpr (sizeof(T) <= 2)
        return randomPicture<T>(shape, seed);
    else if constexpr (std::is_unsigned_v<T>)
        return randomPictureBetween<T>(shape, seed, 0, 100000);
    else
        return randomPictureBetween<T>(shape, seed, T(-100000), T(100000));
}

class BoxFilter2DTest : public testing::Test
{
protected:
    template <class In> void connect(In const& in, ImageModel& out, BoxSides const& sides, bool normalize = true)
    {
        box->input = &in;
        box->output = &out;
        setSides(*box, sides);
        box->normalize = normalize;
    }

    Ref<BoxFilter2D> box = BoxFilter2D::New();
};

TEST_F(BoxFilter2DTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(BoxFilter2D::getClassInfo()->getName(), String("BoxFilter2D"));
    EXPECT_EQ(BoxFilter2D::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("BoxFilter2D"), BoxFilter2D::getClassInfo());
}

TEST_F(BoxFilter2DTest, declaresItsPropertiesInOrder)
{
    ASSERT_EQ(box->getNumOfInputProperties(), 3u);
    EXPECT_EQ(box->getInputProperty(0), &box->input);
    EXPECT_EQ(box->getInputProperty(1), &box->boxSize);
    EXPECT_EQ(box->getInputProperty(2), &box->normalize);
    ASSERT_EQ(box->getNumOfOutputProperties(), 1u);
    EXPECT_EQ(box->getOutputProperty(0), &box->output);
    for (char const* const name : {"input", "boxSize", "normalize", "output"}) {
        ASSERT_NE(box->getPropertyfromName(name), nullptr);
        EXPECT_EQ(box->getPropertyfromName(name)->getDescription(), String(name));
    }
    EXPECT_EQ(box->boxSize.get()[0], 3u);
    EXPECT_EQ(box->boxSize.get()[1], 3u);
    EXPECT_TRUE(box->normalize.get());
    EXPECT_EQ(levelsOf(*box), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(BoxFilter2DTest, readsHalfOfTheBoxAroundAVoxel)
{
    box->boxSize = math::Vector2<unsigned int>(4, 7);
    AlgoBorderInfluence const influence = box->getAlgoBorderInfluence();
    unsigned long const expected[] = {2, 2, 3, 3, 0, 0, 0, 0, 0, 0};
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)), expected[direction]) << direction;
}

TEST_F(BoxFilter2DTest, choosesAWorkTypeThatHoldsTheSum)
{
    struct Row
    {
        VoxelTypes input;
        unsigned long area;
        VoxelTypes work;
    };
    Row const table[] = {{QEL_UINT8, 1, QEL_UINT16},        {QEL_UINT8, 256, QEL_UINT16},
                         {QEL_UINT8, 257, QEL_INT32},       {QEL_UINT8, 8388608, QEL_INT32},
                         {QEL_UINT8, 8388609, QEL_FLOAT32}, {QEL_UINT16, 1, QEL_INT32},
                         {QEL_UINT16, 32768, QEL_INT32},    {QEL_UINT16, 32769, QEL_FLOAT32},
                         {QEL_INT8, 256, QEL_INT16},        {QEL_INT8, 257, QEL_INT32},
                         {QEL_INT8, 16777216, QEL_INT32},   {QEL_INT8, 16777217, QEL_FLOAT32},
                         {QEL_INT16, 65536, QEL_INT32},     {QEL_INT16, 65537, QEL_FLOAT32},
                         {QEL_FLOAT64, 1, QEL_FLOAT64},     {QEL_FLOAT64, ~0ul, QEL_FLOAT64},
                         {QEL_FLOAT32, 1, QEL_FLOAT32},     {QEL_UINT32, 1, QEL_FLOAT32},
                         {QEL_UINT64, 1000, QEL_FLOAT32},   {QEL_INT32, 1, QEL_FLOAT32},
                         {QEL_INT64, 1, QEL_FLOAT32},       {QEL_UINT8, productOf(1ul << 40, 1ul << 40), QEL_FLOAT32}};
    for (Row const& row : table)
        EXPECT_EQ(computeWorkType(row.input, row.area), row.work) << int(row.input) << ", " << row.area;
    EXPECT_EQ(productOf(4294967295ul, 4294967295ul), 4294967295ul * 4294967295ul);
    EXPECT_EQ(productOf(1ul << 33, 1ul << 33), ~0ul);
}

TEST_F(BoxFilter2DTest, givesMeansAndSumsOfEveryVoxelType)
{
    forceLevel(*box, SCALAR);
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        forEachVoxelType([&]<class T>() {
            for (BoxSides const sides : {BoxSides{3, 3}, BoxSides{1, 1}, BoxSides{2, 5}, BoxSides{17, 17},
                                         BoxSides{16, 1}, BoxSides{1, 10}, BoxSides{5, 4}}) {
                SCOPED_TRACE(testing::Message() << sides.columns << " by " << sides.rows);
                auto const picture = exactPicture<T>(Shape{33, 21, 2}, seed++);
                auto const sums = boxSums(picture, sides);
                HostImage const in(picture);
                HostImage out;
                connect(in, out, sides);
                box->run();
                EXPECT_TRUE(samePicture(meansAs<T>(sums, sides), out));
                box->normalize = false;
                box->run();
                VoxelTypes const work = computeWorkType(VoxelTypeOf<T>::value, sides.columns * sides.rows);
                ASSERT_EQ(out.getVoxelType(), work);
                switch (work) {
                case QEL_UINT16:
                    EXPECT_TRUE(samePicture(sumsAs<unsigned short>(sums), out));
                    break;
                case QEL_INT16:
                    EXPECT_TRUE(samePicture(sumsAs<short>(sums), out));
                    break;
                case QEL_INT32:
                    EXPECT_TRUE(samePicture(sumsAs<int>(sums), out));
                    break;
                case QEL_FLOAT32:
                    EXPECT_TRUE(samePicture(sumsAs<float>(sums), out));
                    break;
                default:
                    EXPECT_TRUE(samePicture(sumsAs<double>(sums), out));
                }
            }
        });
    });
}

TEST_F(BoxFilter2DTest, worksOnEveryShape)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : allShapes()) {
            for (BoxSides const sides : {BoxSides{3, 3}, BoxSides{4, 9}}) {
                auto const picture = exactPicture<float>(shape, seed++);
                memory::InMemoryImage const in = toImage(picture);
                HostImage out;
                connect(in, out, sides);
                box->run();
                EXPECT_TRUE(samePicture(meansAs<float>(boxSums(picture, sides), sides), out));
            }
        }
    });
}

TEST_F(BoxFilter2DTest, takesBoxesOfAnySide)
{
    auto const picture = exactPicture<short>(Shape{37, 41}, 5);
    HostImage const in(picture);
    HostImage out;
    for (unsigned int side = 1; side <= 40; ++side)
        for (BoxSides const sides : {BoxSides{side, 1}, BoxSides{1, side}}) {
            SCOPED_TRACE(testing::Message() << sides.columns << " by " << sides.rows);
            connect(in, out, sides);
            box->run();
            EXPECT_TRUE(samePicture(meansAs<short>(boxSums(picture, sides), sides), out));
        }
    // Wider than the image, by several reflections.
    for (BoxSides const sides : {BoxSides{200, 3}, BoxSides{3, 301}, BoxSides{75, 82}}) {
        connect(in, out, sides);
        box->run();
        EXPECT_TRUE(samePicture(meansAs<short>(boxSums(picture, sides), sides), out));
    }
}

TEST_F(BoxFilter2DTest, holdsTheLargestSumsOfItsWorkTypes)
{
    auto const check = [&]<class T, class Work>(T value, BoxSides const& sides) {
        HostImage const in(Picture<T>(Shape{20, 9}, value));
        HostImage out;
        connect(in, out, sides, false);
        box->run();
        EXPECT_TRUE(samePicture(Picture<Work>(Shape{20, 9}, static_cast<Work>(value * sides.area())), out));
        box->normalize = true;
        box->run();
        EXPECT_TRUE(samePicture(Picture<T>(Shape{20, 9}, value), out));
    };
    check.operator()<unsigned char, unsigned short>(255, {16, 16});
    check.operator()<unsigned char, int>(255, {257, 1});
    check.operator()<unsigned char, int>(255, {4096, 2048});
    check.operator()<unsigned char, float>(255, {8193, 1024});
    check.operator()<signed char, short>(-128, {1, 256});
    check.operator()<signed char, short>(127, {16, 16});
    check.operator()<signed char, int>(-128, {4096, 4096});
    check.operator()<unsigned short, int>(65535, {32768, 1});
    check.operator()<unsigned short, float>(65535, {32769, 1});
    check.operator()<short, int>(-32768, {1, 65536});
}

TEST_F(BoxFilter2DTest, leavesAConstantAsItIs)
{
    forEachVoxelType([&]<class T>() {
        for (T const value : specialValues<T>()) {
            if (std::is_same_v<T, double> || (sizeof(T) == 8 && std::abs(static_cast<double>(value)) > 9e15))
                continue; // wider than the sums
            HostImage const in(Picture<T>(Shape{9, 7}, value));
            HostImage out;
            for (BoxSides const sides : {BoxSides{3, 3}, BoxSides{7, 7}, BoxSides{6, 5}, BoxSides{31, 31}}) {
                connect(in, out, sides);
                box->run();
                EXPECT_TRUE(samePicture(Picture<T>(Shape{9, 7}, value), out));
            }
        }
    });
}

TEST_F(BoxFilter2DTest, cutsMeansOfIntegersTowardsZero)
{
    HostImage const in(Picture<unsigned char>(Shape{3}, {1, 2, 2}));
    HostImage out;
    connect(in, out, {3, 1});
    box->run();
    EXPECT_EQ(fromImage<unsigned char>(out).voxels[1], 1); // 5 / 3
    HostImage const negative(Picture<signed char>(Shape{3}, {-1, -2, -2}));
    connect(negative, out, {3, 1});
    box->run();
    EXPECT_EQ(fromImage<signed char>(out).voxels[1], -1);
}

TEST_F(BoxFilter2DTest, dividesEverySumThatCanOccur)
{
    // Two rows: the sums of a box of 1 by 2 are all numbers up to 510; then boxes of one repeated row.
    for (unsigned int const side : {2u, 3u, 7u, 16u}) {
        Picture<unsigned short> picture(Shape{60000, 1});
        for (unsigned long x = 0; x < 60000; ++x)
            picture.at(x) = static_cast<unsigned short>(x + x % 3);
        HostImage const in(picture);
        HostImage out;
        connect(in, out, {side, 1});
        box->run();
        Picture<unsigned short> expected(picture.shape);
        for (long x = 0; x < 60000; ++x) {
            long sum = 0;
            for (long i = 0; i < long(side); ++i)
                sum += picture.at(mirrored(x + i - long(side / 2), 60000));
            expected.at(x) = static_cast<unsigned short>(sum / long(side));
        }
        EXPECT_TRUE(samePicture(expected, out));
    }
}

TEST_F(BoxFilter2DTest, givesRealsTheSameBitsOnAnyNumberOfThreads)
{
    auto const picture = randomPicture<float>(Shape{2300, 130}, 3);
    auto const wide = randomPicture<double>(Shape{2300, 130}, 4);
    HostImage const in(picture);
    HostImage const wideIn(wide);
    for (BoxSides const sides : {BoxSides{3, 3}, BoxSides{31, 31}, BoxSides{10, 101}, BoxSides{101, 2}})
        for (bool const normalize : {true, false}) {
            std::vector<unsigned char> first, firstWide;
            for (int const threads : {1, 2, 3, 8}) {
                HostImage out, wideOut;
                withThreads(threads, [&] {
                    connect(in, out, sides, normalize);
                    box->run();
                    connect(wideIn, wideOut, sides, normalize);
                    box->run();
                });
                if (threads == 1) {
                    first = out.content();
                    firstWide = wideOut.content();
                }
                EXPECT_TRUE(out.content() == first);
                EXPECT_TRUE(wideOut.content() == firstWide);
            }
        }
}

TEST_F(BoxFilter2DTest, sumsRealsCloseToTheTruthAndNeverBelowZero)
{
    // Large values next to small ones: a sum that slides would keep a rest of the large ones for ever.
    auto picture = randomPictureBetween<double>(Shape{301, 203}, 8, 0, 1);
    for (std::size_t i = 0; i < picture.voxels.size(); i += 1777)
        picture.voxels[i] = 1e18;
    for (unsigned long x = 100; x < 200; ++x)
        for (unsigned long y = 0; y < 203; ++y)
            picture.at(x, y) = 0;
    HostImage const in(picture);
    HostImage out;
    for (BoxSides const sides : {BoxSides{7, 7}, BoxSides{31, 12}}) {
        connect(in, out, sides, false);
        box->run();
        auto const expected = boxSums(picture, sides);
        auto const actual = fromImage<double>(out);
        for (std::size_t i = 0; i < expected.voxels.size(); ++i) {
            ASSERT_NEAR(double(expected.voxels[i]), actual.voxels[i], 1e-13 * double(expected.voxels[i])) << i;
            ASSERT_GE(actual.voxels[i], 0) << i;
        }
    }
}

TEST_F(BoxFilter2DTest, keepsANaNWithinTheBoxesThatHoldIt)
{
    Picture<float> picture(Shape{40, 40}, 1);
    picture.at(20, 21) = std::numeric_limits<float>::quiet_NaN();
    picture.at(3, 3) = std::numeric_limits<float>::infinity();
    HostImage const in(picture);
    HostImage out;
    connect(in, out, {5, 4});
    box->run();
    auto const result = fromImage<float>(out);
    forEachVoxel(picture.shape, [&](unsigned long c, unsigned long r, unsigned long, unsigned long, unsigned long) {
        bool const hasNaN = c >= 18 && c <= 22 && r >= 20 && r <= 23;
        bool const hasInfinity = c >= 1 && c <= 5 && r >= 2 && r <= 5;
        EXPECT_EQ(std::isnan(result.at(c, r)), hasNaN) << c << ", " << r;
        EXPECT_EQ(std::isinf(result.at(c, r)), hasInfinity) << c << ", " << r;
        if (!hasNaN && !hasInfinity) {
            EXPECT_EQ(result.at(c, r), 1) << c << ", " << r;
        }
    });
}

TEST_F(BoxFilter2DTest, worksInPlace)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        for (Shape const& shape : {Shape{1, 1}, Shape{1025, 70}, Shape{2100, 40, 2, 2}, Shape{9, 300}})
            for (BoxSides const sides : {BoxSides{3, 3}, BoxSides{12, 25}, BoxSides{1, 1}}) {
                auto const picture = exactPicture<short>(shape, seed++);
                HostImage image(picture);
                connect(image, image, sides);
                box->run();
                EXPECT_TRUE(samePicture(meansAs<short>(boxSums(picture, sides), sides), image));
                auto const reals = exactPicture<float>(shape, seed++);
                HostImage real(reals);
                connect(real, real, sides, false);
                box->run();
                EXPECT_TRUE(samePicture(sumsAs<float>(boxSums(reals, sides)), real));
            }
    });
}

TEST_F(BoxFilter2DTest, shapesItsOutputAndMakesItAnImageOfValues)
{
    HostImage in(QEL_UINT8, {4, 3, 2, 2});
    in.setInterpretation(QEL_BINARY);
    in.setSpacingOf(ROWS, 7);
    HostImage out(QEL_FLOAT64, {1, 1});
    connect(in, out, {3, 3}, false);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_EQ(out.getSpacingOf(ROWS), 7);
    EXPECT_EQ(out.getInterpretation(), QEL_VALUE);
    connect(in, out, {17, 17}, false);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT32);
    // The rule of one run is gone again.
    connect(in, out, {3, 3}, true);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT8);
    EXPECT_EQ(out.getInterpretation(), QEL_VALUE);
}

TEST_F(BoxFilter2DTest, refusesWrongImagesInTheRulesWords)
{
    std::string const name = "BoxFilter2D";
    auto const message = [&](std::string const& text, std::string const& property) {
        return ruleText(text, property, name);
    };
    for (int attempt = 0; attempt < 2; ++attempt) // a failed run leaves no rule behind
        EXPECT_QEL_WHAT(box->run(), RuleException, message("The parameter \"input\" must be set.", "input"));
    box->normalize = false;
    EXPECT_QEL_WHAT(box->run(), RuleException, message("The parameter \"input\" must be set.", "input"));
    HostImage in(QEL_UINT8, {3, 4, 5});
    box->input = &in;
    EXPECT_QEL_WHAT(box->run(), RuleException, message("The parameter \"output\" must be set.", "output"));
    HostImage out;
    box->output = &out;
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3, 4, 5});
    box->input = &complex;
    EXPECT_QEL_THROW(box->run(), RuleException,
                     "The parameter \"input\" supports only data type(s): uint8, uint16, uint32, uint64, int8, "
                     "int16, int32, int64, float32, float64. Current data type is complex float32.");
    box->input = &in;
    in.setInterpretation(QEL_LABEL);
    EXPECT_THROW(box->run(), RuleException);
    in.setInterpretation(QEL_VALUE);
    box->run();
    EXPECT_EQ(out.getVoxelType(), QEL_UINT16);
    EXPECT_TRUE(isAtRest(*box));
}

TEST_F(BoxFilter2DTest, refusesASideOfZeroBeforeItWritesAVoxel)
{
    HostImage const in(QEL_UINT8, {3, 4});
    HostImage out;
    for (BoxSides const sides : {BoxSides{0, 3}, BoxSides{3, 0}, BoxSides{0, 0}}) {
        connect(in, out, sides);
        EXPECT_QEL_THROW(box->run(), InvalidCall, "The box size must be at least 1 on each axis.");
        EXPECT_TRUE(isAtRest(*box));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(BoxFilter2DTest, refusesToRetypeItsInput)
{
    auto const picture = randomPicture<short>(Shape{7, 5, 3}, 1);
    HostImage image(picture);
    connect(image, image, {3, 3}, false);
    EXPECT_QEL_WHAT(box->run(), RuleException,
                    ruleText("The parameter \"input\" cannot be used as output image if it must be retyped.", "output",
                             "BoxFilter2D"));
    EXPECT_TRUE(samePicture(picture, image));
    EXPECT_TRUE(isAtRest(*box));
}

TEST_F(BoxFilter2DTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<short>(Shape{5, 23}, 1);
    expectFailingImagesAreReported<BoxFilter2D>(
        [&](BoxFilter2D& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>());
            algorithm.input = images[0].get();
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(meansAs<short>(boxSums(picture, {3, 3}), {3, 3}), *images[1]));
        });
}

TEST_F(BoxFilter2DTest, stopsWhenItIsCancelled)
{
    ObservedImage in(QEL_FLOAT32, Shape{64, 4000});
    HostImage out;
    connect(in, out, {5, 5});
    in.onRead = [&] { box->cancelExecution(); };
    box->run();
    EXPECT_LT(out.callsOf(WRITE_ROW), 400u);
    EXPECT_TRUE(isAtRest(*box));
    in.onRead = nullptr;
    out.forgetCalls();
    box->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 4000u);
    EXPECT_EQ(box->getProgress(), 100);
}

TEST_F(BoxFilter2DTest, callsImagesFromOtherThreadsForRowsAlone)
{
    HostImage in(randomPicture<short>(Shape{1025, 145, 3}, 1));
    HostImage out;
    connect(in, out, {5, 5});
    withThreads(4, [&] { box->run(); });
    EXPECT_TRUE(onlyRowsWereForeign(in));
    EXPECT_TRUE(onlyRowsWereForeign(out));
}

TEST(BoxKernelsTest, sumFloatsAlongRowsInTheSameOrderWhereverTheyBegin)
{
    std::size_t const columns = 300;
    auto const picture = randomPicture<float>(Shape{columns, 4}, 23);
    std::vector<double> const in(picture.voxels.begin(), picture.voxels.end());
    for (std::size_t const size : {2, 3, 16, 31, 101}) {
        std::vector<double> tails(4 * size);
        std::size_t const count = columns - size + 1;
        std::vector<double> whole(4 * count);
        filtering::smoothing::sumAlongRows(in.data(), columns, whole.data(), count, count, size, 0, tails.data());
        for (std::size_t const begin : {1, 2, 5, 31, 64, 150}) {
            std::size_t const rest = count - begin;
            std::vector<double> part(4 * rest);
            filtering::smoothing::sumAlongRows(in.data() + begin, columns, part.data(), rest, rest, size, begin % size,
                                               tails.data());
            for (std::size_t row = 0; row < 4; ++row)
                for (std::size_t x = 0; x < rest; ++x)
                    ASSERT_EQ(part[row * rest + x], whole[row * count + begin + x]) << size << ", " << begin;
        }
    }
}

TEST(BoxKernelsTest, knowWhichSumsAreExact)
{
    using filtering::smoothing::sumsAreExact;
    EXPECT_TRUE((sumsAreExact<unsigned char, unsigned int>(1e9)));
    EXPECT_TRUE((sumsAreExact<unsigned short, double>(1e11)));
    EXPECT_FALSE((sumsAreExact<unsigned short, double>(2e11)));
    EXPECT_TRUE((sumsAreExact<int, double>(2097152)));
    EXPECT_FALSE((sumsAreExact<unsigned int, double>(2097153)));
    EXPECT_FALSE((sumsAreExact<long, double>(9)));
    EXPECT_FALSE((sumsAreExact<float, double>(1)));
}

TEST(BoxKernelsTest, divideEverySumOfBytesExactly)
{
    // Around the areas where the work type and the way of dividing change.
    for (unsigned int const area : {257u, 289u, 961u, 1024u, 10201u, 12287u, 12288u, 12289u, 65793u}) {
        std::vector<unsigned int> sums(1 + 255 * area);
        std::iota(sums.begin(), sums.end(), 0u);
        std::vector<unsigned char> means(sums.size());
        filtering::smoothing::finishRow<int, unsigned char>(sums.data(), means.data(), sums.size(), area,
                                                            filtering::smoothing::BoxFilterOperator_NormalizeTag());
        for (unsigned int sum = 0; sum < sums.size(); ++sum)
            ASSERT_EQ(means[sum], sum / area) << sum << " by " << area;
    }
    for (int const area : {257, 961, 12288, 12289}) {
        std::vector<unsigned int> sums;
        for (int sum = -128 * area; sum <= 127 * area; ++sum)
            sums.push_back(static_cast<unsigned int>(sum));
        std::vector<signed char> means(sums.size());
        filtering::smoothing::finishRow<int, signed char>(sums.data(), means.data(), sums.size(), area,
                                                          filtering::smoothing::BoxFilterOperator_NormalizeTag());
        for (std::size_t i = 0; i < sums.size(); ++i)
            ASSERT_EQ(means[i], static_cast<int>(sums[i]) / area) << static_cast<int>(sums[i]) << " by " << area;
    }
}

TEST(BoxKernelsTest, divideSumsOfFloatsAsOneDivisionWould)
{
    unsigned int hits = 0;
    for (double const area : {1.0, 2.0, 3.0, 9.0, 25.0, 961.0, 10201.0, 1030301.0}) {
        std::vector<double> sums = {0.0, -0.0, INFINITY, -INFINITY, NAN, 1e-310, 1e-44, 1e308, 3.5e38 * area};
        auto const picture = randomPicture<float>(Shape{2000}, 17);
        for (float const value : picture.voxels) {
            // Quotients in the middle of two floats, and the nearest to it on both sides.
            double const middle = (double(value) + std::nextafter(value, INFINITY)) / 2 * area;
            for (double const sum : {value * area * 1.234567, middle, std::nextafter(middle, INFINITY),
                                     std::nextafter(middle, -INFINITY), middle * 1e-42})
                sums.push_back(sum);
        }
        for (std::size_t const rowLength : {std::size_t(1), std::size_t(7), sums.size()})
            for (std::size_t x = 0; x + rowLength <= sums.size(); x += rowLength) {
                std::vector<float> means(rowLength);
                hits += !filtering::smoothing::divideRowByFactors(sums.data() + x, means.data(), rowLength, area);
                filtering::smoothing::finishRow<float, float>(sums.data() + x, means.data(), rowLength, area,
                                                              filtering::smoothing::BoxFilterOperator_NormalizeTag());
                for (std::size_t i = 0; i < rowLength; ++i) {
                    float const expected = helper::convertVoxel<float>(sums[x + i] / area);
                    ASSERT_TRUE(sameValue(expected, means[i]) && std::signbit(expected) == std::signbit(means[i]))
                        << sums[x + i] << " by " << area;
                }
            }
    }
    EXPECT_GT(hits, 100u); // both ways were taken
}

TEST(SlidingSumsTest, addTheSameRowsInTheSameOrderWhereverTheyStart)
{
    auto const random = randomPicture<double>(Shape{1, 400}, 7);
    double value = 0;
    auto const fetch = [&](long row, unsigned long) {
        value = random.voxels[static_cast<unsigned long>(mirrored(row, 400))];
        return &value;
    };
    for (unsigned long const size : {1ul, 2ul, 3ul, 4ul, 5ul, 8ul, 9ul, 17ul, 31ul, 64ul, 101ul, 250ul}) {
        std::vector<double> expected;
        filtering::smoothing::SlidingSums<double> sums(size, 1);
        sums.start(-60, fetch);
        for (long first = -60; first < 200; ++first) {
            double sum = 0;
            sums.next(fetch, [&](unsigned long) { return &sum; });
            expected.push_back(sum);
            long double truth = 0, scale = 0;
            for (long row = first; row < first + long(size); ++row) {
                truth += random.voxels[static_cast<unsigned long>(mirrored(row, 400))];
                scale += std::abs(random.voxels[static_cast<unsigned long>(mirrored(row, 400))]);
            }
            if (std::isfinite(sum)) {
                EXPECT_NEAR(sum, double(truth), 1e-13 * double(scale));
            }
        }
        for (long start = -59; start < 200; ++start) {
            filtering::smoothing::SlidingSums<double> later(size, 1);
            later.start(start, fetch);
            for (long first = start; first < std::min(start + 40, 200l); ++first) {
                double sum = 0;
                later.next(fetch, [&](unsigned long) { return &sum; });
                EXPECT_TRUE(sameValue(sum, expected[static_cast<unsigned long>(first + 60)]))
                    << size << ", from " << start << ", at " << first;
            }
        }
    }
}

} // namespace
} // namespace qel::test
