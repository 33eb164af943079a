#include <qel/classification/ReadTextureClassificationModel.h>

#include "Core/private/DefineAlgorithm.h"

namespace qel::classification {

QEL_DEFINE_ALGORITHM(ReadTextureClassificationModel)

void ReadTextureClassificationModel::init()
{
    addInput(&pathClassificationFile);
    declare(pathClassificationFile, "pathClassificationFile", "");
    addOutput(&newClassification);
    declare(newClassification, "newClassification", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence ReadTextureClassificationModel::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(0, 0, 0, 0, 0);
}

} // namespace qel::classification
