#include <qel/morphology/Reconstruction3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/Neighborhood3DType.h>

#include <limits>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(Reconstruction3D)

void Reconstruction3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY, ASSERT_INTEGER,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&marker);
    declare(marker, "marker", nullptr, ASSERT_NOT_NULL, ASSERT_BINARY, ASSERT_INTEGER, AddRuleAssertSameSize(&input));
    addInput(&neighborhood3D);
    declareEnumeration(neighborhood3D, "neighborhood3D", QEL_NEIGHBORHOOD3D_26, helper::neighborhood3DTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, QEL_UINT8),
            AddRuleKeepInputType(&marker, QEL_UINT8), AddRuleSetInterpretation(QEL_BINARY),
            AddRuleEnforceType(QEL_UINT8), AddRuleEnforceSameSizeAndCalibration(&input));
}

AlgoBorderInfluence Reconstruction3D::getAlgoBorderInfluence() const
{
    unsigned long const everything = std::numeric_limits<unsigned long>::max();
    return AlgoBorderInfluence(everything, everything, everything, 0, 0);
}

} // namespace qel::morphology
