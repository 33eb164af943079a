#pragma once

#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/ManyToManyImageFilter.h"
#include "Core/private/PartitionerInfoFixed.h"
#include "Segmentation/private/Texture/TextureFeatureExtractionPrivate.h"
#include "Segmentation/private/Texture/TextureWalk.h"

#include <qel/ImageModelAdapter.h>

#include <boost/make_shared.hpp>

namespace qel::segmentation::details {

/// The channels of the rows of a block, on their way to the output. They are double, whatever the output is.
class ChannelRows
{
public:
    using View = access::View<double>;

    ChannelRows(boost::shared_ptr<View> view, unsigned long numOfChannels, unsigned long numOfSpectralSeries,
                access::Block const& block);

    /// What is written here becomes the voxel of `column`.
    double* voxel() { return m_voxel.data(); }
    void store(unsigned long column)
    {
        for (std::size_t channel = 0; channel < m_voxel.size(); ++channel)
            m_rows[channel * m_stride + column] = m_voxel[channel];
    }
    void writeRow(unsigned long row, unsigned long plan);

private:
    boost::shared_ptr<View> m_view;
    View::Row m_row;
    access::RowPosition m_begin; // of channel 0
    unsigned long m_length;
    unsigned long m_stride;
    std::vector<double> m_voxel;
    std::vector<double> m_rows;
};

class TextureFeatureExtractionBody
{
public:
    explicit TextureFeatureExtractionBody(TexturePlan const& plan)
        : m_plan(plan)
    {}

    template <class B, class Filter> void run(B const& block, Filter& filter) const
    {
        auto const input = filter.template getInputView<0>();
        TextureWalk walk(m_plan);
        walk.init(*input, block);
        ChannelRows rows(filter.template getOutputView<0>(), m_plan.channels().numOfOutputs,
                         input->numOfSpectralSeries(), block);
        for (unsigned long plan = 0; plan < block.getNbPlans(); ++plan) {
            for (unsigned long row = 0; row < block.getNbRows(); ++row) {
                walk.toRow(static_cast<long>(row), static_cast<long>(plan));
                for (unsigned long column = 0; column < block.getNbCols(); ++column) {
                    walk.measure(static_cast<long>(column), rows.voxel());
                    rows.store(column);
                }
                rows.writeRow(row, plan);
            }
        }
    }

private:
    TexturePlan const& m_plan;
};

template <class T, class DimTag>
void runTextureFeatureExtraction(TextureFeatureExtractionPrivate& extraction, TexturePlan const& plan)
{
    constexpr bool isVolume = std::is_same_v<DimTag, Filter3dTag>;
    ImageModelAdapter const output(extraction.output(), QEL_FLOAT64);
    TextureFeatureExtractionBody body(plan);
    ManyToManyImageFilter<boost::mpl::vector<T>, boost::mpl::vector<double>, SimdVec::arch_scalar_tag,
                          TextureFeatureExtractionBody, DimTag, FilterWithoutReductionTag>
        filter(extraction.frameOwner(), &body);
    extraction.follow(filter);
    // A block holds bins of all voxels that its windows see, and a row of each channel.
    filter.setPartitionerInformation(isVolume ? boost::make_shared<PartitionerInfoFixed>(128, 16, 16)
                                              : boost::make_shared<PartitionerInfoFixed>(256, 32, 1));
    filter.setBlocksAreFixed(true);
    filter.template setInput<0>(extraction.input(), access::MirrorBorderCondition<T>::New());
    filter.template setOutput<0>(output.getImage(), access::FixedBorderCondition<double>::New(0.0));
    filter.run();
}

} // namespace qel::segmentation::details
