#include <qel/analysis/IntensityExtrema.h>

#include "Core/tests/Support/Algorithms.h"

#include <qel/devices/Cpu.h>

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using analysis::IntensityExtrema;

template <class T> struct Extrema
{
    T minimum = std::numeric_limits<T>::max();
    T maximum = std::numeric_limits<T>::lowest();
};

template <class T> Extrema<T> extremaOf(Picture<T> const& picture)
{
    Extrema<T> extrema;
    for (T const voxel : picture.voxels) {
        if (voxel < extrema.minimum)
            extrema.minimum = voxel;
        if (voxel > extrema.maximum)
            extrema.maximum = voxel;
    }
    return extrema;
}

template <class T> bool hasPackets() { return !std::is_integral_v<T> || sizeof(T) < 8; }

bool runsPackets() { return devices::Cpu::getDevice().getSSELevel() > 64; }

class IntensityExtremaTest : public testing::Test
{
protected:
    /// Runs on all levels that the type has, which must be equal to the last bit, and compares kind and value.
    template <class T> testing::AssertionResult isRight(Extrema<T> const& expected, ImageModel const& image)
    {
        extrema->input = &image;
        for (OptimLevelType const level : {SCALAR, VEC_SSE}) {
            if (level == VEC_SSE && (!hasPackets<T>() || !runsPackets()))
                continue;
            forceLevel(*extrema, level);
            extrema->outputMinimum = Scalar(-7.5);
            extrema->outputMaximum = Scalar(-7.5);
            extrema->run();
            if (extrema->outputMinimum.get() != Scalar(expected.minimum) ||
                extrema->outputMaximum.get() != Scalar(expected.maximum))
                return testing::AssertionFailure()
                       << voxelTypeName<T>() << " level " << int(level) << ": expected " << +expected.minimum << " to "
                       << +expected.maximum << ", got kind " << int(extrema->outputMinimum.get().getType()) << ", "
                       << extrema->outputMinimum.get().asDouble() << " to " << extrema->outputMaximum.get().asDouble();
            if (std::signbit(extrema->outputMinimum.get().asDouble()) != (expected.minimum < 0) ||
                std::signbit(extrema->outputMaximum.get().asDouble()) != (expected.maximum < 0))
                return testing::AssertionFailure() << voxelTypeName<T>() << " level " << int(level) << ": a wrong sign";
        }
        return testing::AssertionSuccess();
    }
    template <class T> testing::AssertionResult isRight(Picture<T> const& picture)
    {
        return isRight(extremaOf(picture), HostImage(picture));
    }

    Ref<IntensityExtrema> extrema = IntensityExtrema::New();
};

TEST_F(IntensityExtremaTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(IntensityExtrema::getClassInfo()->getName(), String("IntensityExtrema"));
    EXPECT_EQ(IntensityExtrema::getClassInfo()->getLibName(), String("Quelide"));
    EXPECT_EQ(AlgoInfo::fromName("IntensityExtrema"), IntensityExtrema::getClassInfo());
    Ref<BaseAlgorithm> const other = AlgoInfo::fromName("IntensityExtrema")->createInstance();
    EXPECT_NE(dynamic_cast<IntensityExtrema*>(other.get()), nullptr);
}

TEST_F(IntensityExtremaTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*extrema), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*extrema),
              std::vector<std::string>({"scalar of kind 0 outputMinimum = 0", "scalar of kind 0 outputMaximum = 0"}));
    EXPECT_TRUE(hasNoBorder(*extrema));
}

TEST_F(IntensityExtremaTest, hasAScalarAndAPacketRunner)
{
    EXPECT_EQ(levelsOf(*extrema), std::vector<OptimLevelType>({SCALAR, VEC_SSE}));
    for (int type = QEL_UINT8; type <= QEL_COMPLEX_FLOAT64; ++type) {
        HostImage const image(static_cast<VoxelTypes>(type), {3});
        extrema->input = &image;
        EXPECT_TRUE(runnerOf(*extrema, SCALAR)->isRunnable(extrema.get()));
        bool const hasPacket = type != QEL_UINT64 && type != QEL_INT64 && type < QEL_COMPLEX_FLOAT32;
        EXPECT_EQ(runnerOf(*extrema, VEC_SSE)->isRunnable(extrema.get()), hasPacket && runsPackets()) << type;
    }
}

TEST_F(IntensityExtremaTest, runsNoOtherLevelThanTheOneThatIsForced)
{
    std::string const text = errorText("no runner found for algorithm", "IntensityExtrema");
    HostImage const wide(Picture<unsigned long>(Shape{3}, {1, 2, 3}));
    extrema->input = &wide;
    forceLevel(*extrema, VEC_SSE);
    EXPECT_QEL_WHAT(extrema->run(), UnexpectedError, text);
    forceLevel(*extrema, VEC_AVX);
    EXPECT_QEL_WHAT(extrema->run(), UnexpectedError, text);
    extrema->setAutoCpuDispatch(true);
    extrema->run();
    EXPECT_EQ(extrema->outputMaximum.get(), Scalar(3ul));
}

