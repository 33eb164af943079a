#include "Segmentation/private/Texture/TexturePlan.h"

#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "Core/private/Throw.h"

#include <qel/devices/Cpu.h>

#include <tbb/task_arena.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel::segmentation::details {

namespace {

std::vector<kernel::Offset3D> windowOf(unsigned int radius, bool isVolume)
{
    std::vector<kernel::Offset3D> window;
    if (isVolume) {
        kernel::buildMatrixSphere(radius, window);
        return window;
    }
    std::vector<kernel::Offset2D> disk;
    kernel::buildMatrixCircle(radius, disk);
    for (kernel::Offset2D const& offset : disk)
        window.push_back({offset.x, offset.y, 0});
    return window;
}

double blocksAtOnce() { return std::max(tbb::this_task_arena::max_concurrency(), 1); }

/// Memory that is not known does not stop anything.
bool fitsMemory(double bytes)
{
    unsigned long const available = devices::Cpu::getDevice().getAvailableMemory();
    return available == 0 || bytes < static_cast<double>(available);
}

/// A measure is wanted, or a summary of it is.
CoocIndicatorSet indicatorsOf(TextureChannels const& channels)
{
    CoocIndicatorSet indicators;
    for (int measure = 0; measure < numOfBaseMeasures; ++measure)
        indicators[static_cast<std::size_t>(angularSecondMoment + measure)] = channels.has(4 * measure);
    return indicators;
}

} // namespace

TextureWindow::TextureWindow(std::vector<kernel::Offset3D> const& window)
{
    access::SlidingOffsets<kernel::Offset3D> const sliding(window);
    all = sliding.all();
    entering = sliding.entering();
    leaving = sliding.leaving();
}

TexturePlan::TexturePlan(TextureParameters const& parameters, TextureChannels const& channels)
    : m_parameters(parameters)
    , m_channels(channels)
    , m_hasHistogram(std::any_of(channels.channelOf.begin() + HISTO_FirstMeasure, channels.channelOf.end(),
                                 [](long channel) { return channel != TextureChannels::none; }))
    , m_indicators(indicatorsOf(channels))
{
    if (m_indicators.any())
        parameters.requireDirections();
    requireMemoryForWindows();
    std::vector<kernel::Offset3D> const window = windowOf(parameters.radius, parameters.isVolume);
    if (m_hasHistogram) {
        requireMemoryForHistograms();
        m_histogramWindow = TextureWindow(window);
    }
    if (m_indicators.none())
        return;

    std::size_t mostPairs = 0;
    for (kernel::Offset3D const& direction : parameters.directions) {
        std::vector<kernel::Offset3D> pairs = window;
        kernel::buildMaskedOffset3DTrans(pairs, direction.x, direction.y, direction.z);
        if (pairs.empty()) {
            ClassicStream text;
            text << "The <" << direction.x << "; " << direction.y;
            if (parameters.isVolume)
                text << "; " << direction.z;
            QEL_THROW(InvalidCall, text.text() << "> direction is imcompatible with the radius.");
        }
        mostPairs = std::max(mostPairs, pairs.size());
        m_pairWindows.emplace_back(pairs);
    }
    m_bins = GreyLevelBins(parameters.cooccurrence.min, parameters.cooccurrence.max, parameters.cooccurrence.binSize);
    requireMemoryForMatrices();
    m_entropies = std::make_shared<CountEntropies>(2 * mostPairs);
}

void TexturePlan::requireMemoryForWindows() const
{
    // Each list of offsets is made, copied and sorted; a block holds them as steps in its rows, and those rows.
    double const side = 2.0 * m_parameters.radius + 1;
    double const voxels = m_parameters.isVolume ? side * side * side : side * side;
    double const lists = 6 + static_cast<double>(m_parameters.directions.size()) * (1 + blocksAtOnce());
    if (!fitsMemory(voxels * (lists * sizeof(kernel::Offset3D) + blocksAtOnce() * sizeof(std::uint32_t))))
        QEL_THROW(MemoryError, "The available memory does not hold a window of radius " << m_parameters.radius << ".");
}

void TexturePlan::requireMemoryForHistograms() const
{
    GreyLevelRange const& range = m_parameters.histogram;
    double const bins = std::abs(range.max - range.min) / range.binSize;
    // Without a bin size, or with more bins than any memory has, a histogram says so itself.
    if (!(range.binSize > 0 && bins < 9223372036854775808.0))
        return;
    // A walk keeps the bin of each voxel in 32 bits.
    if (bins > std::numeric_limits<std::uint32_t>::max() - 2.0 ||
        !fitsMemory(bins * blocksAtOnce() * sizeof(std::uint64_t)))
        QEL_THROW(MemoryError, "The available memory does not hold histograms of " << bins << " bins.");
}

void TexturePlan::requireMemoryForMatrices() const
{
    if (!fitsMemory(static_cast<double>(m_pairWindows.size()) * blocksAtOnce() *
                    CooccurrenceMatrix::bytesFor(m_bins, m_indicators)))
        QEL_THROW(MemoryError,
                  "The available memory does not hold cooccurrence matrices of " << m_bins.size() << " bins.");
}

} // namespace qel::segmentation::details
