#include "Classification/private/TextureClassificationTrainGeneric.h"

namespace qel::classification {

template <class T> void TextureClassificationTrain2DDispatcher::run(TextureClassificationTrainPrivate* training)
{
    runTextureTraining<T, Filter2dTag>(*training);
}

#define QEL_INSTANTIATE(T)                                                                                             \
    template void TextureClassificationTrain2DDispatcher::run<T>(TextureClassificationTrainPrivate*);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::classification
