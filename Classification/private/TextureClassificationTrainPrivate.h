#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Segmentation/private/Texture/TexturePlan.h"

#include <memory>

#include "Classification/private/AbstractSupervisedClassifier.h"

namespace qel {
class ImageModel;
}

namespace qel::classification {

class TextureClassificationTrain;

/// The running side of a training: the extrema of the image, where a range is left open, and then the samples, which a
/// copy of the model's classifier learns. It takes the place of the model's when all has gone well.
class TextureClassificationTrainPrivate final : public algorithms::AbstractPrivateImplementation
{
public:
    explicit TextureClassificationTrainPrivate(TextureClassificationTrain& train);
    void run();

    ImageModel const* input() const { return m_input; }
    ImageModel const* mask() const { return m_mask; }
    segmentation::details::TexturePlan const& plan() const { return *m_plan; }
    AbstractSupervisedClassifier& classifier() const { return *m_classifier; }

private:
    void learn();

    TextureClassificationTrain& m_train;
    ImageModel const* m_input;
    ImageModel const* m_mask;
    std::unique_ptr<AbstractSupervisedClassifier> m_classifier;
    std::unique_ptr<segmentation::details::TexturePlan const> m_plan;
};

/// Body and frame for one voxel type.
struct TextureClassificationTrain2DDispatcher
{
    template <class T> static void run(TextureClassificationTrainPrivate* training);
};
struct TextureClassificationTrain3DDispatcher
{
    template <class T> static void run(TextureClassificationTrainPrivate* training);
};

} // namespace qel::classification
