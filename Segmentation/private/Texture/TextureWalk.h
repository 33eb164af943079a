#pragma once

#include "Core/private/Access/View.h"
#include "Math/private/Histogram.h"
#include "Segmentation/private/Texture/TexturePlan.h"

#include <qel/access/Block.h>

#include <cstddef>
#include <vector>

namespace qel::segmentation::details {

/// Measures the texture around the voxels of a block, in rows, from left to right.
///
/// The windows slide along a row, so that a step costs the pairs that enter and leave. The voxels of the block and all
/// around it become bins once, before any window sees them. Counts are whole numbers: a window that slid has the very
/// measures of one that was filled, so voxels that are not asked for may be jumped over, and the cut of blocks does not
/// matter. Nothing is allocated once a block has begun.
class TextureWalk
{
public:
    /// The plan must outlive the walk.
    explicit TextureWalk(TexturePlan const& plan);

    /// Takes the voxels of a block. Throws InvalidCall where histograms are wanted, and have no bins.
    template <class T> void init(access::View<T> const& view, access::Block const& block);

    /// To a row, counted from the begin of the block.
    void toRow(long row, long plan = 0);
    /// The measures at a column, counted as well, to the output channels: those that no measure has are left alone.
    /// Within a row columns must ascend. Throws std::runtime_error where co-occurrence is wanted and has no bins,
    /// InvalidCall where no voxel of the window is in the range of the histogram.
    void measure(long column, double* outputs);

private:
    using Bin = GreyLevelBins::Bin;

    /// A TextureWindow as steps in the rows of the block.
    struct Steps
    {
        std::vector<std::ptrdiff_t> all;
        std::vector<std::ptrdiff_t> entering;
        std::vector<std::ptrdiff_t> leaving;
    };
    struct Pairs
    {
        CooccurrenceMatrix matrix;
        Steps steps;
        std::ptrdiff_t direction = 0;
    };
    /// What is computed of one base measure.
    struct BaseMeasure
    {
        int indicator;
        long forEachDirection;
        long mean;
        long deviation;
        long range;
    };
    struct HistogramMeasure
    {
        int feature;
        long channel;
    };

    void layOut(access::Block const& block);
    Steps stepsOf(TextureWindow const& window) const;
    std::ptrdiff_t stepOf(kernel::Offset3D const& offset) const;
    void standAt(std::ptrdiff_t centre);
    void fill(std::ptrdiff_t centre);
    void empty(std::ptrdiff_t centre);
    void slide(std::ptrdiff_t centre);
    void gather(Pairs const& pairs, std::vector<std::ptrdiff_t> const& steps, std::ptrdiff_t centre);
    void measurePairs(double* outputs);
    double histogramMeasure(int feature);

    TexturePlan const& m_plan;
    std::vector<BaseMeasure> m_baseMeasures;
    std::vector<HistogramMeasure> m_histogramMeasures;
    std::vector<Pairs> m_pairs;
    std::vector<double> m_values; // of one measure, for each direction
    math::Histogram m_histogram;
    Steps m_histogramSteps;
    std::ptrdiff_t m_farthest = 0; // from where on it costs less to fill windows than to slide them

    // The block and its surroundings: bins of both kinds, as far as they are needed.
    long m_reachOfPlans;
    std::ptrdiff_t m_rowLength = 0;
    std::ptrdiff_t m_planLength = 0;
    long m_numOfRows = 0;
    long m_numOfPlans = 0;
    std::vector<Bin> m_bins;
    std::vector<std::uint32_t> m_classes;

    std::vector<Bin> m_first;
    std::vector<Bin> m_second;
    std::ptrdiff_t m_rowBegin = 0;
    bool m_isInRow = false;
    bool m_isFilled = false;
    std::ptrdiff_t m_centre = 0; // of the windows, where they are filled
};

} // namespace qel::segmentation::details
