#pragma once

#include "Segmentation/private/Texture/CooccurrenceMatrix.h"
#include "Segmentation/private/Texture/TextureParameters.h"

#include <memory>
#include <vector>

namespace qel::segmentation::details {

/// The voxels of a window around the origin, and how they change when it moves by one column.
struct TextureWindow
{
    TextureWindow() = default;
    explicit TextureWindow(std::vector<kernel::Offset3D> const& window);

    std::vector<kernel::Offset3D> all;
    std::vector<kernel::Offset3D> entering; ///< seen from the new centre, as `leaving`
    std::vector<kernel::Offset3D> leaving;
};

/// All that the blocks of one run share: windows, bins, and where the measures go. It is only read.
class TexturePlan
{
public:
    /// The ranges and bin sizes must be settled. Throws InvalidCall where the window has no pair of voxels in one of
    /// the directions; MemoryError where the windows or the matrices of the run do not fit the memory.
    TexturePlan(TextureParameters const& parameters, TextureChannels const& channels);

    TextureChannels const& channels() const { return m_channels; }
    unsigned int radius() const { return m_parameters.radius; }
    bool isVolume() const { return m_parameters.isVolume; }

    bool hasHistogram() const { return m_hasHistogram; }
    GreyLevelRange const& histogramRange() const { return m_parameters.histogram; }
    std::array<double, 6> const& quantileRatios() const { return m_parameters.quantileRatios; }
    TextureWindow const& histogramWindow() const { return m_histogramWindow; }

    /// None where no measure of co-occurrence is wanted.
    unsigned long numOfDirections() const { return m_pairWindows.size(); }
    kernel::Offset3D const& direction(unsigned long index) const { return m_parameters.directions[index]; }
    /// The first voxels of the pairs in a direction.
    TextureWindow const& pairWindow(unsigned long index) const { return m_pairWindows[index]; }
    GreyLevelBins const& bins() const { return m_bins; }
    CoocIndicatorSet const& indicators() const { return m_indicators; }
    std::shared_ptr<CountEntropies const> const& entropies() const { return m_entropies; }

private:
    void requireMemoryForWindows() const;
    void requireMemoryForHistograms() const;
    void requireMemoryForMatrices() const;

    TextureParameters m_parameters;
    TextureChannels m_channels;
    bool m_hasHistogram;
    TextureWindow m_histogramWindow;
    std::vector<TextureWindow> m_pairWindows;
    GreyLevelBins m_bins;
    CoocIndicatorSet m_indicators;
    std::shared_ptr<CountEntropies const> m_entropies;
};

} // namespace qel::segmentation::details
