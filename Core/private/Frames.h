#pragma once

#include "Core/private/Access/BlockLoop.h"
#include "Core/private/Access/OverlapBorder.h"
#include "Core/private/Access/View.h"
#include "Core/private/BaseTbbAlgorithm.h"
#include "Core/private/SimdVec.h"

#include <qel/AlgoBorderInfluence.h>

#include <tbb/blocked_range.h> // tbb::split

#include <memory>
#include <type_traits>

namespace qel {

/// The blocks of a frame.
template <class DimTag>
using BlockOf = std::conditional_t<std::is_same_v<DimTag, Filter2dTag>, access::Block2d, access::Block3d>;

/// Connects a frame to its body: `body.run(block, filter)` on each block.
template <class B, class Body, class Filter> class TbbBody final : public access::BlockTask<B>
{
public:
    TbbBody(Body& body, Filter& filter)
        : m_body(body)
        , m_filter(filter)
    {}
    void runBlock(B const& block) override { m_body.run(block, m_filter); }

private:
    Body& m_body;
    Filter& m_filter;
};

/// The same for a body that accumulates: the root works in the body of the run, every split in one of its own.
template <class B, class Body, class Filter> class TbbBodyWithReduction final : public access::ReductionTask<B>
{
public:
    TbbBodyWithReduction(Body& root, Filter& filter)
        : m_body(&root)
        , m_filter(filter)
    {}
    TbbBodyWithReduction(TbbBodyWithReduction& other, tbb::split)
        : m_split(std::make_unique<Body>(*other.m_body, tbb::split()))
        , m_body(m_split.get())
        , m_filter(other.m_filter)
    {}

    void runBlock(B const& block) override { m_body->run(block, m_filter); }
    std::unique_ptr<access::ReductionTask<B>> split() override
    {
        return std::make_unique<TbbBodyWithReduction>(*this, tbb::split());
    }
    void join(access::ReductionTask<B>& right) override
    {
        m_body->join(*static_cast<TbbBodyWithReduction&>(right).m_body);
    }

private:
    std::unique_ptr<Body> m_split; // none in the root
    Body* m_body;
    Filter& m_filter;
};

template <class DimTag, class Body, class Filter>
void runBody(Body& body, Filter& filter, DimTag, FilterWithoutReductionTag)
{
    TbbBody<BlockOf<DimTag>, Body, Filter> task(body, filter);
    access::runSlices(filter, task);
}

template <class DimTag, class Body, class Filter>
void runBody(Body& body, Filter& filter, DimTag, FilterWithReductionTag)
{
    TbbBodyWithReduction<BlockOf<DimTag>, Body, Filter> task(body, filter);
    // The end of the last slice may be where the cancellation comes.
    if (access::runSlices(filter, task) && !filter.isCancelled())
        body.finalize();
}

/// How views and cursors are made for one voxel type and one kind of code.
template <class T, class Arch> using ViewOf = access::View<T, typename SimdVec::Traits<T, Arch>::Allocator>;
template <class T> using ConditionOf = boost::shared_ptr<access::BorderCondition<T>>;

/// What a body that reads `influence` around a voxel must hold back: nothing where input and output are two images.
template <class InView, class OutView>
access::OverlapBorder overlapBetween(InView const& in, OutView const& out, AlgoBorderInfluence const& influence)
{
    return access::areOnOneImage(in.getInterface(), out.getInterface()) ? access::OverlapBorder(influence)
                                                                        : access::OverlapBorder();
}

} // namespace qel
