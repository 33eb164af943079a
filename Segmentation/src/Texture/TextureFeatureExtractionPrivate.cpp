#include "Segmentation/private/Texture/TextureFeatureExtractionPrivate.h"

#include "Core/private/BaseTbbAlgorithm.h"
#include "Core/private/Helper/underlyingImage.h"
#include "Core/private/Rules/ImageShape.h"
#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"

#include <qel/BaseAlgorithm.h>
#include <qel/ImageModel.h>
#include <qel/Ref.h>
#include <qel/memory/InMemoryImage.h>
#include <qel/point_operations/CopyImage.h>

#include <algorithm>

namespace qel::segmentation::details {

TextureFeatureExtractionPrivate::TextureFeatureExtractionPrivate(BaseAlgorithm& itsOwner,
                                                                 TextureParameters const& parameters,
                                                                 ImageModel const* input,
                                                                 Property<ImageModel*> const& output)
    : AbstractPrivateImplementation(&itsOwner)
    , m_parameters(parameters)
    , m_input(input)
    , m_output(output.get())
    , m_nameOfOutput(output.getName())
    , m_isInPlace(helper::underlyingImage(input) == helper::underlyingImage(output.get()))
    , m_isComposite(m_isInPlace || needsExtrema(parameters))
{}

void TextureFeatureExtractionPrivate::run()
{
    if (!m_isComposite)
        return runSteps();
    Publication const publication(*this);
    setNumOfSteps(1 + (needsExtrema(m_parameters) ? 1 : 0) + (m_isInPlace ? 1 : 0));
    runSteps();
    if (!isCancelled())
        nextStep();
}

void TextureFeatureExtractionPrivate::runSteps()
{
    TextureChannels const channels = channelsOf(m_parameters.features, m_parameters.directions.size());
    m_parameters.requireDirections();

    rules::Sizes const sizes = rules::sizesOf(*m_input);
    bool const isEmpty = std::find(sizes.begin(), sizes.end(), 0ul) != sizes.end();
    bool const isMeasured = needsExtrema(m_parameters);
    if (!settleRanges(m_parameters, *m_input, this))
        return;
    if (isMeasured)
        nextStep();

    // The output takes other sizes and is written while its neighbours are read.
    memory::InMemoryImage copyOfInput;
    if (m_isInPlace && !isEmpty) {
        Ref<point_operations::CopyImage> const copy(point_operations::CopyImage::New(this));
        copyOfInput.reserve(m_input->getVoxelType(), sizes[COLUMNS], sizes[ROWS], sizes[PLANS], sizes[TIME_SERIES],
                            sizes[SPECTRAL_SERIES]);
        copy->input = m_input;
        copy->output = &copyOfInput;
        copy->run();
        if (isCancelled())
            return;
        m_input = &copyOfInput;
    }
    if (m_isInPlace)
        nextStep();

    rules::Sizes const wanted{sizes[COLUMNS], sizes[ROWS], sizes[PLANS],
                              sizes[TIME_SERIES] * channels.numOfOutputs * sizes[SPECTRAL_SERIES], 1};
    resizeOutput(wanted);
    if (isEmpty)
        return;

    TexturePlan const plan(m_parameters, channels);
    std::pair<TextureFeatureExtractionPrivate*, TexturePlan const*> const extraction(this, &plan);
    VoxelTypes const type = m_input->getVoxelType();
    if (m_parameters.isVolume)
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureFeatureExtraction3DDispatcher, decltype(extraction)>()(
            type, extraction);
    else
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, TextureFeatureExtraction2DDispatcher, decltype(extraction)>()(
            type, extraction);
}

void TextureFeatureExtractionPrivate::resizeOutput(rules::Sizes const& sizes) const
{
    if (rules::sizesOf(*m_output) == sizes || rules::reserve(*m_output, m_output->getVoxelType(), sizes))
        return;
    if (m_parameters.isVolume)
        QEL_THROW(RuleException, "Output image cannot be resized");
    QEL_THROW(RuleException, "The parameter \"" << m_nameOfOutput << "\" cannot be resized.");
}

void TextureFeatureExtractionPrivate::follow(BaseTbbAlgorithm& frame)
{
    if (m_isComposite)
        setCurrentChild(&frame);
}

} // namespace qel::segmentation::details
