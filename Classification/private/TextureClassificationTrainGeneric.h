#pragma once

#include "Classification/private/TextureClassificationTrainPrivate.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Core/private/Throw.h"
#include "Segmentation/private/Texture/TextureWalk.h"

#include <qel/Exception.h>
#include <qel/ImageModelAdapter.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <vector>

namespace qel::classification {

/// Measures the labelled voxels of its blocks, and hands them to a classifier. The first body has that of the run; each
/// split makes a partner of it, with its first sample. Blocks are joined in an order that no schedule changes.
class TextureTrainingBody
{
public:
    TextureTrainingBody(segmentation::details::TexturePlan const& plan, AbstractSupervisedClassifier& classifier)
        : m_plan(plan)
        , m_first(classifier)
        , m_classifier(&classifier)
    {}
    TextureTrainingBody(TextureTrainingBody& other, tbb::split)
        : m_plan(other.m_plan)
        , m_first(other.m_first)
    {}

    template <class B, class Filter> void run(B const& block, Filter& filter)
    {
        auto const input = filter.template getInputView<0>();
        auto const mask = filter.template getInputView<1>();
        segmentation::details::TextureWalk walk(m_plan);
        Eigen::VectorXd features = Eigen::VectorXd::Zero(static_cast<long>(m_plan.channels().numOfOutputs));
        std::vector<long> labels(block.getNbCols());
        bool isMeasured = false;
        for (unsigned long plan = 0; plan < block.getNbPlans(); ++plan)
            for (unsigned long row = 0; row < block.getNbRows(); ++row) {
                if (filter.isCancelled())
                    return;
                mask->read(labels.data(), labels.size(), static_cast<long>(block.colsBegin()),
                           static_cast<long>(block.rowsBegin() + row), static_cast<long>(block.plansBegin() + plan),
                           static_cast<long>(block.timeSeriesBegin()), 0);
                if (std::all_of(labels.begin(), labels.end(), [](long label) { return label == 0; }))
                    continue;
                if (!isMeasured)
                    walk.init(*input, block);
                isMeasured = true;
                walk.toRow(static_cast<long>(row), static_cast<long>(plan));
                for (std::size_t column = 0; column < labels.size(); ++column)
                    if (labels[column] != 0) {
                        unsigned long const classIndex = classOf(labels[column]);
                        walk.measure(static_cast<long>(column), features.data());
                        classifier().train(features, classIndex);
                    }
            }
    }

    void join(TextureTrainingBody& right)
    {
        if (right.m_classifier)
            classifier().join(right.m_classifier);
    }
    void finalize() { classifier().finalize(); }

private:
    AbstractSupervisedClassifier& classifier()
    {
        if (!m_classifier) {
            m_partner.reset(m_first.New(true));
            m_classifier = m_partner.get();
        }
        return *m_classifier;
    }

    unsigned long classOf(long label) const
    {
        if (label < 0 || label > m_first.getNumOfClasses())
            QEL_THROW(InvalidCall, "The number of labels in the learning images must be equal to the number of "
                                   "classes specified when creating the classification.");
        return static_cast<unsigned long>(label - 1);
    }

    segmentation::details::TexturePlan const& m_plan;
    AbstractSupervisedClassifier const& m_first; // its sums may be changing; its sizes are not
    std::unique_ptr<AbstractSupervisedClassifier> m_partner;
    AbstractSupervisedClassifier* m_classifier = nullptr; // none before the first sample of a split
};

template <class T, class DimTag> void runTextureTraining(TextureClassificationTrainPrivate& training)
{
    // Labels of any type, without loss but for the largest of 64 bits, which become negative: too large all the same.
    ImageModelAdapter const mask(const_cast<ImageModel*>(training.mask()), QEL_INT64);
    TextureTrainingBody body(training.plan(), training.classifier());
    ManyToManyImageFilter<boost::mpl::vector<T, long>, boost::mpl::vector<>, SimdVec::arch_scalar_tag,
                          TextureTrainingBody, DimTag, FilterWithReductionTag>
        filter(nullptr, &body);
    training.setCurrentChild(&filter);
    constexpr bool isVolume = std::is_same_v<DimTag, Filter3dTag>;
    filter.setPartitionerInformation(isVolume ? boost::make_shared<PartitionerInfoFixed>(128, 16, 16)
                                              : boost::make_shared<PartitionerInfoFixed>(256, 32, 1));
    filter.template setInput<0>(training.input(), access::MirrorBorderCondition<T>::New());
    filter.template setInput<1>(mask.getImage(), access::MirrorBorderCondition<long>::New());
    filter.run();
}

} // namespace qel::classification
