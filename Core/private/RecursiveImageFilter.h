#pragma once

#include "Core/private/Access/Rows.h"
#include "Core/private/Frames.h"

#include <qel/BaseAlgorithm.h>
#include <qel/memory/InMemoryImage.h>

#include <boost/make_shared.hpp>
#include <tbb/enumerable_thread_specific.h>

#include <new>

namespace qel {

/// Which image a pass reads. It always writes the output, or the temporary image that stands in for it.
struct InputToOutput
{};
struct OutputToOutput
{};

/// What a body gets for one pass: two views, and caches that each thread makes on first use and keeps for the pass.
template <class In, class Out, class Arch, class Direction> class RecursiveImageContext
{
public:
    using SourceVoxel = std::conditional_t<std::is_same_v<Direction, InputToOutput>, In, Out>;
    using SourceView = ViewOf<SourceVoxel, Arch>;
    using DestinationView = ViewOf<Out, Arch>;
    using RowCacheRead = access::RowCacheRead<SourceView, typename SourceView::Allocator>;
    using RowCacheReadWrite = access::RowCacheReadWrite<DestinationView, typename DestinationView::Allocator>;
    using PlanCacheRead = access::PlanCacheRead<SourceView, typename SourceView::Allocator>;
    using PlanCacheReadWrite = access::PlanCacheReadWrite<DestinationView, typename DestinationView::Allocator>;

    RecursiveImageContext(boost::shared_ptr<SourceView> source, boost::shared_ptr<DestinationView> destination,
                          unsigned long pass, BaseTbbAlgorithm const& frame)
        : m_source(source)
        , m_destination(destination)
        , m_pass(pass)
        , m_frame(frame)
    {}

    boost::shared_ptr<SourceView> const& getSourceView() const { return m_source; }
    boost::shared_ptr<DestinationView> const& getDestinationView() const { return m_destination; }

    /// Counted from 0.
    unsigned long getPass() const { return m_pass; }
    /// A body with long blocks may stop early where the frame is cancelled.
    BaseTbbAlgorithm const& getFrame() const { return m_frame; }

    /// What a body that reads `influence` around a voxel must hold back in this pass.
    access::OverlapBorder getOverlap(AlgoBorderInfluence const& influence) const
    {
        return overlapBetween(*m_source, *m_destination, influence);
    }

    /// The calling thread's cache, with that many slots or more.
    RowCacheRead& getRowCacheRead(unsigned long slots)
    {
        auto& cache = m_rowsRead.local();
        if (!cache)
            cache = m_source->createRowCacheRead(slots);
        cache->makeRows(slots);
        return *cache;
    }
    RowCacheReadWrite& getRowCacheReadWrite(unsigned long slots)
    {
        auto& cache = m_rowsWritten.local();
        if (!cache)
            cache = m_destination->createRowCacheReadWrite(slots);
        cache->makeRows(slots);
        return *cache;
    }
    PlanCacheRead& getPlanCacheRead(unsigned long slots)
    {
        auto& cache = m_plansRead.local();
        if (!cache || cache->getNumOfPlans() < slots)
            cache = m_source->createPlanCacheRead(slots);
        return *cache;
    }
    PlanCacheReadWrite& getPlanCacheReadWrite(unsigned long slots)
    {
        auto& cache = m_plansWritten.local();
        if (!cache || cache->getNumOfPlans() < slots)
            cache = m_destination->createPlanCacheReadWrite(slots);
        return *cache;
    }

private:
    boost::shared_ptr<SourceView> m_source;
    boost::shared_ptr<DestinationView> m_destination;
    tbb::enumerable_thread_specific<boost::shared_ptr<RowCacheRead>> m_rowsRead;
    tbb::enumerable_thread_specific<boost::shared_ptr<RowCacheReadWrite>> m_rowsWritten;
    tbb::enumerable_thread_specific<boost::shared_ptr<PlanCacheRead>> m_plansRead;
    tbb::enumerable_thread_specific<boost::shared_ptr<PlanCacheReadWrite>> m_plansWritten;
    unsigned long m_pass;
    BaseTbbAlgorithm const& m_frame;
};

/// The body on one leaf block of a pass.
template <class B, class Body, class Context> class RecursiveTask final : public access::BlockTask<B>
{
public:
    RecursiveTask(Body& body, Context& context)
        : m_body(body)
        , m_context(context)
    {}
    void runBlock(B const& block) override { m_body.run(block, m_context); }

private:
    Body& m_body;
    Context& m_context;
};
template <class Body, class Context, class Filter>
using TbbBodyRecursiveImage = RecursiveTask<access::Block2d, Body, Context>;
template <class Body, class Context, class Filter>
using TbbBody3DRecursiveImage = RecursiveTask<access::Block3d, Body, Context>;

/// How small the blocks of a pass may get.
struct RecursiveGrains
{
    unsigned long cols = 1024;
    unsigned long rows = 10;
    unsigned long plans = 10;
};

/// Those of the frame, or of a body that reaches too far for them: `body.getGrains()`.
template <class Body> RecursiveGrains grainsOf(Body const& body)
{
    if constexpr (requires { body.getGrains(); })
        return body.getGrains();
    else
        return {};
}

/// Runs all passes of a filter over all slices of its output. The region and the partitioner of the frame are not
/// asked: passes cover the output.
template <class DimTag> class DoRunRecursiveImage
{
public:
    template <class Filter> static void run(Filter* filter)
    {
        using View = typename Filter::OutputView;
        View const& output = *filter->getOutputView();
        unsigned long const iterations = filter->getNumOfIterations();
        unsigned long const voxels = output.numOfRows() * output.numOfCols() * output.numOfPlans() *
                                     output.numOfTimeSeries() * output.numOfSpectralSeries();
        filter->setTotalWork(voxels * iterations);
        algorithms::AbstractPrivateImplementation::Publication const publication(*filter);
        if (voxels == 0)
            return;

        memory::InMemoryImage image;
        boost::shared_ptr<View> temporary;
        // A count of voxels against a number of bytes, whatever the size of a voxel: hosts tune the limit to that.
        if (iterations >= 2 && voxels < filter->getOwner()->getMaximumExtraMemoryUsageInBytes()) {
            if (!image.reserve(output.getVoxelType(), output.numOfCols(), output.numOfRows(), output.numOfPlans(),
                               output.numOfTimeSeries(), output.numOfSpectralSeries()))
                throw std::bad_alloc();
            temporary = View::New(&image, output.getBorderCondition());
        }

        RecursiveGrains const grains = grainsOf(filter->getBody());
        access::Range const rows{output.numOfRows(), 0, grains.rows};
        access::Range const cols{output.numOfCols(), 0, grains.cols};
        for (unsigned long s = 0; s < output.numOfSpectralSeries(); ++s)
            for (unsigned long t = 0; t < output.numOfTimeSeries(); ++t) {
                if constexpr (std::is_same_v<DimTag, Filter2dTag>) {
                    for (unsigned long plan = 0; plan < output.numOfPlans(); ++plan)
                        if (!runSlice(*filter, temporary, access::Block2d(rows, cols, plan, t, s)))
                            return;
                } else {
                    access::Range const plans{output.numOfPlans(), 0, grains.plans};
                    if (!runSlice(*filter, temporary, access::Block3d(plans, rows, cols, t, s)))
                        return;
                }
            }
    }

private:
    /// False if the run was cancelled.
    template <class Filter, class View>
    static bool runSlice(Filter& filter, boost::shared_ptr<View> const& temporary, BlockOf<DimTag> const& whole)
    {
        unsigned long const iterations = filter.getNumOfIterations();
        bool toTemporary = temporary && iterations % 2 == 0; // so that the last pass ends in the output
        for (unsigned long pass = 0; pass < iterations; ++pass) {
            auto const& output = filter.getOutputView();
            auto const& destination = toTemporary ? temporary : output;
            bool isDone = false;
            if (pass > 0) {
                auto const& source = temporary && !toTemporary ? temporary : output;
                isDone = runPass<OutputToOutput>(filter, source, destination, pass, whole);
            } else if (access::areOnOneImage(filter.getInputView()->getInterface(), output->getInterface())) {
                isDone = runPass<OutputToOutput>(filter, filter.getInputView(), destination, pass, whole);
            } else {
                isDone = runPass<InputToOutput>(filter, filter.getInputView(), destination, pass, whole);
            }
            if (!isDone)
                return false;
            if (temporary)
                toTemporary = !toTemporary;
        }
        return true;
    }

    template <class Direction, class Filter, class Source, class View>
    static bool runPass(Filter& filter, boost::shared_ptr<Source> const& source,
                        boost::shared_ptr<View> const& destination, unsigned long pass, BlockOf<DimTag> const& whole)
    {
        using Context = RecursiveImageContext<typename Filter::InputVoxel, typename Filter::OutputVoxel,
                                              typename Filter::ArchTag, Direction>;
        Context context(source, destination, pass, filter);
        RecursiveTask<BlockOf<DimTag>, typename Filter::BodyType, Context> task(filter.getBody(), context);
        if (!access::runBlocks(filter, task, whole))
            return false;
        // A pass between two images has nothing that waits.
        filter.writeTemporizedOutputs();
        return true;
    }
};

/// Applies a body to an image a given number of times; the output of one pass is the input of the next.
///
/// The body has `run(Block2d or Block3d const&, RecursiveImageContext<In, Out, Arch, Direction>&)` for both directions.
/// It reads the context's source and writes its destination; where both are one image it holds back the margins that it
/// gets from `getOverlap`. No pass begins before the one before has ended. Where memory allows, passes go back and
/// forth between the output and a temporary image, and nothing has to wait; the result is the same.
template <class In, class Out, class Arch, class Body, class DimTag>
class RecursiveImageFilter : public BaseTbbAlgorithm
{
public:
    static_assert(std::is_same_v<In, Out>, "the output of a pass is the input of the next");
    using InputVoxel = In;
    using OutputVoxel = Out;
    using ArchTag = Arch;
    using BodyType = Body;
    using InputView = ViewOf<In, Arch>;
    using OutputView = ViewOf<Out, Arch>;

