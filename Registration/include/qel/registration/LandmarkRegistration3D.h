#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/container/Vector.h>
#include <qel/geometry/Transformation3DHandler.h>
#include <qel/math/Vector3.h>

namespace qel::registration {

/// Computes the transformation of space that carries landmarks onto others.
///
/// `model`, `data`: as many points each, in the same order; the result T satisfies T(model) close to data. Points of
/// `data` beyond the number of `model` are passed over.
/// `transformationType` (default TRANSLATION), with the fewest points of a robust estimation: TRANSLATION (3), RIGID
/// (4), AFFINE (9); the result is a geometry::Translation3D, RigidTransformation3D or AffineTransformation3D. The
/// others are those of the plane, and are refused. `robustEstimation` (default false): find and leave out wrong pairs.
/// `outlierRatio` (0.1 to 0.4, default 0.2): the share of wrong pairs that is expected, and `confidence` (0.9 to 1.0,
/// default 0.99): how sure it shall be that one sample is without any; the two fix how many samples are drawn.
/// `outputTransformation`: a handler, which takes the result over.
///
/// Plain estimation solves for the least squares. Where the points leave a choice, it is the
/// shortest solution; too few points are no error. Robust estimation fits to random samples of the smallest size, keeps
/// the one with the least median of residuals (the largest coordinate of each), and fits to the points whose residual
/// is below three robust standard deviations. Draws are the same in each run.
///
/// Throws RuleException before the work starts where a pointer is null or a value out of range; InvalidCall where
/// `data` is shorter than `model`; RuntimeError where there is no point, too few for a robust estimation, or too few
/// samples with a solution. The handler is then left as it was. Cost: one pass over the points for each sample, at most
/// some hundreds at the default values; on one thread. Reference: P. J. Rousseeuw, "Least Median of Squares
/// Regression", Journal of the American Statistical Association 79(388):871-880, 1984.
class QEL_API LandmarkRegistration3D : public BaseAlgorithm
{
    QEL_ALGORITHM(LandmarkRegistration3D)

public:
    enum TransformationType
    {
        TRANSLATION = 0,
        RIGID,
        AFFINE,
        PROJECTIVE,
        POLYNOMIAL_2,
        POLYNOMIAL_3
    };

    Property<container::Vector<math::Vector3<double>> const*> data;
    Property<container::Vector<math::Vector3<double>> const*> model;
    PropertyEnumeration transformationType;
    Property<bool> robustEstimation;
    Property<double> outlierRatio;
    Property<double> confidence;
    Property<geometry::Transformation3DHandler*> outputTransformation;
};

} // namespace qel::registration
