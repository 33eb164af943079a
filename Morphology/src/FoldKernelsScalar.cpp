#include "Core/private/SimdVec.h"
#include "Core/private/VoxelTypeOf.h"
#include "Morphology/private/FoldKernels.impl.h"

namespace qel::morphology {

#define QEL_INSTANTIATE(T) template FoldKernels<T> foldKernels<SimdVec::arch_scalar_tag, T>(bool);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::morphology
