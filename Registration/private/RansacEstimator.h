#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Throw.h"
#include "Registration/private/RandomSampling.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qel::registration {

/// The largest absolute coordinate of target minus image. What is no number counts as infinite.
template <class Point> double residualOf(Point const& target, Point const& image)
{
    double largest = 0;
    for (unsigned int axis = 0; axis < Point::dim(); ++axis) {
        double const difference = std::abs(target[axis] - image[axis]);
        if (std::isnan(difference))
            return std::numeric_limits<double>::infinity();
        largest = std::max(largest, difference);
    }
    return largest;
}

/// Makes an estimator robust against wrong pairs of points: see searchInliers().
template <class Estimator> class RansacEstimator
{
public:
    using Point = typename Estimator::Point;
    using Transformation = typename Estimator::Transformation;

    /// As Estimator::estimate(), of the points that are no outliers. Throws RuntimeError where there are too few points
    /// or too few samples have a fit. False where `progress`, which may be null, was cancelled.
    static bool robustEstimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result,
                               double outlierRatio, double confidence,
                               algorithms::AbstractPrivateImplementation* progress = nullptr)
    {
        std::size_t const size = end - begin;
        std::vector<Point> images(size), sources, targets;
        auto const estimateAt = [&](std::vector<std::size_t> const& indices) {
            sources.clear();
            targets.clear();
            for (std::size_t const index : indices) {
                sources.push_back(begin[index]);
                targets.push_back(targetBegin[index]);
            }
            Estimator::estimate(sources.data(), sources.data() + sources.size(), targets.data(), result);
        };
        auto const fit = [&](std::vector<std::size_t> const& sample, std::vector<double>& residuals) {
            try {
                estimateAt(sample);
                std::copy(begin, end, images.begin());
                result.map(images.data(), images.data() + size);
            } catch (RuntimeError const&) {
                return false; // no solution, or a point that the projection does not reach
            }
            for (std::size_t i = 0; i < size; ++i)
                residuals[i] = residualOf(targetBegin[i], images[i]);
            return true;
        };
        RobustSettings const settings{Estimator::dimension, Estimator::numOfParameters, outlierRatio, confidence};
        std::vector<std::size_t> const inliers = searchInliers(size, settings, fit, progress);
        if (progress && progress->isCancelled())
            return false;
        estimateAt(inliers);
        return true;
    }
};

} // namespace qel::registration
