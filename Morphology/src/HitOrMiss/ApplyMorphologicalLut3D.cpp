#include <qel/morphology/ApplyMorphologicalLut3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Morphology/private/hitOrMissTypeInfos.h"

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(ApplyMorphologicalLut3D)

void ApplyMorphologicalLut3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY_TYPE, ASSERT_BINARY);
    addInput(&morphologicalLut);
    declare(morphologicalLut, "morphologicalLut", nullptr, ASSERT_NOT_NULL);
    addInput(&matchingFlag);
    declareEnumeration(matchingFlag, "matchingFlag", SET_ONE, matchingActionTypesInfo());
    addInput(&noMatchingFlag);
    declareEnumeration(noMatchingFlag, "noMatchingFlag", SET_ZERO, matchingActionTypesInfo());
    addInput(&borderCondition);
    declareEnumeration(borderCondition, "borderCondition", STOP_OBJECT, binaryBorderConditionTypesInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input));
}

AlgoBorderInfluence ApplyMorphologicalLut3D::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(1, 1, 1, 0, 0);
}

} // namespace qel::morphology
