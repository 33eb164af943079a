#include <qel/segmentation/TextureFeatureExtraction2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Segmentation/private/Texture/declareTextureProperties.h"

namespace qel::segmentation {

QEL_DEFINE_ALGORITHM(TextureFeatureExtraction2D)

void TextureFeatureExtraction2D::init()
{
    details::addTextureProperties(*this, [this](BaseProperty* property) { addInput(property); });
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, ASSERT_FLOATING);
}

AlgoBorderInfluence TextureFeatureExtraction2D::getAlgoBorderInfluence() const
{
    unsigned int const reach = radius;
    return AlgoBorderInfluence(reach, reach, 0, 0, 0);
}

} // namespace qel::segmentation
