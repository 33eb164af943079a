#include <qel/point_operations/GradientMagnitude3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "PointOperations/private/GradientMagnitude.h"

#include <qel/EnumInfo.h>

namespace qel::point_operations {

QEL_DEFINE_ALGORITHM(GradientMagnitude3D)

void GradientMagnitude3D::init()
{
    static EnumInfo info("GradientMagnitudeOutputType", gradientMagnitudeOutputDeclaration);
    addInput(&input1);
    declare(input1, "input1", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&input2);
    declare(input2, "input2", nullptr, ASSERT_NOT_NULL, AddRuleAssertSameType(&input1), AddRuleAssertSameSize(&input1));
    addInput(&input3);
    declare(input3, "input3", nullptr, ASSERT_NOT_NULL, AddRuleAssertSameType(&input1), AddRuleAssertSameSize(&input1));
    addInput(&outputMode);
    declareEnumeration(outputMode, "outputMode", GRADIENTMAGNITUDEOUTPUT_AMPLITUDE_EUCLIDEAN, info);
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input1));
}

AlgoBorderInfluence GradientMagnitude3D::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::point_operations
