// All border conditions for all voxel types: one unit, since what they share costs more to read than they to compile.
#include "Core/private/Access/ContinueBorderCondition.impl.h"
#include "Core/private/Access/DirectionalMirrorBorderCondition.impl.h"
#include "Core/private/Access/FixedBorderCondition.impl.h"
#include "Core/private/Access/MirrorBorderCondition.impl.h"

namespace qel::access {

#define QEL_INSTANTIATE(T)                                                                                             \
    template class ContinueBorderCondition<T>;                                                                         \
    template class FixedBorderCondition<T>;                                                                            \
    template class MirrorBorderCondition<T>;                                                                           \
    template class DirectionalMirrorBorderCondition<T>;
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::access
