#include "Segmentation/private/Texture/TextureWalk.h"

#include "Core/private/Throw.h"

#include <algorithm>
#include <cmath>

namespace qel::segmentation::details {

namespace {

template <class T, class Bin>
void binRow(T const* __restrict voxels, Bin* __restrict bins, std::size_t count, GreyLevelBins const& binsOfRange)
{
    GreyLevelBins const local = binsOfRange;
    for (std::size_t x = 0; x < count; ++x)
        bins[x] = local.binOf(static_cast<double>(voxels[x]));
}

template <class T>
void classifyRow(T const* __restrict voxels, std::uint32_t* __restrict classes, std::size_t count,
                 math::Histogram const& histogram)
{
    for (std::size_t x = 0; x < count; ++x)
        classes[x] = static_cast<std::uint32_t>(histogram.binOf(static_cast<double>(voxels[x])));
}

} // namespace

TextureWalk::TextureWalk(TexturePlan const& plan)
    : m_plan(plan)
    , m_pairs(plan.numOfDirections())
    , m_values(plan.numOfDirections())
    , m_reachOfPlans(plan.isVolume() ? static_cast<long>(plan.radius()) : 0)
{
    TextureChannels const& channels = plan.channels();
    auto const channelOf = [&](int feature) { return channels.channelOf[static_cast<std::size_t>(feature)]; };
    for (int measure = 0; measure < numOfBaseMeasures; ++measure)
        if (int const first = 4 * measure; channels.has(first))
            m_baseMeasures.push_back({angularSecondMoment + measure, channelOf(first), channelOf(first + 1),
                                      channelOf(first + 2), channelOf(first + 3)});
    for (int feature = HISTO_FirstMeasure; feature <= HISTO_LastMeasure; ++feature)
        if (channels.has(feature))
            m_histogramMeasures.push_back({feature, channelOf(feature)});

    if (plan.hasHistogram()) {
        GreyLevelRange const& range = plan.histogramRange();
        m_histogram.reset(range.min, range.max, range.binSize);
    }
    for (unsigned long index = 0; index < m_pairs.size(); ++index)
        m_pairs[index].matrix.init(plan.bins(), plan.direction(index), plan.entropies(), plan.indicators());
}

std::ptrdiff_t TextureWalk::stepOf(kernel::Offset3D const& offset) const
{
    return offset.x + offset.y * m_rowLength + offset.z * m_planLength;
}

TextureWalk::Steps TextureWalk::stepsOf(TextureWindow const& window) const
{
    auto const steps = [this](std::vector<kernel::Offset3D> const& offsets) {
        std::vector<std::ptrdiff_t> result;
        result.reserve(offsets.size());
        for (kernel::Offset3D const& offset : offsets)
            result.push_back(stepOf(offset));
        // In the order of memory: the sum of a window does not depend on its order.
        std::sort(result.begin(), result.end());
        return result;
    };
    return {steps(window.all), steps(window.entering), steps(window.leaving)};
}

/// Everything that depends on how long the rows of the block are.
void TextureWalk::layOut(access::Block const& block)
{
    long const reach = static_cast<long>(m_plan.radius());
    m_rowLength = static_cast<long>(block.getNbCols()) + 2 * reach;
    m_numOfRows = static_cast<long>(block.getNbRows()) + 2 * reach;
    m_numOfPlans = static_cast<long>(block.getNbPlans()) + 2 * m_reachOfPlans;
    m_planLength = m_rowLength * m_numOfRows;

    auto const farthestOf = [](Steps const& steps) {
        return static_cast<std::ptrdiff_t>(steps.all.size() / std::max<std::size_t>(steps.entering.size(), 1));
    };
    m_farthest = 1;
    std::size_t most = 0;
    for (unsigned long index = 0; index < m_pairs.size(); ++index) {
        m_pairs[index].steps = stepsOf(m_plan.pairWindow(index));
        m_pairs[index].direction = stepOf(m_plan.direction(index));
        most = std::max(most, m_pairs[index].steps.all.size());
        m_farthest = std::max(m_farthest, farthestOf(m_pairs[index].steps));
    }
    m_first.resize(most);
    m_second.resize(most);
    if (m_plan.hasHistogram()) {
        m_histogramSteps = stepsOf(m_plan.histogramWindow());
        m_farthest = std::max(m_farthest, farthestOf(m_histogramSteps));
    }
}

template <class T> void TextureWalk::init(access::View<T> const& view, access::Block const& block)
{
    if (m_plan.hasHistogram())
        m_histogram.requireBins();
    bool const hasBins = !m_pairs.empty() && m_plan.bins().size() > 0;
    if (m_isFilled)
        empty(m_centre);
    m_isFilled = false;
    layOut(block);

    auto const size = static_cast<std::size_t>(m_planLength * m_numOfPlans);
    auto const length = static_cast<std::size_t>(m_rowLength);
    m_bins.resize(hasBins ? size : 0);
    m_classes.resize(m_plan.hasHistogram() ? size : 0);
    std::vector<T> voxels(length);
    long const reach = static_cast<long>(m_plan.radius());
    access::RowPosition at{static_cast<long>(block.colsBegin()) - reach, 0, 0,
                           static_cast<long>(block.timeSeriesBegin()), static_cast<long>(block.spectralSeriesBegin())};
    std::size_t begin = 0;
    for (long plan = 0; plan < m_numOfPlans; ++plan) {
        for (long row = 0; row < m_numOfRows; ++row, begin += length) {
            at.plan = static_cast<long>(block.plansBegin()) + plan - m_reachOfPlans;
            at.row = static_cast<long>(block.rowsBegin()) + row - reach;
            view.read(voxels.data(), length, at);
            if (hasBins)
                binRow(voxels.data(), m_bins.data() + begin, length, m_plan.bins());
            if (m_plan.hasHistogram())
                classifyRow(voxels.data(), m_classes.data() + begin, length, m_histogram);
        }
    }
    toRow(0);
}

void TextureWalk::toRow(long row, long plan)
{
    long const reach = static_cast<long>(m_plan.radius());
    m_rowBegin = stepOf({reach, row + reach, plan + m_reachOfPlans});
    m_isInRow = false;
}

inline void TextureWalk::gather(Pairs const& pairs, std::vector<std::ptrdiff_t> const& steps, std::ptrdiff_t centre)
{
    Bin const* const first = m_bins.data() + centre;
    Bin const* const second = first + pairs.direction;
    for (std::size_t k = 0; k < steps.size(); ++k) {
        m_first[k] = first[steps[k]];
        m_second[k] = second[steps[k]];
    }
}

void TextureWalk::fill(std::ptrdiff_t centre)
{
    for (std::ptrdiff_t const step : m_histogramSteps.all)
        m_histogram.incrementBin(m_classes[static_cast<std::size_t>(centre + step)]);
    for (Pairs& pairs : m_pairs) {
        if (!m_bins.empty())
            gather(pairs, pairs.steps.all, centre);
        pairs.matrix.add(m_first.data(), m_second.data(), pairs.steps.all.size());
    }
}

/// Costs less than to zero all counts, of which most are 0.
void TextureWalk::empty(std::ptrdiff_t centre)
{
    for (std::ptrdiff_t const step : m_histogramSteps.all)
        m_histogram.decrementBin(m_classes[static_cast<std::size_t>(centre + step)]);
    for (Pairs& pairs : m_pairs) {
        gather(pairs, pairs.steps.all, centre);
        pairs.matrix.remove(m_first.data(), m_second.data(), pairs.steps.all.size());
    }
}

void TextureWalk::slide(std::ptrdiff_t centre)
{
    for (std::ptrdiff_t const step : m_histogramSteps.leaving)
        m_histogram.decrementBin(m_classes[static_cast<std::size_t>(centre + step)]);
    for (std::ptrdiff_t const step : m_histogramSteps.entering)
        m_histogram.incrementBin(m_classes[static_cast<std::size_t>(centre + step)]);
    for (Pairs& pairs : m_pairs) {
        // What leaves goes first: counts never exceed those of a window.
        gather(pairs, pairs.steps.leaving, centre);
        pairs.matrix.remove(m_first.data(), m_second.data(), pairs.steps.leaving.size());
        gather(pairs, pairs.steps.entering, centre);
        pairs.matrix.add(m_first.data(), m_second.data(), pairs.steps.entering.size());
    }
}

void TextureWalk::standAt(std::ptrdiff_t centre)
{
    if (m_isInRow && centre - m_centre <= m_farthest) {
        while (m_centre < centre)
            slide(++m_centre);
        return;
    }
    if (m_isFilled)
        empty(m_centre);
    m_isFilled = false;
    fill(centre);
    m_isFilled = m_isInRow = true;
    m_centre = centre;
}

void TextureWalk::measure(long column, double* outputs)
{
    standAt(m_rowBegin + column);
    measurePairs(outputs);
    for (HistogramMeasure const& measure : m_histogramMeasures)
        outputs[measure.channel] = histogramMeasure(measure.feature);
}

void TextureWalk::measurePairs(double* outputs)
{
    unsigned long const count = m_pairs.size();
    auto const n = static_cast<double>(count);
    auto const numOfOutputs = static_cast<long>(m_plan.channels().numOfOutputs);
    for (BaseMeasure const& measure : m_baseMeasures) {
        for (unsigned long index = 0; index < count; ++index)
            m_values[index] = m_pairs[index].matrix.computeIfNotReady(measure.indicator);
        // The source of summaries stands behind the outputs.
        if (measure.forEachDirection < numOfOutputs)
            for (unsigned long index = 0; index < count; ++index)
                outputs[measure.forEachDirection + static_cast<long>(index)] = m_values[index];
        if (measure.mean != TextureChannels::none || measure.deviation != TextureChannels::none) {
            double sum = 0;
            double squares = 0;
            for (double const value : m_values) {
                sum += value;
                squares += value * value;
            }
            if (measure.mean != TextureChannels::none)
                outputs[measure.mean] = sum / n;
            if (measure.deviation != TextureChannels::none) {
                double const variance = squares - sum * sum / n;
                outputs[measure.deviation] = variance < 0 ? 0.0 : std::sqrt(variance / n);
            }
        }
        if (measure.range != TextureChannels::none) {
            auto const [lowest, highest] = std::minmax_element(m_values.begin(), m_values.end());
            outputs[measure.range] = *highest - *lowest;
        }
    }
}

double TextureWalk::histogramMeasure(int feature)
{
    switch (feature) {
    case HISTO_Mean:
        return m_histogram.computeMean();
    case HISTO_Stddev:
        return m_histogram.computeStddev();
    case HISTO_Variance:
        return m_histogram.computeVariance();
    case HISTO_Skewness:
        return m_histogram.computeSkewness();
    case HISTO_Kurtosis:
        return m_histogram.computeKurtosis();
    case HISTO_Peak:
        return m_histogram.computePeak();
    case HISTO_Quantile10:
        return m_histogram.computeQuantile(0.1);
    case HISTO_Quantile25:
        return m_histogram.computeQuantile(0.25);
    case HISTO_Quantile50:
        return m_histogram.computeQuantile(0.5);
    case HISTO_Quantile75:
        return m_histogram.computeQuantile(0.75);
    case HISTO_Quantile90:
        return m_histogram.computeQuantile(0.9);
    default:
        return m_histogram.computeQuantile(
            m_plan.quantileRatios()[static_cast<std::size_t>(feature - HISTO_QuantileR1)]);
    }
}

#define QEL_INSTANTIATE(T) template void TextureWalk::init<T>(access::View<T> const&, access::Block const&);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::segmentation::details
