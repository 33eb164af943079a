#include <qel/registration/ShapeBasedMatching2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

namespace qel::registration {

QEL_DEFINE_ALGORITHM(ShapeBasedMatching2D)

namespace {

EnumInfo& similarityMeasureInfo()
{
    static EnumInfo info("SIMILARITY_MEASURE", "NORMALIZED = 0, NORMALIZED_ABS");
    return info;
}

} // namespace

void ShapeBasedMatching2D::init()
{
    using detail::GreaterOrEqualThan;
    addInput(&inputGradientX);
    declare(inputGradientX, "inputGradientX", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&inputGradientY);
    declare(inputGradientY, "inputGradientY", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertSameSize(&inputGradientX));
    addInput(&templateGradientX);
    declare(templateGradientX, "templateGradientX", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING);
    addInput(&templateGradientY);
    declare(templateGradientY, "templateGradientY", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertSameSize(&templateGradientX));
    addInput(&mask);
    declare(mask, "mask", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER, AddRuleAssertSameSize(&templateGradientX));
    addInput(&numOfLevel);
    declare(numOfLevel, "numOfLevel", 4u, AddRuleinRange<unsigned int>(0, 10));
    addInput(&similarityMeasure);
    declareEnumeration(similarityMeasure, "similarityMeasure", NORMALIZED, similarityMeasureInfo());
    addInput(&rotationBegin);
    declare(rotationBegin, "rotationBegin", 0.0);
    addInput(&rotationEnd);
    declare(rotationEnd, "rotationEnd", 360.0, AddRuleCompare<GreaterOrEqualThan>(&rotationBegin));
    addInput(&rotationStep);
    declare(rotationStep, "rotationStep", 10.0, AddRuleinRange<double>(0, 360, BOUNDS_LOW_OPEN));
    addInput(&scaleBegin);
    declare(scaleBegin, "scaleBegin", 0.5, AddRuleinRange<double>(0.1, 10));
    addInput(&scaleEnd);
    declare(scaleEnd, "scaleEnd", 1.8, AddRuleinRange<double>(0.1, 10),
            AddRuleCompare<GreaterOrEqualThan>(&scaleBegin));
    addInput(&scaleStep);
    declare(scaleStep, "scaleStep", 0.1, AddRuleinRange<double>(0, 10, BOUNDS_LOW_OPEN));
    addOutput(&outputTx);
    declare(outputTx, "outputTx", 0.0);
    addOutput(&outputTy);
    declare(outputTy, "outputTy", 0.0);
    addOutput(&outputScale);
    declare(outputScale, "outputScale", 1.0);
    addOutput(&outputRotation);
    declare(outputRotation, "outputRotation", 0.0);
}

AlgoBorderInfluence ShapeBasedMatching2D::getAlgoBorderInfluence() const
{
    return AlgoBorderInfluence(-1, -1, 0, 0, 0);
}

} // namespace qel::registration
