#include <qel/classification/KMeansClassification.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

namespace qel::classification {

QEL_DEFINE_ALGORITHM(KMeansClassification)

void KMeansClassification::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER_OR_FLOATING, ASSERT_VALUE);
    addInput(&numClasses);
    declare(numClasses, "numClasses", 2u, ASSERT_POSITIVE_ONLY);
    addInput(&preComputingDataPercent);
    declare(preComputingDataPercent, "preComputingDataPercent", 100u, ASSERT_POSITIVE_ONLY);
    addOutput(&classifiedImage);
    declare(classifiedImage, "classifiedImage", nullptr, ASSERT_NOT_NULL, ASSERT_INTEGER,
            AddRuleSetInterpretation(QEL_LABEL));
}

AlgoBorderInfluence KMeansClassification::getAlgoBorderInfluence() const { return AlgoBorderInfluence(0, 0, 0, 0, 0); }

} // namespace qel::classification
