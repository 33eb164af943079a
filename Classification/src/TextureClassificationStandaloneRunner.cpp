#include "Classification/private/TextureClassificationStandalonePrivate.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/classification/TextureClassificationStandalone.h>

namespace qel::classification {

namespace {

class TextureClassificationStandaloneRunner : public ScalarRunner<TextureClassificationStandalone>
{
protected:
    void runOn(TextureClassificationStandalone& standalone) const override
    {
        TextureClassificationStandalonePrivate(standalone).run();
    }
};

} // namespace

QEL_REGISTER_RUNNER(TextureClassificationStandalone, TextureClassificationStandaloneRunner)

} // namespace qel::classification
