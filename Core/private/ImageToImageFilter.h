#pragma once

#include "Core/private/Frames.h"

namespace qel {

/// Runs a body over the blocks of one input and one output image.
///
/// The body has `template <class Filter> void run(Block2d or Block3d const&, Filter&)`, and takes from the filter's
/// views what it needs. With a reduction it also has `Body(Body&, tbb::split)`, `join(Body&)` and `finalize()`. Bind
/// the input first: the first image that is bound sets the region.
template <class In, class Out, class Arch, class Body, class DimTag, class ReductionTag>
class ImageToImageFilter : public BaseTbbAlgorithm
{
public:
    using InputView = ViewOf<In, Arch>;
    using OutputView = ViewOf<Out, Arch>;
    using ArchTag = Arch;

    ImageToImageFilter(BaseAlgorithm* owningAlgorithm, Body* body)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_body(body)
    {}

    void setInput(ImageModel const* image, ConditionOf<In> condition)
    {
        m_input = InputView::New(image, condition);
        setProcessingRegionIfNone(m_input->getLargestPossibleRegion());
    }
    void setOutput(ImageModel* image, ConditionOf<Out> condition)
    {
        m_outputCondition = condition;
        m_output = OutputView::New(image, condition);
        setProcessingRegionIfNone(m_output->getLargestPossibleRegion());
    }

    boost::shared_ptr<InputView> const& getInputView() const { return m_input; }
    boost::shared_ptr<OutputView> const& getOutputView() const { return m_output; }
    ConditionOf<Out> const& getOutputCondition() const { return m_outputCondition; }

    void run() { runBody(*m_body, *this, DimTag(), ReductionTag()); }
    void writeTemporizedOutputs() override { m_output->writeAllTemporizedRows(); }

private:
    Body* m_body;
    boost::shared_ptr<InputView> m_input;
    boost::shared_ptr<OutputView> m_output;
    ConditionOf<Out> m_outputCondition;
};

template <class In, class Out, class Arch, class Body>
class ImageToImageFilter2d : public ImageToImageFilter<In, Out, Arch, Body, Filter2dTag, FilterWithoutReductionTag>
{
    using ImageToImageFilter<In, Out, Arch, Body, Filter2dTag, FilterWithoutReductionTag>::ImageToImageFilter;
};
template <class In, class Out, class Arch, class Body>
class ImageToImageFilter3d : public ImageToImageFilter<In, Out, Arch, Body, Filter3dTag, FilterWithoutReductionTag>
{
    using ImageToImageFilter<In, Out, Arch, Body, Filter3dTag, FilterWithoutReductionTag>::ImageToImageFilter;
};
template <class In, class Out, class Arch, class Body>
class ImageToImageFilter2dWithReduction
    : public ImageToImageFilter<In, Out, Arch, Body, Filter2dTag, FilterWithReductionTag>
{
    using ImageToImageFilter<In, Out, Arch, Body, Filter2dTag, FilterWithReductionTag>::ImageToImageFilter;
};
template <class In, class Out, class Arch, class Body>
class ImageToImageFilter3dWithReduction
    : public ImageToImageFilter<In, Out, Arch, Body, Filter3dTag, FilterWithReductionTag>
{
    using ImageToImageFilter<In, Out, Arch, Body, Filter3dTag, FilterWithReductionTag>::ImageToImageFilter;
};

} // namespace qel
