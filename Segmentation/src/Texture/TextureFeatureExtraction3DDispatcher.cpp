#include "Segmentation/private/Texture/runTextureFeatureExtraction.h"

namespace qel::segmentation::details {

template <class T>
void TextureFeatureExtraction3DDispatcher::run(
    std::pair<TextureFeatureExtractionPrivate*, TexturePlan const*> extraction)
{
    runTextureFeatureExtraction<T, Filter3dTag>(*extraction.first, *extraction.second);
}

#define QEL_INSTANTIATE(T)                                                                                             \
    template void TextureFeatureExtraction3DDispatcher::run<T>(                                                        \
        std::pair<TextureFeatureExtractionPrivate*, TexturePlan const*>);
QEL_FOR_EACH_VOXEL_TYPE(QEL_INSTANTIATE)
#undef QEL_INSTANTIATE

} // namespace qel::segmentation::details
