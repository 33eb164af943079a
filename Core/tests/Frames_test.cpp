#include "Core/private/Access/IteratorNeighborhood.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/private/Access/IteratorSeries.h"
#include "Core/private/ImagePairToImageFilter.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/ImageToQuantificationFilter.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/PointBody.h"
#include "Core/private/Throw.h"
#include "Core/tests/IteratorSupport.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <mutex>
#include <numeric>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using access::FixedBorderCondition;
using access::IteratorPixelInput;
using access::IteratorPixelOutput;
using access::Region;
using Scalar1 = SimdVec::arch_scalar_tag;
using Packet = SimdVec::arch_128_tag;

template <class Filter> void cutBlocks(Filter& filter, unsigned long cols, unsigned long rows, unsigned long plans)
{
    filter.setPartitionerInformation(boost::make_shared<PartitionerInfoFixed>(cols, rows, plans));
    filter.setBlocksAreFixed(true);
}

template <class T> ConditionOf<T> zeroOutside() { return FixedBorderCondition<T>::New(T(0)); }

struct Failure
{
    int number;
};

// ---- a body that reads neighbours

/// The largest voxel of the 3 x 3 square, or of the cube.
template <class T> struct MaximumBody
{
    template <class Filter> void run(Block2d const& block, Filter& filter)
    {
        fill(block, filter, access::IteratorNeighborhood2D_8<typename Filter::InputView, 1>(filter.getInputView()),
             AlgoBorderInfluence(1, 1, 0, 0, 0));
    }
    template <class Filter> void run(Block3d const& block, Filter& filter)
    {
        fill(block, filter, access::IteratorNeighborhood3D_26<typename Filter::InputView, 1>(filter.getInputView()),
             AlgoBorderInfluence(1, 1, 1, 0, 0));
    }

private:
    template <class B, class Filter, class Neighbours>
    void fill(B const& block, Filter& filter, Neighbours&& in, AlgoBorderInfluence const& influence)
    {
        IteratorPixelOutput<typename Filter::OutputView, 1> out(
            filter.getOutputView(), false, overlapBetween(*filter.getInputView(), *filter.getOutputView(), influence));
        for (in.init(block), out.init(block); !in.atEnd(); ++in, ++out) {
            T best = in[0];
            for (int i = 1; i < in.size; ++i)
                best = std::max(best, in[i]);
            *out = best;
        }
    }
};

template <class T>
Picture<T> maximumOf(Picture<T> const& picture, access::BorderCondition<T> const& condition, long depth)
{
    HostImage const image(picture);
    Picture<T> result(picture.shape);
    forEachVoxel(picture.shape, [&](auto column, auto row, auto plan, auto time, auto spectral) {
        T best = picture.at(column, row, plan, time, spectral);
        for (long z = -depth; z <= depth; ++z)
            for (long y = -1; y <= 1; ++y)
                for (long x = -1; x <= 1; ++x)
                    best = std::max(best, conditionAt(condition, image, static_cast<long>(column) + x,
                                                      static_cast<long>(row) + y, static_cast<long>(plan) + z,
                                                      static_cast<long>(time), static_cast<long>(spectral)));
        result.at(column, row, plan, time, spectral) = best;
    });
    return result;
}

template <class T, class DimTag>
void runMaximum(ImageModel const* input, ImageModel* output, ConditionOf<T> const& condition, bool smallBlocks)
{
    MaximumBody<T> body;
    ImageToImageFilter<T, T, Scalar1, MaximumBody<T>, DimTag, FilterWithoutReductionTag> filter(nullptr, &body);
    if (smallBlocks)
        cutBlocks(filter, 7, 3, 2);
    filter.setInput(input, condition);
    filter.setOutput(output, condition);
    filter.run();
    EXPECT_EQ(filter.getOutputView()->getNumOfTemporizedRows(), 0u);
    EXPECT_EQ(filter.getProgress(), 100.0);
}

template <class T, class DimTag> void expectMaximum(Shape const& shape, ConditionOf<T> const& condition)
{
    constexpr long depth = std::is_same_v<DimTag, Filter3dTag> ? 1 : 0;
    SCOPED_TRACE(testing::Message() << shape << " in " << 2 + depth << "D");
    auto const before = randomPicture<T>(shape, 81);
    auto const after = maximumOf(before, *condition, depth);
    onOneAndFourThreads([&] {
        for (bool const smallBlocks : {false, true}) {
            HostImage const input(before);
            memory::InMemoryImage output = toImage(randomPicture<T>(shape, 82));
            runMaximum<T, DimTag>(&input, &output, condition, smallBlocks);
            EXPECT_TRUE(samePicture(after, output)) << "blocks " << smallBlocks;
            memory::InMemoryImage inPlace = toImage(before);
            runMaximum<T, DimTag>(&inPlace, &inPlace, condition, smallBlocks);
            EXPECT_TRUE(samePicture(after, inPlace)) << "in place, blocks " << smallBlocks;
            // The host gives no direct rows, and its image is seen through two views.
            HostImage foreign(before);
            runMaximum<T, DimTag>(&foreign, &foreign, condition, smallBlocks);
            EXPECT_TRUE(samePicture(after, foreign)) << "in place of a host, blocks " << smallBlocks;
        }
    });
}

TEST(FramesTest, inPlaceGivesWhatTwoImagesGiveForEveryVoxelType)
{
    forEachVoxelType([]<class T>() {
        expectMaximum<T, Filter2dTag>({33, 25, 2, 2, 2}, zeroOutside<T>());
        expectMaximum<T, Filter3dTag>({17, 13, 5, 2, 1}, access::ContinueBorderCondition<T>::New());
    });
}

TEST(FramesTest, inPlaceHoldsForAllSizesOverSeams)
{
    for (Shape const& shape : {Shape{1, 1}, Shape{1, 37}, Shape{37, 1}, Shape{2, 2, 2}, Shape{1, 1, 33},
                               Shape{1030, 23}, Shape{2051, 11, 1, 2, 1}, Shape{31, 41, 21}})
        for (auto const& condition : {zeroOutside<short>(), access::ContinueBorderCondition<short>::New(),
                                      access::MirrorBorderCondition<short>::New()}) {
            expectMaximum<short, Filter2dTag>(shape, condition);
            expectMaximum<short, Filter3dTag>(shape, condition);
        }
}