TEST_F(IntensityExtremaTest, findsTheExtremaOfEveryTypeAndShape)
{
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Shape const& shape : allShapes())
                EXPECT_TRUE(isRight(randomPicture<T>(shape, seed++))) << shape;
        });
    });
}

TEST_F(IntensityExtremaTest, findsThemAcrossTheBlocksOfABigImage)
{
    onOneAndFourThreads([&] {
        for (Shape const& shape : {Shape{8193, 65}, Shape{16400, 3, 17}, Shape{40, 129, 33}}) {
            EXPECT_TRUE(isRight(randomPictureBetween<short>(shape, 1, -3000, 3000)));
            EXPECT_TRUE(isRight(randomPictureBetween<float>(shape, 2, -3000.f, 3000.f)));
            auto last = randomPictureBetween<int>(shape, 3, -5, 5);
            last.voxels.back() = 6;
            last.voxels.front() = -6;
            EXPECT_TRUE(isRight(last));
        }
    });
}

TEST_F(IntensityExtremaTest, seesEachVoxelOfRowsAroundThePacket)
{
    forEachVoxelType([&]<class T>() {
        for (unsigned long columns = 1; columns <= 70; ++columns)
            for (unsigned long column = 0; column < columns; ++column) {
                Picture<T> picture(Shape{columns, 2}, T(50));
                picture.at(column, 1) = T(49);
                picture.at(columns - 1 - column, 0) = T(51);
                ASSERT_TRUE(isRight(picture)) << column << " of " << columns;
            }
    });
}

TEST_F(IntensityExtremaTest, addsNothingWhereItPadsRows)
{
    // All of one sign: padding with 0 would show.
    forEachVoxelType([&]<class T>() {
        for (unsigned long const columns : {1ul, 3ul, 15ul, 17ul, 33ul, 1025ul}) {
            EXPECT_TRUE(isRight(Picture<T>(Shape{columns, 3}, T(7))));
            if constexpr (std::is_signed_v<T>) {
                EXPECT_TRUE(isRight(Picture<T>(Shape{columns, 3}, T(-7))));
            }
        }
    });
}

TEST_F(IntensityExtremaTest, keepsTheEndsOfItsTypes)
{
    forEachVoxelType([&]<class T>() {
        using Limits = std::numeric_limits<T>;
        EXPECT_TRUE(isRight(Picture<T>(Shape{21, 2}, Limits::max())));
        EXPECT_TRUE(isRight(Picture<T>(Shape{21, 2}, Limits::lowest())));
        Picture<T> both(Shape{21, 2}, Limits::max());
        both.voxels[20] = Limits::lowest();
        EXPECT_TRUE(isRight(both));
    });
}

TEST_F(IntensityExtremaTest, givesOneResultForAllSeries)
{
    Picture<short> picture(Shape{5, 4, 2, 3, 2}, 10);
    picture.at(1, 2, 1, 2, 0) = -300;
    picture.at(4, 3, 0, 0, 1) = 400;
    EXPECT_TRUE(isRight(Extrema<short>{-300, 400}, HostImage(picture)));
}

TEST_F(IntensityExtremaTest, leavesTheStartValuesOfAnEmptyImage)
{
    for (Shape const& shape : {Shape{0, 3}, Shape{3, 0}, Shape{3, 3, 0}, Shape{3, 3, 1, 0}, Shape{3, 3, 1, 1, 0}})
        forEachVoxelType([&]<class T>() { EXPECT_TRUE(isRight(Extrema<T>(), HostImage(Picture<T>(shape)))) << shape; });
}

template <class T> void checkNotANumber(auto const& isRight)
{
    T const nan = std::numeric_limits<T>::quiet_NaN();
    T const infinity = std::numeric_limits<T>::infinity();
    for (unsigned long const columns : {1ul, 4ul, 5ul, 32ul, 33ul, 67ul})
        for (unsigned long column = 0; column < columns; ++column) {
            Picture<T> picture = randomPictureBetween<T>(Shape{columns, 2}, 1, T(2), T(9));
            picture.at(column, 0) = nan;
            picture.at(columns - 1 - column, 1) = -nan;
            ASSERT_TRUE(isRight(picture)) << column << " of " << columns;
        }
    EXPECT_TRUE(isRight(Picture<T>(Shape{35, 2}, nan)));
    // The start values stay: nothing is less than the largest number but what is no infinity.
    EXPECT_TRUE(isRight(Picture<T>(Shape{35, 2}, infinity)));
    EXPECT_TRUE(isRight(Picture<T>(Shape{35, 2}, -infinity)));
    EXPECT_TRUE(isRight(randomPicture<T>(Shape{1027, 13}, 5, true)));
}

TEST_F(IntensityExtremaTest, passesOverWhatIsNoNumber)
{
    checkNotANumber<float>([&](auto const& picture) { return isRight(picture); });
    checkNotANumber<double>([&](auto const& picture) { return isRight(picture); });
}

