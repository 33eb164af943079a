#include "Classification/private/newModel.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/ScalarRunner.h"

#include <qel/classification/ReadTextureClassificationModel.h>

namespace qel::classification {

namespace {

class ReadTextureClassificationModelRunner : public ScalarRunner<ReadTextureClassificationModel>
{
protected:
    void runOn(ReadTextureClassificationModel& algorithm) const override
    {
        TextureClassificationModel*& result = *algorithm.newClassification.get();
        result = nullptr;
        String const path = algorithm.pathClassificationFile;
        if (path == "")
            QEL_THROW(InvalidCall, "The path is empty.");
        auto model = newModel();
        model->read(path);
        result = model.release();
    }
};

} // namespace

QEL_REGISTER_RUNNER(ReadTextureClassificationModel, ReadTextureClassificationModelRunner)

} // namespace qel::classification