TEST(FramesTest, takesEachOfTheFourBorderConditions)
{
    auto const before = randomPicture<int>({29, 31, 3}, 83);
    for (auto const& condition : allConditions<int>())
        onOneAndFourThreads([&] {
            HostImage const input(before);
            HostImage output(QEL_INT32, before.shape);
            runMaximum<int, Filter2dTag>(&input, &output, condition, true);
            EXPECT_TRUE(samePicture(maximumOf(before, *condition, 0), output));
        });
    for (auto const& condition : conditionsOfVolumes<int>())
        onOneAndFourThreads([&] {
            HostImage const input(before);
            HostImage output(QEL_INT32, before.shape);
            runMaximum<int, Filter3dTag>(&input, &output, condition, true);
            EXPECT_TRUE(samePicture(maximumOf(before, *condition, 1), output));
        });
    // The one that does not extend plans says so to the caller.
    HostImage const input(before);
    HostImage output(QEL_INT32, before.shape);
    EXPECT_QEL_THROW((runMaximum<int, Filter3dTag>(&input, &output, allConditions<int>().back(), true)),
                     UnexpectedError, "Directional mirror border condition is not compatible with plans extrapolation");
}

TEST(FramesTest, workersCallNothingButReadRowAtAndWriteRowAt)
{
    auto const before = randomPicture<int>({64, 200, 2}, 84);
    withThreads(4, [&] {
        HostImage input(before);
        HostImage output(QEL_INT32, before.shape);
        for (auto const& condition : allConditions<int>())
            runMaximum<int, Filter2dTag>(&input, &output, condition, true);
        for (auto const& condition : conditionsOfVolumes<int>())
            runMaximum<int, Filter3dTag>(&input, &output, condition, true);
        for (int number = 0; number < NUM_OF_OPERATIONS; ++number) {
            auto const operation = static_cast<Operation>(number);
            if (operation == READ_ROW || operation == WRITE_ROW)
                continue;
            EXPECT_EQ(input.foreignCallsOf(operation), 0u) << number;
            EXPECT_EQ(output.foreignCallsOf(operation), 0u) << number;
        }
        // Sizes and type are asked for once a view.
        EXPECT_EQ(input.callsOf(GET_NUM_OF), 7u * 5);
        EXPECT_EQ(output.callsOf(GET_ROW) + output.callsOf(GET_CONST_ROW), 0u);
    });
}

// ---- packets

/// Adds one, a packet at a time, and takes the right neighbour's packet into account.
struct PacketBody
{
    template <class Filter> void run(Block2d const& block, Filter& filter)
    {
        using V = typename Filter::InputView;
        using T = typename V::VoxelType;
        constexpr int N = SimdVec::Traits<T, typename Filter::ArchTag>::packetSize;
        access::IteratorNeighborhood2D_4<V, N> in(filter.getInputView());
        IteratorPixelOutput<typename Filter::OutputView, N> out(filter.getOutputView(), false);
        for (in.init(block), out.init(block); !in.atEnd(); ++in, ++out)
            for (int lane = 0; lane < N; ++lane)
                out.pointer()[lane] = std::max(in.pointer(2)[lane], in.pointer(3)[lane]);
    }
    template <class Filter> void run(Block3d const& block, Filter& filter)
    {
        using V = typename Filter::InputView;
        using T = typename V::VoxelType;
        constexpr int N = SimdVec::Traits<T, typename Filter::ArchTag>::packetSize;
        IteratorPixelInput<V, N> in(filter.getInputView());
        IteratorPixelOutput<typename Filter::OutputView, N> out(filter.getOutputView(), false);
        for (in.init(block, true), out.init(block); !in.atEnd(); ++in, ++out)
            std::copy(in.pointer(), in.pointer() + N, out.pointer());
    }
};

template <class T> void expectPackets()
{
    SCOPED_TRACE(voxelTypeName<T>());
    for (unsigned long const width : {1ul, 2ul, 15ul, 16ul, 17ul, 35ul}) {
        auto const before = randomPicture<T>({width, 9, 3}, 85);
        Picture<T> after = before;
        forEachVoxel(before.shape, [&](auto column, auto row, auto plan, auto, auto) {
            T const right = column + 1 < width ? before.at(column + 1, row, plan) : T(0);
            after.at(column, row, plan) = std::max(before.at(column, row, plan), right);
        });
        onOneAndFourThreads([&] {
            HostImage const input(before);
            HostImage output(VoxelTypeOf<T>::value, before.shape);
            PacketBody body;
            ImageToImageFilter2d<T, T, Packet, PacketBody> flat(nullptr, &body);
            cutBlocks(flat, 7, 2, 1);
            flat.setInput(&input, zeroOutside<T>());
            flat.setOutput(&output, zeroOutside<T>());
            flat.run();
            EXPECT_TRUE(samePicture(after, output)) << width;
            ImageToImageFilter3d<T, T, Packet, PacketBody> solid(nullptr, &body);
            cutBlocks(solid, 9, 2, 1);
            solid.setInput(&input, zeroOutside<T>());
            solid.setOutput(&output, zeroOutside<T>());
            solid.run();
            EXPECT_TRUE(samePicture(before, output)) << width;
        });
    }
}

TEST(FramesTest, bodiesWorkOnPacketsWhereverBlocksAreCut)
{
#define QEL_TEST(T) expectPackets<T>();
    QEL_FOR_EACH_PACKET_TYPE(QEL_TEST)
#undef QEL_TEST
}

// ---- slices

/// Notes its blocks, and does what it is told with each.
struct NotingBody
{
    template <class B, class Filter> void run(B const& block, Filter&)
    {
        {
            std::lock_guard const guard(mutex);
            blocks.push_back(Region(block.rowsBegin(), block.rowsEnd(), block.colsBegin(), block.colsEnd(),
                                    block.plansBegin(), block.plansEnd(), block.timeSeriesBegin(),
                                    block.timeSeriesEnd(), block.spectralSeriesBegin(), block.spectralSeriesEnd()));
        }
        if (onBlock)
            onBlock(block);
    }
    using Slice = std::tuple<unsigned long, unsigned long, unsigned long>;
    /// Plan, time series and spectral series of each block, in the order of their coming.
    std::vector<Slice> slices() const
    {
        std::vector<Slice> all;
        for (Region const& block : blocks)
            all.emplace_back(block.plansBegin(), block.timeSeriesBegin(), block.spectralSeriesBegin());
        return all;
    }

    std::function<void(access::Block const&)> onBlock;
    std::mutex mutex;
    std::vector<Region> blocks;
};

/// Counts the ends of slices.
template <class Frame> struct Watched : Frame
{
    using Frame::Frame;
    void writeTemporizedOutputs() override
    {
        ++ends;
        Frame::writeTemporizedOutputs();
        if (onEnd)
            onEnd(ends);
    }
    int ends = 0;
    std::function<void(int)> onEnd;
};
using Noting2d = Watched<ImageToImageFilter2d<int, int, Scalar1, NotingBody>>;
using Noting3d = Watched<ImageToImageFilter3d<int, int, Scalar1, NotingBody>>;

