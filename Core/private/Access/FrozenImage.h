#pragma once

#include "Core/private/ImageModelSizeProxy.h"

namespace qel::access {

/// An image whose sizes and voxel type were asked for once: what a view shows to its border condition. So tasks call
/// nothing of the host's image but the operations that many threads may call.
class FrozenImage final : public ImageModelSizeProxy
{
public:
    FrozenImage(ImageModel* image, unsigned long cols, unsigned long rows, unsigned long plans,
                unsigned long timeSeries, unsigned long spectralSeries, VoxelTypes type)
        : ImageModelSizeProxy(image, 0, cols, 0, rows, 0, plans, 0, timeSeries, 0, spectralSeries)
        , m_type(type)
    {}
    VoxelTypes getVoxelType() const override { return m_type; }

private:
    VoxelTypes m_type;
};

} // namespace qel::access
