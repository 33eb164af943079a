#include <qel/morphology/EndPoints3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Morphology/private/hitOrMissTypeInfos.h"

#include <qel/Neighborhood3DType.h>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(EndPoints3D)

void EndPoints3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE, ASSERT_BINARY);
    addInput(&borderCondition);
    declareEnumeration(borderCondition, "borderCondition", STOP_OBJECT, binaryBorderConditionTypesInfo());
    addInput(&neighborhood3D);
    declareEnumeration(neighborhood3D, "neighborhood3D", QEL_NEIGHBORHOOD3D_26, helper::neighborhood3DTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence EndPoints3D::getAlgoBorderInfluence() const { return AlgoBorderInfluence(1, 1, 1, 0, 0); }

} // namespace qel::morphology
