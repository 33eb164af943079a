#include <qel/morphology/LocalThicknessMap.h>

#include "Morphology/tests/DistanceModel.h"

#include <qel/memory/InMemoryImage.h>

namespace qel::test {
namespace {

using morphology::LocalThicknessMap;

/// Every ball is painted, voxel by voxel.
template <class T> Picture<float> thicknessOf(Picture<T> const& picture, Spacings const& spacings)
{
    Picture<float> const radii = DistanceModel<T>(picture, spacings, false, false).distances();
    Picture<float> thickness(radii.shape);
    for (std::size_t i = 0; i < radii.voxels.size(); ++i)
        thickness.voxels[i] = picture.voxels[i] != 0 ? 2 * radii.voxels[i] : 0;
    Shape const& shape = picture.shape;
    long const columns = long(shape.columns), rows = long(shape.rows), plans = long(shape.plans);
    double const sx = float(spacings[0]), sy = float(spacings[1]), sz = float(spacings[2]);
    forEachVoxel(shape, [&](long x, long y, long z, long, long) {
        if (picture.at(x, y, z) == 0)
            return;
        double const r = radii.at(x, y, z);
        float const diameter = 2 * radii.at(x, y, z);
        long const kz = long(r / sz) + 1, ky = long(r / sy) + 1;
        for (long dz = std::max(-kz, -z); dz < std::min(kz, plans - z); ++dz)
            for (long dy = std::max(-ky, -y); dy < std::min(ky, rows - y); ++dy) {
                double const t = (r * r - (double(dy * dy) * sy * sy + double(dz * dz) * sz * sz)) / (sx * sx);
                if (t < 0)
                    continue;
                long const width = long(std::sqrt(t));
                for (long column = std::max(x - width, 0l); column <= std::min(x + width, columns - 1); ++column)
                    if (picture.at(column, y + dy, z + dz) != 0)
                        thickness.at(column, y + dy, z + dz) = std::max(thickness.at(column, y + dy, z + dz), diameter);
            }
    });
    return thickness;
}

class LocalThicknessMapTest : public testing::Test
{
protected:
    template <class T> Picture<float> mapOf(Picture<T> const& picture, Spacings const& spacings)
    {
        HostImage in(picture);
        in.setInterpretation(QEL_BINARY);
        setSpacings(in, spacings);
        HostImage result;
        map->input = &in;
        map->output = &result;
        map->run();
        EXPECT_TRUE(samePicture(picture, in));
        return fromImage<float>(result);
    }

    Ref<LocalThicknessMap> map = LocalThicknessMap::New();
    std::string const name = "LocalThicknessMap";
};

/// Blobs and pores of some voxels: a voxel belongs to the object where the noise around it is high.
Picture<unsigned char> blobs(Shape const& shape, unsigned seed)
{
    auto const noise = binaryPicture<unsigned char>(shape, seed, 50);
    Picture<unsigned char> picture(shape);
    forEachVoxel(shape, [&](long x, long y, long z, long, long) {
        int sum = 0, count = 0;
        for (long k = 0; k < 125; ++k) {
            long const cx = x + k % 5 - 2, cy = y + k / 5 % 5 - 2, cz = z + k / 25 - 2;
            if (cx < 0 || cy < 0 || cz < 0 || cx >= long(shape.columns) || cy >= long(shape.rows) ||
                cz >= long(shape.plans))
                continue;
            sum += noise.at(cx, cy, cz) != 0;
            ++count;
        }
        picture.at(x, y, z) = 2 * sum > count - 3;
    });
    return picture;
}

TEST_F(LocalThicknessMapTest, isRegisteredUnderItsName)
{
    EXPECT_EQ(AlgoInfo::fromName("LocalThicknessMap"), LocalThicknessMap::getClassInfo());
    EXPECT_EQ(levelsOf(*map), std::vector<OptimLevelType>{SCALAR});
}

TEST_F(LocalThicknessMapTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(describedInputs(*map), std::vector<std::string>({"const image input = null"}));
    EXPECT_EQ(describedOutputs(*map), std::vector<std::string>({"image output = null"}));
}

TEST_F(LocalThicknessMapTest, isTheLargestBallThatCoversAVoxel)
{
    onOneAndFourThreads([&] {
        unsigned seed = 1;
        FewerRounds rounds;
        forEachBinaryType([&]<class T>() {
            for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{5, 4, 3}, Shape{33, 5, 3}, Shape{70, 19, 21}})
                for (unsigned const percent : {50u, 97u, 100u}) {
                    if (rounds.leaveThisOut())
                        continue;
                    SCOPED_TRACE(testing::Message() << voxelTypeName<T>() << " seed " << seed);
                    Spacings const spacings[] = {{1, 1, 1}, {0.3, 0.3, 0.3}, {1, 2, 0.7}};
                    auto const picture = binaryPicture<T>(shape, seed, percent);
                    EXPECT_TRUE(
                        samePicture(thicknessOf(picture, spacings[seed % 3]), mapOf(picture, spacings[seed % 3])));
                    ++seed;
                }
        });
        FewerRounds someBlobs(3);
        for (Shape const& shape : {Shape{65, 33, 25}, Shape{130, 40, 9}})
            for (Spacings const& spacings : {Spacings{1, 1, 1}, Spacings{0.7, 1, 1.5}}) {
                if (someBlobs.leaveThisOut())
                    continue;
                auto const picture = blobs(shape, seed++);
                EXPECT_TRUE(samePicture(thicknessOf(picture, spacings), mapOf(picture, spacings)));
            }
    });
}

