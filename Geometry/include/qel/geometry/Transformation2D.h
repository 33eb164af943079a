#pragma once

#include <qel/Export.h>
#include <qel/math/Vector2.h>

namespace qel::geometry {

/// A mapping of the plane onto itself.
class QEL_API Transformation2D
{
public:
    virtual ~Transformation2D();

    /// Replaces the point by its image.
    virtual void map(math::Vector2<double>& point) const = 0;
    /// Replaces each point of a range by its image. Where one fails, those before it are mapped.
    virtual void map(math::Vector2<double>* begin, math::Vector2<double>* end) const = 0;
};

} // namespace qel::geometry