template <class Frame> void bindTo(Frame& frame, HostImage& image)
{
    frame.setInput(&image, zeroOutside<int>());
    frame.setOutput(&image, zeroOutside<int>());
}

TEST(FramesTest, flatFramesRunPlanByPlanWithinTimeAndSpectralWithinPlan)
{
    using Slices = std::vector<NotingBody::Slice>;
    HostImage image(QEL_INT32, {4, 4, 3, 2, 1});
    NotingBody body;
    Noting2d filter(nullptr, &body);
    bindTo(filter, image);
    filter.run();
    EXPECT_EQ(body.slices(), (Slices{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}}));
    EXPECT_EQ(filter.ends, 6);

    HostImage spectral(QEL_INT32, {4, 4, 2, 2, 2});
    NotingBody second;
    Noting2d other(nullptr, &second);
    bindTo(other, spectral);
    other.run();
    EXPECT_EQ(second.slices(),
              (Slices{{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, 0, 1}, {0, 1, 0}, {0, 1, 1}, {1, 1, 0}, {1, 1, 1}}));
}

TEST(FramesTest, solidFramesRunVolumeByVolume)
{
    using Slices = std::vector<NotingBody::Slice>;
    HostImage image(QEL_INT32, {4, 4, 3, 2, 2});
    NotingBody body;
    Noting3d filter(nullptr, &body);
    bindTo(filter, image);
    filter.run();
    EXPECT_EQ(body.slices(), (Slices{{0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 1, 1}}));
    EXPECT_EQ(filter.ends, 4);
    EXPECT_EQ(body.blocks[0].getNbPlans(), 3u);
    EXPECT_EQ(filter.getProgress(), 100.0);
}

TEST(FramesTest, slicesComeOneAfterTheOther)
{
    HostImage image(QEL_INT32, {4, 64, 2, 3, 1});
    withThreads(4, [&] {
        NotingBody body;
        std::atomic<int> slice{0};
        Noting3d filter(nullptr, &body);
        cutBlocks(filter, 4, 4, 1);
        body.onBlock = [&](access::Block const& block) { EXPECT_EQ(static_cast<int>(block.timeSeriesBegin()), slice); };
        filter.onEnd = [&](int) { ++slice; };
        bindTo(filter, image);
        filter.run();
        EXPECT_EQ(slice, 3);
    });
}

TEST(FramesTest, aRegionThatWasGivenStays)
{
    HostImage image(QEL_INT32, {4, 4, 3});
    NotingBody body;
    Noting3d filter(nullptr, &body);
    filter.setProcessingRegion(Region(1, 3, 2, 9, 1, 2, 0, 1, 0, 1));
    bindTo(filter, image);
    filter.run();
    ASSERT_EQ(body.blocks.size(), 1u);
    EXPECT_EQ(body.blocks[0].rowsBegin(), 1u);
    EXPECT_EQ(body.blocks[0].rowsEnd(), 3u);
    EXPECT_EQ(body.blocks[0].colsBegin(), 2u);
    EXPECT_EQ(body.blocks[0].colsEnd(), 9u);
    EXPECT_EQ(body.blocks[0].plansBegin(), 1u);
    EXPECT_EQ(body.blocks[0].plansEnd(), 2u);
}

TEST(FramesTest, theFirstImageThatIsBoundSetsTheRegion)
{
    HostImage small(QEL_INT32, {3, 2});
    HostImage large(QEL_INT32, {9, 8});
    for (bool const inputFirst : {true, false}) {
        NotingBody body;
        Noting2d filter(nullptr, &body);
        if (inputFirst)
            filter.setInput(&small, zeroOutside<int>());
        filter.setOutput(&large, zeroOutside<int>());
        filter.setInput(&small, zeroOutside<int>());
        EXPECT_EQ(filter.getProcessingRegion().colsEnd(), inputFirst ? 3u : 9u);
        EXPECT_EQ(filter.getProcessingRegion().rowsEnd(), inputFirst ? 2u : 8u);
    }
}

TEST(FramesTest, outerLoopsRunUpToCounts)
{
    using Slices = std::vector<NotingBody::Slice>;
    HostImage image(QEL_INT32, {4, 4, 5, 5, 5});
    {
        NotingBody body;
        Noting2d filter(nullptr, &body);
        filter.setProcessingRegion(Region(0, 4, 0, 4, 1, 3, 1, 4, 0, 2));
        bindTo(filter, image);
        filter.run();
        EXPECT_EQ(body.slices(), (Slices{{1, 1, 0}, {1, 1, 1}, {1, 2, 0}, {1, 2, 1}}));
    }
    {
        NotingBody body;
        Noting3d filter(nullptr, &body);
        filter.setProcessingRegion(Region(0, 4, 0, 4, 2, 4, 1, 3, 1, 3));
        bindTo(filter, image);
        filter.run();
        EXPECT_EQ(body.slices(), (Slices{{2, 1, 1}}));
        EXPECT_EQ(body.blocks[0].plansEnd(), 4u);
    }
    {
        NotingBody body;
        Noting3d filter(nullptr, &body);
        filter.setProcessingRegion(Region(0, 4, 0, 4, 0, 4, 2, 4, 0, 1));
        bindTo(filter, image);
        filter.run();
        EXPECT_TRUE(body.blocks.empty());
        EXPECT_EQ(filter.ends, 0);
    }
}

TEST(FramesTest, aZeroCountRunsNoBodyAndEndsEachSliceAllTheSame)
{
    for (Shape const& shape : {Shape{0, 4, 2, 3, 1}, Shape{4, 0, 2, 3, 1}}) {
        HostImage image(QEL_INT32, shape);
        NotingBody body;
        Noting2d flat(nullptr, &body);
        bindTo(flat, image);
        flat.run();
        EXPECT_EQ(flat.ends, 6);
        EXPECT_FALSE(flat.isCancelled());
        EXPECT_EQ(flat.getProgress(), 0.0);
        Noting3d solid(nullptr, &body);
        bindTo(solid, image);
        solid.run();
        EXPECT_EQ(solid.ends, 3);
        EXPECT_TRUE(body.blocks.empty());
    }
    for (Shape const& shape : {Shape{4, 4, 0, 3, 1}, Shape{4, 4, 2, 0, 1}, Shape{4, 4, 2, 3, 0}}) {
        HostImage image(QEL_INT32, shape);
        NotingBody body;
        Noting2d flat(nullptr, &body);
        bindTo(flat, image);
        flat.run();
        EXPECT_EQ(flat.ends, 0);
        EXPECT_TRUE(body.blocks.empty());
    }
}

