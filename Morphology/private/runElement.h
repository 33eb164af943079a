#pragma once

#include "Core/private/VoxelTypeOf.h"
#include "Morphology/private/StructuringElement.h"

namespace qel {
class BaseAlgorithm;
class ImageModel;
} // namespace qel

namespace qel::morphology {

/// One erosion or dilation, all passes of it, with the plain row kernels or those of packets.
template <class T>
void runElement(BaseAlgorithm& owner, bool isErosion, StructuringElement const& element, ImageModel const* input,
                ImageModel* output, bool withPackets);

#define QEL_EXTERN(T)                                                                                                  \
    extern template void runElement<T>(BaseAlgorithm&, bool, StructuringElement const&, ImageModel const*,             \
                                       ImageModel*, bool);
QEL_FOR_EACH_VOXEL_TYPE(QEL_EXTERN)
#undef QEL_EXTERN

} // namespace qel::morphology
