#include "Classification/private/TextureClassificationTrainPrivate.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/classification/TextureClassificationTrain.h>

namespace qel::classification {

namespace {

class ScalarTextureClassificationTrainRunner : public ScalarRunner<TextureClassificationTrain>
{
protected:
    void runOn(TextureClassificationTrain& train) const override { TextureClassificationTrainPrivate(train).run(); }
};

} // namespace

QEL_REGISTER_RUNNER(TextureClassificationTrain, ScalarTextureClassificationTrainRunner)

} // namespace qel::classification
