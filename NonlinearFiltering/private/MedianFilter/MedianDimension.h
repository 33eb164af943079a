#pragma once

#include "Core/private/Access/SlidingWindowProcessor.h"
#include "Core/private/FilterTags.h"
#include "Core/private/Kernel/OffsetCollections.h"
#include "NonlinearFiltering/private/MedianFilter/MedianFilterScalarPrivate.h"

#include <qel/AlgoBorderInfluence.h>

namespace qel::nonlinear_filtering {

/// What differs between planes and volumes.
template <class DimTag> struct MedianDimension;
template <> struct MedianDimension<Filter2dTag>
{
    static constexpr bool isVolume = false;
    using Offset = kernel::Offset2D;
    template <class View, class Computer> using Processor = access::SlidingWindowProcessor2D<View, Computer>;
    static std::vector<Offset> windowOf(MedianSettings const& settings)
    {
        return settings.isRound ? kernel::generateDiskOffset2DCollection(settings.radius)
                                : kernel::generateSquareOffset2DCollection(settings.radius);
    }
    static double voxelsOfBox(unsigned int radius) { return (2.0 * radius + 1) * (2.0 * radius + 1); }
    static AlgoBorderInfluence reachOf(unsigned long radius) { return AlgoBorderInfluence(radius, radius, 0, 0, 0); }
};
template <> struct MedianDimension<Filter3dTag>
{
    static constexpr bool isVolume = true;
    using Offset = kernel::Offset3D;
    template <class View, class Computer> using Processor = access::SlidingWindowProcessor3D<View, Computer>;
    static std::vector<Offset> windowOf(MedianSettings const& settings)
    {
        return settings.isRound ? kernel::generateSphereOffset3DCollection(settings.radius)
                                : kernel::generateCubeOffset3DCollection(settings.radius);
    }
    static double voxelsOfBox(unsigned int radius)
    {
        return (2.0 * radius + 1) * (2.0 * radius + 1) * (2.0 * radius + 1);
    }
    static AlgoBorderInfluence reachOf(unsigned long radius)
    {
        return AlgoBorderInfluence(radius, radius, radius, 0, 0);
    }
};

} // namespace qel::nonlinear_filtering
