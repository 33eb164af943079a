#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include <boost/random/mersenne_twister.hpp>
#include <boost/random/uniform_int_distribution.hpp>

namespace qel::algorithms {
class AbstractPrivateImplementation;
}

namespace qel::registration {

/// Draws sets of different indices below `numOfIndices`. The draws are the same for each object.
class SampleDrawer
{
public:
    explicit SampleDrawer(std::size_t numOfIndices)
        : m_indices(0, numOfIndices - 1)
    {}

    /// `size` indices, ascending; there must be as many.
    std::vector<std::size_t> const& draw(std::size_t size);

private:
    boost::random::mt19937 m_generator;
    boost::random::uniform_int_distribution<std::size_t> m_indices;
    std::vector<std::size_t> m_drawn;
};

/// The middle value, or the mean of the two middle ones. Changes the order. There must be a value.
double medianOf(std::vector<double>& values);

/// What a robust estimation shall hold.
struct RobustSettings
{
    unsigned int dimension;
    unsigned int numOfParameters;
    double outlierRatio;
    double confidence;

    /// The fewest points that fix a transformation.
    std::size_t sampleSize() const { return (numOfParameters + dimension - 1) / dimension; }
    /// How many draws are expected to hold a sample without outliers; at most 100000, where the confidence is full.
    unsigned int numOfDraws() const;
};

/// The search for the sample whose fit has the least median of residuals, and the points that belong to it.
///
/// `fit(indices, residuals)` fits to the points with these indices and gives the residual of each point; false where it
/// finds no fit. Gives the indices of the points that are no outliers; none if `progress`, which may be null, was
/// cancelled.
std::vector<std::size_t>
searchInliers(std::size_t numOfPoints, RobustSettings const& settings,
              std::function<bool(std::vector<std::size_t> const&, std::vector<double>&)> const& fit,
              algorithms::AbstractPrivateImplementation* progress);

} // namespace qel::registration
