#include <qel/miscellaneous/BorderConditionExtrapole.h>

#include "Core/private/Access/DirectionalMirrorBorderCondition.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/tests/Support/Algorithms.h"

#include <cmath>
#include <limits>

namespace qel::test {
namespace {

using miscellaneous::BorderConditionExtrapole;

enum
{
    FIXED,
    CONTINUE,
    MIRROR,
    DIRECTIONAL
};

long mirrored(long coordinate, long size)
{
    while (coordinate < 0 || coordinate >= size)
        coordinate = coordinate < 0 ? -1 - coordinate : 2 * size - 1 - coordinate;
    return coordinate;
}

/// Voxel by voxel; the directional mirror, which has tests of its own, is asked for one voxel at a time.
template <class T>
Picture<T> extrapolated(Picture<T> const& in, Picture<T> out, unsigned int type, double value, double zoom)
{
    auto const columns = static_cast<long>(in.shape.columns);
    auto const rows = static_cast<long>(in.shape.rows);
    auto const width = static_cast<unsigned long>(static_cast<double>(columns) * zoom);
    long const left = std::lround(std::trunc((1 - zoom) * 0.5 * static_cast<double>(columns)));
    long const top = std::lround(std::trunc((1 - zoom) * 0.5 * static_cast<double>(rows)));
    HostImage const image(in);
    auto const directional = access::DirectionalMirrorBorderCondition<T>::New(value);
    forEachVoxel(out.shape, [&](auto column, auto row, auto plan, auto time, auto series) {
        if (column >= width)
            return;
        long const x = static_cast<long>(column) + left;
        long const y = static_cast<long>(row) + top;
        auto const at = [&](long u, long v) {
            return in.at(static_cast<unsigned long>(u), static_cast<unsigned long>(v), plan, time, series);
        };
        T& voxel = out.at(column, row, plan, time, series);
        if (x >= 0 && x < columns && y >= 0 && y < rows)
            voxel = at(x, y);
        else if (type == FIXED)
            voxel = helper::convertVoxel<T>(value);
        else if (type == CONTINUE)
            voxel = at(std::clamp(x, 0l, columns - 1), std::clamp(y, 0l, rows - 1));
        else if (type == MIRROR)
            voxel = at(mirrored(x, columns), mirrored(y, rows));
        else
            directional->getData(&image, &voxel, &voxel + 1, x, y, static_cast<long>(plan), static_cast<long>(time),
                                 static_cast<long>(series));
    });
    return out;
}

class BorderConditionExtrapoleTest : public testing::Test
{
protected:
    template <class T>
    void expectDefined(Picture<T> const& picture, Shape const& outShape, unsigned int type, double value, double zoom)
    {
        SCOPED_TRACE(testing::Message() << "condition " << type << ", value " << value << ", zoom " << zoom << ", "
                                        << picture.shape << " to " << outShape);
        Picture<T> const before(outShape, T(77));
        HostImage const in(picture);
        HostImage out(before);
        set(in, out, type, value, zoom);
        extrapole->run();
        EXPECT_TRUE(samePicture(extrapolated(picture, before, type, value, zoom), out));
        EXPECT_TRUE(samePicture(picture, in));
    }

    void set(ImageModel const& in, ImageModel& out, unsigned int type, double value, double zoom)
    {
        extrapole->input = &in;
        extrapole->bctype = type;
        extrapole->value = value;
        extrapole->zoomFactor = zoom;
        extrapole->output = &out;
    }

    static Shape zoomed(Shape shape, double zoom)
    {
        shape.columns = static_cast<unsigned long>(static_cast<double>(shape.columns) * zoom);
        shape.rows = static_cast<unsigned long>(static_cast<double>(shape.rows) * zoom);
        return shape;
    }