// ---- blocks

std::set<std::vector<unsigned long>> cornersOf(std::vector<Region> const& blocks)
{
    std::set<std::vector<unsigned long>> corners;
    for (Region const& block : blocks)
        corners.insert({block.colsBegin(), block.colsEnd(), block.rowsBegin(), block.rowsEnd(), block.plansBegin(),
                        block.plansEnd(), block.timeSeriesBegin(), block.spectralSeriesBegin()});
    EXPECT_EQ(corners.size(), blocks.size());
    return corners;
}

TEST(FramesTest, fixedBlocksFollowFromRegionAndGrainAlone)
{
    HostImage image(QEL_INT32, {50, 23, 5});
    std::set<std::vector<unsigned long>> first;
    for (int const threads : {1, 2, 4})
        withThreads(threads, [&] {
            NotingBody body;
            Noting3d filter(nullptr, &body);
            cutBlocks(filter, 16, 4, 2);
            bindTo(filter, image);
            filter.run();
            auto const corners = cornersOf(body.blocks);
            unsigned long voxels = 0;
            for (Region const& block : body.blocks) {
                EXPECT_LE(block.getNbCols(), 16u);
                EXPECT_LE(block.getNbRows(), 4u);
                EXPECT_LE(block.getNbPlans(), 2u);
                voxels += block.getNumOfVoxels();
            }
            EXPECT_EQ(voxels, 50u * 23 * 5);
            if (first.empty())
                first = corners;
            EXPECT_EQ(corners, first);
        });
}

TEST(FramesTest, freeBlocksCoverTheRegionOnce)
{
    HostImage image(QEL_INT32, {30, 200, 20});
    onOneAndFourThreads([&] {
        NotingBody body;
        Noting3d filter(nullptr, &body);
        bindTo(filter, image);
        filter.run();
        Picture<int> visits({30, 200, 20});
        for (Region const& block : body.blocks)
            for (Place const& place : placesOf(block))
                ++visits.at(place.column, place.row, place.plan);
        EXPECT_TRUE(samePicture(Picture<int>(visits.shape, 1), visits));
    });
}

TEST(FramesTest, smallImagesAreOneBlock)
{
    HostImage image(QEL_INT32, {1024, 10, 10});
    withThreads(4, [&] {
        NotingBody body;
        Noting3d filter(nullptr, &body);
        bindTo(filter, image);
        filter.run();
        EXPECT_EQ(body.blocks.size(), 1u);
    });
}

// ---- cancellation and exceptions

/// Cancels in the second slice.
struct CancellingBody : MaximumBody<short>
{
    template <class Filter> void run(Block2d const& block, Filter& filter)
    {
        MaximumBody<short>::run(block, filter);
        if (block.timeSeriesBegin() == 1 && block.rowsBegin() >= 10)
            filter.cancelExecution();
        ++blocks;
    }
    std::atomic<int> blocks{0};
};

TEST(FramesTest, cancelledInABlockStartsNoFurtherOneAndWritesNoMargin)
{
    auto const before = randomPicture<short>({8, 40, 1, 3, 1}, 86);
    withThreads(1, [&] {
        HostImage image(before);
        CancellingBody body;
        Watched<ImageToImageFilter2d<short, short, Scalar1, CancellingBody>> filter(nullptr, &body);
        cutBlocks(filter, 8, 10, 1);
        filter.setInput(&image, zeroOutside<short>());
        filter.setOutput(&image, zeroOutside<short>());
        EXPECT_NO_THROW(filter.run());
        EXPECT_TRUE(filter.isCancelled());
        EXPECT_EQ(filter.ends, 1);
        EXPECT_EQ(body.blocks, 4 + 2);
        EXPECT_GT(filter.getOutputView()->getNumOfTemporizedRows(), 0u);
        auto const after = maximumOf(before, *zeroOutside<short>(), 0);
        auto const now = fromImage<short>(image);
        for (unsigned long row = 0; row < 40; ++row)
            for (unsigned long column = 0; column < 8; ++column) {
                ASSERT_EQ(now.at(column, row, 0, 0), after.at(column, row, 0, 0));
                ASSERT_EQ(now.at(column, row, 0, 2), before.at(column, row, 0, 2));
            }
        // The seam between the two blocks of the second slice that did run.
        for (unsigned long const row : {9ul, 10ul, 19ul})
            for (unsigned long column = 0; column < 8; ++column)
                ASSERT_EQ(now.at(column, row, 0, 1), before.at(column, row, 0, 1)) << row;
        ASSERT_EQ(now.at(3, 5, 0, 1), after.at(3, 5, 0, 1));
    });
}

TEST(FramesTest, cancelledBetweenSlicesStopsBeforeTheNext)
{
    HostImage image(QEL_INT32, {4, 40, 4});
    onOneAndFourThreads([&] {
        NotingBody body;
        Noting2d filter(nullptr, &body);
        filter.onEnd = [&](int end) {
            if (end == 2)
                filter.cancelExecution();
        };
        bindTo(filter, image);
        filter.run();
        EXPECT_EQ(filter.ends, 2);
        for (auto const& [plan, time, spectral] : body.slices())
            EXPECT_LT(plan, 2u);
    });
}

TEST(FramesTest, cancelledBeforeItRunsDoesNothing)
{
    HostImage image(QEL_INT32, {4, 40, 4});
    NotingBody body;
    Noting2d filter(nullptr, &body);
    bindTo(filter, image);
    filter.cancelExecution();
    filter.run();
    EXPECT_TRUE(body.blocks.empty());
    EXPECT_EQ(filter.ends, 0);
}

TEST(FramesTest, anExceptionOfABodyReachesTheCallerWithItsType)
{
    HostImage image(QEL_INT32, {4, 100, 2});
    onOneAndFourThreads([&] {
        NotingBody body;
        body.onBlock = [](access::Block const& block) {
            if (block.rowsBegin() >= 50)
                throw Failure{7};
        };
        Noting2d filter(nullptr, &body);
        bindTo(filter, image);
        cutBlocks(filter, 4, 1, 1);
        try {
            filter.run();
            ADD_FAILURE() << "nothing was thrown";
        } catch (Failure const& failure) {
            EXPECT_EQ(failure.number, 7);
        }
        EXPECT_EQ(filter.ends, 0);
        // Blocks under way finish; no further one starts.
        EXPECT_LT(body.blocks.size(), 100u);
    });
    withThreads(1, [&] {
        NotingBody body;
        body.onBlock = [&](access::Block const&) {
            if (body.blocks.size() == 3)
                QEL_THROW(BadIndex, "Third.");
        };
        Noting3d filter(nullptr, &body);
        bindTo(filter, image);
        cutBlocks(filter, 4, 1, 1);
        EXPECT_QEL_THROW(filter.run(), BadIndex, "Third.");
        EXPECT_EQ(body.blocks.size(), 3u);
    });
}