    RecursiveImageFilter(BaseAlgorithm* owningAlgorithm, Body* body)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_body(body)
    {}

    void setInput(ImageModel const* image, ConditionOf<In> condition) { m_input = InputView::New(image, condition); }
    void setOutput(ImageModel* image, ConditionOf<Out> condition)
    {
        m_outputCondition = condition;
        m_output = OutputView::New(image, condition);
    }
    void setNumOfIterations(unsigned long iterations) { m_iterations = iterations; }

    Body& getBody() const { return *m_body; }
    boost::shared_ptr<InputView> const& getInputView() const { return m_input; }
    boost::shared_ptr<OutputView> const& getOutputView() const { return m_output; }
    unsigned long getNumOfIterations() const { return m_iterations; }
    ConditionOf<Out> const& getOutputCondition() const { return m_outputCondition; }

    void writeTemporizedOutputs() override { m_output->writeAllTemporizedRows(); }

private:
    Body* m_body;
    boost::shared_ptr<InputView> m_input;
    boost::shared_ptr<OutputView> m_output;
    unsigned long m_iterations = 0;
    ConditionOf<Out> m_outputCondition;
};

template <class In, class Out, class Arch, class Body>
class RecursiveImageFilter2d : public RecursiveImageFilter<In, Out, Arch, Body, Filter2dTag>
{
    using RecursiveImageFilter<In, Out, Arch, Body, Filter2dTag>::RecursiveImageFilter;
};
template <class In, class Out, class Arch, class Body>
class RecursiveImageFilter3d : public RecursiveImageFilter<In, Out, Arch, Body, Filter3dTag>
{
    using RecursiveImageFilter<In, Out, Arch, Body, Filter3dTag>::RecursiveImageFilter;
};

} // namespace qel
