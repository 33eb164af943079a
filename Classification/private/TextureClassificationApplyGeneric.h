#pragma once

#include "Classification/private/TextureClassificationApplyPrivate.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/ImageToImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Segmentation/private/Texture/TextureWalk.h"

#include <qel/classification/TextureClassificationApply.h>

#include <boost/make_shared.hpp>

#include <vector>

namespace qel::classification {

/// Measures each voxel of a block and asks for its class.
class TextureApplicationBody
{
public:
    explicit TextureApplicationBody(TextureClassificationApplyPrivate const& application)
        : m_application(application)
    {}

    template <class B, class Filter> void run(B const& block, Filter& filter) const
    {
        auto const& textures = m_application.plan();
        unsigned long const reach = textures.radius();
        access::OverlapBorder const overlap =
            overlapBetween(*filter.getInputView(), *filter.getOutputView(),
                           AlgoBorderInfluence(reach, reach, textures.isVolume() ? reach : 0, 0, 0));
        auto const cache = filter.getOutputView()->createRowCacheReadWrite(1);
        segmentation::details::TextureWalk walk(textures);
        walk.init(*filter.getInputView(), block);
        std::vector<double> channels(textures.channels().numOfOutputs);
        Eigen::VectorXd features(static_cast<long>(m_application.selection().size()));
        for (long plan = 0; plan < static_cast<long>(block.getNbPlans()); ++plan)
            for (long row = 0; row < static_cast<long>(block.getNbRows()); ++row) {
                if (filter.isCancelled())
                    return;
                walk.toRow(row, plan);
                auto& out = cache->getRowInBlock(0, block.getNbCols(), block, 0, row, plan, 0, 0);
                for (unsigned long column = 0; column < block.getNbCols(); ++column) {
                    walk.measure(static_cast<long>(column), channels.data());
                    double* feature = features.data();
                    for (unsigned long const channel : m_application.selection())
                        *feature++ = channels[channel];
                    long const label = m_application.classifier().classify(features) + 1;
                    out.data()[column] = static_cast<unsigned short>(label);
                }
                out.writeRow(block, overlap);
            }
    }

private:
    TextureClassificationApplyPrivate const& m_application;
};

template <class T, class DimTag> void runTextureApplication(TextureClassificationApplyPrivate& application)
{
    TextureClassificationApply& algorithm = application.algorithm();
    TextureApplicationBody body(application);
    ImageToImageFilter<T, unsigned short, SimdVec::arch_scalar_tag, TextureApplicationBody, DimTag,
                       FilterWithoutReductionTag>
        filter(&algorithm, &body);
    constexpr bool isVolume = std::is_same_v<DimTag, Filter3dTag>;
    filter.setPartitionerInformation(isVolume ? boost::make_shared<PartitionerInfoFixed>(128, 16, 16)
                                              : boost::make_shared<PartitionerInfoFixed>(256, 32, 1));
    filter.setInput(algorithm.input, access::MirrorBorderCondition<T>::New());
    filter.setOutput(algorithm.classifiedImage, access::FixedBorderCondition<unsigned short>::New(0));
    filter.run();
}

} // namespace qel::classification
