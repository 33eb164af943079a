#include <qel/nonlinear_filtering/MedianFilter2D.h>

#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Rules/Asserts.h"
#include "Core/private/declareEnumeration.h"
#include "NonlinearFiltering/private/MedianFilter/MedianComputerInfo.h"

#include <qel/EnumInfo.h>

namespace qel::nonlinear_filtering {

QEL_DEFINE_ALGORITHM(MedianFilter2D)

namespace {

EnumInfo& neighborhoodShape2DTypeInfo()
{
    static EnumInfo info("NeighborhoodShape2DType", "QEL_SQUARE = 0, QEL_DISK");
    return info;
}

} // namespace

void MedianFilter2D::init()
{
    addInput(&input);
    declare(input, "input", nullptr, ASSERT_NOT_NULL);
    addInput(&neighborhoodSize);
    declare(neighborhoodSize, "neighborhoodSize", 3u, ASSERT_POSITIVE_ONLY);
    addInput(&neighborhoodShape);
    declareEnumeration(neighborhoodShape, "neighborhoodShape", QEL_SQUARE, neighborhoodShape2DTypeInfo());
    addInput(&searchMode);
    declareEnumeration(searchMode, "searchMode", AUTOMATIC, details::medianComputationTypeInfo());
    addOutput(&output);
    declare(output, "output", nullptr, ASSERT_NOT_NULL, AddRuleEnforceSameSizeCalibrationAndType(&input),
            AddRuleEnforceSameInterpretation(&input));
}

AlgoBorderInfluence MedianFilter2D::getAlgoBorderInfluence() const
{
    unsigned int const size = neighborhoodSize;
    return AlgoBorderInfluence(size, size, 0, 0, 0);
}

void MedianFilter2D::applyAllRules()
{
    BaseAlgorithm::applyAllRules();
    details::checkSearchMode(*input.get(), searchMode);
}

} // namespace qel::nonlinear_filtering
