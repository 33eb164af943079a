#include "Registration/private/RandomSampling.h"

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Throw.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel::registration {

std::vector<std::size_t> const& SampleDrawer::draw(std::size_t size)
{
    m_drawn.clear();
    while (m_drawn.size() < size) {
        std::size_t const index = m_indices(m_generator);
        auto const place = std::lower_bound(m_drawn.begin(), m_drawn.end(), index);
        if (place == m_drawn.end() || *place != index)
            m_drawn.insert(place, index);
    }
    return m_drawn;
}

double medianOf(std::vector<double>& values)
{
    auto const middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1)
        return *middle;
    return (*std::max_element(values.begin(), middle) + *middle) / 2;
}

unsigned int RobustSettings::numOfDraws() const
{
    constexpr unsigned int most = 100000;
    double const cleanSample = std::pow(1 - outlierRatio, static_cast<double>(sampleSize()));
    double const draws = std::log10(1 - confidence) / std::log10(1 - cleanSample) + 0.5;
    return draws < most ? static_cast<unsigned int>(draws) : most;
}

namespace {

/// Whether the median can be below the limit: more than half of the values must be, or half of an even number.
bool mayHaveMedianBelow(double limit, std::vector<double> const& values)
{
    std::size_t below = 0;
    for (double const value : values)
        below += value < limit;
    return below >= (values.size() + 1) / 2;
}

} // namespace

std::vector<std::size_t>
searchInliers(std::size_t numOfPoints, RobustSettings const& settings,
              std::function<bool(std::vector<std::size_t> const&, std::vector<double>&)> const& fit,
              algorithms::AbstractPrivateImplementation* progress)
{
    if (numOfPoints == 0)
        QEL_THROW(RuntimeError, "Bad points set the dimension is 0");
    if (settings.dimension * numOfPoints < 2 * settings.numOfParameters + 1)
        QEL_THROW(RuntimeError, " insufficient number of points. N=2*minNumOfPoint+1 points are needed.");
    unsigned long const neededSuccesses = 10ul * settings.numOfDraws();
    unsigned long const mostAttempts = 100ul * settings.numOfDraws();
    if (progress)
        progress->setTotalWork(neededSuccesses);

    SampleDrawer drawer(numOfPoints);
    std::vector<double> residuals(numOfPoints);
    std::vector<double> bestResiduals;
    std::vector<double> scratch;
    double bestMedian = std::numeric_limits<double>::max();
    unsigned long successes = 0;
    for (unsigned long attempts = 0; successes < neededSuccesses && attempts < mostAttempts; ++attempts) {
        if (progress && progress->isCancelled())
            return {};
        if (!fit(drawer.draw(settings.sampleSize()), residuals))
            continue;
        ++successes;
        if (progress)
            progress->addDoneWork(1);
        if (!mayHaveMedianBelow(bestMedian, residuals))
            continue;
        scratch = residuals;
        double const median = medianOf(scratch);
        if (median < bestMedian) {
            bestMedian = median;
            bestResiduals = residuals;
        }
    }
    // Residuals that are all infinite are no result either.
    if (successes < neededSuccesses || bestResiduals.empty())
        QEL_THROW(RuntimeError, "random sampling failed.");

    scratch = bestResiduals;
    for (double& value : scratch)
        value = std::abs(value - bestMedian);
    double const deviation = medianOf(scratch) * 1.4826;
    double const cut = std::max(3.0 * deviation, 1.4901161193847656e-8);
    std::vector<std::size_t> inliers;
    for (std::size_t i = 0; i < numOfPoints; ++i)
        if (bestResiduals[i] < cut)
            inliers.push_back(i);
    return inliers;
}

} // namespace qel::registration