TEST(FramesTest, imagesOfAHostThatFailEndTheRun)
{
    auto const before = randomPicture<short>({40, 60, 3}, 87);
    onOneAndFourThreads([&] {
        HostImage image(before);
        auto const condition = zeroOutside<short>();
        image.failOn(READ_ROW, 50);
        EXPECT_QEL_THROW((runMaximum<short, Filter2dTag>(&image, &image, condition, true)), UnexpectedError,
                         "Error in readRowAt implementation, return value is false");
        image.behave().throwOn(WRITE_ROW, image.callsOf(WRITE_ROW) + 20);
        EXPECT_THROW((runMaximum<short, Filter3dTag>(&image, &image, condition, true)), HostFailure);
        image.behave();
        // A deferred row that the host refuses: its turn comes on this thread.
        HostImage strict(before);
        runMaximum<short, Filter3dTag>(&strict, &strict, condition, true);
        auto const writes = strict.callsOf(WRITE_ROW);
        strict.failOn(WRITE_ROW, 2 * writes - 1);
        EXPECT_QEL_THROW((runMaximum<short, Filter3dTag>(&strict, &strict, condition, true)), UnexpectedError,
                         "Error in writeRowAt implementation, return value is false");
    });
}

// ---- reductions

/// Sums, extrema, and the order in which everything was joined.
template <class T> struct SumBody
{
    SumBody() { ++alive; }
    SumBody(SumBody& other, tbb::split)
        : failsAt(other.failsAt)
        , cancelsAt(other.cancelsAt)
    {
        ++alive;
        ++splits;
    }
    SumBody(SumBody const&) = delete;
    ~SumBody() { --alive; }

    template <class B, class Filter> void run(B const& block, Filter& filter)
    {
        ++runs;
        access::IteratorPixelInput<typename Filter::InputView, 1> in(filter.getInputView());
        for (in.init(block); !in.atEnd(); ++in) {
            sum += *in;
            lowest = std::min(lowest, *in);
            ++count;
        }
        blocks.push_back({static_cast<long>(block.colsBegin()), static_cast<long>(block.rowsBegin()),
                          static_cast<long>(block.plansBegin())});
        if (static_cast<long>(block.rowsBegin()) == failsAt)
            throw Failure{1};
        if (static_cast<long>(block.timeSeriesBegin()) == cancelsAt)
            filter.cancelExecution();
    }
    void join(SumBody& right)
    {
        ++joins;
        sum += right.sum;
        lowest = std::min(lowest, right.lowest);
        count += right.count;
        blocks.insert(blocks.end(), right.blocks.begin(), right.blocks.end());
    }
    void finalize()
    {
        ++finals;
        if (onFinalize)
            onFinalize();
    }

    T sum = 0;
    T lowest = std::numeric_limits<T>::max();
    unsigned long count = 0;
    std::vector<Place> blocks;
    long failsAt = -1;
    long cancelsAt = -1;
    int finals = 0;
    std::function<void()> onFinalize;

    static inline std::atomic<int> alive{0};
    static inline std::atomic<int> splits{0};
    static inline std::atomic<int> joins{0};
    static inline std::atomic<int> runs{0};
    static void forget() { splits = joins = runs = 0; }
};

template <class T> using Sum3d = Watched<ImageToQuantificationFilter3d<T, Scalar1, SumBody<T>>>;
template <class T> using SumWithOutput2d = Watched<ImageToImageFilter2dWithReduction<T, T, Scalar1, SumBody<T>>>;
template <class T> using SumWithOutput3d = Watched<ImageToImageFilter3dWithReduction<T, T, Scalar1, SumBody<T>>>;

template <class T> void bindInput(Sum3d<T>& frame, HostImage& image) { frame.setInput(&image, zeroOutside<T>()); }
template <class Frame> void bindInput(Frame& frame, HostImage& image)
{
    using T = typename Frame::InputView::VoxelType;
    frame.setInput(&image, zeroOutside<T>());
    frame.setOutput(&image, zeroOutside<T>());
}

template <class Frame, class T> void expectExactSum(Picture<T> const& picture)
{
    T sum = 0;
    for (T voxel : picture.voxels)
        sum += voxel;
    HostImage image(picture);
    for (int const threads : {1, 2, 4})
        withThreads(threads, [&] {
            SumBody<T> body;
            Frame frame(nullptr, &body);
            bindInput(frame, image);
            frame.run();
            EXPECT_EQ(body.sum, sum);
            EXPECT_EQ(body.count, picture.voxels.size());
            EXPECT_EQ(body.lowest, *std::min_element(picture.voxels.begin(), picture.voxels.end()));
            EXPECT_EQ(body.finals, 1);
            EXPECT_EQ(frame.getProgress(), 100.0);
        });
    EXPECT_EQ(SumBody<T>::alive, 0);
}

TEST(FramesWithReductionTest, addUpAllSlicesExactly)
{
    auto const picture = randomPicture<unsigned long>({37, 61, 13, 2, 3}, 88);
    expectExactSum<Sum3d<unsigned long>>(picture);
    expectExactSum<SumWithOutput2d<unsigned long>>(picture);
    expectExactSum<SumWithOutput3d<unsigned long>>(picture);
}

/// Sums of floats, whose last bits follow from the order of addition.
template <class T, class Frame> void expectSameBits()
{
    HostImage image(randomPicture<T>({211, 173, 31}, 89));
    std::vector<T> sums;
    std::vector<Place> order;
    for (int repeat = 0; repeat < 3; ++repeat)
        for (int const threads : {1, 2, 4})
            withThreads(threads, [&] {
                SumBody<T> body;
                Frame frame(nullptr, &body);
                bindInput(frame, image);
                frame.run();
                sums.push_back(body.sum);
                if (order.empty())
                    order = body.blocks;
                EXPECT_EQ(body.blocks, order);
            });
    EXPECT_GT(order.size(), 20u);
    for (T sum : sums)
        EXPECT_EQ(std::memcmp(&sum, &sums[0], sizeof(T)), 0) << sum << " and " << sums[0];
}

TEST(FramesWithReductionTest, sumsOfFloatsHaveTheSameBitsForAnyNumberOfThreads)
{
    expectSameBits<float, Sum3d<float>>();
    expectSameBits<double, SumWithOutput2d<double>>();
    expectSameBits<float, SumWithOutput3d<float>>();
}

