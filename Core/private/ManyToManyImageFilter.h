#pragma once

#include "Core/private/Frames.h"

#include <boost/any.hpp>
#include <boost/mpl/at.hpp>
#include <boost/mpl/size.hpp>
#include <boost/mpl/vector.hpp>

#include <vector>

namespace qel {

/// Runs a body over the blocks of any number of images, of voxel types of their own. Either list may be empty.
///
/// Nothing is deferred here: a body passes an all-zero OverlapBorder to its output cursors, and so cannot work in place
/// when it reads neighbours.
template <class InList, class OutList, class Arch, class Body, class DimTag, class ReductionTag>
class ManyToManyImageFilter : public BaseTbbAlgorithm
{
public:
    using ArchTag = Arch;
    template <int I> using InputView = ViewOf<typename boost::mpl::at_c<InList, I>::type, Arch>;
    template <int I> using OutputView = ViewOf<typename boost::mpl::at_c<OutList, I>::type, Arch>;

    ManyToManyImageFilter(BaseAlgorithm* owningAlgorithm, Body* body)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_body(body)
        , m_inputs(boost::mpl::size<InList>::value)
        , m_outputs(boost::mpl::size<OutList>::value)
    {}

    /// The first input and the first output set the region, if none is set.
    template <int I>
    void setInput(ImageModel const* image, ConditionOf<typename boost::mpl::at_c<InList, I>::type> condition)
    {
        bind<I, InputView<I>>(m_inputs, InputView<I>::New(image, condition));
    }
    template <int I>
    void setOutput(ImageModel* image, ConditionOf<typename boost::mpl::at_c<OutList, I>::type> condition)
    {
        bind<I, OutputView<I>>(m_outputs, OutputView<I>::New(image, condition));
    }

    /// Throws boost::bad_any_cast where the image was not bound.
    template <int I> boost::shared_ptr<InputView<I>> getInputView() const
    {
        return boost::any_cast<boost::shared_ptr<InputView<I>>>(m_inputs[I]);
    }
    template <int I> boost::shared_ptr<OutputView<I>> getOutputView() const
    {
        return boost::any_cast<boost::shared_ptr<OutputView<I>>>(m_outputs[I]);
    }

    void run() { runBody(*m_body, *this, DimTag(), ReductionTag()); }
    void writeTemporizedOutputs() override {}

private:
    template <int I, class View> void bind(std::vector<boost::any>& views, boost::shared_ptr<View> view)
    {
        if (I == 0)
            setProcessingRegionIfNone(view->getLargestPossibleRegion());
        views[I] = view;
    }

    Body* m_body;
    std::vector<boost::any> m_inputs;
    std::vector<boost::any> m_outputs;
};

template <class InList, class OutList, class Arch, class Body>
class ManyToManyImageFilter2d
    : public ManyToManyImageFilter<InList, OutList, Arch, Body, Filter2dTag, FilterWithoutReductionTag>
{
    using ManyToManyImageFilter<InList, OutList, Arch, Body, Filter2dTag,
                                FilterWithoutReductionTag>::ManyToManyImageFilter;
};
template <class InList, class OutList, class Arch, class Body>
class ManyToManyImageFilter3d
    : public ManyToManyImageFilter<InList, OutList, Arch, Body, Filter3dTag, FilterWithoutReductionTag>
{
    using ManyToManyImageFilter<InList, OutList, Arch, Body, Filter3dTag,
                                FilterWithoutReductionTag>::ManyToManyImageFilter;
};
template <class InList, class OutList, class Arch, class Body>
class ManyToManyImageFilter2dWithReduction
    : public ManyToManyImageFilter<InList, OutList, Arch, Body, Filter2dTag, FilterWithReductionTag>
{
    using ManyToManyImageFilter<InList, OutList, Arch, Body, Filter2dTag,
                                FilterWithReductionTag>::ManyToManyImageFilter;
};
template <class InList, class OutList, class Arch, class Body>
class ManyToManyImageFilter3dWithReduction
    : public ManyToManyImageFilter<InList, OutList, Arch, Body, Filter3dTag, FilterWithReductionTag>
{
    using ManyToManyImageFilter<InList, OutList, Arch, Body, Filter3dTag,
                                FilterWithReductionTag>::ManyToManyImageFilter;
};

} // namespace qel
