#pragma once

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Throw.h"
#include "Registration/private/RansacEstimator.h"

#include <memory>

namespace qel::registration {

/// The run of a landmark registration with one type of transformation, in the plane or in space.
template <class Estimator, class Registration> void runEstimator(Registration& registration)
{
    auto const& model = *registration.model.get();
    auto const& data = *registration.data.get();
    if (data.size() < model.size())
        QEL_THROW(InvalidCall, "The data and the model must have the same number of points.");
    algorithms::AbstractPrivateImplementation progress(&registration);
    algorithms::AbstractPrivateImplementation::Publication const publication(progress);
    auto result = std::make_unique<typename Estimator::Transformation>();
    if (!registration.robustEstimation.get())
        Estimator::estimate(model.begin(), model.end(), data.begin(), *result);
    else if (!RansacEstimator<Estimator>::robustEstimate(model.begin(), model.end(), data.begin(), *result,
                                                         registration.outlierRatio, registration.confidence, &progress))
        return; // cancelled
    registration.outputTransformation.get()->set(result.release());
}

} // namespace qel::registration
