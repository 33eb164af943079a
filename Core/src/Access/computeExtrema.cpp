#include "Core/private/Access/computeExtrema.h"

#include <algorithm>
#include <limits>

namespace qel::kernel {

namespace {

template <class Offset> void extend(std::vector<Offset> const& offsets, long Offset::*axis, long& lowest, long& highest)
{
    lowest = std::numeric_limits<long>::max();
    highest = std::numeric_limits<long>::min();
    for (Offset const& offset : offsets) {
        lowest = std::min(lowest, offset.*axis);
        highest = std::max(highest, offset.*axis);
    }
}

} // namespace

void computeExtrema(std::vector<Offset2D> const& offsets, long& minX, long& maxX, long& minY, long& maxY)
{
    extend(offsets, &Offset2D::x, minX, maxX);
    extend(offsets, &Offset2D::y, minY, maxY);
}

void computeExtrema(std::vector<Offset3D> const& offsets, long& minX, long& maxX, long& minY, long& maxY, long& minZ,
                    long& maxZ)
{
    extend(offsets, &Offset3D::x, minX, maxX);
    extend(offsets, &Offset3D::y, minY, maxY);
    extend(offsets, &Offset3D::z, minZ, maxZ);
}

} // namespace qel::kernel