TEST(FramesWithReductionTest, joinLeftBeforeRight)
{
    HostImage image(Picture<int>({4, 64}, 1));
    withThreads(4, [&] {
        SumBody<int> body;
        Sum3d<int> frame(nullptr, &body);
        frame.setPartitionerInformation(boost::make_shared<PartitionerInfoFixed>(4, 4, 1));
        bindInput(frame, image);
        frame.run();
        ASSERT_EQ(body.blocks.size(), 16u);
        for (long i = 0; i < 16; ++i)
            EXPECT_EQ(body.blocks[static_cast<std::size_t>(i)], (Place{0, 4 * i, 0}));
    });
}

TEST(FramesWithReductionTest, anImageThatIsOneBlockSplitsAndJoinsNothing)
{
    HostImage image(Picture<int>({20, 10, 10}, 3));
    withThreads(4, [&] {
        SumBody<int>::forget();
        SumBody<int> body;
        Sum3d<int> frame(nullptr, &body);
        bindInput(frame, image);
        frame.run();
        EXPECT_EQ(body.sum, 6000);
        EXPECT_EQ(SumBody<int>::runs, 1);
        EXPECT_EQ(SumBody<int>::splits, 0);
        EXPECT_EQ(SumBody<int>::joins, 0);
        EXPECT_EQ(body.finals, 1);
    });
}

TEST(FramesWithReductionTest, joinEverySplitOnceIntoTheRoot)
{
    HostImage image(Picture<int>({20, 100, 30}, 1));
    onOneAndFourThreads([&] {
        SumBody<int>::forget();
        SumBody<int> body;
        Sum3d<int> frame(nullptr, &body);
        bindInput(frame, image);
        frame.run();
        EXPECT_EQ(body.sum, 60000);
        EXPECT_GT(SumBody<int>::splits, 0);
        EXPECT_EQ(SumBody<int>::joins, SumBody<int>::splits);
        EXPECT_EQ(SumBody<int>::alive, 1);
    });
}

TEST(FramesWithReductionTest, anEmptyRegionIsFinalizedAllTheSame)
{
    HostImage image(QEL_INT32, {0, 10, 2, 3, 1});
    SumBody<int> body;
    Sum3d<int> frame(nullptr, &body);
    bindInput(frame, image);
    frame.run();
    EXPECT_EQ(body.count, 0u);
    EXPECT_EQ(body.sum, 0);
    EXPECT_EQ(body.finals, 1);
    EXPECT_EQ(frame.ends, 3);
}

TEST(FramesWithReductionTest, cancelledOnesAreNotFinalized)
{
    HostImage image(Picture<int>({20, 100, 2, 3, 1}, 1));
    onOneAndFourThreads([&] {
        SumBody<int> inBlock;
        inBlock.cancelsAt = 1;
        Sum3d<int> first(nullptr, &inBlock);
        bindInput(first, image);
        first.run();
        EXPECT_EQ(inBlock.finals, 0);
        EXPECT_EQ(first.ends, 1);

        for (int const end : {1, 3}) {
            SumBody<int> between;
            Sum3d<int> frame(nullptr, &between);
            frame.onEnd = [&](int number) {
                if (number == end)
                    frame.cancelExecution();
            };
            bindInput(frame, image);
            frame.run();
            EXPECT_EQ(frame.ends, end);
            EXPECT_EQ(between.finals, 0) << "cancelled after slice " << end;
        }
        EXPECT_EQ(SumBody<int>::alive, 1);
    });
}

TEST(FramesWithReductionTest, exceptionsOfBodiesReachTheCallerAndLeaveNothingBehind)
{
    HostImage image(Picture<int>({20, 100, 2}, 1));
    onOneAndFourThreads([&] {
        SumBody<int> body;
        body.failsAt = 50;
        Sum3d<int> frame(nullptr, &body);
        bindInput(frame, image);
        EXPECT_THROW(frame.run(), Failure);
        EXPECT_EQ(body.finals, 0);
        EXPECT_EQ(SumBody<int>::alive, 1);

        SumBody<int> last;
        last.onFinalize = [] { QEL_THROW(RuntimeError, "No voxels."); };
        Sum3d<int> another(nullptr, &last);
        bindInput(another, image);
        EXPECT_QEL_THROW(another.run(), RuntimeError, "No voxels.");
    });
    EXPECT_EQ(SumBody<int>::alive, 0);
}

// ---- two inputs

struct DifferenceKernel
{
    /// Wraps where a long would overflow.
    template <class T> static unsigned long wide(T value)
    {
        return static_cast<unsigned long>(static_cast<long>(value));
    }
    template <class A, class B, class C> void operator()(A const* a, B const* b, C* out, unsigned long count) const
    {
        for (unsigned long i = 0; i < count; ++i)
            out[i] = static_cast<C>(static_cast<long>(wide(a[i]) - wide(b[i])));
    }
};
struct PairBody2d
{
    template <class Filter> void run(Block2d const& block, Filter& filter)
    {
        access::IteratorNeighborhood2D_4<typename Filter::FirstView, 1> first(filter.getFirstView());
        IteratorPixelInput<typename Filter::SecondView, 1> second(filter.getSecondView());
        IteratorPixelOutput<typename Filter::OutputView, 1> out(
            filter.getOutputView(), false,
            overlapBetween(*filter.getFirstView(), *filter.getOutputView(), AlgoBorderInfluence(1, 1, 0, 0, 0)));
        first.init(block);
        second.init(block);
        for (out.init(block); !out.atEnd(); ++first, ++second, ++out)
            *out = static_cast<typename Filter::OutputView::VoxelType>(first[0] + first[4] + *second);
    }
};

template <class A, class B, class C> void expectPair(Shape const& shape)
{
    using Body = PairPointBody<DifferenceKernel>;
    auto const a = randomPicture<A>(shape, 91);
    auto const b = randomPicture<B>(shape, 92);
    Picture<C> difference(shape);
    DifferenceKernel()(a.voxels.data(), b.voxels.data(), difference.voxels.data(), shape.count());
    Body body{DifferenceKernel()};
    onOneAndFourThreads([&] {
        HostImage const first(a);
        HostImage const second(b);
        HostImage output(VoxelTypeOf<C>::value, shape);
        ImagePairToImageFilter3d<A, B, C, Scalar1, Body> filter(nullptr, &body);
        filter.setFirstInput(&first, zeroOutside<A>());
        filter.setSecondInput(&second, zeroOutside<B>());
        filter.setOutput(&output, zeroOutside<C>());
        filter.run();
        EXPECT_TRUE(samePicture(difference, output));
    });
}

