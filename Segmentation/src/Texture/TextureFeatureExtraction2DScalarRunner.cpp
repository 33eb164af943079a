#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"
#include "Segmentation/private/Texture/TextureFeatureExtractionPrivate.h"

#include <qel/segmentation/TextureFeatureExtraction2D.h>

namespace qel::segmentation {

namespace {

class ScalarTextureFeatureExtraction2DRunner : public ScalarRunner<TextureFeatureExtraction2D>
{
    void runOn(TextureFeatureExtraction2D& extraction) const override
    {
        details::TextureFeatureExtractionPrivate(extraction, details::textureParametersOf(extraction, false),
                                                 extraction.input, extraction.output)
            .run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(TextureFeatureExtraction2D, ScalarTextureFeatureExtraction2DRunner)

} // namespace qel::segmentation
