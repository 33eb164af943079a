#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Rules/ImageShape.h"
#include "Segmentation/private/Texture/TexturePlan.h"

#include <qel/Property.h>
#include <qel/String.h>

#include <utility>

namespace qel {
class BaseAlgorithm;
class BaseTbbAlgorithm;
class ImageModel;
} // namespace qel

namespace qel::segmentation::details {

template <class Extraction> TextureParameters textureParametersOf(Extraction const& extraction, bool isVolume)
{
    TextureParameters parameters;
    parameters.features = featuresOf(extraction.textureFeaturesGroup);
    parameters.directions = directionsOf(extraction.directionCollection);
    parameters.radius = extraction.radius;
    parameters.isVolume = isVolume;
    parameters.cooccurrence = {extraction.minGreyLevelCooccurrence, extraction.maxGreyLevelCooccurrence,
                               extraction.binSizeCooccurrence};
    parameters.histogram = {extraction.minGreyLevelHistogram, extraction.maxGreyLevelHistogram,
                            extraction.binSizeHistogram};
    parameters.quantileRatios = quantileRatiosOf(extraction.userQuantileRatioHistogram);
    return parameters;
}

/// The running side of both extractions: the extrema of the image, where a range is left open, a copy of an image that
/// is its own output, and then the measures.
class TextureFeatureExtractionPrivate final : public algorithms::AbstractPrivateImplementation
{
public:
    TextureFeatureExtractionPrivate(BaseAlgorithm& itsOwner, TextureParameters const& parameters,
                                    ImageModel const* input, Property<ImageModel*> const& output);
    void run();

    ImageModel const* input() const { return m_input; }
    ImageModel* output() const { return m_output; }
    /// The frame's owner: the algorithm where the measures are all that there is to do, and none where they are a step.
    BaseAlgorithm* frameOwner() const { return m_isComposite ? nullptr : owner; }
    /// Makes a frame the current step.
    void follow(BaseTbbAlgorithm& frame);

private:
    void runSteps();
    void resizeOutput(rules::Sizes const& sizes) const;

    TextureParameters m_parameters;
    ImageModel const* m_input;
    ImageModel* m_output;
    String m_nameOfOutput;
    bool m_isInPlace;
    bool m_isComposite;
};

/// Body and frame for one voxel type.
struct TextureFeatureExtraction2DDispatcher
{
    template <class T> static void run(std::pair<TextureFeatureExtractionPrivate*, TexturePlan const*> extraction);
};
struct TextureFeatureExtraction3DDispatcher
{
    template <class T> static void run(std::pair<TextureFeatureExtractionPrivate*, TexturePlan const*> extraction);
};

} // namespace qel::segmentation::details