TEST(PairFrameTest, takesThreeVoxelTypes)
{
    expectPair<unsigned char, short, int>({33, 25, 3, 2, 2});
    expectPair<long, unsigned int, signed char>({1, 37, 11});
    expectPair<unsigned short, unsigned short, unsigned long>({1025, 11, 2});
    expectPair<int, long, float>({17, 1, 12});
}

TEST(PairFrameTest, inPlaceOverItsFirstInputGivesTheSame)
{
    using Body = PairPointBody<DifferenceKernel>;
    Shape const shape{70, 45, 13, 2, 1};
    auto const a = randomPicture<short>(shape, 93);
    auto const b = randomPicture<short>(shape, 94);
    Picture<short> difference(shape);
    DifferenceKernel()(a.voxels.data(), b.voxels.data(), difference.voxels.data(), shape.count());
    Body body{DifferenceKernel()};
    onOneAndFourThreads([&] {
        HostImage image(a);
        HostImage const second(b);
        ImagePairToImageFilter3d<short, short, short, Scalar1, Body> filter(nullptr, &body);
        filter.setFirstInput(&image, zeroOutside<short>());
        filter.setSecondInput(&second, zeroOutside<short>());
        filter.setOutput(&image, zeroOutside<short>());
        filter.run();
        EXPECT_TRUE(samePicture(difference, image));
    });
}

TEST(PairFrameTest, inPlaceWithNeighboursDefersItsMargins)
{
    Shape const shape{40, 45, 3};
    auto const a = randomPictureBetween<int>(shape, 95, -1000, 1000);
    auto const b = randomPictureBetween<int>(shape, 96, -1000, 1000);
    Picture<int> expected(shape);
    forEachVoxel(shape, [&](auto column, auto row, auto plan, auto, auto) {
        long const x = static_cast<long>(column);
        long const y = static_cast<long>(row);
        long const z = static_cast<long>(plan);
        expected.at(column, row, plan) =
            voxelAt(a, x, y - 1, z, 0, 0, 0) + voxelAt(a, x, y + 1, z, 0, 0, 0) + b.at(column, row, plan);
    });
    onOneAndFourThreads([&] {
        HostImage image(a);
        HostImage const second(b);
        PairBody2d body;
        ImagePairToImageFilter2d<int, int, int, Scalar1, PairBody2d> filter(nullptr, &body);
        cutBlocks(filter, 9, 4, 1);
        filter.setFirstInput(&image, zeroOutside<int>());
        filter.setSecondInput(&second, zeroOutside<int>());
        filter.setOutput(&image, zeroOutside<int>());
        filter.run();
        EXPECT_TRUE(samePicture(expected, image));
    });
}

TEST(PairFrameTest, bothInputsMayBeOneImage)
{
    using Body = PairPointBody<DifferenceKernel>;
    HostImage const image(randomPicture<int>({9, 8, 2}, 97));
    HostImage output(QEL_INT32, {9, 8, 2});
    Body body{DifferenceKernel()};
    ImagePairToImageFilter3d<int, int, int, Scalar1, Body> filter(nullptr, &body);
    filter.setFirstInput(&image, zeroOutside<int>());
    filter.setSecondInput(&image, zeroOutside<int>());
    filter.setOutput(&output, zeroOutside<int>());
    EXPECT_NE(filter.getFirstView(), filter.getSecondView());
    filter.run();
    EXPECT_TRUE(samePicture(Picture<int>({9, 8, 2}), output));
}

TEST(PairFrameTest, theFirstInputSetsTheRegionAndBordersAnswerForTheSecond)
{
    using Body = PairPointBody<DifferenceKernel>;
    HostImage const first(Picture<int>({3, 2, 1, 2, 1}, 10));
    HostImage const second(Picture<int>({2, 5}, 4));
    HostImage output(Picture<int>({3, 2, 1, 2, 1}));
    Body body{DifferenceKernel()};
    ImagePairToImageFilter3d<int, int, int, Scalar1, Body> filter(nullptr, &body);
    filter.setFirstInput(&first, zeroOutside<int>());
    filter.setSecondInput(&second, FixedBorderCondition<int>::New(1));
    filter.setOutput(&output, zeroOutside<int>());
    filter.run();
    EXPECT_TRUE(samePicture(Picture<int>({3, 2, 1, 2, 1}, {6, 6, 9, 6, 6, 9, 9, 9, 9, 9, 9, 9}), output));
}

// ---- many images

struct ManyBody
{
    template <class B, class Filter> void run(B const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::template InputView<0>, 1> bytes(filter.template getInputView<0>());
        access::IteratorPixelInput<typename Filter::template InputView<1>, 1> reals(filter.template getInputView<1>());
        access::IteratorPixelInput<typename Filter::template InputView<2>, 1> longs(filter.template getInputView<2>());
        access::IteratorPixelOutput<typename Filter::template OutputView<0>, 1> sum(filter.template getOutputView<0>(),
                                                                                    false);
        access::IteratorPixelOutput<typename Filter::template OutputView<1>, 1> flag(filter.template getOutputView<1>(),
                                                                                     false);
        bytes.init(block);
        reals.init(block);
        longs.init(block);
        sum.init(block);
        for (flag.init(block); !flag.atEnd(); ++bytes, ++reals, ++longs, ++sum, ++flag) {
            *sum = *bytes + double(*reals) + double(*longs);
            *flag = *longs > 0;
        }
    }
};
using Ins = boost::mpl::vector<unsigned char, float, long>;
using Outs = boost::mpl::vector<double, unsigned short>;

template <class Frame> void expectMany()
{
    Shape const shape{45, 33, 3, 2, 2};
    auto const bytes = randomPicture<unsigned char>(shape, 98);
    auto const reals = randomPictureBetween<float>(shape, 99, -50, 50);
    auto const longs = randomPictureBetween<long>(shape, 100, -50, 50);
    Picture<double> sums(shape);
    Picture<unsigned short> flags(shape);
    for (std::size_t i = 0; i < shape.count(); ++i) {
        sums.voxels[i] = bytes.voxels[i] + double(reals.voxels[i]) + double(longs.voxels[i]);
        flags.voxels[i] = longs.voxels[i] > 0;
    }
    onOneAndFourThreads([&] {
        HostImage const first(bytes);
        HostImage const second(reals);
        HostImage const third(longs);
        HostImage sum(QEL_FLOAT64, shape);
        HostImage flag(QEL_UINT16, shape);
        ManyBody body;
        Frame frame(nullptr, &body);
        frame.template setInput<0>(&first, zeroOutside<unsigned char>());
        frame.template setInput<1>(&second, zeroOutside<float>());
        frame.template setInput<2>(&third, zeroOutside<long>());
        frame.template setOutput<0>(&sum, zeroOutside<double>());
        frame.template setOutput<1>(&flag, zeroOutside<unsigned short>());
        frame.run();
        EXPECT_TRUE(samePicture(sums, sum));
        EXPECT_TRUE(samePicture(flags, flag));
    });
}

