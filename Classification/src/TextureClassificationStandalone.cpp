#include <qel/classification/TextureClassificationStandalone.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/Rules/RuleKeepInputSize.h"
#include "Core/private/declareEnumeration.h"

#include <qel/EnumInfo.h>

#include <boost/make_shared.hpp>

namespace qel::classification {

QEL_DEFINE_ALGORITHM(TextureClassificationStandalone)

void TextureClassificationStandalone::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING,
            AddRuleAssertDimension(SPECTRAL_SERIES, 1));
    addInput(&labelImg);
    declare(labelImg, "labelImg", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER, ASSERT_LABEL,
            AddRuleAssertDimensionImage(&input, COLUMNS, ROWS, PLANS, TIME_SERIES));
    addInput(&computeMode);
    declareEnumeration(computeMode, "computeMode", MODE_2D, computeModeInfo());
    addInput(&usedMeasures);
    declare(usedMeasures, "usedMeasures", 4u, ASSERT_POSITIVE_ONLY);
    addInput(&radius);
    declare(radius, "radius", 5u, ASSERT_POSITIVE_ONLY);
    addInput(&textonShape);
    declareEnumeration(textonShape, "textonShape", CUBE, textonShapeInfo());
    addInput(&textonSize);
    declare(textonSize, "textonSize", 1u, ASSERT_POSITIVE_ONLY);
    addInput(&rejectionFeatureSelection);
    declare(rejectionFeatureSelection, "rejectionFeatureSelection", 0.05,
            AddRuleLimitedValue(0, LIMIT_GREATER_OR_EQUAL));
    addInput(&rejection);
    declare(rejection, "rejection", 3.0, AddRuleLimitedValue(1, LIMIT_GREATER));
    addOutput(&classifiedImage);
    // Of labels only columns, rows, plans and time series are those of the input.
    auto const keepSizeOfLabels = [this](Property<ImageModel*>& property) {
        pushRule<ImageModel*>(property, boost::make_shared<RuleKeepInputSize>(&labelImg, &input));
    };
    declare(classifiedImage, "classifiedImage", nullptr, ASSERT_NOT_NULL, AddRuleKeepInputType(&input, QEL_UINT16),
            AddRuleKeepInputType(&labelImg, QEL_UINT16), keepSizeOfLabels, AddRuleSetInterpretation(QEL_LABEL),
            AddRuleEnforceType(QEL_UINT16), AddRuleEnforceSameSizeAndCalibration(&input));
    addOutput(&classificationDetails);
    declare(classificationDetails, "classificationDetails", "");
}

AlgoBorderInfluence TextureClassificationStandalone::getAlgoBorderInfluence() const
{
    unsigned long const reach = radius.get();
    return AlgoBorderInfluence(reach, reach, computeMode.get() == MODE_3D ? reach : 0, 0, 0);
}

} // namespace qel::classification
