#pragma once

#include <qel/math/Vector2.h>

namespace qel::geometry {
class Translation2D;
class RigidTransformation2D;
class AffineTransformation2D;
class ProjectiveTransformation2D;
class PolynomialOrder2Transformation2D;
class PolynomialOrder3Transformation2D;
} // namespace qel::geometry

namespace qel::registration {

// One for each type of transformation: the plain least squares. `estimate` finds what carries the points of a range
// onto as many from `targetBegin` on. It throws RuntimeError where there is no point or the solver finds nothing.

template <class T, unsigned int parameters> struct Estimator2D
{
    using Point = math::Vector2<double>;
    using Transformation = T;
    static constexpr unsigned int dimension = 2;
    static constexpr unsigned int numOfParameters = parameters;
};

struct Translation2DEstimator : Estimator2D<geometry::Translation2D, 2>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

/// The identity where the points tell no angle.
struct Rigid2DEstimator : Estimator2D<geometry::RigidTransformation2D, 3>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

struct Affine2DEstimator : Estimator2D<geometry::AffineTransformation2D, 6>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

/// The kernel of the homogeneous system. Throws RuntimeError "bad precision." where it cannot be scaled to a last
/// element of 1.
struct Projective2DEstimatorByKernelEstimation : Estimator2D<geometry::ProjectiveTransformation2D, 8>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

struct Polynomial2DOrder2Estimator : Estimator2D<geometry::PolynomialOrder2Transformation2D, 12>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

struct Polynomial2DOrder3Estimator : Estimator2D<geometry::PolynomialOrder3Transformation2D, 20>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

} // namespace qel::registration
