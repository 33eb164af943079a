#pragma once

#include <qel/container/Vector.h>
#include <qel/math/Vector3.h>

namespace qel::geometry {

/// What a line set holds.
class LineSet3DPrivate
{
public:
    /// Its bytes in an object file, in both directions.
    template <class Archive, class Lines> static void serialize(Archive& archive, Lines& lines)
    {
        serialization::serialize(archive, lines.coords);
        serialization::serialize(archive, lines.indices);
    }

    container::Vector<math::Vector3<double>> coords;
    container::Vector<unsigned long> indices;
};

} // namespace qel::geometry
