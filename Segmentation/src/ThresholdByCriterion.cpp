#include <qel/segmentation/ThresholdByCriterion.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

namespace qel::segmentation {

QEL_DEFINE_ALGORITHM(ThresholdByCriterion)

namespace {

EnumInfo& criterionTypeInfo()
{
    static EnumInfo info("CriterionType", "LESS_THAN = 0, LESS_THAN_OR_EQUAL_TO, EQUAL_TO, GREATER_THAN_OR_EQUAL_TO, "
                                          "GREATER_THAN, NOT_EQUAL_TO");
    return info;
}

} // namespace

void ThresholdByCriterion::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&criterion);
    declareEnumeration(criterion, "criterion", LESS_THAN, criterionTypeInfo());
    addInput(&value);
    declare(value, "value", Scalar(128));
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeAndCalibration(&input),
            ASSERT_BINARY_TYPE, AddRuleSetInterpretation(QEL_BINARY));
}

AlgoBorderInfluence ThresholdByCriterion::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::segmentation
