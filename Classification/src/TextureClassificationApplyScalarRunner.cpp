#include "Classification/private/TextureClassificationApplyPrivate.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/classification/TextureClassificationApply.h>

namespace qel::classification {

namespace {

class ScalarTextureClassificationApplyRunner : public ScalarRunner<TextureClassificationApply>
{
protected:
    void runOn(TextureClassificationApply& apply) const override { TextureClassificationApplyPrivate(apply).run(); }
};

} // namespace

QEL_REGISTER_RUNNER(TextureClassificationApply, ScalarTextureClassificationApplyRunner)

} // namespace qel::classification