TEST_F(LocalThicknessMapTest, decidesOnVoxelsThatLieOnTheSurfacesOfBalls)
{
    // Half a spacing of rows is two plans here: balls of the thick slab end at voxels of the thin one, where their
    // squares are rounded up or down.
    for (double const plan : {0.5, 0.1, 0.3, 0.35, 0.7, 1.1, 0.013, 3.3})
        for (unsigned long const thickness : {7ul, 10ul, 13ul}) {
            Picture<unsigned char> slabs(Shape{9, 9, 20});
            for (unsigned long z = 2; z < thickness + 5; ++z)
                for (unsigned long i = 0; i < 81; ++i)
                    slabs.at(i % 9, i / 9, z) = z != thickness + 2;
            Spacings const spacings{4 * plan, 4 * plan, plan};
            EXPECT_TRUE(samePicture(thicknessOf(slabs, spacings), mapOf(slabs, spacings))) << plan;
        }
}

TEST_F(LocalThicknessMapTest, isTheSameForThickObjects)
{
    auto picture = Picture<unsigned char>(Shape{40, 40, 40}, 1);
    picture.at(3, 35, 20) = 0;
    EXPECT_TRUE(samePicture(thicknessOf(picture, {1, 1, 1}), mapOf(picture, {1, 1, 1})));
}

TEST_F(LocalThicknessMapTest, isZeroWithoutAnObject)
{
    Picture<short> const picture(Shape{9, 8, 7});
    EXPECT_TRUE(samePicture(Picture<float>(picture.shape), mapOf(picture, {1, 1, 1})));
}

TEST_F(LocalThicknessMapTest, isOneSpacingForASingleVoxel)
{
    Picture<unsigned char> picture(Shape{5, 5, 5});
    picture.at(2, 2, 2) = 1;
    Picture<float> expected(picture.shape);
    expected.at(2, 2, 2) = 0.25f;
    EXPECT_TRUE(samePicture(expected, mapOf(picture, {0.25, 0.25, 0.25})));
}

TEST_F(LocalThicknessMapTest, isTheSameThroughoutASlab)
{
    for (long const thickness : {4, 5, 8}) {
        Picture<unsigned char> picture(Shape{31, 31, 21});
        for (unsigned long z = 6; z < 6 + static_cast<unsigned long>(thickness); ++z)
            for (unsigned long y = 0; y < 31; ++y)
                for (unsigned long x = 0; x < 31; ++x)
                    picture.at(x, y, z) = 1;
        auto const result = mapOf(picture, {1, 1, 1});
        for (unsigned long z = 6; z < 6 + static_cast<unsigned long>(thickness); ++z) {
            EXPECT_EQ(result.at(15, 15, z), result.at(15, 15, 6));
            EXPECT_NEAR(result.at(15, 15, z), static_cast<float>(thickness), 1);
        }
    }
}

TEST_F(LocalThicknessMapTest, paintsNoVoxelOutsideTheObject)
{
    auto const picture = blobs(Shape{40, 30, 20}, 4);
    auto const result = mapOf(picture, {1, 1, 1});
    for (std::size_t i = 0; i < picture.voxels.size(); ++i)
        EXPECT_EQ(result.voxels[i] == 0, picture.voxels[i] == 0);
}

TEST_F(LocalThicknessMapTest, endsWithSpacingsThatMakeNoSense)
{
    auto const picture = binaryPicture<unsigned char>(Shape{19, 18, 7}, 8, 80);
    double const nan = std::nan("");
    for (Spacings const& spacings :
         {Spacings{0, 0, 0}, Spacings{0, 1, 1}, Spacings{1, 0, 1}, Spacings{1, 1, 0}, Spacings{-1, -1, -1},
          Spacings{INFINITY, 1, 1}, Spacings{1, INFINITY, INFINITY}, Spacings{nan, 1, 1}, Spacings{1, nan, 1},
          Spacings{1, 1, nan}, Spacings{1e300, 1e300, 1e300}, Spacings{1e-300, 1, 1e-30}}) {
        auto const result = mapOf(picture, spacings);
        for (std::size_t i = 0; i < picture.voxels.size(); ++i)
            EXPECT_TRUE(picture.voxels[i] != 0 || result.voxels[i] == 0);
    }
}

