#include <qel/registration/LandmarkRegistration2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Registration/private/transformationTypeInfo.h"

namespace qel::registration {

QEL_DEFINE_ALGORITHM(LandmarkRegistration2D)

void LandmarkRegistration2D::init()
{
    addInput(&data);
    declare(data, "data", nullptr, ASSERT_NOT_NULL);
    addInput(&model);
    declare(model, "model", nullptr, ASSERT_NOT_NULL);
    addInput(&transformationType);
    declareEnumeration(transformationType, "transformationType", TRANSLATION, transformationTypeInfo());
    addInput(&robustEstimation);
    declare(robustEstimation, "robustEstimation", false);
    addInput(&outlierRatio);
    declare(outlierRatio, "outlierRatio", 0.2, AddRuleinRange<double>(0.1, 0.4));
    addInput(&confidence);
    declare(confidence, "confidence", 0.99, AddRuleinRange<double>(0.9, 1.0));
    addOutput(&outputTransformation);
    declare(outputTransformation, "outputTransformation", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence LandmarkRegistration2D::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(-1, -1, 0, 0, 0);
}

} // namespace qel::registration
