#pragma once

#include <qel/Algorithm.h>
#include <qel/PropertyEnumeration.h>
#include <qel/container/Vector.h>
#include <qel/math/Vector2.h>

namespace qel::geometry {

/// What is sampled: all directions, or one direction of each axis.
enum SamplingMode
{
    SPHERE = 0,
    HALF_SPHERE = 1
};

/// Gives directions that are spread evenly over a sphere or half a sphere.
///
/// There are sets of 1 to 100 axes, from 150 to 500 in steps of 50, from 600 to 1000 in steps of 100, and of 1500,
/// 2000, 2500 and 3000. The smallest that is large enough is taken, or that of 3000. Within a set the least angle
/// between two axes is more than nine tenths of what is known to be possible.
///
/// `nbDesiredSamples`: how many directions are wanted (default 100). `samplingMode` (a SamplingMode, default SPHERE):
/// HALF_SPHERE gives each axis once, by its end with z >= 0. SPHERE looks for half as many axes, rounded down, and
/// gives both ends of each, one after the other. `directionSamplesVec`: what it held before goes. A direction is (phi,
/// theta) in radians: phi from 0 at the z axis to pi at its other end, theta the azimuth from x towards y, from -pi to
/// pi.
///
/// Throws RuleException, with the output as it was, when no direction is wanted, the mode is unknown, or the output is
/// missing.
class QEL_API SphereSampling : public BaseAlgorithm
{
    QEL_ALGORITHM(SphereSampling)

public:
    Property<unsigned int> nbDesiredSamples;
    PropertyEnumeration samplingMode;
    Property<container::Vector<math::Vector2<double>>*> directionSamplesVec;
};

} // namespace qel::geometry