    Ref<BorderConditionExtrapole> extrapole = BorderConditionExtrapole::New();
};

TEST_F(BorderConditionExtrapoleTest, declaresItsPropertiesInOrder)
{
    EXPECT_EQ(AlgoInfo::fromName("BorderConditionExtrapole"), BorderConditionExtrapole::getClassInfo());
    ASSERT_EQ(extrapole->getNumOfInputProperties(), 4u);
    std::vector<BaseProperty*> const expected = {&extrapole->input, &extrapole->bctype, &extrapole->value,
                                                 &extrapole->zoomFactor};
    std::vector<String> const names = {"input", "bctype", "value", "zoomFactor"};
    for (unsigned long i = 0; i < 4; ++i) {
        EXPECT_EQ(extrapole->getInputProperty(i), expected[i]);
        EXPECT_EQ(extrapole->getInputProperty(i)->getName(), names[i]);
        EXPECT_EQ(extrapole->getInputProperty(i)->getDescription(), names[i]);
    }
    EXPECT_EQ(extrapole->bctype.get(), 0u);
    EXPECT_EQ(extrapole->value.get(), 0.0);
    EXPECT_EQ(extrapole->zoomFactor.get(), 0.0);
    EXPECT_EQ(describedOutputs(*extrapole), std::vector<std::string>({"image output = null"}));
    EXPECT_EQ(levelsOf(*extrapole), std::vector<OptimLevelType>{SCALAR});
    AlgoBorderInfluence const influence = extrapole->getAlgoBorderInfluence();
    for (int direction = COLUMNS_NEGATIVE; direction <= SPECTRAL_SERIES_POSITIVE; ++direction)
        EXPECT_EQ(influence.getNumOfVoxels(static_cast<DirectionTypes>(direction)),
                  direction <= ROWS_POSITIVE ? ~0ul : 0ul);
}

TEST_F(BorderConditionExtrapoleTest, matchesItsDefinitionForEveryTypeAndCondition)
{
    forEachVoxelType([&]<class T>() {
        unsigned seed = 1;
        for (Shape const& shape : {Shape{1, 1}, Shape{1, 7}, Shape{33, 5, 3, 1, 2}, Shape{8, 6, 1, 2}})
            for (unsigned int type = FIXED; type <= DIRECTIONAL; ++type)
                for (double const zoom : {1.0, 1.5, 2.0, 3.7, 0.5, 0.3}) {
                    auto const picture = randomPicture<T>(shape, seed++);
                    expectDefined(picture, zoomed(shape, zoom), type, type == DIRECTIONAL ? 0.6 : 3.7, zoom);
                }
    });
}

TEST_F(BorderConditionExtrapoleTest, copiesWithAZoomOfOne)
{
    auto const picture = randomPicture<double>(Shape{9, 5, 2}, 3);
    for (unsigned int type = FIXED; type <= DIRECTIONAL; ++type) {
        HostImage const in(picture);
        HostImage out(QEL_FLOAT64, picture.shape);
        set(in, out, type, 1.0, 1.0);
        extrapole->run();
        EXPECT_TRUE(samePicture(picture, out));
        EXPECT_EQ(extrapole->getProgress(), 100);
        HostImage same(picture);
        set(same, same, type, 1.0, 1.0);
        extrapole->run();
        EXPECT_TRUE(samePicture(picture, same));
    }
}

TEST_F(BorderConditionExtrapoleTest, cropsTheMiddleWithAZoomBelowOne)
{
    HostImage const in(Picture<unsigned char>(Shape{4, 4}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    HostImage out(QEL_UINT8, {2, 2});
    set(in, out, CONTINUE, 0, 0.5);
    extrapole->run();
    EXPECT_TRUE(samePicture(Picture<unsigned char>(Shape{2, 2}, {5, 6, 9, 10}), out));
}

TEST_F(BorderConditionExtrapoleTest, centresTheImageInItsMargin)
{
    HostImage const in(Picture<short>(Shape{2, 1}, {1, 2}));
    HostImage out(QEL_INT16, {6, 3});
    set(in, out, FIXED, 3.7, 3.0);
    extrapole->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{6, 3}, {3, 3, 3, 3, 3, 3, 3, 3, 1, 2, 3, 3, 3, 3, 3, 3, 3, 3}), out));
    set(in, out, CONTINUE, 0, 3.0);
    extrapole->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{6, 3}, {1, 1, 1, 2, 2, 2, 1, 1, 1, 2, 2, 2, 1, 1, 1, 2, 2, 2}), out));
    set(in, out, MIRROR, 0, 3.0);
    extrapole->run();
    EXPECT_TRUE(samePicture(Picture<short>(Shape{6, 3}, {2, 1, 1, 2, 2, 1, 2, 1, 1, 2, 2, 1, 2, 1, 1, 2, 2, 1}), out));
}

