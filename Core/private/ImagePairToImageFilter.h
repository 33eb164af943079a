#pragma once

#include "Core/private/Frames.h"

namespace qel {

/// Runs a body over the blocks of two input images and one output image. The region is that of the first input.
template <class In1, class In2, class Out, class Arch, class Body, class DimTag>
class ImagePairToImageFilter : public BaseTbbAlgorithm
{
public:
    using FirstView = ViewOf<In1, Arch>;
    using SecondView = ViewOf<In2, Arch>;
    using OutputView = ViewOf<Out, Arch>;
    using ArchTag = Arch;

    ImagePairToImageFilter(BaseAlgorithm* owningAlgorithm, Body* body)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_body(body)
    {}

    void setFirstInput(ImageModel const* image, ConditionOf<In1> condition)
    {
        m_first = FirstView::New(image, condition);
        setProcessingRegionIfNone(m_first->getLargestPossibleRegion());
    }
    void setSecondInput(ImageModel const* image, ConditionOf<In2> condition)
    {
        m_second = SecondView::New(image, condition);
        setProcessingRegionIfNone(m_second->getLargestPossibleRegion());
    }
    void setOutput(ImageModel* image, ConditionOf<Out> condition)
    {
        m_output = OutputView::New(image, condition);
        setProcessingRegionIfNone(m_output->getLargestPossibleRegion());
    }

    boost::shared_ptr<FirstView> const& getFirstView() const { return m_first; }
    boost::shared_ptr<SecondView> const& getSecondView() const { return m_second; }
    boost::shared_ptr<OutputView> const& getOutputView() const { return m_output; }

    void run() { runBody(*m_body, *this, DimTag(), FilterWithoutReductionTag()); }
    void writeTemporizedOutputs() override { m_output->writeAllTemporizedRows(); }

private:
    Body* m_body;
    boost::shared_ptr<FirstView> m_first;
    boost::shared_ptr<SecondView> m_second;
    boost::shared_ptr<OutputView> m_output;
};

template <class In1, class In2, class Out, class Arch, class Body>
class ImagePairToImageFilter2d : public ImagePairToImageFilter<In1, In2, Out, Arch, Body, Filter2dTag>
{
    using ImagePairToImageFilter<In1, In2, Out, Arch, Body, Filter2dTag>::ImagePairToImageFilter;
};
template <class In1, class In2, class Out, class Arch, class Body>
class ImagePairToImageFilter3d : public ImagePairToImageFilter<In1, In2, Out, Arch, Body, Filter3dTag>
{
    using ImagePairToImageFilter<In1, In2, Out, Arch, Body, Filter3dTag>::ImagePairToImageFilter;
};

} // namespace qel
