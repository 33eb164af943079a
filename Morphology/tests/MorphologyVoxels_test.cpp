// What the 28 classes compute.
#include "Morphology/tests/MorphologyModel.h"

#include <qel/ImageModelAdapter.h>
#include <qel/devices/Cpu.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/morphology/Dilation2D.h>

namespace qel::test {
namespace {

template <class T> constexpr bool hasPackets = !std::is_integral_v<T> || sizeof(T) < 8;

std::vector<OptimLevelType> levelsFor(std::string const& operation, bool hasPacket)
{
    if ((operation == "Erosion" || operation == "Dilation") && hasPacket &&
        devices::Cpu::getDevice().getSSELevel() > 64)
        return {SCALAR, VEC_SSE};
    return {SCALAR};
}

/// On each level, apart and in place.
template <class T>
void expectRight(std::string const& operation, Setting const& setting, Picture<T> const& in, bool inPlaceToo = true)
{
    Picture<T> const wanted = expected(operation, setting, in);
    Ref<BaseAlgorithm> const algorithm = create(operation, setting);
    for (OptimLevelType const level : levelsFor(operation, hasPackets<T>)) {
        SCOPED_TRACE(testing::Message() << operation << setting << " level " << int(level));
        forceLevel(*algorithm, level);
        HostImage const input(in);
        HostImage output;
        setImages(*algorithm, &input, &output);
        algorithm->run();
        EXPECT_TRUE(samePicture(wanted, output));
        EXPECT_TRUE(samePicture(in, input));
        if (!inPlaceToo)
            continue;
        HostImage both(in);
        setImages(*algorithm, &both, &both);
        algorithm->run();
        EXPECT_TRUE(samePicture(wanted, both)) << "in place";
    }
}

/// With memory for temporary images and without, apart and in place.
template <class T>
void expectRightWithAnyMemory(std::string const& operation, Setting const& setting, Picture<T> const& in)
{
    Picture<T> const wanted = expected(operation, setting, in);
    for (int const percent : {0, 100}) {
        Ref<BaseAlgorithm> const algorithm = create(operation, setting);
        algorithm->setMaximumExtraMemoryUsage(percent);
        HostImage input(in);
        HostImage output;
        setImages(*algorithm, &input, &output);
        algorithm->run();
        EXPECT_TRUE(samePicture(wanted, output)) << setting << ' ' << percent;
        setImages(*algorithm, &input, &input);
        algorithm->run();
        EXPECT_TRUE(samePicture(wanted, input)) << setting << ' ' << percent << " in place";
    }
}

TEST(MorphologyTest, computesWhatIsDefinedForEveryVoxelType)
{
    onOneAndFourThreads([&] {
        forEachVoxelType([&]<class T>() {
            unsigned seed = 1;
            for (Setting const& setting : smallSettings())
                for (std::string const& operation : operators())
                    expectRight(operation, setting, randomPicture<T>({21, 7, setting.isOfVolumes ? 6ul : 2ul}, ++seed));
        });
    });
}

TEST(MorphologyTest, computesWhatIsDefinedForOddShapes)
{
    onOneAndFourThreads([&] {
        for (Setting const& setting : smallSettings())
            for (Shape const& shape : oddShapes())
                for (char const* const operation : {"Erosion", "Closing"})
                    expectRight(operation, setting, randomPicture<short>(shape, 3));
    });
}

TEST(MorphologyTest, computesWhatIsDefinedAcrossBlocks)
{
    // Shapes that are cut along each axis, with elements that reach across more than one block.
    FewerRounds rounds(5);
    onOneAndFourThreads([&] {
        for (Setting const& setting : {ofPlans(1, 8), ofPlans(13, 4), disk(6, true), line(20, 25), line(-100, 12),
                                       disk(9, false), line(45, 1100)})
            for (Shape const& shape : {Shape{1025, 11}, Shape{2051, 23}, Shape{40, 131, 2}})
                if (!rounds.leaveThisOut())
                    expectRight("Dilation", setting, randomPicture<unsigned char>(shape, 5));
        for (Setting const& setting : {ofVolumes(1, 26), ofVolumes(2, 18), ofVolumes(5, 6), ball(3, true),
                                       diskInSpace(20, 30, 4), lineInSpace(-60, 25, 12), ball(5, false, 3, 1)})
            for (Shape const& shape : {Shape{37, 41, 43}, Shape{1030, 3, 12}})
                if (!rounds.leaveThisOut())
                    expectRight("Erosion", setting, randomPicture<float>(shape, 6));
    });
}

TEST(MorphologyTest, computesLongLinesInEveryDirection)
{
    Picture<unsigned short> const plan = randomPicture<unsigned short>({70, 60}, 8);
    FewerRounds rounds;
    for (double angle = -360; angle <= 360; angle += 7.5)
        if (!rounds.leaveThisOut())
            expectRight("Erosion", line(angle, 33), plan, false);
    Picture<unsigned short> const volume = randomPicture<unsigned short>({25, 24, 23}, 9);
    for (double theta = -180; theta <= 180; theta += 36)
        for (double phi = -200; phi <= 200; phi += 25)
            if (!rounds.leaveThisOut())
                expectRight("Dilation", lineInSpace(theta, phi, 17), volume, false);
}

TEST(MorphologyTest, computesDisksInEveryDirection)
{
    Picture<signed char> const volume = randomPicture<signed char>({19, 18, 17}, 9);
    for (double theta = -180; theta <= 180; theta += 45)
        for (double phi = -90; phi <= 180; phi += 30)
            expectRight("Erosion", diskInSpace(theta, phi, 5), volume, false);
}

TEST(MorphologyTest, carriesManyIterationsOverSeveralPasses)
{
    // More than one pass carries.
    FewerRounds rounds(3);
    for (Setting const& setting : {ofPlans(70, 8), ofPlans(65, 4), disk(101, false)}) {
        if (rounds.leaveThisOut())
            continue;
        Picture<float> in(Shape{230, 190, 2}, 7.f);
        in.at(100, 90) = -3;
        in.at(5, 180) = -2;
        in.at(229, 3, 1) = -5;
        expectRightWithAnyMemory("Erosion", setting, in);
    }
    for (Setting const& setting : {ofVolumes(20, 26), ofVolumes(18, 6), ofVolumes(17, 18)}) {
        if (rounds.leaveThisOut())
            continue;
        Picture<short> in(Shape{50, 45, 41}, 1);
        in.at(24, 22, 20) = 9;
        in.at(0, 44, 40) = 7;
        expectRightWithAnyMemory("Dilation", setting, in);
    }
}

TEST(MorphologyTest, leavesConstantImagesConstant)
{
    forEachVoxelType([&]<class T>() {
        for (Setting const& setting : smallSettings())
            for (std::string const& operation : operators()) {
                Picture<T> const in({13, 5, 4}, T(77));
                HostImage input(in);
                HostImage output;
                Ref<BaseAlgorithm> const algorithm = create(operation, setting);
                setImages(*algorithm, &input, &output);
                algorithm->run();
                EXPECT_TRUE(samePicture(in, output)) << operation << setting;
            }
    });
}

template <class T> Picture<T> result(std::string const& operation, Setting const& setting, Picture<T> const& in)
{
    HostImage const input(in);
    HostImage output;
    Ref<BaseAlgorithm> const algorithm = create(operation, setting);
    setImages(*algorithm, &input, &output);
    algorithm->run();
    return fromImage<T>(output);
}

template <class T> Picture<T> inverted(Picture<T> picture)
{
    for (T& voxel : picture.voxels) {
        if constexpr (std::is_floating_point_v<T>)
            voxel = -voxel;
        else
            voxel = T(~voxel);
    }
    return picture;
}

TEST(MorphologyTest, swapsErosionAndDilationWhereTheImageIsInverted)
{
    forEachVoxelType([&]<class T>() {
        for (Setting const& setting : smallSettings()) {
            Picture<T> const in = randomPicture<T>({17, 13, 5}, 4);
            EXPECT_TRUE(
                samePicture(inverted(result("Erosion", setting, in)), result("Dilation", setting, inverted(in))))
                << setting;
            EXPECT_TRUE(samePicture(inverted(result("Opening", setting, in)), result("Closing", setting, inverted(in))))
                << setting;
        }
    });
}

TEST(MorphologyTest, opensAndClosesOnceForAll)
{
    // A slanted disk is not its own mirror image: rounding leaves it without a centre.
    auto const isItsOwnMirror = [](Setting const& setting) {
        Offsets offsets = setting.element.front().offsets;
        Offsets mirrored = offsets;
        kernel::invert(mirrored);
        kernel::commonElementsDeletion(offsets, mirrored);
        return setting.isLine || offsets.empty();
    };
    for (Setting const& setting : smallSettings()) {
        if (!isItsOwnMirror(setting))
            continue;
        Picture<int> const in = randomPicture<int>({23, 19, 6}, 14);
        Picture<int> const opened = result("Opening", setting, in);
        Picture<int> const closed = result("Closing", setting, in);
        EXPECT_TRUE(samePicture(opened, result("Opening", setting, opened))) << setting;
        EXPECT_TRUE(samePicture(closed, result("Closing", setting, closed))) << setting;
        for (std::size_t i = 0; i < in.voxels.size(); ++i) {
            ASSERT_LE(opened.voxels[i], in.voxels[i]) << setting;
            ASSERT_GE(closed.voxels[i], in.voxels[i]) << setting;
        }
    }
}

TEST(MorphologyTest, keepsALineThatLiesAlongTheElement)
{
    for (double const angle : {10., -10., 35., -35., 90., -90., 170., -170., 135., -45.}) {
        Picture<unsigned char> in({60, 60}, 10);
        for (auto const& offset : kernel::generateLineOffset2DCollectionWithConstNumOfPixels(angle, 20, true))
            in.at(static_cast<unsigned long>(30 + offset.x), static_cast<unsigned long>(30 + offset.y)) = 200;
        EXPECT_TRUE(samePicture(in, result("Opening", line(angle, 20), in))) << angle;
        EXPECT_TRUE(samePicture(Picture<unsigned char>(in.shape, 10), result("Opening", line(angle, 21), in))) << angle;
    }
}

} // namespace
} // namespace qel::test