TEST(ManyFrameTest, takesImagesOfAnyTypes)
{
    expectMany<ManyToManyImageFilter2d<Ins, Outs, Scalar1, ManyBody>>();
    expectMany<ManyToManyImageFilter3d<Ins, Outs, Scalar1, ManyBody>>();
}

/// Counts the voxels that two images share.
struct MatchBody
{
    MatchBody() = default;
    MatchBody(MatchBody&, tbb::split) {}
    template <class B, class Filter> void run(B const& block, Filter& filter)
    {
        access::IteratorPixelInput<typename Filter::template InputView<0>, 1> first(filter.template getInputView<0>());
        access::IteratorPixelInput<typename Filter::template InputView<1>, 1> second(filter.template getInputView<1>());
        second.init(block);
        for (first.init(block); !first.atEnd(); ++first, ++second)
            matches += static_cast<long>(*first) == static_cast<long>(*second);
    }
    void join(MatchBody& right) { matches += right.matches; }
    void finalize() { share = static_cast<double>(matches) / 2; }

    unsigned long matches = 0;
    double share = -1;
};

template <class Frame> void expectMatches()
{
    Shape const shape{45, 33, 3, 2, 2};
    auto const a = randomPictureBetween<unsigned char>(shape, 101, 0, 3);
    auto const b = randomPictureBetween<int>(shape, 102, 0, 3);
    unsigned long matches = 0;
    for (std::size_t i = 0; i < shape.count(); ++i)
        matches += a.voxels[i] == b.voxels[i];
    onOneAndFourThreads([&] {
        HostImage const first(a);
        HostImage const second(b);
        MatchBody body;
        Frame frame(nullptr, &body);
        frame.template setInput<0>(&first, zeroOutside<unsigned char>());
        frame.template setInput<1>(&second, zeroOutside<int>());
        frame.run();
        EXPECT_EQ(body.matches, matches);
        EXPECT_EQ(body.share, static_cast<double>(matches) / 2);
    });
}

TEST(ManyFrameTest, measuresWithoutAnyOutput)
{
    using Two = boost::mpl::vector<unsigned char, int>;
    expectMatches<ManyToManyImageFilter2dWithReduction<Two, boost::mpl::vector<>, Scalar1, MatchBody>>();
    expectMatches<ManyToManyImageFilter3dWithReduction<Two, boost::mpl::vector<>, Scalar1, MatchBody>>();
}

struct DrawBody
{
    template <class B, class Filter> void run(B const& block, Filter& filter)
    {
        access::IteratorPixelOutput<typename Filter::template OutputView<0>, 1> out(filter.template getOutputView<0>(),
                                                                                    false, overlap);
        for (out.init(block); !out.atEnd(); ++out)
            *out = 5;
    }
    access::OverlapBorder overlap;
};

TEST(ManyFrameTest, drawsWithoutAnyInput)
{
    HostImage output(Picture<short>({40, 30, 2}));
    DrawBody body;
    ManyToManyImageFilter3d<boost::mpl::vector<>, boost::mpl::vector<short>, Scalar1, DrawBody> frame(nullptr, &body);
    frame.setOutput<0>(&output, zeroOutside<short>());
    EXPECT_EQ(frame.getProcessingRegion().colsEnd(), 40u);
    frame.run();
    EXPECT_TRUE(samePicture(Picture<short>({40, 30, 2}, 5), output));
}

TEST(ManyFrameTest, neverWritesWhatIsDeferred)
{
    HostImage output(Picture<short>({8, 8}));
    DrawBody body;
    body.overlap = access::OverlapBorder(AlgoBorderInfluence(0, 1, 0, 0, 0));
    ManyToManyImageFilter2d<boost::mpl::vector<>, boost::mpl::vector<short>, Scalar1, DrawBody> frame(nullptr, &body);
    frame.setOutput<0>(&output, zeroOutside<short>());
    frame.run();
    auto const picture = fromImage<short>(output);
    EXPECT_EQ(picture.at(0, 0), 5);
    EXPECT_EQ(picture.at(0, 7), 0);
    EXPECT_EQ(frame.getOutputView<0>()->getNumOfTemporizedRows(), 1u);
}

TEST(ManyFrameTest, theFirstInputOrElseTheFirstOutputSetsTheRegion)
{
    HostImage small(QEL_UINT8, {2, 3});
    HostImage reals(QEL_FLOAT32, {4, 5});
    HostImage sum(QEL_FLOAT64, {6, 7});
    HostImage flag(QEL_UINT16, {8, 9});
    ManyBody body;
    using Frame = ManyToManyImageFilter2d<Ins, Outs, Scalar1, ManyBody>;
    Frame inputFirst(nullptr, &body);
    inputFirst.setInput<1>(&reals, zeroOutside<float>());
    inputFirst.setInput<0>(&small, zeroOutside<unsigned char>());
    inputFirst.setOutput<0>(&sum, zeroOutside<double>());
    EXPECT_EQ(inputFirst.getProcessingRegion().colsEnd(), 2u);
    Frame outputFirst(nullptr, &body);
    outputFirst.setOutput<1>(&flag, zeroOutside<unsigned short>());
    outputFirst.setOutput<0>(&sum, zeroOutside<double>());
    outputFirst.setInput<0>(&small, zeroOutside<unsigned char>());
    EXPECT_EQ(outputFirst.getProcessingRegion().colsEnd(), 6u);
    Frame given(nullptr, &body);
    given.setProcessingRegion(Region(0, 1, 0, 1, 0, 1, 0, 1, 0, 1));
    given.setInput<0>(&small, zeroOutside<unsigned char>());
    EXPECT_EQ(given.getProcessingRegion().colsEnd(), 1u);
}

TEST(ManyFrameTest, anImageThatWasNotBoundIsABadCast)
{
    HostImage small(QEL_UINT8, {2, 3});
    ManyBody body;
    ManyToManyImageFilter2d<Ins, Outs, Scalar1, ManyBody> frame(nullptr, &body);
    frame.setInput<0>(&small, zeroOutside<unsigned char>());
    EXPECT_NO_THROW(frame.getInputView<0>());
    EXPECT_THROW(frame.getInputView<1>(), boost::bad_any_cast);
    EXPECT_THROW(frame.getOutputView<0>(), boost::bad_any_cast);
    EXPECT_THROW(frame.run(), boost::bad_any_cast);
}

} // namespace
} // namespace qel::test
