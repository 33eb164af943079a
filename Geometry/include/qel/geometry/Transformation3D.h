#pragma once

#include <qel/Export.h>
#include <qel/math/Vector3.h>

namespace qel::geometry {

/// A mapping of space onto itself.
class QEL_API Transformation3D
{
public:
    virtual ~Transformation3D();

    /// Replaces the point by its image.
    virtual void map(math::Vector3<double>& point) const = 0;
    /// Replaces each point of a range by its image.
    virtual void map(math::Vector3<double>* begin, math::Vector3<double>* end) const = 0;
};

} // namespace qel::geometry