TEST_F(LocalThicknessMapTest, shapesItsOutputLikeItsInputAndKeepsItsInterpretation)
{
    HostImage in(binaryPicture<unsigned char>(Shape{6, 5, 4}, 1, 50));
    in.setInterpretation(QEL_BINARY);
    setSpacings(in, {1, 2, 3});
    in.setOriginOf(PLANS, -7);
    HostImage out(QEL_UINT16, {1, 1});
    out.setInterpretation(QEL_LABEL);
    map->input = &in;
    map->output = &out;
    map->run();
    EXPECT_EQ(out.getVoxelType(), QEL_FLOAT32);
    EXPECT_EQ(out.sizes(), in.sizes());
    EXPECT_TRUE(sameCalibration(in, out));
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TEST_F(LocalThicknessMapTest, refusesWrongParametersInTheRulesWords)
{
    HostImage in(QEL_UINT8, {3, 3});
    auto const text = [&](std::string const& message, std::string const& property) {
        return ruleText(message, property, name);
    };
    EXPECT_QEL_WHAT(map->run(), RuleException, text("The parameter \"input\" must be set.", "input"));
    HostImage const wide(QEL_INT32, {3, 3});
    map->input = &wide;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" supports only data type(s): uint8, uint16, int8, int16. Current data "
                         "type is int32.",
                         "input"));
    map->input = &in;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" supports QEL_BINARY. Current image is QEL_VALUE.", "input"));
    in.setInterpretation(QEL_BINARY);
    EXPECT_QEL_WHAT(map->run(), RuleException, text("The parameter \"output\" must be set.", "output"));
    map->output = &in;
    EXPECT_QEL_WHAT(map->run(), RuleException,
                    text("The parameter \"input\" cannot be used as output image if it must be retyped.", "output"));
    HostImage out;
    map->output = &out;
    for (Shape const& shape : {Shape{3, 3, 1, 1, 2}, Shape{3, 3, 1, 2, 1}}) {
        HostImage series(QEL_UINT8, shape);
        series.setInterpretation(QEL_BINARY);
        map->input = &series;
        EXPECT_QEL_WHAT(map->run(), RuleException,
                        text("The number of " + std::string(shape.timeSeries > 1 ? "time" : "spectral") +
                                 " series of the parameter \"input\" must be 1. Current size is 2.",
                             "input"));
    }
    EXPECT_TRUE(isAtRest(*map));
}

TEST_F(LocalThicknessMapTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = binaryPicture<unsigned char>(Shape{5, 23}, 1, 70);
    Picture<float> const expected = thicknessOf(picture, {1, 1, 1});
    auto const attempt = [&](auto const& spoil, std::string const& text) {
        HostImage in(picture);
        in.setInterpretation(QEL_BINARY);
        setSpacings(in, {1, 1, 1});
        HostImage out;
        map->input = &in;
        map->output = &out;
        spoil(in, out);
        Poller poller;
        EXPECT_QEL_WHAT(map->run(), UnexpectedError, text);
        EXPECT_QEL_WHAT(map->run(&poller), UnexpectedError, text);
        EXPECT_TRUE(isAtRest(*map));
        in.behave();
        out.behave();
        map->run();
        EXPECT_TRUE(samePicture(expected, out));
    };
    // The copies from and to the host's images are algorithms of their own, and so is the distance map.
    attempt([](HostImage& in, HostImage&) { in.failOn(READ_ROW, 5); },
            errorText("Error in readRowAt implementation, return value is false", "CopyImage \n#3 From " + name));
    attempt([](HostImage& in, HostImage&) { in.throwOn(READ_ROW, 5); },
            foreignErrorText("host failure", "CopyImage \n#2 From " + name));
    attempt([](HostImage&, HostImage& out) { out.failOn(WRITE_ROW, 3); },
            errorText("Error in writeRowAt implementation, return value is false", "CopyImage \n#3 From " + name));
    attempt([](HostImage&, HostImage& out) { out.throwOn(WRITE_ROW, 3); },
            foreignErrorText("host failure", "CopyImage \n#2 From " + name));
}

TEST_F(LocalThicknessMapTest, stopsWhenItIsCancelled)
{
    memory::InMemoryImage in = toImage(Picture<unsigned char>(Shape{96, 96, 96}, 1));
    in.setInterpretation(QEL_BINARY);
    setSpacings(in, {1, 1, 1});
    HostImage out;
    map->input = &in;
    map->output = &out;
    Poller poller;
    poller.wantsToCancel = true;
    map->run(&poller);
    EXPECT_TRUE(poller.hasCancelled);
    EXPECT_TRUE(poller.isSteady);
    EXPECT_TRUE(isAtRest(*map));
    Poller patient;
    map->run(&patient);
    EXPECT_EQ(fromImage<float>(out).at(48, 48, 48), 95.0f);
    EXPECT_TRUE(patient.isSteady);
}

} // namespace
} // namespace qel::test