TEST_F(BorderConditionExtrapoleTest, takesSizesThatDoNotFitAsTheyAre)
{
    auto const picture = randomPicture<unsigned short>(Shape{7, 6}, 1);
    for (unsigned int const type : {FIXED, CONTINUE, MIRROR})
        for (Shape const& shape : {Shape{3, 2}, Shape{30, 40}, Shape{14, 5}, Shape{0, 3}, Shape{3, 0}})
            expectDefined(picture, shape, type, 5, 2.0);
}

TEST_F(BorderConditionExtrapoleTest, writesNothingWithoutAZoom)
{
    auto const picture = randomPicture<float>(Shape{7, 6}, 1);
    for (double const zoom : {0.0, 0.1, -2.0, std::numeric_limits<double>::quiet_NaN()}) {
        HostImage const in(picture);
        HostImage out(Picture<float>(Shape{7, 6}, 4.5f));
        set(in, out, MIRROR, 0, zoom);
        extrapole->run();
        EXPECT_TRUE(samePicture(Picture<float>(Shape{7, 6}, 4.5f), out));
    }
    HostImage const in(picture);
    HostImage out(QEL_FLOAT32, {3, 2});
    set(in, out, FIXED, 2, std::numeric_limits<double>::infinity());
    extrapole->run();
    EXPECT_TRUE(samePicture(Picture<float>(Shape{3, 2}, 2.0f), out));
}

TEST_F(BorderConditionExtrapoleTest, retypesItsOutputButKeepsItsSizes)
{
    HostImage in(randomPicture<int>(Shape{4, 4}, 1));
    in.setInterpretation(QEL_LABEL);
    HostImage out(QEL_UINT8, {8, 8});
    set(in, out, CONTINUE, 0, 2.0);
    extrapole->run();
    EXPECT_EQ(out.getVoxelType(), QEL_INT32);
    EXPECT_EQ(out.sizes(), (Shape{8, 8}));
    EXPECT_EQ(out.getInterpretation(), QEL_LABEL);
}

TEST_F(BorderConditionExtrapoleTest, refusesWrongParameters)
{
    HostImage in(QEL_UINT8, {3, 3});
    HostImage out(QEL_UINT8, {3, 3});
    EXPECT_QEL_WHAT(extrapole->run(), RuleException,
                    ruleText("The parameter \"input\" must be set.", "input", "BorderConditionExtrapole"));
    extrapole->input = &in;
    EXPECT_QEL_WHAT(extrapole->run(), RuleException,
                    ruleText("The parameter \"output\" must be set.", "output", "BorderConditionExtrapole"));
    for (unsigned int const type : {4u, ~0u}) {
        set(in, out, type, 0, 1.0);
        EXPECT_QEL_THROW(extrapole->run(), InvalidCall, "Invalid border condition.");
        EXPECT_TRUE(isAtRest(*extrapole));
    }
    EXPECT_EQ(out.callsOf(WRITE_ROW), 0u);
}

TEST_F(BorderConditionExtrapoleTest, reportsImagesThatFailDuringTheRun)
{
    auto const picture = randomPicture<unsigned int>(Shape{5, 8}, 1);
    Picture<unsigned int> const empty(Shape{10, 16});
    expectFailingImagesAreReported<BorderConditionExtrapole>(
        [&](BorderConditionExtrapole& algorithm, HostImages& images) {
            images.push_back(std::make_unique<HostImage>(picture));
            images.push_back(std::make_unique<HostImage>(empty));
            algorithm.input = images[0].get();
            algorithm.bctype = MIRROR;
            algorithm.zoomFactor = 2.0;
            algorithm.output = images[1].get();
        },
        [&](HostImages const& images) {
            return bool(samePicture(extrapolated(picture, empty, MIRROR, 0, 2.0), *images[1]));
        });
}

TEST_F(BorderConditionExtrapoleTest, stopsWhenItIsCancelled)
{
    ObservedImage in(randomPicture<unsigned char>(Shape{5, 200}, 1));
    HostImage out(QEL_UINT8, {5, 200});
    set(in, out, FIXED, 0, 1.0);
    int rows = 0;
    in.onRead = [&] {
        if (++rows == 10)
            extrapole->cancelExecution();
    };
    extrapole->run();
    EXPECT_EQ(out.callsOf(WRITE_ROW), 10u);
    EXPECT_EQ(extrapole->getProgress(), 5);
}

} // namespace
} // namespace qel::test
