#include "Classification/private/TextureClassificationApplyGeneric.h"

namespace qel::classification {

template <class T> void TextureClassificationApply2DDispatcher::run(TextureClassificationApplyPrivate* application)
{
    runTextureApplication<T, Filter2dTag>(*application);
}

#define QEL_INSTANTIATE(T)                                                                                             \
    template void TextureClassificationApply2DDispatcher::run<T>(TextureClassificationApplyPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::classification
