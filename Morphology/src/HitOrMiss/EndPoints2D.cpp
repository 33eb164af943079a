#include <qel/morphology/EndPoints2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Morphology/private/hitOrMissTypeInfos.h"

#include <qel/Neighborhood2DType.h>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(EndPoints2D)

void EndPoints2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE, ASSERT_BINARY);
    addInput(&borderCondition);
    declareEnumeration(borderCondition, "borderCondition", STOP_OBJECT, binaryBorderConditionTypesInfo());
    addInput(&neighborhood2D);
    declareEnumeration(neighborhood2D, "neighborhood2D", QEL_NEIGHBORHOOD2D_8, helper::neighborhood2DTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence EndPoints2D::getAlgoBorderInfluence() const { return AlgoBorderInfluence(1, 1, 1, 0, 0); }

} // namespace qel::morphology
