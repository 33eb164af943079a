#pragma once

#include <qel/geometry/RigidTransformation3D.h>
#include <qel/math/Vector3.h>

namespace qel::geometry {
class Translation3D;
class AffineTransformation3D;
} // namespace qel::geometry

namespace qel::registration {

// The same as in the plane: see Estimators2D.h.

template <class T, unsigned int parameters> struct Estimator3D
{
    using Point = math::Vector3<double>;
    using Transformation = T;
    static constexpr unsigned int dimension = 3;
    static constexpr unsigned int numOfParameters = parameters;
};

struct Translation3DEstimator : Estimator3D<geometry::Translation3D, 3>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

/// A rotation in any case, never a reflection. Its five parameters are those that the class declares.
struct Rigid3DEstimator : Estimator3D<geometry::RigidTransformation3D, 5>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

struct Affine3DEstimator : Estimator3D<geometry::AffineTransformation3D, 12>
{
    static void estimate(Point const* begin, Point const* end, Point const* targetBegin, Transformation& result);
};

} // namespace qel::registration
