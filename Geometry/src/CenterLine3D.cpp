#include <qel/geometry/CenterLine3D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"

#include <limits>

namespace qel::geometry {

QEL_DEFINE_ALGORITHM(CenterLine3D)

void CenterLine3D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL, AddRuleAssertDimension(SPECTRAL_SERIES, 1),
            AddRuleAssertDimension(TIME_SERIES, 1), ASSERT_LABEL_OR_BINARY, ASSERT_INTEGER);
    addInput(&autoMode);
    declare(autoMode, "autoMode", true);
    addInput(&numberOfBranches);
    declare(numberOfBranches, "numberOfBranches", 3);
    addInput(&newBranchSensibility);
    declare(newBranchSensibility, "newBranchSensibility", 3, AddRuleLimitedValue(1, LIMIT_GREATER_OR_EQUAL));
    addInput(&euclideanDistanceMapSigmaSmoothing);
    declare(euclideanDistanceMapSigmaSmoothing, "euclideanDistanceMapSigmaSmoothing", 0.3,
            AddRuleLimitedValue(0.01, LIMIT_GREATER_OR_EQUAL));
    addInput(&smoothingIteration);
    declare(smoothingIteration, "smoothingIteration", 3);
    addOutput(&outputImage);
    declare(outputImage, "outputImage", nullptr, ASSERT_NOT_NULL, AddRuleCompare<detail::NotEqualTo>(&input));
    addOutput(&outputLineSet);
    declare(outputLineSet, "outputLineSet", nullptr, ASSERT_NOT_NULL);
}

AlgoBorderInfluence CenterLine3D::getAlgoBorderInfluence() const
{
    unsigned long const everything = std::numeric_limits<unsigned long>::max();
    return AlgoBorderInfluence(everything, everything, 0, 0, 0);
}

} // namespace qel::geometry
