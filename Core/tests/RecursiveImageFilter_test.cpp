#include "Core/private/RecursiveImageFilter.h"

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/IteratorNeighborhood.h"
#include "Core/private/Access/IteratorPixel.h"
#include "Core/tests/Support/Algorithms.h"

#include <qel/ImageModelAdapter.h>

#include <algorithm>
#include <mutex>
#include <stdexcept>

namespace qel::test {
namespace {

using access::Block2d;
using access::Block3d;
using Scalar1 = SimdVec::arch_scalar_tag;

/// What a pass was given: which images, and which slice.
struct Pass
{
    ImageModel const* source;
    ImageModel const* destination;
    unsigned long number, plan, timeSeries, spectralSeries;
    bool isFromInput;

    bool operator==(Pass const&) const = default;
};

/// Each voxel becomes the sum of itself and its right and lower neighbours, and in volumes that behind it, cut to eight
/// bits: not idempotent, so that each pass shows.
class SumBody
{
public:
    template <class B, class In, class Out, class Arch, class Direction>
    void run(B const& block, RecursiveImageContext<In, Out, Arch, Direction>& context)
    {
        using Context = RecursiveImageContext<In, Out, Arch, Direction>;
        note({context.getSourceView()->getInterface(), context.getDestinationView()->getInterface(), context.getPass(),
              std::is_same_v<B, Block2d> ? block.plansBegin() : 0, block.timeSeriesBegin(), block.spectralSeriesBegin(),
              std::is_same_v<Direction, InputToOutput>},
             block);
        if (atPass == context.getPass() && onBlock)
            onBlock();
        constexpr bool isVolume = std::is_same_v<B, Block3d>;
        auto const overlap = context.getOverlap(AlgoBorderInfluence(0, 1, 0, 1, 0, isVolume, 0, 0, 0, 0));
        access::IteratorPixelOutput<typename Context::DestinationView, 1> out(context.getDestinationView(), false,
                                                                              overlap);
        auto const fill = [&](auto&& in) {
            for (in.init(block), out.init(block); !in.atEnd(); ++in, ++out) {
                Out sum = 0;
                for (unsigned long i = 0; i < in.size(); ++i)
                    sum = Out(sum + in[i]);
                *out = sum;
            }
        };
        using Source = typename Context::SourceView;
        if constexpr (isVolume)
            fill(access::IteratorNeighborhood3D_Gen<Source, 1>(
                context.getSourceView(), std::vector<kernel::Offset3D>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
        else
            fill(access::IteratorNeighborhood2D_Gen<Source, 1>(context.getSourceView(),
                                                               std::vector<kernel::Offset2D>{{0, 0}, {1, 0}, {0, 1}}));
    }

    std::vector<Pass> passes; // as they came, each once
    unsigned long smallestRows = ~0ul;
    unsigned long atPass = ~0ul;
    std::function<void()> onBlock;

private:
    void note(Pass const& pass, access::Block const& block)
    {
        std::lock_guard const guard(m_mutex);
        if (std::find(passes.begin(), passes.end(), pass) == passes.end())
            passes.push_back(pass);
        smallestRows = std::min(smallestRows, block.getNbRows());
    }

    std::mutex m_mutex;
};

template <class DimTag> constexpr bool isVolume = std::is_same_v<DimTag, Filter3dTag>;

template <class T, class DimTag> Picture<T> summed(Picture<T> picture, unsigned long iterations, T outside)
{
    for (unsigned long i = 0; i < iterations; ++i) {
        Picture<T> next(picture.shape);
        Shape const& shape = picture.shape;
        forEachVoxel(shape, [&](auto c, auto r, auto p, auto t, auto s) {
            auto const at = [&](unsigned long x, unsigned long y, unsigned long z) {
                return x < shape.columns && y < shape.rows && z < shape.plans ? picture.at(x, y, z, t, s) : outside;
            };
            T sum = T(at(c, r, p) + at(c + 1, r, p) + at(c, r + 1, p));
            if (isVolume<DimTag>)
                sum = T(sum + at(c, r, p + 1));
            next.at(c, r, p, t, s) = sum;
        });
        picture = next;
    }
    return picture;
}

class RecursiveImageFilterTest : public testing::Test
{
protected:
    template <class T, class DimTag>
    void run(ImageModel const* input, ImageModel* output, unsigned long iterations, T outside = 0)
    {
        RecursiveImageFilter<T, T, Scalar1, SumBody, DimTag> filter(owner.get(), &body);
        filter.setInput(input, access::FixedBorderCondition<T>::New(outside));
        filter.setOutput(output, access::FixedBorderCondition<T>::New(outside));
        filter.setNumOfIterations(iterations);
        cancelFilter = [&] { filter.cancelExecution(); };
        DoRunRecursiveImage<DimTag>::run(&filter);
        progress = filter.getProgress();
    }

    std::vector<std::string> describedPasses(ImageModel const* input, ImageModel const* output)
    {
        std::vector<std::string> all;
        for (Pass const& pass : body.passes) {
            auto const name = [&](ImageModel const* image) {
                return image == output ? "output" : image == input ? "input" : "temporary";
            };
            all.push_back(std::string(name(pass.source)) + " to " + name(pass.destination) +
                          (pass.isFromInput ? ", InputToOutput" : ""));
        }
        return all;
    }

    Ref<BaseAlgorithm> owner = AlgoInfo::fromName("CopyImage")->createInstance();
    SumBody body;
    std::function<void()> cancelFilter;
    double progress = -1;
};

using Texts = std::vector<std::string>;

TEST_F(RecursiveImageFilterTest, runsNoPassForNoIteration)
{
    Picture<short> const before = randomPicture<short>({20, 12}, 1);
    HostImage const input(before);
    HostImage output(Picture<short>({20, 12}, 5));
    run<short, Filter2dTag>(&input, &output, 0);
    EXPECT_TRUE(samePicture(Picture<short>({20, 12}, 5), output));
    EXPECT_EQ(output.callsOf(WRITE_ROW), 0u);
    EXPECT_TRUE(body.passes.empty());
}

TEST_F(RecursiveImageFilterTest, goesStraightToTheOutputForOneIteration)
{
    HostImage const input(randomPicture<short>({20, 12}, 1));
    HostImage output(QEL_INT16, {20, 12});
    run<short, Filter2dTag>(&input, &output, 1);
    EXPECT_EQ(describedPasses(&input, &output), Texts({"input to output, InputToOutput"}));
    EXPECT_EQ(progress, 100);
}

TEST_F(RecursiveImageFilterTest, endsInTheOutputWithATemporaryImage)
{
    HostImage const input(randomPicture<short>({20, 12}, 1));
    HostImage output(QEL_INT16, {20, 12});
    run<short, Filter2dTag>(&input, &output, 2);
    EXPECT_EQ(describedPasses(&input, &output), Texts({"input to temporary, InputToOutput", "temporary to output"}));
    body.passes.clear();
    run<short, Filter2dTag>(&input, &output, 3);
    EXPECT_EQ(describedPasses(&input, &output),
              Texts({"input to output, InputToOutput", "output to temporary", "temporary to output"}));
}

TEST_F(RecursiveImageFilterTest, staysInTheOutputWithoutMemory)
{
    owner->setMaximumExtraMemoryUsage(0);
    HostImage const input(randomPicture<short>({20, 12}, 1));
    HostImage output(QEL_INT16, {20, 12});
    run<short, Filter2dTag>(&input, &output, 3);
    EXPECT_EQ(describedPasses(&input, &output),
              Texts({"input to output, InputToOutput", "output to output", "output to output"}));
}

TEST_F(RecursiveImageFilterTest, seesOneImageBehindTwoAdapters)
{
    Picture<short> const before = randomPictureBetween<short>({20, 45}, 1, -100, 100);
    HostImage image(before);
    ImageModelAdapter const input(&image, QEL_INT32);
    ImageModelAdapter const output(&image, QEL_INT32);
    run<int, Filter2dTag>(input.getImage(), output.getImage(), 1);
    EXPECT_EQ(describedPasses(input.getImage(), output.getImage()), Texts({"input to output"}));
    EXPECT_TRUE(samePicture(summed<short, Filter2dTag>(before, 1, 0), image));
}

TEST_F(RecursiveImageFilterTest, givesEachSliceAllItsPassesBeforeTheNext)
{
    HostImage const input(randomPicture<short>({5, 4, 2, 2, 2}, 1));
    HostImage output(QEL_INT16, {5, 4, 2, 2, 2});
    run<short, Filter2dTag>(&input, &output, 2);
    ASSERT_EQ(body.passes.size(), 16u);
    for (unsigned long i = 0; i < 16; ++i) {
        EXPECT_EQ(body.passes[i].number, i % 2);
        EXPECT_EQ(body.passes[i].plan, i / 2 % 2);
        EXPECT_EQ(body.passes[i].timeSeries, i / 4 % 2);
        EXPECT_EQ(body.passes[i].spectralSeries, i / 8);
    }
    body.passes.clear();
    run<short, Filter3dTag>(&input, &output, 2);
    ASSERT_EQ(body.passes.size(), 8u);
    for (unsigned long i = 0; i < 8; ++i) {
        EXPECT_EQ(body.passes[i].number, i % 2);
        EXPECT_EQ(body.passes[i].timeSeries, i / 2 % 2);
        EXPECT_EQ(body.passes[i].spectralSeries, i / 4);
    }
}

TEST_F(RecursiveImageFilterTest, givesTheSameWithAndWithoutATemporaryImageAndInPlace)
{
    auto const check = [&]<class T, class DimTag>(Shape const& shape) {
        for (unsigned long iterations = 1; iterations <= 5; ++iterations) {
            SCOPED_TRACE(testing::Message() << shape << ' ' << iterations << " iterations");
            T const outside = 3;
            Picture<T> const before = randomPictureBetween<T>(shape, 7, 0, 9);
            Picture<T> const wanted = summed<T, DimTag>(before, iterations, outside);
            for (int const percent : {0, 100}) {
                owner->setMaximumExtraMemoryUsage(percent);
                HostImage input(before);
                HostImage output(VoxelTypeOf<T>::value, shape);
                run<T, DimTag>(&input, &output, iterations, outside);
                EXPECT_TRUE(samePicture(wanted, output)) << percent;
                EXPECT_TRUE(samePicture(before, input)) << percent;
                run<T, DimTag>(&input, &input, iterations, outside);
                EXPECT_TRUE(samePicture(wanted, input)) << percent << " in place";
                if (shape.count() > 0) {
                    EXPECT_EQ(progress, 100);
                }
            }
        }
    };
    onOneAndFourThreads([&] {
        for (Shape const& shape : {Shape{1, 1}, Shape{1025, 9}, Shape{40, 57, 2}, Shape{0, 3}, Shape{7, 21, 1, 2, 2}}) {
            check.operator()<unsigned char, Filter2dTag>(shape);
            check.operator()<float, Filter2dTag>(shape);
        }
        for (Shape const& shape : {Shape{1, 1}, Shape{11, 23, 25}, Shape{1030, 2, 12}, Shape{7, 5, 0}})
            check.operator()<unsigned short, Filter3dTag>(shape);
    });
}

TEST_F(RecursiveImageFilterTest, cutsNoBlockBelowItsGrains)
{
    HostImage const input(QEL_UINT8, {30, 64});
    HostImage output(QEL_UINT8, {30, 64});
    withThreads(4, [&] { run<unsigned char, Filter2dTag>(&input, &output, 1); });
    EXPECT_GE(body.smallestRows, 5u);
}

TEST_F(RecursiveImageFilterTest, stopsAfterThePassThatIsCancelled)
{
    for (int const percent : {0, 100}) {
        owner->setMaximumExtraMemoryUsage(percent);
        HostImage const input(randomPicture<short>({20, 12, 2}, 1));
        HostImage output(QEL_INT16, {20, 12, 2});
        body.passes.clear();
        body.atPass = 1;
        body.onBlock = [&] { cancelFilter(); };
        run<short, Filter2dTag>(&input, &output, 4);
        ASSERT_FALSE(body.passes.empty());
        EXPECT_EQ(body.passes.back().number, 1u);
        EXPECT_EQ(body.passes.back().plan, 0u);
        EXPECT_LT(progress, 100);
    }
}

TEST_F(RecursiveImageFilterTest, passesExceptionsOfABodyOn)
{
    HostImage const input(randomPicture<short>({20, 12}, 1));
    HostImage output(QEL_INT16, {20, 12});
    body.atPass = 1;
    body.onBlock = [] { throw std::runtime_error("in the second pass"); };
    onOneAndFourThreads([&] {
        try {
            run<short, Filter2dTag>(&input, &output, 3);
            ADD_FAILURE();
        } catch (std::runtime_error const& error) {
            EXPECT_STREQ(error.what(), "in the second pass");
        }
    });
}

/// Takes all four caches; notes how often a thread made new ones.
class CacheBody
{
public:
    template <class B, class Context> void run(B const&, Context& context)
    {
        auto& rows = context.getRowCacheRead(3);
        EXPECT_GE(rows.getNumOfRows(), 3u);
        EXPECT_EQ(&rows, &context.getRowCacheRead(2));
        EXPECT_GE(context.getRowCacheReadWrite(1).getNumOfRows(), 1u);
        auto& plans = context.getPlanCacheRead(3);
        EXPECT_EQ(plans.getNumOfPlans(), 3u);
        EXPECT_EQ(&plans, &context.getPlanCacheRead(2));
        EXPECT_EQ(context.getPlanCacheReadWrite(1).getNumOfPlans(), 1u);
        ++blocks;
    }
    RecursiveGrains getGrains() const { return {8, 8, 8}; }

    std::atomic<int> blocks{0};
};

TEST_F(RecursiveImageFilterTest, givesEachThreadCachesAndBlocksOfTheBodysGrains)
{
    CacheBody caches;
    HostImage const input(QEL_UINT8, {64, 64});
    HostImage output(QEL_UINT8, {64, 64});
    RecursiveImageFilter2d<unsigned char, unsigned char, Scalar1, CacheBody> filter(owner.get(), &caches);
    filter.setInput(&input, access::FixedBorderCondition<unsigned char>::New(0));
    filter.setOutput(&output, access::FixedBorderCondition<unsigned char>::New(0));
    filter.setNumOfIterations(1);
    withThreads(4, [&] { DoRunRecursiveImage<Filter2dTag>::run(&filter); });
    EXPECT_GT(caches.blocks, 1);
    EXPECT_LE(caches.blocks, 64);
}

} // namespace
} // namespace qel::test
