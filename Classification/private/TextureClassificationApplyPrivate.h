#pragma once

#include "Segmentation/private/Texture/TexturePlan.h"

#include <memory>
#include <vector>

#include "Classification/private/AbstractSupervisedClassifier.h"

namespace qel::classification {

class TextureClassificationApply;

/// What an application needs: the measures of the features that the training has chosen, and a classifier.
class TextureClassificationApplyPrivate
{
public:
    /// Throws RuntimeError and InvalidCall on a model that cannot be applied.
    explicit TextureClassificationApplyPrivate(TextureClassificationApply& apply);
    void run();

    TextureClassificationApply& algorithm() const { return m_apply; }
    segmentation::details::TexturePlan const& plan() const { return *m_plan; }
    /// In which channels the chosen features are, in the order of the learning space.
    std::vector<unsigned long> const& selection() const { return m_selection; }
    AbstractSupervisedClassifier const& classifier() const { return *m_classifier; }

private:
    TextureClassificationApply& m_apply;
    // A copy with the rejection of this run: others may apply the same model at the same time.
    std::unique_ptr<AbstractSupervisedClassifier> m_classifier;
    std::vector<unsigned long> m_selection;
    std::unique_ptr<segmentation::details::TexturePlan const> m_plan;
};

/// Body and frame for one voxel type.
struct TextureClassificationApply2DDispatcher
{
    template <class T> static void run(TextureClassificationApplyPrivate* application);
};
struct TextureClassificationApply3DDispatcher
{
    template <class T> static void run(TextureClassificationApplyPrivate* application);
};

} // namespace qel::classification