TEST_F(IntensityExtremaTest, showsNoSignOfZero)
{
    for (unsigned long column = 0; column < 37; ++column) {
        Picture<float> picture(Shape{37}, -0.0f);
        picture.voxels[column] = 0.0f;
        EXPECT_TRUE(isRight(picture));
        Picture<double> reals(Shape{37}, 0.0);
        reals.voxels[column] = -0.0;
        EXPECT_TRUE(isRight(reals));
    }
}

TEST_F(IntensityExtremaTest, keepsTheKindOfTheVoxels)
{
    forEachVoxelType([&]<class T>() {
        HostImage const image(Picture<T>(Shape{3}, T(1)));
        extrema->setAutoCpuDispatch(true);
        extrema->input = &image;
        extrema->run();
        ScalarType const kind = std::is_floating_point_v<T> ? REAL : std::is_signed_v<T> ? INTEGER : UNSIGNED_INTEGER;
        EXPECT_EQ(extrema->outputMinimum.get().getType(), kind);
        EXPECT_EQ(extrema->outputMaximum.get().getType(), kind);
    });
}

TEST_F(IntensityExtremaTest, takesImagesWithDirectRowsToo)
{
    auto const picture = randomPicture<float>(Shape{1025, 11, 2}, 3);
    EXPECT_TRUE(isRight(extremaOf(picture), toImage(picture)));
    HostImage image(picture);
    EXPECT_TRUE(isRight(extremaOf(picture), image.giveRows()));
}

TEST_F(IntensityExtremaTest, doesNothingWithVoxelsThatItDoesNotKnow)
{
    HostImage const complex(QEL_COMPLEX_FLOAT32, {3});
    extrema->input = &complex;
    extrema->outputMinimum = Scalar(42);
    extrema->run();
    EXPECT_EQ(extrema->outputMinimum.get(), Scalar(42));
}

TEST_F(IntensityExtremaTest, refusesAMissingImage)
{
    EXPECT_QEL_WHAT(extrema->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "IntensityExtrema"));
    EXPECT_TRUE(isAtRest(*extrema));
}

TEST_F(IntensityExtremaTest, reportsAnImageThatFailsDuringTheRun)
{
    IntensityExtrema* connected = nullptr;
    for (OptimLevelType const level : {SCALAR, VEC_SSE})
        if (level == SCALAR || runsPackets()) {
            expectFailingImagesAreReported<IntensityExtrema>(
                [&](IntensityExtrema& algorithm, HostImages& images) {
                    images.push_back(std::make_unique<HostImage>(Picture<short>(Shape{2, 3}, {5, 6, -7, 8, 9, 1})));
                    forceLevel(algorithm, level);
                    algorithm.input = images[0].get();
                    algorithm.outputMinimum = Scalar();
                    connected = &algorithm;
                },
                [&](HostImages const&) {
                    return connected->outputMinimum.get() == Scalar(-7l) &&
                           connected->outputMaximum.get() == Scalar(9l);
                });
        }
}

TEST_F(IntensityExtremaTest, callsTheImageFromOtherThreadsForRowsAlone)
{
    // Rows that are padded to whole packets, so that the border condition takes part.
    HostImage const image(randomPicture<float>(Shape{1023, 200, 20}, 1));
    extrema->input = &image;
    for (OptimLevelType const level : {SCALAR, VEC_SSE})
        if (level == SCALAR || runsPackets()) {
            forceLevel(*extrema, level);
            withThreads(4, [&] { extrema->run(); });
            EXPECT_TRUE(onlyRowsWereForeign(image));
        }
}

TEST_F(IntensityExtremaTest, runsForAHostThatPolls)
{
    auto const picture = randomPicture<unsigned short>(Shape{1025, 70, 17}, 1);
    HostImage const image(picture);
    Poller poller;
    extrema->input = &image;
    extrema->run(&poller);
    EXPECT_EQ(extrema->outputMinimum.get(), Scalar(extremaOf(picture).minimum));
    EXPECT_EQ(extrema->outputMaximum.get(), Scalar(extremaOf(picture).maximum));
    EXPECT_EQ(poller.last, 100);
    EXPECT_TRUE(poller.isSteady);
}

TEST_F(IntensityExtremaTest, stopsBetweenBlocksWhenCancelled)
{
    ObservedImage image(Picture<short>(Shape{2, 640, 64}, 1));
    extrema->input = &image;
    for (OptimLevelType const level : {SCALAR, VEC_SSE})
        withThreads(1, [&] {
            if (level == VEC_SSE && !runsPackets())
                return;
            forceLevel(*extrema, level);
            image.forgetCalls();
            image.onRead = [&] { extrema->cancelExecution(); };
            extrema->run();
            EXPECT_GT(image.callsOf(READ_ROW), 0u);
            EXPECT_LT(image.callsOf(READ_ROW), 640u * 64);
            EXPECT_TRUE(isAtRest(*extrema));
            image.onRead = nullptr;
            extrema->run();
            EXPECT_EQ(extrema->outputMinimum.get(), Scalar(1l));
        });
}

} // namespace
} // namespace qel::test
