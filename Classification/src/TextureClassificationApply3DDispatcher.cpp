#include "Classification/private/TextureClassificationApplyGeneric.h"

namespace qel::classification {

template <class T> void TextureClassificationApply3DDispatcher::run(TextureClassificationApplyPrivate* application)
{
    runTextureApplication<T, Filter3dTag>(*application);
}

#define QEL_INSTANTIATE(T)                                                                                             \
    template void TextureClassificationApply3DDispatcher::run<T>(TextureClassificationApplyPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::classification
