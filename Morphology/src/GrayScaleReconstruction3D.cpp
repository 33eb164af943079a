#include <qel/morphology/GrayScaleReconstruction3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "Morphology/private/reconstructionTypeInfo.h"

#include <qel/Neighborhood3DType.h>

#include <limits>

namespace qel::morphology {

QEL_DEFINE_ALGORITHM(GrayScaleReconstruction3D)

void GrayScaleReconstruction3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&marker);
    declare(marker, "marker", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING, AddRuleAssertSameSize(&input));
    addInput(&reconstructionType);
    declareEnumeration(reconstructionType, "reconstructionType", QEL_DILATION, reconstructionTypeInfo());
    addInput(&neighborhood3D);
    declareEnumeration(neighborhood3D, "neighborhood3D", QEL_NEIGHBORHOOD3D_26, helper::neighborhood3DTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, &marker),
            AddRuleEnforceSameSizeCalibrationAndType(&marker), AddRuleEnforceSameInterpretation(&marker));
}

AlgoBorderInfluence GrayScaleReconstruction3D::getAlgoBorderInfluence() const
{
    // Plans count for nothing in either dimension: a published value.
    unsigned long const everything = std::numeric_limits<unsigned long>::max();
    return AlgoBorderInfluence(everything, everything, 0, 0, 0);
}

} // namespace qel::morphology
