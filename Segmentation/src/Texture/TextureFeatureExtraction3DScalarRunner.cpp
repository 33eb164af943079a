#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Segmentation/private/Texture/TextureFeatureExtractionPrivate.h"

#include <qel/segmentation/TextureFeatureExtraction3D.h>

namespace qel::segmentation {

namespace {

class ScalarTextureFeatureExtraction3DRunner : public ScalarRunner<TextureFeatureExtraction3D>
{
    void runOn(TextureFeatureExtraction3D& extraction) const override
    {
        details::TextureFeatureExtractionPrivate(extraction, details::textureParametersOf(extraction, true),
                                                 extraction.input, extraction.output)
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(TextureFeatureExtraction3D, ScalarTextureFeatureExtraction3DRunner)

} // namespace qel::segmentation
