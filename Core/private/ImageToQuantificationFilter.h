#pragma once

#include "Core/private/Frames.h"

namespace qel {

/// Runs a body that measures over the blocks of one image. It always reduces: one result for the whole image.
template <class T, class Arch, class Body, class DimTag> class ImageToQuantificationFilter : public BaseTbbAlgorithm
{
public:
    using InputView = ViewOf<T, Arch>;
    using ArchTag = Arch;

    ImageToQuantificationFilter(BaseAlgorithm* owningAlgorithm, Body* body)
        : BaseTbbAlgorithm(owningAlgorithm)
        , m_body(body)
    {}

    void setInput(ImageModel const* image, ConditionOf<T> condition)
    {
        m_input = InputView::New(image, condition);
        setProcessingRegionIfNone(m_input->getLargestPossibleRegion());
    }

    boost::shared_ptr<InputView> const& getInputView() const { return m_input; }

    void run() { runBody(*m_body, *this, DimTag(), FilterWithReductionTag()); }
    void writeTemporizedOutputs() override {}

private:
    Body* m_body;
    boost::shared_ptr<InputView> m_input;
};

template <class T, class Arch, class Body>
class ImageToQuantificationFilter3d : public ImageToQuantificationFilter<T, Arch, Body, Filter3dTag>
{
    using ImageToQuantificationFilter<T, Arch, Body, Filter3dTag>::ImageToQuantificationFilter;
};

} // namespace qel
